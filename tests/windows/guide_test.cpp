// Opens the user guide, which comes with the program, in the desktop's web browser.
#include <windows.h>
#include <objbase.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "deep_folder.h"
#include "program_run.h"
#include "stored_values.h"

namespace tintora::windows_test {
namespace {

namespace fs = std::filesystem;

constexpr std::uintptr_t highestFault = 32;

std::string contentOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// A desktop whose browser writes down the path of the page that it opens.
class Guide : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    magnifierRecord().pagesOpened = 0;
    fs::remove(note());
    classBefore_ = classOfPages();
    setClass(".html", "TintoraGuide");
    setClass("TintoraGuide\\shell\\open\\command", "cmd.exe /c echo %1>\"" + note() + "\"");
  }
  void TearDown() override {
    ProgramTest::TearDown();
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, (classes + "TintoraGuide").c_str());
    setClass(".html", classBefore_);
    fs::remove(note());
  }

  static std::string page() { return programFolder() + "guide.html"; }
  static std::string note() { return programFolder() + "opened.txt"; }

  // Chooses the guide in the menu, whose numbers begin after the user's transforms. Returns what
  // the program then asked of the desktop.
  const RecordedPage& openGuide(int transforms = 0) {
    choose(transforms + 55);
    EXPECT_TRUE(eventually([] { return magnifierRecord().pagesOpened == 1; }));
    return magnifierRecord().page;
  }

 private:
  static inline const std::string classes = "Software\\Classes\\";

  static std::string classOfPages() {
    std::array<char, 256> name{};
    DWORD size = name.size();
    RegGetValueA(HKEY_LOCAL_MACHINE, (classes + ".html").c_str(), nullptr, RRF_RT_REG_SZ, nullptr,
                 name.data(), &size);
    return name.data();
  }
  static void setClass(const std::string& name, const std::string& value) {
    RegSetKeyValueA(HKEY_LOCAL_MACHINE, (classes + name).c_str(), nullptr, REG_SZ, value.c_str(),
                    static_cast<DWORD>(value.size() + 1));
  }

  std::string classBefore_;
};

TEST_F(Guide, IsTheOneHandedOutWithTheProgram) {
  EXPECT_NE(contentOf(page()).find("<title>Tintora"), std::string::npos);
  start();
  openGuide();
  EXPECT_TRUE(eventually([] { return contentOf(note()).find(page()) != std::string::npos; }))
      << contentOf(note());
  EXPECT_TRUE(process().isRunning());
}

TEST_F(Guide, IsShownNormallyWithComReady) {
  start();
  const RecordedPage& opened = openGuide();
  EXPECT_EQ(opened.com, static_cast<DWORD>(COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE));
  EXPECT_EQ(opened.show, SW_SHOWNORMAL);
}

TEST_F(Guide, IsFoundInAFolderOfAnyName) {
  const fs::path folder = L"C:\\\u041f\u0440\u043e\u0432\u0430 \u8868";
  fs::create_directory(folder);
  fs::copy(programPath(), folder / "Tintora.exe");
  fs::copy(page(), folder / "guide.html");
  start(Launch{.program = (folder / "Tintora.exe").wstring()});
  const RecordedPage& opened = openGuide();
  EXPECT_EQ(std::wstring(opened.path.data()), (folder / "guide.html").wstring());
  EXPECT_GT(opened.answer, highestFault);
  end();
  fs::remove_all(folder);
}

// So are the user's transforms. run.py makes the share. Wine tells the program a path that lacks
// the backslashes at its beginning, so the stand-in corrects it.
TEST_F(Guide, IsFoundOnANetworkShare) {
  const fs::path folder = L"\\\\server\\share\\Gr\u00f6\u00dfe";
  fs::remove_all(folder);  // an interrupted run may have left it
  ASSERT_TRUE(fs::create_directory(folder));
  fs::copy(programPath(), folder / "Tintora.exe");
  fs::copy(page(), folder / "guide.html");
  std::ofstream(folder / "Tintora_custom.txt") << "From the network\n0 0 1 0\n0 1 0 0\n1 0 0 0\n";
  storeValues({{"Selected", 0}});
  start(Launch{.program = (folder / "Tintora.exe").wstring()});
  EXPECT_EQ(title(), "From the network");
  std::ranges::copy((folder / "Tintora.exe").wstring(), magnifierRecord().programPath.begin());
  const RecordedPage& opened = openGuide(1);
  EXPECT_EQ(std::wstring(opened.path.data()), (folder / "guide.html").wstring());
  EXPECT_GT(opened.answer, highestFault);
  choose(1 + 5);
  end();
  EXPECT_EQ(storedValues()["Selected"], 1U + 5U);
  fs::remove_all(folder);
}

// Wine does not start programs whose paths have 260 characters or more, so the program is only told
// that it is in such a folder.
TEST_F(Guide, IsFoundFarDown) {
  const DeepFolder folder;
  const std::wstring copy = literally + folder.file(L"guide.html");
  ASSERT_TRUE(CopyFileW(fs::path(page()).c_str(), copy.c_str(), FALSE));
  start();
  std::ranges::copy(folder.file(L"Tintora.exe"), magnifierRecord().programPath.begin());
  const RecordedPage& opened = openGuide();
  EXPECT_GT(opened.answer, highestFault);
  EXPECT_EQ(contentOf(opened.path.data()), contentOf(page()));
  end();
  DeleteFileW(copy.c_str());
}

}  // namespace
}  // namespace tintora::windows_test
