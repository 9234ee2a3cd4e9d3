#include "mirror_run.h"

#include <algorithm>
#include <cmath>

namespace tintora::mirror_test {

namespace {

using desktop_test::colourOf;
using desktop_test::filtered;
using desktop_test::noise;
using desktop_test::readFile;

struct Share {
  int pixel;
  double weight;
};

// Returns the pixels of a line that one pixel of the scaled line covers.
std::vector<Share> sharesOf(int pixel, int from, int to) {
  std::vector<Share> shares;
  const double start = static_cast<double>(pixel) * from / to;
  const double end = static_cast<double>(pixel + 1) * from / to;
  for (int i = static_cast<int>(start); i < std::min(from, static_cast<int>(std::ceil(end))); ++i) {
    const double covered = std::min<double>(end, i + 1) - std::max<double>(start, i);
    if (covered > 0) shares.push_back({i, covered / (end - start)});
  }
  return shares;
}

std::uint32_t rgb(std::uint32_t pixel) {
  return pixel & 0xFFFFFFU;
}

}  // namespace

Picture scaledByArea(const Picture& picture, int width, int height) {
  Picture result = desktop_test::solid(width, height, 0);
  for (int y = 0; y < height; ++y) {
    const std::vector<Share> rows = sharesOf(y, picture.height, height);
    for (int x = 0; x < width; ++x) {
      std::array<double, 3> sum{};
      for (const Share& column : sharesOf(x, picture.width, width)) {
        for (const Share& row : rows) {
          const desktop_test::Colour colour = colourOf(picture.at(column.pixel, row.pixel));
          for (std::size_t i = 0; i < 3; ++i) sum[i] += column.weight * row.weight * colour[i];
        }
      }
      std::uint32_t pixel = 0;
      for (const double channel : sum) {
        pixel = pixel << 8 | static_cast<std::uint32_t>(std::lround(channel));
      }
      result.pixels[static_cast<std::size_t>(y * width + x)] = pixel;
    }
  }
  return result;
}

std::unique_ptr<MediaSession> MirrorTest::session_;

void MirrorTest::SetUpTestSuite() {
  session_ = std::make_unique<MediaSession>();
  session_->startPipeWire();
}

void MirrorTest::TearDownTestSuite() {
  session_.reset();
}

void MirrorTest::SetUp() {
  ProgramTest::SetUp();
  session().startPortal();
  session().startSource();
  session().setBehaviour({{"version", ""},
                          {"types", ""},
                          {"cursors", ""},
                          {"early", ""},
                          {"paths", ""},
                          {"select", ""},
                          {"remote", ""}});
}

void MirrorTest::prepareMirror() {
  if (storedValues().empty()) storeValues({{"Selected", 4}, {"ColorSpace", 0}});
  Variables variables = session().variables();
  for (const char* const own : {"HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME"}) variables.erase(own);
  variables["WAYLAND_DISPLAY"] = "wayland-none";
  setVariables(variables);
}

void MirrorTest::startMirror(const std::vector<std::string>& arguments) {
  prepareMirror();
  start(arguments);
}

Picture MirrorTest::showNoise(int width, int height, std::uint32_t seed) {
  session().send("format BGRx " + std::to_string(width) + ' ' + std::to_string(height) +
                 " 0 0 0 0 0 0");
  session().send("frame " + std::to_string(seed));
  Picture picture = noise(width, height, seed);
  EXPECT_TRUE(viewHas(picture, expected::greyscale()));
  return picture;
}

testing::AssertionResult MirrorTest::viewHas(const Picture& picture,
                                             const expected::ColourEffect& effect) {
  const bool sized = eventually(
      [&] { return view().width == picture.width && view().height == picture.height; }, most);
  if (!sized) {
    return testing::AssertionFailure()
           << "The view is " << testing::PrintToString(view()) << ", not " << picture.width << "x"
           << picture.height << ". " << readFile(errorsFile());
  }
  return partHas([this] { return view(); }, picture, effect, 1);
}

testing::AssertionResult MirrorTest::partHas(const std::function<Area()>& part,
                                             const Picture& picture,
                                             const expected::ColourEffect& effect, int steps) {
  std::string difference = "Nothing to see.";
  const auto isRight = [&] {
    const Area area = part();
    if (common(area, x().screenArea()) != area || area.width != picture.width ||
        area.height != picture.height) {
      difference = "The part is " + testing::PrintToString(area) + '.';
      return false;
    }
    const Picture seen = x().read(area);
    if (seen.pixels.empty()) return false;
    for (int top = 0; top < picture.height; ++top) {
      for (int left = 0; left < picture.width; ++left) {
        const desktop_test::Colour wanted = filtered(colourOf(picture.at(left, top)), effect);
        const desktop_test::Colour actual = colourOf(seen.at(left, top));
        for (std::size_t i = 0; i < 3; ++i) {
          if (std::abs(actual[i] - std::round(wanted[i])) <= steps) continue;
          difference = "At (" + std::to_string(left) + ", " + std::to_string(top) +
                       "): " + testing::PrintToString(actual) + " instead of " +
                       testing::PrintToString(wanted) + '.';
          return false;
        }
      }
    }
    return true;
  };
  if (eventually(isRight, most)) return testing::AssertionSuccess();
  saveScreen("mirror-failure", x().screenArea());
  return testing::AssertionFailure() << difference << ' ' << readFile(errorsFile());
}

testing::AssertionResult MirrorTest::prints(const std::string& text) const {
  if (eventually([&] { return readFile(errorsFile()).find(text) != std::string::npos; }, most)) {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure() << "The program printed: " << readFile(errorsFile());
}

testing::AssertionResult MirrorTest::viewSays(const std::string& text) {
  Area area;
  Picture wanted;
  const auto drawText = [&] {
    area = view();
    Launch reference = launch();
    const std::string file = folder() + "/text.png";
    reference.command = {TINTORA_REFERENCE_TEXT, std::to_string(area.width),
                         std::to_string(area.height), text, file};
    reference.environment.erase("LD_PRELOAD");
    reference.environment["QT_QPA_PLATFORM"] = "xcb";
    Process(reference).result(most);
    wanted = desktop_test::readPicture(file);
  };
  drawText();
  const auto isShown = [&] {
    if (view().width != area.width || view().height != area.height) drawText();
    const Picture seen = x().read(view());
    return !seen.pixels.empty() && std::ranges::equal(seen.pixels, wanted.pixels, {}, rgb, rgb);
  };
  if (eventually(isShown, most)) return testing::AssertionSuccess();
  saveScreen("mirror-failure", x().screenArea());
  return testing::AssertionFailure()
         << "The view does not say: " << text << ' ' << readFile(errorsFile());
}

std::size_t MirrorTest::sessionsAsked() {
  const std::string calls = session().portalCalls();
  std::size_t count = 0;
  const std::string word = "CreateSession";
  for (std::size_t at = 0; (at = calls.find(word, at)) != std::string::npos; at += word.size()) {
    ++count;
  }
  return count;
}

void MirrorTest::clickOnView() {
  x().moveMouse(view());
  x().click(1);
}

}  // namespace tintora::mirror_test
