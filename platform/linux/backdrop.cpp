#include "platform/linux/backdrop.h"

#include <xcb/composite.h>

#include <array>
#include <cstdint>

#include "platform/linux/window_stack.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

struct Backdrop {
  xcb_pixmap_t tile = XCB_NONE;
  bool ownsTile = false;
  xcb_gcontext_t context = XCB_NONE;  // paints with the tile
};
Backdrop backdrop;

// The pixmap that a background setter left under a name, where it is still there and fits.
xcb_pixmap_t namedPixmap(xcb_atom_t name) {
  const Received<xcb_get_property_reply_t> property(xcb_get_property_reply(
      x(), xcb_get_property(x(), 0, xServer.screen->root, name, XCB_ATOM_PIXMAP, 0, 1), nullptr));
  if (!property || property->format != 32 || xcb_get_property_value_length(property.get()) != 4) {
    return XCB_NONE;
  }
  const xcb_pixmap_t pixmap =
      *static_cast<const xcb_pixmap_t*>(xcb_get_property_value(property.get()));
  const Received<xcb_get_geometry_reply_t> geometry(
      xcb_get_geometry_reply(x(), xcb_get_geometry(x(), pixmap), nullptr));
  const bool fits = geometry && geometry->depth == xServer.screen->root_depth;
  return fits ? pixmap : static_cast<xcb_pixmap_t>(XCB_NONE);
}

// The background cannot be asked for, but a window can take it over: one that has its parent's
// background, off the screen's own pixels, is there for a moment to be copied. It stands beneath
// all others and looks like what it covers.
xcb_pixmap_t copyOfBackground() {
  const xcb_window_t root = xServer.screen->root;
  const auto width = static_cast<std::uint16_t>(windowStack.rootSize.width());
  const auto height = static_cast<std::uint16_t>(windowStack.rootSize.height());
  const xcb_pixmap_t copy = xcb_generate_id(x());
  xcb_create_pixmap(x(), xServer.screen->root_depth, copy, root, width, height);
  const xcb_window_t window = xcb_generate_id(x());
  const std::array<std::uint32_t, 2> looks{XCB_BACK_PIXMAP_PARENT_RELATIVE, 1};
  const std::uint32_t lowest = XCB_STACK_MODE_BELOW;

  xcb_grab_server(x());
  xcb_create_window(x(), XCB_COPY_FROM_PARENT, window, root, 0, 0, width, height, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                    XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT, looks.data());
  xcb_composite_redirect_window(x(), window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
  xcb_configure_window(x(), window, XCB_CONFIG_WINDOW_STACK_MODE, &lowest);
  xcb_map_window(x(), window);
  xcb_copy_area(x(), window, copy, backdrop.context, 0, 0, 0, 0, width, height);
  xcb_destroy_window(x(), window);
  xcb_ungrab_server(x());
  // Nobody else gets on before this has arrived.
  xcb_flush(x());
  return copy;
}

void createContext() {
  backdrop.context = xcb_generate_id(x());
  const std::uint32_t noExposures = 0;
  xcb_create_gc(x(), backdrop.context, xServer.screen->root, XCB_GC_GRAPHICS_EXPOSURES,
                &noExposures);
}

void readBackdrop() {
  if (backdrop.context == XCB_NONE) createContext();
  xcb_pixmap_t tile = namedPixmap(xServer.rootPixmap);
  if (tile == XCB_NONE) tile = namedPixmap(xServer.setRootPixmap);
  backdrop.ownsTile = tile == XCB_NONE;
  backdrop.tile = backdrop.ownsTile ? copyOfBackground() : tile;
}

}  // namespace

void forgetBackdrop() {
  if (backdrop.ownsTile) xcb_free_pixmap(x(), backdrop.tile);
  backdrop.tile = XCB_NONE;
  backdrop.ownsTile = false;
}

void paintBackdrop(xcb_pixmap_t target, const QPoint& origin, const QRect& part) {
  if (backdrop.tile == XCB_NONE) readBackdrop();
  const std::array<std::uint32_t, 4> tiled{XCB_FILL_STYLE_TILED, backdrop.tile,
                                           static_cast<std::uint32_t>(-origin.x()),
                                           static_cast<std::uint32_t>(-origin.y())};
  xcb_change_gc(
      x(), backdrop.context,
      XCB_GC_FILL_STYLE | XCB_GC_TILE | XCB_GC_TILE_STIPPLE_ORIGIN_X | XCB_GC_TILE_STIPPLE_ORIGIN_Y,
      tiled.data());
  const QRect place = part.translated(-origin);
  const xcb_rectangle_t rectangle{
      static_cast<std::int16_t>(place.x()), static_cast<std::int16_t>(place.y()),
      static_cast<std::uint16_t>(place.width()), static_cast<std::uint16_t>(place.height())};
  xcb_poly_fill_rectangle(x(), target, backdrop.context, 1, &rectangle);
}

}  // namespace tintora::platform
