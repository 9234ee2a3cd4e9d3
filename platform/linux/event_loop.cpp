#include "platform/linux/event_loop.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QCursor>
#include <QDropEvent>
#include <QExposeEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QWidget>
#include <QWindowStateChangeEvent>
#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>
#include <vector>

#include "platform/linux/handles.h"
#include "platform/linux/keys.h"
#include "platform/linux/screen_place.h"
#include "platform/linux/view_source.h"
#include "platform/linux/wheel.h"
#include "platform/linux/window_frame.h"

namespace tintora::platform {

namespace {

EventHandler eventHandler = nullptr;
std::vector<Window*> translated;
bool painting = false;
std::optional<QPoint> mousePlace;  // on the screen, while a mouse event is handled
bool handedOver = false;           // since the loop last checked
bool loopEnded = false;
int loopResult = 0;

QAbstractEventDispatcher* dispatcher() {
  return QAbstractEventDispatcher::instance();
}

// Ends `handleNextEvent`, so the shell takes its turn.
void takeTurn() {
  handedOver = true;
  dispatcher()->wakeUp();
}

void paint(Window* window) {
  if (eventHandler == nullptr || !window->window->isExposed()) return;
  window->stale = false;
  painting = true;
  eventHandler({.kind = EventKind::Painting, .window = window});
  painting = false;
}

// Paints windows that were invalidated while they were painted. Runs at the next event, because
// painting at once could repeat for ever.
void paintStaleWindows() {
  for (Window* const window : translated) {
    if (window->stale) paint(window);
  }
}

Event mouseEvent(EventKind kind, Window* window, const QMouseEvent& mouse) {
  return {.kind = kind,
          .window = window,
          .position = {mouse.position().toPoint().x(), mouse.position().toPoint().y()},
          .leftHeld = mouse.buttons().testFlag(Qt::LeftButton),
          .rightHeld = mouse.buttons().testFlag(Qt::RightButton),
          .shiftHeld = mouse.modifiers().testFlag(Qt::ShiftModifier)};
}

// Passes keys to the open menu, because a window may get the focus while a menu is open.
bool passToMenu(QKeyEvent& key) {
  QWidget* const menu = QApplication::activePopupWidget();
  if (menu == nullptr) return false;
  QCoreApplication::sendEvent(menu, &key);
  return true;
}

bool opensMenu(const QKeyEvent& key) {
  return key.key() == Qt::Key_Menu ||
         (key.key() == Qt::Key_F10 && key.modifiers() == Qt::ShiftModifier);
}

// Opens the menu as the right button does: at the pointer if it is over the window, else in the
// window's middle.
bool openMenuByKey(Window* window) {
  const QRect area = window->window->geometry();
  const QPoint place = area.contains(QCursor::pos()) ? QCursor::pos() : area.center();
  mousePlace = place;
  const QPoint inside = place - area.topLeft();
  const bool handled = handOver(
      {.kind = EventKind::RightUp, .window = window, .position = {inside.x(), inside.y()}});
  mousePlace.reset();
  return handled;
}

bool onKey(Window* window, QKeyEvent& key) {
  if (passToMenu(key)) return true;
  if (opensMenu(key)) return key.type() != QEvent::KeyPress || openMenuByKey(window);
  // Leaves keys with these modifiers to the desktop.
  if ((key.modifiers() & (Qt::AltModifier | Qt::MetaModifier)) != 0) return false;
  const int code = virtualKey(key);
  if (code == 0) return false;
  const bool down = key.type() == QEvent::KeyPress;
  return handOver(
      {.kind = down ? EventKind::KeyDown : EventKind::KeyUp, .window = window, .key = code});
}

bool handOverMouse(EventKind kind, Window* window, const QMouseEvent& mouse) {
  mousePlace = mouse.globalPosition().toPoint();
  const bool handled = handOver(mouseEvent(kind, window, mouse));
  mousePlace.reset();
  return handled;
}

bool onMouse(Window* window, const QMouseEvent& mouse) {
  const bool down = mouse.type() != QEvent::MouseButtonRelease;
  if (mouse.button() == Qt::LeftButton) {
    window->leftHeld = down;
    return handOverMouse(down ? EventKind::LeftDown : EventKind::LeftUp, window, mouse);
  }
  if (mouse.button() == Qt::RightButton) {
    return handOverMouse(down ? EventKind::RightDown : EventKind::RightUp, window, mouse);
  }
  return false;
}

// Ends a drag whose release went to another window, such as a menu that opened meanwhile.
void noteMouseLost(Window* window) {
  if (!std::exchange(window->leftHeld, false)) return;
  handOver({.kind = EventKind::MouseLost, .window = window});
}

bool onMouseMoved(Window* window, const QMouseEvent& mouse) {
  if (!mouse.buttons().testFlag(Qt::LeftButton)) noteMouseLost(window);
  if (mouse.buttons() == Qt::NoButton && !hearsEveryMouseMove(window->kind)) return true;
  // X sends moves from outside the window while a button is held. They must not turn the cube.
  const QRect client(QPoint(), window->window->size());
  if (window->kind == WindowKind::ColourSpace && !client.contains(mouse.position().toPoint())) {
    return true;
  }
  return handOverMouse(EventKind::MouseMoved, window, mouse);
}

bool onWheel(Window* window, const QWheelEvent& wheel) {
  const int steps = wholeSteps(window->wheelTravel, wheel.angleDelta().y());
  for (int i = 0; i < std::abs(steps); ++i) {
    handOver({.kind = EventKind::WheelTurned, .window = window, .wheelUp = steps > 0});
  }
  return true;
}

bool onSized(Window* window) {
  moverOf(window);
  return handOver({.kind = EventKind::Sized, .window = window, .maximised = isMaximised(window)});
}

// Handles a move. The program's own moves arrive as events too, sometimes late.
bool onMoved(Window* window) {
  const Mover mover = moverOf(window);
  if (window->kind == WindowKind::Main) noteMainMoved();
  if (mover == Mover::User) handOver({.kind = EventKind::Moving, .window = window});
  return handOver({.kind = EventKind::Moved, .window = window});
}

bool onExposed(Window* window) {
  if (!window->window->isExposed()) return false;
  noteAppearance(window);
  if (window->kind == WindowKind::Control) noteControlAppeared();
  paint(window);
  if (isDrawnByLoop(window->kind)) handedOver = true;
  dispatcher()->wakeUp();
  return false;
}

bool onClosing(Window* window, QCloseEvent& close) {
  if (handOver({.kind = EventKind::Closing, .window = window})) {
    close.ignore();
    return true;
  }
  handOver({.kind = EventKind::Destroyed, .window = window});
  return false;
}

bool onDragged(const Window* window, QDropEvent& drag) {
  // Accepts only copies: after a move, the source would delete the file.
  const bool copies = drag.possibleActions().testFlag(Qt::CopyAction);
  if (!window->acceptsFiles || !drag.mimeData()->hasUrls() || !copies) return false;
  drag.setDropAction(Qt::CopyAction);
  drag.accept();
  return true;
}

bool onDropped(Window* window, QDropEvent& drop) {
  return onDragged(window, drop) && handOver({.kind = EventKind::FilesDropped, .window = window});
}

bool translate(Window* window, QEvent& event) {
  allowForFrame(window);
  switch (event.type()) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
      return onKey(window, static_cast<QKeyEvent&>(event));
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
      return onMouse(window, static_cast<QMouseEvent&>(event));
    case QEvent::MouseMove:
      return onMouseMoved(window, static_cast<QMouseEvent&>(event));
    case QEvent::Wheel:
      return onWheel(window, static_cast<QWheelEvent&>(event));
    case QEvent::Resize:
    case QEvent::WindowStateChange:
      return onSized(window);
    case QEvent::Move:
      return onMoved(window);
    case QEvent::Hide:
      noteMouseLost(window);
      return false;
    case QEvent::FocusIn:
      if (window->kind == WindowKind::Main) keepControlAbove();
      return false;
    case QEvent::Expose:
      return onExposed(window);
    case QEvent::UpdateRequest:
      paint(window);
      return true;
    case QEvent::Close:
      return onClosing(window, static_cast<QCloseEvent&>(event));
    case QEvent::DragEnter:
    case QEvent::DragMove:
      return onDragged(window, static_cast<QDropEvent&>(event));
    case QEvent::Drop:
      return onDropped(window, static_cast<QDropEvent&>(event));
    default:
      return false;
  }
}

// Receives Qt's events.
class EventFilter : public QObject {
 public:
  explicit EventFilter(Window* window) : QObject(window->window.get()), window_(window) {}
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    return translate(window_, *event);
  }

