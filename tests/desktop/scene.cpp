#include "scene.h"

#include <xcb/shape.h>

#include <algorithm>
#include <set>

#include "process.h"

namespace tintora::desktop_test {

namespace {

std::vector<xcb_rectangle_t> rectanglesOf(const std::vector<Area>& areas) {
  std::vector<xcb_rectangle_t> rectangles;
  for (const Area& a : areas)
    rectangles.push_back({i16(a.x), i16(a.y), u16(a.width), u16(a.height)});
  return rectangles;
}

int remainder(int value, int divisor) {
  return (value % divisor + divisor) % divisor;
}

// Returns the pixel of a window at a place relative to it, border included; nothing if it has none
// there.
std::optional<std::uint32_t> pixelOf(const Sheet& sheet, int x, int y) {
  if (sheet.shape &&
      std::ranges::none_of(*sheet.shape, [&](const Area& part) { return part.contains(x, y); })) {
    return std::nullopt;
  }
  const bool inside = x >= 0 && y >= 0 && x < sheet.place.width && y < sheet.place.height;
  return inside ? sheet.picture.at(x, y) : sheet.borderColour;
}

}  // namespace

Scene::Scene(const std::string& display, xcb_window_t above) : client_(display), above_(above) {}

void Scene::setBackdrop(const Picture& tile) {
  backdrop_ = tile;
}

void Scene::restackBelow(xcb_window_t window) const {
  if (above_ == XCB_NONE) return;
  client_.restack(window, XCB_STACK_MODE_BELOW, client_.topLevelOf(above_));
}

void Scene::putBelow(xcb_window_t above) {
  above_ = above;
  for (const Sheet* const sheet : stack_) {
    if (!sheet->managed) restackBelow(sheet->window);
  }
}

Sheet& Scene::add(const Sheet& added) {
  Sheet& sheet = sheets_.emplace_back(added);
  stack_.push_back(&sheet);
  xcb_connection_t* const x = client_.connection();
  sheet.window = xcb_generate_id(x);
  xcb_colormap_t colours = XCB_COPY_FROM_PARENT;
  xcb_visualid_t visual = client_.screen().root_visual;
  if (sheet.translucent) {
    visual = client_.translucentVisual();
    colours = xcb_generate_id(x);
    xcb_create_colormap(x, XCB_COLORMAP_ALLOC_NONE, colours, client_.root(), visual);
  }
  const std::vector<std::uint32_t> looks{
      XCB_BACK_PIXMAP_NONE, sheet.borderColour, sheet.managed ? 0U : 1U,
      XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_BUTTON_PRESS, colours};
  client_.check(xcb_create_window_checked(
      x, sheet.translucent ? 32 : 24, sheet.window, client_.root(),
      i16(sheet.place.x - sheet.border), i16(sheet.place.y - sheet.border), u16(sheet.place.width),
      u16(sheet.place.height), u16(sheet.border), XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
      XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK |
          XCB_CW_COLORMAP,
      looks.data()));
  if (sheet.shape) shape(sheet, *sheet.shape);
  if (sheet.opacity < 1) setOpacity(sheet, sheet.opacity);
  if (!sheet.managed) restackBelow(sheet.window);
  if (sheet.shown) show(sheet, true);
  return sheet;
}

Sheet& Scene::addNoise(const Area& place, std::uint32_t seed) {
  return add({.place = place, .picture = noise(place.width, place.height, seed)});
}

void Scene::move(Sheet& sheet, int x, int y) {
  sheet.place.x = x;
  sheet.place.y = y;
  client_.move(sheet.window, x - sheet.border, y - sheet.border);
}

void Scene::resize(Sheet& sheet, const Picture& picture) {
  sheet.place.width = picture.width;
  sheet.place.height = picture.height;
  sheet.picture = picture;
  client_.resize(sheet.window, picture.width, picture.height);
  drawWhole(sheet);
}

void Scene::draw(Sheet& sheet, const Picture& part, int x, int y) {
  for (int row = 0; row < part.height; ++row) {
    std::copy_n(part.pixels.begin() + row * part.width, part.width,
                sheet.picture.pixels.begin() + (y + row) * sheet.picture.width + x);
  }
  client_.draw(sheet.window, part, x, y, sheet.translucent ? 32 : 24);
}

void Scene::shape(Sheet& sheet, const std::vector<Area>& shape) {
  sheet.shape = shape;
  const std::vector<xcb_rectangle_t> rectangles = rectanglesOf(shape);
  xcb_shape_rectangles(client_.connection(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                       XCB_CLIP_ORDERING_UNSORTED, sheet.window, 0, 0, u32(int(rectangles.size())),
                       rectangles.data());
  client_.sync();
  // The part outside the old shape was never drawn.
  if (sheet.shown && client_.isShown(sheet.window)) {
    drawWhole(sheet);
  }
}

void Scene::setOpacity(Sheet& sheet, double opacity) {
  sheet.opacity = opacity;
  client_.setNumbers(sheet.window, "_NET_WM_WINDOW_OPACITY", XCB_ATOM_CARDINAL,
                     {static_cast<std::uint32_t>(opacity * 0xFFFFFFFFU)});
}

void Scene::show(Sheet& sheet, bool shown) {
  sheet.shown = shown;
  if (!shown) {
    xcb_unmap_window(client_.connection(), sheet.window);
    return client_.sync();
  }
  xcb_map_window(client_.connection(), sheet.window);
  client_.sync();
  if (sheet.managed) {
    // The frame determines the place of the inside.
    eventually([&] { return client_.isShown(sheet.window); });
    sheet.place = client_.areaOf(sheet.window);
  }
  drawWhole(sheet);
}

void Scene::remove(Sheet& sheet) {
  std::erase(stack_, &sheet);
  xcb_destroy_window(client_.connection(), sheet.window);
  client_.sync();
}

void Scene::restack(Sheet& sheet, std::size_t place) {
  std::erase(stack_, &sheet);
  stack_.insert(stack_.begin() + static_cast<std::ptrdiff_t>(place), &sheet);
  if (place + 1 == stack_.size()) return restackBelow(sheet.window);
  client_.restack(sheet.window, XCB_STACK_MODE_BELOW,
                  client_.topLevelOf(stack_[place + 1]->window));
}

void Scene::drawWhole(const Sheet& sheet) const {
  client_.draw(sheet.window, sheet.picture, 0, 0, sheet.translucent ? 32 : 24);
}

void Scene::takeEvents() {
  std::set<xcb_window_t> exposed;
  client_.takeEvents([&](const xcb_generic_event_t& event) {
    const int kind = event.response_type & 0x7F;
    if (kind == XCB_EXPOSE) {
      exposed.insert(reinterpret_cast<const xcb_expose_event_t&>(event).window);
    } else if (kind == XCB_BUTTON_PRESS) {
      ++clicks_[reinterpret_cast<const xcb_button_press_event_t&>(event).event];
    }
  });
  for (const Sheet* const sheet : stack_) {
    if (exposed.contains(sheet->window)) drawWhole(*sheet);
  }
}

int Scene::clicksIn(const Sheet& sheet) {
  client_.sync();
  takeEvents();
  return clicks_[sheet.window];
}

void Scene::paint(const Sheet& sheet, const Area& area, std::vector<Colour>& colours) const {
  const int b = sheet.border;
  const Area outer{sheet.place.x - b, sheet.place.y - b, sheet.place.width + 2 * b,
                   sheet.place.height + 2 * b};
  const Area seen = common(outer, area);
  for (int y = seen.y; y < seen.bottom(); ++y) {
    for (int x = seen.x; x < seen.right(); ++x) {
      const auto pixel = pixelOf(sheet, x - sheet.place.x, y - sheet.place.y);
      if (!pixel) continue;
      colours[static_cast<std::size_t>((y - area.y) * area.width + x - area.x)] = colourOf(*pixel);
    }
  }
}

std::vector<Colour> Scene::colours(const Area& area) const {
  std::vector<Colour> result;
  for (int y = area.y; y < area.bottom(); ++y) {
    for (int x = area.x; x < area.right(); ++x) {
      result.push_back(
          colourOf(backdrop_.at(remainder(x, backdrop_.width), remainder(y, backdrop_.height))));
    }
  }
  for (const Sheet* const sheet : stack_) {
    if (sheet->shown) paint(*sheet, area, result);
  }
  return result;
}

}  // namespace tintora::desktop_test
