// The mirror's messages to the user. Each says what happened and what to do.
#pragma once

namespace tintora::platform::texts {

inline constexpr const char* choosing =
    "Choose a window or a screen in the desktop's own dialog.\n"
    "Its picture appears here.";
inline constexpr const char* cancelled =
    "No window or screen was chosen.\n"
    "Click here or press Enter to choose one.";
inline constexpr const char* refused =
    "The desktop did not share a window or screen.\n"
    "Click here or press Enter to try again.";
inline constexpr const char* closed =
    "The window or screen is shared no longer: it was closed, or sharing was ended.\n"
    "Click here or press Enter to choose another.";
inline constexpr const char* streamEnded =
    "The desktop has stopped sending the picture.\n"
    "Click here or press Enter to choose a window or screen again.";
inline constexpr const char* pipeWireGone =
    "PipeWire, which brings the picture, was ended or restarted.\n"
    "Click here or press Enter to continue.";
inline constexpr const char* noFrame =
    "No picture has come yet. It appears here as soon as it does.\n"
    "If it does not come, check that PipeWire's session manager (WirePlumber) is running.";
inline constexpr const char* noPortal =
    "This desktop offers no portal through which a window or screen can be shown.\n\n"
    "Install xdg-desktop-portal and the part of it that is made for your desktop "
    "(xdg-desktop-portal-gnome, -kde or -wlr), then log in again.\n\n"
    "\"tintora --x11\" works without it, but sees only the windows of X11 programs.";
inline constexpr const char* noPipeWire =
    "PipeWire, which brings the picture of a window or screen, does not answer.\n\n"
    "Install pipewire and wireplumber, then log in again.\n\n"
    "\"tintora --x11\" works without them, but sees only the windows of X11 programs.";

}  // namespace tintora::platform::texts
