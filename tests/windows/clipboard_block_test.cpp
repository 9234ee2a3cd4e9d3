// The block that is put on the clipboard, for bitmaps of every depth and on a failing desktop.
#include <windows.h>
#include <gtest/gtest.h>

#include <cstring>
#include <ostream>
#include <string>
#include <vector>

#include "picture.h"
#include "platform/clipboard.h"
#include "platform/windows/handles.h"
#include "replaced_pointer.h"

// The import pointers of these functions. Calls from a linked library go through them.
extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier)
extern int(WINAPI* __imp_GetDIBits)(HDC, HBITMAP, UINT, UINT, LPVOID, LPBITMAPINFO, UINT);
extern HGLOBAL(WINAPI* __imp_GlobalAlloc)(UINT, SIZE_T);
// NOLINTEND(bugprone-reserved-identifier)
}

namespace tintora::windows_test {
namespace {

constexpr int blockWidth = 13;
constexpr int blockHeight = 3;

struct Block {
  BITMAPINFOHEADER header{};
  std::size_t bytes = 0;
};

class ClipboardBlock : public testing::Test {
 protected:
  void SetUp() override {
    window_ = CreateWindowExA(0, "STATIC", "owner", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr,
                              GetModuleHandleA(nullptr), nullptr);
    emptyClipboard();
  }
  void TearDown() override { DestroyWindow(window_); }

  // Puts a bitmap of zeros on the clipboard.
  bool put(int bitsPerPixel) {
    const std::vector<std::uint8_t> bits(64 * blockHeight);
    const HBITMAP bitmap =
        CreateBitmap(blockWidth, blockHeight, 1, static_cast<UINT>(bitsPerPixel), bits.data());
    platform::Picture* const picture = platform::fromNative(bitmap);
    const bool handedOver = platform::putOnClipboard(platform::fromNative(window_), picture);
    platform::deletePicture(picture);
    return handedOver;
  }

  static Block held() {
    Block block;
    EXPECT_TRUE(openClipboard());
    if (const HANDLE memory = GetClipboardData(CF_DIB)) {
      block.bytes = GlobalSize(memory);
      std::memcpy(&block.header, GlobalLock(memory), sizeof block.header);
      GlobalUnlock(memory);
    }
    CloseClipboard();
    return block;
  }

  static bool isClosed() {
    const bool opened = OpenClipboard(nullptr) != 0;
    if (opened) CloseClipboard();
    return opened;
  }

 private:
  HWND window_ = nullptr;
};

struct DepthRow {
  int bitsPerPixel;
  int bitCount;
  std::size_t tableBytes;
};

void PrintTo(const DepthRow& row, std::ostream* out) {
  *out << row.bitsPerPixel;
}

class Depths : public ClipboardBlock, public testing::WithParamInterface<DepthRow> {};

TEST_P(Depths, HaveTheirColourTable) {
  const DepthRow& row = GetParam();
  ASSERT_TRUE(put(row.bitsPerPixel));
  const Block block = held();
  const int stride = (row.bitCount * blockWidth + 31) / 32 * 4;
  EXPECT_EQ(block.header.biSize, 40U);
  EXPECT_EQ(block.header.biWidth, blockWidth);
  EXPECT_EQ(block.header.biHeight, blockHeight);
  EXPECT_EQ(block.header.biBitCount, row.bitCount);
  EXPECT_EQ(block.header.biSizeImage, static_cast<DWORD>(stride * blockHeight));
  EXPECT_EQ(block.bytes, 40 + row.tableBytes + static_cast<std::size_t>(stride * blockHeight));
}

INSTANTIATE_TEST_SUITE_P(Of, Depths,
                         testing::Values(DepthRow{1, 1, 8}, DepthRow{4, 4, 64},
                                         DepthRow{8, 8, 1024}, DepthRow{16, 24, 0},
                                         DepthRow{32, 24, 0}),
                         [](const auto& row) { return std::to_string(row.param.bitsPerPixel); });

decltype(GetDIBits)* originalGetDibits = nullptr;

// A driver that does not report the size of a picture in bytes.
int WINAPI silentOnSize(HDC context, HBITMAP bitmap, UINT first, UINT rows, LPVOID bits,
                        LPBITMAPINFO info, UINT usage) {
  if (bits != nullptr) return originalGetDibits(context, bitmap, first, rows, bits, info, usage);
  info->bmiHeader.biSizeImage = 0;
  return 1;
}
int WINAPI copiesNothing(HDC /*context*/, HBITMAP /*bitmap*/, UINT /*first*/, UINT /*rows*/,
                         LPVOID /*bits*/, LPBITMAPINFO /*info*/, UINT /*usage*/) {
  return 0;
}
HGLOBAL WINAPI outOfMemory(UINT /*flags*/, SIZE_T /*bytes*/) {
  return nullptr;
}

TEST_F(ClipboardBlock, HasItsSizeIfTheDesktopDoesNotSay) {
  const ReplacedPointer silent = replaceImport(&__imp_GetDIBits, &silentOnSize);
  originalGetDibits = silent.original<decltype(GetDIBits)>();
  ASSERT_TRUE(put(32));
  // 13 pixels of 24 bits take 39 bytes, and rows are padded to a multiple of 4.
  EXPECT_EQ(held().bytes, 40U + 40U * blockHeight);
}

TEST_F(ClipboardBlock, IsNotHandedOverWithoutPixels) {
  const ReplacedPointer failing = replaceImport(&__imp_GetDIBits, &copiesNothing);
  EXPECT_FALSE(put(32));
  EXPECT_EQ(held().bytes, 0U);
  EXPECT_TRUE(isClosed());
}

TEST_F(ClipboardBlock, IsNotHandedOverWithoutMemory) {
  {
    const ReplacedPointer failing = replaceImport(&__imp_GlobalAlloc, &outOfMemory);
    EXPECT_FALSE(put(32));
  }
  EXPECT_EQ(held().bytes, 0U);
  EXPECT_TRUE(isClosed());
}

}  // namespace
}  // namespace tintora::windows_test
