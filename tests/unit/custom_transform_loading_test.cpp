// Tests where the custom transform file is sought, and what loading it changes.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>
#include <system_error>

#include "counted_transform.h"
#include "display_recorder.h"

namespace tintora {
namespace {

using namespace std::string_view_literals;

TEST(CustomFilePath, IsTheDirectoryOnTheCommandLine) {
  struct Row {
    const char* commandLine;
    const char* path;
  };
  for (const Row& row : {
           Row{R"("C:\Program Files\Tintora\tintora.exe")",
               R"(C:\Program Files\Tintora\Tintora_custom.txt)"},
           Row{R"(C:\tools\tintora.exe)", R"(C:\tools\Tintora_custom.txt)"},
           Row{"  \t\"C:\\tools\\tintora.exe\"\t  ", R"(C:\tools\Tintora_custom.txt)"},
           Row{R"("C:\tools\tintora.exe" -st)", R"(C:\tools\Tintora_custom.txt)"},
           Row{R"("C:\tools\tintora.exe" "D:\pictures\own.txt")",
               R"(C:\tools\tintora.exe" "D:\pictures\Tintora_custom.txt)"},
           Row{"/usr/bin/tintora", "/usr/bin/Tintora_custom.txt"},
           Row{"bin/a\\b", R"(bin/a\Tintora_custom.txt)"},
           Row{"a\\bin/b", "a\\bin/Tintora_custom.txt"},
           Row{"/tools/", "/tools/Tintora_custom.txt"},
           Row{"/tools/\"", "/tools/Tintora_custom.txt"},
           Row{"/", "/Tintora_custom.txt"},
           Row{"tintora.exe", "Tintora_custom.txt"},
           Row{"\"tintora.exe\" -s", "Tintora_custom.txt"},
           Row{"", "Tintora_custom.txt"},
           Row{" \"\t ", "Tintora_custom.txt"},
       }) {
    SCOPED_TRACE(row.commandLine);
    EXPECT_EQ(customTransformPath(row.commandLine), row.path);
  }
}

class CustomFileLoading : public EngineTest {
 protected:
  CustomFileLoading() {
    std::filesystem::create_directories(directory);
    commandLine = "\"" + (directory / "tintora").string() + "\"";
  }
  ~CustomFileLoading() override {
    std::error_code ignored;
    std::filesystem::remove_all(directory, ignored);
  }

  void write(std::string_view text) const {
    std::ofstream(directory / "Tintora_custom.txt", std::ios::binary) << text;
  }

  void load() const { loadCustomTransforms(customTransformPath(commandLine)); }

  std::string commandLine;
  // Tests may run in parallel.
  const std::filesystem::path directory = std::filesystem::temp_directory_path() /
                                          ("tintora " + std::to_string(std::random_device{}()));
};

TEST_F(CustomFileLoading, FindsTheFileBesideAQuotedProgramPath) {
  write("one\r\n1 2 3 4\r\n5 6 7 8\r\n9 10 11 12\r\n$two\r\n1 2 3 4\r\n5 6 7 8\r\n9 10 11 12");
  load();
  ASSERT_EQ(customTransforms.size(), 2U);
  expectCounted(customTransforms[0], "one");
  EXPECT_EQ(customTransforms[1].name, "two");
  EXPECT_TRUE(customTransforms[1].adjustable);
  EXPECT_EQ(customTransforms[1].rows, countedRows);
}

// Desktops that end lines by two characters would turn three into two on reading.
TEST_F(CustomFileLoading, ReadsLineEndsAsTheyStand) {
  write("one\r\r\n" + countedText);
  load();
  EXPECT_TRUE(customTransforms.empty());
}

TEST_F(CustomFileLoading, FindsTheFileInTheCurrentDirectoryWithoutADirectoryOnTheCommandLine) {
  write("here\n" + countedText);
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(directory);
  commandLine = "tintora";
  load();
  std::filesystem::current_path(before);
  ASSERT_EQ(customTransforms.size(), 1U);
  expectCounted(customTransforms[0], "here");
}

TEST_F(CustomFileLoading, WithoutAFileAddsNothingAndReportsNothing) {
  load();
  EXPECT_TRUE(customTransforms.empty());
  EXPECT_TRUE(displayRecord.calls.empty());
}

TEST_F(CustomFileLoading, KeepsTheEntriesBeforeAMalformedRecordAndReportsNothing) {
  write("one\n" + countedText + "two\n1 2 3\n5 6 7 8\n9 10 11 12\nthree\n" + countedText);
  load();
  ASSERT_EQ(customTransforms.size(), 1U);
  expectCounted(customTransforms[0], "one");
  EXPECT_TRUE(displayRecord.calls.empty());
}

TEST_F(CustomFileLoading, AppendsToTheList) {
  customTransforms.push_back({"before", false, {}});
  write("one\n" + countedText);
  load();
  ASSERT_EQ(customTransforms.size(), 2U);
  EXPECT_EQ(customTransforms[0].name, "before");
  expectCounted(customTransforms[1], "one");
}

TEST_F(CustomFileLoading, ReadsBytesAboveSevenBitsAndNulsAsTheyStand) {
  write(
      "Vi\xE9not\xFF\0"
      "1 2 3 4\n5 6 7 8\n9 10 11 12"sv);
  load();
  ASSERT_EQ(customTransforms.size(), 1U);
  expectCounted(customTransforms[0], "Vi\xE9not\xFF");
}

}  // namespace
}  // namespace tintora
