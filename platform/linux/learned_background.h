// What the screen shows where no window is, read off the screen itself. A compositing manager may
// paint anything there. Where the server paints nothing, old pixels stay.
#pragma once

#include <xcb/xcb.h>

#include <QRegion>
#include <cstdint>
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

// Parts of the root, each of which contains the next one.
struct RootParts {
  QRegion uncovered;  // by windows
  QRegion ownFar;     // so far from the program's windows that no shadow of theirs reaches it
  QRegion unshaded;   // likewise from all windows
};

// Returns these parts as the windows are now.
RootParts rootParts();

// Returns what belongs to the same parts at two times.
RootParts operator&(const RootParts& a, const RootParts& b);

// Returns where the screen is at least as free of shadows as it was when it was learned.
QRegion learnable(const RootParts& parts);

// Returns where the screen is freer of shadows than it was when it was learned, or not known.
QRegion improvable(const RootParts& parts);

// Copies a learnable part of the screen into what is known. Returns true if the plain colour has
// changed.
bool learn(const QRegion& part, const RootParts& parts);

// Forgets everything that was learned.
void forgetLearned();

// Return the part that is known so far, and the part of it that was learned without shadows.
const QRegion& learnedPart();
const QRegion& learnedWithoutShadows();

// Returns the background's colour if all of it seems to have the same: everywhere without shadows,
// and in most other places.
std::optional<std::uint32_t> plainColour();

// Returns the pixmap that holds what is known. It has the root's size.
xcb_pixmap_t learnedPixels();

}  // namespace tintora::platform
