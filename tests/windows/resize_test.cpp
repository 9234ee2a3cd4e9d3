// Resizes the colour space window many times.
#include <windows.h>

#include <cstddef>
#include <random>

#include "colour_space_run.h"
#include "ink.h"
#include "picture.h"
#include "seen_cube.h"

namespace tintora::windows_test {
namespace {

// Has Wine draw straight into the window for programs that are started while this exists. Otherwise
// it first tries out formats for each device, which takes longer than all the rest.
class DrawingStraight {
 public:
  DrawingStraight() {
    EXPECT_EQ(RegSetKeyValueA(HKEY_CURRENT_USER, direct3dKey, "OffscreenRenderingMode", REG_SZ,
                              mode, sizeof mode),
              ERROR_SUCCESS);
  }
  ~DrawingStraight() { RegDeleteTreeA(HKEY_CURRENT_USER, direct3dKey); }
  DrawingStraight(const DrawingStraight&) = delete;
  DrawingStraight& operator=(const DrawingStraight&) = delete;

 private:
  static constexpr char mode[] = "backbuffer";
};

class Resizing : public ColourSpaceTest {
 protected:
  // Resizes at random, down to one pixel; small sizes are as frequent as large ones.
  void resizeAtRandom(int times) {
    const auto length = [&] {
      const int longest = std::bernoulli_distribution()(sizes_) ? 30 : 700;
      return std::uniform_int_distribution(1, longest)(sizes_);
    };
    for (int i = 0; i < times; ++i) resize({length(), length()});
  }

 private:
  std::mt19937 sizes_{1};
};

TEST_F(Resizing, LeavesNothingBehindAndEverythingAsItWas) {
  constexpr int untilSettled = 10;
  constexpr int times = 75;
  constexpr ClientSize size{400, 400};
  const DrawingStraight quick;
  startWith(ColourSpaceView::CubeView, size, 2, 50);
  drag(MK_LBUTTON, {{200, 200}, {300, 240}});
  const CubeForm form{.turns = {{.right = 25.0, .down = 10.0}},
                      .weights = expected::juddDeutan(0.5)};
  resizeAtRandom(untilSettled);
  resize(size);
  const Picture before = shown();
  EXPECT_TRUE(showsSolidCube(before, form));
  const Objects objectsBefore = objects();
  const std::size_t memoryBefore = memory();
  EXPECT_GT(objectsBefore.graphics, 0U);
  EXPECT_GT(memoryBefore, 0U);

  resizeAtRandom(times);
  resize(size);
  EXPECT_TRUE(areAlike(shown(), before, 0));
  const Objects objectsAfter = objects();
  // The desktop keeps a few objects for itself.
  EXPECT_LE(objectsAfter.graphics, objectsBefore.graphics + 5);
  EXPECT_LE(objectsAfter.user, objectsBefore.user);
  // A device with its buffers takes more than a megabyte, so a leak would exceed this.
  EXPECT_LT(memory(), memoryBefore + times * 50'000U);
}

// A window of nine pixels keeps the old picture, squeezed. A new picture would show a cube as
// narrow as it is low.
TEST_F(Resizing, ToNinePixelsLeavesThePicture) {
  startWith(ColourSpaceView::CubeView, {400, 400}, 2, 0);
  const auto coloured = [](const Picture& picture, int row) {
    int count = 0;
    for (int x = 0; x < picture.width; ++x) count += picture.at(x, row) != background ? 1 : 0;
    return count;
  };
  const int whole = coloured(shown(), 200);
  EXPECT_GT(whole, 200);
  resize({400, 9});
  const Picture squeezed = shown();
  ASSERT_EQ(squeezed.height, 9);
  EXPECT_NEAR(coloured(squeezed, 4), whole, 4);
  resize({400, 10});
  EXPECT_LT(coloured(shown(), 5), 20);
}

}  // namespace
}  // namespace tintora::windows_test
