#include "platform/linux/x_server.h"

#include <xcb/composite.h>
#include <xcb/damage.h>
#include <xcb/shape.h>
#include <xcb/shm.h>
#include <xcb/xcbext.h>
#include <xcb/xfixes.h>

#include <QByteArray>
#include <array>
#include <string_view>

namespace tintora::platform {

XServer xServer;

namespace {

struct Extension {
  xcb_extension_t* id;
  const char* name;
};

bool isPresent(xcb_extension_t* extension) {
  const xcb_query_extension_reply_t* const facts =
      xcb_get_extension_data(xServer.connection, extension);
  return facts != nullptr && facts->present != 0;
}

// Returns the name of a required extension that the server lacks, or null.
const char* missingExtension() {
  const std::array<Extension, 5> needed{{
      {&xcb_composite_id, "Composite"},
      {&xcb_damage_id, "Damage"},
      {&xcb_xfixes_id, "XFixes"},
      {&xcb_render_id, "RENDER"},
      {&xcb_shape_id, "Shape"},
  }};
  for (const auto& [id, name] : needed) xcb_prefetch_extension_data(xServer.connection, id);
  xcb_prefetch_extension_data(xServer.connection, &xcb_shm_id);
  for (const auto& [id, name] : needed) {
    if (!isPresent(id)) return name;
  }
  return nullptr;
}

// Tells each extension which version the program uses. Extensions accept nothing else before that.
void agreeOnVersions() {
  xcb_connection_t* const x = xServer.connection;
  const auto composite = xcb_composite_query_version(x, 0, 4);
  const auto damage = xcb_damage_query_version(x, 1, 1);
  const auto fixes = xcb_xfixes_query_version(x, 5, 0);
  const auto render = xcb_render_query_version(x, 0, 11);
  xcb_discard_reply(x, composite.sequence);
  xcb_discard_reply(x, damage.sequence);
  xcb_discard_reply(x, fixes.sequence);
  xcb_discard_reply(x, render.sequence);
}

PixelSharing askForSharing() {
  xcb_connection_t* const x = xServer.connection;
  if (!isPresent(&xcb_shm_id)) return PixelSharing::None;
  const Received<xcb_shm_query_version_reply_t> version(
      xcb_shm_query_version_reply(x, xcb_shm_query_version(x), nullptr));
  // Memory is shared by file descriptors, because they name the same memory in every container.
  const bool byDescriptors = version && (version->major_version > 1 || version->minor_version >= 2);
  if (!byDescriptors) return PixelSharing::None;
  const bool pixmaps =
      version->shared_pixmaps != 0 && version->pixmap_format == XCB_IMAGE_FORMAT_Z_PIXMAP;
  return pixmaps ? PixelSharing::Pixmaps : PixelSharing::Images;
}

void readFormats(xcb_render_query_pict_formats_cookie_t cookie) {
  const Received<xcb_render_query_pict_formats_reply_t> reply(
      xcb_render_query_pict_formats_reply(xServer.connection, cookie, nullptr));
  if (!reply) return;
  const auto hasAlpha = [&](xcb_render_pictformat_t format) {
    auto infos = xcb_render_query_pict_formats_formats_iterator(reply.get());
    for (; infos.rem != 0; xcb_render_pictforminfo_next(&infos)) {
      if (infos.data->id == format) return infos.data->direct.alpha_mask != 0;
    }
    return false;
  };
  auto screens = xcb_render_query_pict_formats_screens_iterator(reply.get());
  for (; screens.rem != 0; xcb_render_pictscreen_next(&screens)) {
    auto depths = xcb_render_pictscreen_depths_iterator(screens.data);
    for (; depths.rem != 0; xcb_render_pictdepth_next(&depths)) {
      auto visuals = xcb_render_pictdepth_visuals_iterator(depths.data);
      for (; visuals.rem != 0; xcb_render_pictvisual_next(&visuals)) {
        const auto& [visual, format] = *visuals.data;
        xServer.formats.push_back({visual, format, hasAlpha(format)});
      }
    }
  }
}

struct AtomName {
  std::string_view name;
  xcb_atom_t XServer::*atom;
};
constexpr std::array<AtomName, 15> atomNames{{
    {"_XROOTPMAP_ID", &XServer::rootPixmap},
    {"ESETROOT_PMAP_ID", &XServer::setRootPixmap},
    {"_NET_WM_WINDOW_OPACITY", &XServer::windowOpacity},
    {"WM_STATE", &XServer::wmState},
    {"_NET_SUPPORTING_WM_CHECK", &XServer::supportingWmCheck},
    {"_NET_WM_NAME", &XServer::windowName},
    {"_NET_SUPPORTED", &XServer::supported},
    {"_NET_REQUEST_FRAME_EXTENTS", &XServer::requestFrameExtents},
    {"_NET_FRAME_EXTENTS", &XServer::frameExtents},
    {"_NET_WM_WINDOW_TYPE", &XServer::windowType},
    {"_NET_WM_WINDOW_TYPE_UTILITY", &XServer::utilityType},
    {"_NET_WM_STATE", &XServer::windowState},
    {"_NET_WM_STATE_MAXIMIZED_HORZ", &XServer::maximisedAcross},
    {"_NET_WM_STATE_MAXIMIZED_VERT", &XServer::maximisedUpright},
    {"_NET_WM_STATE_FULLSCREEN", &XServer::fullScreen},
}};

xcb_intern_atom_cookie_t askForAtom(std::string_view name) {
  return xcb_intern_atom(xServer.connection, 0, static_cast<std::uint16_t>(name.size()),
                         name.data());
}

xcb_atom_t readAtom(xcb_intern_atom_cookie_t cookie) {
  const Received<xcb_intern_atom_reply_t> reply(
      xcb_intern_atom_reply(xServer.connection, cookie, nullptr));
  return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_NONE);
}

const xcb_screen_t* screenNumber(int number) {
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(xServer.connection));
  for (; screens.rem != 0 && number > 0; --number) xcb_screen_next(&screens);
  return screens.data;
}

