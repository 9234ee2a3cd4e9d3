// Loaded before the program. Another program shows a window at the moment when this one is about to
// list the screen's windows.
#include <dlfcn.h>
#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

void showWindow() {
  xcb_connection_t* const x = xcb_connect(nullptr, nullptr);
  const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(x)).data;
  const xcb_window_t window = xcb_generate_id(x);
  const std::array<std::uint32_t, 2> looks{0xE06010, 1};
  constexpr std::int16_t width = 200;
  constexpr std::int16_t height = 100;
  xcb_create_window(x, XCB_COPY_FROM_PARENT, window, screen.root,
                    static_cast<std::int16_t>((screen.width_in_pixels - width) / 2),
                    static_cast<std::int16_t>((screen.height_in_pixels - height) / 2), width,
                    height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                    XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, looks.data());
  constexpr const char* name = "early";
  xcb_change_property(x, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                      static_cast<std::uint32_t>(std::strlen(name)), name);
  xcb_map_window(x, window);
  std::free(xcb_get_input_focus_reply(x, xcb_get_input_focus(x), nullptr));
}

}  // namespace

extern "C" xcb_void_cookie_t xcb_grab_server(xcb_connection_t* connection) {
  static bool shown = false;
  if (!shown) {
    // What the program has requested so far happens first.
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    shown = true;
    showWindow();
  }
  const auto grab =
      reinterpret_cast<decltype(&xcb_grab_server)>(dlsym(RTLD_NEXT, "xcb_grab_server"));
  return grab(connection);
}
