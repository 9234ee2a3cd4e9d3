// The manual pages and completions that are made from the declarations of the commands.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/cli/built_tool.h"
#include "tests/cli/tool_run.h"

namespace tintora {
namespace {

const std::filesystem::path madeFolder = toolDocumentsFolder;
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

// The commands that the tool's help names, after the tool itself, whose name is empty.
std::vector<std::string> commandNames() {
  std::vector<std::string> names{""};
  bool isCommand = false;
  for (const std::string& line : linesOf(runTool({"--help"}).output)) {
    if (isCommand && line.size() > 2) names.push_back(line.substr(2, line.find(' ', 2) - 2));
    if (line == "Subcommands:") isCommand = true;
  }
  EXPECT_GT(names.size(), 1U);
  return names;
}

// An option or argument as the help shows it.
struct HelpEntry {
  std::set<std::string> longNames;  // without dashes: what an argument is called
  bool isRequired = false;
  std::string description;
};

std::vector<HelpEntry> helpOf(const std::string& command) {
  Words arguments{"--help"};
  if (!command.empty()) arguments.insert(arguments.begin(), command);
  std::vector<HelpEntry> entries;
  // The names, "PATH ... REQUIRED" or "-o,--output PATH", and the description where the line or the
  // next one goes on.
  const std::regex entry(R"(  (\S+)( \S+)*?(  +(.*))?)");
  const std::regex rest(R"( {20,}(.*))");
  std::smatch found;
  for (const std::string& line : linesOf(runTool(arguments).output)) {
    if (line == "Subcommands:") break;
    if (std::regex_match(line, found, rest)) {
      entries.back().description = found[1];
    } else if (std::regex_match(line, found, entry)) {
      HelpEntry& added = entries.emplace_back();
      added.isRequired = found[2] == " REQUIRED";
      added.description = found[4];
      std::istringstream names(found[1]);
      for (std::string name; std::getline(names, name, ',');) {
        if (name.front() != '-' || name.starts_with("--")) added.longNames.insert(name);
      }
    }
  }
  EXPECT_GE(entries.size(), 1U) << command;
  return entries;
}

std::set<std::string> longOptionsOf(const std::string& command) {
  std::set<std::string> names;
  for (const HelpEntry& entry : helpOf(command)) {
    for (const std::string& name : entry.longNames) {
      if (name.starts_with("--")) names.insert(name);
    }
  }
  return names;
}

// What the tool lists as values of each option.
std::map<std::string, std::set<std::string>> listedWords() {
  std::map<std::string, std::set<std::string>> words;
  std::string option;
  for (const std::string& line : linesOf(runTool({"list"}).output)) {
    const std::size_t bracket = line.find("(--");
    if (bracket != std::string::npos) {
      option = line.substr(bracket + 1, line.find(')') - bracket - 1);
    } else {
      words[option].insert(line.substr(2, line.find(' ', 2) - 2));
    }
  }
  EXPECT_GE(words.size(), 5U);
  return words;
}

struct Offer {
  std::string line;
  std::set<std::string> words;  // offered after it
};

// In a folder that holds chart.png and the folder charts.
std::vector<Offer> expectedOffers() {
  std::vector<Offer> offers{
      {"tintora-cli ", {"matrix", "filter", "curves", "check", "report", "list"}},
      {"tintora-cli ma", {"matrix"}},
      {"tintora-cli matrix --mo", {"--mode"}},
      {"tintora-cli curves --form", {}},
      {"tintora-cli --form", {}},
      {"tintora-cli filter --mode pro", {"protan"}},
      {"tintora-cli --mode filter fi", {"filter"}},
      {"tintora-cli --mode filter matrix --swap red-", {"red-blue", "red-green"}},
      {"tintora-cli --severity 50 matrix --format ", {"text", "json", "csv", "svg"}},
      {"tintora-cli --daltonize matrix --form", {"--format"}},
      {"tintora-cli --mode=filter matrix --form", {"--format"}},
      {"tintora-cli check --format ", {"table", "json", "csv"}},
      {"tintora-cli check --swatches ", {"auto", "always", "never"}},
      {"tintora-cli check --deficiency ", {"protan", "deutan", "tritan"}},
      {"tintora-cli check --deficiency protan,d", {"deutan"}},
      {"tintora-cli filter --output-format ", {"png", "jpeg"}},
      {"tintora-cli report --algorithm br", {"brettel1997"}},
      {"tintora-cli report --light ", {"encoded", "linear"}},
      {"tintora-cli filter --filter-color c", {"cyan"}},
      {"tintora-cli matrix --mode=tri", {"tritan"}},
      {"tintora-cli matrix --severity ", {}},
      {"tintora-cli filter char", {"chart.png", "charts"}},
      {"tintora-cli filter chart.png char", {"chart.png", "charts"}},
      {"tintora-cli check char", {"chart.png", "charts"}},
      {"tintora-cli report char", {"chart.png", "charts"}},
      {"tintora-cli check --image char", {"chart.png", "charts"}},
      {"tintora-cli report --output char", {"chart.png", "charts"}},
      {"tintora-cli report -o char", {"chart.png", "charts"}},
      {"tintora-cli --custom-file char", {"chart.png", "charts"}},
      {"tintora-cli filter chart.png --output-dir char", {"charts"}},
      {"tintora-cli report --title char", {}},
      {"tintora-cli matrix char", {}},
      {"tintora-cli char", {}},
      {"tintora-cli list char", {}},
  };
  for (const std::string& command : commandNames()) {
    offers.push_back(
        {"tintora-cli " + command + (command.empty() ? "--" : " --"), longOptionsOf(command)});
  }
  for (const auto& [option, words] : listedWords()) {
    offers.push_back({"tintora-cli matrix " + option + ' ', words});
  }
  return offers;
}

// Removes what shells differ in: the part of a word that is typed already, up to a comma or a sign
// of equality, and a slash behind a folder.
std::string offeredPart(std::string word) {
  word.erase(0, word.find_last_of(",=") + 1);
  if (word.ends_with('/')) word.pop_back();
  return word;
}

// Compares what a shell's completions, driven by the script, offer after each line.
void expectOffers(const std::string& run, const std::string& script) {
  const std::vector<Offer> offers = expectedOffers();
  const TemporaryFolder folder;
  std::string lines;
  for (const Offer& offer : offers) lines += offer.line + '\n';
  const std::string input = folder.write("lines", lines);
  const std::vector<std::string> offered = linesOf(
      printedBy("cd " + folder.path.string() + " && touch chart.png && mkdir charts && " + run +
                ' ' + (shellsFolder / script).string() + ' ' + madeFolder.string() + " <" + input));
  ASSERT_EQ(offered.size(), offers.size());
  for (std::size_t i = 0; i < offered.size(); ++i) {
    std::set<std::string> words;
    for (const std::string& word : wordsOf(offered[i])) words.insert(offeredPart(word));
    EXPECT_EQ(words, offers[i].words) << offers[i].line;
  }
}

TEST(Completions, OfferTheirWordsAndFilesInBash) {
  expectOffers("bash --norc", "complete.bash");
}

TEST(Completions, OfferTheirWordsAndFilesInZsh) {
  if (!isInstalled("zsh")) GTEST_SKIP() << "zsh is not installed";
  expectOffers("zsh -f", "complete.zsh");
}

TEST(Completions, OfferTheirWordsAndFilesInFish) {
  if (!isInstalled("fish")) GTEST_SKIP() << "fish is not installed";
  expectOffers("fish --no-config", "complete.fish");
}

// The page of a command; of the tool itself if the name is empty.
std::filesystem::path pageOf(const std::string& command) {
  return madeFolder / ("tintora-cli" + (command.empty() ? "" : '-' + command) + ".1");
}

// The text of a page without its requests, fonts and escapes, in one line.
std::string textOf(const std::string& page) {
  std::string text = std::regex_replace(page, std::regex(R"(\\f[BIR])"), "");
  text = std::regex_replace(text, std::regex(R"(\\-)"), "-");
  text = std::regex_replace(text, std::regex(R"(\\\(aq)"), "'");
  return std::regex_replace(text, std::regex(R"(\s+)"), " ");
}

// The names that head the paragraphs of a section, and whether the page says that they are
// required.
std::map<std::string, bool> entriesIn(const std::string& page) {
  std::map<std::string, bool> entries;
  std::vector<std::string> names;
  bool isEntry = false;
  bool isHead = false;
  for (const std::string& line : linesOf(page)) {
    if (line.starts_with(".SH ")) isEntry = line == ".SH OPTIONS" || line == ".SH ARGUMENTS";
    if (isEntry && isHead) {
      names.clear();
      for (const std::string& word : wordsOf(std::regex_replace(line, std::regex(","), " "))) {
        if (!word.starts_with(R"(\fB\-\-)") && !line.starts_with(R"(\fI)")) continue;
        names.push_back(textOf(word));
        entries[names.back()] = false;
      }
    }
    if (isEntry && line == "Required.") {
      for (const std::string& name : names) entries[name] = true;
    }
    isHead = line == ".TP";
  }
  return entries;
}

TEST(ManualPages, TellOfTheOptionsAndArgumentsThatTheHelpNamesAndOfNoOther) {
  for (const std::string& command : commandNames()) {
    SCOPED_TRACE(command);
    const std::string page = readFile(pageOf(command));
    const std::string text = textOf(page);
    std::map<std::string, bool> named;
    for (const HelpEntry& entry : helpOf(command)) {
      for (const std::string& name : entry.longNames) named[name] = entry.isRequired;
      // A page may begin a sentence with a capital.
      EXPECT_NE(text.find(entry.description.substr(1)), std::string::npos) << entry.description;
    }
    EXPECT_EQ(entriesIn(page), named);
  }
}

TEST(ManualPages, AreThereForEveryCommandAndNoOther) {
  std::set<std::string> expected;
  for (const std::string& command : commandNames()) {
    expected.insert(pageOf(command).filename().string());
  }
  std::set<std::string> made;
  for (const auto& file : std::filesystem::directory_iterator(madeFolder)) {
    if (file.path().extension() == ".1") made.insert(file.path().filename().string());
  }
  EXPECT_EQ(made, expected);
}

TEST(ManualPages, NameTheirCommandsAndTheirExitStatuses) {
  const std::string tool = readFile(pageOf(""));
  for (const std::string& command : commandNames()) {
    const std::string page = readFile(pageOf(command));
    EXPECT_NE(page.find(".SH EXIT STATUS"), std::string::npos) << command;
    EXPECT_NE(page.find(".SH EXAMPLES"), std::string::npos) << command;
    if (command.empty()) continue;
    EXPECT_NE(tool.find(".TP\n\\fB" + command + "\\fR\n"), std::string::npos) << command;
  }
}

TEST(ManualPages, AreFreeOfFaults) {
  if (!isInstalled("groff")) GTEST_SKIP() << "groff is not installed";
  for (const std::string& command : commandNames()) {
    EXPECT_EQ(printedBy("groff -man -ww -K utf8 -T utf8 -z " + pageOf(command).string()), "");
  }
  if (!isInstalled("mandoc")) GTEST_SKIP() << "mandoc is not installed";
  for (const std::string& command : commandNames()) {
    for (const std::string& line :
         linesOf(printedBy("mandoc -T lint -W style " + pageOf(command).string() + " || true"))) {
      // A page without a date is the same whenever it is made.
      EXPECT_NE(line.find("missing date"), std::string::npos) << line;
    }
  }
}

}  // namespace
}  // namespace tintora
