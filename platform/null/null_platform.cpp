#include "platform/null/null_platform.h"

#include <algorithm>
#include <array>

#include "engine/custom_transforms.h"
#include "platform/clipboard.h"
#include "platform/magnifier.h"
#include "platform/program.h"

namespace tintora::platform {

struct Picture {};

namespace {

// The width of a window's frame and the height of its caption on this desktop.
constexpr int frameWidth = 8;
constexpr int captionHeight = 31;

std::string text(int value) {
  return std::to_string(value);
}
std::string text(bool value) {
  return value ? "true" : "false";
}
std::string text(const std::string& value) {
  return value;
}
std::string text(const char* value) {
  return value;
}
std::string text(const Window* window) {
  return window == nullptr ? "none" : window->name;
}
std::string text(const Menu* menu) {
  return menu == nullptr ? "none" : "menu " + text(menu->number);
}
std::string text(const Rect& rect) {
  return text(rect.left) + "," + text(rect.top) + "," + text(rect.right) + "," + text(rect.bottom);
}
std::string text(const Point& point) {
  return text(point.x) + "," + text(point.y);
}
std::string text(WindowForm form) {
  constexpr std::array names{"framed", "frameless", "framed maximised", "frameless maximised",
                             "full screen"};
  return names[static_cast<std::size_t>(form)];
}
std::string text(ShowState state) {
  constexpr std::array names{"hidden", "shown", "as started", "normal", "maximised"};
  return names[static_cast<std::size_t>(state)];
}

template <typename... Arguments>
void record(const char* function, const Arguments&... arguments) {
  std::string call = function;
  ((call += ' ' + text(arguments)), ...);
  nullDesktop().calls.push_back(std::move(call));
}

NullDesktop desktop;

Window* addWindow(const std::string& name, const std::string& title, const Rect& bounds) {
  if (desktop.windowThatFails == name) return nullptr;
  desktop.windows.push_back(std::make_unique<Window>());
  Window* const window = desktop.windows.back().get();
  window->name = name;
  window->title = title;
  window->bounds = bounds;
  return window;
}

bool hasFrame(const Window* window) {
  return window->form == WindowForm::Framed || window->form == WindowForm::FramedMaximised;
}

const char* nameOf(WindowKind kind) {
  constexpr std::array names{"main", "control", "colour space"};
  return names[static_cast<std::size_t>(kind)];
}

}  // namespace

NullDesktop& nullDesktop() {
  return desktop;
}

void resetNullDesktop() {
  desktop = NullDesktop();
}

Window* NullDesktop::window(const std::string& name) const {
  const auto found = std::ranges::find_if(windows, [&](const auto& w) { return w->name == name; });
  return found == windows.end() ? nullptr : found->get();
}

std::filesystem::path customTransformFile() {
  return customTransformPath(desktop.commandLine);
}
std::string programArguments() {
  return desktop.arguments;
}
Size screenSize() {
  return desktop.screen;
}
double screenScale() {
  return desktop.scale;
}
void openPageBesideProgram(const std::string& fileName) {
  record("openPageBesideProgram", fileName);
}

void registerWindowKinds(EventHandler handler) {
  record("registerWindowKinds");
  desktop.handler = handler;
}
void unregisterWindowKinds() {
  record("unregisterWindowKinds");
}

Window* createWindow(WindowKind kind, const std::string& title, const Rect& bounds) {
  record("createWindow", nameOf(kind), title, bounds);
  return addWindow(nameOf(kind), title, bounds);
}

void setWindowForm(Window* window, WindowForm form) {
  record("setWindowForm", window, form);
  window->form = form;
  window->maximised = form != WindowForm::Framed && form != WindowForm::Frameless;
}

void setHitTransparent(Window* window, bool transparent) {
  record("setHitTransparent", window, transparent);
  window->hitTransparent = transparent;
}

void showWindow(Window* window, ShowState state) {
  record("showWindow", window, state);
  window->shown = state;
  if (state == ShowState::Normal) window->maximised = false;
  if (state == ShowState::Maximised) window->maximised = true;
}

void setWindowBounds(Window* window, const Rect& bounds) {
  record("setWindowBounds", window, bounds);
  window->bounds = bounds;
}

double windowScale(const Window* /*window*/) {
  return desktop.scale;
}

Rect windowBounds(const Window* window) {
  return window->bounds;
}

Rect clientArea(const Window* window) {
  const Rect& bounds = window->bounds;
  if (!hasFrame(window)) return {0, 0, bounds.width(), bounds.height()};
  return {0, 0, std::max(0, bounds.width() - 2 * frameWidth),
          std::max(0, bounds.height() - captionHeight - frameWidth)};
}

Point clientOrigin(const Window* window) {
  const Rect& bounds = window->bounds;
  if (!hasFrame(window)) return {bounds.left, bounds.top};
  return {bounds.left + frameWidth, bounds.top + captionHeight};
}

bool isMaximised(const Window* window) {
  return window->maximised;
}

void setTitle(Window* window, const std::string& title) {
  record("setTitle", window, title);
  window->title = title;
}

std::string windowTitle(const Window* window, std::size_t most) {
  return window->title.substr(0, most);
}

void invalidateWindow(Window* window) {
  record("invalidateWindow", window);
}

void acceptDroppedFiles(Window* window, bool accept) {
  record("acceptDroppedFiles", window, accept);
  window->acceptsFiles = accept;
}

void startTimer(Window* window, int milliseconds) {
  record("startTimer", window, milliseconds);
  window->timer = milliseconds;
}

void stopTimer(Window* window) {
  record("stopTimer", window);
  window->timer.reset();
}

bool isShiftDown() {
  return desktop.shiftDown;
}
bool isControlDown() {
  return desktop.controlDown;
}
Point cursorPosition() {
  return desktop.cursor;
}

void showCursor(bool shown) {
  record("showCursor", shown);
  desktop.cursorShown = shown;
}

bool handleNextEvent() {
  if (desktop.quitResult || desktop.script.empty()) return false;
  const auto step = std::move(desktop.script.front());
  desktop.script.pop_front();
  desktop.handled = desktop.handler(step());
  return true;
}

void handleWaitingEvents() {
  record("handleWaitingEvents");
}

void quit(int result) {
  record("quit", result);
  desktop.quitResult = result;
}

int quitResult() {
  return desktop.quitResult.value_or(0);
}

Menu* createMenu() {
  desktop.menus.push_back(std::make_unique<Menu>());
  Menu* const menu = desktop.menus.back().get();
  menu->number = ++desktop.menusCreated;
  record("createMenu", menu);
  return menu;
}

void destroyMenu(Menu* menu) {
  record("destroyMenu", menu);
  std::erase_if(desktop.menus, [menu](const auto& each) { return each.get() == menu; });
}

void appendItem(Menu* menu, int command, const std::string& text) {
  menu->entries.push_back({MenuEntry::Kind::Item, command, text});
}

void appendLabel(Menu* menu, int command, const std::string& text) {
  menu->entries.push_back({MenuEntry::Kind::Label, command, text});
}

void appendSeparator(Menu* menu) {
  menu->entries.push_back({.kind = MenuEntry::Kind::Separator});
}

void appendSubmenu(Menu* menu, Menu* submenu, const std::string& text) {
  menu->entries.push_back({MenuEntry::Kind::Submenu, 0, text, submenu});
}

void checkMenuItem(Menu* menu, int position, bool checked) {
  record("checkMenuItem", menu, position, checked);
  const auto place = static_cast<std::size_t>(position);
  if (place < menu->entries.size()) menu->entries[place].checked = checked;
}

void trackMenu(Menu* menu, const Point& place, Window* window) {
  record("trackMenu", menu, place, window);
}

bool startMagnifier() {
  record("startMagnifier");
  return desktop.hasMagnifier;
}

void stopMagnifier() {
  record("stopMagnifier");
}

Window* createMagnifier(Window* /*parent*/, const std::string& title, const Rect& bounds) {
  record("createMagnifier", title, bounds);
  return addWindow("magnifier", title, bounds);
}

void setUnmagnified(Window* magnifier) {
  record("setUnmagnified", magnifier);
}

void setMagnifierSource(Window* magnifier, const Rect& area) {
  record("setMagnifierSource", magnifier, area);
  desktop.magnifierSource = area;
}

void setColourEffect(Window* magnifier, const EffectMatrix& matrix) {
  record("setColourEffect", magnifier);
  desktop.colourEffect = matrix;
}

void fitMagnifier(Window* magnifier, const Rect& bounds) {
  record("fitMagnifier", magnifier, bounds);
  magnifier->bounds = bounds;
}

void invalidateMagnifier(Window* magnifier) {
  record("invalidateMagnifier", magnifier);
}

bool readValues(std::span<StoredValue> values) {
  record("readValues");
  if (!desktop.store) return false;
  desktop.readNames.clear();
  for (StoredValue& value : values) {
    desktop.readNames.emplace_back(value.name);
    const auto stored = desktop.store->find(std::string(value.name));
    if (stored != desktop.store->end()) value.value = stored->second;
  }
  return true;
}

void writeValues(std::span<const StoredValue> values) {
  record("writeValues");
  if (!desktop.store) desktop.store.emplace();
  desktop.writtenNames.clear();
  for (const StoredValue& value : values) {
    if (!value.value) continue;
    desktop.writtenNames.emplace_back(value.name);
    (*desktop.store)[std::string(value.name)] = *value.value;
  }
}

Picture* captureClientArea(Window* window) {
  record("captureClientArea", window);
  ++desktop.picturesTaken;
  ++desktop.picturesHeld;
  return new Picture;
}

bool putOnClipboard(Window* owner, Picture* /*picture*/) {
  record("putOnClipboard", owner);
  return desktop.hasClipboard;
}

void deletePicture(Picture* picture) {
  record("deletePicture");
  --desktop.picturesHeld;
  delete picture;
}

Canvas* beginPainting(Window* window) {
  record("beginPainting", window);
  auto* const canvas = new Canvas;
  canvas->window = window;
  return canvas;
}

void endPainting(Canvas* canvas) {
  record("endPainting");
  desktop.painted = *canvas;
  delete canvas;
}

void fill(Canvas* canvas, Colour colour) {
  canvas->filled = colour;
}

void drawText(Canvas* canvas, const Point& place, Colour colour, const std::string& text) {
  canvas->texts.push_back({place, colour, text});
}

}  // namespace tintora::platform
