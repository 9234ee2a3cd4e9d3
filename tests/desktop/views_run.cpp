#include "views_run.h"

#include <cmath>

#include "reference_diagram.h"

namespace tintora::desktop_test {

namespace {

// The width of three figures and two letters at most, 14 pixels high.
constexpr int labelWidth = 44;
constexpr int labelHeight = 16;

// Returns the area of a label. Labels start on whole pixels, with fractions cut off, so the area
// contains each possible place.
Area labelArea(double x, double y) {
  return {static_cast<int>(x) - 2, static_cast<int>(y) - 1, labelWidth, labelHeight + 2};
}

xcb_keysym_t keyOf(View view) {
  switch (view) {
    case View::Curves:
      return XK_e;
    case View::Cube:
      return XK_r;
    case View::Diagram:
      return XK_c;
    case View::Help:
      break;
  }
  return XK_F1;
}

}  // namespace

void ViewsTest::startWith(View view, const PictureSize& size, int type, int severity) {
  startStored({{"Selected", type},
               {"ScrollPc", severity},
               {"View", static_cast<int>(view)},
               {"ColorSpace", 1}},
              size);
}

void ViewsTest::startStored(const StoredValues& values, const PictureSize& size) {
  storeValues(values);
  start({"-t"});
  ASSERT_TRUE(showing(colourSpace(), true));
  // The size once the program has allowed for the window's frame.
  constexpr std::array firstSize{400, 400};
  ASSERT_TRUE(eventually([&] {
    const Area outer = x().outerAreaOf(colourSpace());
    return std::array{outer.width, outer.height} == firstSize;
  }));
  resizeTo(size);
}

void ViewsTest::resizeTo(const PictureSize& size) {
  const auto hasSize = [&] {
    const Area area = inside();
    return area.width == size.width && area.height == size.height;
  };
  // Checks the size only after all requests were answered. An earlier request of the program may
  // still arrive after the first one here.
  ASSERT_TRUE(eventually([&] {
    settle();
    x().resize(colourSpace(), size.width, size.height);
    eventually(hasSize);
    settle();
    return hasSize();
  }));
}

void ViewsTest::turnTo(View view) {
  press(keyOf(view));
}

void ViewsTest::stepSeverity(bool up, int times) {
  x().moveMouse(inside());
  turnWheel(up, times);
  settle();
}

Picture ViewsTest::shown() {
  settle();
  Picture picture = x().read(inside());
  eventually([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    Picture next = x().read(inside());
    std::swap(picture, next);
    return picture.pixels == next.pixels;
  });
  return picture;
}

testing::AssertionResult ViewsTest::comesToShow(const Picture& expected) {
  testing::AssertionResult result = testing::AssertionFailure();
  eventually([&] {
    result = areSame(shown(), expected);
    return static_cast<bool>(result);
  });
  return result;
}

void ViewsTest::moveInside(const Stop& stop) {
  const Area area = inside();
  x().moveMouse(area.x + stop.x, area.y + stop.y);
  settle();
}

void ViewsTest::drag(std::uint8_t button, const std::vector<Stop>& stops) {
  moveInside(stops.front());
  x().button(button, true);
  settle();
  for (const Stop& stop : stops) moveInside(stop);
  x().button(button, false);
  settle();
}

std::vector<Area> ViewsTest::curveLabelAreas(const PictureSize& size) {
  std::vector<Area> areas;
  for (int nanometres = 400; nanometres <= 700; nanometres += 50) {
    const Place place = seenAt((nanometres - 360) / 100.0 - 2.0, -1.0, size.width, size.height);
    areas.push_back(labelArea(place.x - 8, place.y));
  }
  return areas;
}

std::vector<Area> ViewsTest::wavelengthLabelAreas(const PictureSize& size) {
  std::vector<Area> areas;
  for (const ReferenceLabel& label : referenceLabels()) {
    Place place = seenAt(static_cast<double>(label.place.x), static_cast<double>(label.place.y),
                         size.width, size.height);
    place.x -= 10;
    if (label.text == "520") {
      place.y -= 13;
    } else {
      place.x += label.rising ? -12 : 14;
      place.y -= label.rising ? 5 : 10;
    }
    areas.push_back(labelArea(place.x, place.y));
  }
  return areas;
}

testing::AssertionResult hasText(const Picture& picture, const Area& area, std::uint32_t colour) {
  const Colour background = colourOf(viewBackground);
  const Colour text = colourOf(colour);
  // Ink covers at least half of the pixel, in every channel.
  const auto isInk = [&](const Colour& seen) {
    for (std::size_t i = 0; i < 3; ++i) {
      const double share = (seen[i] - background[i]) / (text[i] - background[i]);
      if (share < 0.5 || share > 1.0) return false;
    }
    return true;
  };
  int found = 0;
  for (int y = std::max(0, area.y); y < std::min(picture.height, area.bottom()); ++y) {
    for (int x = std::max(0, area.x); x < std::min(picture.width, area.right()); ++x) {
      found += isInk(colourOf(picture.at(x, y))) ? 1 : 0;
    }
  }
  constexpr int least = 12;
  if (found >= least) return testing::AssertionSuccess();
  return testing::AssertionFailure() << found << " pixels in " << testing::PrintToString(area);
}

testing::AssertionResult areSame(const Picture& a, const Picture& b) {
  if (a.width != b.width || a.height != b.height) {
    return testing::AssertionFailure()
           << a.width << "x" << a.height << " and " << b.width << "x" << b.height;
  }
  for (int y = 0; y < a.height; ++y) {
    for (int x = 0; x < a.width; ++x) {
      if (((a.at(x, y) ^ b.at(x, y)) & 0xFFFFFFU) != 0) {
        return testing::AssertionFailure() << "The pictures differ at " << x << "," << y << ".";
      }
    }
  }
  return testing::AssertionSuccess();
}

}  // namespace tintora::desktop_test
