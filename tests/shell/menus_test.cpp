#include <set>
#include <string>
#include <vector>

#include "engine/transform_display.h"
#include "program_run.h"
#include "shell/shell_state.h"

namespace tintora {
namespace {

using platform::EventKind;
using platform::Menu;
using platform::MenuEntry;
using platform::nullDesktop;
using Kind = MenuEntry::Kind;

// An item as it should stand in a menu. Relative commands count from the number of custom
// transforms.
struct Item {
  Kind kind;
  int command;
  bool relative;
  std::string text;
  Menu* ShellMenus::*submenu = nullptr;
  enum class When { Always, Tritan, SimulationOptions } when = When::Always;
};

Item item(int command, const char* text) {
  return {Kind::Item, command, false, text};
}
Item relativeItem(int command, const char* text) {
  return {Kind::Item, command, true, text};
}
Item label(const char* text) {
  return {Kind::Label, 99, false, text};
}
Item separator() {
  return {Kind::Separator, 0, false, ""};
}
Item submenu(Menu* ShellMenus::*menu, const char* text) {
  return {Kind::Submenu, 0, false, text, menu};
}
Item onlyWith(Item::When when, Item item) {
  item.when = when;
  return item;
}

using Items = std::vector<Item>;

const Items colourFilter{
    item(100, "Red"),    item(101, "Green"),   item(102, "Blue"),
    item(103, "Yellow"), item(104, "Magenta"), item(105, "Cyan"),
};

const Items colourSwap{
    item(201, "Swap Red and Green"),
    item(202, "Swap Green and Blue"),
};

const Items alternativeTransforms{
    label("Alternative transforms:"),
    item(300, "Judd, 1948"),
    item(303, "Vi\351not, Brettel && Mollon, 1997 - Approximated"),
    item(304, "Vi\351not, Brettel && Mollon, 1999"),
    item(301, "Yang, Ro, Wong && Lee, 2008"),
    item(302, "Machado, Oliveira && Fernandes, 2009"),
};

const Items otherColourEffects{
    submenu(&ShellMenus::colourSwap, "Colour Swap"),
    submenu(&ShellMenus::colourFilter, "Colour Filter"),
    relativeItem(5, "Invert\tI"),
    relativeItem(4, "Greyscale\tG"),
    relativeItem(6, "Brightness\tB"),
    relativeItem(7, "Contrast\tO"),
    relativeItem(8, "Saturation\tN"),
    relativeItem(9, "Circadian Light Block\tL"),
};

// The author line below the version is any label.
const Items helpItems{
    item(705, "Quick Help\tF1"),
    relativeItem(55, "User Guide (Website)"),
    separator(),
    label("Tintora Version 1.1.4 64-bit"),
};

const Items viewOptions{
    relativeItem(53, "Hit Transparent\tH"),
    relativeItem(54, "Full Screen\tF"),
    relativeItem(50, "Toggle Colour Transform\tTab"),
    relativeItem(51, "Toggle Window Frame\tSpace"),
    relativeItem(52, "Copy to Clipboard (single monitor setup only)\tCtrl C"),
};

const Items colourSpace{
    item(703, "RGB Cube\tR"),
    item(704, "Chromaticity Diagram\tC"),
    item(702, "Photoreceptor Response Curves\tE"),
    separator(),
    item(700, "Show/Hide Colour Space Window\tW"),
    item(701, "Dock to Main Window\tK"),
};

const Items customSection{
    label("Custom Colour Transforms:"),
    item(0, "Warm"),
    item(1, "Soft && round"),
    item(2, ""),
    separator(),
};

const Items builtInSection{
    label("Colour Vision Deficiency Type and Severity:\tKey"),
    relativeItem(1, "Protan: Long-wave deficient, 2.6% males, 0.04% females\tP"),
    relativeItem(2, "Deutan: Medium-wave deficient, 6.2% males, 0.36% females\tD"),
    onlyWith(Item::When::Tritan,
             relativeItem(3, "Tritan: Short-wave deficient, 0.001% males, 0.03% females\tT")),
    label("Severity\tmouse-wheel, +-"),
    separator(),
    label("For Colour Normal Viewers:\tKey"),
    item(775, "Simulation\tS"),
    onlyWith(Item::When::SimulationOptions,
             submenu(&ShellMenus::alternativeTransforms, "Simulation Option")),
    separator(),
    label("For Colour Deficient Viewers:\tKey"),
    item(776, "Daltonize\tA"),
    item(777, "Inverse Transform"),
    item(200, "Swap Red and Blue"),
    separator(),
    submenu(&ShellMenus::otherColourEffects, "Other Colour Effects"),
    submenu(&ShellMenus::colourSpace, "Colour Space Window"),
    submenu(&ShellMenus::viewOptions, "View Options"),
    submenu(&ShellMenus::help, "Help"),
};

struct Situation {
  const char* letters;
  int customCount;
};

bool isThere(const Item& item, const Situation& situation) {
  const std::string letters = situation.letters;
  switch (item.when) {
    case Item::When::Tritan:
      return letters.find('t') != std::string::npos;
    case Item::When::SimulationOptions:
      return letters.find('s') != std::string::npos;
    case Item::When::Always:
      break;
  }
  return true;
}

Items mainItems(const Situation& situation) {
  Items items;
  if (situation.customCount != 0) items = customSection;
  for (const Item& each : builtInSection) {
    if (isThere(each, situation)) items.push_back(each);
  }
  return items;
}

void expectItems(const char* name, const Menu* menu, const Items& expected, int customCount) {
  SCOPED_TRACE(name);
  ASSERT_EQ(menu->entries.size(), expected.size());
  for (std::size_t position = 0; position < expected.size(); ++position) {
    SCOPED_TRACE("position " + std::to_string(position));
    const MenuEntry& entry = menu->entries[position];
    const Item& item = expected[position];
    EXPECT_EQ(entry.kind, item.kind);
    EXPECT_EQ(entry.command, item.command + (item.relative ? customCount : 0));
    EXPECT_EQ(entry.text, item.text);
    EXPECT_EQ(entry.submenu, item.submenu == nullptr ? nullptr : shellState.menus.*item.submenu);
  }
}

const std::vector<Situation> situations{{"", 0}, {"s", 0}, {"t", 0}, {"st", 0},
                                        {"", 3}, {"s", 3}, {"t", 3}, {"st", 3}};

class Menus : public ShellTest {
 protected:
  Menus() {
    folder.writeCustomTransforms(
        "Warm\n1 0 0 0\n0 1 0 0\n0 0 0.5 0\n"
        "$Soft && round\n0.5 0 0 0.2\n0 0.5 0 0.2\n0 0 0.5 0.2\n"
        "\n1 0 0 0\n0 1 0 0\n0 0 1 0\n");
  }

