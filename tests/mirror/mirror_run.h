// A run of the program in a private media session, as in a Wayland session.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "../desktop/program_run.h"
#include "media_session.h"

namespace tintora::mirror_test {

using desktop_test::eventually;
using desktop_test::Picture;

// Generous, since a new stream passes through several processes.
inline constexpr std::chrono::seconds most{120};

// What a picture becomes when it is scaled: the mean of what each pixel covers.
Picture scaledByArea(const Picture& picture, int width, int height);

class MirrorTest : public desktop_test::ProgramTest {
 protected:
  static void SetUpTestSuite();
  static void TearDownTestSuite();
  void SetUp() override;

  static MediaSession& session() { return *session_; }
  // Has the next start of the program be one in this session.
  void prepareMirror();
  // Starts the program so that it greys what it shows.
  void startMirror(const std::vector<std::string>& arguments = {});
  // Sends a frame of noise at this size, and waits until the view shows it.
  Picture showNoise(int width, int height, std::uint32_t seed);

  // Whether the view comes to have the picture's size and to show it through an effect.
  testing::AssertionResult viewHas(const Picture& picture, const expected::ColourEffect& effect);
  // Whether a part of the view comes to show a picture through an effect, within some steps.
  testing::AssertionResult partHas(const std::function<Area()>& part, const Picture& picture,
                                   const expected::ColourEffect& effect, int steps);
  // Whether a line comes on the standard error, which repeats what the view says.
  testing::AssertionResult says(const std::string& text) const;
  // How often the portal was asked for a session so far.
  static std::size_t sessionsAsked();
  void clickOnView();

 private:
  static std::unique_ptr<MediaSession> session_;
};

}  // namespace tintora::mirror_test
