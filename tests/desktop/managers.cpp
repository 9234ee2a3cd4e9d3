#include "managers.h"

#include <filesystem>
#include <stdexcept>

namespace tintora::desktop_test {

namespace {

// Frames that can be dragged and closed, focus on click, and no shortcut keys.
constexpr const char* openboxSettings = R"(<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew><followMouse>no</followMouse></focus>
  <theme><name>Clearlooks</name><animateIconify>no</animateIconify></theme>
  <desktops><number>1</number><popupTime>0</popupTime></desktops>
  <resize><drawContents>yes</drawContents><popupShow>Never</popupShow></resize>
  <keyboard/>
  <mouse>
    <dragThreshold>1</dragThreshold>
    <context name="Titlebar">
      <mousebind button="Left" action="Drag"><action name="Move"/></mousebind>
      <mousebind button="Left" action="Press">
        <action name="Focus"/><action name="Raise"/>
      </mousebind>
    </context>
    <context name="Client">
      <mousebind button="Left" action="Press">
        <action name="Focus"/><action name="Raise"/>
      </mousebind>
    </context>
    <context name="Close">
      <mousebind button="Left" action="Click"><action name="Close"/></mousebind>
    </context>
  </mouse>
  <applications/>
</openbox_config>
)";

// Makes the tests' windows float, as when a user opens them over tiled ones. The program's windows
// must float without this.
constexpr const char* i3Settings = R"i3(# i3 config file (v4)
font pango:monospace 8
floating_modifier Mod1
for_window [class="^(?!tintora)"] floating enable
)i3";

// Places windows without waiting for a click, and uses the server's own fonts.
constexpr const char* twmSettings = R"(RandomPlacement
NoGrabServer
TitleFont "fixed"
ResizeFont "fixed"
MenuFont "fixed"
IconFont "fixed"
IconManagerFont "fixed"
)";

constexpr const char* icewmSettings = R"(ShowTaskBar=0
ClickToFocus=1
FocusOnMap=1
ShowMoveSizeStatus=0
OpaqueMove=1
)";

constexpr const char* fluxboxSettings = R"(session.screen0.toolbar.visible: false
session.screen0.focusModel: ClickFocus
session.screen0.focusNewWindows: true
session.screen0.opaqueMove: true
session.screen0.workspaces: 1
)";

// No wallpaper, because its setter shows error messages if tools are missing.
constexpr const char* fluxboxStyle = "background: none\n";

// Writes a settings file into a folder.
std::string settings(const std::string& folder, const char* name, const std::string& text) {
  std::string path = folder + "/" + name;
  writeFile(path, text);
  return path;
}

}  // namespace

ManagerCommand commandOf(Manager manager, const std::string& folder) {
  switch (manager) {
    case Manager::Openbox:
      return {{"openbox", "--sm-disable", "--config-file",
               settings(folder, "openbox.xml", openboxSettings)}};
    case Manager::Xfwm4:
      // Its settings come from a service on the session bus.
      return {{"dbus-run-session", "--", "xfwm4", "--compositor=off"}};
    case Manager::Icewm:
      return {{"icewm", "--config", settings(folder, "icewm.preferences", icewmSettings)}};
    case Manager::Fluxbox:
      // It looks for its other files in this folder.
      std::filesystem::create_directories(folder + "/.fluxbox");
      return {{"fluxbox", "-rc",
               settings(
                   folder, ".fluxbox/init",
                   fluxboxSettings + ("session.styleOverlay: " +
                                      settings(folder, ".fluxbox/overlay", fluxboxStyle) + "\n"))}};
    case Manager::I3:
      return {
          {"i3", "-c",
           settings(folder, "i3.config", std::string(i3Settings) + "focus_follows_mouse no\n")}};
    case Manager::I3FollowingMouse:
      return {{"i3", "-c", settings(folder, "i3.config", i3Settings)}};
    case Manager::Twm:
      return {{"twm", "-f", settings(folder, "twmrc", twmSettings)}};
    case Manager::Fake:
      return {.command = {TINTORA_FAKE_WINDOW_MANAGER}, .composites = true};
    case Manager::FakeLate:
      return {{TINTORA_FAKE_WINDOW_MANAGER, "--no-compositing", "--frames-after", "300"}};
    case Manager::None:
      break;
  }
  throw std::runtime_error("There is no window manager to start.");
}

}  // namespace tintora::desktop_test
