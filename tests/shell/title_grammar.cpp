#include "title_grammar.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace tintora {

namespace {

// "#" stands for a percentage.
std::set<std::string> titlePatterns() {
  std::set<std::string> patterns{
      "Greyscale",
      "Invert ",
      "Brightness +#%",
      "Brightness -#%",
      "Brightness #%",  // only for 0: a hair below it, which has no minus sign
      "Normal  #% severity",
      "Contrast #%",
      "Saturation #%",
      "Swap #% Red and Blue",
      "Swap #% Red and Green",
      "Swap #% Green and Blue",
      "Swap Red and Blue",
      "#% severity",  // a swap that is none of the four
      "Circadian Light Block, Brightness #%",
      "Red Filter",
      "Transform off, press Tab to turn transform back on",
      "Image Copied To Clipboard",
  };
  for (const char* colour : {"None", "Red", "Green", "Blue", "Yellow", "Magenta", "Cyan"}) {
    patterns.insert(std::string("#% ") + colour + " Filter");
  }
  for (const std::string viewer : {" Simulation -", " Daltonize -"}) {
    for (const std::string type : {"Protan", "Deuteran", "Tritan"}) {
      patterns.insert(viewer + ' ' + type + "ope #% severity");
      patterns.insert(viewer + ' ' + type + "omalous #% severity");
    }
  }
  for (const std::string ending : {"ope #% severity", "omalous #% severity"}) {
    patterns.insert(" Inverse Transform - Protan" + ending);
    patterns.insert(" Inverse Transform - Deuteran" + ending);
    patterns.insert(" Inverse Tranform - Tritan" + ending);
  }
  return patterns;
}

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

// Returns true if the digits are a percentage that the pattern allows.
bool isPercentage(const std::string& digits, const std::string& pattern) {
  if (digits.size() > 3 || (digits.size() > 1 && digits.front() == '0')) return false;
  const int value = std::stoi(digits);
  if (pattern.find("ope #%") != std::string::npos) return value == 100;
  if (pattern == "Brightness #%") return value == 0;
  if (pattern == "Brightness -#%") return value >= 1 && value <= 100;
  return value <= 100;
}

}  // namespace

bool canBeTitle(const std::string& title, const std::vector<std::string>& customNames) {
  static const std::set<std::string> patterns = titlePatterns();
  const auto first = std::ranges::find_if(title, &isDigit);
  const auto last = std::find_if_not(first, title.end(), &isDigit);
  const std::string digits(first, last);
  std::string pattern = title;
  if (!digits.empty()) {
    pattern = std::string(title.begin(), first) + '#' + std::string(last, title.end());
    if (!isPercentage(digits, pattern)) return false;
  }
  return patterns.contains(pattern) ||
         std::ranges::any_of(customNames, [&pattern](const std::string& name) {
           return pattern == name || pattern == name + "   #% (mouse-wheel adjusts %)";
         });
}

namespace {

const std::vector<std::string> names{"Warm", "Soft"};

TEST(TitleGrammar, TakesTheTitlesOfTheProgram) {
  for (const std::string title :
       {" Simulation - Deuteranope 100% severity", " Daltonize - Protanomalous 60% severity",
        " Inverse Tranform - Tritanomalous 0% severity", "60% Red Filter", "Brightness +25%",
        "Brightness -10%", "Brightness +0%", "Normal  95% severity", "Swap 55% Green and Blue",
        "Swap Red and Blue", "Warm", "Soft   60% (mouse-wheel adjusts %)", "5% severity"}) {
    EXPECT_TRUE(canBeTitle(title, names)) << title;
  }
}

TEST(TitleGrammar, TakesNoOthers) {
  for (const std::string title :
       {"", "Greyscale ", "Invert", "Simulation - Deuteranope 100% severity",
        " Simulation - Deuteranope 95% severity", " Simulation - Protanomalous 101% severity",
        " Inverse Transform - Tritanope 100% severity", "Brightness 5%", "Brightness -0%",
        "Brightness +025%", "Normal 95% severity", "Contrast -1%", "60% Orange Filter",
        "Swap 55% Blue and Green", "Soft 60% (mouse-wheel adjusts %)", "Cool",
        "Help: Right-click to select; Tab to toggle on/off"}) {
    EXPECT_FALSE(canBeTitle(title, names)) << title;
  }
}

}  // namespace
}  // namespace tintora