// Returns true if pixels have four bytes in the order blue, green, red.
bool hasPixelsAsFiltered() {
  const xcb_setup_t* const setup = xcb_get_setup(xServer.connection);
  if (setup->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST) return false;
  auto formats = xcb_setup_pixmap_formats_iterator(setup);
  for (; formats.rem != 0; xcb_format_next(&formats)) {
    if (formats.data->depth == 24 && formats.data->bits_per_pixel != 32) return false;
  }
  auto depths = xcb_screen_allowed_depths_iterator(xServer.screen);
  for (; depths.rem != 0; xcb_depth_next(&depths)) {
    auto visuals = xcb_depth_visuals_iterator(depths.data);
    for (; visuals.rem != 0; xcb_visualtype_next(&visuals)) {
      const xcb_visualtype_t& visual = *visuals.data;
      if (visual.visual_id != xServer.screen->root_visual) continue;
      return depths.data->depth == 24 && visual.red_mask == 0xFF0000 &&
             visual.green_mask == 0xFF00 && visual.blue_mask == 0xFF;
    }
  }
  return false;
}

std::string displayName() {
  return qgetenv("DISPLAY").toStdString();
}

}  // namespace

std::optional<std::string> connectToXServer() {
  const std::string display = displayName();
  if (display.empty()) {
    const bool wayland = qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
    return wayland ? "its own windows need Xwayland, which this Wayland session does not have "
                     "(DISPLAY is not set)"
                   : "there is no X11 display (DISPLAY is not set)";
  }
  int number = 0;
  xServer.connection = xcb_connect(nullptr, &number);
  if (xcb_connection_has_error(xServer.connection) != 0) {
    return "the X11 display \"" + display + "\" cannot be opened";
  }
  xServer.screen = screenNumber(number);
  if (const char* const name = missingExtension()) {
    return "the X11 display \"" + display + "\" has no " + name + " extension";
  }
  if (!hasPixelsAsFiltered()) {
    return "the X11 display \"" + display + "\" does not have 8 bits per colour in 24 bits";
  }
  agreeOnVersions();
  const auto formats = xcb_render_query_pict_formats(xServer.connection);
  std::array<xcb_intern_atom_cookie_t, atomNames.size()> atoms{};
  for (std::size_t i = 0; i < atoms.size(); ++i) atoms[i] = askForAtom(atomNames[i].name);
  const auto manager = askForAtom("_NET_WM_CM_S" + std::to_string(number));
  xServer.sharing = askForSharing();
  readFormats(formats);
  for (std::size_t i = 0; i < atoms.size(); ++i) xServer.*atomNames[i].atom = readAtom(atoms[i]);
  xServer.compositingManager = readAtom(manager);
  xServer.damageNotify = static_cast<std::uint8_t>(
      xcb_get_extension_data(xServer.connection, &xcb_damage_id)->first_event + XCB_DAMAGE_NOTIFY);
  xServer.shapeNotify = static_cast<std::uint8_t>(
      xcb_get_extension_data(xServer.connection, &xcb_shape_id)->first_event + XCB_SHAPE_NOTIFY);
  xServer.selectionNotify = static_cast<std::uint8_t>(
      xcb_get_extension_data(xServer.connection, &xcb_xfixes_id)->first_event +
      XCB_XFIXES_SELECTION_NOTIFY);
  return std::nullopt;
}

void disconnectFromXServer() {
  xcb_disconnect(xServer.connection);
  xServer = {};
}

const VisualFormat* formatOf(xcb_visualid_t visual) {
  for (const VisualFormat& format : xServer.formats) {
    if (format.visual == visual) return &format;
  }
  return nullptr;
}

void waitForXServer() {
  xcb_connection_t* const x = xServer.connection;
  const Received<xcb_get_input_focus_reply_t> done(
      xcb_get_input_focus_reply(x, xcb_get_input_focus(x), nullptr));
}

}  // namespace tintora::platform
