// The user guide, opened by the desktop's program for web pages.
#include <windows.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "program_run.h"

namespace tintora::windows_test {
namespace {

// A desktop on which opening a web page writes its path down.
class Guide : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    std::ofstream(page()) << "<p>Guide</p>";
    std::filesystem::remove(note());
    classBefore_ = classOfPages();
    setClass(".html", "TintoraGuide");
    setClass("TintoraGuide\\shell\\open\\command", "cmd.exe /c echo %1>\"" + note() + "\"");
  }
  void TearDown() override {
    ProgramTest::TearDown();
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, (classes + "TintoraGuide").c_str());
    setClass(".html", classBefore_);
    std::filesystem::remove(page());
    std::filesystem::remove(note());
  }

  static std::string page() { return programFolder() + "guide.html"; }
  static std::string note() { return programFolder() + "opened.txt"; }

  static std::string noted() {
    std::ifstream file(note());
    return {std::istreambuf_iterator<char>(file), {}};
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

TEST_F(Guide, IsOpenedFromBesideTheProgram) {
  start();
  choose(55);
  EXPECT_TRUE(eventually([] { return noted().find(page()) != std::string::npos; })) << noted();
  EXPECT_TRUE(process().isRunning());
}

}  // namespace
}  // namespace tintora::windows_test
