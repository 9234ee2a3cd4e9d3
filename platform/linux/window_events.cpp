#include "platform/linux/window_events.h"

#include <xcb/composite.h>
#include <xcb/shape.h>

#include <algorithm>
#include <cstddef>
#include <span>

#include "platform/linux/compositing.h"
#include "platform/linux/framed_client.h"
#include "platform/linux/window_facts.h"
#include "platform/linux/window_pixels.h"
#include "platform/linux/window_stack.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {
namespace {

void redirect(TopLevel& topLevel) {
  if (topLevel.redirected || isOwn(topLevel) || isOfView(topLevel.window)) return;
  topLevel.redirected = true;
  topLevel.damaged = false;
  xcb_composite_redirect_window(x(), topLevel.window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
  topLevel.damage = xcb_generate_id(x());
  xcb_damage_create(x(), topLevel.damage, topLevel.window, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
}

void unredirect(TopLevel& topLevel) {
  releasePixels(topLevel);
  if (!topLevel.redirected) return;
  topLevel.redirected = false;
  xcb_damage_destroy(x(), topLevel.damage);
  topLevel.damage = XCB_NONE;
  xcb_composite_unredirect_window(x(), topLevel.window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
}

void watch(TopLevel& topLevel) {
  if (isOwn(topLevel) || isOfView(topLevel.window)) return;
  const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_change_window_attributes(x(), topLevel.window, XCB_CW_EVENT_MASK, &events);
  xcb_shape_select_input(x(), topLevel.window, 1);
  if (windowStack.redirecting) redirect(topLevel);
}

// Stops watching a window that still exists. The server does so itself for destroyed ones.
void unwatch(TopLevel& topLevel) {
  unredirect(topLevel);
  const std::uint32_t events = XCB_EVENT_MASK_NO_EVENT;
  xcb_shape_select_input(x(), topLevel.window, 0);
  xcb_change_window_attributes(x(), topLevel.window, XCB_CW_EVENT_MASK, &events);
}

// Redirects other windows only while the main window is shown. Otherwise programs draw straight to
// the screen, as they do without this program.
void redirectWhileShown() {
  const bool shown = isOwnWindowShown();
  if (shown == windowStack.redirecting) return;
  windowStack.redirecting = shown;
  for (TopLevel& topLevel : windowStack.windows) {
    if (shown) {
      redirect(topLevel);
    } else {
      unredirect(topLevel);
    }
  }
  if (shown) changeAll();
}

// Reads all facts about a window again.
void readAgain(TopLevel& topLevel) {
  const bool wasGuard = topLevel.isGuard;
  noteChange(topLevel);
  releasePixels(topLevel);
  readAnswers(topLevel, enquire(topLevel.window));
  readFramedClient(topLevel);
  noteChange(topLevel);
  if (topLevel.isGuard != wasGuard) changeAll();
}

void readAllAgain() {
  for (TopLevel& topLevel : windowStack.windows) readAgain(topLevel);
  changeAll();
}

// Returns the child of the root that contains a window at any depth.
xcb_window_t topLevelOf(xcb_window_t window) {
  while (true) {
    const Received<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(x(), xcb_query_tree(x(), window), nullptr));
    if (!tree || tree->parent == XCB_NONE || tree->parent == xServer.screen->root) return window;
    window = tree->parent;
  }
}

// Finds the main window's top-level window again after the main window was put into a frame or
// taken out of one.
void findOwnTopLevel() {
  const xcb_window_t before = windowStack.ownTopLevel;
  windowStack.ownTopLevel = topLevelOf(windowStack.ownWindow);
  if (windowStack.ownTopLevel == before) return;
  if (const auto own = findTopLevel(windowStack.ownTopLevel); own != windowStack.windows.end()) {
    unwatch(*own);
  }
  if (const auto former = findTopLevel(before); former != windowStack.windows.end()) watch(*former);
  changeAll();
}

void add(xcb_window_t window) {
  TopLevel topLevel;
  topLevel.window = window;
  watch(windowStack.windows.emplace_back(topLevel));
}

void onCreated(const xcb_create_notify_event_t& event) {
  if (event.parent == xServer.screen->root) add(event.window);
}

void forget(xcb_window_t window, bool livesOn) {
  const auto found = findTopLevel(window);
  if (found == windowStack.windows.end()) return;
  noteChange(*found);
  if (livesOn) {
    unwatch(*found);
  } else {
    releasePixels(*found);
  }
  windowStack.windows.erase(found);
}

// Notes which frames contain windows of this program.
void noteFrame(const xcb_reparent_notify_event_t& event) {
  for (TopLevel& topLevel : windowStack.windows) {
    if (topLevel.programWindow == event.window) topLevel.programWindow = XCB_NONE;
  }
  if (!isOwnResource(event.window) || event.parent == xServer.screen->root) return;
  const auto frame = findTopLevel(topLevelOf(event.parent));
  if (frame != windowStack.windows.end()) frame->programWindow = event.window;
}

void onReparented(const xcb_reparent_notify_event_t& event) {
  forget(event.window, true);
  noteFrame(event);
  if (event.parent == xServer.screen->root) add(event.window);
  if (event.window == windowStack.ownWindow || event.window == windowStack.ownTopLevel) {
    findOwnTopLevel();
  }
}

void onMapped(xcb_window_t window) {
  const auto found = findTopLevel(window);
  if (found == windowStack.windows.end()) return;
  found->mapped = true;
  readAgain(*found);
  if (isOwn(*found)) changeAll();
}

void onUnmapped(xcb_window_t window) {
  const auto found = findTopLevel(window);
  if (found == windowStack.windows.end()) return;
  noteChange(*found);
  releasePixels(*found);
  found->mapped = false;
  found->keepsAbove = false;
  found->timesRaised = 0;
  if (found->isGuard) changeAll();
}

// Puts a window directly above another one, or below all if that is XCB_NONE.
void restack(std::vector<TopLevel>::iterator moved, xcb_window_t below) {
  std::vector<TopLevel>& windows = windowStack.windows;
  const auto lower = below == XCB_NONE ? windows.end() : findTopLevel(below);
  if (below != XCB_NONE && lower == windows.end()) return;
  const auto place = below == XCB_NONE ? windows.begin() : lower + 1;
  if (place == moved || place == moved + 1) return;
  const bool allMoved = isOwn(*moved) || moved->isGuard;
  noteChange(*moved);
  const xcb_window_t window = moved->window;
  if (place < moved) {
    std::rotate(place, moved, moved + 1);
  } else {
    std::rotate(moved, moved + 1, place);
  }
  noteChange(*findTopLevel(window));
  if (allMoved) changeAll();
}

void onConfigured(const xcb_configure_notify_event_t& event) {
  if (event.window == xServer.screen->root) {
    windowStack.rootSize = {event.width, event.height};
    windowStack.backgroundChanged = true;
    return;
  }
  const auto found = findTopLevel(event.window);
  if (found == windowStack.windows.end()) return;
  const int border = event.border_width;
  const QRect bounds(event.x, event.y, event.width + 2 * border, event.height + 2 * border);
  if (bounds != found->bounds) {
    noteChange(*found);
    found->outline.translate(bounds.topLeft() - found->bounds.topLeft());
    if (bounds.size() != found->bounds.size()) releasePixels(*found);
    found->bounds = bounds;
    found->border = border;
    if (found->client != XCB_NONE) readFramedClient(*found);
    noteChange(*found);
  }
  restack(found, event.above_sibling);
}

void onCirculated(const xcb_circulate_notify_event_t& event) {
  const auto found = findTopLevel(event.window);
  if (found == windowStack.windows.end()) return;
  const bool toTop = event.place == XCB_PLACE_ON_TOP;
  restack(found, toTop ? windowStack.windows.back().window : xcb_window_t{XCB_NONE});
}

// Handles a change of a window inside a frame.
void followClient(xcb_window_t client) {
  const auto found = std::ranges::find(windowStack.windows, client, &TopLevel::client);
  if (found == windowStack.windows.end()) return;
  const QRegion before = found->region();
  const std::uint32_t opacity = found->opacity;
  readFramedClient(*found);
  if (found->region() == before && found->opacity == opacity) return;
  releasePixels(*found);
  if (found->mapped && isLookedAt(*found)) addChange(before + found->region());
}

void onPropertyChanged(const xcb_property_notify_event_t& event) {
  if (event.window == xServer.screen->root) {
    windowStack.backgroundChanged |=
        event.atom == xServer.rootPixmap || event.atom == xServer.setRootPixmap;
    return;
  }
  const auto found = findTopLevel(event.window);
  if (found == windowStack.windows.end()) {
    const bool matters = event.atom == xServer.frameExtents || event.atom == xServer.windowOpacity;
    if (matters) followClient(event.window);
    return;
  }
  // A guard window may get its name after it was mapped.
  const bool maybeGuard = event.atom == XCB_ATOM_WM_NAME && !found->hasPixels;
  if (event.atom == xServer.windowOpacity || maybeGuard) readAgain(*found);
}

void onShaped(xcb_window_t window) {
  const auto found = findTopLevel(window);
  if (found != windowStack.windows.end() && found->mapped) readAgain(*found);
}

void onDamaged(xcb_window_t window) {
  const auto found = findTopLevel(window);
  if (found != windowStack.windows.end()) found->damaged = true;
}

// Handles structure events: those of the root's children, which the root reports, and those of
// windows inside frames.
void followStructure(const xcb_generic_event_t& event) {
  // The reporting window is in the same position in all of these events.
  const xcb_window_t reporter = as<xcb_configure_notify_event_t>(event).event;
  const std::uint8_t kind = event.response_type & 0x7F;
  switch (kind) {
    case XCB_CREATE_NOTIFY:
      return onCreated(as<xcb_create_notify_event_t>(event));
    case XCB_PROPERTY_NOTIFY:
      return onPropertyChanged(as<xcb_property_notify_event_t>(event));
    case XCB_DESTROY_NOTIFY:
    case XCB_REPARENT_NOTIFY:
    case XCB_MAP_NOTIFY:
    case XCB_UNMAP_NOTIFY:
    case XCB_CONFIGURE_NOTIFY:
    case XCB_CIRCULATE_NOTIFY:
      break;
    default:
      return;
  }
  if (reporter != xServer.screen->root) return followClient(reporter);
  switch (kind) {
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
    default:
      return onCirculated(as<xcb_circulate_notify_event_t>(event));
  }
}

}  // namespace

void watchWindows(xcb_window_t ownWindow) {
  const xcb_window_t root = xServer.screen->root;
  const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY |
                               XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
  // Grabs the server, so that no window comes or goes between the list of windows, the events that
  // report later ones, and the questions about each.
  xcb_grab_server(x());
  xcb_change_window_attributes(x(), root, XCB_CW_EVENT_MASK, &events);
  followCompositing();
  const Received<xcb_get_geometry_reply_t> rootGeometry(
      xcb_get_geometry_reply(x(), xcb_get_geometry(x(), root), nullptr));
  if (rootGeometry) windowStack.rootSize = {rootGeometry->width, rootGeometry->height};
  windowStack.ownWindow = ownWindow;
  windowStack.ownTopLevel = topLevelOf(ownWindow);
  windowStack.backgroundChanged = true;
  const Received<xcb_query_tree_reply_t> tree(
      xcb_query_tree_reply(x(), xcb_query_tree(x(), root), nullptr));
  std::vector<Enquiry> enquiries;
  if (tree) {
    const std::span children(xcb_query_tree_children(tree.get()),
                             static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
    for (const xcb_window_t child : children) {
      add(child);
      enquiries.push_back(enquire(child));
    }
  }
  for (std::size_t i = 0; i < enquiries.size(); ++i) {
    readAnswers(windowStack.windows[i], enquiries[i]);
    readFramedClient(windowStack.windows[i]);
  }
  xcb_ungrab_server(x());
  // The server stays grabbed until this is flushed.
  xcb_flush(x());
  redirectWhileShown();
}

void forgetWindows() {
  for (TopLevel& topLevel : windowStack.windows) unwatch(topLevel);
  windowStack = {};
}

void followEvent(const xcb_generic_event_t& event) {
  const std::uint8_t kind = event.response_type & 0x7F;
  if (reportsDamage(event)) return onDamaged(as<xcb_damage_notify_event_t>(event).drawable);
  if (kind == xServer.shapeNotify) {
    return onShaped(as<xcb_shape_notify_event_t>(event).affected_window);
  }
  if (followCompositing(event)) {
    windowStack.backgroundChanged = true;
    return readAllAgain();
  }
  followStructure(event);
  redirectWhileShown();
}

}  // namespace tintora::platform
