// Thousands of windows beneath the view, and programs that end in the middle of their work.
#include <xcb/shape.h>

#include <csignal>
#include <map>
#include <random>

#include "program_run.h"
#include "x_resources.h"

namespace tintora::desktop_test {
namespace {

class Endurance : public ProgramTest {
 protected:
  std::map<std::string, std::uint32_t> resources() { return resourcesOf(x(), process().id()); }

  // Makes the program create what it needs for blending and then keeps.
  void blendOnce() {
    scene().add({.place = {view().x + 20, view().y + 20, 50, 50},
                 .picture = solid(50, 50, 0x80402010),
                 .translucent = true});
    EXPECT_TRUE(viewShows(expected::greyscale()));
    scene().remove(scene().at(0));
    EXPECT_TRUE(viewShows(expected::greyscale()));
  }

  // Succeeds once the program holds as many resources as before.
  testing::AssertionResult holdsOnly(const std::map<std::string, std::uint32_t>& before) {
    if (eventually([&] { return resources() == before; })) return testing::AssertionSuccess();
    return testing::AssertionFailure() << testing::PrintToString(resources()) << " instead of "
                                       << testing::PrintToString(before);
  }

  void settleWell() {
    for (int i = 0; i < 3; ++i) settle();
  }
};

// Creates and destroys windows beneath and above a place.
class Crowd {
 public:
  Crowd(const XClient& client, const Area& around, xcb_window_t own)
      : client_(client),
        around_(around),
        own_(own),
        context_(xcb_generate_id(client.connection())) {
    xcb_create_gc(x(), context_, client.root(), 0, nullptr);
  }

  void act() {
    if (windows_.size() < 5 || (windows_.size() < 60 && pick(3) == 0)) return create();
    const auto i = static_cast<std::size_t>(pick(static_cast<int>(windows_.size())));
    switch (pick(9)) {
      case 0:
        xcb_destroy_window(x(), windows_[i].id);
        windows_.erase(windows_.begin() + static_cast<std::ptrdiff_t>(i));
        return;
      case 1:
        return configure(i, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, {left(), top()});
      case 2:
        return configure(i, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, {size(), size()});
      case 3:
        return configure(i, XCB_CONFIG_WINDOW_STACK_MODE, {static_cast<std::uint32_t>(pick(2))});
      case 4:
        return shape(i);
      case 5:
        return configure(i, XCB_CONFIG_WINDOW_BORDER_WIDTH, {static_cast<std::uint32_t>(pick(5))});
      case 6:
        xcb_unmap_window(x(), windows_[i].id);
        return;
      case 7:
        xcb_map_window(x(), windows_[i].id);
        return putUnder(windows_[i].id);
      default:
        return draw(i);
    }
  }
  int created() const { return created_; }
  void leave() {
    for (const Member& member : windows_) xcb_destroy_window(x(), member.id);
    windows_.clear();
    client_.sync();
  }

