#include "on_desktop.h"

#include <map>
#include <memory>

namespace tintora::desktop_test {

namespace {

std::map<std::string, std::shared_ptr<XDisplay>> displays;

}  // namespace

const std::vector<Desktop>& allDesktops() {
  static const std::vector<Desktop> desktops{{"Openbox", Manager::Openbox, Compositor::None},
                                             {"OpenboxPicom", Manager::Openbox, Compositor::Picom},
                                             {"Xfwm4", Manager::Xfwm4, Compositor::None},
                                             {"Xfwm4Picom", Manager::Xfwm4, Compositor::Picom},
                                             {"Icewm", Manager::Icewm, Compositor::None},
                                             {"IcewmPicom", Manager::Icewm, Compositor::Picom},
                                             {"Fluxbox", Manager::Fluxbox, Compositor::None},
                                             {"FluxboxPicom", Manager::Fluxbox, Compositor::Picom},
                                             {"I3", Manager::I3, Compositor::None},
                                             {"I3Picom", Manager::I3, Compositor::Picom},
                                             {"Twm", Manager::Twm, Compositor::None},
                                             {"TwmPicom", Manager::Twm, Compositor::Picom},
                                             {"Fake", Manager::Fake, Compositor::None},
                                             {"FakeLate", Manager::FakeLate, Compositor::None}};
  return desktops;
}

std::string nameOf(const testing::TestParamInfo<Desktop>& info) {
  return info.param.name;
}

void OnDesktop::SetUp() {
  std::shared_ptr<XDisplay>& display = displays[GetParam().name];
  if (!display) {
    display = std::make_shared<XDisplay>(std::vector<std::string>{}, GetParam().manager, "1280x800",
                                         GetParam().compositor);
  }
  useDisplay(display);
}

Area OnDesktop::outer(xcb_window_t window) const {
  const auto frame = x().numbers(window, "_NET_FRAME_EXTENTS");
  if (frame.size() != 4) return x().outerAreaOf(window);
  const Area inner = x().areaOf(window);
  const auto width = [&](std::size_t side) { return static_cast<int>(frame[side]); };
  return {inner.x - width(0), inner.y - width(2), inner.width + width(0) + width(1),
          inner.height + width(2) + width(3)};
}

testing::AssertionResult OnDesktop::outerBecomes(xcb_window_t window, const Area& area) const {
  if (eventually([&] { return outer(window) == area; })) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << testing::PrintToString(outer(window)) << " instead of " << testing::PrintToString(area);
}

Area OnDesktop::controlPlace(const Area& area) {
  return {area.x + area.width / 2 - 200, area.y + area.height / 2 - 60, 400, 120};
}

void OnDesktop::TearDownTestSuite() {
  displays.clear();
}

}  // namespace tintora::desktop_test
