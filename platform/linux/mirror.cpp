#include "platform/linux/mirror.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMessageBox>
#include <QMouseEvent>
#include <QTimer>
#include <iostream>
#include <memory>
#include <string_view>
#include <utility>

#include "platform/linux/handles.h"
#include "platform/linux/mirror_picture.h"
#include "platform/linux/mirror_texts.h"
#include "platform/linux/pipewire_stream.h"
#include "platform/linux/portal.h"
#include "platform/linux/view_source.h"

namespace tintora::platform {

namespace {

struct Mirror {
  Window* parent = nullptr;
  bool askAnew = false;
  bool offersChoice = false;        // a click or key in the view lets the user choose again
  bool keepsChoice = false;         // then what was chosen before comes without a question
  std::unique_ptr<QTimer> silence;  // exists until the first frame comes
};
Mirror mirrorState;

void choose(bool anew);

// Prints a line for a user who started the program in a terminal.
void tellTerminal(std::string_view text) {
  std::cerr << "tintora: " << text.substr(0, text.find('\n')) << '\n';
}

// Shows a line instead of the picture, and lets the user choose again from there.
void offerChoice(const char* text) {
  stopStream();
  endPortalSession();
  mirrorState.silence.reset();
  mirrorState.offersChoice = true;
  mirrorState.keepsChoice = false;
  showText(text);
  tellTerminal(text);
}

// Ends the program because this desktop cannot show anything. Says so in a separate window, because
// the program's own might hide it.
void giveUp(const char* text) {
  stopStream();
  endPortalSession();
  mirrorState.silence.reset();
  tellTerminal(text);
  for (QWindow* const window : QGuiApplication::topLevelWindows()) window->setVisible(false);
  auto* const box = new QMessageBox(QMessageBox::Critical, "Tintora", QString::fromUtf8(text),
                                    QMessageBox::Close);
  box->setAttribute(Qt::WA_DeleteOnClose);
  QObject::connect(box, &QMessageBox::finished, [] { quit(1); });
  box->open();
}

void onFrame() {
  if (std::exchange(mirrorState.silence, nullptr)) setStreamActive(true);
  showNewestFrame();
}

void onStreamEnd(StreamEnd end) {
  const bool wasRestarted = end == StreamEnd::PipeWire;
  offerChoice(wasRestarted ? texts::pipeWireGone : texts::streamEnded);
  mirrorState.keepsChoice = wasRestarted;
}

// The source's first frame may get lost while the stream begins. If nothing moves there, no other
// one follows. Therefore asks for it a few times: every second turn continues the stream that the
// turn before has paused.
void awaitFirstFrame() {
  constexpr int milliseconds = 500;
  constexpr int lastTurn = 10;
  mirrorState.silence = std::make_unique<QTimer>();
  mirrorState.silence->callOnTimeout([turns = 0]() mutable {
    setStreamActive(++turns % 2 == 0);
    if (turns < lastTurn) return;
    mirrorState.silence->stop();
    showText(texts::noFrame);
  });
  mirrorState.silence->start(milliseconds);
}

void onGranted(int connection, std::uint32_t node) {
  const StreamEvents events{.frame = &onFrame, .renewed = &awaitFirstFrame, .ended = &onStreamEnd};
  if (!startStream(connection, node, events)) return giveUp(texts::noPipeWire);
  awaitFirstFrame();
}

void onPortalEnd(PortalEnd end) {
  switch (end) {
    case PortalEnd::NoPortal:
      return giveUp(texts::noPortal);
    case PortalEnd::NoPipeWire:
      return giveUp(texts::noPipeWire);
    case PortalEnd::Cancelled:
      return offerChoice(texts::cancelled);
    case PortalEnd::Refused:
      return offerChoice(texts::refused);
    case PortalEnd::Closed:
      return offerChoice(texts::closed);
  }
}

void choose(bool anew) {
  mirrorState.offersChoice = false;
  showText(texts::choosing);
  askPortal(mirrorState.parent->window->winId(), anew, {&onGranted, &onPortalEnd});
}

// Receives the clicks and keys that the view has asked for, before the program does.
class ChoiceFilter : public QObject {
 public:
  using QObject::QObject;
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (!mirrorState.offersChoice || !isAnswer(*event)) return false;
    if (event->type() == QEvent::MouseButtonRelease || event->type() == QEvent::KeyPress) {
      choose(!mirrorState.keepsChoice);
    }
    return true;
  }

 private:
  static bool isAnswer(const QEvent& event) {
    switch (event.type()) {
      case QEvent::MouseButtonPress:
      case QEvent::MouseButtonRelease:
        return static_cast<const QMouseEvent&>(event).button() == Qt::LeftButton;
      case QEvent::KeyPress: {
        const int key = static_cast<const QKeyEvent&>(event).key();
        return key == Qt::Key_Return || key == Qt::Key_Enter;
      }
      default:
        return false;
    }
  }
};

void start(Window* parent, xcb_window_t window) {
  mirrorState.parent = parent;
  startMirrorPicture(parent, window);
  parent->window->installEventFilter(new ChoiceFilter(parent->window.get()));
  showText(texts::choosing);
  // Runs when the main window is shown, so that the portal's dialog appears in front of it.
  QTimer::singleShot(0, parent->window.get(), [] { choose(mirrorState.askAnew); });
}

void stop() {
  stopStream();
  endPortalSession();
  mirrorState = {};
  stopMirrorPicture();
}

}  // namespace

const ViewSource mirror{.start = &start,
                        .stop = &stop,
                        .setSize = &setMirrorSize,
                        .setOrigin = [](const QPoint& /*origin*/) {},
                        .setFilter = &setMirrorFilter,
                        .update = &updateMirror,
                        .finish = &finishMirror,
                        .copy = [](const QSize& /*clientArea*/) { return filteredPicture(); }};

void useMirror(bool askAnew) {
  viewSource = &mirror;
  mirrorState.askAnew = askAnew;
}

}  // namespace tintora::platform
