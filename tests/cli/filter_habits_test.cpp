#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "cli/image_file.h"
#include "tests/cli/built_tool.h"
#include "tests/cli/image_samples.h"
#include "tests/cli/tool_run.h"

namespace tintora {
namespace {

std::string textOf(const cli::Bytes& bytes) {
  return {bytes.begin(), bytes.end()};
}

std::string samplePng() {
  return textOf(encodeImage(cli::randomImage(20, 10, false, 1), cli::ImageFormat::Png));
}

std::string sampleJpeg() {
  return textOf(encodeImage(cli::smoothImage(40, 30), cli::ImageFormat::Jpeg));
}

ToolRun invert(const Words& words) {
  Words command{"filter", "--mode", "invert"};
  command.insert(command.end(), words.begin(), words.end());
  return runTool(command);
}

TEST(FilterHabits, AnOutputThatIsAFolderIsWrittenInto) {
  const TemporaryFolder folder;
  const std::string in = folder.write("in.jpg", sampleJpeg());
  const std::string other = folder.write("other.png", samplePng());
  EXPECT_EQ(invert({in, folder / "new/"}).status, 0);
  EXPECT_NE(readFile(folder / "new/in.jpg"), "");
  EXPECT_EQ(invert({other, folder / "new"}).status, 0) << "it exists, so it needs no slash";
  EXPECT_NE(readFile(folder / "new/other.png"), "");
  EXPECT_EQ(invert({in, other, folder / "both/"}).status, 0);
  EXPECT_NE(readFile(folder / "both/in.jpg"), "");
  EXPECT_NE(readFile(folder / "both/other.png"), "");
}

TEST(FilterHabits, TheFormatRenamesTheExtensionInAFolder) {
  const TemporaryFolder folder;
  const std::string jpeg = folder.write("a.b.jpg", sampleJpeg());
  const std::string png = folder.write("c.PNG", samplePng());
  EXPECT_EQ(invert({jpeg, png, "--output-dir", folder / "o", "--output-format", "png"}).status, 0);
  EXPECT_EQ(readFile(folder / "o/a.b.png").substr(1, 3), "PNG");
  EXPECT_EQ(readFile(folder / "o/c.PNG").substr(1, 3), "PNG");
  EXPECT_FALSE(std::filesystem::exists(folder / "o/a.b.jpg"));

  const std::string twin = folder.write("a.b.png", samplePng());
  const ToolRun run = invert({jpeg, twin, "--output-dir", folder / "p", "--output-format", "png"});
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.error.find("a.b.png: more than one input"), std::string::npos) << run.error;
}

TEST(FilterHabits, FilesInAFolderAreOverwrittenOnlyWithForce) {
  const TemporaryFolder folder;
  const std::string in = folder.write("in.png", samplePng());
  std::filesystem::create_directory(folder / "out");
  const std::string old = folder.write("out/in.png", "old");
  const ToolRun kept = invert({in, "--output-dir", folder / "out"});
  EXPECT_EQ(kept.status, 1);
  EXPECT_EQ(kept.error, "tintora-cli: " + old + ": exists; --force overwrites it\n");
  EXPECT_EQ(readFile(old), "old");
  EXPECT_EQ(invert({in, "--output-dir", folder / "out", "--force"}).status, 0);
  EXPECT_EQ(readFile(old).substr(1, 3), "PNG");

  const std::string single = folder.write("single.png", "old");
  EXPECT_EQ(invert({in, single}).status, 0) << "it was named";
  EXPECT_EQ(readFile(single).substr(1, 3), "PNG");
}

TEST(FilterHabits, FilesOfOtherFormatsFailAndAreCounted) {
  const TemporaryFolder folder;
  const std::string good = folder.write("good.png", samplePng());
  const std::string notes = folder.write("notes.txt", "no picture");
  std::filesystem::create_directory(folder / "sub.png");
  const ToolRun run = invert({notes, good, folder / "sub.png", "--output-dir", folder / "out"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(std::count(run.error.begin(), run.error.end(), '\n'), 3) << run.error;
  EXPECT_NE(run.error.find("notes.txt: the name ends in"), std::string::npos) << run.error;
  EXPECT_NE(run.error.find("sub.png: is a folder"), std::string::npos) << run.error;
  const std::string last = "tintora-cli: 2 of 3 images could not be filtered\n";
  EXPECT_EQ(run.error.substr(run.error.size() - last.size()), last);
  EXPECT_NE(readFile(folder / "out/good.png"), "");
}

TEST(FilterHabits, NoJobsAreRefused) {
  const TemporaryFolder folder;
  const std::string in = folder.write("in.png", samplePng());
  expectRefused(invert({in, folder / "out.png", "--jobs", "0"}), 2,
                "--jobs: 0 is not between 1 and 1024");
}

TEST(FilterHabits, AnyNumberOfJobsWritesTheSameFiles) {
  const TemporaryFolder folder;
  Words inputs;
  for (int i = 0; i < 9; ++i) {
    const auto image = cli::randomImage(50, 40, i % 2 == 0, static_cast<unsigned>(i));
    inputs.push_back(folder.write(std::to_string(i) + ".png",
                                  textOf(encodeImage(image, cli::ImageFormat::Png))));
  }
  for (const std::string jobs : {"1", "4", "50"}) {
    Words words = inputs;
    words.insert(words.end(), {"--jobs", jobs, "--output-dir", folder / jobs});
    EXPECT_EQ(invert(words).status, 0);
    for (int i = 0; i < 9; ++i) {
      const std::string name = '/' + std::to_string(i) + ".png";
      EXPECT_EQ(readFile(folder / (jobs + name)), readFile(folder / ("1" + name)));
    }
  }
}

TEST(FilterHabits, EveryProcessorHasAnImage) {
  if (std::thread::hardware_concurrency() < 2) GTEST_SKIP() << "there is one processor";
  const TemporaryFolder folder;
  const std::string first = folder / "first.png";
  const std::string second = folder / "second.png";
  for (const std::string& pipe : {first, second}) ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  std::thread tool([&] { EXPECT_EQ(invert({first, second, folder / "out/"}).status, 0); });
  // The second picture arrives while the first is still awaited.
  int pipe = -1;
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (pipe < 0 && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    pipe = ::open(second.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
  }
  EXPECT_GE(pipe, 0) << "nothing reads the second";
  const std::string png = samplePng();
  if (pipe >= 0) {
    EXPECT_EQ(::write(pipe, png.data(), png.size()), static_cast<ssize_t>(png.size()));
    ::close(pipe);
  }
  std::ofstream(first, std::ios::binary) << png;
  if (pipe < 0) std::ofstream(second, std::ios::binary) << png;
  tool.join();
}

TEST(FilterHabits, LowerQualityMakesASmallerJpeg) {
  const TemporaryFolder folder;
  const std::string in = folder.write("in.png", samplePng());
  const auto sizeAt = [&](const Words& quality) {
    Words words{in, folder / "out.jpg"};
    words.insert(words.end(), quality.begin(), quality.end());
    EXPECT_EQ(invert(words).status, 0);
    return readFile(folder / "out.jpg").size();
  };
  EXPECT_LT(sizeAt({"--quality", "50"}), sizeAt({"--quality", "90"}));
  EXPECT_EQ(sizeAt({}), sizeAt({"--quality", "95"}));
  for (const std::string bad : {"0", "101", "9.5", "best"}) {
    EXPECT_EQ(invert({in, folder / "out.jpg", "--quality", bad}).status, 2) << bad;
  }
}

TEST(FilterHabits, AQualityIsRefusedWhereAllOutputIsPng) {
  const TemporaryFolder folder;
  const std::string in = folder.write("in.jpg", sampleJpeg());
  const std::string other = folder.write("other.png", samplePng());
  const Words quality{"--quality", "50"};
  const Words asPng{"--output-format", "png"};
  for (const Words& words :
       {Words{in, folder / "out.png"}, Words{in, "-"}, Words{in, folder / "out.jpg"} + asPng,
        Words{in, other, "--output-dir", folder / "out"} + asPng}) {
    expectRefused(invert(words + quality), 2, "--quality: is for JPEG, and the output is PNG");
  }
  EXPECT_EQ(folder.names(), (Words{"in.jpg", "other.png"}));

  const Words asJpeg{"--output-format", "jpeg"};
  EXPECT_EQ(invert(Words{in, "-"} + asJpeg + quality).status, 0);
  EXPECT_EQ(invert(Words{in, other, "--output-dir", folder / "low"} + quality).status, 0);
  EXPECT_EQ(invert({in, "--output-dir", folder / "high"}).status, 0);
  EXPECT_LT(readFile(folder / "low/in.jpg").size(), readFile(folder / "high/in.jpg").size());
}

TEST(FilterHabits, TheLimitOnPixelsIsSetByAnOption) {
  const TemporaryFolder folder;
  const std::string in = folder.write("in.png", samplePng());
  EXPECT_EQ(invert({in, folder / "out.png", "--max-pixels", "200"}).status, 0);
  const ToolRun run = invert({in, folder / "out.png", "--max-pixels", "199"});
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.error.find("20 x 10 pixels, more than the limit of 199"), std::string::npos);
}

TEST(FilterHabits, NamesAreCleanedInMessages) {
  const TemporaryFolder folder;
  const ToolRun run = invert({folder / "\x1b[31m.png", folder / "out.png"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.error.find('\x1b'), std::string::npos);
  EXPECT_NE(run.error.find("?[31m.png"), std::string::npos) << run.error;
}

TEST(FilterHabits, PicturesAreNotPrintedOnATerminal) {
  const TemporaryFolder folder;
  const std::string in = folder.write("in.png", samplePng());
  const ToolRun run = runToolOnTerminal({"filter", "--mode", "invert", in, "-"}, true);
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.error.find("standard output is a terminal"), std::string::npos) << run.error;
  EXPECT_EQ(run.error.find("PNG\r\n"), std::string::npos);
}

TEST(CommandLine, AFullDiskIsNoticedEvenForHelp) {
  for (const std::string arguments : {"--help", "filter --help", "--version", "list", "matrix"}) {
    const std::string command = std::string(toolPath) + ' ' + arguments + " >/dev/full 2>/dev/null";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 1) << arguments;
  }
}

}  // namespace
}  // namespace tintora
