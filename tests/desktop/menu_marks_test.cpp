// The marks in the open menu, its labels and its texts.
#include "menu_run.h"

namespace tintora::desktop_test {
namespace {

using Marks = MenuTest;
using Names = std::vector<std::string>;

TEST_F(Marks, NameTheTransformInForce) {
  contents.tritan = true;
  contents.simulationOptions = true;
  storeValues({{"Selected", 2}, {"ColorSpace", 0}});
  start({"-st"});
  EXPECT_EQ(markedItems(), (Names{"Deutan", "Simulation"}));
  const std::vector<std::pair<Path, Names>> rows{
      {{"Protan"}, {"Protan", "Simulation"}},
      {{"Daltonize"}, {"Protan", "Daltonize"}},
      {{"Tritan"}, {"Tritan", "Daltonize"}},
      {{"Inverse Transform"}, {"Tritan", "Inverse Transform"}},
      {{"Swap Red and Blue"}, {"Swap Red and Blue"}},
      {{"Other Colour Effects", "Colour Swap", "Swap Red and Green"}, {"Other Colour Effects"}},
      {{"Simulation"}, {"Tritan", "Simulation"}},
  };
  for (const auto& [path, marks] : rows) {
    SCOPED_TRACE(path.back());
    choose(path);
    EXPECT_EQ(markedItems(), marks);
  }
  EXPECT_EQ(markedItems({"Simulation Option"}), Names{"Judd"});
}

TEST_F(Marks, AMenuIsClosedByEscAndChangesNothing) {
  storeValues({{"Selected", 2}, {"ColorSpace", 0}});
  start();
  openMenu();
  saveScreen("menu", x().screenArea());
  closeMenus();
  settle();
  EXPECT_EQ(title(main()), " Simulation - Deuteranope 100% severity");
}

// A window that was shown just before the menu may get the focus late.
TEST_F(Marks, KeysAreTheOpenMenusWhicheverWindowGetsTheFocus) {
  storeValues({{"Selected", 2}, {"View", 703}, {"ColorSpace", 1}});
  start();
  const Area before = view();
  for (const xcb_window_t window : {colourSpace(), main()}) {
    openMenu();
    focus(window);
    settle();
    pressTimes(XK_g);
    EXPECT_EQ(title(main()), " Simulation - Deuteranope 100% severity");
    pressTimes(XK_Down, 2);
    pressTimes(XK_Up);
    pressTimes(XK_Return);
    EXPECT_TRUE(titleBecomes(" Simulation - Protanope 100% severity"));
    EXPECT_TRUE(openMenus().empty());
    EXPECT_EQ(view(), before);
    press(XK_d);
    EXPECT_TRUE(titleBecomes(" Simulation - Deuteranope 100% severity"));
  }
}

TEST_F(Marks, AClickOnALabelChoosesNothing) {
  storeValues({{"Selected", 2}, {"ColorSpace", 0}});
  contents.customs = {"First"};
  writeFile(configFolder() + "/tintora/Tintora_custom.txt", "First\n0 0 1 0\n0 1 0 0\n1 0 0 0\n");
  storeValues({{"Selected", 3}, {"ColorSpace", 0}});
  start();
  openMenu();
  const Area menu = x().areaOf(openMenus().front());
  x().moveMouse(menu.x + 60, menu.y + 10);
  settle();
  x().click(1);
  settle();
  EXPECT_EQ(title(main()), " Simulation - Deuteranope 100% severity");
  EXPECT_EQ(openMenus().size(), 1U);
  closeMenus();
}

TEST_F(Marks, CommandsOfTheViewMenuDoWhatTheirKeysDo) {
  storeValues({{"Selected", 2}, {"ColorSpace", 0}});
  start();
  const Area framed = x().outerAreaOf(main());
  choose({"View Options", "Toggle Frame"});
  EXPECT_TRUE(eventually([&] { return view() == framed; }));
  choose({"View Options", "Toggle Frame"});
  EXPECT_TRUE(eventually([&] { return view() != framed; }));
  choose({"View Options", "Copy"});
  EXPECT_TRUE(titleBecomes("Image Copied To Clipboard"));
  choose({"Colour Space Window", "Chromaticity Diagram"});
  EXPECT_TRUE(showing(colourSpace(), true));
  choose({"Colour Space Window", "Show/Hide"});
  EXPECT_TRUE(showing(colourSpace(), false));
  choose({"Help", "Quick Help"});
  EXPECT_TRUE(showing(colourSpace(), true));
  EXPECT_TRUE(eventually([this] { return title(colourSpace()) == "Help"; }));
  choose({"View Options", "Hit Transparent"});
  EXPECT_TRUE(showing(control(), true));
  press(XK_h);
  EXPECT_TRUE(showing(control(), false));
  choose({"View Options", "Full Screen"});
  EXPECT_TRUE(eventually([this] { return view() == x().screenArea(); }));
  EXPECT_TRUE(showing(control(), true));
  press(XK_f);
  EXPECT_TRUE(eventually([&] { return x().outerAreaOf(main()) == framed; }));
}

// Compares a submenu with a menu of the same desktop that has the texts as they must appear: in
// Unicode, each && as one &, keys in a column of their own, labels like items.
TEST_F(Marks, SubmenusHaveTheirTextsAndKeys) {
  contents.simulationOptions = true;
  storeValues({{"Selected", 2}, {"ColorSpace", 0}});
  start({"-s"});
  struct Submenu {
    std::string name;
    int highlighted;
    int marked;
    Names texts;
  };
  const std::vector<Submenu> submenus{
      {"Simulation Option",
       1,
       1,
       {"Alternative transforms:", "Judd, 1948",
        "Vi\xC3\xA9not, Brettel && Mollon, 1997 - Approximated",
        "Vi\xC3\xA9not, Brettel && Mollon, 1999", "Yang, Ro, Wong && Lee, 2008",
        "Machado, Oliveira && Fernandes, 2009"}},
      {"View Options",
       0,
       -1,
       {"Hit Transparent\tH", "Full Screen\tF", "Toggle Colour Transform\tTab",
        "Toggle Window Frame\tSpace", "Copy to Clipboard (single monitor setup only)\tCtrl C"}}};
  for (const auto& [name, highlighted, marked, texts] : submenus) {
    SCOPED_TRACE(name);
    openSubmenus({name});
    settle();
    const Picture actual = x().read(x().areaOf(openMenus().back()));
    closeMenus();

    Launch reference = launch();
    reference.command = {TINTORA_REFERENCE_MENU, std::to_string(highlighted),
                         std::to_string(marked)};
    reference.command.insert(reference.command.end(), texts.begin(), texts.end());
    reference.output = folder() + "/reference";
    reference.environment.erase("LD_PRELOAD");
    const Process menu(reference);
    Picture wanted;
    EXPECT_TRUE(eventually([&] {
      const std::string window = readFile(reference.output);
      if (!window.ends_with('\n')) return false;
      wanted = x().read(x().areaOf(static_cast<xcb_window_t>(std::stoul(window))));
      return actual.width == wanted.width && actual.pixels == wanted.pixels;
    }));
    saveScreen("menu-texts", x().screenArea());
  }
}

}  // namespace
}  // namespace tintora::desktop_test
