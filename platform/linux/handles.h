// The opaque windows of platform/window.h: records around Qt's windows.
#pragma once

#include <QBackingStore>
#include <QMargins>
#include <QPoint>
#include <QRect>
#include <QTimer>
#include <QWindow>
#include <chrono>
#include <deque>
#include <memory>
#include <string>

#include "platform/window.h"

namespace tintora::platform {

// Outer bounds that were requested, with which frame and when.
struct AskedBounds {
  QRect outer;
  QMargins frame;
  std::chrono::steady_clock::time_point time;
};

struct Window {
  WindowKind kind = WindowKind::Main;
  std::unique_ptr<QWindow> window = std::make_unique<QWindow>();
  WindowForm form = WindowForm::Framed;
  std::string title;
  bool acceptsFiles = false;
  bool stale = false;             // invalidated while it was being painted
  int wheelTravel = 0;            // eighths of a degree that do not make a whole step yet
  QMargins formerFrame;           // the frame that the window last had, or will have
  std::deque<AskedBounds> asked;  // recent requests, the oldest first
  bool travels = false;           // still on its way to where it was last requested to be
  bool insists = false;           // asks once more if the window manager first shows it elsewhere
  bool hitTransparent = false;
  QTimer untilControlAppears;  // then the window becomes hit-transparent
  bool leftHeld = false;       // the left button was pressed in it, and no release has arrived
  // The window manager holds the keyboard while the window has the focus, as it does while the user
  // moves the window by keys.
  bool keyboardHeld = false;
  std::chrono::steady_clock::time_point keyboardReleased;
  std::chrono::steady_clock::time_point shown;  // when it last appeared
  QTimer timer;
  std::unique_ptr<QBackingStore> surface;  // created at the first painting
};

}  // namespace tintora::platform
