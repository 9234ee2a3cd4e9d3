#include "x_display.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

namespace tintora::desktop_test {

namespace {

// Frames that can be dragged and closed, focus that follows clicks, and no keys of its own.
constexpr const char* managerSettings = R"(<?xml version="1.0" encoding="UTF-8"?>
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

std::string readLine(int descriptor) {
  std::string line;
  for (char c = 0; read(descriptor, &c, 1) == 1 && c != '\n';) line += c;
  return line;
}

std::unique_ptr<XDisplay> shared;

}  // namespace

XDisplay::XDisplay(const std::vector<std::string>& options, Manager manager,
                   const std::string& size) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("No pipe could be made.");
  Launch launch{.command = {"Xvfb", "-displayfd", std::to_string(ends[1]), "-screen", "0",
                            size + "x24", "-nolisten", "tcp", "-noreset"},
                .inherited = ends[1]};
  launch.command.insert(launch.command.end(), options.begin(), options.end());
  server_ = std::make_unique<Process>(launch);
  close(ends[1]);
  const std::string number = readLine(ends[0]);
  close(ends[0]);
  if (number.empty()) throw std::runtime_error("Xvfb did not start.");
  name_ = ":" + number;
  if (manager == Manager::Openbox) startManager();
}

void XDisplay::startManager() {
  const std::string settings = folder_.path() + "/openbox.xml";
  writeFile(settings, managerSettings);
  // It names itself on the root window earlier, and windows that come in between it never shows.
  const std::string ready = folder_.path() + "/ready";
  manager_ = std::make_unique<Process>(
      Launch{.command = {"openbox", "--sm-disable", "--config-file", settings, "--startup",
                         "touch " + ready},
             .environment = {{"DISPLAY", name_},
                             {"HOME", folder_.path()},
                             {"XDG_CONFIG_HOME", folder_.path() + "/none"},
                             {"XDG_CACHE_HOME", folder_.path() + "/cache"},
                             {"XDG_DATA_HOME", folder_.path() + "/data"},
                             {"XDG_RUNTIME_DIR", folder_.path()}}});
  if (!eventually([&] { return std::filesystem::exists(ready); })) {
    throw std::runtime_error("openbox did not start.");
  }
}

XDisplay& sharedDisplay() {
  if (!shared) shared = std::make_unique<XDisplay>();
  return *shared;
}

void endSharedDisplay() {
  shared.reset();
}

}  // namespace tintora::desktop_test
