#include "palette/main_colours.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>

#include "palette/colour_difference.h"

namespace tintora {

namespace {

constexpr std::uint8_t opaqueFrom = 128;
constexpr std::size_t bytesPerPixel = 4;

// The cube of sRGB colours in bins of 8 x 8 x 8.
constexpr unsigned binBits = 5;
constexpr unsigned bitsInBin = 8 - binBits;
constexpr std::size_t binCount = std::size_t{1} << (3 * binBits);
constexpr std::size_t coloursInBin = std::size_t{1} << (3 * bitsInBin);

std::size_t packed(Rgb8 rgb, unsigned shift, unsigned bits) {
  const auto part = [&](std::uint8_t channel) {
    return std::size_t{channel} >> shift & ((std::size_t{1} << bits) - 1);
  };
  return (part(rgb.red) << bits | part(rgb.green)) << bits | part(rgb.blue);
}

std::size_t binOf(Rgb8 rgb) {
  return packed(rgb, bitsInBin, binBits);
}

std::size_t placeInBin(Rgb8 rgb) {
  return packed(rgb, 0, bitsInBin);
}

template <typename Function>
void forEachPixel(std::span<const std::uint8_t> pixels, Function function) {
  for (std::size_t i = 0; i + bytesPerPixel <= pixels.size(); i += bytesPerPixel) {
    if (pixels[i + 3] < opaqueFrom) continue;
    function(Rgb8{pixels[i + 2], pixels[i + 1], pixels[i]});
  }
}

struct Bin {
  std::size_t index = 0;
  std::uint64_t count = 0;
  Lab lab;              // of the mean colour
  double weight = 0.0;  // what it counts for
  std::size_t cluster = 0;
};

double squaredDistance(const Lab& first, const Lab& second) {
  const double l = first.lightness - second.lightness;
  const double a = first.a - second.a;
  const double b = first.b - second.b;
  return l * l + a * a + b * b;
}

std::vector<Bin> filledBins(std::span<const std::uint8_t> pixels) {
  struct Sum {
    std::uint64_t count = 0, red = 0, green = 0, blue = 0;
  };
  std::vector<Sum> sums(binCount);
  forEachPixel(pixels, [&](Rgb8 rgb) {
    Sum& sum = sums[binOf(rgb)];
    ++sum.count;
    sum.red += rgb.red;
    sum.green += rgb.green;
    sum.blue += rgb.blue;
  });
  std::vector<Bin> bins;
  for (std::size_t i = 0; i < sums.size(); ++i) {
    const Sum& sum = sums[i];
    if (sum.count == 0) continue;
    const double total = 255.0 * static_cast<double>(sum.count);
    const Colour mean{static_cast<double>(sum.red) / total, static_cast<double>(sum.green) / total,
                      static_cast<double>(sum.blue) / total};
    bins.push_back({i, sum.count, toLab(mean), std::sqrt(static_cast<double>(sum.count)), 0});
  }
  return bins;
}

// Chooses the heaviest bin, then again and again the one that counts most times its squared
// distance from those chosen, until what is left is near to one of them.
std::vector<Lab> firstCentres(const std::vector<Bin>& bins, std::size_t most) {
  constexpr double near = 10.0;
  std::vector<Lab> centres;
  std::vector<double> distances(bins.size(), std::numeric_limits<double>::max());
  const Bin* next = &*std::ranges::max_element(bins, {}, &Bin::count);
  while (centres.size() < most && next != nullptr) {
    centres.push_back(next->lab);
    next = nullptr;
    double best = 0.0;
    for (std::size_t i = 0; i < bins.size(); ++i) {
      distances[i] = std::min(distances[i], squaredDistance(bins[i].lab, centres.back()));
      const double score = bins[i].weight * distances[i];
      if (distances[i] < near * near || score <= best) continue;
      best = score;
      next = &bins[i];
    }
  }
  return centres;
}

void assignClusters(std::vector<Bin>& bins, const std::vector<Lab>& centres) {
  for (Bin& bin : bins) {
    double least = std::numeric_limits<double>::max();
    for (std::size_t c = 0; c < centres.size(); ++c) {
      const double distance = squaredDistance(bin.lab, centres[c]);
      if (distance >= least) continue;
      least = distance;
      bin.cluster = c;
    }
  }
}

void moveCentres(const std::vector<Bin>& bins, std::vector<Lab>& centres) {
  std::vector<Lab> sums(centres.size());
  std::vector<double> weights(centres.size(), 0.0);
  for (const Bin& bin : bins) {
    Lab& sum = sums[bin.cluster];
    sum.lightness += bin.weight * bin.lab.lightness;
    sum.a += bin.weight * bin.lab.a;
    sum.b += bin.weight * bin.lab.b;
    weights[bin.cluster] += bin.weight;
  }
  for (std::size_t c = 0; c < centres.size(); ++c) {
    if (weights[c] == 0.0) continue;
    centres[c] = {sums[c].lightness / weights[c], sums[c].a / weights[c], sums[c].b / weights[c]};
  }
}

// Returns the colour that most pixels of the bin have.
Rgb8 commonest(std::size_t bin, const std::array<std::uint64_t, coloursInBin>& counts) {
  const auto place = static_cast<std::size_t>(std::ranges::max_element(counts) - counts.begin());
  const auto channel = [&](unsigned position) {
    const auto part = [&](std::size_t value, unsigned bits) {
      return value >> (position * bits) & ((std::size_t{1} << bits) - 1);
    };
    return static_cast<std::uint8_t>(part(bin, binBits) << bitsInBin | part(place, bitsInBin));
  };
  return {channel(2), channel(1), channel(0)};
}

// Pixels that one main colour stands for.
struct Cluster {
  const Bin* fullest = nullptr;
  std::uint64_t count = 0;
  std::array<std::uint64_t, coloursInBin> colours{};  // pixels of each colour of the fullest bin
};

std::vector<Cluster> clustersOf(const std::vector<Bin>& bins, std::size_t centres) {
  std::vector<Cluster> clusters(centres);
  for (const Bin& bin : bins) {
    Cluster& cluster = clusters[bin.cluster];
    if (cluster.fullest == nullptr || bin.count > cluster.fullest->count) cluster.fullest = &bin;
    cluster.count += bin.count;
  }
  std::erase_if(clusters, [](const Cluster& cluster) { return cluster.fullest == nullptr; });
  return clusters;
}

void countColours(std::span<const std::uint8_t> pixels, std::vector<Cluster>& clusters) {
  std::vector<Cluster*> clusterOfBin(binCount, nullptr);
  for (Cluster& cluster : clusters) clusterOfBin[cluster.fullest->index] = &cluster;
  forEachPixel(pixels, [&](Rgb8 rgb) {
    Cluster* const cluster = clusterOfBin[binOf(rgb)];
    if (cluster != nullptr) ++cluster->colours[placeInBin(rgb)];
  });
}

}  // namespace

std::vector<MainColour> mainColours(std::span<const std::uint8_t> pixels, std::size_t most) {
  std::vector<Bin> bins = filledBins(pixels);
  if (bins.empty() || most == 0) return {};
  std::vector<Lab> centres = firstCentres(bins, most);
  constexpr int rounds = 24;
  for (int round = 0; round < rounds; ++round) {
    assignClusters(bins, centres);
    moveCentres(bins, centres);
  }
  assignClusters(bins, centres);

  std::vector<Cluster> clusters = clustersOf(bins, centres.size());
  countColours(pixels, clusters);
  std::uint64_t total = 0;
  for (const Cluster& cluster : clusters) total += cluster.count;
  std::vector<MainColour> colours;
  for (const Cluster& cluster : clusters) {
    colours.push_back({commonest(cluster.fullest->index, cluster.colours),
                       static_cast<double>(cluster.count) / static_cast<double>(total)});
  }
  std::ranges::stable_sort(colours, std::greater{}, &MainColour::share);
  return colours;
}

}  // namespace tintora
