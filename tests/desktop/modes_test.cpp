// Every way to change the transform: what the view shows over a picture of all colours, and the
// title.
#include <functional>

#include "engine/cvd_transforms.h"
#include "menu_run.h"
#include "spectral/simulation_matrix.h"

namespace tintora::desktop_test {
namespace {

using namespace expected;

constexpr double severity = 0.6;
const std::string deutanTitle = " Simulation - Deuteranomalous 60% severity";

struct KeyRow {
  xcb_keysym_t key;
  const char* title;
  ColourEffect effect;
  std::vector<xcb_keysym_t> holding = {};
};

const std::vector<KeyRow> keyRows{
    {XK_p, " Simulation - Protanomalous 60% severity", effectOf(juddProtan(severity))},
    {XK_d, " Simulation - Deuteranomalous 60% severity", effectOf(juddDeutan(severity))},
    {XK_t, " Simulation - Tritanomalous 60% severity", effectOf(juddTritan(severity))},
    {XK_a, " Daltonize - Tritanomalous 60% severity", effectOf(daltonized(juddTritan(severity)))},
    {XK_s, " Simulation - Tritanomalous 60% severity", effectOf(juddTritan(severity))},
    {XK_g, "Greyscale", greyscale()},
    {XK_i, "Invert ", inverted()},
    {XK_b, "Brightness +0%", identityEffect},
    {XK_Page_Up, "Brightness +1%", brightened(0.01)},
    {XK_Page_Down, "Brightness +0%", identityEffect},
    {XK_minus, "Brightness -1%", brightened(-0.01)},
    {XK_o, "Contrast 100%", identityEffect},
    {XK_KP_Subtract, "Contrast 99%", withContrast(0.99)},
    {XK_KP_Add, "Contrast 100%", identityEffect},
    {XK_n, "Saturation 100%", identityEffect},
    {XK_minus, "Saturation 99%", withSaturation(0.99)},
    {XK_equal, "Saturation 100%", identityEffect},
    {XK_l, "Circadian Light Block, Brightness 60%", circadian(severity)},
    {XK_Page_Up, "Circadian Light Block, Brightness 65%", circadian(0.65)},
    {XK_KP_Add, "Circadian Light Block, Brightness 70%", circadian(0.7)},
    {XK_equal, "Circadian Light Block, Brightness 75%", circadian(0.75), {XK_Shift_L}},
    {XK_equal, "Circadian Light Block, Brightness 80%", circadian(0.8)},
    {XK_Page_Down, "Circadian Light Block, Brightness 75%", circadian(0.75)},
    {XK_KP_Subtract, "Circadian Light Block, Brightness 70%", circadian(0.7)},
    {XK_minus, "Circadian Light Block, Brightness 65%", circadian(0.65)},
    {XK_minus, "Circadian Light Block, Brightness 60%", circadian(0.6), {XK_Shift_L}},
    {XK_Tab, offTitle, identityEffect},
    {XK_Tab, "Circadian Light Block, Brightness 60%", circadian(severity)},
    {XK_q, "Circadian Light Block, Brightness 60%", circadian(severity)},
    {XK_d,
     " Simulation - Deuteranomalous 60% severity",
     effectOf(juddDeutan(severity)),
     {XK_Shift_L}},
};

class Modes : public MenuTest {
 protected:
  // Starts with a deutan simulation at 60 %, over a picture of all colours.
  void begin(const std::vector<std::string>& arguments = {}) {
    storeValues({{"Selected", 2 + static_cast<int>(contents.customs.size())},
                 {"ScrollPc", 60},
                 {"ColorSpace", 0}});
    start(arguments);
    const Area area = view();
    scene().addNoise({area.x - 10, area.y - 10, area.width + 20, area.height + 20}, 7);
  }
};

TEST_F(Modes, EveryKeyShowsItsTransform) {
  begin({"-t"});
  ASSERT_TRUE(viewShows(effectOf(juddDeutan(severity))));
  for (const KeyRow& row : keyRows) {
    SCOPED_TRACE(row.title);
    press(row.key, row.holding);
    EXPECT_TRUE(titleBecomes(row.title));
    EXPECT_TRUE(viewShows(row.effect));
  }
}

TEST_F(Modes, KeyTDoesNothingWithoutItsLetter) {
  begin();
  press(XK_t);
  EXPECT_EQ(title(main()), deutanTitle);
  EXPECT_TRUE(viewShows(effectOf(juddDeutan(severity))));
}

struct ItemRow {
  std::vector<std::string> path;
  const char* title;
  ColourEffect effect;
};

const std::vector<ItemRow> itemRows{
    {{"Protan"}, " Simulation - Protanomalous 60% severity", effectOf(juddProtan(severity))},
    {{"Tritan"}, " Simulation - Tritanomalous 60% severity", effectOf(juddTritan(severity))},
    {{"Deutan"}, " Simulation - Deuteranomalous 60% severity", effectOf(juddDeutan(severity))},
    {{"Daltonize"},
     " Daltonize - Deuteranomalous 60% severity",
     effectOf(daltonized(juddDeutan(severity)))},
    {{"Inverse Transform"},
     " Inverse Transform - Deuteranomalous 60% severity",
     effectOf(inverse(juddDeutan(severity)))},
    {{"Simulation"}, " Simulation - Deuteranomalous 60% severity", effectOf(juddDeutan(severity))},
    {{"Swap Red and Blue"}, "Swap 60% Red and Blue", swapped(0, 2, severity)},
    {{"Other Colour Effects", "Colour Swap", "Swap Red and Green"},
     "Swap 60% Red and Green",
     swapped(0, 1, severity)},
    {{"Other Colour Effects", "Colour Swap", "Swap Green and Blue"},
     "Swap 60% Green and Blue",
     swapped(1, 2, severity)},
    {{"Other Colour Effects", "Colour Filter", "Red"},
     "60% Red Filter",
     expected::filtered({1, 0, 0}, severity)},
    {{"Other Colour Effects", "Colour Filter", "Green"},
     "60% Green Filter",
     expected::filtered({0, 1, 0}, severity)},
    {{"Other Colour Effects", "Colour Filter", "Blue"},
     "60% Blue Filter",
     expected::filtered({0, 0, 1}, severity)},
    {{"Other Colour Effects", "Colour Filter", "Yellow"},
     "60% Yellow Filter",
     expected::filtered({1, 1, 0}, severity)},
    {{"Other Colour Effects", "Colour Filter", "Magenta"},
     "60% Magenta Filter",
     expected::filtered({1, 0, 1}, severity)},
    {{"Other Colour Effects", "Colour Filter", "Cyan"},
     "60% Cyan Filter",
     expected::filtered({0, 1, 1}, severity)},
    {{"Other Colour Effects", "Invert"}, "Invert ", inverted()},
    {{"Other Colour Effects", "Greyscale"}, "Greyscale", greyscale()},
    {{"Other Colour Effects", "Brightness"}, "Brightness +0%", identityEffect},
    {{"Other Colour Effects", "Contrast"}, "Contrast 100%", identityEffect},
    {{"Other Colour Effects", "Saturation"}, "Saturation 100%", identityEffect},
    {{"Other Colour Effects", "Circadian Light Block"},
     "Circadian Light Block, Brightness 60%",
     circadian(severity)},
    {{"View Options", "Toggle Transform"}, offTitle, identityEffect},
    {{"View Options", "Toggle Transform"},
     "Circadian Light Block, Brightness 60%",
     circadian(severity)},
};

TEST_F(Modes, EveryMenuItemShowsItsTransform) {
  contents.tritan = true;
  begin({"-t"});
  for (const ItemRow& row : itemRows) {
    SCOPED_TRACE(row.title);
    choose(row.path);
    EXPECT_TRUE(titleBecomes(row.title));
    EXPECT_TRUE(viewShows(row.effect));
  }
}

Weights yangProtan() {
  initialiseModelContext(modelContext);
  const Matrix3x3 m =
      computeSimulationMatrix(CvdType::Protan, 1, SimulationAlgorithm::Yang2008, false, false);
  return {{{m[0], m[1], m[2]}, {m[3], m[4], m[5]}, {m[6], m[7], m[8]}}};
}

TEST_F(Modes, EveryAlgorithmShowsItsMatrix) {
  contents.simulationOptions = true;
  begin({"-s"});
  press(XK_p);
  x().moveMouse(view());
  turnWheel(true, 8);
  const std::vector<std::pair<std::string, Weights>> rows{{"Machado", machadoProtan()},
                                                          {"Vienot 1997", vienot1997Protan()},
                                                          {"Vienot 1999", vienot1999Protan()},
                                                          {"Yang", yangProtan()},
                                                          {"Judd", juddProtan(1)}};
  for (const auto& [name, weights] : rows) {
    SCOPED_TRACE(name);
    choose({"Simulation Option", name});
    EXPECT_TRUE(titleBecomes(" Simulation - Protanope 100% severity"));
    EXPECT_TRUE(viewShows(effectOf(weights)));
    EXPECT_EQ(markedItems({"Simulation Option"}), std::vector{name});
  }
}

struct WheelRow {
  xcb_keysym_t mode;
  bool up;
  int times;
  const char* title;
  ColourEffect effect;
};

const std::vector<WheelRow> wheelRows{
    {XK_d, false, 3, " Simulation - Deuteranomalous 45% severity", effectOf(juddDeutan(0.45))},
    {XK_d, true, 12, " Simulation - Deuteranope 100% severity", effectOf(juddDeutan(1))},
    {XK_d, false, 21, " Simulation - Deuteranomalous 0% severity", identityEffect},
    {XK_p, true, 7, " Simulation - Protanomalous 35% severity", effectOf(juddProtan(0.35))},
    {XK_b, true, 25, "Brightness +25%", brightened(0.25)},
    {XK_b, false, 60, "Brightness -35%", brightened(-0.35)},
    {XK_b, false, 70, "Brightness -100%", brightened(-1)},
    {XK_o, false, 30, "Contrast 70%", withContrast(0.7)},
    {XK_o, true, 31, "Contrast 100%", identityEffect},
    {XK_n, false, 40, "Saturation 60%", withSaturation(0.6)},
    {XK_n, false, 61, "Saturation 0%", withSaturation(0)},
    {XK_l, true, 1, "Circadian Light Block, Brightness 40%", circadian(0.4)},
};

TEST_F(Modes, TheWheelStepsTheValueOfTheMode) {
  begin();
  x().moveMouse(view());
  for (const WheelRow& row : wheelRows) {
    SCOPED_TRACE(row.title);
    press(row.mode);
    turnWheel(row.up, row.times);
    EXPECT_TRUE(titleBecomes(row.title));
    EXPECT_TRUE(viewShows(row.effect));
  }
}

constexpr const char* customFile =
    "Swap of two\n0 0 1 0\n0 1 0 0\n1 0 0 0\n"
    "$Warm\n1 0.2 0 0.1\n0 0.8 0 0\n0 0 0.5 0\n";

TEST_F(Modes, CustomTransformsOfTheUsersFolderAreShown) {
  contents.customs = {"Swap of two", "Warm"};
  writeFile(configFolder() + "/tintora/Tintora_custom.txt", customFile);
  begin();
  ASSERT_TRUE(titleBecomes(deutanTitle));
  choose({"Swap of two"});
  EXPECT_TRUE(titleBecomes("Swap of two"));
  EXPECT_TRUE(viewShows(swapped(0, 2, 1)));
  choose({"Warm"});
  EXPECT_TRUE(titleBecomes("Warm   60% (mouse-wheel adjusts %)"));
  EXPECT_TRUE(viewShows(
      effectOf({{{1, 0.2 * severity, 0}, {0, 1 - 0.2 * severity, 0}, {0, 0, 1 - 0.5 * severity}}},
               {0.1 * severity, 0, 0})));
  x().moveMouse(view());
  turnWheel(true, 8);
  EXPECT_TRUE(titleBecomes("Warm   100% (mouse-wheel adjusts %)"));
  EXPECT_TRUE(viewShows(effectOf({{{1, 0.2, 0}, {0, 0.8, 0}, {0, 0, 0.5}}}, {0.1, 0, 0})));
  EXPECT_EQ(title(main()), "Warm   100% (mouse-wheel adjusts %)");
}

}  // namespace
}  // namespace tintora::desktop_test