  void start(const Situation& situation) const {
    forgetEverything();
    nullDesktop().arguments = situation.letters;
    if (situation.customCount != 0) nullDesktop().commandLine = folder.program();
  }

  ProgramFolder folder;
};

TEST_F(Menus, HoldTheirItemsInOrder) {
  for (const Situation& situation : situations) {
    SCOPED_TRACE(std::string("letters ") + situation.letters + ", custom " +
                 std::to_string(situation.customCount));
    start(situation);
    play([situation]() -> Script {
      const ShellMenus& menus = shellState.menus;
      const int count = situation.customCount;
      expectItems("main", menus.main, mainItems(situation), count);
      expectItems("colour filter", menus.colourFilter, colourFilter, count);
      expectItems("colour swap", menus.colourSwap, colourSwap, count);
      expectItems("alternative transforms", menus.alternativeTransforms, alternativeTransforms,
                  count);
      expectItems("other colour effects", menus.otherColourEffects, otherColourEffects, count);
      expectItems("view options", menus.viewOptions, viewOptions, count);
      expectItems("colour space", menus.colourSpace, colourSpace, count);
      expectItems("spare", menus.spare, {}, count);

      Items withAuthor = helpItems;
      const MenuEntry& author = menus.help->entries.back();
      EXPECT_FALSE(author.text.empty());
      withAuthor.push_back(label(author.text.c_str()));
      expectItems("help", menus.help, withAuthor, count);
      co_return;
    });
  }
}

TEST_F(Menus, AreNineAndAllAreDestroyed) {
  start({"st", 3});
  play([]() -> Script {
    EXPECT_EQ(nullDesktop().menus.size(), 9U);
    const ShellMenus& menus = shellState.menus;
    const std::set<const Menu*> all{
        menus.main, menus.colourFilter, menus.colourSwap,  menus.alternativeTransforms,
        menus.help, menus.viewOptions,  menus.colourSpace, menus.otherColourEffects,
        menus.spare};
    EXPECT_EQ(all.size(), 9U);
    co_return;
  });
  EXPECT_EQ(nullDesktop().menusCreated, 18);
  EXPECT_TRUE(nullDesktop().menus.empty());
}

TEST_F(Menus, CountBuiltInItemsFromTheNumberOfCustomTransforms) {
  start({"", 3});
  play([]() -> Script {
    const MenuEntry& protan = shellState.menus.main->entries.at(6);
    EXPECT_TRUE(protan.text.starts_with("Protan:"));
    EXPECT_EQ(protan.command, 4);
    const MenuEntry& guide = shellState.menus.help->entries.at(1);
    EXPECT_EQ(guide.text, "User Guide (Website)");
    EXPECT_EQ(guide.command, 58);
    co_return;
  });
}

// If an optional item is absent, the items behind it move up.
TEST_F(Menus, RecordThePositionsOfTheMarkedItems) {
  struct Row {
    const char* letters;
    int simulation, daltonize, inverse, swap, other;
  };
  const std::vector<Row> rows{
      {"", 6, 9, 10, 11, 13},
      {"t", 7, 10, 11, 12, 14},
      {"s", 6, 10, 11, 12, 14},
      {"st", 7, 11, 12, 13, 15},
  };
  for (const Row& row : rows) {
    // Custom transforms are not counted in the positions.
    for (const int customCount : {0, 3}) {
      SCOPED_TRACE(std::string("letters ") + row.letters);
      start({row.letters, customCount});
      play([&row, customCount]() -> Script {
        const ViewerItemPositions& positions = transformDisplay.positions;
        EXPECT_EQ(positions.simulation, row.simulation);
        EXPECT_EQ(positions.daltonize, row.daltonize);
        EXPECT_EQ(positions.inverseTransform, row.inverse);
        EXPECT_EQ(positions.swapRedAndBlue, row.swap);
        EXPECT_EQ(positions.otherColourEffects, row.other);
        if (customCount != 0) co_return;
        const auto& entries = shellState.menus.main->entries;
        const auto textAt = [&entries](int place) {
          return entries.at(static_cast<std::size_t>(place)).text;
        };
        EXPECT_EQ(textAt(row.simulation), "Simulation\tS");
        EXPECT_EQ(textAt(row.daltonize), "Daltonize\tA");
        EXPECT_EQ(textAt(row.inverse), "Inverse Transform");
        EXPECT_EQ(textAt(row.swap), "Swap Red and Blue");
        EXPECT_EQ(textAt(row.other), "Other Colour Effects");
      });
    }
  }
}

TEST_F(Menus, OpenWhereTheRightButtonIsReleased) {
  start({"", 0});
  play([]() -> Script {
    const std::vector<platform::Window*> windows{&mainWindow(), &controlWindow(),
                                                 &colourSpaceWindow()};
    for (platform::Window* const window : windows) {
      SCOPED_TRACE(window->name);
      nullDesktop().cursor = {321, 654};
      co_yield mouse(EventKind::RightDown, *window, 5, 6);
      EXPECT_EQ(callsOfEvent().front().find("trackMenu"), std::string::npos);
      EXPECT_TRUE(nullDesktop().handled);
      co_yield mouse(EventKind::RightUp, *window, 5, 6);
      EXPECT_EQ(callsOfEvent().front(), "trackMenu menu 18 321,654 " + window->name);
    }
    EXPECT_EQ(shellState.menus.main->number, 18);
  });
}

}  // namespace
}  // namespace tintora
