#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "cli/image_file.h"
#include "engine/colour_simulation.h"
#include "tests/cli/built_tool.h"
#include "tests/cli/tool_run.h"

namespace tintora {
namespace {

using cli::Image;
using cli::ImageFormat;
Image colourfulImage(bool hasAlpha) {
  Image image;
  image.width = 33;
  image.height = 20;
  image.hasAlpha = hasAlpha;
  for (unsigned y = 0; y < image.height; ++y) {
    for (unsigned x = 0; x < image.width; ++x) {
      const auto byte = [](unsigned value) { return static_cast<std::uint8_t>(value % 256); };
      image.pixels.insert(image.pixels.end(), {byte(x * 7), byte(y * 12), byte(x * 3 + y * 5),
                                               hasAlpha ? byte(x * y) : std::uint8_t{255}});
    }
  }
  return image;
}

std::string encoded(const Image& image, ImageFormat format) {
  const auto bytes = cli::encodeImage(image, format);
  return {bytes.begin(), bytes.end()};
}

Image decoded(const std::string& file) {
  return cli::decodeImage(
      std::span(reinterpret_cast<const std::uint8_t*>(file.data()), file.size()));
}

void expectSwapped(const Image& result, const Image& source) {
  ASSERT_EQ(result.width, source.width);
  ASSERT_EQ(result.height, source.height);
  ASSERT_EQ(result.hasAlpha, source.hasAlpha);
  for (std::size_t i = 0; i < source.pixels.size(); i += 4) {
    ASSERT_EQ(result.pixels[i], source.pixels[i + 2]);
    ASSERT_EQ(result.pixels[i + 1], source.pixels[i + 1]);
    ASSERT_EQ(result.pixels[i + 2], source.pixels[i]);
    ASSERT_EQ(result.pixels[i + 3], source.pixels[i + 3]);
  }
}

void expectRunError(const ToolRun& run, const std::string& mention) {
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(std::count(run.error.begin(), run.error.end(), '\n'), 1) << run.error;
  EXPECT_NE(run.error.find(mention), std::string::npos) << run.error;
}

const Words swapCommand{"filter", "--mode", "swap"};

TEST(FilterCommand, PutsEveryPixelThroughTheMatrixAndKeepsAlpha) {
  for (const bool hasAlpha : {false, true}) {
    const TemporaryFolder folder;
    const Image image = colourfulImage(hasAlpha);
    const std::string in = folder.write("in.png", encoded(image, ImageFormat::Png));
    const std::string out = folder / "out.png";
    const ToolRun run = runTool(swapCommand + Words{in, out});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.error + run.output, "");
    expectSwapped(decoded(readFile(out)), image);
  }
}

TEST(FilterCommand, SimulatesOnTwoHalfPlanes) {
  const TemporaryFolder folder;
  const Image image = colourfulImage(false);
  const std::string in = folder.write("in.png", encoded(image, ImageFormat::Png));
  const struct {
    Words options;
    SimulationUse use;
  } uses[] = {{{}, SimulationUse::Simulate}, {{"--daltonize"}, SimulationUse::Daltonize}};
  for (const auto& [options, use] : uses) {
    const ToolRun run = runTool(
        Words{"filter", "--mode", "tritan", "--severity", "80", "--algorithm", "brettel1997"} +
        options + Words{in, folder / "out.png", "--force"});
    ASSERT_EQ(run.status, 0) << run.error;
    const Image shown = decoded(readFile(folder / "out.png"));
    const ColourTransform transform =
        makeSimulation({CvdType::Tritan, 0.8, SimulationAlgorithm::Brettel1997}, use);
    for (std::size_t i = 0; i < image.pixels.size(); i += 4) {
      Colour colour{};
      for (std::size_t c = 0; c < 3; ++c) colour[c] = image.pixels[i + 2 - c] / 255.0;
      colour = transformColour(transform, colour);
      for (std::size_t c = 0; c < 3; ++c) {
        ASSERT_EQ(shown.pixels[i + 2 - c], static_cast<std::uint8_t>(std::lround(colour[c] * 255)));
      }
    }
  }
}

// Returns a square opaque picture that no format packs well.
Image noisyImage(std::uint32_t side) {
  Image image = colourfulImage(false);
  image.width = image.height = side;
  image.pixels.resize(std::size_t{4} * side * side);
  std::mt19937 random(1);
  for (std::size_t i = 0; i < image.pixels.size(); ++i) {
    image.pixels[i] = i % 4 == 3 ? 255 : static_cast<std::uint8_t>(random());
  }
  return image;
}

TEST(FilterCommand, TellsThatThereIsNoRoomWhileRowsAreWritten) {
  const Image image = noisyImage(600);
  const TemporaryFolder folder;
  const std::string in = folder.write("in.png", encoded(image, ImageFormat::Png));
  for (const std::string name : {"out.png", "out.jpg"}) {
    // 400 blocks of 512 bytes at most.
    const std::string command = "ulimit -f 400; '" + std::string(toolPath) +
                                "' filter --mode invert '" + in + "' '" + (folder / name).string() +
                                "' 2>'" + (folder / "error").string() + "'";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 1);
    EXPECT_NE(readFile(folder / "error").find("File too large"), std::string::npos);
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"error", "in.png"}));
  }
}

