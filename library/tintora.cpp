#include "library/tintora.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <mutex>
#include <new>
#include <optional>

#include "engine/colour_simulation.h"
#include "engine/cvd_transforms.h"
#include "engine/picture_filter.h"

// Everything here works on its arguments and on values of its own. The engine's process-wide
// records are never read or written.

using namespace tintora;

struct tintora_transform {
  explicit tintora_transform(const ColourTransform& made)
      : transform(made), bits8(makePictureFilter(made, SampleDepth::Bits8)) {}

  ColourTransform transform;
  std::optional<EffectMatrix> matrix;
  PictureFilter bits8;
  mutable std::once_flag bits16Made;
  mutable PictureFilter bits16;
};

namespace {

// The channels of 8 bits within a pixel; the strip that is filtered holds B, G, R, A.
struct PixelLayout {
  std::size_t bytes;
  std::size_t red, green, blue;
};
constexpr PixelLayout rgba8{4, 0, 1, 2};
constexpr PixelLayout rgb8{3, 0, 1, 2};

constexpr std::array<double, 3> red{1.0, 0.0, 0.0};
constexpr std::array<double, 3> green{0.0, 1.0, 0.0};
constexpr std::array<double, 3> blue{0.0, 0.0, 1.0};
constexpr std::array<double, 3> yellow{1.0, 1.0, 0.0};
constexpr std::array<double, 3> magenta{1.0, 0.0, 1.0};
constexpr std::array<double, 3> cyan{0.0, 1.0, 1.0};

template <const std::array<double, 3>& Passed>
ColourEffect pass(double strength) {
  return filterEffect(Passed, strength);
}
template <ColourSwap Swap>
ColourEffect swap(double strength) {
  return swapEffect(Swap, strength);
}

struct EffectEntry {
  double least, most;
  ColourEffect (*make)(double amount);
};
// By tintora_effect.
constexpr std::array<EffectEntry, 15> effects{{
    {1.0, 1.0, [](double) { return greyscaleEffect(); }},
    {1.0, 1.0, [](double) { return invertEffect(); }},
    {-1.0, 1.0, &brightnessEffect},
    {0.0, 1.0, &contrastEffect},
    {0.0, 1.0, &saturationEffect},
    {0.0, 1.0, &circadianEffect},
    {0.0, 1.0, &swap<ColourSwap::RedBlue>},
    {0.0, 1.0, &swap<ColourSwap::RedGreen>},
    {0.0, 1.0, &swap<ColourSwap::GreenBlue>},
    {0.0, 1.0, &pass<red>},
    {0.0, 1.0, &pass<green>},
    {0.0, 1.0, &pass<blue>},
    {0.0, 1.0, &pass<yellow>},
    {0.0, 1.0, &pass<magenta>},
    {0.0, 1.0, &pass<cyan>},
}};

bool isAmong(int value, int last) {
  return value >= 0 && value <= last;
}

// Returns true if the value is within the bounds. NaN counts as outside.
bool isWithin(double value, double least, double most) {
  return value >= least && value <= most;
}

Light lightOf(int light) {
  return light == TINTORA_LINEAR ? Light::Linear : Light::Encoded;
}

SimulationUse useOf(int use) {
  constexpr std::array<SimulationUse, 3> uses{SimulationUse::Simulate, SimulationUse::Daltonize,
                                              SimulationUse::Invert};
  return uses[static_cast<std::size_t>(use)];
}

ColourSimulation simulationOf(int vision, double severity, int algorithm, int light) {
  const bool isNormal = vision == TINTORA_NORMAL;
  return {isNormal ? CvdType::Protan : static_cast<CvdType>(vision),
          isNormal ? severity / normalVariationDivisor : severity,
          static_cast<SimulationAlgorithm>(algorithm), lightOf(light)};
}

bool isInvertible(const ColourSimulation& simulation) {
  if (simulation.algorithm == SimulationAlgorithm::Brettel1997) return simulation.severity < 1.0;
  return invert3x3(simulationMatrix(simulation.type, simulation.severity, simulation.algorithm))
      .succeeded;
}

std::unique_ptr<tintora_transform> fromMatrix(const EffectMatrix& matrix, int light) {
  auto made = std::make_unique<tintora_transform>(makeColourTransform(matrix, lightOf(light)));
  made->matrix = matrix;
  return made;
}

// Runs `make` and hands over what it returns. No exception leaves the library.
template <typename Make>
int handOver(tintora_transform** transform, Make make) {
  try {
    *transform = make().release();
    return TINTORA_OK;
  } catch (const std::bad_alloc&) {
    return TINTORA_OUT_OF_MEMORY;
  }
}

const PictureFilter& wideFilter(const tintora_transform& transform) {
  std::call_once(transform.bits16Made, [&transform] {
    transform.bits16 = makePictureFilter(transform.transform, SampleDepth::Bits16);
  });
  return transform.bits16;
}

// Filters a row of 8-bit pixels strip by strip.
void filterRow(const PictureFilter& filter, const PixelLayout& layout, const std::uint8_t* source,
               std::uint8_t* destination, std::size_t width) {
  constexpr std::size_t stripPixels = 1024;
  constexpr std::size_t stripPixelBytes = 4;
  std::array<std::uint8_t, stripPixels * stripPixelBytes> strip{};
  const std::uint8_t* const end = source + width * layout.bytes;
  while (source != end) {
    const auto left = static_cast<std::size_t>(end - source) / layout.bytes;
    const std::size_t pixels = left < stripPixels ? left : stripPixels;
    for (std::size_t i = 0; i < pixels; ++i) {
      const std::uint8_t* const from = source + i * layout.bytes;
      std::uint8_t* const bgra = &strip[i * stripPixelBytes];
      bgra[0] = from[layout.blue];
      bgra[1] = from[layout.green];
      bgra[2] = from[layout.red];
    }
    filterPicture(filter, strip.data(), pixels);
    for (std::size_t i = 0; i < pixels; ++i) {
      const std::uint8_t* const bgra = &strip[i * stripPixelBytes];
      std::uint8_t* const to = destination + i * layout.bytes;
      if (layout.bytes == 4) to[3] = source[i * layout.bytes + 3];
      to[layout.blue] = bgra[0];
      to[layout.green] = bgra[1];
      to[layout.red] = bgra[2];
    }
    source += pixels * layout.bytes;
    destination += pixels * layout.bytes;
  }
}

void filterRow(const tintora_transform& transform, int layout, const std::uint8_t* source,
               std::uint8_t* destination, std::size_t width, std::size_t rowBytes) {
  if (layout == TINTORA_RGBA8 || layout == TINTORA_RGB8) {
    filterRow(transform.bits8, layout == TINTORA_RGBA8 ? rgba8 : rgb8, source, destination, width);
    return;
  }
  if (source != destination) std::memcpy(destination, source, rowBytes);
  if (layout == TINTORA_BGRA8) {
    filterPicture(transform.bits8, destination, width);
  } else {
    filterPicture(wideFilter(transform), reinterpret_cast<std::uint16_t*>(destination), width);
  }
}

bool isEven(const void* address, std::ptrdiff_t stride) {
  return reinterpret_cast<std::uintptr_t>(address) % 2 == 0 && stride % 2 == 0;
}

bool isRow(std::ptrdiff_t stride, std::size_t rowBytes, std::size_t height) {
  if (height < 2) return true;
  const auto bytes = static_cast<std::ptrdiff_t>(rowBytes);
  return stride >= bytes || stride <= -bytes;
}

}  // namespace

