// The colour space window at many sizes, covered, hidden and shown again.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <random>

#include "views_run.h"
#include "x_resources.h"

namespace tintora::desktop_test {
namespace {

using expected::juddDeutan;

class ResizedViews : public ViewsTest {
 protected:
  // Starts with the cube for deutan at half severity, turned.
  void startTurned() {
    startWith(View::Cube, {}, 2, 50);
    drag(1, {{200, 200}, {300, 240}});
  }
  testing::AssertionResult cubeIsAsTurned() {
    return shows(shown(), cubeShapes(juddDeutan(0.5), {{.right = 25, .down = 10}}), {titleArea()});
  }
  testing::AssertionResult diagramIsThatOfTheTransform() {
    std::vector<Area> texts = wavelengthLabelAreas({});
    texts.push_back(titleArea());
    return shows(shown(), diagramShapes(juddDeutan(0.5)), texts);
  }
  // Resizes at random; small sizes are as frequent as large ones.
  void resizeAtRandom(int times) {
    const auto length = [&] {
      const int longest = std::bernoulli_distribution()(sizes_) ? 30 : 700;
      return std::uniform_int_distribution(1, longest)(sizes_);
    };
    for (int i = 0; i < times; ++i) {
      const int width = length();
      x().resize(colourSpace(), width, length());
      settle();
    }
  }
  std::ptrdiff_t openFiles() {
    const std::filesystem::path folder = "/proc/" + std::to_string(process().id()) + "/fd";
    return std::ranges::distance(std::filesystem::directory_iterator(folder),
                                 std::filesystem::directory_iterator());
  }

