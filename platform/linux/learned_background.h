// What the screen shows where no window is, read off the screen itself: a compositing manager may
// paint anything there, and where the server paints nothing, whatever was there stays.
#pragma once

#include <xcb/xcb.h>

#include <QRegion>
#include <optional>

namespace tintora::platform {

// Asks the server to report what is drawn on the screen, or stops asking.
void watchScreen(bool watch);

// Takes in an event of the server; returns true if something was drawn on the screen.
bool followScreen(const xcb_generic_event_t& event);

// Asks what was drawn on the screen since the last time. The answer comes later.
void requestScreenDamage();

// Returns what was drawn if the answer has come, or nothing. Never waits.
std::optional<QRegion> receivedScreenDamage();

// Returns the part of the root that no window covers.
QRegion uncoveredRoot();

// Copies a part of the screen.
void learn(const QRegion& part);

// Forgets all that was learned.
void forgetLearned();

// What is known so far, and the pixmap of the size of the root that holds it.
const QRegion& learnedPart();
xcb_pixmap_t learnedPixels();

}  // namespace tintora::platform