TEST(FilterCommand, TellsThatThereIsNoPlaceForTemporaryFiles) {
  const TemporaryFolder folder;
  const std::string in = folder.write("in.png", encoded(colourfulImage(false), ImageFormat::Png));
  // Nobody can make a file in /proc.
  for (const auto& [place, reason] :
       {std::pair{(folder / "none").string(), "no folder for temporary files: "},
        std::pair{std::string("/proc"), "no temporary file in /proc: "}}) {
    const std::string command = "TMPDIR='" + place + "' '" + toolPath + "' filter --mode invert '" +
                                in + "' - 2>'" + (folder / "error").string() + "' | wc -c >'" +
                                (folder / "count").string() + "'";
    EXPECT_EQ(std::system(command.c_str()), 0);
    const std::string error = readFile(folder / "error");
    EXPECT_NE(error.find(std::string("cannot write standard output: ") + reason), std::string::npos)
        << error;
    EXPECT_EQ(std::stoi(readFile(folder / "count")), 0);
  }
}

TEST(FilterCommand, TellsWhyAFileCannotBeRead) {
  const TemporaryFolder folder;
  // Nothing is mapped at its beginning.
  const ToolRun run = runTool({"filter", "/proc/self/mem", folder / "out.png"});
  expectRunError(run, "/proc/self/mem: Input/output error");
  EXPECT_EQ(folder.names(), Words{});
}

TEST(FilterCommand, ReadsLongFilesPieceByPieceAsItReadsThemWhole) {
  constexpr std::uintmax_t piece = std::uintmax_t{1} << 16;
  const TemporaryFolder folder;
  const Image image = noisyImage(300);
  for (const ImageFormat format : {ImageFormat::Jpeg, ImageFormat::Png}) {
    const std::string file = encoded(image, format);
    ASSERT_GT(file.size(), 2 * piece);
    const std::string in = folder.write("in", file);
    ASSERT_EQ(runTool(swapCommand + Words{in, folder / "out.png"}).status, 0);
    expectSwapped(decoded(readFile(folder / "out.png")), decoded(file));
  }
}

TEST(FilterCommand, ReadsAndWritesJpeg) {
  const TemporaryFolder folder;
  const std::string in = folder.write("in.jpg", encoded(colourfulImage(false), ImageFormat::Jpeg));
  EXPECT_EQ(runTool(swapCommand + Words{in, folder / "out.png"}).status, 0);
  expectSwapped(decoded(readFile(folder / "out.png")), decoded(readFile(in)));

  EXPECT_EQ(runTool(swapCommand + Words{in, folder / "out.JPEG"}).status, 0);
  const std::string out = readFile(folder / "out.JPEG");
  EXPECT_EQ(out.substr(0, 2), "\xFF\xD8");
  const Image exact = decoded(readFile(folder / "out.png"));
  const Image lossy = decoded(out);
  double difference = 0;
  for (std::size_t i = 0; i < exact.pixels.size(); ++i) {
    difference += std::abs(exact.pixels[i] - lossy.pixels[i]);
  }
  EXPECT_LT(difference / static_cast<double>(exact.pixels.size()), 4.0);
}

TEST(FilterCommand, ReadsStandardInputAndWritesPngToStandardOutput) {
  const Image image = colourfulImage(true);
  const ToolRun run = runTool(swapCommand + Words{"-", "-"}, encoded(image, ImageFormat::Png));
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.error, "");
  expectSwapped(decoded(run.output), image);

  const ToolRun jpeg = runTool(swapCommand + Words{"-", "-", "--output-format", "jpeg"},
                               encoded(colourfulImage(false), ImageFormat::Png));
  EXPECT_EQ(jpeg.output.substr(0, 2), "\xFF\xD8");
}

