#include "platform/linux/smooth_scaling.h"

#include <algorithm>
#include <span>
#include <vector>

namespace tintora::platform {

namespace {

constexpr std::size_t channels = 4;
constexpr int wholeWeight = 256;  // the weight of a whole pixel; sums of rows fit 16 bits

// The source pixels that one result pixel covers.
struct Coverage {
  int first;
  std::span<const std::uint16_t> weights;  // their sum is wholeWeight
};

// The coverages of pixels first..last of a line that is scaled from one length to another. In the
// unit used here, a source pixel is as long as the result has pixels.
class Coverages {
 public:
  Coverages(std::int64_t from, std::int64_t to, int first, int last) {
    for (std::int64_t i = first; i <= last; ++i) add(i * from, (i + 1) * from, from, to);
  }
  std::size_t count() const { return starts_.size(); }
  Coverage operator[](std::size_t i) const {
    const std::size_t end = i + 1 < offsets_.size() ? offsets_[i + 1] : weights_.size();
    return {starts_[i], std::span(weights_).subspan(offsets_[i], end - offsets_[i])};
  }
  int firstOfAll() const { return starts_.front(); }
  int endOfAll() const {
    const Coverage last = (*this)[count() - 1];
    return last.first + static_cast<int>(last.weights.size());
  }

 private:
  // Rounds the sums instead of the weights, so that they always add up to wholeWeight.
  void add(std::int64_t start, std::int64_t end, std::int64_t from, std::int64_t to) {
    starts_.push_back(static_cast<int>(start / to));
    offsets_.push_back(weights_.size());
    std::int64_t before = 0;
    for (std::int64_t pixel = start / to; pixel * to < end; ++pixel) {
      const std::int64_t covered = std::min(end, (pixel + 1) * to) - start;
      const std::int64_t sum = (covered * wholeWeight + from / 2) / from;
      weights_.push_back(static_cast<std::uint16_t>(sum - before));
      before = sum;
    }
  }

  std::vector<int> starts_;
  std::vector<std::size_t> offsets_;
  std::vector<std::uint16_t> weights_;
};

void addRow(std::span<std::uint16_t> sums, const std::uint8_t* row, std::uint16_t weight) {
  const std::size_t count = sums.size();
  std::uint16_t* const into = sums.data();
  for (std::size_t i = 0; i < count; ++i) {
    into[i] = static_cast<std::uint16_t>(into[i] + row[i] * weight);
  }
}

void takeMeans(const Coverages& columns, const std::vector<std::uint16_t>& sums,
               std::uint8_t* row) {
  const int left = columns.firstOfAll();
  for (std::size_t i = 0; i < columns.count(); ++i) {
    const auto [first, weights] = columns[i];
    const std::uint16_t* from = &sums[channels * static_cast<std::size_t>(first - left)];
    std::uint32_t total[channels]{};
    for (const std::uint16_t weight : weights) {
      for (std::size_t c = 0; c < channels; ++c) total[c] += std::uint32_t{weight} * from[c];
      from += channels;
    }
    constexpr std::uint32_t half = wholeWeight * wholeWeight / 2;
    for (std::size_t c = 0; c < channels; ++c) {
      row[channels * i + c] = static_cast<std::uint8_t>((total[c] + half) >> 16);
    }
  }
}

}  // namespace

void scaleByArea(const PixelRows& source, const QSize& size, const QRect& part,
                 std::uint8_t* destination, std::ptrdiff_t destinationStride) {
  if (part.isEmpty()) return;
  const Coverages columns(source.size.width(), size.width(), part.left(), part.right());
  const Coverages rows(source.size.height(), size.height(), part.top(), part.bottom());
  const int left = columns.firstOfAll();
  std::vector<std::uint16_t> sums(channels * static_cast<std::size_t>(columns.endOfAll() - left));
  for (std::size_t y = 0; y < rows.count(); ++y) {
    const auto [first, weights] = rows[y];
    const std::uint8_t* row = source.bytes + first * source.stride + 4L * left;
    std::ranges::fill(sums, 0);
    for (const std::uint16_t weight : weights) {
      if (weight != 0) addRow(sums, row, weight);
      row += source.stride;
    }
    takeMeans(columns, sums, destination);
    destination += destinationStride;
  }
}

QRect scaledPart(const QRect& part, const QSize& source, const QSize& size) {
  const auto first = [](std::int64_t place, std::int64_t from, std::int64_t to) {
    return static_cast<int>(place * to / from);
  };
  const auto end = [](std::int64_t place, std::int64_t from, std::int64_t to) {
    return static_cast<int>((place * to + from - 1) / from);
  };
  const QPoint corner(first(part.left(), source.width(), size.width()),
                      first(part.top(), source.height(), size.height()));
  const QPoint opposite(end(part.right() + 1, source.width(), size.width()),
                        end(part.bottom() + 1, source.height(), size.height()));
  return {corner, QSize(opposite.x() - corner.x(), opposite.y() - corner.y())};
}

}  // namespace tintora::platform
