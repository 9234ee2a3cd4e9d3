// Many streams, one after another. TINTORA_STREAMS sets how many. A few dozen show whether each one
// leaks something.
#include <cmath>
#include <cstdlib>
#include <filesystem>

#include "mirror_run.h"

namespace tintora::mirror_test {
namespace {

class MirrorEndurance : public MirrorTest {
 protected:
  std::size_t descriptors() {
    const std::filesystem::directory_iterator all("/proc/" + std::to_string(process().id()) +
                                                  "/fd");
    return static_cast<std::size_t>(std::distance(all, {}));
  }

  // Returns true once the view shows the picture, or the text in its place.
  bool shows(const Picture& picture, bool shown) {
    const auto wanted =
        desktop_test::filtered(desktop_test::colourOf(picture.at(5, 5)), expected::greyscale());
    return eventually(
        [&] {
          const Area area = view();
          const auto pixel =
              desktop_test::colourOf(x().read({area.x + 5, area.y + 5, 1, 1}).at(0, 0));
          return (std::abs(pixel[0] - wanted[0]) < 1.5) == shown;
        },
        most);
  }

  void beginAnew(const Picture& picture) {
    session().closePortalSessions();
    ASSERT_TRUE(shows(picture, false));
    press(XK_Return);
    ASSERT_TRUE(shows(picture, true));
  }
};

TEST_F(MirrorEndurance, StreamsThatEndLeaveNothingBehind) {
  const char* const wanted = std::getenv("TINTORA_STREAMS");
  const int streams = wanted == nullptr ? 30 : std::stoi(wanted);
  startMirror();
  const Picture picture = showNoise(320, 240, 1);
  constexpr int warmUp = 10;
  for (int i = 0; i < warmUp; ++i) beginAnew(picture);
  settle();
  const std::size_t descriptorsBefore = descriptors();
  const long memoryBefore = process().memory();
  for (int i = 0; i < streams && !HasFailure(); ++i) beginAnew(picture);
  settle();
  EXPECT_TRUE(eventually([&] { return descriptors() <= descriptorsBefore; }, most))
      << descriptors() << " descriptors, " << descriptorsBefore << " before";
  RecordProperty("kilobytes_more", std::to_string(process().memory() - memoryBefore));
  constexpr long mostKilobytes = 4096;
  EXPECT_LT(process().memory() - memoryBefore, mostKilobytes);
  end();
}

}  // namespace
}  // namespace tintora::mirror_test
