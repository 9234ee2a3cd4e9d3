#include "platform/window.h"

#include <QGuiApplication>
#include <QTimer>
#include <array>
#include <cstdlib>

#include "platform/linux/covers.h"
#include "platform/linux/event_loop.h"
#include "platform/linux/handles.h"
#include "platform/linux/scale.h"
#include "platform/linux/screen_place.h"
#include "platform/linux/text.h"
#include "platform/linux/window_frame.h"
#include "platform/linux/window_manager.h"

namespace tintora::platform {

namespace {

// In the order of WindowKind.
const std::array<Qt::WindowFlags, 3> windowKinds{
    Qt::Window | Qt::WindowStaysOnTopHint,
    Qt::Dialog | Qt::WindowStaysOnTopHint | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
        Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint,
    Qt::Window | Qt::WindowStaysOnTopHint};

// In the order of WindowForm.
struct WindowFormFacts {
  bool framed;
  Qt::WindowState state;
};
constexpr std::array<WindowFormFacts, 5> windowForms{{
    {true, Qt::WindowNoState},
    {false, Qt::WindowNoState},
    {true, Qt::WindowMaximized},
    {false, Qt::WindowMaximized},
    {false, Qt::WindowFullScreen},
}};

template <typename Value, std::size_t size, typename Index>
const Value& at(const std::array<Value, size>& table, Index index) {
  return table[static_cast<std::size_t>(index)];
}

// These two windows, once they exist.
Window* mainWindow = nullptr;
Window* controlWindow = nullptr;

bool fillsScreen(const Window* window) {
  return window != nullptr && window->form == WindowForm::FullScreen;
}

// Moves the window first, because a window manager fills the monitor that the window is on.
void moveToPrimaryMonitor(Window* window) {
  const QRect outer = boundsAskedFor(window);
  const QRect& monitor = primaryMonitor();
  if (monitor.contains(outer.center())) return;
  const QPoint place =
      monitor.topLeft() +
      QPoint(monitor.width() - outer.width(), monitor.height() - outer.height()) / 2;
  askForBounds(window, {place, outer.size()});
}

// Covers other programs' menus and tips while the view fills the screen and lets the mouse through.
// They appear above it, and the user must see them through it too.
void coverOthers(const Window* window) {
  if (window == mainWindow) coverWindowsAbove(fillsScreen(window) && window->hitTransparent);
}

void setFrame(Window* window, bool framed) {
  const bool had = !window->window->flags().testFlag(Qt::FramelessWindowHint);
  if (framed == had) return;
  window->window->setFlag(Qt::FramelessWindowHint, !framed);
  floatWindow(window);
}

// If all other windows were hidden, the view would show the background only.
Qt::WindowState stateFor(const WindowFormFacts& facts) {
  const bool wouldHide = facts.state == Qt::WindowFullScreen && managerHidesOthers();
  return wouldHide ? Qt::WindowNoState : facts.state;
}

// Asks the window manager again to fill the monitor that the window is on, because not every window
// manager adapts when monitors change.
void fillPrimaryMonitor(Window* window) {
  if (!managerMakesFullScreen()) return askForBounds(window, primaryMonitor());
  window->window->setWindowStates(Qt::WindowNoState);
  askForBounds(window, primaryMonitor());
  window->window->setWindowStates(Qt::WindowFullScreen);
}

// Returns the focus to the main window after a hidden window had it. Some window managers give it
// to another program or to no window, at the latest soon after they have noted that the window is
// gone. Until then, requests it again whenever it is lost.
void returnFocus(const Window* hidden) {
  constexpr int milliseconds = 150;
  constexpr int checksOnceGone = 7;
  mainWindow->window->requestActivate();
  auto* const timer = new QTimer(mainWindow->window.get());
  int checks = 0;
  timer->callOnTimeout(mainWindow->window.get(), [=]() mutable {
    // From the second check on, another program's window has the focus by the user's choice.
    const bool lost =
        checks == 0 ? QGuiApplication::focusWindow() == nullptr : !anyWindowHasFocus();
    if (lost && !hidden->window->isVisible()) mainWindow->window->requestActivate();
    if (checks == 0 || !isManaged(hidden)) ++checks;
    if (checks == checksOnceGone || hidden->window->isVisible()) timer->deleteLater();
  });
  timer->start(milliseconds);
}

// Hides a window. If it has the focus, returns the focus to the main window, because a window
// manager would give it to another program.
void hideWindow(Window* window) {
  const bool passesFocus = window != mainWindow && mainWindow->window->isVisible() &&
                           QGuiApplication::focusWindow() == window->window.get();
  // While the window is hidden, no event confirms the frame in its bounds.
  rememberFrame(window);
  window->window->setVisible(false);
  if (passesFocus) returnFocus(window);
}

void letMouseThrough(Window* window) {
  shapeInput(window);
  coverOthers(window);
}

bool controlAppears() {
  return controlWindow != nullptr && controlWindow->window->isVisible() &&
         !controlWindow->window->isExposed();
}

}  // namespace

// The end of a session may take the X server away, and then Qt ends the process. The functions
// registered here still run then, and can write what was read by now, such as the settings.
void registerWindowKinds(EventHandler handler) {
  static_cast<void>(std::atexit(&tellSessionEnds));
  setEventHandler(handler);
}

void unregisterWindowKinds() {
  setEventHandler(nullptr);
}

Window* createWindow(WindowKind kind, const std::string& title, const Rect& bounds) {
  // Never deleted: windows live as long as the program.
  auto* const window = new Window;
  window->kind = kind;
  window->window->setFlags(at(windowKinds, kind));
  window->window->create();
  if (kind == WindowKind::Control) fixSize(window, onRoot(bounds).size());
  window->untilControlAppears.setSingleShot(true);
  window->untilControlAppears.callOnTimeout([window] { letMouseThrough(window); });
  if (kind == WindowKind::Main) mainWindow = window;
  if (kind == WindowKind::Control) controlWindow = window;
  // Keeps the window above the main one even if that fills the screen.
  if (kind == WindowKind::Control) window->window->setTransientParent(mainWindow->window.get());
  if (kind != WindowKind::Control) floatWindow(window);
  finishQtRequests();
  askForFrame(window);
  setTitle(window, title);
  setWindowBounds(window, bounds);
  translateEvents(window);
  return window;
}

void setWindowForm(Window* window, WindowForm form) {
  const WindowFormFacts& facts = at(windowForms, form);
  const QRect outer = boundsAskedFor(window);
  rememberFrame(window);
  if (form == WindowForm::FullScreen) moveToPrimaryMonitor(window);
  window->form = form;
  coverOthers(window);
  setFrame(window, facts.framed);
  const Qt::WindowState state = stateFor(facts);
  if (window->window->windowStates() != state) window->window->setWindowStates(state);
  if (state == Qt::WindowNoState) askForBounds(window, outer);
  keepControlAbove();
}

// Without the state of full screen, the main window would stay above after it got the focus. The
// control window takes the same keys.
void keepControlAbove() {
  if (!fillsScreen(mainWindow) || controlWindow == nullptr) return;
  if (controlWindow->window->isVisible() && managerHidesOthers()) {
    controlWindow->window->requestActivate();
  }
}

// Waits until the control window is on the screen, but not for ever. Otherwise the mouse would hit
// what lies beneath for a moment, and a window manager whose focus follows the mouse would give it
// the focus.
void setHitTransparent(Window* window, bool transparent) {
  constexpr int milliseconds = 1000;
  window->hitTransparent = transparent;
  window->untilControlAppears.stop();
  if (transparent && controlAppears()) return window->untilControlAppears.start(milliseconds);
  letMouseThrough(window);
}

void noteControlAppeared() {
  if (mainWindow == nullptr || !mainWindow->untilControlAppears.isActive()) return;
  mainWindow->untilControlAppears.stop();
  letMouseThrough(mainWindow);
}

void showWindow(Window* window, ShowState state) {
  QWindow& shown = *window->window;
  if (state == ShowState::Hidden) return hideWindow(window);
  if (state == ShowState::Normal) shown.setWindowStates(Qt::WindowNoState);
  if (state == ShowState::Maximised && window->form != WindowForm::FullScreen) {
    shown.setWindowStates(Qt::WindowMaximized);
  }
  if (!shown.isVisible()) {
    window->shown = std::chrono::steady_clock::now();
    window->insists = true;
  }
  shown.setVisible(true);
  if (window->kind == WindowKind::ColourSpace && fillsScreen(mainWindow)) {
    setWindowAbove(window, mainWindow);
  }
  if (state == ShowState::Normal) shown.requestActivate();
}

void setWindowBounds(Window* window, const Rect& bounds) {
  const QRect outer = onRoot(bounds);
  // A request for bounds would make the window manager end full screen.
  if (fillsScreen(window) && managerMakesFullScreen()) return expectBounds(window, outer);
  if (outer == boundsAskedFor(window)) return;
  if (window == mainWindow) noteMainMoved();
  askForBounds(window, outer);
}

void onMonitorsChanged() {
  if (mainWindow == nullptr) return;
  if (fillsScreen(mainWindow)) fillPrimaryMonitor(mainWindow);
  handOver({.kind = EventKind::ScreenChanged, .window = mainWindow});
}

Rect windowBounds(const Window* window) {
  return fromRoot(boundsAskedFor(window));
}

Rect clientArea(const Window* window) {
  return {0, 0, window->window->width(), window->window->height()};
}

Point clientOrigin(const Window* window) {
  return fromRoot(window->window->geometry().topLeft());
}

double windowScale(const Window* /*window*/) {
  return desktopScale();
}

bool isMaximised(const Window* window) {
  return window->form == WindowForm::FullScreen ||
         window->window->windowStates().testFlag(Qt::WindowMaximized) ||
         window->window->windowStates().testFlag(Qt::WindowFullScreen);
}

void setTitle(Window* window, const std::string& title) {
  window->title = title;
  window->window->setTitle(toUnicode(title));
}

std::string windowTitle(const Window* window, std::size_t most) {
  return std::string(firstBytes(window->title, most));
}

void acceptDroppedFiles(Window* window, bool accept) {
  window->acceptsFiles = accept;
}

void startTimer(Window* window, int milliseconds) {
  window->timer.callOnTimeout(window->window.get(), [window] {
    handOver({.kind = EventKind::TimerElapsed, .window = window});
  });
  // Other timer types may elapse some percent too early.
  window->timer.setTimerType(Qt::PreciseTimer);
  window->timer.start(milliseconds);
}

void stopTimer(Window* window) {
  window->timer.stop();
  window->timer.disconnect();
}

void showCursor(bool shown) {
  if (shown) {
    QGuiApplication::restoreOverrideCursor();
  } else {
    QGuiApplication::setOverrideCursor(Qt::BlankCursor);
  }
}

}  // namespace tintora::platform
