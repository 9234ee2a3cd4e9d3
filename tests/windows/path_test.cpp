// Paths in the form in which the program passes them to the desktop.
#include "platform/windows/path.h"

#include <windows.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace tintora::windows_test {
namespace {

using platform::openablePath;

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

TEST(OpenablePath, OpensAFileFarDown) {
  const std::wstring literally = L"\\\\?\\";
  std::wstring path = L"C:";
  std::vector<std::wstring> folders;
  while (path.size() < 300) {
    path += L"\\Gr\u00f6\u00dfe und \u041f\u0440\u043e\u0432\u0430";
    folders.push_back(literally + path);
    CreateDirectoryW(folders.back().c_str(), nullptr);
  }
  path += L"\\file.txt";
  std::ofstream(std::filesystem::path(literally + path)) << "found";
  std::string text;
  std::ifstream(std::filesystem::path(openablePath(path))) >> text;
  EXPECT_EQ(text, "found");
  DeleteFileW((literally + path).c_str());
  while (!folders.empty()) {
    RemoveDirectoryW(folders.back().c_str());
    folders.pop_back();
  }
}

}  // namespace
}  // namespace tintora::windows_test
