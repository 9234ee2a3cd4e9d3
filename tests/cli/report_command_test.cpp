#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <string>
#include <vector>

#include "cli/image_file.h"
#include "cli/orientation.h"
#include "tests/cli/image_samples.h"
#include "tests/cli/tool_run.h"

namespace tintora::cli {
namespace {

ToolRun report(const Words& arguments, const std::string& input = "") {
  Words words{"report"};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return runTool(words, input);
}

std::string textOf(const Bytes& bytes) {
  return {bytes.begin(), bytes.end()};
}

Bytes decodedBase64(const std::string& text) {
  const std::string digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  Bytes bytes;
  std::uint32_t bits = 0;
  int count = 0;
  for (const char c : text) {
    if (c == '=') break;
    bits = bits << 6U | static_cast<std::uint32_t>(digits.find(c));
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes.push_back(static_cast<std::uint8_t>(bits >> count));
  }
  return bytes;
}

// Returns the pictures of the page that have this alternative text.
std::vector<Image> picturesOf(const std::string& page, const std::string& alt) {
  std::vector<Image> pictures;
  const std::string mark = "\" alt=\"" + alt + "\"";
  for (std::size_t end = page.find(mark); end != std::string::npos;
       end = page.find(mark, end + 1)) {
    const std::size_t begin = page.rfind("base64,", end) + 7;
    pictures.push_back(decodeImage(decodedBase64(page.substr(begin, end - begin))));
  }
  return pictures;
}

TEST(Report, TellsWhatItLeavesOutAndWhereNoChangeHelps) {
  const TemporaryFolder folder;
  const std::string css = folder.write("a.css", "a { color: #f00; background: #abc8; top: #080 }");
  const ToolRun run = report({css, "--lost", "150", "-o", "-"});
  EXPECT_EQ(run.error, "");
  EXPECT_NE(run.output.find("Left out, because it is translucent: <code>#abc8</code>"),
            std::string::npos);
  EXPECT_NE(run.output.find("No change of one of the two alone was found that separates them."),
            std::string::npos);
}

TEST(Report, HoldsEachPictureAndWhatFilterMakesOfIt) {
  const TemporaryFolder folder;
  // Pictures with an alpha channel stand in the page as PNG, which is exact.
  const Image original = randomImage(61, 40, true, 7);
  const std::string path = folder.write("a.png", textOf(encodeImage(original, ImageFormat::Png)));
  const ToolRun run = report({path, "-o", "-"});
  ASSERT_EQ(run.status, 0) << run.error;
  EXPECT_EQ(run.error, "");
  // Large, and small in the rows of three types, two each.
  const std::vector<Image> originals = picturesOf(run.output, "a.png, original");
  ASSERT_EQ(originals.size(), 1U + 3U * 2U);
  for (const Image& shown : originals) EXPECT_EQ(shown.pixels, original.pixels);
  for (const std::string type : {"protan", "deutan", "tritan"}) {
    for (const std::string severity : {"60", "100"}) {
      const ToolRun filtered =
          runTool({"filter", "--mode", type, "--severity", severity, path, "-"});
      const Bytes file(filtered.output.begin(), filtered.output.end());
      const std::vector<Image> shown = picturesOf(
          run.output,
          std::string("a.png as seen with ").append(type).append(" ").append(severity).append("%"));
      // In the grid, and among the severity steps.
      ASSERT_EQ(shown.size(), 2U);
      for (const Image& each : shown) EXPECT_EQ(each.pixels, decodeImage(file).pixels);
    }
  }
  for (const std::string name : {"Judd 1948", "Machado et al. 2009", "Brettel et al. 1997"}) {
    EXPECT_EQ(picturesOf(run.output, "a.png as seen with tritan " + name).size(), 1U) << name;
  }
  // Each of the viewers can be compared with the original.
  Words choices;
  const std::regex choice("<input type=\"radio\"[^>]*> ([^<]*)</label>");
  for (std::sregex_iterator found(run.output.begin(), run.output.end(), choice), end; found != end;
       ++found) {
    choices.push_back((*found)[1]);
  }
  EXPECT_EQ(choices, (Words{"protan 60%", "protan 100%", "deutan 60%", "deutan 100%", "tritan 60%",
                            "tritan 100%"}));
}

TEST(Report, NamesOfPicturesStayWithinTheirAttributes) {
  const TemporaryFolder folder;
  const std::string path = folder.write(
      "a\" id=\"b&.png", textOf(encodeImage(randomImage(8, 8, true, 7), ImageFormat::Png)));
  const ToolRun run = report({path, "-o", "-"});
  ASSERT_EQ(run.status, 0) << run.error;
  EXPECT_EQ(picturesOf(run.output, "a&quot; id=&quot;b&amp;.png, original").size(), 7U);
}

TEST(Report, LargePicturesAreMadeSmallerByTheirLight) {
  const TemporaryFolder folder;
  Image stripes;
  stripes.width = 256;
  stripes.height = 64;
  stripes.hasAlpha = true;
  for (std::uint32_t i = 0; i < stripes.width * stripes.height; ++i) {
    const std::uint8_t value = i % 2 == 0 ? 255 : 0;
    // Transparent black must not darken the result.
    const bool upper = i < stripes.width * stripes.height / 2;
    const std::uint8_t alpha = upper || value == 255 ? 255 : 0;
    stripes.pixels.insert(stripes.pixels.end(), {value, value, value, alpha});
  }
  const std::string path = folder.write("a.png", textOf(encodeImage(stripes, ImageFormat::Png)));
  const Image shown =
      picturesOf(report({path, "--width", "128", "-o", "-"}).output, "a.png, original").front();
  EXPECT_EQ(shown.width, 128U);
  EXPECT_EQ(shown.height, 32U);
  // Half of the light of white is 188 on the encoded scale.
  const Bytes top(shown.pixels.begin(), shown.pixels.begin() + 4);
  const Bytes bottom(shown.pixels.end() - 4, shown.pixels.end());
  EXPECT_EQ(top, (Bytes{188, 188, 188, 255}));
  EXPECT_EQ(bottom, (Bytes{255, 255, 255, 128}));
}

TEST(Report, AnOddReductionKeepsTheMeanLight) {
  const TemporaryFolder folder;
  Image ramp;
  ramp.width = 100;
  ramp.height = 10;
  ramp.hasAlpha = true;
  for (std::uint32_t i = 0; i < ramp.width * ramp.height; ++i) {
    ramp.pixels.insert(ramp.pixels.end(), {90, 140, 200, 255});
  }
  const std::string path = folder.write("a.png", textOf(encodeImage(ramp, ImageFormat::Png)));
  const Image shown =
      picturesOf(report({path, "--width", "67", "-o", "-"}).output, "a.png, original").front();
  EXPECT_EQ(shown.width, 67U);
  EXPECT_EQ(shown.height, 7U);
  for (std::size_t i = 0; i < shown.pixels.size(); i += 4) {
    EXPECT_EQ((Bytes{shown.pixels.begin() + static_cast<std::ptrdiff_t>(i),
                     shown.pixels.begin() + static_cast<std::ptrdiff_t>(i) + 4}),
              (Bytes{90, 140, 200, 255}));
  }
}

// The eight orientations as the standard draws them: an F of 2 x 3 pixels, its rows and columns
// named by where the first row and the first column of the file are when it is shown.
TEST(Report, PicturesStandUpright) {
  const std::string shownRows[9] = {"",        "ab/cd/ef", "ba/dc/fe", "fe/dc/ba", "ef/cd/ab",
                                    "ace/bdf", "eca/fdb",  "fdb/eca",  "bdf/ace"};
  for (int orientation = 1; orientation <= 8; ++orientation) {
    Image image;
    image.width = 2;
    image.height = 3;
    for (const char letter : std::string("abcdef")) {
      const auto value = static_cast<std::uint8_t>(letter);
      image.pixels.insert(image.pixels.end(), {value, 0, value, 255});
    }
    image.exif = exifOf();
    image.exif.at(19) = static_cast<std::uint8_t>(orientation);
    const Image upright = uprightPicture(image);
    std::string rows;
    for (std::uint32_t y = 0; y < upright.height; ++y) {
      rows += y == 0 ? "" : "/";
      for (std::uint32_t x = 0; x < upright.width; ++x) {
        rows += static_cast<char>(upright.pixels[4 * (y * upright.width + x)]);
      }
    }
    EXPECT_EQ(rows, shownRows[orientation]) << orientation;
    EXPECT_TRUE(upright.exif.empty());
  }
}

TEST(Report, IsOnePageThatStandsAlone) {
  const TemporaryFolder folder;
  const std::string palette = folder.write("a.gpl", "GIMP Palette\n255 0 0 Red\n0 128 0 Green\n");
  const std::string picture =
      folder.write("b.jpg", textOf(encodeImage(smoothImage(300, 200), ImageFormat::Jpeg)));
  const std::string page = folder / "page.html";
  const ToolRun run = report({palette, "tomato", picture, "#123", "-o", page});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.output + run.error, "");
  const std::string html = readFile(page);
  EXPECT_EQ(html.rfind("<!DOCTYPE html>", 0), 0U);
  EXPECT_NE(html.find("</html>"), std::string::npos);
  EXPECT_EQ(html.find("http://"), std::string::npos);
  EXPECT_EQ(html.find("https://"), std::string::npos);
  // Each input makes a section, and all colours together make one at the end.
  std::vector<std::string> headings;
  const std::regex heading("<h2[^>]*>([^<]*)</h2>");
  for (std::sregex_iterator found(html.begin(), html.end(), heading), end; found != end; ++found) {
    headings.push_back((*found)[1]);
  }
  EXPECT_EQ(headings, (Words{"a.gpl", "b.jpg", "Colours"}));
  EXPECT_NE(html.find("<code>#ff6347</code>"), std::string::npos);
  EXPECT_EQ(folder.names(), (Words{"a.gpl", "b.jpg", "page.html"}));
}

TEST(Report, SaysThatAPaletteHasNoFindings) {
  const std::string none =
      "<h3>Findings</h3>\n<p>None: whatever is told apart (from a difference of 20) stays so to "
      "every viewer.</p>\n";
  const std::string html = report({"black", "white", "--apart", "20", "-o", "-"}).output;
  EXPECT_NE(html.find(none), std::string::npos) << html;
  EXPECT_EQ(report({"black", "-o", "-"}).output.find("Findings"), std::string::npos)
      << "there is no pair";
}

TEST(Report, HasATableOfEveryPair) {
  const std::string html = report({"#000", "#fff", "#f00", "-o", "-"}).output;
  const std::string table = html.substr(html.find("<summary>All pairs"));
  const auto place = [&](const std::string& first, const std::string& second) {
    return table.find("<code>" + first + "</code><br><code>" + second + "</code>");
  };
  EXPECT_LT(place("#000000", "#ffffff"), place("#000000", "#ff0000"));
  EXPECT_LT(place("#000000", "#ff0000"), place("#ffffff", "#ff0000"));
  EXPECT_NE(place("#ffffff", "#ff0000"), std::string::npos);
  // Nothing differs more than black and white.
  EXPECT_NE(table.find("<td class=\"number\">100.0<br>21.00</td>"), std::string::npos);
}

// The figures are those of tests/reference/colour_appearance.py, rounded.
TEST(Report, SaysHowFarTheColoursOfAFindingAreApart) {
  const std::string html =
      report({"--algorithm", "brettel1997", "#ff7f0e", "#2ca02c", "-o", "-"}).output;
  EXPECT_NE(html.find("difference 55.2</span>, <span class=\"number\">contrast 1.34</span>"),
            std::string::npos);
}

TEST(Report, ReadsStandardInput) {
  const ToolRun palette = report({"-", "-o", "-"}, "#ff0000 #008000");
  EXPECT_EQ(palette.status, 0);
  EXPECT_NE(palette.output.find("standard input"), std::string::npos);
  const Bytes png = encodeImage(randomImage(9, 9, true, 1), ImageFormat::Png);
  EXPECT_EQ(
      picturesOf(report({"-", "-o", "-"}, textOf(png)).output, "standard input, original").size(),
      7U);
}

TEST(Report, WhatCannotBeReadIsOneLineAndNothingIsWritten) {
  const TemporaryFolder folder;
  const std::string good = folder.write("a.gpl", "GIMP Palette\n255 0 0\n0 128 0\n");
  const std::string page = folder / "page.html";
  const auto broken = [&](const std::string& name, const std::string& contents) {
    return folder.write(name, contents);
  };
  expectRefused(report({good, broken("b.png", "\x89PNG\r\n\x1a\nxx"), "-o", page}), 1, "b.png");
  expectRefused(report({good, broken("c.txt", "nothing"), "-o", page}), 1, "c.txt");
  expectRefused(report({good, broken("d.json", "[3]"), "-o", page}), 1, "d.json");
  expectRefused(report({good, "no-such-file", "-o", page}), 2, "no-such-file");
  expectRefused(report({good, "-o", folder / "none/page.html"}), 1, "none/page.html");
  expectRefused(report({good, "-o", good}), 2, "a.gpl");
  expectRefused(report({"-o", page}), 2, "INPUT");
  expectRefused(report({good}), 2, "--output");
  expectRefused(report({good, "-o", page, "--width", "63"}), 2, "63");
  expectRefused(report({good, "-o", page, "--width", "4097"}), 2,
                "4097 is not between 64 and 4096");
  expectRefused(report({good, "-o", page, "--width", "9.5"}), 2, "9.5");
  expectRefused(report({good, "-o", page, "--severity", "x"}), 2, "\"x\"");
  expectRefused(runTool({"--mode", "tritan", "report", good, "-o", page}), 2, "--mode");
  EXPECT_EQ(folder.names(), (Words{"a.gpl", "b.png", "c.txt", "d.json"}));
  EXPECT_EQ(readFile(good), "GIMP Palette\n255 0 0\n0 128 0\n");
}

}  // namespace
}  // namespace tintora::cli
