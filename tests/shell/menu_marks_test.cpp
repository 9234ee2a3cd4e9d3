#include <string>
#include <vector>

#include "expected_calls.h"
#include "program_run.h"
#include "shell/shell_state.h"

namespace tintora {
namespace {

using platform::Menu;
using platform::nullDesktop;
using Positions = std::vector<int>;
using AlgorithmMarks = ShellTest;

Positions marked(const Menu* menu) {
  Positions positions;
  for (std::size_t place = 0; place < menu->entries.size(); ++place) {
    if (menu->entries[place].checked) positions.push_back(static_cast<int>(place));
  }
  return positions;
}

std::string markedTexts(const Menu* menu) {
  std::string texts;
  for (const auto& entry : menu->entries) {
    if (!entry.checked) continue;
    texts += (texts.empty() ? "" : " | ") + entry.text.substr(0, entry.text.find_first_of(":\t"));
  }
  return texts;
}

class MenuMarks : public ShellTest {
 protected:
  MenuMarks() {
    folder.writeCustomTransforms(
        "Warm\n1 0 0 0\n0 1 0 0\n0 0 0.5 0\n"
        "$Soft\n0.5 0 0 0.2\n0 0.5 0 0.2\n0 0 0.5 0.2\n"
        "Bare\n1 0 0 0\n0 1 0 0\n0 0 1 0\n");
  }

  void start(const std::string& letters, int customCount) const {
    forgetEverything();
    nullDesktop().arguments = letters;
    if (customCount != 0) nullDesktop().commandLine = folder.program();
  }

