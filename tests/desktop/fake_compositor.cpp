#include "fake_compositor.h"

#include <xcb/composite.h>
#include <xcb/shape.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace tintora::desktop_test {

namespace {

constexpr std::uint32_t backgroundColour = 0x2E3436;

}  // namespace

FakeCompositor::FakeCompositor(const XClient& x, Look look) : x_(x), look_(std::move(look)) {
  xcb_connection_t* const c = x_.connection();
  const auto ask = [&](auto query, auto reply, std::uint32_t major, std::uint32_t minor) {
    const Received<std::remove_pointer_t<decltype(reply(c, query(c, major, minor), nullptr))>>
        answer(reply(c, query(c, major, minor), nullptr));
    if (!answer) throw std::runtime_error("An extension is missing.");
  };
  ask(xcb_composite_query_version, xcb_composite_query_version_reply, 0, 4);
  ask(xcb_damage_query_version, xcb_damage_query_version_reply, 1, 1);
  ask(xcb_xfixes_query_version, xcb_xfixes_query_version_reply, 5, 0);
  ask(xcb_render_query_version, xcb_render_query_version_reply, 0, 11);
  damageEvent_ = static_cast<std::uint8_t>(xcb_get_extension_data(c, &xcb_damage_id)->first_event +
                                           XCB_DAMAGE_NOTIFY);
  shapeEvent_ = static_cast<std::uint8_t>(xcb_get_extension_data(c, &xcb_shape_id)->first_event +
                                          XCB_SHAPE_NOTIFY);
  const Received<xcb_render_query_pict_formats_reply_t> formats(
      xcb_render_query_pict_formats_reply(c, xcb_render_query_pict_formats(c), nullptr));
  for (auto depths = xcb_render_pictscreen_depths_iterator(
           xcb_render_query_pict_formats_screens_iterator(formats.get()).data);
       depths.rem != 0; xcb_render_pictdepth_next(&depths)) {
    for (auto visuals = xcb_render_pictdepth_visuals_iterator(depths.data); visuals.rem != 0;
         xcb_render_pictvisual_next(&visuals)) {
      formats_[visuals.data->visual] = visuals.data->format;
    }
  }
  xcb_composite_redirect_subwindows(c, x_.root(), XCB_COMPOSITE_REDIRECT_MANUAL);
  const Received<xcb_composite_get_overlay_window_reply_t> overlay(
      xcb_composite_get_overlay_window_reply(c, xcb_composite_get_overlay_window(c, x_.root()),
                                             nullptr));
  overlay_ = overlay->overlay_win;
  // Passes input to the windows beneath.
  xcb_shape_rectangles(c, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
                       overlay_, 0, 0, 0, nullptr);
}

xcb_render_pictformat_t FakeCompositor::formatOf(xcb_visualid_t visual) const {
  const auto found = formats_.find(visual);
  return found == formats_.end() ? xcb_render_pictformat_t{XCB_NONE} : found->second;
}

xcb_render_picture_t FakeCompositor::pictureOf(xcb_drawable_t drawable,
                                               xcb_visualid_t visual) const {
  const xcb_render_picture_t picture = xcb_generate_id(x_.connection());
  const std::uint32_t withChildren = XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS;
  xcb_render_create_picture(x_.connection(), picture, drawable, formatOf(visual),
                            XCB_RENDER_CP_SUBWINDOW_MODE, &withChildren);
  return picture;
}

void FakeCompositor::take(const xcb_generic_event_t& event) {
  const int kind = event.response_type & 0x7F;
  changed_ |= kind == damageEvent_ || kind == shapeEvent_ ||
              (kind >= XCB_CREATE_NOTIFY && kind <= XCB_PROPERTY_NOTIFY);
}

