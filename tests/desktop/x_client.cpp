#include "x_client.h"

#include <gtest/gtest.h>
#include <xcb/xtest.h>

#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace tintora::desktop_test {

void Free::operator()(void* block) const {
  std::free(block);
}

XClient::XClient(const std::string& display) : x_(xcb_connect(display.c_str(), nullptr)) {
  if (xcb_connection_has_error(x_) != 0) throw std::runtime_error("No connection to " + display);
  screen_ = xcb_setup_roots_iterator(xcb_get_setup(x_)).data;
}

XClient::~XClient() {
  xcb_disconnect(x_);
}

Area XClient::screenArea() const {
  const Received<xcb_get_geometry_reply_t> geometry(
      xcb_get_geometry_reply(x_, xcb_get_geometry(x_, root()), nullptr));
  return {0, 0, geometry->width, geometry->height};
}

void XClient::sync() const {
  const Received<xcb_get_input_focus_reply_t> done(
      xcb_get_input_focus_reply(x_, xcb_get_input_focus(x_), nullptr));
}

void XClient::check(xcb_void_cookie_t cookie) const {
  const Received<xcb_generic_error_t> error(xcb_request_check(x_, cookie));
  if (error)
    ADD_FAILURE() << "The server refused the request with error " << int{error->error_code};
}

xcb_atom_t XClient::atom(const std::string& name) const {
  const Received<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
      x_, xcb_intern_atom(x_, 0, static_cast<std::uint16_t>(name.size()), name.c_str()), nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_NONE};
}