int tintora_simulation(int vision, double severity, int algorithm, int use, int light,
                       tintora_transform** transform) {
  if (transform == nullptr) return TINTORA_BAD_ARGUMENT;
  *transform = nullptr;
  if (!isAmong(vision, TINTORA_TRITAN) || !isWithin(severity, 0.0, 1.0) ||
      !isAmong(algorithm, TINTORA_BRETTEL_1997) || !isAmong(use, TINTORA_INVERT) ||
      !isAmong(light, TINTORA_LINEAR)) {
    return TINTORA_BAD_ARGUMENT;
  }
  const bool isOnHalfPlanes = algorithm == TINTORA_BRETTEL_1997;
  if (isOnHalfPlanes && light != TINTORA_LINEAR) return TINTORA_BAD_ARGUMENT;
  const ColourSimulation simulation = simulationOf(vision, severity, algorithm, light);
  if (use == TINTORA_INVERT && !isInvertible(simulation)) return TINTORA_NO_INVERSE;
  return handOver(transform, [&] {
    const ColourTransform made = makeSimulation(simulation, useOf(use));
    return isOnHalfPlanes ? std::make_unique<tintora_transform>(made)
                          : fromMatrix(makeEffectMatrix(made.effects[0]), light);
  });
}

int tintora_colour_effect(int effect, double amount, int light, tintora_transform** transform) {
  if (transform == nullptr) return TINTORA_BAD_ARGUMENT;
  *transform = nullptr;
  if (!isAmong(effect, TINTORA_PASS_CYAN) || !isAmong(light, TINTORA_LINEAR)) {
    return TINTORA_BAD_ARGUMENT;
  }
  const EffectEntry& entry = effects[static_cast<std::size_t>(effect)];
  if (!isWithin(amount, entry.least, entry.most)) return TINTORA_BAD_ARGUMENT;
  return handOver(transform,
                  [&] { return fromMatrix(makeEffectMatrix(entry.make(amount)), light); });
}

