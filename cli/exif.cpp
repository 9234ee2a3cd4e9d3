#include "cli/exif.h"

#include <algorithm>
#include <cstddef>
#include <optional>

namespace tintora::cli {

namespace {

constexpr std::size_t headerSize = 8;
constexpr std::size_t entrySize = 12;
constexpr std::uint32_t orientationTag = 0x0112;
constexpr std::uint32_t stripOffsetsTag = 0x0111;
constexpr std::uint32_t stripSizesTag = 0x0117;
constexpr std::uint32_t jpegOffsetTag = 0x0201;
constexpr std::uint32_t jpegSizeTag = 0x0202;
constexpr std::uint32_t shortType = 3;

bool isBigEndian(std::span<const std::uint8_t> exif) {
  return exif[0] == 'M';
}

// Returns the number of that many bytes at a place, which must be within the data.
std::uint32_t numberAt(std::span<const std::uint8_t> exif, std::size_t at, std::size_t bytes) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < bytes; ++i) {
    number = number << 8 | exif[at + (isBigEndian(exif) ? i : bytes - 1 - i)];
  }
  return number;
}

// A directory whose entries are all within the data.
struct Directory {
  std::size_t entries;  // where they begin
  std::size_t count;

  std::size_t end() const { return entries + count * entrySize; }
};

std::optional<Directory> directoryAt(std::span<const std::uint8_t> exif, std::size_t at) {
  constexpr std::size_t countSize = 2;
  if (at < headerSize || at > exif.size() || exif.size() - at < countSize) return std::nullopt;
  const Directory directory{at + countSize, numberAt(exif, at, countSize)};
  if (directory.end() > exif.size()) return std::nullopt;
  return directory;
}

std::optional<Directory> firstDirectory(std::span<const std::uint8_t> exif) {
  if (!isExif(exif)) return std::nullopt;
  return directoryAt(exif, numberAt(exif, 4, 4));
}

// Where the value of a single number stands; none if there is no such entry.
struct Value {
  std::size_t at;
  std::size_t bytes;
};

std::optional<Value> valueOf(std::span<const std::uint8_t> exif, const Directory& directory,
                             std::uint32_t tag) {
  for (std::size_t at = directory.entries; at < directory.end(); at += entrySize) {
    if (numberAt(exif, at, 2) != tag || numberAt(exif, at + 4, 4) != 1) continue;
    return Value{at + 8, numberAt(exif, at + 2, 2) == shortType ? 2U : 4U};
  }
  return std::nullopt;
}

void blankBytes(std::vector<std::uint8_t>& exif, const Directory& directory,
                std::uint32_t offsetTag, std::uint32_t sizeTag) {
  const auto offset = valueOf(exif, directory, offsetTag);
  const auto size = valueOf(exif, directory, sizeTag);
  if (!offset || !size) return;
  const std::size_t start = numberAt(exif, offset->at, offset->bytes);
  // A thumbnail comes after the directory.
  if (start < directory.end() || start >= exif.size()) return;
  const std::size_t count =
      std::min<std::size_t>(numberAt(exif, size->at, size->bytes), exif.size() - start);
  if (start + count == exif.size()) {
    exif.resize(start);
  } else {
    std::fill_n(exif.begin() + static_cast<std::ptrdiff_t>(start), count, std::uint8_t{0});
  }
}

}  // namespace

bool isExif(std::span<const std::uint8_t> exif) {
  constexpr std::uint32_t tiffNumber = 42;
  if (exif.size() < headerSize || exif[0] != exif[1]) return false;
  return (exif[0] == 'I' || exif[0] == 'M') && numberAt(exif, 2, 2) == tiffNumber;
}

int exifOrientation(std::span<const std::uint8_t> exif) {
  constexpr int upright = 1;
  constexpr std::uint32_t last = 8;
  const auto directory = firstDirectory(exif);
  if (!directory) return upright;
  const auto value = valueOf(exif, *directory, orientationTag);
  if (!value) return upright;
  const std::uint32_t number = numberAt(exif, value->at, value->bytes);
  return number >= 1 && number <= last ? static_cast<int>(number) : upright;
}

void setExifUpright(std::vector<std::uint8_t>& exif) {
  const auto directory = firstDirectory(exif);
  if (!directory) return;
  const auto value = valueOf(exif, *directory, orientationTag);
  if (!value) return;
  for (std::size_t i = 0; i < value->bytes; ++i) exif[value->at + i] = 0;
  exif[value->at + (isBigEndian(exif) ? value->bytes - 1 : 0)] = 1;
}

void dropExifThumbnail(std::vector<std::uint8_t>& exif) {
  constexpr std::size_t linkSize = 4;
  const auto first = firstDirectory(exif);
  if (!first || exif.size() - first->end() < linkSize) return;
  const auto second = directoryAt(exif, numberAt(exif, first->end(), linkSize));
  std::fill_n(exif.begin() + static_cast<std::ptrdiff_t>(first->end()), linkSize, std::uint8_t{0});
  if (!second) return;
  blankBytes(exif, *second, jpegOffsetTag, jpegSizeTag);
  blankBytes(exif, *second, stripOffsetsTag, stripSizesTag);
}

}  // namespace tintora::cli
