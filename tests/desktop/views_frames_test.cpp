// The colour space window draws one frame for each of the user's actions, and no others.
#include <xcb/damage.h>

#include <chrono>
#include <thread>

#include "views_run.h"

namespace tintora::desktop_test {
namespace {

class Frames : public ViewsTest {
 protected:
  void watch() {
    watcher_ = std::make_unique<XClient>(display().name());
    xcb_connection_t* const c = watcher_->connection();
    const Received<xcb_damage_query_version_reply_t> version(
        xcb_damage_query_version_reply(c, xcb_damage_query_version(c, 1, 1), nullptr));
    watcher_->check(xcb_damage_create_checked(c, xcb_generate_id(c), colourSpace(),
                                              XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES));
    notify_ = xcb_get_extension_data(c, &xcb_damage_id)->first_event;
    // On a busy machine, frames of earlier actions come late.
    constexpr std::chrono::milliseconds quiet{200};
    ASSERT_TRUE(eventually([&] {
      std::this_thread::sleep_for(quiet);
      return frames() == 0;
    }));
  }
  // Returns the number of frames since the last call. Each covers the whole window.
  int frames() {
    settle();
    watcher_->sync();
    int count = 0;
    watcher_->takeEvents([&](const xcb_generic_event_t& event) {
      if ((event.response_type & 0x7F) != notify_) return;
      const auto& area = reinterpret_cast<const xcb_damage_notify_event_t&>(event).area;
      EXPECT_EQ((Area{area.x, area.y, area.width, area.height}), (Area{0, 0, 400, 400}));
      ++count;
    });
    return count;
  }

 private:
  std::unique_ptr<XClient> watcher_;
  int notify_ = 0;
};

TEST_F(Frames, NoneIsDrawnWhileNothingHappens) {
  startWith(View::Cube);
  watch();
  std::this_thread::sleep_for(std::chrono::milliseconds(600));
  EXPECT_EQ(frames(), 0);
}

TEST_F(Frames, OneIsDrawnForEachStepOfTheWheel) {
  for (const View view : {View::Curves, View::Cube, View::Diagram, View::Help}) {
    startWith(view);
    x().moveMouse(ProgramTest::view());
    settle();
    watch();
    for (int step = 0; step < 5; ++step) {
      turnWheel(true, 1);
      EXPECT_EQ(frames(), 1) << static_cast<int>(view);
    }
    end();
  }
}

TEST_F(Frames, OneIsDrawnForAKeyAndOneForLettingItGo) {
  startWith(View::Cube);
  focus(main());
  settle();
  watch();
  for (const int key : {XK_p, XK_d, XK_g, XK_i}) {
    x().key(static_cast<xcb_keysym_t>(key), true);
    EXPECT_EQ(frames(), 1);
    x().key(static_cast<xcb_keysym_t>(key), false);
    EXPECT_EQ(frames(), 1);
  }
}

// One frame while the cube turns, and one after the event.
TEST_F(Frames, TwoAreDrawnForAStepOfADrag) {
  startWith(View::Cube);
  moveInside({200, 200});
  x().button(1, true);
  settle();
  watch();
  for (int step = 1; step <= 5; ++step) {
    moveInside({200 + 10 * step, 200});
    EXPECT_EQ(frames(), 2);
  }
  x().button(1, false);
}

TEST_F(Frames, NoneIsDrawnForWhatChangesBeneathTheView) {
  startWith(View::Cube);
  Sheet& sheet = scene().addNoise({view().x + 20, view().y + 20, 100, 100}, 1);
  settle();
  watch();
  for (std::uint32_t seed = 0; seed < 5; ++seed) scene().draw(sheet, noise(100, 100, seed), 0, 0);
  settle();
  EXPECT_EQ(frames(), 0);
}

}  // namespace
}  // namespace tintora::desktop_test