std::string XClient::property(xcb_window_t window, xcb_atom_t name) const {
  constexpr std::uint32_t most = 1U << 24U;
  const Received<xcb_get_property_reply_t> reply(xcb_get_property_reply(
      x_, xcb_get_property(x_, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, most), nullptr));
  if (!reply) return {};
  return {static_cast<const char*>(xcb_get_property_value(reply.get())),
          static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

std::string XClient::text(xcb_window_t window, const std::string& name) const {
  return property(window, atom(name));
}

std::vector<std::uint32_t> XClient::numbers(xcb_window_t window, const std::string& name) const {
  const std::string bytes = property(window, atom(name));
  std::vector<std::uint32_t> values(bytes.size() / 4);
  if (!values.empty()) std::memcpy(values.data(), bytes.data(), 4 * values.size());
  return values;
}

void XClient::setNumbers(xcb_window_t window, const std::string& name, xcb_atom_t type,
                         const std::vector<std::uint32_t>& values) const {
  xcb_change_property(x_, XCB_PROP_MODE_REPLACE, window, atom(name), type, 32,
                      static_cast<std::uint32_t>(values.size()), values.data());
  sync();
}

void XClient::tellManager(xcb_window_t window, const std::string& message,
                          const std::vector<std::uint32_t>& values) const {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = window;
  event.type = atom(message);
  std::memcpy(event.data.data32, values.data(), 4 * values.size());
  xcb_send_event(x_, 0, root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                 reinterpret_cast<const char*>(&event));
  sync();
}

std::vector<xcb_window_t> XClient::children(xcb_window_t window) const {
  const Received<xcb_query_tree_reply_t> tree(
      xcb_query_tree_reply(x_, xcb_query_tree(x_, window), nullptr));
  if (!tree) return {};
  const xcb_window_t* const first = xcb_query_tree_children(tree.get());
  return {first, first + xcb_query_tree_children_length(tree.get())};
}

xcb_window_t XClient::topLevelOf(xcb_window_t window) const {
  while (true) {
    const Received<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(x_, xcb_query_tree(x_, window), nullptr));
    if (!tree || tree->parent == root() || tree->parent == XCB_NONE) return window;
    window = tree->parent;
  }
}

bool XClient::isShown(xcb_window_t window) const {
  const Received<xcb_get_window_attributes_reply_t> attributes(
      xcb_get_window_attributes_reply(x_, xcb_get_window_attributes(x_, window), nullptr));
  return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool XClient::exists(xcb_window_t window) const {
  return Received<xcb_get_geometry_reply_t>(
             xcb_get_geometry_reply(x_, xcb_get_geometry(x_, window), nullptr)) != nullptr;
}

Area XClient::areaOf(xcb_window_t window) const {
  const auto geometryCookie = xcb_get_geometry(x_, window);
  const auto placeCookie = xcb_translate_coordinates(x_, window, root(), 0, 0);
  const Received<xcb_get_geometry_reply_t> geometry(
      xcb_get_geometry_reply(x_, geometryCookie, nullptr));
  const Received<xcb_translate_coordinates_reply_t> place(
      xcb_translate_coordinates_reply(x_, placeCookie, nullptr));
  if (!geometry || !place) return {};
  return {place->dst_x, place->dst_y, geometry->width, geometry->height};
}

Area XClient::outerAreaOf(xcb_window_t window) const {
  const Received<xcb_get_geometry_reply_t> geometry(
      xcb_get_geometry_reply(x_, xcb_get_geometry(x_, topLevelOf(window)), nullptr));
  if (!geometry) return {};
  const int borders = 2 * geometry->border_width;
  return {geometry->x, geometry->y, geometry->width + borders, geometry->height + borders};
}

void XClient::configure(xcb_window_t window, std::uint16_t mask,
                        const std::vector<std::uint32_t>& values) const {
  xcb_configure_window(x_, window, mask, values.data());
  sync();
}

void XClient::move(xcb_window_t window, int x, int y) const {
  configure(window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, {u32(x), u32(y)});
}

void XClient::resize(xcb_window_t window, int width, int height) const {
  configure(window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, {u32(width), u32(height)});
}

void XClient::activate(xcb_window_t window) const {
  constexpr std::uint32_t fromPager = 2;
  tellManager(window, "_NET_ACTIVE_WINDOW", {fromPager, XCB_CURRENT_TIME, XCB_NONE});
}

void XClient::close(xcb_window_t window) const {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = window;
  event.type = atom("WM_PROTOCOLS");
  event.data.data32[0] = atom("WM_DELETE_WINDOW");
  xcb_send_event(x_, 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&event));
  sync();
}

void XClient::restack(xcb_window_t window, xcb_stack_mode_t mode, xcb_window_t sibling) const {
  if (sibling == XCB_NONE) {
    configure(window, XCB_CONFIG_WINDOW_STACK_MODE, {mode});
  } else {
    configure(window, XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, {sibling, mode});
  }
}

Picture XClient::read(const Area& area) const {
  return read(root(), area);
}

Picture XClient::read(xcb_drawable_t drawable, const Area& area) const {
  const Received<xcb_get_image_reply_t> reply(
      xcb_get_image_reply(x_,
                          xcb_get_image(x_, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, i16(area.x),
                                        i16(area.y), u16(area.width), u16(area.height), ~0U),
                          nullptr));
  if (!reply) return {};
  Picture picture = solid(area.width, area.height, 0);
  std::memcpy(picture.pixels.data(), xcb_get_image_data(reply.get()), 4 * picture.pixels.size());
  return picture;
}

void XClient::draw(xcb_drawable_t drawable, const Picture& picture, int x, int y,
                   std::uint8_t depth) const {
  const xcb_gcontext_t context = xcb_generate_id(x_);
  xcb_create_gc(x_, context, drawable, 0, nullptr);
  const int rows = std::max(1, (1 << 20) / std::max(1, 4 * picture.width));
  for (int top = 0; top < picture.height; top += rows) {
    const int height = std::min(rows, picture.height - top);
    const auto offset = static_cast<std::size_t>(top) * static_cast<std::size_t>(picture.width);
    xcb_put_image(x_, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, context, u16(picture.width), u16(height),
                  i16(x), i16(y + top), 0, depth, u32(4 * picture.width * height),
                  reinterpret_cast<const std::uint8_t*>(picture.pixels.data() + offset));
  }
  xcb_free_gc(x_, context);
  sync();
}

xcb_pixmap_t XClient::pixmapOf(const Picture& picture) const {
  const xcb_pixmap_t pixmap = xcb_generate_id(x_);
  xcb_create_pixmap(x_, screen_->root_depth, pixmap, root(), u16(picture.width),
                    u16(picture.height));
  draw(pixmap, picture);
  return pixmap;
}

void XClient::moveMouse(int x, int y) const {
  xcb_test_fake_input(x_, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, root(), i16(x), i16(y), 0);
  sync();
}

void XClient::moveMouse(const Area& area) const {
  moveMouse(area.x + area.width / 2, area.y + area.height / 2);
}

void XClient::button(std::uint8_t number, bool down) const {
  xcb_test_fake_input(x_, down ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, number, XCB_CURRENT_TIME,
                      root(), 0, 0, 0);
  sync();
}

void XClient::click(std::uint8_t number) const {
  button(number, true);
  button(number, false);
}

xcb_keycode_t XClient::codeOf(xcb_keysym_t symbol) const {
  const xcb_setup_t* const setup = xcb_get_setup(x_);
  const xcb_keycode_t first = setup->min_keycode;
  const auto count = static_cast<std::uint8_t>(setup->max_keycode - first + 1);
  const Received<xcb_get_keyboard_mapping_reply_t> mapping(
      xcb_get_keyboard_mapping_reply(x_, xcb_get_keyboard_mapping(x_, first, count), nullptr));
  const xcb_keysym_t* const symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
  const int perCode = mapping->keysyms_per_keycode;
  // Prefers the level without Shift.
  for (int level = 0; level < 2; ++level) {
    for (int i = 0; i < count; ++i) {
      if (symbols[i * perCode + level] == symbol) return static_cast<xcb_keycode_t>(first + i);
    }
  }
  throw std::runtime_error("There is no such key.");
}

void XClient::key(xcb_keysym_t symbol, bool down) const {
  xcb_test_fake_input(x_, down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, codeOf(symbol), XCB_CURRENT_TIME,
                      root(), 0, 0, 0);
  sync();
}

void XClient::press(xcb_keysym_t symbol, const std::vector<xcb_keysym_t>& holding) const {
  for (const xcb_keysym_t held : holding) key(held, true);
  key(symbol, true);
  key(symbol, false);
  for (const xcb_keysym_t held : holding) key(held, false);
}

xcb_window_t XClient::focus() const {
  const Received<xcb_get_input_focus_reply_t> reply(
      xcb_get_input_focus_reply(x_, xcb_get_input_focus(x_), nullptr));
  return reply ? reply->focus : xcb_window_t{XCB_NONE};
}

xcb_window_t XClient::underMouse() const {
  const Received<xcb_query_pointer_reply_t> reply(
      xcb_query_pointer_reply(x_, xcb_query_pointer(x_, root()), nullptr));
  return reply ? reply->child : xcb_window_t{XCB_NONE};
}

void XClient::takeEvents(const std::function<void(const xcb_generic_event_t&)>& take) const {
  while (const Received<xcb_generic_event_t> event{xcb_poll_for_event(x_)}) take(*event);
}

xcb_visualid_t XClient::translucentVisual() const {
  for (auto depths = xcb_screen_allowed_depths_iterator(screen_); depths.rem != 0;
       xcb_depth_next(&depths)) {
    if (depths.data->depth == 32) return xcb_depth_visuals_iterator(depths.data).data->visual_id;
  }
  throw std::runtime_error("There is no visual of 32 bits.");
}

}  // namespace tintora::desktop_test
