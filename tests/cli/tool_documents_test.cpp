// The manual pages and completions that are made from the declarations of the commands.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/cli/tool_run.h"

namespace tintora {
namespace {

const std::filesystem::path madeFolder = TINTORA_TOOL_DOCUMENTS;
const std::filesystem::path shellsFolder = TINTORA_SHELLS;

bool isInstalled(const std::string& program) {
  return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

// Runs a command of the shell and returns what it prints, errors too.
std::string printedBy(const std::string& command) {
  const TemporaryFolder folder;
  const std::filesystem::path output = folder / "output";
  const int status = std::system(("{ " + command + "; } >" + output.string() + " 2>&1").c_str());
  EXPECT_EQ(status, 0) << command << '\n' << readFile(output);
  return readFile(output);
}

std::set<std::string> wordsOf(const std::string& text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

struct Offer {
  std::string line;
  std::set<std::string> words;  // offered after it
};

const std::vector<Offer> offers{
    {"tintora-cli ", {"matrix", "filter", "curves", "check", "report", "list"}},
    {"tintora-cli ma", {"matrix"}},
    {"tintora-cli matrix --mo", {"--mode"}},
    {"tintora-cli matrix --form", {"--format"}},
    {"tintora-cli check --form", {"--format"}},
    {"tintora-cli curves --form", {}},
    {"tintora-cli --form", {}},
    {"tintora-cli filter --mode pro", {"protan"}},
    {"tintora-cli --mode filter fi", {"filter"}},
    {"tintora-cli --mode filter matrix --swap red-", {"red-blue", "red-green"}},
    {"tintora-cli --severity 50 matrix --format ", {"text", "json", "csv", "svg"}},
    {"tintora-cli check --format ", {"table", "json", "csv"}},
    {"tintora-cli filter --output-format ", {"png", "jpeg"}},
    {"tintora-cli report --algorithm br", {"brettel1997"}},
    {"tintora-cli filter --light ", {"encoded", "linear"}},
    {"tintora-cli filter --filter-color c", {"cyan"}},
    {"tintora-cli matrix --severity ", {}},
};

// What the completions of a shell, driven by the script, offer after each line.
std::vector<std::string> offeredBy(const std::string& run, const std::string& script,
                                   const std::vector<std::string>& lines) {
  const TemporaryFolder folder;
  std::string text;
  for (const std::string& line : lines) text += line + '\n';
  const std::string input = folder.write("lines", text);
  std::vector<std::string> offered = linesOf(
      printedBy("cd " + folder.path.string() + " && touch chart.png && mkdir charts && " + run +
                ' ' + (shellsFolder / script).string() + ' ' + madeFolder.string() + " <" + input));
  EXPECT_EQ(offered.size(), lines.size());
  return offered;
}

void expectOffers(const std::string& run, const std::string& script) {
  std::vector<std::string> lines;
  for (const Offer& offer : offers) lines.push_back(offer.line);
  const std::vector<std::string> offered = offeredBy(run, script, lines);
  for (std::size_t i = 0; i < offered.size(); ++i) {
    EXPECT_EQ(wordsOf(offered[i]), offers[i].words) << offers[i].line;
  }
}

TEST(Completions, OfferTheirWordsInBash) {
  expectOffers("bash --norc", "complete.bash");
}

TEST(Completions, OfferTheirWordsInZsh) {
  if (!isInstalled("zsh")) GTEST_SKIP() << "zsh is not installed";
  expectOffers("zsh -f", "complete.zsh");
}

TEST(Completions, OfferTheirWordsInFish) {
  if (!isInstalled("fish")) GTEST_SKIP() << "fish is not installed";
  expectOffers("fish --no-config", "complete.fish");
}

TEST(Completions, OfferFilesFoldersListsAndJoinedValuesInBash) {
  const std::vector<std::string> offered =
      offeredBy("bash --norc", "complete.bash",
                {"tintora-cli check char", "tintora-cli filter chart.png --output-dir char",
                 "tintora-cli check --deficiency protan,d", "tintora-cli matrix --mode=tri",
                 "tintora-cli matrix --mode=", "tintora-cli --mode=filter matrix --f"});
  EXPECT_EQ(wordsOf(offered[0]), (std::set<std::string>{"chart.png", "charts"}));
  EXPECT_EQ(wordsOf(offered[1]), std::set<std::string>{"charts"});
  EXPECT_EQ(wordsOf(offered[2]), std::set<std::string>{"protan,deutan"});
  EXPECT_EQ(wordsOf(offered[3]), std::set<std::string>{"tritan"});
  EXPECT_EQ(wordsOf(offered[4]).count("circadian"), 1U);
  EXPECT_EQ(wordsOf(offered[5]),
            (std::set<std::string>{"--filter-colour", "--filter-color", "--format"}));
}

// The page of a command; of the tool itself if the name is empty.
std::filesystem::path pageOf(const std::string& command) {
  return madeFolder / ("tintora-cli" + (command.empty() ? "" : '-' + command) + ".1");
}

const std::vector<std::string> commandNames{"",      "matrix", "filter", "curves",
                                            "check", "report", "list"};

TEST(ManualPages, TellOfEveryOptionThatTheToolsHelpNames) {
  for (const std::string& command : commandNames) {
    std::vector<std::string> arguments{"--help"};
    if (!command.empty()) arguments.insert(arguments.begin(), command);
    const std::string help = runTool(arguments).output;
    const std::string page =
        std::regex_replace(readFile(pageOf(command)), std::regex(R"(\\-)"), "-");
    const std::regex option("--[a-z-]+[a-z]");
    std::set<std::string> named;
    for (std::sregex_iterator match(help.begin(), help.end(), option), end; match != end; ++match) {
      named.insert(match->str());
    }
    EXPECT_GE(named.size(), 1U) << command;
    for (const std::string& name : named) {
      EXPECT_NE(page.find("\\fB" + name + "\\fR"), std::string::npos) << command << ' ' << name;
    }
  }
}

TEST(ManualPages, NameTheirCommandsAndTheirExitStatuses) {
  const std::string tool = readFile(pageOf(""));
  for (const std::string& command : commandNames) {
    const std::string page = readFile(pageOf(command));
    EXPECT_NE(page.find(".SH EXIT STATUS"), std::string::npos) << command;
    EXPECT_NE(page.find(".SH EXAMPLES"), std::string::npos) << command;
    if (command.empty()) continue;
    EXPECT_NE(tool.find(".TP\n\\fB" + command + "\\fR\n"), std::string::npos) << command;
  }
}

TEST(ManualPages, AreFreeOfFaults) {
  if (!isInstalled("groff")) GTEST_SKIP() << "groff is not installed";
  for (const std::string& command : commandNames) {
    EXPECT_EQ(printedBy("groff -man -ww -K utf8 -T utf8 -z " + pageOf(command).string()), "");
  }
  if (!isInstalled("mandoc")) GTEST_SKIP() << "mandoc is not installed";
  for (const std::string& command : commandNames) {
    for (const std::string& line :
         linesOf(printedBy("mandoc -T lint -W style " + pageOf(command).string() + " || true"))) {
      // A page without a date is the same whenever it is made.
      EXPECT_NE(line.find("missing date"), std::string::npos) << line;
    }
  }
}

}  // namespace
}  // namespace tintora
