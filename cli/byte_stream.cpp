#include "cli/byte_stream.h"

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <new>

namespace tintora::cli {

namespace {

constexpr std::size_t pieceSize = std::size_t{1} << 16;

// While this lives, a closed pipe or the file size limit fails the write and does not end the
// program.
struct WriteSignalsHeld {
  sigset_t maskBefore{};
  sigset_t pendingBefore{};

  WriteSignalsHeld() {
    sigset_t held{};
    sigemptyset(&held);
    sigaddset(&held, SIGPIPE);
    sigaddset(&held, SIGXFSZ);
    sigpending(&pendingBefore);
    pthread_sigmask(SIG_BLOCK, &held, &maskBefore);
  }
  WriteSignalsHeld(const WriteSignalsHeld&) = delete;
  WriteSignalsHeld& operator=(const WriteSignalsHeld&) = delete;
  ~WriteSignalsHeld() {
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
      sigset_t pending{};
      sigpending(&pending);
      if (sigismember(&pending, signal) == 0 || sigismember(&pendingBefore, signal) != 0) continue;
      sigset_t raised{};
      sigemptyset(&raised);
      sigaddset(&raised, signal);
      int taken = 0;
      sigwait(&raised, &taken);
    }
    pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
  }
};

// Reads into the buffer from the given place on. Returns the count, 0 at the end or after an error.
std::size_t readPiece(ByteSource& source, std::size_t from) {
  if (source.descriptor < 0 || source.error != 0) return 0;
  source.buffer.resize(std::max(from + pieceSize, source.buffer.size()));
  while (true) {
    const ssize_t count =
        ::read(source.descriptor, source.buffer.data() + from, source.buffer.size() - from);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (mayRetry(errno, source.descriptor, POLLIN)) continue;
    source.error = errno;
    return 0;
  }
}

}  // namespace

bool holdsAt(std::span<const std::uint8_t> data, std::size_t offset, std::string_view bytes) {
  return data.size() >= offset + bytes.size() &&
         std::equal(bytes.begin(), bytes.end(), data.begin() + static_cast<std::ptrdiff_t>(offset),
                    [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}

Descriptor::~Descriptor() {
  if (number >= 0) ::close(number);
}

bool refill(ByteSource& source) noexcept {
  try {
    const std::size_t count = readPiece(source, 0);
    source.rest = std::span(source.buffer).first(count);
    return count > 0;
  } catch (const std::bad_alloc&) {
    source.error = ENOMEM;
    return false;
  }
}

std::span<const std::uint8_t> peek(ByteSource& source, std::size_t count) {
  while (source.rest.size() < count && source.descriptor >= 0) {
    const std::size_t kept = source.rest.size();
    std::ranges::copy(source.rest, source.buffer.begin());
    const std::size_t read = readPiece(source, kept);
    source.rest = std::span(source.buffer).first(kept + read);
    if (read == 0) break;
  }
  return source.rest.first(std::min(count, source.rest.size()));
}

std::optional<std::uint64_t> bytesLeft(const ByteSource& source) {
  if (source.descriptor < 0) return source.rest.size();
  struct stat status {};
  const off_t place = ::lseek(source.descriptor, 0, SEEK_CUR);
  if (place < 0 || ::fstat(source.descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::nullopt;
  }
  const off_t unread = std::max(status.st_size - place, off_t{0});
  return source.rest.size() + static_cast<std::uint64_t>(unread);
}

bool put(ByteSink& sink, std::span<const std::uint8_t> bytes) noexcept {
  try {
    sink.bytes.insert(sink.bytes.end(), bytes.begin(), bytes.end());
  } catch (const std::bad_alloc&) {
    sink.error = ENOMEM;
    return false;
  }
  return sink.descriptor < 0 || sink.bytes.size() < pieceSize || flush(sink);
}

bool flush(ByteSink& sink) noexcept {
  if (sink.descriptor >= 0 && sink.error == 0) {
    sink.error = writeAll(sink.descriptor, sink.bytes);
    sink.bytes.clear();
  }
  return sink.error == 0;
}

bool mayRetry(int error, int descriptor, short direction) {
  if (error != EAGAIN) return error == EINTR;
  pollfd ready{descriptor, direction, 0};
  ::poll(&ready, 1, -1);
  return true;
}

int writeAll(int descriptor, std::span<const std::uint8_t> contents) {
  const WriteSignalsHeld signals;
  while (!contents.empty()) {
    const ssize_t written = ::write(descriptor, contents.data(), contents.size());
    if (written > 0) {
      contents = contents.subspan(static_cast<std::size_t>(written));
    } else if (written == 0) {
      return EIO;
    } else if (!mayRetry(errno, descriptor, POLLOUT)) {
      return errno;
    }
  }
  return 0;
}

}  // namespace tintora::cli