TEST(FilterCommand, FiltersManyInputsIntoADirectoryItMakes) {
  const TemporaryFolder folder;
  const Image image = colourfulImage(false);
  const std::string a = folder.write("a.png", encoded(image, ImageFormat::Png));
  const std::string b = folder.write("b.png", encoded(image, ImageFormat::Png));
  const ToolRun run = runTool(swapCommand + Words{a, b, "--output-dir", folder / "x/y"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.error, "") << "no progress bar where standard error is no terminal";
  for (const std::string name : {"x/y/a.png", "x/y/b.png"}) {
    expectSwapped(decoded(readFile(folder / name)), image);
  }
}

TEST(FilterCommand, ShowsItsProgressOnATerminalAndClearsIt) {
  const TemporaryFolder folder;
  const std::string contents = encoded(colourfulImage(false), ImageFormat::Png);
  const Words inputs{folder.write("a.png", contents), folder.write("b.png", contents)};
  const ToolRun run = runToolOnTerminal(swapCommand + inputs +
                                        Words{"--jobs", "1", "--output-dir", folder / "out"});
  EXPECT_EQ(run.status, 0);
  const std::string empty(15, '.');
  const std::string half(15, '#');
  EXPECT_NE(run.error.find("[" + empty + empty + "] 0/2 a.png"), std::string::npos) << run.error;
  EXPECT_NE(run.error.find("[" + half + empty + "] 1/2 b.png"), std::string::npos) << run.error;
  const std::string clear = "\r\x1b[K";
  EXPECT_EQ(run.error.substr(run.error.size() - clear.size()), clear);

  const ToolRun single = runToolOnTerminal(swapCommand + Words{inputs[0], folder / "single.png"});
  EXPECT_EQ(single.status, 0);
  EXPECT_EQ(single.error, "") << "a single picture has no progress";
}

TEST(FilterCommand, FiltersTheOtherInputsWhenOneIsBad) {
  const TemporaryFolder folder;
  const Image image = colourfulImage(false);
  const std::string bad = folder.write("bad.png", "no picture");
  const std::string good = folder.write("good.png", encoded(image, ImageFormat::Png));
  const ToolRun run = runTool(swapCommand + Words{bad, good, "--output-dir", folder / "out"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.error, "tintora-cli: " + bad +
                           ": this is neither a PNG nor a JPEG file\n"
                           "tintora-cli: 1 of 2 images could not be filtered\n");
  expectSwapped(decoded(readFile(folder / "out/good.png")), image);
  EXPECT_FALSE(std::filesystem::exists(folder / "out/bad.png"));
}

TEST(FilterCommand, NeverOverwritesAnInputByWayOfTheDirectory) {
  const TemporaryFolder folder;
  const std::string contents = encoded(colourfulImage(false), ImageFormat::Png);
  const std::string in = folder.write("in.png", contents);
  const ToolRun run = runTool(swapCommand + Words{in, "--output-dir", folder.path});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(readFile(in), contents);
}

TEST(FilterCommand, ReplacesAFileThatIsNamedAsBothInputAndOutput) {
  const TemporaryFolder folder;
  const Image image = colourfulImage(false);
  const std::string in = folder.write("in.png", encoded(image, ImageFormat::Png));
  EXPECT_EQ(runTool(swapCommand + Words{in, in}).status, 0);
  expectSwapped(decoded(readFile(in)), image);
}

TEST(FilterCommand, RefusesBrokenImagesAndWritesNothing) {
  const std::string png = encoded(colourfulImage(true), ImageFormat::Png);
  const std::string jpeg = encoded(colourfulImage(false), ImageFormat::Jpeg);
  std::string huge = png;
  // Width and height are 2^30; the checksum behind them is wrong, too.
  huge.replace(16, 8, std::string("\x40\0\0\0\x40\0\0\0", 8));
  const struct {
    const char* description;
    std::string contents;
  } cases[] = {
      {"empty", ""},
      {"text", "hello"},
      {"truncated PNG", png.substr(0, png.size() / 2)},
      {"truncated JPEG", jpeg.substr(0, jpeg.size() / 2)},
      {"huge PNG", huge},
  };
  for (const auto& [description, contents] : cases) {
    SCOPED_TRACE(description);
    const TemporaryFolder folder;
    const std::string in = folder.write("in", contents);
    expectRunError(runTool(swapCommand + Words{in, folder / "out.png"}), "in: ");
    expectRunError(runTool(swapCommand + Words{"-", "-"}, contents), "");
    EXPECT_EQ(folder.names(), Words{"in"});
  }
}

TEST(FilterCommand, RefusesTransparencyInJpegAndLeavesTheOldOutput) {
  const TemporaryFolder folder;
  const std::string in = folder.write("in.png", encoded(colourfulImage(true), ImageFormat::Png));
  const std::string out = folder.write("out.jpg", "old");
  expectRunError(runTool(swapCommand + Words{in, out}), "out.jpg");
  EXPECT_EQ(readFile(out), "old");
}

TEST(FilterCommand, NamesTheFileThatCannotBeReadOrWritten) {
  const TemporaryFolder folder;
  const std::string in = folder.write("in.png", encoded(colourfulImage(false), ImageFormat::Png));
  expectRunError(runTool(swapCommand + Words{folder / "none.png", folder / "out.png"}), "none.png");
  expectRunError(runTool(swapCommand + Words{in, folder / "none/out.png"}), "none/out.png");
  EXPECT_EQ(folder.names(), Words{"in.png"});
}

TEST(FilterCommand, RefusesABadTransformBeforeItTouchesAnything) {
  const TemporaryFolder folder;
  const std::string in = folder.write("in.png", encoded(colourfulImage(false), ImageFormat::Png));
  const std::string custom = folder.write("c.txt", "broken\n1 0 0\n");
  expectRunError(runTool({"filter", "--mode", "custom", "--custom-file", custom, in, "--output-dir",
                          folder / "out"}),
                 "c.txt: line 2");
  EXPECT_EQ(folder.names(), (Words{"c.txt", "in.png"}));
}

}  // namespace
}  // namespace tintora
