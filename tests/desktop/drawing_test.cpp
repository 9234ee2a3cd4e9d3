// The program draws what has changed, and no more.
#include <xcb/damage.h>

#include <chrono>
#include <thread>

#include "program_run.h"

namespace tintora::desktop_test {
namespace {

class Drawing : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    storeValues({{"Selected", 4}, {"ColorSpace", 0}});
    start();
    const Area area = view();
    scene().addNoise({area.x - 50, area.y - 50, 600, 500}, 1);
    ASSERT_TRUE(viewShows(expected::greyscale()));
    watch();
  }
  void watch() {
    watcher_ = std::make_unique<XClient>(display().name());
    xcb_connection_t* const c = watcher_->connection();
    const Received<xcb_damage_query_version_reply_t> version(
        xcb_damage_query_version_reply(c, xcb_damage_query_version(c, 1, 1), nullptr));
    const xcb_damage_damage_t damage = xcb_generate_id(c);
    watcher_->check(
        xcb_damage_create_checked(c, damage, viewWindow(), XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES));
    notify_ = xcb_get_extension_data(c, &xcb_damage_id)->first_event;
  }
  // Returns what was drawn since the last call, as rectangles in the view.
  std::vector<Area> drawn() {
    settle();
    watcher_->sync();
    std::vector<Area> areas;
    watcher_->takeEvents([&](const xcb_generic_event_t& event) {
      if ((event.response_type & 0x7F) != notify_) return;
      const auto& area = reinterpret_cast<const xcb_damage_notify_event_t&>(event).area;
      areas.push_back({area.x, area.y, area.width, area.height});
    });
    return areas;
  }
  // Waits until nothing more is drawn. On a busy machine, drawing after the start or after a new
  // window comes late, and a look at the background comes 300 ms after that. Paints what the server
  // has asked for late, because painting it during a test would be a change.
  void comeToRest() {
    constexpr std::chrono::milliseconds quiet{600};
    ASSERT_TRUE(eventually([&] {
      std::this_thread::sleep_for(quiet);
      scene().takeEvents();
      return drawn().empty();
    }));
  }
  static int pixels(const std::vector<Area>& areas) {
    int sum = 0;
    for (const Area& area : areas) sum += area.width * area.height;
    return sum;
  }
  bool shows() { return viewShows(expected::greyscale()); }

 private:
  std::unique_ptr<XClient> watcher_;
  int notify_ = 0;
};

TEST_F(Drawing, NothingIsDrawnWhereNothingChanges) {
  comeToRest();
  settle();
  EXPECT_TRUE(drawn().empty());
}

TEST_F(Drawing, ASmallChangeIsASmallPartOfTheView) {
  comeToRest();
  scene().draw(scene().at(0), noise(30, 20, 5), 150, 170);
  ASSERT_TRUE(shows());
  const auto areas = drawn();
  ASSERT_FALSE(areas.empty());
  for (const Area& area : areas) {
    EXPECT_EQ(common(area, {100, 120, 30, 20}), area);
  }
  EXPECT_EQ(pixels(areas), 30 * 20);
}

TEST_F(Drawing, TwoSmallChangesApartAreTwoSmallParts) {
  comeToRest();
  scene().draw(scene().at(0), noise(10, 10, 5), 60, 60);
  scene().draw(scene().at(0), noise(10, 10, 6), 480, 400);
  ASSERT_TRUE(shows());
  EXPECT_EQ(pixels(drawn()), 2 * 10 * 10);
}

TEST_F(Drawing, AWindowThatMovesALittleIsDrawnWhereItWasAndIs) {
  Sheet& sheet = scene().addNoise({view().x + 100, view().y + 100, 80, 60}, 2);
  ASSERT_TRUE(shows());
  comeToRest();
  scene().move(sheet, sheet.place.x + 10, sheet.place.y);
  ASSERT_TRUE(shows());
  const auto areas = drawn();
  ASSERT_FALSE(areas.empty());
  for (const Area& area : areas) EXPECT_EQ(common(area, {100, 100, 90, 60}), area);
}

TEST_F(Drawing, AChangeBesideTheViewOrAboveItDrawsNothing) {
  comeToRest();
  scene().draw(scene().at(0), noise(40, 20, 5), 0, 0);
  Sheet& above = scene().addNoise({view().x + 100, view().y + 100, 80, 60}, 2);
  x().restack(above.window, XCB_STACK_MODE_ABOVE);
  settle();
  comeToRest();
  scene().draw(above, noise(80, 60, 3), 0, 0);
  settle();
  EXPECT_TRUE(drawn().empty());
}

TEST_F(Drawing, AChangeThatIsHiddenBeneathDrawsNothingNew) {
  scene().addNoise({view().x, view().y, 200, 200}, 2);
  ASSERT_TRUE(shows());
  comeToRest();
  // If anything there is drawn again, it must look the same.
  scene().draw(scene().at(0), noise(40, 20, 5), 100, 100);
  settle();
  EXPECT_TRUE(shows());
  EXPECT_LE(pixels(drawn()), 40 * 20);
}

TEST_F(Drawing, ATransformIsDrawnOnceOverTheWholeView) {
  comeToRest();
  press(XK_i);
  ASSERT_TRUE(viewShows(expected::inverted()));
  EXPECT_EQ(pixels(drawn()), view().width * view().height);
}

TEST_F(Drawing, AFastAnimationEndsRight) {
  for (std::uint32_t i = 0; i < 300; ++i) {
    scene().draw(scene().at(0), noise(200, 100, i), 100 + static_cast<int>(i % 50), 120);
  }
  EXPECT_TRUE(shows());
}

}  // namespace
}  // namespace tintora::desktop_test