 private:
  struct Member {
    xcb_window_t id;
    bool translucent;
  };
  xcb_connection_t* x() const { return client_.connection(); }
  int pick(int count) { return static_cast<int>(random_() % static_cast<unsigned int>(count)); }
  std::uint32_t colour() { return static_cast<std::uint32_t>(random_()); }
  std::uint32_t left() { return u32(around_.x - 150 + pick(around_.width + 150)); }
  std::uint32_t top() { return u32(around_.y - 150 + pick(around_.height + 150)); }
  std::uint32_t size() { return u32(1 + pick(200)); }
  void configure(std::size_t i, std::uint16_t mask, const std::vector<std::uint32_t>& values) {
    xcb_configure_window(x(), windows_[i].id, mask, values.data());
  }
  void putUnder(xcb_window_t window) {
    const std::array<std::uint32_t, 2> values{own_, XCB_STACK_MODE_BELOW};
    xcb_configure_window(x(), window, XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE,
                         values.data());
  }
  void create() {
    const Member member{xcb_generate_id(x()), pick(4) == 0};
    xcb_visualid_t visual = client_.screen().root_visual;
    xcb_colormap_t colours = client_.screen().default_colormap;
    if (member.translucent) {
      visual = client_.translucentVisual();
      if (colours_ == XCB_NONE) {
        colours_ = xcb_generate_id(x());
        xcb_create_colormap(x(), XCB_COLORMAP_ALLOC_NONE, colours_, client_.root(), visual);
      }
      colours = colours_;
    }
    const std::array<std::uint32_t, 4> looks{colour(), 0, 1, colours};
    xcb_create_window(
        x(), member.translucent ? 32 : 24, member.id, client_.root(),
        static_cast<std::int16_t>(left()), static_cast<std::int16_t>(top()),
        static_cast<std::uint16_t>(size()), static_cast<std::uint16_t>(size()), u16(pick(4)),
        XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
        XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_COLORMAP,
        looks.data());
    if (pick(5) != 0) putUnder(member.id);
    xcb_map_window(x(), member.id);
    windows_.push_back(member);
    ++created_;
  }
  void shape(std::size_t i) {
    const std::array<xcb_rectangle_t, 2> parts{
        {{i16(pick(50)), i16(pick(50)), 60, 40}, {i16(pick(90)), i16(pick(90)), 30, 80}}};
    xcb_shape_rectangles(x(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, XCB_CLIP_ORDERING_UNSORTED,
                         windows_[i].id, 0, 0, static_cast<std::uint32_t>(pick(3)), parts.data());
  }
  void draw(std::size_t i) {
    if (windows_[i].translucent) {
      xcb_clear_area(x(), 0, windows_[i].id, 0, 0, u16(pick(90)), u16(pick(90)));
      return;
    }
    const xcb_rectangle_t part{i16(pick(100)), i16(pick(100)), u16(pick(60)), u16(pick(60))};
    const std::uint32_t foreground = colour();
    xcb_change_gc(x(), context_, XCB_GC_FOREGROUND, &foreground);
    xcb_poly_fill_rectangle(x(), windows_[i].id, context_, 1, &part);
  }

  const XClient& client_;
  Area around_;
  xcb_window_t own_;
  xcb_gcontext_t context_;
  xcb_colormap_t colours_ = XCB_NONE;
  std::vector<Member> windows_;
  int created_ = 0;
  std::mt19937 random_{1948};
};

TEST_F(Endurance, TenThousandWindowsComeAndGo) {
  storeValues({{"Selected", 4}, {"ColorSpace", 0}});
  start();
  blendOnce();
  const XClient others(display().name());
  Crowd crowd(others, view(), others.topLevelOf(main()));
  // The first crowd makes the program create what it keeps for all.
  while (crowd.created() < 500) crowd.act();
  crowd.leave();
  settleWell();
  ASSERT_TRUE(viewShows(expected::greyscale()));
  const auto before = resources();
  ASSERT_TRUE(before.contains("PIXMAP"));
  const long memory = process().memory();
  int moves = 0;
  while (crowd.created() < 10'500) {
    crowd.act();
    // Moves windows as fast as possible, but lets the server catch up.
    if (++moves % 200 == 0) others.sync();
    if (moves % 5000 == 0) settle();
    if (HasFatalFailure()) return;
  }
  crowd.leave();
  settleWell();
  ASSERT_TRUE(process().isRunning());
  EXPECT_TRUE(viewShows(expected::greyscale()));
  scene().addNoise({view().x + 20, view().y + 20, 300, 200}, 1);
  EXPECT_TRUE(viewShows(expected::greyscale()));
  scene().remove(scene().at(0));
  EXPECT_TRUE(viewShows(expected::greyscale()));
  settleWell();
  EXPECT_TRUE(holdsOnly(before));
  constexpr long kilobytes = 16 * 1024;
  EXPECT_LT(process().memory() - memory, kilobytes);
  end();
}

TEST_F(Endurance, AProgramThatIsKilledWhileItDrawsIsNoHarm) {
  storeValues({{"Selected", 4}, {"ColorSpace", 0}});
  start();
  blendOnce();
  settleWell();
  const auto before = resources();
  const Area area = view();
  for (int round = 0; round < 8; ++round) {
    const pid_t child = fork();
    if (child == 0) {
      const XClient own(display().name());
      Crowd crowd(own, area, own.topLevelOf(main()));
      while (true) crowd.act();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    kill(child, SIGKILL);
    settle();
    ASSERT_TRUE(process().isRunning());
  }
  EXPECT_TRUE(viewShows(expected::greyscale()));
  settleWell();
  EXPECT_TRUE(holdsOnly(before));
  end();
}

TEST_F(Endurance, AThousandSizesAndTransformsLeaveNothingBehind) {
  storeValues({{"Selected", 4}, {"ColorSpace", 0}});
  start();
  const auto round = [this] {
    for (int i = 0; i < 250; ++i) {
      x().resize(main(), 200 + 7 * (i % 90), 150 + 5 * (i % 70));
      x().press(i % 2 == 0 ? XK_g : XK_i);
    }
    x().resize(main(), 500, 400);
    press(XK_g);
    EXPECT_TRUE(eventually([this] { return view().width == 500; }));
    settleWell();
  };
  round();
  const auto before = resources();
  const long memory = process().memory();
  for (int i = 0; i < 3; ++i) round();
  EXPECT_TRUE(viewShows(expected::greyscale()));
  EXPECT_TRUE(holdsOnly(before));
  constexpr long kilobytes = 16 * 1024;
  EXPECT_LT(process().memory() - memory, kilobytes);
  end();
}

}  // namespace
}  // namespace tintora::desktop_test
