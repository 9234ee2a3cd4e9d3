// The seam's opaque windows are records around Qt's.
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

// Outer bounds that were asked for, with which frame and when.
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
  int wheelTravel = 0;            // what does not make a whole step yet
  QMargins formerFrame;           // that it had when it last had one, or will have
  std::deque<AskedBounds> asked;  // of late, the oldest first
  bool travels = false;           // to where it was last asked to be
  bool insists = false;           // on its place, against the first answer to its appearance
  bool hitTransparent = false;
  bool leftHeld = false;  // the left button was pressed in it, and not released that is known of
  // By the window manager, while the window has the focus: it does so while the user moves it.
  bool keyboardHeld = false;
  std::chrono::steady_clock::time_point keyboardReleased;
  std::chrono::steady_clock::time_point shown;  // when it last appeared
  QTimer timer;
  std::unique_ptr<QBackingStore> surface;  // once it was painted
};

}  // namespace tintora::platform
