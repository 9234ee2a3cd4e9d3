// The views beside those of the program on another desktop, whose pictures lie in the folder that
// TINTORA_OTHER_PICTURES names. Only text, drawn with other fonts, may be different.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "views_run.h"

namespace tintora::desktop_test {
namespace {

// In every channel.
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

// Pixels outside text.
struct Comparison {
  int compared = 0;
  int moved = 0;  // edges, to the next pixel
  int wrong = 0;
};

Comparison compare(const Picture& a, const Picture& b, const std::vector<Area>& texts) {
  Comparison result;
  for (int y = 0; y < a.height; ++y) {
    for (int x = 0; x < a.width; ++x) {
      if (std::ranges::any_of(texts, [&](const Area& text) { return text.contains(x, y); })) {
        continue;
      }
      ++result.compared;
      if (isLike(a.at(x, y), b.at(x, y))) continue;
      const bool moved = hasNear(a, x, y, b.at(x, y)) && hasNear(b, x, y, a.at(x, y));
      ++(moved ? result.moved : result.wrong);
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
  // Where either desktop may have drawn text.
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
    std::printf("%s: %d of %d pixels beside text differ, %d of them along edges.\n", name.c_str(),
                found.moved + found.wrong, found.compared, found.moved);
    EXPECT_EQ(found.wrong, 0);
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
