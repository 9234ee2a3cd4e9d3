#include "platform/linux/root_background.h"

#include <xcb/composite.h>

#include <array>
#include <cstdint>
#include <cstring>

#include "platform/linux/image_requests.h"
#include "platform/linux/window_facts.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

xcb_get_property_cookie_t requestPixmap(xcb_atom_t name) {
  return xcb_get_property(x(), 0, xServer.screen->root, name, XCB_ATOM_PIXMAP, 0, 1);
}

xcb_pixmap_t readPixmap(xcb_get_property_cookie_t request) {
  const Received<xcb_get_property_reply_t> property(xcb_get_property_reply(x(), request, nullptr));
  const xcb_pixmap_t pixmap = numberIn(property.get(), XCB_NONE);
  if (pixmap == XCB_NONE) return XCB_NONE;
  // The program that set the pixmap may be gone, and the pixmap with it.
  const Received<xcb_get_geometry_reply_t> geometry(
      xcb_get_geometry_reply(x(), xcb_get_geometry(x(), pixmap), nullptr));
  const bool fits = geometry && geometry->depth == xServer.screen->root_depth;
  return fits ? pixmap : xcb_pixmap_t{XCB_NONE};
}

xcb_gcontext_t contextForCopies() {
  const xcb_gcontext_t context = xcb_generate_id(x());
  const std::uint32_t noExposures = 0;
  xcb_create_gc(x(), context, xServer.screen->root, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
  return context;
}

// Copies the root's background through a window that paints its parent's background, because the
// server does not give it out. The window is beneath all others and exists only while the server is
// grabbed, so nobody sees it. It is filled with a colour first, which stays if the root has no
// background.
void copyThroughWindow(xcb_pixmap_t target, const QPoint& place, const QRect& part,
                       std::uint32_t colour) {
  static const xcb_gcontext_t copying = contextForCopies();
  const xcb_window_t window = xcb_generate_id(x());
  const std::array<std::uint32_t, 2> looks{colour, 1};
  const std::uint32_t lowest = XCB_STACK_MODE_BELOW;
  const std::uint32_t parents = XCB_BACK_PIXMAP_PARENT_RELATIVE;
  xcb_grab_server(x());
  xcb_create_window(x(), XCB_COPY_FROM_PARENT, window, xServer.screen->root, i16(part.x()),
                    i16(part.y()), u16(part.width()), u16(part.height()), 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                    XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, looks.data());
  xcb_composite_redirect_window(x(), window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
  xcb_configure_window(x(), window, XCB_CONFIG_WINDOW_STACK_MODE, &lowest);
  xcb_map_window(x(), window);
  xcb_clear_area(x(), 0, window, 0, 0, 0, 0);
  xcb_change_window_attributes(x(), window, XCB_CW_BACK_PIXMAP, &parents);
  xcb_clear_area(x(), 0, window, 0, 0, 0, 0);
  xcb_copy_area(x(), window, target, copying, 0, 0, i16(place.x()), i16(place.y()),
                u16(part.width()), u16(part.height()));
  xcb_destroy_window(x(), window);
  xcb_ungrab_server(x());
  // The server stays grabbed until this is flushed.
  xcb_flush(x());
}

}  // namespace

xcb_pixmap_t namedBackground() {
  const auto request = requestPixmap(xServer.rootPixmap);
  const auto otherRequest = requestPixmap(xServer.setRootPixmap);
  const xcb_pixmap_t pixmap = readPixmap(request);
  const xcb_pixmap_t other = readPixmap(otherRequest);
  return pixmap != XCB_NONE ? pixmap : other;
}

// Returns true if the background covers two colours that were painted before it.
bool paintsBackground() {
  constexpr std::array<std::uint32_t, 2> colours{0x123456, 0x654321};
  const xcb_pixmap_t pixels = xcb_generate_id(x());
  xcb_create_pixmap(x(), xServer.screen->root_depth, pixels, xServer.screen->root, 2, 1);
  copyThroughWindow(pixels, {0, 0}, {0, 0, 1, 1}, colours[0]);
  copyThroughWindow(pixels, {1, 0}, {0, 0, 1, 1}, colours[1]);
  const auto image = receiveImage(requestImage(pixels, {0, 0, 2, 1}), {2, 1});
  xcb_free_pixmap(x(), pixels);
  if (!image) return false;
  std::array<std::uint32_t, 2> seen{};
  std::memcpy(seen.data(), xcb_get_image_data(image.get()), sizeof seen);
  return (seen[0] & 0xFFFFFF) != colours[0] || (seen[1] & 0xFFFFFF) != colours[1];
}

void copyBackground(xcb_pixmap_t target, const QRect& part) {
  copyThroughWindow(target, part.topLeft(), part, 0);
}

}  // namespace tintora::platform
