// The picture on the screen and the picture on the clipboard.
#include "picture.h"

#include <algorithm>
#include <cstring>
#include <ostream>
#include <string>

#include "expected_effects.h"
#include "program_run.h"
#include "stored_values.h"

namespace tintora::windows_test {
namespace {

using namespace expected;

constexpr Bounds backdropPlace{100, 50, 1100, 750};
constexpr const char* firstTitle = " Simulation - Protanope 100% severity";

// Runs the program over a known picture, without the colour space window.
class OverAPicture : public UndrawnTest {
 protected:
  void startOver(StoredValues stored = {}) {
    stored["ColorSpace"] = 0;
    stored.try_emplace("Selected", 1);
    storeValues(stored);
    start();
  }
  Bounds client() const { return clientBoundsOf(windows().main); }

  testing::AssertionResult eventuallyShows(const ColourEffect& effect, int tolerance) {
    const Picture expected = filteredPicture(backdrop_.picture(client()), effect);
    eventually([&] { return areAlike(screenPicture(client()), expected, tolerance); });
    return areAlike(screenPicture(client()), expected, tolerance);
  }

  const Backdrop& backdrop() const { return backdrop_; }

 private:
  Backdrop backdrop_{backdropPlace};
};

struct EffectRow {
  const char* name;
  int command;
  ColourEffect effect;
  int tolerance = 1;  // sums halfway between two values may round either way
};

void PrintTo(const EffectRow& row, std::ostream* out) {
  *out << row.name;
}

const std::array effectRows{
    EffectRow{"Protan", 1, effectOf(juddProtan(1))},
    EffectRow{"Greyscale", 4, greyscale()},
    EffectRow{"Invert", 5, inverted(), 0},
    EffectRow{"Unchanged", 6, identityEffect, 0},
    EffectRow{"Circadian", 9, circadian(1)},
    EffectRow{"YellowFilter", 103, filtered({1, 1, 0}, 1), 0},
    EffectRow{"SwapGreenAndBlue", 202, swapped(1, 2, 1), 0},
    EffectRow{"Daltonize", 776, effectOf(daltonized(juddProtan(1)))},
};

class Effects : public OverAPicture, public testing::WithParamInterface<EffectRow> {};

TEST_P(Effects, ShowWhatLiesBeneathThroughTheirMatrix) {
  startOver();
  choose(GetParam().command);
  EXPECT_TRUE(eventuallyShows(GetParam().effect, GetParam().tolerance));
}

INSTANTIATE_TEST_SUITE_P(By, Effects, testing::ValuesIn(effectRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(OverAPicture, TheViewFollowsTheWindow) {
  startOver({{"Selected", 5}});
  SetWindowPos(windows().main, nullptr, 150, 90, 611, 433, SWP_NOZORDER | SWP_NOACTIVATE);
  settle();
  EXPECT_TRUE(eventuallyShows(inverted(), 0));
  press(' ');
  EXPECT_TRUE(eventuallyShows(inverted(), 0));
  press(VK_RIGHT);
  EXPECT_TRUE(eventuallyShows(inverted(), 0));
}

// The clipboard's bitmap: 24 bits per pixel, bottom row first.
struct ClipboardBitmap {
  BITMAPINFOHEADER header{};
  std::size_t bytes = 0;
  Picture picture;
};

Picture decode(const BITMAPINFOHEADER& header, const std::uint8_t* rows) {
  Picture picture{header.biWidth, header.biHeight, {}};
  const auto stride = static_cast<std::ptrdiff_t>((picture.width * 3 + 3) / 4 * 4);
  for (int y = picture.height - 1; y >= 0; --y) {
    const std::uint8_t* const row = rows + y * stride;
    for (std::ptrdiff_t x = 0; x < picture.width; ++x) {
      picture.pixels.push_back({row[3 * x + 2], row[3 * x + 1], row[3 * x]});
    }
  }
  return picture;
}

ClipboardBitmap clipboardBitmap() {
  ClipboardBitmap bitmap;
  if (!openClipboard()) return bitmap;
  const HANDLE block = GetClipboardData(CF_DIB);
  if (block != nullptr) {
    const auto* const bytes = static_cast<const std::uint8_t*>(GlobalLock(block));
    bitmap.bytes = GlobalSize(block);
    std::memcpy(&bitmap.header, bytes, sizeof bitmap.header);
    if (bitmap.header.biBitCount == 24) {
      bitmap.picture = decode(bitmap.header, bytes + sizeof bitmap.header);
    }
    GlobalUnlock(block);
  }
  CloseClipboard();
  return bitmap;
}

class Clipboard : public OverAPicture {
 protected:
  void SetUp() override {
    OverAPicture::SetUp();
    emptyClipboard();
  }
  // Waits until another title replaces the confirmation of a copy. Returns the milliseconds from a
  // time by GetTickCount64 until then.
  static ULONGLONG renamedAfter(ULONGLONG time) {
    const MagnifierRecord& record = magnifierRecord();
    EXPECT_TRUE(eventually([&] { return record.renamedAt > time; }));
    return record.renamedAt - time;
  }
};

TEST_F(Clipboard, HoldsTheFilteredClientArea) {
  startOver({{"Selected", 5}});
  // An odd width, so that the rows need padding.
  SetWindowPos(windows().main, nullptr, 150, 90, 611, 433, SWP_NOZORDER | SWP_NOACTIVATE);
  settle();
  ASSERT_TRUE(eventuallyShows(inverted(), 0));
  choose(52);
  ASSERT_TRUE(hasCopied());
  const ClipboardBitmap bitmap = clipboardBitmap();
  const BITMAPINFOHEADER& header = bitmap.header;
  const LONG stride = (24 * client().width() + 31) / 32 * 4;
  EXPECT_EQ(header.biSize, 40U);
  EXPECT_EQ(header.biWidth, client().width());
  EXPECT_EQ(header.biHeight, client().height());
  EXPECT_EQ(header.biPlanes, 1);
  EXPECT_EQ(header.biBitCount, 24);
  EXPECT_EQ(header.biCompression, static_cast<DWORD>(BI_RGB));
  EXPECT_EQ(header.biSizeImage, static_cast<DWORD>(stride * client().height()));
  EXPECT_EQ(header.biXPelsPerMeter, 0);
  EXPECT_EQ(header.biYPelsPerMeter, 0);
  EXPECT_EQ(header.biClrUsed, 0U);
  EXPECT_EQ(header.biClrImportant, 0U);
  EXPECT_GE(bitmap.bytes, 40U + header.biSizeImage);
  EXPECT_TRUE(
      areAlike(bitmap.picture, filteredPicture(backdrop().picture(client()), inverted()), 0));
}

// A drawing reaches the screen only after the desktop has composed it.
TEST_F(Clipboard, HoldsWhatWasDrawnLast) {
  startOver();
  ASSERT_TRUE(eventuallyShows(effectOf(juddProtan(1)), 1));
  magnifierRecord().habits.showsLastPicture = true;
  for (const int command : {5, 52}) {
    PostMessageA(windows().main, WM_COMMAND, static_cast<WPARAM>(command), 0);
  }
  ASSERT_TRUE(hasCopied());
  EXPECT_GT(magnifierRecord().composed, 0U);
  EXPECT_TRUE(areAlike(clipboardBitmap().picture,
                       filteredPicture(backdrop().picture(client()), inverted()), 0));
}

struct CopyRow {
  const char* name;
  int held;
  int key;
};

void PrintTo(const CopyRow& row, std::ostream* out) {
  *out << row.name;
}

constexpr std::array copyRows{
    CopyRow{"LeftControlC", VK_LCONTROL, 'C'},
    CopyRow{"RightControlC", VK_RCONTROL, 'C'},
    CopyRow{"LeftControlO", VK_LCONTROL, 'O'},
    CopyRow{"RightControlO", VK_RCONTROL, 'O'},
};

class Copying : public Clipboard, public testing::WithParamInterface<CopyRow> {};

TEST_P(Copying, IsDoneByKeysWithControl) {
  startOver();
  pressHolding(GetParam().held, GetParam().key);
  ASSERT_TRUE(hasCopied());
  EXPECT_EQ(clipboardBitmap().header.biWidth, client().width());
  EXPECT_FALSE(IsWindowVisible(windows().colourSpace));
}

INSTANTIATE_TEST_SUITE_P(By, Copying, testing::ValuesIn(copyRows),
                         [](const auto& row) { return std::string(row.param.name); });

// Types keys as a user does, through the desktop's own input queue.
TEST_F(Clipboard, IsReachedFromTheKeyboard) {
  startOver();
  SetForegroundWindow(windows().main);
  ASSERT_TRUE(eventually([this] { return GetForegroundWindow() == windows().main; }));
  std::array<INPUT, 4> inputs{};
  for (INPUT& input : inputs) input.type = INPUT_KEYBOARD;
  inputs[0].ki.wVk = inputs[3].ki.wVk = VK_CONTROL;
  inputs[1].ki.wVk = inputs[2].ki.wVk = 'C';
  inputs[2].ki.dwFlags = inputs[3].ki.dwFlags = KEYEVENTF_KEYUP;
  SendInput(inputs.size(), inputs.data(), sizeof(INPUT));
  EXPECT_TRUE(hasCopied());
  EXPECT_EQ(clipboardBitmap().header.biWidth, client().width());
}

// The control window repaints itself all the time, which must not delay the copy.
TEST_F(Clipboard, IsReachedWhileHitTransparent) {
  startOver({{"Selected", 5}});
  press('H');
  send(windows().control, WM_COMMAND, 52);
  ASSERT_TRUE(hasCopied());
  EXPECT_EQ(clipboardBitmap().header.biWidth, client().width());
  EXPECT_TRUE(eventually([this] { return title() == "Invert "; }));
}

// The desktop lets the item that was chosen fade away.
TEST_F(Clipboard, WaitsForTheMenuToDisappear) {
  constexpr ULONGLONG fade = 350;
  magnifierRecord().menusFade = true;
  startOver();
  ASSERT_NE(openMenu(windows().main), nullptr);
  closeMenu();
  choose(52);
  ASSERT_TRUE(hasCopied());
  EXPECT_GE(magnifierRecord().copiedAt - magnifierRecord().menuLeftAt, fade);
}

TEST_F(Clipboard, HoldsTheWholeScreenInFullScreen) {
  startOver();
  press('F');
  choose(52);
  ASSERT_TRUE(hasCopied());
  EXPECT_EQ(clipboardBitmap().header.biWidth, screenBounds().width());
  EXPECT_EQ(clipboardBitmap().header.biHeight, screenBounds().height());
}

constexpr ULONGLONG nearlyThreeSeconds = 2900;

TEST_F(Clipboard, ConfirmsForThreeSeconds) {
  startOver();
  choose(52);
  ASSERT_TRUE(hasCopied());
  EXPECT_EQ(magnifierRecord().titleTimer, 3000U);
  EXPECT_GE(renamedAfter(magnifierRecord().copiedAt), nearlyThreeSeconds);
  EXPECT_EQ(title(), firstTitle);
}

TEST_F(Clipboard, ConfirmsAnewForASecondCopy) {
  startOver();
  choose(52);
  ASSERT_TRUE(hasCopied());
  const MagnifierRecord& record = magnifierRecord();
  Sleep(1000);
  const std::uint64_t timers = record.titleTimers;
  choose(52);
  ASSERT_TRUE(eventually([&] { return record.titleTimers > timers; }));
  EXPECT_GE(renamedAfter(record.timedAt), nearlyThreeSeconds);
}

TEST_F(Clipboard, ConfirmsEvenWhereItCannotBeHad) {
  startOver();
  ASSERT_TRUE(openClipboard());
  choose(52);
  EXPECT_TRUE(hasCopied());
  CloseClipboard();
  EXPECT_EQ(clipboardBitmap().bytes, 0U);
}

using ControlPicture = OverAPicture;

bool isGrey(const Colour& colour) {
  return colour[0] == colour[1] && colour[1] == colour[2];
}

// Succeeds for white text on one colour with a black shadow one pixel to the right and below. White
// edges over the black may turn grey.
testing::AssertionResult isTextWithAShadow(const Picture& picture) {
  constexpr Colour background{80, 100, 120};
  constexpr Colour black{0, 0, 0};
  constexpr Colour white{255, 255, 255};
  if (picture.at(0, 0) != background ||
      picture.at(picture.width - 1, picture.height - 1) != background) {
    return testing::AssertionFailure() << "the background has another colour";
  }
  if (std::ranges::find(picture.pixels, black) == picture.pixels.end()) {
    return testing::AssertionFailure() << "there is no black shadow";
  }
  // Expect three lines, 20 pixels apart from row 10 on, the first one further left.
  std::array<int, 3> whites{};
  for (int y = 0; y + 1 < picture.height; ++y) {
    for (int x = 0; x + 1 < picture.width; ++x) {
      if (picture.at(x, y) != white) continue;
      const bool isPlaced = y >= 10 && y < 70 && x >= (y < 30 ? 14 : 17);
      if (!isPlaced || !isGrey(picture.at(x + 1, y + 1))) {
        return testing::AssertionFailure() << "misplaced or unshadowed white at " << x << "," << y;
      }
      ++whites[static_cast<std::size_t>((y - 10) / 20)];
    }
  }
  if (std::ranges::find(whites, 0) != whites.end()) {
    return testing::AssertionFailure() << "there are not three lines of text";
  }
  return testing::AssertionSuccess();
}

TEST_F(ControlPicture, IsTextWithAShadow) {
  startOver();
  press('H');
  // Retry, because the window may be caught while it is being painted.
  const auto seen = [this] {
    return isTextWithAShadow(screenPicture(clientBoundsOf(windows().control)));
  };
  EXPECT_TRUE(eventually([&] { return static_cast<bool>(seen()); })) << seen().message();
}

}  // namespace
}  // namespace tintora::windows_test
