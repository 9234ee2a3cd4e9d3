#include "menu_run.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>

namespace tintora::desktop_test {

namespace {

const std::map<std::string, std::vector<std::string>> submenus{
    {"Simulation Option", {"Judd", "Vienot 1997", "Vienot 1999", "Yang", "Machado"}},
    {"Other Colour Effects",
     {"Colour Swap", "Colour Filter", "Invert", "Greyscale", "Brightness", "Contrast", "Saturation",
      "Circadian Light Block"}},
    {"Colour Swap", {"Swap Red and Green", "Swap Green and Blue"}},
    {"Colour Filter", {"Red", "Green", "Blue", "Yellow", "Magenta", "Cyan"}},
    {"Colour Space Window", {"RGB Cube", "Chromaticity Diagram", "Curves", "Show/Hide", "Dock"}},
    {"View Options",
     {"Hit Transparent", "Full Screen", "Toggle Transform", "Toggle Frame", "Copy"}},
    {"Help", {"Quick Help", "User Guide"}},
};

// Returns the rows in which two pictures differ.
std::set<int> changedRows(const Picture& a, const Picture& b) {
  std::set<int> rows;
  for (int y = 0; y < a.height; ++y) {
    for (int x = 0; x < a.width; ++x) {
      if (a.at(x, y) != b.at(x, y)) rows.insert(y);
    }
  }
  return rows;
}

// Returns true if the column for marks is not empty.
bool hasMark(const Picture& menu, const std::set<int>& rows) {
  constexpr int from = 6;
  constexpr int to = 24;
  std::set<std::uint32_t> colours;
  for (const int y : rows) {
    if (y == *rows.begin() || y == *rows.rbegin()) continue;
    for (int x = from; x < to; ++x) colours.insert(menu.at(x, y));
  }
  return colours.size() > 1;
}

}  // namespace

std::vector<std::string> MenuTest::itemsOf(const std::string& menu) const {
  if (!menu.empty()) return submenus.at(menu);
  std::vector<std::string> items = contents.customs;
  items.insert(items.end(), {"Protan", "Deutan"});
  if (contents.tritan) items.emplace_back("Tritan");
  items.emplace_back("Simulation");
  if (contents.simulationOptions) items.emplace_back("Simulation Option");
  items.insert(items.end(),
               {"Daltonize", "Inverse Transform", "Swap Red and Blue", "Other Colour Effects",
                "Colour Space Window", "View Options", "Help"});
  return items;
}

void MenuTest::pressTimes(xcb_keysym_t symbol, int times) {
  for (int i = 0; i < times; ++i) x().press(symbol);
  settle();
}

void MenuTest::openMenu() {
  const Area area = view();
  x().moveMouse(area.x + 20, area.y + 20);
  settle();
  x().click(3);
  ASSERT_TRUE(eventually([this] { return openMenus().size() == 1; }));
  settle();
}

void MenuTest::closeMenus() {
  for (int depth = 0; depth < 4 && !openMenus().empty(); ++depth) pressTimes(XK_Escape);
  ASSERT_TRUE(eventually([this] { return openMenus().empty(); }));
}

void MenuTest::highlight(const std::string& menu, const std::string& item,
                         bool firstIsHighlighted) {
  const std::vector<std::string> items = itemsOf(menu);
  const auto found = std::ranges::find(items, item);
  if (found == items.end()) throw std::runtime_error("There is no item " + item);
  pressTimes(XK_Down, static_cast<int>(found - items.begin()) + (firstIsHighlighted ? 0 : 1));
}

void MenuTest::openSubmenus(const Path& path) {
  openMenu();
  std::string menu;
  for (const std::string& item : path) {
    highlight(menu, item, !menu.empty());
    const std::size_t open = openMenus().size();
    pressTimes(XK_Right);
    ASSERT_TRUE(eventually([&] { return openMenus().size() == open + 1; })) << item;
    settle();
    menu = item;
  }
}

void MenuTest::choose(const Path& path) {
  openSubmenus({path.begin(), path.end() - 1});
  highlight(path.size() == 1 ? "" : path[path.size() - 2], path.back(), path.size() > 1);
  pressTimes(XK_Return);
  ASSERT_TRUE(eventually([this] { return openMenus().empty(); }));
  settle();
}

std::vector<std::string> MenuTest::markedItems(const Path& path) {
  openSubmenus(path);
  const std::string menu = path.empty() ? "" : path.back();
  const std::vector<std::string> items = itemsOf(menu);
  const xcb_window_t window = openMenus().back();
  const auto picture = [&] { return x().read(x().areaOf(window)); };
  // Takes a picture while each item is highlighted. Its rows differ from those of all other
  // pictures.
  std::vector<Picture> pictures;
  if (path.empty()) pressTimes(XK_Down);
  for (std::size_t i = 0; i < items.size(); ++i) {
    pictures.push_back(picture());
    const Picture& before = pictures.back();
    pressTimes(XK_Down);
    EXPECT_TRUE(eventually([&] { return !changedRows(before, picture()).empty(); }));
    // The rest of the change may come after its first rows.
    settle();
  }
  std::vector<std::string> marked;
  for (std::size_t i = 0; i < items.size(); ++i) {
    std::map<int, std::size_t> differing;
    for (const Picture& other : pictures) {
      for (const int row : changedRows(pictures[i], other)) ++differing[row];
    }
    std::set<int> rows;
    for (const auto& [row, count] : differing) {
      if (count == items.size() - 1) rows.insert(row);
    }
    if (hasMark(pictures[(i + 1) % items.size()], rows)) marked.push_back(items[i]);
  }
  closeMenus();
  return marked;
}

}  // namespace tintora::desktop_test
