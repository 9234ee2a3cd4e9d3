#include "cli/filtered_rows.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <optional>
#include <utility>

#include "cli/icc_conversion.h"

namespace tintora::cli {

namespace {

using FilterRow = std::function<void(const std::uint8_t*, std::uint8_t*)>;
using Conversion = std::shared_ptr<const SrgbConversion>;

std::uint8_t narrowed(std::uint16_t sample) {
  return static_cast<std::uint8_t>((sample * 255U + 32767U) / 65535U);
}

void narrowRow(const std::uint16_t* rgba, std::uint8_t* bgra, std::size_t pixels) {
  for (std::size_t i = 0; i < pixels * rgbaChannels; i += rgbaChannels) {
    bgra[i] = narrowed(rgba[i + 2]);
    bgra[i + 1] = narrowed(rgba[i + 1]);
    bgra[i + 2] = narrowed(rgba[i]);
    bgra[i + 3] = narrowed(rgba[i + 3]);
  }
}

// What is done to colours; nothing at all without filters.
struct ColourStep {
  const FilterSet* filters = nullptr;
  Conversion conversion;
};

void applyTo(const ColourStep& step, std::uint16_t* rgba, std::size_t pixels) {
  if (step.conversion) convertToSrgb(*step.conversion, rgba, rgba, pixels);
  if (step.filters != nullptr) filterPicture(step.filters->wide(), rgba, pixels);
}

void applyTo(const ColourStep& step, std::uint8_t* bgra, std::size_t pixels) {
  const ChannelLights* const lights = step.conversion ? channelLights(*step.conversion) : nullptr;
  if (lights != nullptr) {
    filterPicture(step.filters->bits8, *lights, bgra, pixels);
  } else if (step.conversion) {
    std::vector<std::uint16_t> rgba(pixels * rgbaChannels);
    convertToSrgb(*step.conversion, bgra, rgba.data(), pixels);
    filterPicture(step.filters->wide(), rgba.data(), pixels);
    narrowRow(rgba.data(), bgra, pixels);
  } else if (step.filters != nullptr) {
    filterPicture(step.filters->bits8, bgra, pixels);
  }
}

std::vector<PaletteEntry> applied(const ColourStep& step,
                                  const std::vector<PaletteEntry>& palette) {
  std::vector<std::uint8_t> pixels;
  for (const PaletteEntry& entry : palette) {
    pixels.insert(pixels.end(), {entry.blue, entry.green, entry.red, entry.alpha});
  }
  applyTo(step, pixels.data(), palette.size());
  std::vector<PaletteEntry> result;
  for (std::size_t i = 0; i < pixels.size(); i += rgbaChannels) {
    result.push_back({pixels[i + 2], pixels[i + 1], pixels[i], pixels[i + 3]});
  }
  return result;
}

bool isGrey(const PaletteEntry& entry) {
  return entry.red == entry.green && entry.green == entry.blue;
}

bool isOpaqueEntry(const PaletteEntry& entry) {
  return entry.alpha == 255;
}

// ---- Indexed rows

// Returns the place of each entry among the greys of the depth, or nothing if an entry is none of
// them.
std::optional<std::vector<std::uint8_t>> placesAmongGreys(const std::vector<PaletteEntry>& palette,
                                                          int bits) {
  const std::vector<PaletteEntry> greys = greyPalette(bits);
  std::vector<std::uint8_t> places;
  for (const PaletteEntry& entry : palette) {
    const auto place = std::ranges::find(greys, entry);
    if (place == greys.end()) return std::nullopt;
    places.push_back(static_cast<std::uint8_t>(place - greys.begin()));
  }
  return places;
}

// Returns what each byte of packed indices becomes when every index moves to its new place.
std::array<std::uint8_t, 256> movedBytes(const std::vector<std::uint8_t>& places, int bits) {
  std::array<std::uint8_t, 256> moved{};
  for (unsigned value = 0; value < moved.size(); ++value) {
    const auto byte = static_cast<std::uint8_t>(value);
    unsigned result = 0;
    for (std::size_t x = 0; x < 8U / static_cast<unsigned>(bits); ++x) {
      result = result << bits | places[indexAt(&byte, x, bits)];
    }
    moved[value] = static_cast<std::uint8_t>(result);
  }
  return moved;
}

FilterRow lookUpColours(std::vector<PaletteEntry> palette, int bits, std::size_t width) {
  palette.resize(std::size_t{1} << bits);
  return [=](const std::uint8_t* row, std::uint8_t* bgra) {
    for (std::size_t x = 0; x < width; ++x) {
      const PaletteEntry& entry = palette[indexAt(row, x, bits)];
      const std::array<std::uint8_t, 4> pixel{entry.blue, entry.green, entry.red, entry.alpha};
      std::memcpy(bgra + x * rgbaChannels, pixel.data(), rgbaChannels);
    }
  };
}

FilterRow lookUpGreys(const std::vector<PaletteEntry>& palette, int bits, std::size_t width) {
  return [=](const std::uint8_t* row, std::uint8_t* grey) {
    for (std::size_t x = 0; x < width; ++x) grey[x] = palette[indexAt(row, x, bits)].red;
  };
}

RowFilter planIndexed(const RowsHeader& header, const ColourStep& step, bool keepsPalette,
                      bool keepsGrey) {
  RowFilter plan{header, {}};
  RowsHeader& out = plan.header;
  out.palette = applied(step, header.palette);
  const bool opaque = std::ranges::all_of(out.palette, isOpaqueEntry);
  const bool grey = header.isGrey && opaque && std::ranges::all_of(out.palette, isGrey);
  const std::size_t bytes = rowBytes(header);
  if (grey && keepsPalette) {
    if (const auto places = placesAmongGreys(out.palette, header.indexBits)) {
      plan.filterRow = [moved = movedBytes(*places, header.indexBits), bytes](
                           const std::uint8_t* row, std::uint8_t* filtered) {
        std::transform(row, row + bytes, filtered, [&](std::uint8_t byte) { return moved[byte]; });
      };
      out.palette = greyPalette(header.indexBits);
      return plan;
    }
  }
  if (grey && keepsGrey) {
    plan.filterRow = lookUpGreys(out.palette, header.indexBits, header.width);
    out.indexBits = 8;
    out.palette = greyPalette(out.indexBits);
    return plan;
  }
  out.isGrey = false;
  if (keepsPalette) {
    plan.filterRow = [bytes](const std::uint8_t* row, std::uint8_t* filtered) {
      std::copy_n(row, bytes, filtered);
    };
    return plan;
  }
  plan.filterRow = lookUpColours(out.palette, header.indexBits, header.width);
  out.layout = PixelLayout::Bgra8;
  return plan;
}

// ---- Greys that are no indices

// Returns all greys of the samples' depth, filtered by the step.
template <typename Sample>
std::vector<Sample> filteredGreys(const ColourStep& step) {
  constexpr std::size_t count = std::size_t{1} << (8 * sizeof(Sample));
  std::vector<Sample> pixels;
  for (std::size_t grey = 0; grey < count; ++grey) {
    pixels.insert(pixels.end(), 3, static_cast<Sample>(grey));
    pixels.push_back(static_cast<Sample>(count - 1));
  }
  applyTo(step, pixels.data(), count);
  return pixels;
}

template <typename Sample>
bool areGreys(const std::vector<Sample>& pixels) {
  for (std::size_t i = 0; i < pixels.size(); i += rgbaChannels) {
    if (pixels[i] != pixels[i + 1] || pixels[i] != pixels[i + 2]) return false;
  }
  return true;
}

template <typename Sample>
Sample sampleAt(const std::uint8_t* row, std::size_t i) {
  Sample sample;
  std::memcpy(&sample, row + i * sizeof(Sample), sizeof(Sample));
  return sample;
}

template <typename Sample>
void putSample(std::uint8_t* row, std::size_t i, Sample sample) {
  std::memcpy(row + i * sizeof(Sample), &sample, sizeof(Sample));
}

// Returns a filter from greys, with alpha or without, to greys or to colours of the same depth.
template <typename Sample>
FilterRow lookUp(std::vector<Sample> pixels, bool hasAlpha, bool toGrey, std::size_t width) {
  constexpr auto opaque = static_cast<Sample>(~Sample{0});
  return [=, pixels = std::move(pixels)](const std::uint8_t* row, std::uint8_t* filtered) {
    const std::size_t in = hasAlpha ? 2 : 1;
    for (std::size_t x = 0; x < width; ++x) {
      const Sample* const pixel = &pixels[rgbaChannels * sampleAt<Sample>(row, x * in)];
      const Sample alpha = hasAlpha ? sampleAt<Sample>(row, x * in + 1) : opaque;
      if (toGrey) {
        putSample(filtered, x * in, pixel[0]);
        if (hasAlpha) putSample(filtered, x * in + 1, alpha);
      } else {
        for (std::size_t k = 0; k < 3; ++k) putSample(filtered, x * rgbaChannels + k, pixel[k]);
        putSample(filtered, x * rgbaChannels + 3, alpha);
      }
    }
  };
}

// Returns a filter that rounds to 8 bits what another one gives with 16.
FilterRow narrowing(FilterRow wide, std::size_t width) {
  return [=, wide = std::move(wide)](const std::uint8_t* row, std::uint8_t* filtered) {
    std::vector<std::uint16_t> rgba(width * rgbaChannels);
    wide(row, reinterpret_cast<std::uint8_t*>(rgba.data()));
    narrowRow(rgba.data(), filtered, width);
  };
}

RowFilter planGreys(const RowsHeader& header, const ColourStep& step, bool keepsLayout) {
  RowFilter plan{header, {}};
  const bool wide = header.layout != PixelLayout::GreyAlpha8;
  const bool hasAlpha = header.layout != PixelLayout::Grey16;
  bool toGrey = false;
  if (wide) {
    std::vector<std::uint16_t> greys = filteredGreys<std::uint16_t>(step);
    toGrey = keepsLayout && areGreys(greys);
    plan.filterRow = lookUp(std::move(greys), hasAlpha, toGrey, header.width);
  } else {
    std::vector<std::uint8_t> greys = filteredGreys<std::uint8_t>(step);
    toGrey = keepsLayout && areGreys(greys);
    plan.filterRow = lookUp(std::move(greys), hasAlpha, toGrey, header.width);
  }
  if (toGrey) return plan;
  plan.header.layout = wide && keepsLayout ? PixelLayout::Rgba16 : PixelLayout::Bgra8;
  if (wide && !keepsLayout) plan.filterRow = narrowing(std::move(plan.filterRow), header.width);
  return plan;
}

// ---- Colours

RowFilter planColours(const RowsHeader& header, const ColourStep& step, bool keepsLayout) {
  RowFilter plan{header, {}};
  const std::size_t width = header.width;
  if (header.layout == PixelLayout::Bgra8) {
    plan.filterRow = [=](const std::uint8_t* row, std::uint8_t* filtered) {
      std::copy_n(row, width * rgbaChannels, filtered);
      applyTo(step, filtered, width);
    };
    return plan;
  }
  plan.filterRow = [=](const std::uint8_t* row, std::uint8_t* filtered) {
    std::copy_n(row, width * rgbaChannels * 2, filtered);
    applyTo(step, reinterpret_cast<std::uint16_t*>(filtered), width);
  };
  if (!keepsLayout) {
    plan.filterRow = narrowing(std::move(plan.filterRow), width);
    plan.header.layout = PixelLayout::Bgra8;
  }
  return plan;
}

// Tells which properties of a layout the filtered picture may keep.
struct Keeping {
  bool palette;  // indices, and greys of fewer bits
  bool grey8;    // greys of 8 bits
  bool other;    // greys with alpha, 16 bits
};

RowFilter planRows(const RowsHeader& header, const ColourStep& step, const Keeping& keeping) {
  switch (header.layout) {
    case PixelLayout::Indexed:
      return planIndexed(header, step, keeping.palette, keeping.grey8);
    case PixelLayout::GreyAlpha8:
    case PixelLayout::Grey16:
    case PixelLayout::GreyAlpha16:
      return planGreys(header, step, keeping.other);
    case PixelLayout::Bgra8:
    case PixelLayout::Rgba16:
      break;
  }
  return planColours(header, step, keeping.other);
}

bool holdsGreys(const RowsHeader& header) {
  switch (header.layout) {
    case PixelLayout::Indexed:
      return header.isGrey;
    case PixelLayout::GreyAlpha8:
    case PixelLayout::Grey16:
    case PixelLayout::GreyAlpha16:
      return true;
    case PixelLayout::Bgra8:
    case PixelLayout::Rgba16:
      break;
  }
  return false;
}

}  // namespace

FilterSet::FilterSet(const ColourTransform& chosen)
    : transform(chosen), bits8(makePictureFilter(chosen, SampleDepth::Bits8)) {}

const PictureFilter& FilterSet::wide() const {
  std::call_once(once, [this] { bits16 = makePictureFilter(transform, SampleDepth::Bits16); });
  return bits16;
}

RowFilter planRowFilter(const RowsHeader& header, const FilterSet& filters, ImageFormat format) {
  ColourStep step{&filters, nullptr};
  const bool profileSuits =
      profileColours(header.iccProfile) == ProfileColours::Rgb || holdsGreys(header);
  if (filters.transform.light == Light::Linear && profileSuits) {
    step.conversion = conversionToSrgb(header.iccProfile);
  }
  const bool png = format == ImageFormat::Png;
  RowFilter plan = planRows(header, step, {png, !png, png});
  if (step.conversion) {
    plan.header.iccProfile.clear();
    constexpr int relativeColorimetric = 1;
    plan.header.pngColourSpace = {relativeColorimetric, std::nullopt, std::nullopt};
    return plan;
  }
  // A viewer of a grey JPEG file takes a profile for RGB colours too.
  const bool stayedGrey = holdsGreys(header) && holdsGreys(plan.header);
  const ProfileColours profile = profileColours(header.iccProfile);
  const bool suits = holdsGreys(plan.header)
                         ? profile == ProfileColours::Grey ||
                               (profile == ProfileColours::Rgb && stayedGrey && !png)
                         : profile == ProfileColours::Rgb;
  if (!suits) plan.header.iccProfile.clear();
  return plan;
}

RowFilter planPlainRows(const RowsHeader& header) {
  return planRows(header, {}, {false, false, false});
}

}  // namespace tintora::cli
