// Reads and writes bytes piece by piece without throwing, because exceptions must not pass through
// the codecs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace tintora::cli {

// Returns true if the data holds these bytes at an offset.
bool holdsAt(std::span<const std::uint8_t> data, std::size_t offset, std::string_view bytes);

// An open file, closed at the end; -1 for none.
struct Descriptor {
  int number = -1;

  explicit Descriptor(int opened) : number(opened) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor();
};

// What an image is read from: memory, or an open file that is read into the buffer piece by piece.
struct ByteSource {
  std::span<const std::uint8_t> rest;  // read and not yet taken
  int descriptor = -1;                 // -1: there is no more than the rest
  std::vector<std::uint8_t> buffer;
  int error = 0;  // why reading failed, or 0
};

// Reads the next piece into an empty rest. Returns false at the end of the file and after an error.
bool refill(ByteSource& source) noexcept;

// Returns the next bytes, as many as asked for if the file has them, and leaves them in the source.
std::span<const std::uint8_t> peek(ByteSource& source, std::size_t count);

// Returns how many bytes the source still has, if that is known: of memory and of regular files.
std::optional<std::uint64_t> bytesLeft(const ByteSource& source);

// What an image is written to: memory, or an open file to which the bytes are flushed.
struct ByteSink {
  std::vector<std::uint8_t> bytes;
  int descriptor = -1;  // -1: all bytes are kept
  int error = 0;        // why writing failed, or 0
};

// Returns false if there is no memory or the file cannot be written; the error then says why.
bool put(ByteSink& sink, std::span<const std::uint8_t> bytes) noexcept;
bool flush(ByteSink& sink) noexcept;

// Waits until a call that failed with this error can be tried again. Returns false if it cannot.
bool mayRetry(int error, int descriptor, short direction);

// Writes all bytes to an open file. Returns 0 or the error number.
int writeAll(int descriptor, std::span<const std::uint8_t> contents);

}  // namespace tintora::cli
