// Every view with and without a transform, saved under the names that the Windows program's
// pictures have, to be compared with those.
#include "views_run.h"

namespace tintora::desktop_test {
namespace {

struct NamedView {
  const char* name;
  View view;
};
constexpr std::array<NamedView, 4> namedViews{{{"response-curves", View::Curves},
                                               {"rgb-cube", View::Cube},
                                               {"chromaticity-diagram", View::Diagram},
                                               {"help", View::Help}}};

TEST_F(ViewsTest, AllButTheHelpChangeWithTheTransform) {
  for (const PictureSize& size : pictureSizes) {
    for (const auto& [name, view] : namedViews) {
      const std::string picture =
          name + ("-" + std::to_string(size.width) + "x" + std::to_string(size.height));
      startWith(view, size);
      const Picture whole = shown();
      saveScreen(picture, inside());
      stepSeverity(true, 10);
      if (view == View::Cube) drag(1, {{200, 200}, {280, 160}});
      const Picture half = shown();
      saveScreen(picture + "-half", inside());
      EXPECT_EQ(static_cast<bool>(areSame(half, whole)), view == View::Help) << picture;
      end();
    }
  }
}

}  // namespace
}  // namespace tintora::desktop_test
