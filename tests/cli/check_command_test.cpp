#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/image_file.h"
#include "tests/cli/tool_run.h"

namespace tintora {
namespace {

using Json = nlohmann::json;

constexpr int statusWithFindings = 3;

std::size_t linesIn(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

ToolRun check(const Words& arguments, const std::string& input = "") {
  Words words{"check"};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return runTool(words, input);
}

Json checkJson(Words arguments, const std::string& input = "") {
  arguments.insert(arguments.end(), {"--format", "json"});
  const ToolRun run = check(arguments, input);
  EXPECT_EQ(run.error, "");
  return Json::parse(run.output);
}

Words hexes(const Json& answer) {
  Words found;
  for (const Json& colour : answer["colours"]) found.push_back(colour["hex"]);
  return found;
}

// Returns a picture of stripes, each one pixel high.
std::string pngOf(const std::vector<std::vector<std::uint8_t>>& stripes) {
  cli::Image image;
  image.width = 10;
  image.height = static_cast<std::uint32_t>(stripes.size());
  image.hasAlpha = true;
  for (const auto& stripe : stripes) {
    for (std::uint32_t x = 0; x < image.width; ++x) {
      image.pixels.insert(image.pixels.end(), stripe.begin(), stripe.end());
    }
  }
  const auto bytes = cli::encodeImage(image, cli::ImageFormat::Png);
  return {bytes.begin(), bytes.end()};
}

TEST(Check, EndsWithStatusThreeIfThereAreFindingsAndElseWithZero) {
  EXPECT_EQ(check({"red", "green"}).status, statusWithFindings);
  EXPECT_EQ(check({"black", "white"}).status, 0);
  for (const std::string format : {"table", "json", "csv"}) {
    const ToolRun run = check({"red", "green", "--format", format});
    EXPECT_EQ(run.status, statusWithFindings);
    EXPECT_EQ(run.error, "");
    EXPECT_NE(run.output, "");
  }
}

TEST(Check, TakesColoursAndFilesTogetherAndEachColourOnce) {
  const TemporaryFolder folder;
  const std::string gimp = folder.write("a.gpl", "GIMP Palette\n255 0 0 Rot\n0 0 255 Blau\n");
  const std::string css = folder.write("a.css", "a { color: #123; --b: #0000ff }");
  const std::string json = folder.write("a.json", R"([{"name": "x", "hex": "#abcdef"}])");
  const Json answer = checkJson({"#F00", "tomato", gimp, css, json, "-"}, "#010203");
  EXPECT_EQ(hexes(answer),
            (Words{"#ff0000", "#ff6347", "#0000ff", "#112233", "#abcdef", "#010203"}));
  EXPECT_EQ(answer["colours"][0]["name"], "Rot");
  EXPECT_EQ(answer["colours"][1]["name"], "tomato");
  EXPECT_EQ(answer["colours"][2]["name"], "Blau");
  EXPECT_FALSE(answer["colours"][3].contains("name"));
  EXPECT_EQ(answer["pairs"].size(), 15U);
}

TEST(Check, TakesTheMainColoursOfPictures) {
  const TemporaryFolder folder;
  const std::string first =
      folder.write("1.png", pngOf({{0, 0, 255, 255}, {0, 0, 255, 255}, {0, 128, 0, 255}}));
  const std::string second = folder.write("2.png", pngOf({{255, 0, 0, 255}, {9, 9, 9, 0}}));
  const Json answer = checkJson({"--image", first, "--image", second});
  EXPECT_EQ(hexes(answer), (Words{"#ff0000", "#008000", "#0000ff"}));
  EXPECT_EQ(answer["colours"][0]["name"], "67%");
  expectRefused(check({"--image", folder.write("3.png", pngOf({{1, 2, 3, 0}}))}), 1, "3.png");
  expectRefused(check({"--image", folder.write("4.png", "no picture")}), 1, "4.png");
  expectRefused(check({first}), 1, "--image");
}

TEST(Check, TakesAsManyColoursOfAPictureAsAskedFor) {
  const TemporaryFolder folder;
  const std::string picture = folder.write(
      "1.png", pngOf({{0, 0, 255, 255}, {0, 128, 0, 255}, {255, 0, 0, 255}, {255, 255, 255, 255}}));
  EXPECT_EQ(hexes(checkJson({"--image", picture})).size(), 4U);
  EXPECT_EQ(hexes(checkJson({"--image", picture, "--image-colours", "3"})).size(), 3U);
  EXPECT_EQ(hexes(checkJson({"--image", picture, "--image-colors", "2"})).size(), 2U);
}

TEST(Check, RefusesMoreColoursThanAPaletteMayHave) {
  Words colours;
  for (int i = 0; i <= 1024; ++i) {
    const std::string digits = std::to_string(100000 + i);
    colours.push_back("#" + digits);
  }
  expectRefused(check(colours), 2, "more than 1024 colours");
  const TemporaryFolder folder;
  const std::string file = folder.write("many.json", Json(colours).dump());
  expectRefused(check({file}), 1, "more than 1024 colours");
}

TEST(Check, NamesEachViewer) {
  const Json all = checkJson({"red", "green"});
  EXPECT_EQ(all["algorithm"], "judd");
  EXPECT_EQ(all["light"], "encoded");
  EXPECT_EQ(all["apart"], 15.0);
  EXPECT_EQ(all["lost"], 8.0);
  const auto viewers = [](const Json& answer) {
    Words names;
    for (const Json& after : answer["pairs"][0]["after"]) {
      names.push_back(after["deficiency"].get<std::string>() + after["severity"].dump());
    }
    return names;
  };
  EXPECT_EQ(viewers(all), (Words{"protan60.0", "protan100.0", "deutan60.0", "deutan100.0",
                                 "tritan60.0", "tritan100.0"}));
  const Json some =
      checkJson({"red", "green", "--deficiency", "tritan,protan", "--severity", "29,+5.5",
                 "--algorithm", "brettel1997", "--apart", "20", "--lost", "5"});
  EXPECT_EQ(some["algorithm"], "brettel1997");
  EXPECT_EQ(some["light"], "linear");
  EXPECT_EQ(some["apart"], 20.0);
  EXPECT_EQ(some["lost"], 5.0);
  EXPECT_EQ(viewers(some), (Words{"tritan29.0", "tritan5.5", "protan29.0", "protan5.5"}));
}

TEST(Check, TheLightChangesTheVerdict) {
  const auto after = [](const std::string& light) {
    return checkJson({"red", "green", "--light", light})["pairs"][0]["after"][1]["ciede2000"]
        .get<double>();
  };
  EXPECT_NE(after("encoded"), after("linear"));
}

TEST(Check, ASuggestionPassesTheCheckItself) {
  const Json answer = checkJson({"red", "green"});
  ASSERT_EQ(answer["findings"].size(), 1U);
  const Json& suggestion = answer["findings"][0]["suggestion"];
  Words colours{"red", "green"};
  colours.at(suggestion["colour"].get<std::size_t>()) = suggestion["to"];
  // The change alone is a palette of two colours, which the check compares too.
  const ToolRun change =
      runTool({"check", suggestion["from"], suggestion["to"], "--format", "json"});
  EXPECT_EQ(suggestion["change_ciede2000"],
            Json::parse(change.output)["pairs"][0]["before"]["ciede2000"]);
  EXPECT_EQ(check(colours).status, 0);
  const Json pair = checkJson(colours)["pairs"][0];
  EXPECT_EQ(suggestion["before"], pair["before"]);
  EXPECT_EQ(suggestion["after"], pair["after"]);
}

TEST(Check, CsvHasARowForEachPairAndViewer) {
  const TemporaryFolder folder;
  const std::string palette =
      folder.write("a.gpl", "GIMP Palette\n255 0 0 Red, \"warm\"\n0 128 0\n0 0 0\n");
  const std::string text = check({palette, "--format", "csv"}).output;
  EXPECT_EQ(linesIn(text), 1U + 3U * 6U);
  EXPECT_EQ(text.rfind("first,first_name,second,second_name,deficiency,severity,", 0), 0U);
  EXPECT_NE(text.find("\n#ff0000,\"Red, \"\"warm\"\"\",#008000,,deutan,100,"), std::string::npos);
  const std::string findings = check({palette, "--format", "csv", "--only-findings"}).output;
  EXPECT_EQ(linesIn(findings), 1U + 6U);
}

TEST(Check, TheTableShowsEveryPairAndWhatIsLost) {
  const ToolRun run = check({"red", "green", "black"});
  for (const std::string part :
       {"3 colours, 3 pairs; Judd 1948 in encoded light", "CIEDE2000", "contrast", "1 finding\n",
        "#ff0000 red and #008000 green", "lost to deutan 100%", "suggestion: #"}) {
    EXPECT_NE(run.output.find(part), std::string::npos) << part;
  }
  EXPECT_EQ(run.output.find('\x1b'), std::string::npos);
  for (std::size_t from = 0; from < run.output.size();) {
    const std::size_t end = run.output.find('\n', from);
    const std::string line = run.output.substr(from, end - from);
    const bool mayBeLong = line.find("suggestion") != std::string::npos;
    EXPECT_TRUE(mayBeLong || line.size() <= 80U) << line;
    EXPECT_TRUE(line.empty() || line.back() != ' ') << line;
    from = end + 1;
  }
  EXPECT_NE(check({"black", "white"}).output.find("No findings"), std::string::npos);
}

// The figures are those of tests/reference/colour_appearance.py, rounded.
TEST(Check, TheTableHasAColumnForEachViewer) {
  const std::string head =
      "2 colours, 1 pair; Brettel et al. 1997 in linear light\n"
      "CIEDE2000: told apart from 15, lost below 8\n"
      "\n"
      "Colours\n"
      "   1  #ff7f0e\n"
      "   2  #2ca02c\n"
      "\n"
      "Pairs                            protan  protan  deutan  deutan  tritan  tritan\n"
      "                         normal     60%    100%     60%    100%     60%    100%\n"
      "   1  #ff7f0e  CIEDE2000   55.2    24.6     1.8*   27.1    14.1    53.7    51.1\n"
      "   2  #2ca02c  contrast    1.34    1.10    1.04    1.48    1.58    1.33    1.32\n"
      "\n"
      "1 finding\n"
      "  #ff7f0e and #2ca02c: 55.2 apart\n"
      "    lost to protan 100%   1.8\n"
      "    suggestion: #";
  const std::string table =
      check({"--algorithm", "brettel1997", "--only-findings", "#ff7f0e", "#2ca02c"}).output;
  EXPECT_EQ(table.substr(0, head.size()), head);
}

TEST(Check, ColoursAreShownWhereTheTerminalHasThem) {
  ASSERT_EQ(setenv("COLORTERM", "truecolor", 1), 0);
  unsetenv("NO_COLOR");
  const std::string red = "\x1b[48;2;255;0;0m";
  EXPECT_EQ(check({"red", "green"}).output.find('\x1b'), std::string::npos);
  EXPECT_NE(check({"red", "green", "--swatches", "always"}).output.find(red), std::string::npos);
  EXPECT_NE(runToolOnTerminal({"check", "red", "green"}, true).error.find(red), std::string::npos);
  EXPECT_EQ(
      runToolOnTerminal({"check", "red", "green", "--swatches", "never"}, true).error.find('\x1b'),
      std::string::npos);
  ASSERT_EQ(setenv("NO_COLOR", "1", 1), 0);
  EXPECT_EQ(runToolOnTerminal({"check", "red", "green"}, true).error.find('\x1b'),
            std::string::npos);
  unsetenv("NO_COLOR");
  unsetenv("COLORTERM");
  EXPECT_EQ(runToolOnTerminal({"check", "red", "green"}, true).error.find('\x1b'),
            std::string::npos);
}

TEST(Check, NamesFromFilesDoNotSteerTheTerminal) {
  const TemporaryFolder folder;
  const std::string palette =
      folder.write("a.gpl", "GIMP Palette\n255 0 0 \x1b[2Jred\x07\n0 0 255 caf\xE9 \xC2\x9B\n");
  const std::string text = check({palette}).output;
  EXPECT_EQ(text.find('\x1b'), std::string::npos);
  EXPECT_EQ(text.find('\x07'), std::string::npos);
  EXPECT_EQ(text.find("\xC2\x9B"), std::string::npos);
  EXPECT_NE(text.find("[2Jred"), std::string::npos);
}

TEST(Check, TranslucentColoursAreReported) {
  const TemporaryFolder folder;
  const std::string css = folder.write("a.css", "a { color: #123; background: #abc8; top: #fff }");
  EXPECT_EQ(checkJson({css})["left_out"], Json::parse("[\"#abc8\"]"));
  EXPECT_NE(check({css}).output.find("translucent: #abc8"), std::string::npos);
}

TEST(Check, WrongArgumentsAreOneLineAndStatusTwo) {
  const struct {
    Words arguments;
    std::string mention;
  } cases[] = {
      {{}, "quotes"},
      {{"red"}, "two different colours"},
      {{"red", "#f00"}, "two different colours"},
      {{"red", "no-such-file"}, "\"no-such-file\""},
      {{"red", "#12"}, "\"#12\""},
      {{"red", "blue", "--severity", "101"}, "101"},
      {{"red", "blue", "--severity", "60,"}, "\"\""},
      {{"red", "blue", "--severity", "nan"}, "nan"},
      {{"red", "blue", "--deficiency", "normal"}, "\"normal\""},
      {{"red", "blue", "--algorithm", "brettel"}, "\"brettel\""},
      {{"red", "blue", "--light", "bright"}, "\"bright\""},
      {{"red", "blue", "--light", "encoded", "--algorithm", "brettel1997"}, "encoded"},
      {{"red", "blue", "--apart", "-1"}, "-1"},
      {{"red", "blue", "--lost", "many"}, "\"many\""},
      {{"red", "blue", "--format", "xml"}, "\"xml\""},
      {{"red", "blue", "--swatches", "some"}, "\"some\""},
      {{"red", "blue", "--image-colours", "1"}, "1"},
      {{"red", "blue", "--image-colours", "2.5"}, "2.5"},
      {{"red", "blue", "--image"}, "--image"},
      {{"red", "blue", "--daltonize"}, "--daltonize"},
  };
  for (const auto& [arguments, mention] : cases) {
    SCOPED_TRACE(mention);
    expectRefused(check(arguments), 2, mention);
  }
}

TEST(Check, OptionsOfATransformAreNotTakenBeforeIt) {
  expectRefused(runTool({"--severity", "50", "check", "red", "blue"}), 2, "--severity");
  expectRefused(runTool({"--daltonize", "check", "red", "blue"}), 2, "--daltonize");
}

TEST(Check, FilesWithoutAPaletteAreOneLineAndStatusOne) {
  const TemporaryFolder folder;
  expectRefused(check({folder.write("a.gpl", "GIMP Palette\nred\n")}), 1, "a.gpl: line 2");
  expectRefused(check({folder.write("a.json", "[1]")}), 1, "a.json: entry 1");
  expectRefused(check({folder.write("a.txt", "nothing")}), 1, "a.txt: it holds no colour");
  expectRefused(check({folder.write("empty", "")}), 1, "empty: it holds no colour");
  expectRefused(check({folder.path.string()}), 1, folder.path.string());
  expectRefused(check({"-"}, std::string("a\0b", 3)), 1, "standard input: this is no text file");
  expectRefused(check({folder.write("large.txt", std::string(9 << 20, ' '))}), 1, "large.txt");
}

}  // namespace
}  // namespace tintora
