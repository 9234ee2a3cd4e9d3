// The program on desktops of any language, and in folders whose names their code pages cannot hold.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "deep_folder.h"
#include "picture.h"
#include "program_run.h"
#include "stored_values.h"

namespace tintora::windows_test {
namespace {

constexpr const char* transform = "Vi\xe9not \xc5\xf1\n1 0 0 0\n0 1 0 0\n0 0 1 0\n";
constexpr const wchar_t* transformName = L"Vi\u00e9not \u00c5\u00f1";

struct LanguageRow {
  std::string_view locale;
  UINT codePage;
};
constexpr std::array languages{LanguageRow{"ru_RU", 1251}, LanguageRow{"ja_JP", 932}};

// These tests also run on desktops with other code pages.
class AnyLanguage : public UndrawnTest {
 protected:
  void SetUp() override {
    UndrawnTest::SetUp();
    const char* const locale = std::getenv("LC_ALL");
    for (const LanguageRow& language : languages) {
      if (locale == nullptr || !std::string_view(locale).starts_with(language.locale)) continue;
      ASSERT_EQ(GetACP(), language.codePage) << "The desktop has not taken the locale.";
    }
  }
  void startWithTransform() {
    std::ofstream(customFile()) << transform;
    storeValues({{"ColorSpace", 0}});
    start("-s");
    choose(0);
  }
};

TEST_F(AnyLanguage, HasTheSameTitlesAndMenus) {
  startWithTransform();
  EXPECT_EQ(wideTitleOf(windows().main), transformName);
  const std::vector<MenuItem> items = menu();
  const auto count = [&](const std::string& text) {
    return std::ranges::count(items, text, &MenuItem::text);
  };
  EXPECT_EQ(count("Vi\xe9not \xc5\xf1"), 1);
  EXPECT_EQ(count("Vi\xe9not, Brettel && Mollon, 1999"), 1);
}

struct PaintedLine {
  int x;
  int y;
  std::wstring text;
};

// Returns the control window as it should look at this size: each line white over a black shadow
// one pixel down and to the right.
Picture expectedControlWindow(int width, int height) {
  const std::array<PaintedLine, 3> lines{
      {{14, 10, transformName},
       {17, 30, L"Main window is now Hit-Transparent"},
       {17, 50, L"Use this window to access options (right-click/mouse-wheel)"}}};
  constexpr int fontHeight = 16;
  return drawnPicture(width, height, [&](HDC memory) {
    const HFONT font = CreateFontW(fontHeight, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, PROOF_QUALITY, 0,
                                   L"Microsoft Sans Serif");
    const HBRUSH brush = CreateSolidBrush(RGB(80, 100, 120));
    const HGDIOBJ previousFont = SelectObject(memory, font);
    const RECT all{0, 0, width, height};
    FillRect(memory, &all, brush);
    SetBkMode(memory, TRANSPARENT);
    for (const int shadow : {1, 0}) {
      SetTextColor(memory, shadow != 0 ? RGB(0, 0, 0) : RGB(255, 255, 255));
      for (const auto& [x, y, text] : lines) {
        TextOutW(memory, x + shadow, y + shadow, text.c_str(), static_cast<int>(text.size()));
      }
    }
    SelectObject(memory, previousFont);
    DeleteObject(brush);
    DeleteObject(font);
  });
}

TEST_F(AnyLanguage, HasTheSamePaintedText) {
  startWithTransform();
  press('H');
  const Bounds client = clientBoundsOf(windows().control);
  const Picture expected =
      expectedControlWindow(static_cast<int>(client.width()), static_cast<int>(client.height()));
  const auto isPainted = [&] { return areAlike(screenPicture(client), expected, 0); };
  EXPECT_TRUE(eventually([&] {
    // Paint again, because a paint before the display shows the window can be lost.
    InvalidateRect(windows().control, nullptr, FALSE);
    settle();
    return static_cast<bool>(isPainted());
  })) << isPainted().message();
}

struct PlaceRow {
  const char* name;
  std::vector<std::wstring> folders;  // each inside the previous one
  // Wine does not start programs whose paths have 260 characters or more. Such a program is started
  // elsewhere; its command line names the folder, which is where it looks for its files.
  bool canStart = true;
};

void PrintTo(const PlaceRow& row, std::ostream* out) {
  *out << row.name;
}

// Runs the program from another folder, with custom transforms there.
class Places : public UndrawnTest, public testing::WithParamInterface<PlaceRow> {
 protected:
  void SetUp() override {
    UndrawnTest::SetUp();
    for (const std::wstring& folder : levels()) {
      CreateDirectoryW((literally + folder).c_str(), nullptr);
    }
    ASSERT_TRUE(CopyFileW(std::filesystem::path(programPath()).c_str(),
                          (literally + program()).c_str(), FALSE));
    std::ofstream(std::filesystem::path(literally + transforms())) << transform;
  }
  void TearDown() override {
    ProgramTest::TearDown();
    DeleteFileW((literally + program()).c_str());
    DeleteFileW((literally + transforms()).c_str());
    std::vector<std::wstring> folders = levels();
    std::ranges::reverse(folders);
    for (const std::wstring& folder : folders) RemoveDirectoryW((literally + folder).c_str());
  }

  static std::vector<std::wstring> levels() {
    std::vector<std::wstring> all;
    std::wstring path = L"C:";
    for (const std::wstring& folder : GetParam().folders) {
      path += L'\\' + folder;
      all.push_back(path);
    }
    return all;
  }
  static std::wstring program() { return levels().back() + L"\\Tintora.exe"; }
  static std::wstring transforms() { return levels().back() + L"\\Tintora_custom.txt"; }
};

TEST_P(Places, HoldTheUsersOwnTransforms) {
  EXPECT_EQ(GetParam().canStart, transforms().size() < MAX_PATH);
  start(GetParam().canStart ? Launch{.program = program()} : Launch{.named = program()});
  choose(0);
  EXPECT_EQ(wideTitleOf(windows().main), transformName);
}

const std::array placeRows{
    PlaceRow{"Blank", {L"With blanks", L"in it"}},
    PlaceRow{"Latin", {L"Gr\u00f6\u00dfe"}},
    PlaceRow{"Cyrillic", {L"\u041f\u0440\u043e\u0432\u0430"}},
    PlaceRow{"Japanese", {L"\u8868\u793a"}},
    PlaceRow{"Deep", std::vector<std::wstring>(10, L"another folder down")},
    PlaceRow{"Deeper", std::vector<std::wstring>(16, L"another folder down"), false},
};

INSTANTIATE_TEST_SUITE_P(AnyLanguage, Places, testing::ValuesIn(placeRows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace tintora::windows_test
