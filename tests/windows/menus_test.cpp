// The items of the popup menu and their check marks.
#include <fstream>
#include <ostream>
#include <string>
#include <vector>

#include "program_run.h"
#include "stored_values.h"

namespace tintora::windows_test {

std::ostream& operator<<(std::ostream& out, const MenuItem& item) {
  return out << std::string(static_cast<std::size_t>(item.depth), '>') << item.text << " "
             << item.command;
}

namespace {

enum class Kind { Item, Label, Separator, Submenu };

struct ExpectedItem {
  int depth;
  Kind kind;
  UINT command;
  std::string text;
};

ExpectedItem item(int depth, int command, const std::string& text) {
  return {depth, Kind::Item, static_cast<UINT>(command), text};
}
ExpectedItem label(int depth, const std::string& text) {
  return {depth, Kind::Label, 99, text};
}
ExpectedItem separator(int depth) {
  return {depth, Kind::Separator, 0, ""};
}
ExpectedItem submenu(int depth, const std::string& text) {
  return {depth, Kind::Submenu, 0, text};
}

using ExpectedItems = std::vector<ExpectedItem>;

ExpectedItems joined(const std::vector<ExpectedItems>& parts) {
  ExpectedItems all;
  for (const ExpectedItems& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

const ExpectedItems simulationOptions{
    submenu(0, "Simulation Option"),
    label(1, "Alternative transforms:"),
    item(1, 300, "Judd, 1948"),
    item(1, 303, "Vi\xe9not, Brettel && Mollon, 1997 - Approximated"),
    item(1, 304, "Vi\xe9not, Brettel && Mollon, 1999"),
    item(1, 301, "Yang, Ro, Wong && Lee, 2008"),
    item(1, 302, "Machado, Oliveira && Fernandes, 2009"),
};

// Returns the whole menu with n custom transforms.
ExpectedItems expectedMenu(const ExpectedItems& custom, int n, bool simulation, bool tritan) {
  return joined({
      custom,
      {label(0, "Colour Vision Deficiency Type and Severity:\tKey"),
       item(0, n + 1, "Protan: Long-wave deficient, 2.6% males, 0.04% females\tP"),
       item(0, n + 2, "Deutan: Medium-wave deficient, 6.2% males, 0.36% females\tD")},
      tritan ? ExpectedItems{item(0, n + 3,
                                  "Tritan: Short-wave deficient, 0.001% males, 0.03% females\tT")}
             : ExpectedItems{},
      {label(0, "Severity\tmouse-wheel, +-"), separator(0),
       label(0, "For Colour Normal Viewers:\tKey"), item(0, 775, "Simulation\tS")},
      simulation ? simulationOptions : ExpectedItems{},
      {separator(0),
       label(0, "For Colour Deficient Viewers:\tKey"),
       item(0, 776, "Daltonize\tA"),
       item(0, 777, "Inverse Transform"),
       item(0, 200, "Swap Red and Blue"),
       separator(0),
       submenu(0, "Other Colour Effects"),
       submenu(1, "Colour Swap"),
       item(2, 201, "Swap Red and Green"),
       item(2, 202, "Swap Green and Blue"),
       submenu(1, "Colour Filter"),
       item(2, 100, "Red"),
       item(2, 101, "Green"),
       item(2, 102, "Blue"),
       item(2, 103, "Yellow"),
       item(2, 104, "Magenta"),
       item(2, 105, "Cyan"),
       item(1, n + 5, "Invert\tI"),
       item(1, n + 4, "Greyscale\tG"),
       item(1, n + 6, "Brightness\tB"),
       item(1, n + 7, "Contrast\tO"),
       item(1, n + 8, "Saturation\tN"),
       item(1, n + 9, "Circadian Light Block\tL"),
       submenu(0, "Colour Space Window"),
       item(1, 703, "RGB Cube\tR"),
       item(1, 704, "Chromaticity Diagram\tC"),
       item(1, 702, "Photoreceptor Response Curves\tE"),
       separator(1),
       item(1, 700, "Show/Hide Colour Space Window\tW"),
       item(1, 701, "Dock to Main Window\tK"),
       submenu(0, "View Options"),
       item(1, n + 53, "Hit Transparent\tH"),
       item(1, n + 54, "Full Screen\tF"),
       item(1, n + 50, "Toggle Colour Transform\tTab"),
       item(1, n + 51, "Toggle Window Frame\tSpace"),
       item(1, n + 52, "Copy to Clipboard (single monitor setup only)\tCtrl C"),
       submenu(0, "Help"),
       item(1, 705, "Quick Help\tF1"),
       item(1, n + 55, "User Guide (Website)"),
       separator(1),
       label(1, "Tintora Version 1.1.4 64-bit"),
       label(1, "Tintora contributors")},
  });
}

// Compares an item with the expected one. Labels are disabled without being greyed.
void expectItem(const MenuItem& actual, const ExpectedItem& expected) {
  SCOPED_TRACE(testing::Message() << actual);
  EXPECT_EQ(actual.depth, expected.depth);
  EXPECT_EQ(actual.text, expected.text);
  EXPECT_EQ(actual.submenu, expected.kind == Kind::Submenu);
  EXPECT_EQ((actual.type & MFT_SEPARATOR) != 0, expected.kind == Kind::Separator);
  // A submenu's identifier is its handle, which differs from run to run. Separators are greyed by
  // the desktop.
  if (expected.kind != Kind::Submenu) {
    EXPECT_EQ(actual.command, expected.command);
  }
  if (expected.kind != Kind::Separator) {
    EXPECT_EQ((actual.state & MF_DISABLED) != 0, expected.kind == Kind::Label);
    EXPECT_EQ(actual.state & MF_GRAYED, 0U);
  }
}

void expectMenu(const std::vector<MenuItem>& actual, const ExpectedItems& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i) expectItem(actual[i], expected[i]);
}

using Menus = UndrawnTest;

TEST_F(Menus, AreShortWithoutTheLetters) {
  start();
  expectMenu(menu(), expectedMenu({}, 0, false, false));
}

TEST_F(Menus, HaveTheOptionalItemsWithTheLetters) {
  start("-st");
  expectMenu(menu(), expectedMenu({}, 0, true, true));
}

TEST_F(Menus, BeginWithTheCustomTransforms) {
  std::ofstream(customFile(), std::ios::binary)
      << "First one\n1 0 0 0\n0 1 0 0\n0 0 1 0\n$Second\n1 0 0 0\n0 1 0 0\n0 0 1 0\n"
      << "Third\n1 0 0 0\n0 1 0 0\n0 0 1 0\n";
  start("-t");
  expectMenu(menu(), expectedMenu({label(0, "Custom Colour Transforms:"), item(0, 0, "First one"),
                                   item(0, 1, "Second"), item(0, 2, "Third"), separator(0)},
                                  3, false, true));
}

TEST_F(Menus, OpenOverEachWindow) {
  storeValues({{"View", 703}});
  start();
  press('H');
  for (const HWND window : {windows().main, windows().control, windows().colourSpace}) {
    EXPECT_NE(openMenu(window), nullptr);
    closeMenu();
  }
}

TEST_F(Menus, OpenAtTheCursor) {
  start();
  const Bounds main = boundsOf(windows().main);
  moveCursor(main.left + 40, main.top + 50);
  openMenu(windows().main);
  EXPECT_EQ(boundsOf(openMenuWindow()).left, main.left + 40);
  EXPECT_EQ(boundsOf(openMenuWindow()).top, main.top + 50);
  closeMenu();
}

TEST_F(Menus, RunWhatIsChosenInThem) {
  start();
  openMenu(windows().main);
  // Choose the second enabled item.
  for (const int key : {VK_DOWN, VK_DOWN, VK_DOWN, VK_RETURN}) {
    PostMessageA(windows().main, WM_KEYDOWN, static_cast<WPARAM>(key), 0);
  }
  EXPECT_TRUE(eventually([this] { return title() == " Simulation - Deuteranope 100% severity"; }));
}

struct MarksRow {
  const char* name;
  const char* arguments;
  std::vector<int> commands;
  std::vector<std::string> checked;
};

void PrintTo(const MarksRow& row, std::ostream* out) {
  *out << row.name;
}

const std::string protan = "Protan: Long-wave deficient, 2.6% males, 0.04% females\tP";
const std::string deutanItem = "Deutan: Medium-wave deficient, 6.2% males, 0.36% females\tD";
const std::string tritan = "Tritan: Short-wave deficient, 0.001% males, 0.03% females\tT";
const std::string simulation = "Simulation\tS";
const std::string judd = "Judd, 1948";

const std::array marksRows{
    MarksRow{"AtFirst", "", {}, {protan, simulation}},
    MarksRow{"Deutan", "", {2}, {deutanItem, simulation}},
    MarksRow{"Tritan", "-t", {3}, {tritan, simulation}},
    MarksRow{"Daltonize", "", {776}, {protan, "Daltonize\tA"}},
    MarksRow{"Inverse", "", {777}, {protan, "Inverse Transform"}},
    MarksRow{"InverseThenSimulation", "", {777, 775}, {protan, simulation}},
    MarksRow{"DaltonizeThenInverse", "-st", {776, 777}, {protan, judd, "Inverse Transform"}},
    MarksRow{"SwapRedAndBlue", "", {200}, {"Swap Red and Blue"}},
    MarksRow{"SwapRedAndGreen", "", {201}, {"Other Colour Effects"}},
    MarksRow{"Greyscale", "-st", {4}, {judd, "Other Colour Effects"}},
    MarksRow{"Filter", "-t", {101}, {"Other Colour Effects"}},
    MarksRow{"BackFromAnEffect", "", {5, 2}, {deutanItem, simulation}},
    MarksRow{"Yang", "-s", {301}, {protan, simulation, "Yang, Ro, Wong && Lee, 2008"}},
    MarksRow{"Machado", "-s", {302}, {protan, simulation, "Machado, Oliveira && Fernandes, 2009"}},
    MarksRow{"Vienot1997",
             "-s",
             {303},
             {protan, simulation, "Vi\xe9not, Brettel && Mollon, 1997 - Approximated"}},
    MarksRow{"Vienot1999", "-s", {304}, {protan, simulation, "Vi\xe9not, Brettel && Mollon, 1999"}},
    MarksRow{"JuddAgain", "-s", {304, 300}, {protan, simulation, judd}},
};

class Marks : public UndrawnTest, public testing::WithParamInterface<MarksRow> {};

TEST_P(Marks, AreThoseOfTheirRow) {
  start(GetParam().arguments);
  for (const int command : GetParam().commands) choose(command);
  std::vector<std::string> texts;
  for (const MenuItem& item : checkedItems()) texts.push_back(item.text);
  EXPECT_EQ(texts, GetParam().checked);
}

INSTANTIATE_TEST_SUITE_P(By, Marks, testing::ValuesIn(marksRows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace tintora::windows_test