int tintora_from_matrix(const float matrix[25], int light, tintora_transform** transform) {
  if (transform == nullptr) return TINTORA_BAD_ARGUMENT;
  *transform = nullptr;
  if (matrix == nullptr || !isAmong(light, TINTORA_LINEAR)) return TINTORA_BAD_ARGUMENT;
  EffectMatrix copy = identityEffectMatrix;
  for (const std::size_t row : std::array<std::size_t, 4>{0, 1, 2, 4}) {
    for (std::size_t column = 0; column < 3; ++column) {
      copy[row][column] = matrix[row * copy.size() + column];
      if (!std::isfinite(copy[row][column])) return TINTORA_BAD_ARGUMENT;
    }
  }
  return handOver(transform, [&] { return fromMatrix(copy, light); });
}

void tintora_free(tintora_transform* transform) {
  delete transform;
}

int tintora_matrix(const tintora_transform* transform, float matrix[25]) {
  if (transform == nullptr || matrix == nullptr) return TINTORA_BAD_ARGUMENT;
  if (!transform->matrix) return TINTORA_NO_MATRIX;
  std::memcpy(matrix, transform->matrix->data(), sizeof(EffectMatrix));
  return TINTORA_OK;
}

int tintora_filter_rows(const tintora_transform* transform, int layout, const void* source,
                        ptrdiff_t source_stride, void* destination, ptrdiff_t destination_stride,
                        size_t width, size_t height) {
  // By tintora_layout.
  constexpr std::array<std::size_t, 4> pixelBytes{4, 4, 3, 8};
  constexpr std::size_t widest = std::numeric_limits<std::ptrdiff_t>::max() / 8;
  if (transform == nullptr || !isAmong(layout, TINTORA_RGBA16) || width > widest) {
    return TINTORA_BAD_ARGUMENT;
  }
  if (width == 0 || height == 0) return TINTORA_OK;
  const std::size_t rowBytes = width * pixelBytes[static_cast<std::size_t>(layout)];
  const bool isAligned = layout != TINTORA_RGBA16 ||
                         (isEven(source, source_stride) && isEven(destination, destination_stride));
  if (source == nullptr || destination == nullptr || !isRow(source_stride, rowBytes, height) ||
      !isRow(destination_stride, rowBytes, height) || !isAligned) {
    return TINTORA_BAD_ARGUMENT;
  }
  try {
    if (layout == TINTORA_RGBA16) wideFilter(*transform);
  } catch (const std::bad_alloc&) {
    return TINTORA_OUT_OF_MEMORY;
  }
  const auto* from = static_cast<const std::uint8_t*>(source);
  auto* to = static_cast<std::uint8_t*>(destination);
  for (std::size_t row = 0; row < height; ++row) {
    filterRow(*transform, layout, from, to, width, rowBytes);
    if (row + 1 == height) break;
    from += source_stride;
    to += destination_stride;
  }
  return TINTORA_OK;
}

const char* tintora_message(int status) {
  constexpr std::array<const char*, 5> messages{"done", "an argument is out of range",
                                                "the transform is no single matrix",
                                                "the simulation has no inverse", "out of memory"};
  const bool isKnown = isAmong(status, TINTORA_OUT_OF_MEMORY);
  return isKnown ? messages[static_cast<std::size_t>(status)] : "unknown status";
}

const char* tintora_version(void) {
  return TINTORA_VERSION;
}
