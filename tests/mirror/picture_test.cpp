// The mirror's picture, pixel by pixel: formats, rows, crops, sizes, changes and the copy.
#include <cmath>

#include "../desktop/clipboard_reader.h"
#include "mirror_run.h"

namespace tintora::mirror_test {
namespace {

using desktop_test::noise;
using desktop_test::partOf;
using desktop_test::readFile;
using desktop_test::replacePart;
using desktop_test::solid;
using desktop_test::writeFile;

class MirrorPicture : public MirrorTest {};

// PipeWire may pass buffers on before they have memory.
class BareBuffers : public MirrorTest {
 protected:
  void SetUp() override {
    MirrorTest::SetUp();
    preload(TINTORA_BARE_BUFFERS);
    startMirror();
    showNoise(400, 300, 1);
  }
  // Says how many of the next buffers have no memory. The source has four.
  void setBare(int count) const { writeFile(left(), std::to_string(count)); }
  std::string left() const { return folder() + "/bare-buffers"; }
};

TEST_F(MirrorPicture, EveryFormatIsShownWithItsRowsAndItsCrop) {
  startMirror();
  struct Layout {
    int width, height, offset, padding;
    Area crop;
  };
  const std::vector<Layout> layouts{{640, 480, 0, 0, {}},
                                    {333, 217, 64, 44, {}},
                                    {512, 300, 16, 256, {30, 21, 301, 203}},
                                    {513, 300, 0, 0, {100, 0, 301, 203}}};
  std::uint32_t seed = 0;
  for (const std::string format : {"BGRx", "BGRA", "RGBx", "RGBA"}) {
    for (const auto& [width, height, offset, padding, crop] : layouts) {
      std::ostringstream command;
      command << "format " << format << ' ' << width << ' ' << height << ' ' << offset << ' '
              << padding << ' ' << crop.x << ' ' << crop.y << ' ' << crop.width << ' '
              << crop.height;
      session().send(command.str());
      session().send("frame " + std::to_string(++seed));
      const Picture whole = noise(width, height, seed);
      EXPECT_TRUE(viewHas(crop.width > 0 ? partOf(whole, crop) : whole, expected::greyscale()))
          << command.str();
    }
  }
  end();
}

TEST_F(BareBuffers, AreReplaced) {
  // Those of the first two new streams may be without memory too.
  for (const int count : {4, 12}) {
    setBare(count);
    showNoise(330 + count, 217, 2);
    EXPECT_EQ(readFile(left()), "0");
  }
  end();
}

// The stream begins three times at most without being asked: for the format, and anew.
TEST_F(BareBuffers, AFirstFrameThatGetsLostAfterThemIsAskedFor) {
  setBare(4);
  session().send("format BGRx 333 217 0 0 0 0 0 0");
  session().send("lost 4 2");
  EXPECT_TRUE(viewHas(noise(333, 217, 2), expected::greyscale()));
  EXPECT_EQ(readFile(left()), "0");
}

TEST_F(BareBuffers, AreSaidIfThereAreNoOthers) {
  setBare(1000);
  session().send("format BGRx 333 217 0 0 0 0 0 0");
  EXPECT_TRUE(prints("tintora: The desktop has stopped sending the picture."));
}

TEST_F(MirrorPicture, AnotherMatrixShowsTheLastFrame) {
  startMirror();
  Picture picture = showNoise(400, 300, 1);
  // The source repeats its first frame, but not this one.
  session().send("part 0 0 10 10 2");
  replacePart(picture, noise(400, 300, 2), {0, 0, 10, 10});
  ASSERT_TRUE(viewHas(picture, expected::greyscale()));
  session().send("part 200 100 10 10 3");
  replacePart(picture, noise(400, 300, 3), {200, 100, 10, 10});
  ASSERT_TRUE(viewHas(picture, expected::greyscale()));
  press(XK_i);
  EXPECT_TRUE(viewHas(picture, expected::inverted()));
  session().send("frame 2");
  EXPECT_TRUE(viewHas(noise(400, 300, 2), expected::inverted()));
}

TEST_F(MirrorPicture, OnlyWhatIsSaidToHaveChangedIsDrawn) {
  startMirror();
  Picture picture = showNoise(400, 300, 1);
  // The second one differs everywhere, but says that only the part has changed.
  std::uint32_t seed = 1;
  for (const char* const what : {"part", "lie"}) {
    ++seed;
    session().send(what + (" 50 60 111 33 " + std::to_string(seed)));
    replacePart(picture, noise(400, 300, seed), {50, 60, 111, 33});
    EXPECT_TRUE(viewHas(picture, expected::greyscale())) << what;
  }
}

TEST_F(MirrorPicture, BuffersWithoutPixelsAreSkipped) {
  startMirror();
  Picture picture = showNoise(400, 300, 1);
  // Each buffer without pixels says that everything has changed. The next one has another picture
  // everywhere, so it shows whether that was believed.
  std::uint32_t seed = 1;
  const auto change = [&](const std::string& how) {
    ++seed;
    session().send(how + " 0 0 10 10 " + std::to_string(seed));
    replacePart(picture, noise(400, 300, seed), {0, 0, 10, 10});
    return viewHas(picture, expected::greyscale());
  };
  EXPECT_TRUE(change("part"));
  for (const char* const without : {"empty", "broken"}) {
    session().send(without);
    EXPECT_TRUE(change("lie")) << without;
  }
  press(XK_i);
  EXPECT_TRUE(viewHas(picture, expected::inverted()));
  session().send("frame 9");
  EXPECT_TRUE(viewHas(noise(400, 300, 9), expected::inverted()));
}

// Turns a picture by 90 degrees clockwise.
Picture turned(const Picture& picture) {
  Picture result = solid(picture.height, picture.width, 0);
  for (int y = 0; y < result.height; ++y) {
    for (int x = 0; x < result.width; ++x) {
      result.pixels[static_cast<std::size_t>(y * result.width + x)] =
          picture.at(y, picture.height - 1 - x);
    }
  }
  return result;
}

Picture flipped(const Picture& picture) {
  Picture result = picture;
  for (int y = 0; y < picture.height; ++y) {
    const auto row = result.pixels.begin() + static_cast<std::ptrdiff_t>(y) * picture.width;
    std::reverse(row, row + picture.width);
  }
  return result;
}

// The source says what was done to the picture: it was flipped or not, then turned
// counter-clockwise by so many quarters.
TEST_F(MirrorPicture, ATurnedOrFlippedPictureIsShownAsItWas) {
  startMirror();
  showNoise(320, 200, 1);
  const auto restored = [](Picture picture, int number) {
    for (int quarter = 0; quarter < number % 4; ++quarter) picture = turned(picture);
    return number < 4 ? picture : flipped(picture);
  };
  for (int number = 7; number >= 0; --number) {
    const auto seed = static_cast<std::uint32_t>(10 + number);
    session().send("transform " + std::to_string(number));
    session().send("frame " + std::to_string(seed));
    Picture sent = noise(320, 200, seed);
    EXPECT_TRUE(viewHas(restored(sent, number), expected::greyscale())) << number;
    session().send("part 30 40 100 20 1");
    replacePart(sent, noise(320, 200, 1), {30, 40, 100, 20});
    EXPECT_TRUE(viewHas(restored(sent, number), expected::greyscale())) << number;
  }
}

TEST_F(MirrorPicture, APictureLargerThanTheScreenIsScaledDown) {
  startMirror();
  session().send("format RGBx 3200 2400 0 0 0 0 0 0");
  session().send("frame 1");
  const Picture picture = noise(3200, 2400, 1);
  // The window's frame takes a part of the screen's height.
  const auto fits = [this] {
    const Area now = view();
    const Area outer = x().outerAreaOf(main());
    return now.height > 900 && std::abs(now.width - now.height * 4.0 / 3.0) <= 1.5 &&
           common(outer, x().screenArea()) == outer;
  };
  ASSERT_TRUE(eventually(fits, most)) << testing::PrintToString(view());
  settle();
  const Area area = view();
  EXPECT_TRUE(partHas([this] { return view(); }, scaledByArea(picture, area.width, area.height),
                      expected::greyscale(), 2));
  session().send("part 1000 700 500 400 2");
  Picture changed = picture;
  replacePart(changed, noise(3200, 2400, 2), {1000, 700, 500, 400});
  EXPECT_TRUE(partHas([this] { return view(); }, scaledByArea(changed, area.width, area.height),
                      expected::greyscale(), 2));
}

TEST_F(MirrorPicture, AWindowThatItsUserSizesKeepsThePicturesShape) {
  startMirror();
  const Picture picture = showNoise(400, 300, 1);
  x().resize(main(), 300, 500);
  ASSERT_TRUE(eventually([&] { return view().height == 500; }, most));
  const auto place = [this] { return Area{view().x, view().y + 137, 300, 225}; };
  EXPECT_TRUE(partHas(place, scaledByArea(picture, 300, 225), expected::greyscale(), 2));
  const auto above = [this] { return Area{view().x, view().y, 300, 137}; };
  EXPECT_TRUE(partHas(above, solid(300, 137, 0), expected::identityEffect, 0));
  // With more room than it needs, the picture keeps its own size.
  x().resize(main(), 501, 420);
  ASSERT_TRUE(eventually([&] { return view().height == 420; }, most));
  const auto middle = [this] { return Area{view().x + 50, view().y + 60, 400, 300}; };
  EXPECT_TRUE(partHas(middle, picture, expected::greyscale(), 1));
  // A new size of the source must not change the size that the user chose.
  session().send("format BGRx 440 330 0 0 0 0 0 0");
  session().send("frame 2");
  const auto larger = [this] { return Area{view().x + 30, view().y + 45, 440, 330}; };
  EXPECT_TRUE(partHas(larger, noise(440, 330, 2), expected::greyscale(), 1));
}

// A source with two buffers can send nothing unless the program returns each one at once, also
// while it waits for the X server. Each round stops a program that does not in one case of three.
TEST_F(MirrorPicture, ABusyProgramDoesNotHoldUpTheSource) {
  startMirror();
  session().send("buffers 2");
  showNoise(400, 300, 1);
  std::uint32_t seed = 1;
  for (int round = 0; round < 3 && !HasFailure(); ++round) {
    {
      const auto held = display().holdServer(std::chrono::milliseconds(500));
      for (int i = 0; i < 30; ++i) session().send("frame " + std::to_string(++seed));
    }
    EXPECT_TRUE(viewHas(noise(400, 300, seed), expected::greyscale()));
  }
}

TEST_F(MirrorPicture, FullScreenFillsTheMonitor) {
  startMirror();
  const Picture picture = showNoise(1024, 400, 1);
  press(XK_f);
  const Area screen = x().screenArea();
  ASSERT_TRUE(eventually([&] { return view() == screen; }, most));
  // An area that the control window does not cover.
  const Area part{0, 0, screen.width, screen.height / 4};
  const Picture filled = scaledByArea(picture, screen.width, screen.height);
  EXPECT_TRUE(partHas([&] { return part; }, partOf(filled, part), expected::greyscale(), 2));
  press(XK_f);
  EXPECT_TRUE(viewHas(picture, expected::greyscale()));
}

TEST_F(MirrorPicture, AFirstFrameInFullScreenGivesTheWindowItsSizeLater) {
  startMirror();
  press(XK_f);
  const Area screen = x().screenArea();
  ASSERT_TRUE(eventually([&] { return view() == screen; }, most));
  session().send("format BGRx 640 250 0 0 0 0 0 0");
  session().send("frame 1");
  const Picture picture = noise(640, 250, 1);
  const Picture filled = scaledByArea(picture, screen.width, screen.height);
  const Area part{0, 0, screen.width, screen.height / 4};
  EXPECT_TRUE(partHas([&] { return part; }, partOf(filled, part), expected::greyscale(), 2));
  EXPECT_EQ(view(), screen);
  press(XK_f);
  EXPECT_TRUE(viewHas(picture, expected::greyscale()));
}

TEST_F(MirrorPicture, TheCopyHasTheSourcesFullSize) {
  startMirror();
  const Picture picture = showNoise(640, 480, 1);
  x().resize(main(), 320, 240);
  ASSERT_TRUE(eventually([&] { return view().width == 320; }, most));
  press(XK_c, {XK_Control_L});
  ASSERT_TRUE(titleBecomes("Image Copied To Clipboard"));
  const Picture copy = desktop_test::ClipboardReader(display().name()).picture();
  ASSERT_EQ(copy.width, 640);
  ASSERT_EQ(copy.height, 480);
  for (std::size_t i = 0; i < copy.pixels.size(); ++i) {
    const auto wanted =
        desktop_test::filtered(desktop_test::colourOf(picture.pixels[i]), expected::greyscale());
    const auto actual = desktop_test::colourOf(copy.pixels[i]);
    for (std::size_t c = 0; c < 3; ++c) ASSERT_NEAR(actual[c], std::round(wanted[c]), 1) << i;
  }
}

}  // namespace
}  // namespace tintora::mirror_test
