#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/cli/tool_run.h"

namespace tintora {
namespace {

TEST(CommandLine, WrongArgumentsAreOneLineThatNamesTheValueAndStatusTwo) {
  const struct {
    Words arguments;
    std::string mention;
  } cases[] = {
      {{}, "subcommand"},
      {{"paint"}, "paint"},
      {{"matrix", "--colour"}, "--colour"},
      {{"matrix", "extra"}, "extra"},
      {{"list", "matrix"}, "matrix"},
      {{"matrix", "--mode"}, "--mode"},
      {{"matrix", "--mode", "green"}, "\"green\""},
      {{"matrix", "--mode", "Protan"}, "\"Protan\""},
      {{"matrix", "--algorithm", "judd1948"}, "\"judd1948\""},
      {{"matrix", "--format", "yaml"}, "\"yaml\""},
      {{"matrix", "--filter-colour", "orange"}, "\"orange\""},
      {{"matrix", "--swap", "blue-red"}, "\"blue-red\""},
      {{"matrix", "--severity", "100.1"}, "100.1"},
      {{"matrix", "--severity", "-1"}, "-1"},
      {{"matrix", "--severity", "nan"}, "nan"},
      {{"matrix", "--severity", "inf"}, "inf"},
      {{"matrix", "--severity", "1e999"}, "1e999"},
      {{"matrix", "--severity", "50%"}, "\"50%\""},
      {{"matrix", "--severity", ""}, "\"\""},
      {{"matrix", "--severity", "0x10"}, "\"0x10\""},
      {{"matrix", "--brightness", "-101"}, "-101"},
      {{"matrix", "--brightness", "101"}, "101"},
      {{"matrix", "--contrast", "-0.5"}, "-0.5"},
      {{"matrix", "--saturation", "101"}, "101"},
      {{"matrix", "--custom-index", "-1"}, "-1"},
      {{"matrix", "--custom-index", "1.5"}, "1.5"},
      {{"matrix", "--mode", "custom"}, "--custom-file"},
      {{"matrix", "--mode", "protan", "--mode", "deutan"}, "--mode"},
      {{"curves", "--mode", "invert"}, "--mode"},
      {{"filter"}, "PATH is required"},
      {{"report", "-o", "page.html"}, "INPUT is required"},
      {{"report", "a.png"}, "--output is required"},
      {{"filter", "a.png"}, "OUTPUT"},
      {{"filter", "a.png", "b.png", "c.png"}, "OUTPUT"},
      {{"filter", "a.png", "b.bmp"}, "b.bmp"},
      {{"filter", "a.png", "b"}, "b: "},
      {{"filter", "a.png", "b.png", "--output-format", "gif"}, "\"gif\""},
      {{"filter", "-", "--output-dir", "d"}, "-: "},
      {{"filter", "x/a.png", "y/a.png", "--output-dir", "d"}, "a.png"},
      {{"filter", "a.png", "b.png", "--max-pixels", "0"}, "--max-pixels"},
      {{"list", "everything"}, "everything"},
      {{"matrix", "--severity", "+-5"}, "\"+-5\""},
      {{"matrix", "--severity", "+"}, "\"+\""},
      {{"matrix", "--light", "bright"}, "\"bright\""},
      {{"filter", "--filter-colour", "red", "a.png", "b.png"}, "--filter-colour"},
      {{"filter", "--filter-color", "red", "a.png", "b.png"}, "--filter-colour"},
      {{"matrix", "--mode", "invert", "--algorithm", "yang"}, "--algorithm"},
      {{"matrix", "--mode", "filter", "--daltonize"}, "--daltonize"},
      {{"matrix", "--mode", "custom", "--inverse"}, "--inverse"},
      {{"matrix", "--mode", "protan", "--swap", "red-blue"}, "--swap"},
      {{"matrix", "--mode", "contrast", "--brightness", "5"}, "--brightness"},
      {{"matrix", "--mode", "brightness", "--contrast", "5"}, "--contrast"},
      {{"matrix", "--mode", "swap", "--saturation", "5"}, "--saturation"},
      {{"matrix", "--custom-index", "1"}, "--custom-index"},
      {{"matrix", "--custom-file", "f"}, "--custom-file"},
      {{"matrix", "--algorithm", "brettel1997"}, "brettel1997"},
      {{"filter", "--algorithm", "brettel1997", "--light", "encoded", "a.png", "b.png"},
       "--light encoded"},
      {{"filter", "--algorithm", "brettel1997", "--inverse", "a.png", "b.png"}, "--inverse"},
      {{"curves", "--light", "linear"}, "--light"},
  };
  for (const auto& [arguments, mention] : cases) {
    std::string words;
    for (const std::string& argument : arguments) words += argument + ' ';
    SCOPED_TRACE(words);
    expectRefused(runTool(arguments), 2, mention);
  }
}

TEST(CommandLine, HelpAndVersionGoToStandardOutputWithStatusZero) {
  for (const Words& arguments :
       {Words{"--help"}, {"matrix", "--help"}, {"filter", "--help"}, {"--version"}}) {
    const ToolRun run = runTool(arguments);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.error, "");
    EXPECT_NE(run.output, "");
  }
  EXPECT_TRUE(std::regex_match(runTool({"--version"}).output,
                               std::regex("tintora-cli \\d+\\.\\d+\\.\\d+\n")));
}

TEST(CommandLine, HelpShowsWhatACommandIsMadeForBeforeItsDetails) {
  const std::vector<std::pair<std::string, Words>> cases{
      {"check",
       {"--help", "--image", "--deficiency", "--severity", "--algorithm", "--light", "--apart",
        "--lost", "--image-colours", "--format", "--swatches", "--only-findings"}},
      {"filter",
       {"--help",          "--mode",       "--severity",      "--algorithm",    "--light",
        "--daltonize",     "--inverse",    "--filter-colour", "--swap",         "--brightness",
        "--contrast",      "--saturation", "--custom-file",   "--custom-index", "--output-dir",
        "--output-format", "--quality",    "--jobs",          "--max-pixels",   "--force"}},
  };
  const std::regex option("^  (?:-h,)?(--[a-z-]+).*");
  for (const auto& [command, options] : cases) {
    Words shown;
    std::smatch found;
    for (const std::string& line : linesOf(runTool({command, "--help"}).output)) {
      if (std::regex_match(line, found, option)) shown.push_back(found[1]);
    }
    EXPECT_EQ(shown, options) << command;
  }
}

TEST(CommandLine, OptionsMayStandBeforeTheCommandToo) {
  EXPECT_EQ(runTool({"--mode", "tritan", "--severity", "35", "matrix"}).output,
            runTool({"matrix", "--severity=35", "--mode=tritan"}).output);
}

TEST(CommandLine, ANumberMayHaveAPlusSign) {
  EXPECT_EQ(runTool({"matrix", "--mode", "brightness", "--brightness", "+25"}).output,
            runTool({"matrix", "--mode", "brightness", "--brightness", "25"}).output);
  EXPECT_EQ(runTool({"matrix", "--severity", "+.5"}).output,
            runTool({"matrix", "--severity", "0.5"}).output);
}

TEST(CommandLine, AmericanSpellingsAreUnderstood) {
  EXPECT_EQ(runTool({"matrix", "--mode", "grayscale"}).output,
            runTool({"matrix", "--mode", "greyscale"}).output);
  const ToolRun run = runTool({"matrix", "--mode", "filter", "--filter-color", "red"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.output, runTool({"matrix", "--mode", "filter", "--filter-colour", "red"}).output);
}

TEST(CommandLine, ListNamesEverythingTheOptionsTake) {
  const ToolRun run = runTool({"list"});
  EXPECT_EQ(run.status, 0);
  for (const std::string name :
       {"protan",     "deutan",     "tritan",    "normal",     "filter",      "greyscale",
        "invert",     "brightness", "contrast",  "saturation", "swap",        "circadian",
        "red-filter", "custom",     "judd",      "yang",       "machado",     "vienot1997",
        "vienot1999", "red",        "green",     "blue",       "yellow",      "magenta",
        "cyan",       "red-blue",   "red-green", "green-blue", "brettel1997", "encoded",
        "linear"}) {
    EXPECT_TRUE(std::regex_search(run.output, std::regex("\n  " + name + " +[^ ]"))) << name;
  }
  Words headings;
  for (const std::string& line : linesOf(run.output)) {
    if (!line.starts_with(' ')) headings.push_back(line);
  }
  EXPECT_EQ(headings,
            (Words{"Modes (--mode)", "Simulation algorithms (--algorithm)", "Light (--light)",
                   "Colour filters (--filter-colour)", "Colour swaps (--swap)"}));
  // The descriptions of each list begin in one column.
  EXPECT_NE(run.output.find("\n  tritan      short-wave deficient\n"), std::string::npos);
  EXPECT_NE(run.output.find("\n  brightness  brightness; --brightness\n"), std::string::npos);
  EXPECT_NE(run.output.find("\n  vienot1997  Viénot"), std::string::npos);
  for (const std::string source :
       {"Judd 1948", "Yang, Ro, Wong & Lee 2008", "Machado, Oliveira & Fernandes 2009",
        "Viénot, Brettel & Mollon 1997", "Viénot, Brettel & Mollon 1999"}) {
    EXPECT_NE(run.output.find(source), std::string::npos) << source;
  }
}

// 3 x 3 of the effect matrix of Judd 1948, protan, 50%: [input][output].
const std::vector<std::vector<float>> juddProtanHalf{{0.56F, 0.06F, 0, 0, 0},
                                                     {0.44F, 0.94F, 0, 0, 0},
                                                     {0, 0, 1, 0, 0},
                                                     {0, 0, 0, 1, 0},
                                                     {0, 0, 0, 0, 1}};
const Words juddProtanHalfOptions{"--mode", "protan", "--severity", "50"};

TEST(Matrix, TextShowsTheTitleAndFiveRows) {
  const auto lines = linesOf(runTool(Words{"matrix"} + juddProtanHalfOptions).output);
  ASSERT_EQ(lines.size(), 6U);
  EXPECT_EQ(lines[0], " Simulation - Protanomalous 50% severity");
  for (std::size_t row = 0; row < 5; ++row) {
    std::istringstream numbers(lines[row + 1]);
    for (std::size_t column = 0; column < 5; ++column) {
      float value = -1;
      numbers >> value;
      EXPECT_EQ(value, juddProtanHalf[row][column]) << row << ", " << column;
    }
    std::string more;
    EXPECT_FALSE(numbers >> more);
  }
}

TEST(Matrix, CsvHoldsTheTitleAndFiveRows) {
  const auto lines =
      linesOf(runTool(Words{"matrix", "--format", "csv"} + juddProtanHalfOptions).output);
  ASSERT_EQ(lines.size(), 6U);
  EXPECT_EQ(lines[0], "title,\" Simulation - Protanomalous 50% severity\"");
  for (std::size_t row = 0; row < 5; ++row) {
    std::istringstream fields(lines[row + 1]);
    std::string field;
    for (std::size_t column = 0; column < 5; ++column) {
      ASSERT_TRUE(std::getline(fields, field, ','));
      EXPECT_EQ(std::strtof(field.c_str(), nullptr), juddProtanHalf[row][column]);
    }
    EXPECT_FALSE(std::getline(fields, field, ','));
  }
}

TEST(Matrix, JsonReadsBackToTheSameFloatsAndDoubles) {
  const ToolRun run = runTool(Words{"matrix", "--format", "json"} + juddProtanHalfOptions);
  const auto json = nlohmann::json::parse(run.output);
  EXPECT_EQ(json["title"], " Simulation - Protanomalous 50% severity");
  EXPECT_EQ(json["effect_matrix"].get<std::vector<std::vector<float>>>(), juddProtanHalf);
  // Read as doubles, the entries are the floats, not decimals near them.
  EXPECT_EQ(json["effect_matrix"][0][0].get<double>(), static_cast<double>(0.56F));
  const std::vector<std::vector<double>> rows{
      {1 - 0.88 * 0.5, 0.88 * 0.5, 0}, {0.12 * 0.5, 1 - 0.12 * 0.5, 0}, {0, 0, 1}};
  EXPECT_EQ(json["simulation_matrix"].get<std::vector<std::vector<double>>>(), rows);
  EXPECT_EQ(json["shown_matrix"].get<std::vector<std::vector<double>>>(), rows);
}

TEST(Matrix, JsonShowsTheSimulationMatricesOfSimulationsOnly) {
  for (const std::string mode : {"protan", "deutan", "tritan", "normal"}) {
    const auto json =
        nlohmann::json::parse(runTool({"matrix", "--format", "json", "--mode", mode}).output);
    EXPECT_TRUE(json.contains("simulation_matrix") && json.contains("shown_matrix")) << mode;
  }
  for (const std::string mode : {"filter", "greyscale", "invert", "brightness", "contrast",
                                 "saturation", "swap", "circadian", "red-filter"}) {
    const auto json =
        nlohmann::json::parse(runTool({"matrix", "--format", "json", "--mode", mode}).output);
    EXPECT_FALSE(json.contains("simulation_matrix") || json.contains("shown_matrix")) << mode;
  }
}

TEST(Matrix, SvgIsAFilterWhoseRowsAreTheOutputChannels) {
  const ToolRun run =
      runTool({"matrix", "--format", "svg", "--mode", "brightness", "--brightness", "-25"});
  EXPECT_EQ(run.status, 0);
  std::smatch values;
  ASSERT_TRUE(std::regex_search(
      run.output, values, std::regex("<feColorMatrix type=\"matrix\" values=\"([^\"]*)\"/>")));
  const float brightness[] = {1, 0, 0, 0, -0.25F, 0, 1, 0, 0, -0.25F,
                              0, 0, 1, 0, -0.25F, 0, 0, 0, 1, 0};
  std::istringstream numbers(values[1]);
  for (const float expected : brightness) {
    float value = -9;
    ASSERT_TRUE(numbers >> value);
    EXPECT_EQ(value, expected);
  }
  EXPECT_NE(run.output.find("color-interpolation-filters=\"sRGB\""), std::string::npos);
  EXPECT_NE(run.output.find("xmlns=\"http://www.w3.org/2000/svg\""), std::string::npos);
}

TEST(Matrix, TheLightIsNamedInJsonAndSvgAndLeavesTheMatrixAlone) {
  const Words linear = Words{"--light", "linear"} + juddProtanHalfOptions;
  const Words svg{"matrix", "--format", "svg"};
  EXPECT_NE(runTool(svg + linear).output.find("color-interpolation-filters=\"linearRGB\""),
            std::string::npos);
  EXPECT_NE(
      runTool(svg + juddProtanHalfOptions).output.find("color-interpolation-filters=\"sRGB\""),
      std::string::npos);
  const Words json{"matrix", "--format", "json"};
  const auto inLight = nlohmann::json::parse(runTool(json + linear).output);
  const auto encoded = nlohmann::json::parse(runTool(json + juddProtanHalfOptions).output);
  EXPECT_EQ(inLight["light"], "linear");
  EXPECT_EQ(encoded["light"], "encoded");
  EXPECT_EQ(inLight["effect_matrix"], encoded["effect_matrix"]);
}

TEST(Matrix, SvgEscapesTheTitle) {
  const TemporaryFolder folder;
  const std::string file = folder.write("c.txt", "a<b & c>\x01\n1 0 0 0\n0 1 0 0\n0 0 1 0\n");
  const ToolRun run =
      runTool({"matrix", "--format", "svg", "--mode", "custom", "--custom-file", file});
  EXPECT_NE(run.output.find("<title>a&lt;b &amp; c&gt; </title>"), std::string::npos);
}

TEST(Matrix, EntriesThatAreNotFiniteAreRefusedWhereTheFormatCannotHoldThem) {
  const TemporaryFolder folder;
  const std::string file = folder.write("c.txt", "far\n1 0 0 0\n0 1e999 0 0\n0 0 1 0\n");
  const Words options{"--mode", "custom", "--custom-file", file};
  for (const std::string format : {"json", "svg"}) {
    expectRefused(runTool(Words{"matrix", "--format", format} + options), 1, "inf");
  }
  EXPECT_NE(runTool(Words{"matrix"} + options).output.find("inf"), std::string::npos);
  EXPECT_NE(runTool(Words{"matrix", "--format", "csv"} + options).output.find("inf"),
            std::string::npos);
}

const std::string threeEntries =
    "First\n1 0 0 0\n0 1 0 0\n0 0 1 0\n"
    "$Second\n0 0 1 0\n0 1 0 0\n1 0 0 0\n"
    "Vi\xE9not\n1 0 0 0.5\n0 1 0 0\n0 0 1 0\n";

TEST(CustomFile, EntriesAreChosenByTheirIndexAndStrengthened) {
  const TemporaryFolder folder;
  const std::string file = folder.write("c.txt", threeEntries);
  const auto title = [&](const std::string& index) {
    return linesOf(runTool({"matrix", "--mode", "custom", "--custom-file", file, "--custom-index",
                            index, "--severity", "60"})
                       .output)[0];
  };
  EXPECT_EQ(title("0"), "First");
  EXPECT_EQ(title("1"), "Second   60% (mouse-wheel adjusts %)");
  EXPECT_EQ(title("2"), "Viénot");
}

TEST(CustomFile, NamesInUtf8StayAsTheyAre) {
  const TemporaryFolder folder;
  const std::string file = folder.write("c.txt", "Viénot 日本\n1 0 0 0\n0 1 0 0\n0 0 1 0\n");
  const auto json = nlohmann::json::parse(
      runTool({"matrix", "--format", "json", "--mode", "custom", "--custom-file", file}).output);
  EXPECT_EQ(json["title"], "Viénot 日本");
}

TEST(CustomFile, TheLineThatEndsTheReadingIsNamed) {
  const TemporaryFolder folder;
  const struct {
    std::string text;
    std::string mention;
  } cases[] = {
      {threeEntries + "Fourth\n1 0 0\n0 1 0 0\n0 0 1 0\n", "line 14: expected 4 numbers, found 3"},
      {threeEntries + "Fourth\n1 0 0 0\n0 1 0 0 0\n0 0 1 0\n",
       "line 15: expected 4 numbers, found 5"},
      {threeEntries + "Fourth\n1 0 0 0\n0 1 0 0\n0 x 1 0\n", "line 16: \"x\" is not a number"},
      {threeEntries + "Fourth\n1 0 0 0\n0 1 0 0\n", "line 16: expected 4 numbers, found 0"},
      {threeEntries + "\nFourth\n1 0 0 0\n0 1 0 0\n0 0 1 0\n",
       "line 14: expected 4 numbers, found 1"},
  };
  for (const auto& [text, mention] : cases) {
    SCOPED_TRACE(mention);
    const std::string file = folder.write("c.txt", text);
    expectRefused(runTool({"matrix", "--mode", "custom", "--custom-file", file}), 1,
                  "c.txt: " + mention);
  }
}

TEST(CustomFile, BlankLinesAtTheEndAreNoFault) {
  const TemporaryFolder folder;
  const std::string file = folder.write("c.txt", threeEntries + "\n \t\n\r\n");
  EXPECT_EQ(runTool({"matrix", "--mode", "custom", "--custom-file", file}).status, 0);
}

TEST(CustomFile, AMissingEmptyOrTooShortFileIsRefused) {
  const TemporaryFolder folder;
  const Words options{"matrix", "--mode", "custom", "--custom-file"};
  expectRefused(runTool(options + Words{folder / "none.txt"}), 1, "none.txt");
  expectRefused(runTool(options + Words{folder.path}), 1, folder.path);
  expectRefused(runTool(options + Words{folder.write("e.txt", "")}), 1,
                "e.txt: holds no transform");
  expectRefused(
      runTool(options + Words{folder.write("c.txt", threeEntries), "--custom-index", "3"}), 2,
      "--custom-index: 3");
}

TEST(Curves, OneRowPerNanometreWithTheOpponentCurvesOfTheCones) {
  const auto lines = linesOf(runTool({"curves", "--mode", "deutan", "--severity", "100"}).output);
  ASSERT_EQ(lines.size(), 402U);
  EXPECT_EQ(lines[0], "wavelength_nm,L,M,S,achromatic,yellow_blue,red_green");
  double largest[3] = {0, 0, 0};
  for (std::size_t i = 0; i < 401; ++i) {
    std::vector<double> row;
    std::istringstream fields(lines[i + 1]);
    for (std::string field; std::getline(fields, field, ',');) row.push_back(std::stod(field));
    ASSERT_EQ(row.size(), 7U);
    EXPECT_EQ(row[0], 360.0 + static_cast<double>(i));
    const double L = row[1];
    const double M = row[2];
    const double S = row[3];
    EXPECT_EQ(L, M) << "the deuteranope's cones are one";
    EXPECT_NEAR(row[4], 0.6 * L + 0.4 * M, 1e-15);
    EXPECT_NEAR(row[5], 0.24 * L + 0.105 * M - 0.7 * S, 1e-15);
    EXPECT_NEAR(row[6], 1.2 * L - 1.6 * M + 0.4 * S, 1e-15);
    for (std::size_t c = 0; c < 3; ++c) largest[c] = std::max(largest[c], row[c + 1]);
  }
  for (const double peak : largest) EXPECT_EQ(peak, 1.0);
}

TEST(Curves, DoNotDependOnTheAlgorithmThatShowsTheScreen) {
  const Words options{"curves", "--mode", "protan", "--severity", "40", "--algorithm"};
  EXPECT_EQ(runTool(options + Words{"judd"}).output, runTool(options + Words{"yang"}).output);
}

}  // namespace
}  // namespace tintora
