#include "platform/linux/root_background.h"

#include <xcb/composite.h>

#include <QSize>
#include <array>
#include <cstdint>
#include <cstring>

#include "platform/linux/window_facts.h"
#include "platform/linux/window_stack.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

xcb_pixmap_t namedPixmap(xcb_atom_t name) {
  const Received<xcb_get_property_reply_t> property(xcb_get_property_reply(
      x(), xcb_get_property(x(), 0, xServer.screen->root, name, XCB_ATOM_PIXMAP, 0, 1), nullptr));
  const xcb_pixmap_t pixmap = numberIn(property.get(), XCB_NONE);
  // The setter may have gone, and its pixmap with it.
  const Received<xcb_get_geometry_reply_t> geometry(
      xcb_get_geometry_reply(x(), xcb_get_geometry(x(), pixmap), nullptr));
  const bool fits = geometry && geometry->depth == xServer.screen->root_depth;
  return fits ? pixmap : xcb_pixmap_t{XCB_NONE};
}

xcb_pixmap_t pixmapOfRoot(const QSize& size) {
  const xcb_pixmap_t pixmap = xcb_generate_id(x());
  xcb_create_pixmap(x(), xServer.screen->root_depth, pixmap, xServer.screen->root,
                    u16(size.width()), u16(size.height()));
  return pixmap;
}

// The root's background cannot be asked for, but a window can have its parent's background painted
// in it. This one, off the screen and beneath all others, exists while the server is grabbed, so
// that nobody sees it. It is filled with a colour first, which stays if the root has no background.
void copyThroughWindow(xcb_pixmap_t target, xcb_gcontext_t copying, const QPoint& place,
                       const QSize& size, std::uint32_t colour) {
  const xcb_window_t window = xcb_generate_id(x());
  const std::array<std::uint32_t, 2> looks{colour, 1};
  const std::uint32_t lowest = XCB_STACK_MODE_BELOW;
  const std::uint32_t parents = XCB_BACK_PIXMAP_PARENT_RELATIVE;
  xcb_grab_server(x());
  xcb_create_window(x(), XCB_COPY_FROM_PARENT, window, xServer.screen->root, 0, 0,
                    u16(size.width()), u16(size.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                    XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT,
                    looks.data());
  xcb_composite_redirect_window(x(), window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
  xcb_configure_window(x(), window, XCB_CONFIG_WINDOW_STACK_MODE, &lowest);
  xcb_map_window(x(), window);
  xcb_clear_area(x(), 0, window, 0, 0, 0, 0);
  xcb_change_window_attributes(x(), window, XCB_CW_BACK_PIXMAP, &parents);
  xcb_clear_area(x(), 0, window, 0, 0, 0, 0);
  xcb_copy_area(x(), window, target, copying, 0, 0, i16(place.x()), i16(place.y()),
                u16(size.width()), u16(size.height()));
  xcb_destroy_window(x(), window);
  xcb_ungrab_server(x());
  // The server stays grabbed until this is flushed.
  xcb_flush(x());
}

// Returns true if two colours that the background was painted over are still there.
bool paintsNothing(xcb_gcontext_t copying) {
  constexpr std::array<std::uint32_t, 2> colours{0x123456, 0x654321};
  const xcb_pixmap_t pixels = pixmapOfRoot({2, 1});
  copyThroughWindow(pixels, copying, {0, 0}, {1, 1}, colours[0]);
  copyThroughWindow(pixels, copying, {1, 0}, {1, 1}, colours[1]);
  const Received<xcb_get_image_reply_t> image(xcb_get_image_reply(
      x(), xcb_get_image(x(), XCB_IMAGE_FORMAT_Z_PIXMAP, pixels, 0, 0, 2, 1, ~0U), nullptr));
  xcb_free_pixmap(x(), pixels);
  if (!image || static_cast<std::size_t>(xcb_get_image_data_length(image.get())) < sizeof colours) {
    return true;
  }
  std::array<std::uint32_t, 2> seen{};
  std::memcpy(seen.data(), xcb_get_image_data(image.get()), sizeof seen);
  return (seen[0] & 0xFFFFFF) == colours[0] && (seen[1] & 0xFFFFFF) == colours[1];
}

}  // namespace

xcb_pixmap_t namedBackground() {
  const xcb_pixmap_t pixmap = namedPixmap(xServer.rootPixmap);
  return pixmap != XCB_NONE ? pixmap : namedPixmap(xServer.setRootPixmap);
}

xcb_pixmap_t copyOfPaintedBackground() {
  const xcb_gcontext_t copying = xcb_generate_id(x());
  const std::uint32_t noExposures = 0;
  xcb_create_gc(x(), copying, xServer.screen->root, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
  xcb_pixmap_t copy = XCB_NONE;
  if (!paintsNothing(copying)) {
    copy = pixmapOfRoot(windowStack.rootSize);
    copyThroughWindow(copy, copying, {0, 0}, windowStack.rootSize, 0);
  }
  xcb_free_gc(x(), copying);
  return copy;
}

}  // namespace tintora::platform