 private:
  Window* window_;
};

}  // namespace

void setEventHandler(EventHandler handler) {
  eventHandler = handler;
  if (handler == nullptr) translated.clear();
}

void translateEvents(Window* window) {
  translated.push_back(window);
  window->window->installEventFilter(new EventFilter(window));
}

Window* windowOf(xcb_window_t id) {
  const auto found = std::ranges::find_if(
      translated, [id](const Window* window) { return window->window->winId() == id; });
  return found == translated.end() ? nullptr : *found;
}

bool isDraggedInside() {
  return std::ranges::any_of(translated, &Window::leftHeld);
}

void tellSessionEnds() {
  if (eventHandler == nullptr) return;
  for (Window* const window : translated) {
    eventHandler({.kind = EventKind::SessionEnding, .window = window});
  }
}

bool handOver(const Event& event) {
  if (eventHandler == nullptr || loopEnded) return false;
  const bool handled = eventHandler(event);
  paintStaleWindows();
  takeTurn();
  return handled;
}

void invalidateWindow(Window* window) {
  if (painting) {
    window->stale = true;
  } else {
    window->window->requestUpdate();
  }
}

// Returns the place that belongs to the current event, because the mouse may have moved since.
Point cursorPosition() {
  return fromRoot(mousePlace ? *mousePlace : QCursor::pos());
}

bool isShiftDown() {
  return QGuiApplication::keyboardModifiers().testFlag(Qt::ShiftModifier);
}

bool isControlDown() {
  return QGuiApplication::keyboardModifiers().testFlag(Qt::ControlModifier);
}

bool handleNextEvent() {
  handedOver = false;
  while (!handedOver && !loopEnded) dispatcher()->processEvents(QEventLoop::WaitForMoreEvents);
  return !loopEnded;
}

void handleWaitingEvents() {
  // Some events wait for an outer loop and stay in the queue, so the time is limited.
  constexpr int mostMilliseconds = 30;
  QCoreApplication::processEvents(QEventLoop::AllEvents, mostMilliseconds);
  viewSource->finish();
}

void quit(int exitResult) {
  loopResult = exitResult;
  loopEnded = true;
  dispatcher()->wakeUp();
}

int quitResult() {
  return loopResult;
}

}  // namespace tintora::platform
