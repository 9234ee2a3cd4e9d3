// Compares the views with pictures of the program on another desktop, from the folder in
// TINTORA_OTHER_PICTURES. Only text may differ, because it is drawn with other fonts.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "views_run.h"

namespace tintora::desktop_test {
namespace {

// The tolerance in every channel.
constexpr double levels = 2;

bool isLike(std::uint32_t a, std::uint32_t b) {
  const Colour one = colourOf(a);
  const Colour other = colourOf(b);
  return std::ranges::equal(one, other,
                            [](double x, double y) { return std::abs(x - y) <= levels; });
}

bool hasNear(const Picture& picture, int x, int y, std::uint32_t pixel) {
  const Area near = common({x - 1, y - 1, 3, 3}, {0, 0, picture.width, picture.height});
  for (int row = near.y; row < near.bottom(); ++row) {
    for (int column = near.x; column < near.right(); ++column) {
      if (isLike(picture.at(column, row), pixel)) return true;
    }
  }
  return false;
}

// Counts of pixels outside text.
struct Comparison {
  int compared = 0;
  int edges = 0;  // differ from the pixel to the left or above
  int moved = 0;  // equal to a neighbour in the other picture
  int wrong = 0;

  // Edges may be a pixel off here and there. If a whole picture is shifted, almost half of its
  // edges or more are elsewhere.
  bool isOfOneKind() const { return wrong == 0 && moved <= edges / 10; }
};

bool isEdge(const Picture& picture, int x, int y) {
  const std::uint32_t pixel = picture.at(x, y);
  return (x > 0 && !isLike(picture.at(x - 1, y), pixel)) ||
         (y > 0 && !isLike(picture.at(x, y - 1), pixel));
}

Comparison compare(const Picture& a, const Picture& b, const std::vector<Area>& texts) {
  Comparison result;
  for (int y = 0; y < a.height; ++y) {
    for (int x = 0; x < a.width; ++x) {
      if (std::ranges::any_of(texts, [&](const Area& text) { return text.contains(x, y); })) {
        continue;
      }
      ++result.compared;
      result.edges += isEdge(a, x, y) ? 1 : 0;
      if (isLike(a.at(x, y), b.at(x, y))) continue;
      const bool moved = hasNear(a, x, y, b.at(x, y)) && hasNear(b, x, y, a.at(x, y));
      ++(moved ? result.moved : result.wrong);
    }
  }
  return result;
}

// Returns the picture moved by some pixels, with its border repeated.
Picture moved(const Picture& picture, int byX, int byY) {
  Picture result = solid(picture.width, picture.height, 0);
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      result.pixels[static_cast<std::size_t>(y * picture.width + x)] = picture.at(
          std::clamp(x - byX, 0, picture.width - 1), std::clamp(y - byY, 0, picture.height - 1));
    }
  }
  return result;
}

struct ComparedView {
  const char* name;
  View view;
  PictureSize size;
};

void PrintTo(const ComparedView& view, std::ostream* out) {
  *out << view.name << "-" << view.size.width << "x" << view.size.height;
}

class ViewsBesideAnotherDesktops : public ViewsTest,
                                   public testing::WithParamInterface<ComparedView> {
 protected:
  // Returns the areas in which either desktop may have drawn text.
  static std::vector<Area> texts() {
    constexpr int margin = 3;
    const auto& [name, view, size] = GetParam();
    if (view == View::Help) return {{0, 0, 416, size.height}};
    std::vector<Area> areas;
    if (view == View::Curves) areas = curveLabelAreas(size);
    if (view == View::Diagram) areas = wavelengthLabelAreas(size);
    areas.push_back(titleArea());
    for (Area& area : areas) {
      area = {area.x - margin, area.y - margin, area.width + 2 * margin, area.height + 2 * margin};
    }
    return areas;
  }
  void isThatOf(const std::string& suffix) {
    const char* const folder = std::getenv("TINTORA_OTHER_PICTURES");
    ASSERT_NE(folder, nullptr);
    const std::string name = testing::PrintToString(GetParam()) + suffix;
    const Picture own = shown();
    saveScreen(name, inside());
    const Picture other = readPicture(std::string(folder) + "/" + name + ".png");
    ASSERT_EQ(other.width, own.width) << name;
    ASSERT_EQ(other.height, own.height) << name;
    const Comparison found = compare(own, other, texts());
    std::printf("%s: %d of %d pixels beside text differ, %d of them along %d edges.\n",
                name.c_str(), found.moved + found.wrong, found.compared, found.moved, found.edges);
    EXPECT_TRUE(found.isOfOneKind());
    if (GetParam().view == View::Help) return;  // all of it is text
    for (const auto& [x, y] : {std::pair{1, 0}, {-1, 0}, {0, 1}, {0, -1}}) {
      EXPECT_FALSE(compare(own, moved(other, x, y), texts()).isOfOneKind()) << x << "," << y;
    }
  }
};

TEST_P(ViewsBesideAnotherDesktops, DifferInNothingButTextAndEdges) {
  const auto& [name, view, size] = GetParam();
  startWith(view, size);
  isThatOf("");
  const Picture whole = shown();
  stepSeverity(true, 10);
  if (view == View::Cube) drag(1, {{200, 200}, {280, 160}});
  isThatOf("-half");
  EXPECT_EQ(static_cast<bool>(areSame(shown(), whole)), view == View::Help);
}

std::vector<ComparedView> comparedViews() {
  std::vector<ComparedView> views;
  for (const PictureSize& size : pictureSizes) {
    views.push_back({"response-curves", View::Curves, size});
    views.push_back({"rgb-cube", View::Cube, size});
    views.push_back({"chromaticity-diagram", View::Diagram, size});
    views.push_back({"help", View::Help, size});
  }
  return views;
}

INSTANTIATE_TEST_SUITE_P(Each, ViewsBesideAnotherDesktops, testing::ValuesIn(comparedViews()));

}  // namespace
}  // namespace tintora::desktop_test
