// The C functions against the tool and the engine: the same matrices and the same bytes.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "cli/image_file.h"
#include "engine/colour_simulation.h"
#include "engine/picture_filter.h"
#include "library/tintora.h"
#include "tests/cli/tool_run.h"
#include "tests/expected/engine_records.h"
#include "tests/library/built_programs.h"

namespace tintora {
namespace {

using Matrix = std::array<float, 25>;
using Bytes = std::vector<std::uint8_t>;

// A transform of the library's, released at the end.
struct Transform {
  Transform() = default;
  Transform(const Transform&) = delete;
  Transform& operator=(const Transform&) = delete;
  ~Transform() { tintora_free(made); }
  tintora_transform* made = nullptr;
};

Matrix matrixOf(const Transform& transform) {
  Matrix matrix{};
  EXPECT_EQ(tintora_matrix(transform.made, matrix.data()), TINTORA_OK);
  return matrix;
}

// The matrix that the tool prints for these options.
Matrix toolsMatrix(std::vector<std::string> options) {
  options.insert(options.begin(), {"matrix", "--format", "json"});
  const ToolRun run = runTool(options);
  EXPECT_EQ(run.status, 0) << run.error;
  Matrix matrix{};
  std::size_t entry = 0;
  const auto printed = nlohmann::json::parse(run.output);
  for (const auto& row : printed["effect_matrix"]) {
    for (const auto& value : row) matrix.at(entry++) = value.get<float>();
  }
  return matrix;
}

const std::vector<std::string> visionNames{"normal", "protan", "deutan", "tritan"};
const std::vector<std::string> algorithmNames{"judd",       "yang",       "machado",
                                              "vienot1997", "vienot1999", "brettel1997"};
const std::vector<std::vector<std::string>> useOptions{{}, {"--daltonize"}, {"--inverse"}};

TEST(Library, GivesTheToolsMatricesOfSimulations) {
  for (int vision = TINTORA_NORMAL; vision <= TINTORA_TRITAN; ++vision) {
    for (int algorithm = TINTORA_JUDD_1948; algorithm < TINTORA_BRETTEL_1997; ++algorithm) {
      for (int use = TINTORA_SIMULATE; use <= TINTORA_INVERT; ++use) {
        std::vector<std::string> options{
            "--mode",      visionNames[static_cast<std::size_t>(vision)],      "--severity", "37",
            "--algorithm", algorithmNames[static_cast<std::size_t>(algorithm)]};
        const auto& more = useOptions[static_cast<std::size_t>(use)];
        options.insert(options.end(), more.begin(), more.end());
        Transform transform;
        ASSERT_EQ(
            tintora_simulation(vision, 0.37, algorithm, use, TINTORA_ENCODED, &transform.made),
            TINTORA_OK);
        EXPECT_EQ(matrixOf(transform), toolsMatrix(options)) << testing::PrintToString(options);
      }
    }
  }
}

TEST(Library, GivesTheToolsMatricesOfEffects) {
  const struct {
    int effect;
    double amount;
    std::vector<std::string> options;
  } cases[] = {
      {TINTORA_GREYSCALE, 1.0, {"--mode", "greyscale"}},
      {TINTORA_INVERT_CHANNELS, 1.0, {"--mode", "invert"}},
      {TINTORA_BRIGHTNESS, -0.3, {"--mode", "brightness", "--brightness", "-30"}},
      {TINTORA_CONTRAST, 0.3, {"--mode", "contrast", "--contrast", "30"}},
      {TINTORA_SATURATION, 0.3, {"--mode", "saturation", "--saturation", "30"}},
      {TINTORA_NO_BLUE_LIGHT, 0.3, {"--mode", "circadian", "--severity", "30"}},
      {TINTORA_SWAP_RED_BLUE, 0.3, {"--mode", "swap", "--severity", "30"}},
      {TINTORA_SWAP_RED_GREEN, 1.0, {"--mode", "swap", "--swap", "red-green"}},
      {TINTORA_SWAP_GREEN_BLUE, 1.0, {"--mode", "swap", "--swap", "green-blue"}},
      {TINTORA_PASS_RED, 0.3, {"--mode", "filter", "--filter-colour", "red", "--severity", "30"}},
      {TINTORA_PASS_GREEN, 1.0, {"--mode", "filter", "--filter-colour", "green"}},
      {TINTORA_PASS_BLUE, 1.0, {"--mode", "filter", "--filter-colour", "blue"}},
      {TINTORA_PASS_YELLOW, 1.0, {"--mode", "filter", "--filter-colour", "yellow"}},
      {TINTORA_PASS_MAGENTA, 1.0, {"--mode", "filter", "--filter-colour", "magenta"}},
      {TINTORA_PASS_CYAN, 1.0, {"--mode", "filter", "--filter-colour", "cyan"}},
  };
  for (const auto& [effect, amount, options] : cases) {
    Transform transform;
    ASSERT_EQ(tintora_colour_effect(effect, amount, TINTORA_ENCODED, &transform.made), TINTORA_OK);
    EXPECT_EQ(matrixOf(transform), toolsMatrix(options)) << testing::PrintToString(options);
  }
}

// Wider than one strip of the pixels that are filtered at a time.
constexpr std::uint32_t width = 1100;
constexpr std::uint32_t height = 7;

cli::Image randomPicture() {
  std::mt19937 random(20);
  cli::Image image;
  image.width = width;
  image.height = height;
  image.pixels.resize(std::size_t{4} * width * height);
  for (std::uint8_t& sample : image.pixels) sample = static_cast<std::uint8_t>(random());
  for (std::size_t alpha = 3; alpha < image.pixels.size(); alpha += 4) image.pixels[alpha] = 255;
  return image;
}

// What the tool makes of the picture, B G R A.
Bytes toolsPicture(const cli::Image& image, std::vector<std::string> options) {
  const TemporaryFolder folder;
  const Bytes png = cli::encodeImage(image, cli::ImageFormat::Png);
  const std::string input = folder.write("in.png", std::string(png.begin(), png.end()));
  const std::string output = (folder / "out.png").string();
  options.insert(options.begin(), "filter");
  options.insert(options.end(), {input, output});
  const ToolRun run = runTool(options);
  EXPECT_EQ(run.status, 0) << run.error;
  const std::string filtered = readFile(output);
  return cli::decodeImage(Bytes(filtered.begin(), filtered.end())).pixels;
}

// Pixels of B, G, R, A with their channels in another order.
Bytes reordered(const Bytes& bgra, const std::vector<std::size_t>& order) {
  Bytes pixels;
  for (std::size_t pixel = 0; pixel < bgra.size(); pixel += 4) {
    for (const std::size_t channel : order) pixels.push_back(bgra[pixel + channel]);
  }
  return pixels;
}

Bytes filtered(const Transform& transform, int layout, const Bytes& source) {
  Bytes destination(source.size());
  const auto stride = static_cast<std::ptrdiff_t>(source.size() / height);
  EXPECT_EQ(tintora_filter_rows(transform.made, layout, source.data(), stride, destination.data(),
                                stride, width, height),
            TINTORA_OK);
  return destination;
}

const std::vector<std::pair<int, std::vector<std::size_t>>> layouts{
    {TINTORA_BGRA8, {0, 1, 2, 3}}, {TINTORA_RGBA8, {2, 1, 0, 3}}, {TINTORA_RGB8, {2, 1, 0}}};

TEST(Library, FiltersPicturesToTheToolsBytesInEveryLayout) {
  const struct {
    int algorithm, light;
    std::vector<std::string> options;
  } cases[] = {
      {TINTORA_JUDD_1948, TINTORA_ENCODED, {}},
      {TINTORA_MACHADO_2009, TINTORA_LINEAR, {"--algorithm", "machado", "--light", "linear"}},
      {TINTORA_BRETTEL_1997, TINTORA_LINEAR, {"--algorithm", "brettel1997"}},
  };
  const cli::Image image = randomPicture();
  for (const auto& [algorithm, light, options] : cases) {
    Transform transform;
    ASSERT_EQ(tintora_simulation(TINTORA_DEUTAN, 1.0, algorithm, TINTORA_SIMULATE, light,
                                 &transform.made),
              TINTORA_OK);
    const Bytes expected = toolsPicture(image, options);
    for (const auto& [layout, order] : layouts) {
      EXPECT_EQ(filtered(transform, layout, reordered(image.pixels, order)),
                reordered(expected, order))
          << "algorithm " << algorithm << ", layout " << layout;
    }
  }
}

TEST(Library, FiltersSixteenBitsLikeTheEngine) {
  std::mt19937 random(21);
  std::vector<std::uint16_t> samples(std::size_t{4} * width * height);
  for (std::uint16_t& sample : samples) sample = static_cast<std::uint16_t>(random());
  Transform transform;
  ASSERT_EQ(tintora_simulation(TINTORA_PROTAN, 0.6, TINTORA_BRETTEL_1997, TINTORA_SIMULATE,
                               TINTORA_LINEAR, &transform.made),
            TINTORA_OK);
  const ColourTransform same =
      makeSimulation({CvdType::Protan, 0.6, SimulationAlgorithm::Brettel1997, Light::Linear});
  std::vector<std::uint16_t> expected = samples;
  filterPicture(makePictureFilter(same, SampleDepth::Bits16), expected.data(),
                std::size_t{width} * height);
  constexpr std::ptrdiff_t stride = 8 * width;
  ASSERT_EQ(tintora_filter_rows(transform.made, TINTORA_RGBA16, samples.data(), stride,
                                samples.data(), stride, width, height),
            TINTORA_OK);
  EXPECT_EQ(samples, expected);
}

// Rows that stand upside down and apart, in place: nothing between them is touched.
TEST(Library, KeepsToTheRowsItIsGiven) {
  constexpr std::ptrdiff_t stride = 40;
  constexpr std::size_t rows = 5;
  constexpr std::size_t rowPixels = 9;
  for (const auto& [layout, order] : layouts) {
    const std::size_t rowBytes = rowPixels * order.size();
    Bytes pixels(rows * stride, 200);
    Transform transform;
    ASSERT_EQ(tintora_colour_effect(TINTORA_INVERT_CHANNELS, 1.0, TINTORA_ENCODED, &transform.made),
              TINTORA_OK);
    std::uint8_t* const lastRow = pixels.data() + (rows - 1) * stride;
    ASSERT_EQ(tintora_filter_rows(transform.made, layout, lastRow, -stride, lastRow, -stride,
                                  rowPixels, rows),
              TINTORA_OK);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
      const std::size_t column = i % stride;
      const bool isAlpha = order.size() == 4 && column % 4 == 3;
      const int expected = column < rowBytes && !isAlpha ? 55 : 200;
      ASSERT_EQ(pixels[i], expected) << "layout " << layout << ", byte " << i;
    }
  }
}

TEST(Library, TakesItsOwnMatrixBack) {
  Transform made;
  ASSERT_EQ(tintora_simulation(TINTORA_TRITAN, 0.8, TINTORA_YANG_2008, TINTORA_DALTONIZE,
                               TINTORA_LINEAR, &made.made),
            TINTORA_OK);
  Matrix matrix = matrixOf(made);
  Transform taken;
  ASSERT_EQ(tintora_from_matrix(matrix.data(), TINTORA_LINEAR, &taken.made), TINTORA_OK);
  EXPECT_EQ(matrixOf(taken), matrix);
  const Bytes pixels = randomPicture().pixels;
  EXPECT_EQ(filtered(taken, TINTORA_BGRA8, pixels), filtered(made, TINTORA_BGRA8, pixels));
}

TEST(Library, LeavesTheProcessWideRecordsAsTheyAre) {
  const EngineRecords before;
  transformSettings.severity = 0.123;
  effectMatrix[0][0] = 0.5F;
  modelContext.modelSeverity = 0.456;
  modelContext.simulationMatrix[4] = 0.789;
  transformDisplay.showTitle = [](std::string_view /*title*/) { ADD_FAILURE() << "a title"; };
  const EngineRecords changed;
  for (int algorithm = TINTORA_JUDD_1948; algorithm <= TINTORA_BRETTEL_1997; ++algorithm) {
    Transform transform;
    ASSERT_EQ(tintora_simulation(TINTORA_DEUTAN, 0.5, algorithm, TINTORA_INVERT, TINTORA_LINEAR,
                                 &transform.made),
              TINTORA_OK);
    filtered(transform, TINTORA_BGRA8, randomPicture().pixels);
  }
  EXPECT_EQ(transformSettings.severity, 0.123);
  EXPECT_EQ(transformSettings.Option, changed.settings.Option);
  EXPECT_EQ(effectMatrix, changed.effect);
  EXPECT_EQ(std::memcmp(&modelContext, &changed.model, sizeof(ModelContext)), 0);
  restore(before);
}

TEST(Library, WorksOnSeveralThreadsAtOnce) {
  const Bytes pixels = randomPicture().pixels;
  std::vector<Bytes> results(8);
  Transform shared;
  ASSERT_EQ(tintora_simulation(TINTORA_DEUTAN, 0.7, TINTORA_YANG_2008, TINTORA_SIMULATE,
                               TINTORA_LINEAR, &shared.made),
            TINTORA_OK);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < results.size(); ++i) {
    threads.emplace_back([&, i] {
      Transform own;
      EXPECT_EQ(tintora_simulation(TINTORA_DEUTAN, 0.7, TINTORA_YANG_2008, TINTORA_SIMULATE,
                                   TINTORA_LINEAR, &own.made),
                TINTORA_OK);
      results[i] = filtered(i % 2 == 0 ? own : shared, TINTORA_RGBA8, pixels);
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const Bytes& result : results) EXPECT_EQ(result, results.front());
}

TEST(Library, ServesAProgramInC) {
  EXPECT_EQ(std::system(headerTestCommand), 0);
}

TEST(Library, ItsExampleShowsAPictureLikeTheTool) {
  const cli::Image image = randomPicture();
  const TemporaryFolder folder;
  const std::vector<std::size_t> rgb{2, 1, 0};
  const Bytes samples = reordered(image.pixels, rgb);
  const std::string header =
      "P6 " + std::to_string(width) + ' ' + std::to_string(height) + " 255\n";
  const std::string input =
      folder.write("in.ppm", header + std::string(samples.begin(), samples.end()));
  const std::string output = (folder / "out.ppm").string();
  ASSERT_EQ(std::system((std::string(examplePath) + " <" + input + " >" + output).c_str()), 0);
  const Bytes expected = reordered(toolsPicture(image, {"--algorithm", "brettel1997"}), rgb);
  EXPECT_TRUE(readFile(output) == header + std::string(expected.begin(), expected.end()));
}

}  // namespace
}  // namespace tintora
