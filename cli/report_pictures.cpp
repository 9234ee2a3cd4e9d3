#include "cli/report_pictures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "engine/colour_simulation.h"
#include "engine/picture_filter.h"
#include "engine/srgb.h"

namespace tintora::cli {

namespace {

constexpr std::uint32_t smallWidth = 240;
constexpr std::array<double, 5> severitySteps{0.2, 0.4, 0.6, 0.8, 1.0};
constexpr double brightest = 255.0;

// A row or column of the reduced picture as a span of the original: the first pixel's share, whole
// pixels, the last one's share.
struct Span {
  std::uint32_t first, last;
  double firstShare, lastShare;

  double share(std::uint32_t at) const {
    if (at == first) return firstShare;
    return at == last ? lastShare : 1.0;
  }
};

std::vector<Span> spansOf(std::uint32_t from, std::uint32_t to) {
  std::vector<Span> spans;
  const double step = static_cast<double>(from) / to;
  for (std::uint32_t i = 0; i < to; ++i) {
    const double begin = i * step;
    const double end = std::min<double>((i + 1) * step, from);
    const auto first = static_cast<std::uint32_t>(begin);
    const auto last = std::min(static_cast<std::uint32_t>(std::ceil(end)), from) - 1;
    const double firstShare = std::min<double>(first + 1, end) - begin;
    spans.push_back({first, last, firstShare, end - last});
  }
  return spans;
}

// Light times alpha, then alpha, summed over the pixels of a span of a row.
using Sum = std::array<double, rgbaChannels>;

void addTo(Sum& sum, const Sum& part, double share) {
  for (std::size_t c = 0; c < rgbaChannels; ++c) sum[c] += share * part[c];
}

const std::array<double, 256>& lightOfSteps() {
  static const std::array<double, 256> light = [] {
    std::array<double, 256> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
      table[i] = decodeSrgb(static_cast<double>(i) / brightest);
    }
    return table;
  }();
  return light;
}

std::vector<Sum> reduceRow(const std::uint8_t* row, const std::vector<Span>& columns) {
  const std::array<double, 256>& light = lightOfSteps();
  std::vector<Sum> sums;
  sums.reserve(columns.size());
  for (const Span& column : columns) {
    Sum sum{};
    for (std::uint32_t x = column.first; x <= column.last; ++x) {
      const std::uint8_t* const pixel = row + rgbaChannels * x;
      const double alpha = pixel[3] / brightest;
      addTo(sum, {light[pixel[0]] * alpha, light[pixel[1]] * alpha, light[pixel[2]] * alpha, alpha},
            column.share(x));
    }
    sums.push_back(sum);
  }
  return sums;
}

void appendPixel(std::vector<std::uint8_t>& pixels, const Sum& sum, double area) {
  const double alpha = sum[3];
  for (std::size_t c = 0; c < 3; ++c) {
    const double light = alpha > 0.0 ? std::min(sum[c] / alpha, 1.0) : 0.0;
    pixels.push_back(static_cast<std::uint8_t>(std::lround(encodeSrgb(light) * brightest)));
  }
  pixels.push_back(static_cast<std::uint8_t>(std::lround(std::min(alpha / area, 1.0) * brightest)));
}

// Copies the pixels alone: nothing else that the file says goes into the page.
Image plainCopy(const Image& picture) {
  Image copy;
  copy.width = picture.width;
  copy.height = picture.height;
  copy.pixels = picture.pixels;
  copy.hasAlpha = picture.hasAlpha;
  return copy;
}

// Returns a data address with the smaller of PNG, which keeps drawings small and exact, and JPEG,
// which keeps photographs small.
std::string addressOf(const Image& picture) {
  const std::vector<std::uint8_t> png = encodeImage(picture, ImageFormat::Png);
  if (!picture.hasAlpha) {
    const std::vector<std::uint8_t> jpeg = encodeImage(picture, ImageFormat::Jpeg);
    if (jpeg.size() < png.size()) return "data:image/jpeg;base64," + base64(jpeg);
  }
  return "data:image/png;base64," + base64(png);
}

std::string addressSeenBy(const ColourSimulation& viewer, const Image& picture) {
  Image seen = picture;
  filterPicture(makePictureFilter(makeSimulation(viewer), SampleDepth::Bits8), seen.pixels.data(),
                seen.pixels.size() / rgbaChannels);
  return addressOf(seen);
}

}  // namespace

Image reducePicture(const Image& picture, std::uint32_t mostWidth) {
  if (picture.width <= mostWidth) return plainCopy(picture);
  Image reduced;
  reduced.width = mostWidth;
  const double scale = static_cast<double>(mostWidth) / picture.width;
  reduced.height = std::max(1U, static_cast<std::uint32_t>(std::lround(picture.height * scale)));
  reduced.hasAlpha = picture.hasAlpha;
  reduced.pixels.reserve(rgbaChannels * reduced.width * reduced.height);
  const std::vector<Span> columns = spansOf(picture.width, reduced.width);
  const std::vector<Span> rows = spansOf(picture.height, reduced.height);
  const double area =
      static_cast<double>(picture.width) * picture.height / reduced.width / reduced.height;
  for (const Span& row : rows) {
    std::vector<Sum> sums(columns.size());
    for (std::uint32_t y = row.first; y <= row.last; ++y) {
      const std::vector<Sum> parts =
          reduceRow(picture.pixels.data() + rgbaChannels * picture.width * y, columns);
      for (std::size_t x = 0; x < sums.size(); ++x) addTo(sums[x], parts[x], row.share(y));
    }
    for (const Sum& sum : sums) appendPixel(reduced.pixels, sum, area);
  }
  return reduced;
}

ReportPicture showPicture(const Image& picture, const PaletteOptions& options,
                          std::uint32_t mostWidth) {
  const Image large = reducePicture(picture, mostWidth);
  const Image small = reducePicture(picture, std::min(smallWidth, mostWidth));
  ReportPicture shown;
  shown.width = large.width;
  shown.height = large.height;
  shown.original = {"original", addressOf(large)};
  shown.small = {"original", addressOf(small)};
  for (const ColourSimulation& viewer : viewersOf(options)) {
    shown.seen.push_back({viewerName(viewer), addressSeenBy(viewer, large)});
  }
  for (const CvdType type : options.types) {
    PictureRow severities{type, {}};
    for (const double severity : severitySteps) {
      severities.pictures.push_back(
          {percentName(severity),
           addressSeenBy({type, severity, options.algorithm, lightOf(options)}, small)});
    }
    shown.severities.push_back(std::move(severities));

    PictureRow algorithms{type, {}};
    for (const AlgorithmLabel& entry : algorithmLabels()) {
      PaletteOptions other = options;
      other.algorithm = entry.algorithm;
      if (entry.algorithm == SimulationAlgorithm::Brettel1997) other.light.reset();
      algorithms.pictures.push_back(
          {std::string(entry.label),
           addressSeenBy({type, 1.0, entry.algorithm, lightOf(other)}, small)});
    }
    shown.algorithms.push_back(std::move(algorithms));
  }
  return shown;
}

std::string base64(std::span<const std::uint8_t> bytes) {
  constexpr std::string_view digits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k) group = group << 8U | (k < count ? bytes[i + k] : 0U);
    for (std::size_t k = 0; k < 4; ++k) {
      text += k <= count ? digits[group >> (18U - 6U * k) & 63U] : '=';
    }
  }
  return text;
}

}  // namespace tintora::cli