 private:
  std::mt19937 sizes_{1};
};

TEST_F(ResizedViews, KeepTheCubesOrientationAndTheTransform) {
  startTurned();
  EXPECT_TRUE(cubeIsAsTurned());
  for (const PictureSize& size : {PictureSize{800, 600}, PictureSize{351, 500},
                                  PictureSize{700, 201}, PictureSize{400, 400}}) {
    resizeTo(size);
    EXPECT_TRUE(cubeIsAsTurned()) << size.width << "x" << size.height;
  }
}

TEST_F(ResizedViews, OfFiveHundredSizesLeaveNothingBehind) {
  startTurned();
  const Picture before = shown();
  resizeAtRandom(50);
  resizeTo({});
  const auto resources = resourcesOf(x(), process().id());
  const long memory = process().memory();
  const auto files = openFiles();
  ASSERT_TRUE(resources.contains("WINDOW"));
  resizeAtRandom(500);
  resizeTo({});
  EXPECT_TRUE(comesToShow(before));
  EXPECT_TRUE(cubeIsAsTurned());
  EXPECT_TRUE(eventually([&] { return resourcesOf(x(), process().id()) == resources; }))
      << testing::PrintToString(resourcesOf(x(), process().id()));
  EXPECT_EQ(openFiles(), files);
  constexpr long kilobytes = 16 * 1024;
  EXPECT_LT(process().memory() - memory, kilobytes);
  turnTo(View::Diagram);
  EXPECT_TRUE(diagramIsThatOfTheTransform());
  end();
}

// Succeeds if the window shows the old picture, squeezed or stretched. Where a pixel is split,
// either half may appear.
testing::AssertionResult fills(const Picture& window, const Picture& old) {
  const auto places = [](int place, int length, int oldLength) {
    const double middle = (place + 0.5) * oldLength / length - 0.5;
    const auto within = [&](double value) {
      return std::clamp(static_cast<int>(value), 0, oldLength - 1);
    };
    return std::array{within(std::floor(middle)), within(std::ceil(middle))};
  };
  for (int y = 0; y < window.height; ++y) {
    for (int x = 0; x < window.width; ++x) {
      bool found = false;
      for (const int oldY : places(y, window.height, old.height)) {
        for (const int oldX : places(x, window.width, old.width)) {
          found |= ((old.at(oldX, oldY) ^ window.at(x, y)) & 0xFFFFFFU) == 0;
        }
      }
      if (!found)
        return testing::AssertionFailure() << "The old picture is not at " << x << "," << y;
    }
  }
  return testing::AssertionSuccess();
}

TEST_F(ResizedViews, AreLeftAsTheyWereBelowTenPixelsEitherWay) {
  startTurned();
  const Picture before = shown();
  for (const PictureSize& size :
       {PictureSize{9, 400}, PictureSize{400, 9}, PictureSize{600, 9}, PictureSize{1, 1}}) {
    resizeTo(size);
    const Picture picture = shown();
    ASSERT_EQ(picture.width, size.width);
    EXPECT_TRUE(fills(picture, before)) << size.width << "x" << size.height;
    resizeTo({});
    EXPECT_TRUE(comesToShow(before));
  }
}

TEST_F(ResizedViews, AreDrawnAnewFromTenPixelsOn) {
  startTurned();
  resizeTo({10, 400});
  EXPECT_TRUE(cubeIsAsTurned());
  const auto cubeInTheMiddle = [this] {
    const Picture picture = shown();
    int count = 0;
    for (int x = 0; x < picture.width; ++x) {
      count += (picture.at(x, 5) & 0xFFFFFFU) != viewBackground ? 1 : 0;
    }
    return count;
  };
  resizeTo({});
  resizeTo({400, 9});
  EXPECT_GT(cubeInTheMiddle(), 100);
  // Drawn again, the cube is as narrow as the window is low.
  resizeTo({400, 10});
  EXPECT_GT(cubeInTheMiddle(), 2);
  EXPECT_LT(cubeInTheMiddle(), 20);
}

class CoveredViews : public ViewsTest, public testing::WithParamInterface<View> {
 protected:
  void hide() {
    x().tellManager(colourSpace(), "_NET_CLOSE_WINDOW", {0, 2});
    ASSERT_TRUE(showing(colourSpace(), false));
    settle();
  }
  void showAgain() {
    turnTo(GetParam());
    ASSERT_TRUE(showing(colourSpace(), true));
  }
  void turnWheelOverMain(bool up, int times) {
    x().moveMouse(view());
    turnWheel(up, times);
    settle();
  }
};

TEST_P(CoveredViews, AreWholeAgainWhenTheyAreUncovered) {
  startWith(GetParam(), {}, 2, 50);
  const Picture before = shown();
  const Area area = inside();
  Sheet& sheet = scene().addNoise({area.x + 50, area.y - 40, 300, 300}, 1);
  x().restack(sheet.window, XCB_STACK_MODE_ABOVE);
  EXPECT_TRUE(eventually([&] {
    scene().takeEvents();
    return !areSame(shown(), before);
  }));
  scene().remove(sheet);
  EXPECT_TRUE(comesToShow(before));
}

TEST_P(CoveredViews, AreWholeAgainWhenTheyAreShownAgain) {
  startWith(GetParam(), {}, 2, 50);
  const Picture before = shown();
  for (int round = 0; round < 3; ++round) {
    hide();
    showAgain();
    EXPECT_TRUE(comesToShow(before));
  }
}

TEST_P(CoveredViews, FollowTheTransformWhileTheyAreHidden) {
  startWith(GetParam(), {}, 2, 50);
  turnWheelOverMain(true, 4);
  const Picture expected = shown();
  turnWheelOverMain(false, 4);
  if (GetParam() == View::Help) {
    EXPECT_TRUE(comesToShow(expected));
  } else {
    EXPECT_TRUE(eventually([&] { return !areSame(shown(), expected); }));
  }
  hide();
  turnWheelOverMain(true, 4);
  showAgain();
  EXPECT_TRUE(comesToShow(expected));
}

INSTANTIATE_TEST_SUITE_P(Each, CoveredViews,
                         testing::Values(View::Curves, View::Cube, View::Diagram, View::Help),
                         [](const auto& row) {
                           return std::to_string(static_cast<int>(row.param));
                         });

}  // namespace
}  // namespace tintora::desktop_test
