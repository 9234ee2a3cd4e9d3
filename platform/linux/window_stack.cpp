#include "platform/linux/window_stack.h"

#include <xcb/composite.h>
#include <xcb/shape.h>

#include <algorithm>
#include <array>

#include "platform/linux/window_pixels.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

WindowStack windowStack;

namespace {

using Iterator = std::vector<TopLevel>::iterator;

Iterator find(xcb_window_t window) {
  return std::ranges::find(windowStack.windows, window, &TopLevel::window);
}

bool isOwn(const TopLevel& topLevel) {
  return topLevel.window == windowStack.ownTopLevel;
}

bool isBeneath(const TopLevel& topLevel) {
  const auto beneath = windowsBeneath();
  return !beneath.empty() && &topLevel >= beneath.data() &&
         &topLevel < beneath.data() + beneath.size();
}

// A change of what is not beneath, or not shown, is none of the picture's.
void noteChange(const TopLevel& topLevel) {
  if (topLevel.mapped && topLevel.hasPixels && isBeneath(topLevel)) {
    addChange(topLevel.region());
  }
}

void changeAll() {
  windowStack.changed = QRect(QPoint(), windowStack.rootSize);
}

// Our own window is drawn straight to the screen: it is never read.
void watch(TopLevel& topLevel) {
  if (isOwn(topLevel) || topLevel.damage != XCB_NONE) return;
  const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_composite_redirect_window(x(), topLevel.window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
  xcb_change_window_attributes(x(), topLevel.window, XCB_CW_EVENT_MASK, &events);
  xcb_shape_select_input(x(), topLevel.window, 1);
  topLevel.damage = xcb_generate_id(x());
  xcb_damage_create(x(), topLevel.damage, topLevel.window, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
}

// For a window that lives on elsewhere than among the top-level ones. One that is gone took all
// this with it.
void unwatch(TopLevel& topLevel) {
  releasePixels(topLevel);
  if (topLevel.damage == XCB_NONE) return;
  const std::uint32_t events = XCB_EVENT_MASK_NO_EVENT;
  xcb_damage_destroy(x(), topLevel.damage);
  topLevel.damage = XCB_NONE;
  xcb_shape_select_input(x(), topLevel.window, 0);
  xcb_change_window_attributes(x(), topLevel.window, XCB_CW_EVENT_MASK, &events);
  xcb_composite_unredirect_window(x(), topLevel.window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
}

// The questions about a window, all sent before the first answer is waited for.
struct Enquiry {
  xcb_window_t window;
  xcb_get_window_attributes_cookie_t attributes;
  xcb_get_geometry_cookie_t geometry;
  xcb_shape_query_extents_cookie_t extents;
  xcb_shape_get_rectangles_cookie_t rectangles;
  xcb_get_property_cookie_t opacity;
};

Enquiry enquire(xcb_window_t window) {
  return {window,
          xcb_get_window_attributes(x(), window),
          xcb_get_geometry(x(), window),
          xcb_shape_query_extents(x(), window),
          xcb_shape_get_rectangles(x(), window, XCB_SHAPE_SK_BOUNDING),
          xcb_get_property(x(), 0, window, xServer.windowOpacity, XCB_ATOM_CARDINAL, 0, 1)};
}

void readOutline(TopLevel& topLevel, const xcb_shape_query_extents_reply_t* extents,
                 const xcb_shape_get_rectangles_reply_t* reply) {
  topLevel.outline = QRegion();
  if (extents == nullptr || reply == nullptr || extents->bounding_shaped == 0) return;
  // The rectangles are relative to the inside of the border.
  const QPoint inside = topLevel.bounds.topLeft() + QPoint(topLevel.border, topLevel.border);
  const std::span rectangles(xcb_shape_get_rectangles_rectangles(reply),
                             static_cast<std::size_t>(reply->rectangles_len));
  for (const xcb_rectangle_t& r : rectangles) {
    topLevel.outline += QRect(r.x, r.y, r.width, r.height).translated(inside) & topLevel.bounds;
  }
  // A shape that leaves nothing is not the same as none.
  if (topLevel.outline.isEmpty()) topLevel.hasPixels = false;
}

void readOpacity(TopLevel& topLevel, const xcb_get_property_reply_t* reply) {
  topLevel.opacity = 0xFFFFFFFF;
  if (reply == nullptr || reply->format != 32 || xcb_get_property_value_length(reply) != 4) return;
  topLevel.opacity = *static_cast<const std::uint32_t*>(xcb_get_property_value(reply));
}

// A window that went away meanwhile is left without pixels.
void readAnswers(TopLevel& topLevel, const Enquiry& enquiry) {
  const Received<xcb_get_window_attributes_reply_t> attributes(
      xcb_get_window_attributes_reply(x(), enquiry.attributes, nullptr));
  const Received<xcb_get_geometry_reply_t> geometry(
      xcb_get_geometry_reply(x(), enquiry.geometry, nullptr));
  const Received<xcb_shape_query_extents_reply_t> extents(
      xcb_shape_query_extents_reply(x(), enquiry.extents, nullptr));
  const Received<xcb_shape_get_rectangles_reply_t> rectangles(
      xcb_shape_get_rectangles_reply(x(), enquiry.rectangles, nullptr));
  const Received<xcb_get_property_reply_t> opacity(
      xcb_get_property_reply(x(), enquiry.opacity, nullptr));
  topLevel.hasPixels =
      attributes && geometry && attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
  if (!topLevel.hasPixels) return;
  topLevel.mapped = attributes->map_state != XCB_MAP_STATE_UNMAPPED;
  topLevel.depth = geometry->depth;
  topLevel.format = formatOf(attributes->visual);
  topLevel.border = geometry->border_width;
  topLevel.bounds = {geometry->x, geometry->y, geometry->width + 2 * topLevel.border,
                     geometry->height + 2 * topLevel.border};
  readOutline(topLevel, extents.get(), rectangles.get());
  readOpacity(topLevel, opacity.get());
}

// Anything about a window but its place may have changed.
void readAgain(TopLevel& topLevel) {
  noteChange(topLevel);
  releasePixels(topLevel);
  readAnswers(topLevel, enquire(topLevel.window));
  noteChange(topLevel);
}

// The child of the root that a window stands in, however deep.
xcb_window_t topLevelOf(xcb_window_t window) {
  while (true) {
    const Received<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(x(), xcb_query_tree(x(), window), nullptr));
    if (!tree || tree->parent == XCB_NONE || tree->parent == xServer.screen->root) return window;
    window = tree->parent;
  }
}

// After the main window was put into a frame, or taken out of one.
void findOwnTopLevel() {
  const xcb_window_t before = windowStack.ownTopLevel;
  windowStack.ownTopLevel = topLevelOf(windowStack.ownWindow);
  if (windowStack.ownTopLevel == before) return;
  if (const auto own = find(windowStack.ownTopLevel); own != windowStack.windows.end()) {
    unwatch(*own);
  }
  if (const auto former = find(before); former != windowStack.windows.end()) watch(*former);
  changeAll();
}

void onCreated(const xcb_create_notify_event_t& event) {
  if (event.parent != xServer.screen->root) return;
  TopLevel topLevel;
  topLevel.window = event.window;
  watch(windowStack.windows.emplace_back(topLevel));
}

void forget(xcb_window_t window, bool livesOn) {
  const auto found = find(window);
  if (found == windowStack.windows.end()) return;
  noteChange(*found);
  if (livesOn) {
    unwatch(*found);
  } else {
    releasePixels(*found);
  }
  windowStack.windows.erase(found);
}

void onReparented(const xcb_reparent_notify_event_t& event) {
  forget(event.window, true);
  if (event.parent == xServer.screen->root) {
    TopLevel topLevel;
    topLevel.window = event.window;
    watch(windowStack.windows.emplace_back(topLevel));
  }
  if (event.window == windowStack.ownWindow || event.window == windowStack.ownTopLevel) {
    findOwnTopLevel();
  }
}

void onMapped(xcb_window_t window) {
  const auto found = find(window);
  if (found == windowStack.windows.end()) return;
  found->mapped = true;
  if (isOwn(*found)) return changeAll();
  readAgain(*found);
}

void onUnmapped(xcb_window_t window) {
  const auto found = find(window);
  if (found == windowStack.windows.end()) return;
  noteChange(*found);
  releasePixels(*found);
  found->mapped = false;
}

// Puts a window right above another one, or below all where there is none.
void restack(Iterator moved, xcb_window_t below) {
  std::vector<TopLevel>& windows = windowStack.windows;
  const auto lower = below == XCB_NONE ? windows.end() : find(below);
  if (below != XCB_NONE && lower == windows.end()) return;
  const auto place = below == XCB_NONE ? windows.begin() : lower + 1;
  if (place == moved || place == moved + 1) return;
  const bool ownMoved = isOwn(*moved);
  noteChange(*moved);
  const xcb_window_t window = moved->window;
  if (place < moved) {
    std::rotate(place, moved, moved + 1);
  } else {
    std::rotate(moved, moved + 1, place);
  }
  noteChange(*find(window));
  if (ownMoved) changeAll();
}

void onConfigured(const xcb_configure_notify_event_t& event) {
  if (event.window == xServer.screen->root) {
    windowStack.rootSize = {event.width, event.height};
    windowStack.rootPixmapChanged = true;
    return;
  }
  const auto found = find(event.window);
  if (found == windowStack.windows.end()) return;
  const int border = event.border_width;
  const QRect bounds(event.x, event.y, event.width + 2 * border, event.height + 2 * border);
  if (bounds != found->bounds) {
    noteChange(*found);
    found->outline.translate(bounds.topLeft() - found->bounds.topLeft());
    if (bounds.size() != found->bounds.size()) releasePixels(*found);
    found->bounds = bounds;
    found->border = border;
    noteChange(*found);
  }
  restack(found, event.above_sibling);
}

void onCirculated(const xcb_circulate_notify_event_t& event) {
  const auto found = find(event.window);
  if (found == windowStack.windows.end()) return;
  const bool toTop = event.place == XCB_PLACE_ON_TOP;
  restack(found, toTop ? windowStack.windows.back().window : xcb_window_t{XCB_NONE});
}

void onPropertyChanged(const xcb_property_notify_event_t& event) {
  if (event.window == xServer.screen->root) {
    windowStack.rootPixmapChanged |=
        event.atom == xServer.rootPixmap || event.atom == xServer.setRootPixmap;
    return;
  }
  const auto found = find(event.window);
  if (found != windowStack.windows.end() && event.atom == xServer.windowOpacity) readAgain(*found);
}

void onShaped(xcb_window_t window) {
  const auto found = find(window);
  if (found != windowStack.windows.end() && found->mapped) readAgain(*found);
}

void onDamaged(xcb_window_t window) {
  const auto found = find(window);
  if (found != windowStack.windows.end()) found->damaged = true;
}

template <typename Event>
const Event& as(const xcb_generic_event_t& event) {
  return reinterpret_cast<const Event&>(event);
}

}  // namespace

void addChange(const QRegion& region) {
  constexpr int mostPieces = 256;
  QRegion& changed = windowStack.changed;
  changed += region;
  if (changed.rectCount() > mostPieces) changed = changed.boundingRect();
}

void watchWindows(xcb_window_t ownWindow) {
  const xcb_window_t root = xServer.screen->root;
  const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY |
                               XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_change_window_attributes(x(), root, XCB_CW_EVENT_MASK, &events);
  const Received<xcb_get_geometry_reply_t> rootGeometry(
      xcb_get_geometry_reply(x(), xcb_get_geometry(x(), root), nullptr));
  if (rootGeometry) windowStack.rootSize = {rootGeometry->width, rootGeometry->height};
  windowStack.ownWindow = ownWindow;
  windowStack.ownTopLevel = topLevelOf(ownWindow);
  windowStack.rootPixmapChanged = true;

  // In one go, so that nothing slips in between the list and what is asked of its windows.
  xcb_grab_server(x());
  const Received<xcb_query_tree_reply_t> tree(
      xcb_query_tree_reply(x(), xcb_query_tree(x(), root), nullptr));
  std::vector<Enquiry> enquiries;
  if (tree) {
    const std::span children(xcb_query_tree_children(tree.get()),
                             static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
    for (const xcb_window_t child : children) {
      TopLevel topLevel;
      topLevel.window = child;
      watch(windowStack.windows.emplace_back(topLevel));
      enquiries.push_back(enquire(child));
    }
  }
  for (std::size_t i = 0; i < enquiries.size(); ++i) {
    readAnswers(windowStack.windows[i], enquiries[i]);
  }
  xcb_ungrab_server(x());
  // Nobody else gets on before this has arrived.
  xcb_flush(x());
}

void forgetWindows() {
  for (TopLevel& topLevel : windowStack.windows) unwatch(topLevel);
  windowStack = {};
}

void followEvent(const xcb_generic_event_t& event) {
  const std::uint8_t kind = event.response_type & 0x7F;
  if (kind == xServer.damageNotify) return onDamaged(as<xcb_damage_notify_event_t>(event).drawable);
  if (kind == xServer.shapeNotify) {
    return onShaped(as<xcb_shape_notify_event_t>(event).affected_window);
  }
  switch (kind) {
    case XCB_CREATE_NOTIFY:
      return onCreated(as<xcb_create_notify_event_t>(event));
    case XCB_DESTROY_NOTIFY:
      return forget(as<xcb_destroy_notify_event_t>(event).window, false);
    case XCB_REPARENT_NOTIFY:
      return onReparented(as<xcb_reparent_notify_event_t>(event));
    case XCB_MAP_NOTIFY:
      return onMapped(as<xcb_map_notify_event_t>(event).window);
    case XCB_UNMAP_NOTIFY:
      return onUnmapped(as<xcb_unmap_notify_event_t>(event).window);
    case XCB_CONFIGURE_NOTIFY:
      return onConfigured(as<xcb_configure_notify_event_t>(event));
    case XCB_CIRCULATE_NOTIFY:
      return onCirculated(as<xcb_circulate_notify_event_t>(event));
    case XCB_PROPERTY_NOTIFY:
      return onPropertyChanged(as<xcb_property_notify_event_t>(event));
    default:
      return;
  }
}

bool isOwnWindowShown() {
  const auto own = find(windowStack.ownTopLevel);
  return own != windowStack.windows.end() && own->mapped;
}

std::span<TopLevel> windowsBeneath() {
  const auto own = find(windowStack.ownTopLevel);
  // Where the own frame is not to be found, nothing is known to be beneath it.
  if (own == windowStack.windows.end()) return {};
  return {windowStack.windows.begin(), own};
}

}  // namespace tintora::platform
