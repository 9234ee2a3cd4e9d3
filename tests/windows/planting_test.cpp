// Plants libraries with names of the desktop's own in folders where the program must not look for
// them.
#include <windows.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "executable.h"
#include "planted_library.h"
#include "program_run.h"
#include "without_libraries.h"

namespace tintora::windows_test {
namespace {

// Libraries that the program or the desktop loads at run time, except those that Wine's own
// libraries need to load.
constexpr std::array libraries{
    "magnification.dll", "d3d9.dll",     "d3dx9_43.dll", "uxtheme.dll",
    "dwmapi.dll",        "comctl32.dll", "msimg32.dll",  "winmm.dll",
    "propsys.dll",       "winspool.drv", "wtsapi32.dll", "urlmon.dll",
    "cryptbase.dll",     "profapi.dll",  "winhttp.dll",  "textshaping.dll"};

// Has Wine take the first library that it finds, as Windows does. By default its own go first.
void preferFoundLibraries() {
  for (const std::string_view name : libraries) {
    const bool isUsual = name.ends_with(".dll");
    setLibraryOrder(std::string(isUsual ? name.substr(0, name.size() - 4) : name),
                    "native,builtin");
  }
}

std::string plantedLibrary() {
  const char* const path = std::getenv("TINTORA_PLANTED_LIBRARY");
  return path == nullptr ? "planted.dll" : path;
}

class Planted : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    preferFoundLibraries();
    std::filesystem::create_directory(elsewhere());
    SetEnvironmentVariableA(plantedNoteVariable, note().c_str());
    DeleteFileA(note().c_str());
  }
  void TearDown() override {
    ProgramTest::TearDown();
    resetLibraryOrders();
    for (const std::string& path : planted_) DeleteFileA(path.c_str());
    std::filesystem::remove_all(elsewhere());
    SetEnvironmentVariableA(plantedNoteVariable, nullptr);
  }

  static std::string elsewhere() { return programFolder() + "elsewhere\\"; }
  static std::string note() { return elsewhere() + "note.txt"; }

  // Returns the paths of the planted libraries that were loaded, one in each line.
  static std::string noted() {
    std::ifstream file(note());
    return {std::istreambuf_iterator<char>(file), {}};
  }

  void plant(const std::string& folder, const std::string& name) {
    planted_.push_back(folder + name);
    ASSERT_TRUE(CopyFileA(plantedLibrary().c_str(), planted_.back().c_str(), TRUE)) << name;
  }

  // Starts the program, uses the menu, copies and ends: all actions that load libraries.
  void run(const std::string& folder) {
    start(Launch{.folder = folder});
    menu();
    choose(703);
    choose(52);
    EXPECT_TRUE(hasCopied());
    press('H');
    end();
    EXPECT_EQ(process().result(), 0U);
  }

 private:
  std::vector<std::string> planted_;
};

// Checks the planted library itself; if it took no notes, the other tests could not fail.
TEST_F(Planted, LibrariesNoteThatTheyWereLoaded) {
  plant(elsewhere(), "magnification.dll");
  const std::string path = elsewhere() + "magnification.dll";
  const HMODULE library = LoadLibraryA(path.c_str());
  ASSERT_NE(library, nullptr);
  FreeLibrary(library);
  EXPECT_NE(noted().find("magnification.dll"), std::string::npos);
}

TEST_F(Planted, LibrariesBesideTheProgramAreNotLoaded) {
  for (const char* name : libraries) plant(programFolder(), name);
  run(programFolder());
  EXPECT_EQ(noted(), "");
}

TEST_F(Planted, LibrariesInTheCurrentFolderAreNotLoaded) {
  for (const char* name : libraries) plant(elsewhere(), name);
  for (const std::string& name : importedLibraries(programPath())) plant(elsewhere(), name);
  run(elsewhere());
  EXPECT_EQ(noted(), "");
}

// The desktop lacks these libraries, so only planted ones could be found.
TEST_F(Planted, LibrariesDoNotStandInForMissingOnesToDrawWith) {
  std::vector<std::string> missing{"d3d9.dll"};
  for (const std::string& name : d3dxLibraries()) missing.push_back(name + ".dll");
  for (const std::string& name : missing) {
    plant(programFolder(), name);
    plant(elsewhere(), name);
  }
  // Run once without D3DX only, and once without Direct3D too.
  for (const std::string& name : d3dxLibraries()) setLibraryOrder(name, "native");
  run(elsewhere());
  setLibraryOrder("d3d9", "native");
  run(elsewhere());
  EXPECT_EQ(noted(), "");
}

TEST_F(Planted, LibrariesDoNotStandInForAMissingOne) {
  const MissingMagnification missing;
  plant(programFolder(), "magnification.dll");
  plant(elsewhere(), "magnification.dll");
  const Process process(Launch{.folder = elsewhere()});
  EXPECT_TRUE(process.hasEnded());
  EXPECT_EQ(process.result(), 0U);
  EXPECT_EQ(noted(), "");
}

}  // namespace
}  // namespace tintora::windows_test
