// The picture that is put on the clipboard, and the title that confirms it.
#include <png.h>

#include <chrono>

#include "program_run.h"

namespace tintora::desktop_test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* copiedTitle = "Image Copied To Clipboard";

Picture decode(const std::string& file) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&image, file.data(), file.size()) == 0) return {};
  image.format = PNG_FORMAT_BGRA;
  Picture picture = solid(static_cast<int>(image.width), static_cast<int>(image.height), 0);
  png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, nullptr);
  return picture;
}

class Clipboard : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    storeValues({{"Selected", 5}, {"ColorSpace", 0}});
    start();
    const Area area = view();
    scene().addNoise({area.x - 20, area.y - 40, 400, 300}, 1);
    ASSERT_TRUE(viewShows(expected::inverted()));
    reader_ = std::make_unique<XClient>(display().name());
    asker_ = xcb_generate_id(reader_->connection());
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(reader_->connection(), XCB_COPY_FROM_PARENT, asker_, reader_->root(), 0, 0, 1,
                      1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &events);
  }
  std::string ask(const std::string& format) {
    const XClient& r = *reader_;
    const xcb_atom_t place = r.atom("TINTORA_TEST");
    xcb_delete_property(r.connection(), asker_, place);
    xcb_convert_selection(r.connection(), asker_, r.atom("CLIPBOARD"), r.atom(format), place,
                          XCB_CURRENT_TIME);
    bool answered = false;
    EXPECT_TRUE(eventually([&] {
      r.sync();
      r.takeEvents([&](const xcb_generic_event_t& event) {
        answered |= (event.response_type & 0x7F) == XCB_SELECTION_NOTIFY;
      });
      return answered;
    }));
    return r.property(asker_, place);
  }
  void expectViewOnClipboard() {
    const Area area = view();
    const std::vector<Colour> beneath = scene().colours(area);
    const Picture copied = decode(ask("image/png"));
    ASSERT_EQ(copied.width, area.width);
    ASSERT_EQ(copied.height, area.height);
    for (std::size_t i = 0; i < beneath.size(); ++i) {
      const Colour expected = desktop_test::filtered(beneath[i], expected::inverted());
      const Colour actual = colourOf(copied.pixels[i]);
      for (std::size_t c = 0; c < 3; ++c) ASSERT_LE(std::abs(actual[c] - expected[c]), 1.0) << i;
    }
  }

 private:
  std::unique_ptr<XClient> reader_;
  xcb_window_t asker_ = XCB_NONE;
};

TEST_F(Clipboard, ControlCCopiesTheViewAndNothingElse) {
  press(XK_c, {XK_Control_L});
  EXPECT_TRUE(titleBecomes(copiedTitle));
  expectViewOnClipboard();
  // The view of the colour space is not what the key means now.
  EXPECT_FALSE(x().isShown(colourSpace()));
}

TEST_F(Clipboard, ControlODoesTheSame) {
  press(XK_o, {XK_Control_R});
  EXPECT_TRUE(titleBecomes(copiedTitle));
  expectViewOnClipboard();
}

TEST_F(Clipboard, WhatHasJustChangedIsInThePicture) {
  for (std::uint32_t seed = 2; seed < 6; ++seed) {
    const std::string before = ask("TIMESTAMP");
    scene().draw(scene().at(0), noise(300, 200, seed), 30, 50);
    press(XK_c, {XK_Control_L});
    // Until then what was copied before is handed out.
    ASSERT_TRUE(eventually([&] { return ask("TIMESTAMP") != before; }));
    expectViewOnClipboard();
  }
}

TEST_F(Clipboard, TheTitleComesBackAfterThreeSeconds) {
  const auto begin = Clock::now();
  press(XK_c, {XK_Control_L});
  ASSERT_TRUE(titleBecomes(copiedTitle));
  ASSERT_TRUE(titleBecomes("Invert "));
  const auto taken = Clock::now() - begin;
  EXPECT_GT(taken, std::chrono::milliseconds(2900));
  EXPECT_LT(taken, std::chrono::milliseconds(4500));
}

TEST_F(Clipboard, ASecondCopyBeginsTheThreeSecondsAnew) {
  press(XK_c, {XK_Control_L});
  ASSERT_TRUE(titleBecomes(copiedTitle));
  std::this_thread::sleep_for(std::chrono::milliseconds(1500));
  const auto begin = Clock::now();
  press(XK_c, {XK_Control_L});
  ASSERT_TRUE(titleBecomes("Invert "));
  EXPECT_GT(Clock::now() - begin, std::chrono::milliseconds(2900));
}

}  // namespace
}  // namespace tintora::desktop_test
