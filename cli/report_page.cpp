#include "cli/report_page.h"

#include <algorithm>

#include "cli/check_formats.h"
#include "cli/report_palette.h"
#include "cli/text.h"
#include "report_assets.h"

namespace tintora::cli {

namespace {

std::string sectionId(std::size_t number) {
  return "input-" + std::to_string(number + 1);
}

std::string findingsText(const PaletteCheck& check) {
  const std::size_t count = check.findings.size();
  if (count == 0) return "no findings";
  return std::to_string(count) + (count == 1 ? " finding" : " findings");
}

std::string image(const ShownPicture& picture, const std::string& alt, std::uint32_t width,
                  std::uint32_t height, const std::string& attributes) {
  return "<img src=\"" + picture.address + "\" alt=\"" + escapeMarkup(alt) + "\" width=\"" +
         std::to_string(width) + "\" height=\"" + std::to_string(height) + "\"" + attributes + ">";
}

std::string altText(const std::string& name, const std::string& label) {
  return label == "original" ? name + ", original" : name + " as seen with " + label;
}

// Returns the wipe between the original and a simulation, hidden until the script makes it work.
std::string viewerPart(const ReportSection& section, const std::string& id) {
  const ReportPicture& picture = *section.picture;
  constexpr std::uint32_t leastWidth = 320;
  std::string html = "<div class=\"viewer\" style=\"max-width:" +
                     std::to_string(std::max(picture.width, leastWidth)) +
                     "px\" hidden>\n<fieldset>\n<legend>Compare the original with</legend>\n";
  const std::size_t chosen = picture.seen.size() > 3 ? 3 : picture.seen.size() - 1;
  for (std::size_t i = 0; i < picture.seen.size(); ++i) {
    html += "<label><input type=\"radio\" name=\"" + id + "-seen\" value=\"" + std::to_string(i) +
            "\"" + (i == chosen ? " checked" : "") + "> " + escapeMarkup(picture.seen[i].label) +
            "</label>\n";
  }
  const std::string size = "width=\"" + std::to_string(picture.width) + "\" height=\"" +
                           std::to_string(picture.height) + "\"";
  html +=
      "</fieldset>\n<div class=\"wipe\">\n<img class=\"under\" alt=\"\" " + size +
      ">\n<img class=\"over\" alt=\"\" " + size +
      ">\n<div class=\"edge\"></div>\n</div>\n"
      "<div class=\"wipe-labels\"><span>original</span><span class=\"seen-label\"></span></div>\n"
      "<input type=\"range\" min=\"0\" max=\"100\" value=\"50\" "
      "aria-label=\"Wipe between the original and the simulation\">\n</div>\n";
  return html;
}

std::string picturesPart(const ReportSection& section) {
  const ReportPicture& picture = *section.picture;
  const auto figure = [&](const ShownPicture& shown, const std::string& key) {
    return "<figure>" +
           image(shown, altText(section.name, shown.label), picture.width, picture.height,
                 " data-seen=\"" + key + "\" data-label=\"" + escapeMarkup(shown.label) + "\"") +
           "<figcaption>" + escapeMarkup(shown.label) + "</figcaption></figure>\n";
  };
  std::string html = "<h3>Original and simulations</h3>\n<div class=\"grid\">\n" +
                     figure(picture.original, "original");
  for (std::size_t i = 0; i < picture.seen.size(); ++i) {
    html += figure(picture.seen[i], std::to_string(i));
  }
  return html + "</div>\n";
}

// Returns rows of small pictures, the original first in each.
std::string stripsPart(const ReportSection& section, const std::string& heading,
                       const std::vector<PictureRow>& rows) {
  const ReportPicture& picture = *section.picture;
  const auto figure = [&](const std::string& type, const ShownPicture& shown) {
    const std::string label = shown.label == "original" ? shown.label : type + " " + shown.label;
    return "<figure>" +
           image(shown, altText(section.name, label), picture.width, picture.height, "") +
           "<figcaption>" + escapeMarkup(shown.label) + "</figcaption></figure>\n";
  };
  std::string html = "<h3>" + heading + "</h3>\n";
  for (const PictureRow& row : rows) {
    const std::string type(typeName(row.type));
    html += "<p>" + type + "</p>\n<div class=\"strip\">\n" + figure(type, picture.small);
    for (const ShownPicture& shown : row.pictures) html += figure(type, shown);
    html += "</div>\n";
  }
  return html;
}

std::string sectionPart(const ReportSection& section, const Report& report, std::size_t number) {
  const std::string id = sectionId(number);
  std::string html = "<section id=\"" + id + "\" aria-labelledby=\"" + id + "-name\">\n<h2 id=\"" +
                     id + "-name\">" + escapeMarkup(section.name) + "</h2>\n";
  if (section.picture) {
    html += viewerPart(section, id) + picturesPart(section) +
            stripsPart(section, "Severity steps", section.picture->severities) +
            stripsPart(section, "Algorithms, at 100%", section.picture->algorithms);
  }
  html += palettePart(section.checked, section.picture ? "Main colours" : "Colours",
                      report.options.limits);
  return html + "</section>\n";
}

std::string introduction(const Report& report) {
  const CheckLimits& limits = report.options.limits;
  return "<p>Simulated with " + escapeMarkup(labelOf(report.options.algorithm)) + " in " +
         std::string(lightName(lightOf(report.options))) +
         " light. Differences between colours are CIEDE2000: two colours count as told apart "
         "from " +
         shortest(limits.apart) + ", and as lost to a viewer below " + shortest(limits.lost) +
         ". Contrast is that of WCAG 2, 1 to 21.</p>\n";
}

std::string contents(const Report& report) {
  std::string html = "<nav aria-label=\"Contents\">\n<ul>\n";
  for (std::size_t i = 0; i < report.sections.size(); ++i) {
    const ReportSection& section = report.sections[i];
    html += "<li><a href=\"#" + sectionId(i) + "\">" + escapeMarkup(section.name) +
            "</a>: " + findingsText(section.checked.check) + "</li>\n";
  }
  return html + "</ul>\n</nav>\n";
}

}  // namespace

std::string formatReport(const Report& report) {
  const std::string title = escapeMarkup(report.title);
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      // Nothing may be fetched from anywhere.
      "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; img-src data:; "
      "style-src 'unsafe-inline'; script-src 'unsafe-inline'\">\n<title>" +
      title + "</title>\n<style>\n" + std::string(reportStyle) + "</style>\n</head>\n<body>\n" +
      "<header>\n<h1>" + title + "</h1>\n" + introduction(report) + contents(report) +
      "</header>\n<main>\n";
  for (std::size_t i = 0; i < report.sections.size(); ++i) {
    html += sectionPart(report.sections[i], report, i);
  }
  return html + "</main>\n<footer>Made by tintora-cli " TINTORA_VERSION ".</footer>\n<script>\n" +
         std::string(reportScript) + "</script>\n</body>\n</html>\n";
}

}  // namespace tintora::cli
