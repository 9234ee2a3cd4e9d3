#include "cli/report_palette.h"

#include "cli/check_formats.h"
#include "cli/text.h"

namespace tintora::cli {

namespace {

Rgb8 seenBy(const ColourSimulation& viewer, Rgb8 rgb) {
  return roundColour(transformColour(makeSimulation(viewer), toColour(rgb)));
}

std::string swatch(Rgb8 rgb) {
  return "<span class=\"swatch\" style=\"background:" + hexText(rgb) + "\"></span>";
}

// Returns both colours side by side, without a gap.
std::string pairSwatch(Rgb8 first, Rgb8 second) {
  return "<span class=\"pair\">" + swatch(first) + swatch(second) + "</span>";
}

std::string nameOf(const PaletteColour& colour) {
  const std::string code = "<code>" + hexText(colour.rgb) + "</code>";
  return colour.name.empty() ? code : escapeMarkup(colour.name) + " " + code;
}

// Returns a table in a frame that scrolls sideways, and that keys can scroll too.
std::string table(const std::string& label, const std::string& head, const std::string& body) {
  return "<div class=\"scroll\" role=\"region\" tabindex=\"0\" aria-label=\"" +
         escapeMarkup(label) + "\">\n<table>\n<thead><tr>" + head + "</tr></thead>\n<tbody>\n" +
         body + "</tbody>\n</table>\n</div>\n";
}

std::string viewerHeads(const CheckedInput& checked) {
  std::string html;
  for (const ColourSimulation& viewer : checked.viewers) {
    html += "<th scope=\"col\">" + viewerName(viewer) + "</th>";
  }
  return html;
}

std::string coloursTable(const CheckedInput& checked, const std::string& heading) {
  std::string body;
  for (const PaletteColour& colour : checked.input.palette.colours) {
    body += "<tr><th scope=\"row\"><span class=\"colour\">" + swatch(colour.rgb) + "<span>" +
            nameOf(colour) + "</span></span></th>";
    for (const ColourSimulation& viewer : checked.viewers) {
      const Rgb8 seen = seenBy(viewer, colour.rgb);
      body += "<td class=\"seen\">" + swatch(seen) + "<code>" + hexText(seen) + "</code></td>";
    }
    body += "</tr>\n";
  }
  return table(heading + " and how they are seen",
               "<th scope=\"col\">Colour</th>" + viewerHeads(checked), body);
}

std::string figures(const Difference& difference) {
  return "<span class=\"number\">difference " + fixed(difference.ciede2000, 1) +
         "</span>, <span class=\"number\">contrast " + fixed(difference.contrast, 2) + "</span>";
}

std::string findingRow(const std::string& what, const std::string& swatches,
                       const std::string& text) {
  return "<li><span class=\"what\">" + what + "</span>" + swatches + " <span>" + text +
         "</span></li>\n";
}

std::string suggestionRows(const CheckedInput& checked, const Finding& finding) {
  if (!finding.suggestion) {
    return "<li>No change of one of the two alone was found that separates them.</li>\n";
  }
  const Suggestion& suggestion = *finding.suggestion;
  const std::vector<PaletteColour>& colours = checked.input.palette.colours;
  const CheckedPair& pair = checked.check.pairs[finding.pair];
  const PaletteColour& changed = colours[suggestion.changed];
  const bool changesFirst = suggestion.changed == pair.first;
  const Rgb8 first = changesFirst ? suggestion.to : colours[pair.first].rgb;
  const Rgb8 second = changesFirst ? colours[pair.second].rgb : suggestion.to;
  std::string html =
      findingRow("suggestion", pairSwatch(first, second),
                 nameOf(changed) + " becomes <code>" + hexText(suggestion.to) +
                     "</code>, a change of <span class=\"number\">" + fixed(suggestion.change, 1) +
                     "</span>; then " + figures(suggestion.pair.before));
  for (const std::size_t v : finding.lostTo) {
    const ColourSimulation& viewer = checked.viewers[v];
    html += findingRow("then " + viewerName(viewer),
                       pairSwatch(seenBy(viewer, first), seenBy(viewer, second)),
                       figures(suggestion.pair.after[v]));
  }
  return html;
}

std::string findingItem(const CheckedInput& checked, const Finding& finding) {
  const std::vector<PaletteColour>& colours = checked.input.palette.colours;
  const CheckedPair& pair = checked.check.pairs[finding.pair];
  const PaletteColour& first = colours[pair.first];
  const PaletteColour& second = colours[pair.second];
  std::string html =
      "<li class=\"finding\">\n<h4>" + nameOf(first) + " and " + nameOf(second) + "</h4>\n<ul>\n" +
      findingRow("as it is", pairSwatch(first.rgb, second.rgb), figures(pair.before));
  for (const std::size_t v : finding.lostTo) {
    const ColourSimulation& viewer = checked.viewers[v];
    html += findingRow("<strong>lost</strong> to " + viewerName(viewer),
                       pairSwatch(seenBy(viewer, first.rgb), seenBy(viewer, second.rgb)),
                       figures(pair.after[v]));
  }
  return html + suggestionRows(checked, finding) + "</ul>\n</li>\n";
}

std::string pairsTable(const CheckedInput& checked) {
  const std::vector<PaletteColour>& colours = checked.input.palette.colours;
  std::string body;
  std::size_t next = 0;
  for (std::size_t i = 0; i < checked.check.pairs.size(); ++i) {
    const CheckedPair& pair = checked.check.pairs[i];
    const Finding* const finding = findingOf(checked.check, i, next);
    const auto cell = [](const Difference& difference, bool lost) {
      return std::string(lost ? "<td class=\"lost\">" : "<td class=\"number\">") +
             fixed(difference.ciede2000, 1) + (lost ? " lost" : "") + "<br>" +
             fixed(difference.contrast, 2) + "</td>";
    };
    body += "<tr><th scope=\"row\"><span class=\"colour\">" +
            pairSwatch(colours[pair.first].rgb, colours[pair.second].rgb) + "<span>" +
            nameOf(colours[pair.first]) + "<br>" + nameOf(colours[pair.second]) +
            "</span></span></th>" + cell(pair.before, false);
    for (std::size_t v = 0; v < pair.after.size(); ++v) {
      body += cell(pair.after[v], isLostTo(finding, v));
    }
    body += "</tr>\n";
  }
  return "<details>\n<summary>All pairs: difference above, contrast below</summary>\n" +
         table("All pairs",
               "<th scope=\"col\">Pair</th><th scope=\"col\">as it is</th>" + viewerHeads(checked),
               body) +
         "</details>\n";
}

}  // namespace

std::string palettePart(const CheckedInput& checked, const std::string& heading,
                        const CheckLimits& limits) {
  std::string html = "<h3>" + heading + "</h3>\n" + coloursTable(checked, heading);
  for (const std::string& colour : checked.input.leftOut) {
    html +=
        "<p>Left out, because it is translucent: <code>" + escapeMarkup(colour) + "</code></p>\n";
  }
  if (checked.check.pairs.empty()) return html;
  html += "<h3>Findings</h3>\n";
  if (checked.check.findings.empty()) {
    html += "<p>None: whatever is told apart (from a difference of " + shortest(limits.apart) +
            ") stays so to every viewer.</p>\n";
  } else {
    html += "<ol class=\"findings\">\n";
    for (const Finding& finding : checked.check.findings) html += findingItem(checked, finding);
    html += "</ol>\n";
  }
  return html + pairsTable(checked);
}

}  // namespace tintora::cli
