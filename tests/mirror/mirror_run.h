// A run of the program in a private media session, similar to a Wayland session.
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

// The limit is generous, because a new stream passes through several processes.
inline constexpr std::chrono::seconds most{120};

// Returns a picture scaled by area: each pixel is the mean of what it covers.
Picture scaledByArea(const Picture& picture, int width, int height);

class MirrorTest : public desktop_test::ProgramTest {
 protected:
  static void SetUpTestSuite();
  static void TearDownTestSuite();
  void SetUp() override;

  static MediaSession& session() { return *session_; }
  // Makes the next start of the program use this session.
  void prepareMirror();
  // Starts the program in greyscale.
  void startMirror(const std::vector<std::string>& arguments = {});
  // Sends a frame of noise with this size, and waits until the view shows it.
  Picture showNoise(int width, int height, std::uint32_t seed);

  // Succeeds once the view has the picture's size and shows it through an effect.
  testing::AssertionResult viewHas(const Picture& picture, const expected::ColourEffect& effect);
  // Succeeds once a part of the view shows a picture through an effect, within some steps.
  testing::AssertionResult partHas(const std::function<Area()>& part, const Picture& picture,
                                   const expected::ColourEffect& effect, int steps);
  // Succeeds once a text is on standard error.
  testing::AssertionResult prints(const std::string& text) const;
  // Succeeds once the view shows exactly this text.
  testing::AssertionResult viewSays(const std::string& text);
  // Returns how often the portal was asked for a session so far.
  static std::size_t sessionsAsked();
  void clickOnView();

 private:
  static std::unique_ptr<MediaSession> session_;
};

}  // namespace tintora::mirror_test
