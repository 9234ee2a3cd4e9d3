// A run of the program on a display, from its start to its end.
#pragma once

#include <gtest/gtest.h>

#define XK_MISCELLANY
#define XK_LATIN1
#define XK_CYRILLIC
#include <X11/keysymdef.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "expected_effects.h"
#include "process.h"
#include "scene.h"
#include "x_client.h"
#include "x_display.h"

namespace tintora::desktop_test {

inline const ColourEffect grey = expected::greyscale();

// The program under test.
extern std::string programPath;

using StoredValues = std::map<std::string, long long>;

class ProgramTest : public testing::Test {
 protected:
  ~ProgramTest() override;
  // Uses the shared display, unless a test chooses another before the start.
  void SetUp() override;
  void TearDown() override;

  // Uses another display for this test.
  void useDisplay(const std::vector<std::string>& serverOptions, Manager manager,
                  const std::string& size = "1280x800");
  void useDisplay(std::shared_ptr<XDisplay> display);
  void setBackground(std::uint32_t colour);
  // Loads a library before the program's own.
  void preload(const std::string& library) { preloaded_ = library; }
  // Sets or removes variables of the program, after the test's defaults.
  void setVariables(const std::map<std::string, std::optional<std::string>>& variables) {
    variables_ = variables;
  }
  void storeValues(const StoredValues& values);
  StoredValues storedValues() const;
  std::string settingsFile() const { return configFolder() + "/tintora/settings.ini"; }
  std::string configFolder() const { return folder_->path() + "/config"; }
  std::string errorsFile() const { return folder_->path() + "/errors"; }
  std::string folder() const { return folder_->path(); }

  Launch launch(const std::vector<std::string>& arguments = {}) const;
  // Starts the program and waits until its view is shown.
  void start(const std::vector<std::string>& arguments = {});
  // Ends the program as its user does.
  void end();
  void expectNormalEnd();

  XDisplay& display() { return ownDisplay_ ? *ownDisplay_ : sharedDisplay(); }
  const XClient& x() const { return *client_; }
  Process& process() { return *process_; }
  Scene& scene() { return *scene_; }
  xcb_window_t main() const { return windows_[0]; }
  xcb_window_t control() const { return windows_[1]; }
  xcb_window_t colourSpace() const { return windows_[2]; }
  // Returns the magnifier's window inside the main one.
  xcb_window_t viewWindow() const;

  std::string title(xcb_window_t window) const { return x().text(window, "_NET_WM_NAME"); }
  testing::AssertionResult titleBecomes(const std::string& wanted) const;
  testing::AssertionResult showing(xcb_window_t window, bool shown) const;
  void focus(xcb_window_t window);
  void press(xcb_keysym_t symbol, const std::vector<xcb_keysym_t>& holding = {});
  void pressIn(xcb_window_t window, xcb_keysym_t symbol,
               const std::vector<xcb_keysym_t>& holding = {});
  void turnWheel(bool up, int times);
  void dragMouse(int fromX, int fromY, int byX, int byY, int steps = 5);
  // Drags a window by its title, and succeeds once the window has moved that far.
  testing::AssertionResult dragTitle(xcb_window_t window, int byX, int byY);
  // Returns the program's open popup menus in the order in which they opened.
  std::vector<xcb_window_t> openMenus() const;
  // Returns when the program has handled everything sent before.
  void settle();

  // Returns the view's area on the screen.
  Area view() const { return x().areaOf(main()); }
  // Succeeds once the view shows the scene through an effect, to one step in each channel.
  testing::AssertionResult viewShows(const ColourEffect& effect) const;
  testing::AssertionResult viewShows(const ColourEffect& effect, const Area& part) const;
  void saveScreen(const std::string& name, const Area& area) const;

 private:
  std::vector<xcb_window_t> findWindows(bool menus) const;
  testing::AssertionResult viewShows(const ColourEffect& effect,
                                     const std::function<Area()>& part) const;

  std::unique_ptr<TemporaryFolder> folder_ = std::make_unique<TemporaryFolder>();
  std::shared_ptr<XDisplay> ownDisplay_;
  std::string preloaded_;
  std::map<std::string, std::optional<std::string>> variables_;
  std::unique_ptr<XClient> client_;
  std::unique_ptr<Process> process_;
  std::unique_ptr<Scene> scene_;
  std::vector<xcb_window_t> windows_;
};

// The title while the transform is off.
inline constexpr const char* offTitle = "Transform off, press Tab to turn transform back on";

}  // namespace tintora::desktop_test
