// What the screen shows where no window is, read off the screen itself. A compositing manager may
// paint anything there. Where the server paints nothing, old pixels stay.
#pragma once

#include <xcb/xcb.h>

#include <QRegion>
#include <optional>

namespace tintora::platform {

// Makes the server report what is drawn on the screen, or stop reporting.
void watchScreen(bool watch);

// Handles an event of the server. Returns true if something was drawn on the screen.
bool followScreen(const xcb_generic_event_t& event);

// Requests what was drawn on the screen since the last request. The reply comes later.
void requestScreenDamage();

// Returns what was drawn if the reply has come, or nothing. Never waits.
std::optional<QRegion> receivedScreenDamage();

// Returns the part of the root that no window covers.
QRegion uncoveredRoot();

// Copies a part of the screen into what is known.
void learn(const QRegion& part);

// Forgets everything that was learned.
void forgetLearned();

// Return the part that is known so far, and the pixmap that holds it, which has the root's size.
const QRegion& learnedPart();
xcb_pixmap_t learnedPixels();

}  // namespace tintora::platform
