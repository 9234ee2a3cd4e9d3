// The program's file: the libraries that it needs, its protection and its resources.
#include "executable.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "program_run.h"

namespace tintora::windows_test {
namespace {

// Libraries that Windows 10 and 11 always take from their own folder, even if others stand beside
// the program.
constexpr std::array<std::string_view, 24> knownLibraries{
    "advapi32.dll", "clbcatq.dll",  "combase.dll", "comdlg32.dll", "coml2.dll",   "gdi32.dll",
    "gdiplus.dll",  "imagehlp.dll", "imm32.dll",   "kernel32.dll", "msctf.dll",   "msvcrt.dll",
    "normaliz.dll", "nsi.dll",      "ole32.dll",   "oleaut32.dll", "psapi.dll",   "rpcrt4.dll",
    "sechost.dll",  "setupapi.dll", "shcore.dll",  "shell32.dll",  "shlwapi.dll", "user32.dll"};

std::string lowerCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char letter) {
    return static_cast<char>(std::tolower(letter));
  });
  return text;
}

TEST(Executable, NeedsOnlyLibrariesThatCannotBePlanted) {
  const std::vector<std::string> names = importedLibraries(programPath());
  EXPECT_FALSE(names.empty());
  for (const std::string& name : names) {
    EXPECT_NE(std::ranges::find(knownLibraries, lowerCase(name)), knownLibraries.end()) << name;
  }
}

TEST(Executable, IsAProtected64BitWindowProgram) {
  const IMAGE_NT_HEADERS64 headers = headersOf(programPath());
  EXPECT_EQ(headers.Signature, static_cast<DWORD>(IMAGE_NT_SIGNATURE));
  EXPECT_EQ(headers.FileHeader.Machine, IMAGE_FILE_MACHINE_AMD64);
  const IMAGE_OPTIONAL_HEADER64& facts = headers.OptionalHeader;
  EXPECT_EQ(facts.Magic, IMAGE_NT_OPTIONAL_HDR64_MAGIC);
  EXPECT_EQ(facts.Subsystem, IMAGE_SUBSYSTEM_WINDOWS_GUI);
  for (const int protection :
       {IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE, IMAGE_DLLCHARACTERISTICS_NX_COMPAT,
        IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA}) {
    EXPECT_NE(facts.DllCharacteristics & protection, 0) << protection;
  }
}

// With a lower version Windows gives windows that cannot be resized an old kind of frame.
TEST(Executable, IsOfATodaysSubsystem) {
  const IMAGE_OPTIONAL_HEADER64& facts = headersOf(programPath()).OptionalHeader;
  EXPECT_GE(MAKELONG(facts.MinorSubsystemVersion, facts.MajorSubsystemVersion), MAKELONG(2, 6));
}

// A program without relocations cannot be moved, even if its flags allow it.
TEST(Executable, CanBeMovedInMemory) {
  const IMAGE_NT_HEADERS64 headers = headersOf(programPath());
  EXPECT_EQ(headers.FileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED, 0);
  EXPECT_NE(headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_BASERELOC].Size, 0U);
}

TEST(Executable, IsSmall) {
  EXPECT_LT(std::filesystem::file_size(programPath()), 2U * 1024 * 1024);
}

class Resources : public testing::Test {
 protected:
  void SetUp() override {
    file_ = LoadLibraryExA(programPath().c_str(), nullptr,
                           LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
    ASSERT_NE(file_, nullptr);
  }
  void TearDown() override { FreeLibrary(file_); }

  std::string_view resource(WORD name, WORD type) const {
    const HRSRC found = FindResourceA(file_, MAKEINTRESOURCEA(name), MAKEINTRESOURCEA(type));
    if (found == nullptr) return {};
    return {static_cast<const char*>(LockResource(LoadResource(file_, found))),
            SizeofResource(file_, found)};
  }

 private:
  HMODULE file_ = nullptr;
};

constexpr WORD versionType = 16;
constexpr WORD iconGroupType = 14;
constexpr WORD manifestType = 24;

TEST_F(Resources, HoldTheIcon) {
  const std::string_view group = resource(101, iconGroupType);
  ASSERT_GE(group.size(), 6U);
  // The third word is the number of pictures.
  EXPECT_GT(group[4], 0);
}

TEST_F(Resources, HoldTheVersion) {
  const std::string_view version = resource(1, versionType);
  ASSERT_FALSE(version.empty());
  std::string text;
  // Each character takes two bytes. The names are plain Latin, so take every other byte.
  for (std::size_t i = 0; i < version.size(); i += 2) text += version[i];
  EXPECT_NE(text.find("VS_VERSION_INFO"), std::string::npos);
  EXPECT_NE(text.find(std::string("ProductVersion\0\0", 15)), std::string::npos);
  EXPECT_NE(text.find("1.1.4"), std::string::npos);
  EXPECT_NE(text.find("Tintora"), std::string::npos);
}

TEST_F(Resources, AskForNoRightsAndForSharpPixels) {
  const std::string_view manifest = resource(1, manifestType);
  EXPECT_NE(manifest.find("level=\"asInvoker\""), std::string_view::npos);
  EXPECT_NE(manifest.find(">PerMonitorV2</dpiAwareness>"), std::string_view::npos);
}

}  // namespace
}  // namespace tintora::windows_test
