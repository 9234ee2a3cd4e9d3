#include "platform/linux/scale.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

// Returns the desktop's resources, one a line, as xrdb stores them on the root.
std::string resources() {
  constexpr std::uint32_t mostWords = 65536;
  const Received<xcb_get_property_reply_t> reply(xcb_get_property_reply(
      x(),
      xcb_get_property(x(), 0, xServer.screen->root, XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 0,
                       mostWords),
      nullptr));
  if (!reply) return {};
  return {static_cast<const char*>(xcb_get_property_value(reply.get())),
          static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

double readScale() {
  constexpr std::string_view name = "\nXft.dpi:";
  constexpr double standardDpi = 96.0;
  constexpr double largest = 4.0;
  const std::string text = '\n' + resources();
  const std::size_t start = text.find(name);
  if (start == std::string::npos) return 1.0;
  const double dpi = std::strtod(text.c_str() + start + name.size(), nullptr);
  return dpi > standardDpi ? std::min(dpi / standardDpi, largest) : 1.0;
}

}  // namespace

double desktopScale() {
  static const double scale = readScale();
  return scale;
}

}  // namespace tintora::platform