  ProgramFolder folder;
};

TEST_F(MenuMarks, AfterStartUpNameTheTransformInForce) {
  struct Row {
    const char* what;
    const char* letters;
    Store store;
    Positions main;
    Positions algorithms;
  };
  const std::vector<Row> rows{
      {"first run", "", {}, {1, 6}, {1}},
      {"first run with t", "t", {}, {1, 7}, {1}},
      {"first run with s", "s", {}, {1, 6}, {1}},
      {"first run with both", "st", {}, {1, 7}, {1}},
      {"deutan", "", {{"Selected", 2}}, {2, 6}, {1}},
      {"tritan", "t", {{"Selected", 3}}, {3, 7}, {1}},
      // Without the item, the mark falls on the one at its position.
      {"tritan without its item", "", {{"Selected", 3}}, {3, 6}, {1}},
      {"Normal", "", {{"Selected", 0}}, {13}, {1}},
      {"greyscale", "", {{"Selected", 4}}, {13}, {1}},
      {"daltonize", "", {{"Selected", 1}, {"Daltonize", 1}}, {1, 9}, {1}},
      {"inverse", "", {{"Selected", 1}, {"Inversion", 1}}, {1, 10}, {1}},
      {"both flags", "", {{"Selected", 1}, {"Daltonize", 1}, {"Inversion", 1}}, {1, 9}, {1}},
      {"swap 200", "", {{"Selected", 10}, {"Swap", 200}}, {11}, {1}},
      {"swap 201", "", {{"Selected", 10}, {"Swap", 201}}, {13}, {1}},
      {"swap 203", "st", {{"Selected", 10}, {"Swap", 203}}, {15}, {1}},
      {"option 1", "s", {{"Option", 1}}, {1, 6}, {4}},
      {"option 2", "s", {{"Option", 2}}, {1, 6}, {5}},
      {"option 3", "s", {{"Option", 3}}, {1, 6}, {2}},
      {"option 4", "s", {{"Option", 4}}, {1, 6}, {3}},
      {"unknown option", "s", {{"Option", 5}}, {1, 6}, {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    start(row.letters, 0);
    nullDesktop().store = row.store;
    play([&row]() -> Script {
      EXPECT_EQ(marked(shellState.menus.main), row.main);
      EXPECT_EQ(marked(shellState.menus.alternativeTransforms), row.algorithms);
      co_return;
    });
  }
}

TEST_F(MenuMarks, FollowEveryCommand) {
  struct Row {
    int command;
    const char* main;
  };
  const std::vector<Row> rows{
      {2, "Deutan | Simulation"},        {776, "Deutan | Daltonize"},
      {1, "Protan | Daltonize"},         {777, "Protan | Inverse Transform"},
      {3, "Tritan | Inverse Transform"}, {775, "Tritan | Simulation"},
      {200, "Swap Red and Blue"},        {201, "Other Colour Effects"},
      {202, "Other Colour Effects"},     {203, "Other Colour Effects"},
      {4, "Other Colour Effects"},       {103, "Other Colour Effects"},
      {106, "Other Colour Effects"},     {776, "Tritan | Daltonize"},
      {50, "Tritan | Daltonize"},  // switched off, the choice stays
  };
  start("st", 0);
  play([&rows]() -> Script {
    for (const Row& row : rows) {
      SCOPED_TRACE(row.command);
      co_yield command(row.command);
      EXPECT_EQ(markedTexts(shellState.menus.main), row.main);
    }
  });
}

// The positions do not count the custom section, so with one the marks fall on other items.
TEST_F(MenuMarks, DoNotAccountForTheCustomSection) {
  struct Row {
    const char* what;
    int command;
    Positions main;
    const char* texts;
  };
  const std::vector<Row> rows{
      {"Protan", 4, {1, 7}, "Warm | Deutan"},
      {"Deutan", 5, {2, 7}, "Soft | Deutan"},
      {"Tritan", 6, {3, 7}, "Bare | Deutan"},
      {"Daltonize", 776, {3, 11}, "Bare | For Colour Normal Viewers"},
      {"Inverse Transform", 777, {3, 12}, "Bare | Simulation"},
      {"Swap Red and Blue", 200, {13}, "Simulation Option"},
      {"Greyscale", 7, {15}, "For Colour Deficient Viewers"},
  };
  start("st", 3);
  play([&rows]() -> Script {
    for (const Row& row : rows) {
      SCOPED_TRACE(row.what);
      co_yield command(row.command);
      EXPECT_EQ(marked(shellState.menus.main), row.main);
      EXPECT_EQ(markedTexts(shellState.menus.main), row.texts);
    }
  });
}

TEST_F(MenuMarks, GiveTheFirstCustomTransformTheMarkOfProtan) {
  start("", 3);
  play([]() -> Script {
    EXPECT_EQ(transformSettings.Selected, TransformMode::Protan);
    EXPECT_EQ(markedTexts(shellState.menus.main), "Warm | Protan");
    EXPECT_EQ(marked(shellState.menus.main), (Positions{1, 6}));
    co_return;
  });
}

// A custom transform that is picked changes no mark; applied as the mode in force it does.
TEST_F(MenuMarks, StayWhereTheyAreWhenACustomTransformIsPicked) {
  start("", 3);
  play([]() -> Script {
    co_yield command(5);
    EXPECT_EQ(marked(shellState.menus.main), (Positions{2, 6}));
    co_yield command(0);
    EXPECT_EQ(marked(shellState.menus.main), (Positions{2, 6}));
    co_yield wheel(false);
    EXPECT_EQ(marked(shellState.menus.main), (Positions{13}));
  });
}

TEST_F(AlgorithmMarks, AreSetByTheHandlerAndThenByTheApplication) {
  struct Row {
    int command;
    Calls marks;
  };
  const Calls handlerClears{"checkMenuItem menu 12 0 false", "checkMenuItem menu 12 1 false",
                            "checkMenuItem menu 12 2 false", "checkMenuItem menu 12 3 false",
                            "checkMenuItem menu 12 4 false"};
  const Calls applicationClears =
      joined({handlerClears, {"checkMenuItem menu 12 5 false", "checkMenuItem menu 12 6 false"}});
  const std::vector<Row> rows{
      {300, joined({handlerClears,
                    {"checkMenuItem menu 12 1 true"},
                    applicationClears,
                    {"checkMenuItem menu 12 1 true"}})},
      {301, joined({handlerClears,
                    {"checkMenuItem menu 12 4 true"},
                    applicationClears,
                    {"checkMenuItem menu 12 4 true"}})},
      {302, joined({handlerClears,
                    {"checkMenuItem menu 12 2 true"},
                    applicationClears,
                    {"checkMenuItem menu 12 5 true"}})},
      {303, joined({handlerClears,
                    {"checkMenuItem menu 12 3 true"},
                    applicationClears,
                    {"checkMenuItem menu 12 2 true"}})},
      {304, joined({handlerClears,
                    {"checkMenuItem menu 12 5 true"},
                    applicationClears,
                    {"checkMenuItem menu 12 3 true"}})},
  };
  nullDesktop().arguments = "s";
  play([&rows]() -> Script {
    for (const Row& row : rows) {
      SCOPED_TRACE(row.command);
      co_yield command(row.command);
      Calls marks;
      for (const std::string& call : callsOfEvent()) {
        if (call.starts_with("checkMenuItem menu 12 ")) marks.push_back(call);
      }
      EXPECT_EQ(marks, row.marks);
    }
  });
}

TEST_F(AlgorithmMarks, ShowExactlyTheOneChosen) {
  struct Row {
    int command;
    std::uint32_t option;
    const char* text;
  };
  const std::vector<Row> rows{
      {304, 4, "Vi\351not, Brettel && Mollon, 1999"},
      {303, 3, "Vi\351not, Brettel && Mollon, 1997 - Approximated"},
      {302, 2, "Machado, Oliveira && Fernandes, 2009"},
      {301, 1, "Yang, Ro, Wong && Lee, 2008"},
      {300, 0, "Judd, 1948"},
  };
  nullDesktop().arguments = "s";
  play([&rows]() -> Script {
    for (const Row& row : rows) {
      SCOPED_TRACE(row.command);
      co_yield command(row.command);
      EXPECT_EQ(static_cast<std::uint32_t>(transformSettings.Option), row.option);
      EXPECT_EQ(markedTexts(shellState.menus.alternativeTransforms), row.text);
    }
  });
}

}  // namespace
}  // namespace tintora