void FakeCompositor::paintWindow(xcb_window_t window) {
  xcb_connection_t* const c = x_.connection();
  const auto geometryCookie = xcb_get_geometry(c, window);
  const auto attributesCookie = xcb_get_window_attributes(c, window);
  const Received<xcb_get_geometry_reply_t> geometry(
      xcb_get_geometry_reply(c, geometryCookie, nullptr));
  const Received<xcb_get_window_attributes_reply_t> attributes(
      xcb_get_window_attributes_reply(c, attributesCookie, nullptr));
  if (!geometry || !attributes || attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT) return;
  if (!damages_.contains(window)) {
    damages_[window] = xcb_generate_id(c);
    xcb_damage_create(c, damages_[window], window, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    xcb_shape_select_input(c, window, 1);
  }
  const PaintedPart look = look_(window);
  if (attributes->map_state != XCB_MAP_STATE_VIEWABLE || !look.seen) return;
  const int border = geometry->border_width;
  const Area whole{0, 0, geometry->width + 2 * border, geometry->height + 2 * border};
  const Area part = look.part.width == 0 ? whole : look.part;
  // Reads the pixmap, because it includes the border.
  const xcb_pixmap_t pixels = xcb_generate_id(c);
  xcb_composite_name_window_pixmap(c, window, pixels);
  const xcb_render_picture_t from = pictureOf(pixels, attributes->visual);
  const xcb_render_picture_t to = pictureOf(buffer_, x_.screen().root_visual);
  const xcb_render_picture_t mask = xcb_generate_id(c);
  xcb_render_create_solid_fill(c, mask, {0, 0, 0, u16(static_cast<int>(look.opacity * 0xFFFF))});
  const xcb_xfixes_region_t shape = xcb_generate_id(c);
  xcb_xfixes_create_region_from_window(c, shape, window, XCB_SHAPE_SK_BOUNDING);
  xcb_xfixes_set_picture_clip_region(c, to, shape, i16(geometry->x + border),
                                     i16(geometry->y + border));
  xcb_render_composite(c, XCB_RENDER_PICT_OP_OVER, from,
                       look.opacity < 1 ? mask : xcb_render_picture_t{XCB_NONE}, to, i16(part.x),
                       i16(part.y), 0, 0, i16(geometry->x + part.x), i16(geometry->y + part.y),
                       u16(part.width), u16(part.height));
  xcb_xfixes_destroy_region(c, shape);
  for (const xcb_render_picture_t picture : {from, to, mask}) {
    xcb_render_free_picture(c, picture);
  }
  xcb_free_pixmap(c, pixels);
}

void FakeCompositor::paint() {
  if (!changed_) return;
  changed_ = false;
  xcb_connection_t* const c = x_.connection();
  const Area screen = x_.screenArea();
  if (screen != screen_) {
    screen_ = screen;
    if (buffer_ != XCB_NONE) xcb_free_pixmap(c, buffer_);
    buffer_ = xcb_generate_id(c);
    xcb_create_pixmap(c, x_.screen().root_depth, buffer_, x_.root(), u16(screen.width),
                      u16(screen.height));
    if (context_ == XCB_NONE) {
      context_ = xcb_generate_id(c);
      const std::vector<std::uint32_t> values{backgroundColour, 0};
      xcb_create_gc(c, context_, buffer_, XCB_GC_FOREGROUND | XCB_GC_GRAPHICS_EXPOSURES,
                    values.data());
    }
  }
  for (const auto& [window, damage] : damages_) {
    xcb_damage_subtract(c, damage, XCB_NONE, XCB_NONE);
  }
  const xcb_rectangle_t all{0, 0, u16(screen.width), u16(screen.height)};
  xcb_poly_fill_rectangle(c, buffer_, context_, 1, &all);
  const std::vector<xcb_window_t> windows = x_.children(x_.root());
  std::erase_if(damages_, [&](const auto& known) {
    return std::find(windows.begin(), windows.end(), known.first) == windows.end();
  });
  for (const xcb_window_t window : windows) {
    if (window != overlay_) paintWindow(window);
  }
  xcb_copy_area(c, buffer_, overlay_, context_, 0, 0, 0, 0, u16(screen.width), u16(screen.height));
  xcb_flush(c);
}

}  // namespace tintora::desktop_test
