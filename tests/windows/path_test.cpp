// Paths in the form in which the program passes them to the desktop.
#include "platform/windows/path.h"

#include <windows.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "deep_folder.h"

namespace tintora::windows_test {
namespace {

using platform::openablePath;
using platform::shellPath;

TEST(OpenablePath, IsAShortOneMadeWhole) {
  EXPECT_EQ(openablePath(L"C:\\folder\\.\\other\\..\\file.txt"), L"C:\\folder\\file.txt");
  EXPECT_EQ(openablePath(L"\\\\server\\share\\file.txt"), L"\\\\server\\share\\file.txt");
}

// Windows opens a path of 260 characters or more only with the prefix.
TEST(OpenablePath, IsMeantLiterallyFrom260CharactersOn) {
  const std::wstring longest = L"C:\\" + std::wstring(256, L'x');
  EXPECT_EQ(openablePath(longest), longest);
  EXPECT_EQ(openablePath(longest + L"x"), L"\\\\?\\" + longest + L"x");
}

TEST(OpenablePath, NamesTheNetwork) {
  const std::wstring rest = L"server\\share\\" + std::wstring(300, L'x');
  EXPECT_EQ(openablePath(L"\\\\" + rest), L"\\\\?\\UNC\\" + rest);
}

TEST(OpenablePath, IsNotMarkedTwice) {
  const std::wstring literal = L"\\\\?\\C:\\" + std::wstring(300, L'x');
  EXPECT_EQ(openablePath(literal), literal);
}

class FarDown : public testing::Test {
 protected:
  void SetUp() override { std::ofstream(std::filesystem::path(literally + path_)) << "found"; }
  void TearDown() override { DeleteFileW((literally + path_).c_str()); }
  static std::string content(const std::wstring& path) {
    std::string text;
    std::ifstream(std::filesystem::path(path)) >> text;
    return text;
  }

 private:
  const DeepFolder folder_;

 protected:
  const std::wstring path_ = folder_.file(L"file.txt");
};

TEST_F(FarDown, IsOpenedByTheProgram) {
  EXPECT_EQ(content(openablePath(path_)), "found");
}

TEST_F(FarDown, IsNamedShortToTheShell) {
  for (const std::wstring& path : {path_, literally + path_}) {
    const std::wstring given = shellPath(path);
    EXPECT_LT(given.size(), static_cast<std::size_t>(MAX_PATH));
    EXPECT_FALSE(given.starts_with(literally));
    EXPECT_EQ(content(given), "found");
  }
}

TEST(ShellPath, HasNoPrefix) {
  EXPECT_EQ(shellPath(L"C:\\folder\\file.txt"), L"C:\\folder\\file.txt");
  EXPECT_EQ(shellPath(L"\\\\?\\C:\\folder\\file.txt"), L"C:\\folder\\file.txt");
  EXPECT_EQ(shellPath(L"\\\\?\\UNC\\server\\share\\file.txt"), L"\\\\server\\share\\file.txt");
}

// As where the volume has no short names.
TEST(ShellPath, StaysLongWhereItHasNoShortName) {
  const std::wstring missing = L"C:\\" + std::wstring(300, L'x');
  EXPECT_EQ(shellPath(missing), missing);
}

}  // namespace
}  // namespace tintora::windows_test
