#include "cli/output_file.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <random>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace tintora::cli {

namespace {

constexpr const char* standardOutputName = "standard output";

[[noreturn]] void throwUnreadable(const std::string& name, const std::string& why) {
  throw std::runtime_error("cannot read " + name + ": " + why);
}

[[noreturn]] void throwUnwritable(const std::string& name, int error) {
  throw std::runtime_error("cannot write " + name + ": " + std::generic_category().message(error));
}

struct Descriptor {
  int number = -1;

  explicit Descriptor(int opened) : number(opened) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (number >= 0) ::close(number);
  }
};

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

// Whether a read or write that failed is to be tried again, which for a descriptor that does not
// block may have to wait.
bool mayRetry(int error, int descriptor, short direction) {
  if (error != EAGAIN) return error == EINTR;
  pollfd ready{descriptor, direction, 0};
  ::poll(&ready, 1, -1);
  return true;
}

// Returns 0 or the error number.
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

std::vector<std::uint8_t> readAll(int descriptor, const std::string& name, std::uint64_t limit) {
  constexpr std::uint64_t firstSize = std::uint64_t{1} << 16;
  const auto throwTooLong = [&] {
    throwUnreadable(name, "it is longer than the limit of " + std::to_string(limit) + " bytes");
  };
  struct stat status {};
  std::uint64_t size = firstSize;
  if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
    size = static_cast<std::uint64_t>(status.st_size) + 1;
    if (size - 1 > limit) throwTooLong();
  }

  std::vector<std::uint8_t> contents(size);
  std::size_t used = 0;
  while (true) {
    const ssize_t count = ::read(descriptor, contents.data() + used, contents.size() - used);
    if (count == 0) break;
    if (count < 0) {
      if (mayRetry(errno, descriptor, POLLIN)) continue;
      throwUnreadable(name, std::generic_category().message(errno));
    }
    used += static_cast<std::size_t>(count);
    if (used > limit) throwTooLong();
    if (used == contents.size()) contents.resize(used * 2);
  }
  contents.resize(used);
  return contents;
}

bool isStandardOutput(const struct stat& status) {
  struct stat output {};
  return ::fstat(STDOUT_FILENO, &output) == 0 && output.st_dev == status.st_dev &&
         output.st_ino == status.st_ino;
}

void writeDirectly(const std::filesystem::path& target, std::span<const std::uint8_t> contents) {
  const Descriptor file(::open(target.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
  if (file.number < 0) throwUnwritable(target.string(), errno);
  const int error = writeAll(file.number, contents);
  if (error != 0) throwUnwritable(target.string(), error);
}

// The path that the links lead to, whether there is a file or not yet.
std::filesystem::path followLinks(std::filesystem::path target) {
  constexpr int mostLinks = 40;
  for (int links = 0; links < mostLinks; ++links) {
    std::error_code notALink;
    const std::filesystem::path next = std::filesystem::read_symlink(target, notALink);
    if (notALink) break;
    target = target.parent_path() / next;
  }
  return target;
}

// A new file, removed again unless it has been moved to its place.
struct TemporaryFile {
  std::filesystem::path path;
  Descriptor file{-1};
  bool moved = false;

  TemporaryFile() = default;
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (!path.empty() && !moved) ::unlink(path.c_str());
  }
};

// Returns 0 or the error number.
int create(TemporaryFile& temporary, const std::filesystem::path& directory) {
  constexpr int mostAttempts = 100;
  std::random_device random;
  for (int attempt = 0; attempt < mostAttempts; ++attempt) {
    std::filesystem::path path =
        directory / (".tintora-" + std::to_string(random()) + std::to_string(random()) + ".tmp");
    temporary.file.number = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (temporary.file.number >= 0) {
      temporary.path = std::move(path);
      return 0;
    }
    if (errno != EEXIST) return errno;
  }
  return EEXIST;
}

// Returns 0 or the error number.
int passOnPermissions(const struct stat& replaced, int file) {
  constexpr mode_t permissions = 0777;
  constexpr mode_t ofOthers = 07;
  mode_t mode = replaced.st_mode & permissions;
  const bool keptOwner = ::fchown(file, replaced.st_uid, replaced.st_gid) == 0;
  if (!keptOwner && ::fchown(file, static_cast<uid_t>(-1), replaced.st_gid) != 0) {
    // What the old group was allowed is not for the new one.
    mode &= ~(ofOthers << 3) | (mode & ofOthers) << 3;
  }
  return ::fchmod(file, mode) == 0 ? 0 : errno;
}

// Returns 0 or the error number.
int fill(TemporaryFile& temporary, const struct stat* replaced,
         std::span<const std::uint8_t> contents) {
  if (replaced != nullptr) {
    const int error = passOnPermissions(*replaced, temporary.file.number);
    if (error != 0) return error;
  }
  const int error = writeAll(temporary.file.number, contents);
  if (error != 0) return error;
  if (::fsync(temporary.file.number) != 0) return errno;
  return ::close(std::exchange(temporary.file.number, -1)) == 0 ? 0 : errno;
}

}  // namespace

std::vector<std::uint8_t> readFileWhole(const std::filesystem::path& source, std::uint64_t limit) {
  if (source == "-") return readAll(STDIN_FILENO, "standard input", limit);
  const Descriptor file(::open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
  if (file.number < 0) throwUnreadable(source.string(), std::generic_category().message(errno));
  return readAll(file.number, source.string(), limit);
}

void writeFileWhole(const std::filesystem::path& target, std::span<const std::uint8_t> contents) {
  struct stat status {};
  const bool exists = ::stat(target.c_str(), &status) == 0;
  if (!exists && errno != ENOENT) throwUnwritable(target.string(), errno);
  if (exists) {
    if (isStandardOutput(status)) return writeStandardOutput(contents);
    if (!S_ISREG(status.st_mode)) return writeDirectly(target, contents);
    // Replacing needs no leave of the file itself, but who protected it meant it.
    if (::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) {
      throwUnwritable(target.string(), errno);
    }
  }

  const std::filesystem::path place = followLinks(target);
  TemporaryFile temporary;
  int error = create(temporary, place.parent_path());
  if (error != 0) {
    throw std::runtime_error(
        "cannot write " + target.string() +
        ": no file can be made beside it: " + std::generic_category().message(error));
  }
  error = fill(temporary, exists ? &status : nullptr, contents);
  if (error == 0 && ::rename(temporary.path.c_str(), place.c_str()) != 0) error = errno;
  if (error != 0) throwUnwritable(target.string(), error);
  temporary.moved = true;
}

void writeStandardOutput(std::span<const std::uint8_t> contents) {
  const int error = writeAll(STDOUT_FILENO, contents);
  if (error != 0) throwUnwritable(standardOutputName, error);
}

}  // namespace tintora::cli
