#include "cli/output_file.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <mutex>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "cli/ending_signals.h"

namespace tintora::cli {

namespace {

constexpr const char* standardOutputName = "standard output";

[[noreturn]] void throwUnreadable(const std::string& name, const std::string& why) {
  throw std::runtime_error("cannot read " + name + ": " + why);
}

[[noreturn]] void throwUnwritable(const std::string& name, int error) {
  throw std::runtime_error("cannot write " + name + ": " + std::generic_category().message(error));
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

// Returns the path that the links lead to, whether there is a file or not yet.
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

// Returns 0 or the error number.
int create(OutputFile& output, const std::filesystem::path& directory) {
  constexpr int mostAttempts = 100;
  std::random_device random;
  TemporaryFiles& files = temporaryFiles();
  const std::lock_guard lock(files.mutex);
  for (int attempt = 0; attempt < mostAttempts; ++attempt) {
    std::filesystem::path path =
        directory / (".tintora-" + std::to_string(random()) + std::to_string(random()) + ".tmp");
    output.file.number = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (output.file.number >= 0) {
      output.temporary = *files.names.insert(std::move(path)).first;
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
    // The new group gets no more rights than all others: those of the old one were not meant for
    // it.
    mode &= ~(ofOthers << 3) | (mode & ofOthers) << 3;
  }
  if (::fchmod(file, mode) == 0) return 0;
  const int error = errno;
  // Some file systems let nobody change permissions: all files there have the same.
  struct stat made {};
  const bool isRight = ::fstat(file, &made) == 0 && (made.st_mode & permissions) == mode;
  return isRight ? 0 : error;
}

std::string nameOf(const std::filesystem::path& target) {
  return target == standardStream ? standardOutputName : target.string();
}

void removeTemporary(OutputFile& output) {
  TemporaryFiles& files = temporaryFiles();
  const std::lock_guard lock(files.mutex);
  ::unlink(output.temporary.c_str());
  files.names.erase(output.temporary);
}

// Returns 0 or the error number.
int renameTemporary(OutputFile& output) {
  TemporaryFiles& files = temporaryFiles();
  const std::lock_guard lock(files.mutex);
  if (::rename(output.temporary.c_str(), output.place.c_str()) != 0) return errno;
  files.names.erase(std::exchange(output.temporary, {}));
  return 0;
}

// Opens a file without a name, which is gone when it is closed.
void openSpool(OutputFile& output) {
  std::error_code missing;
  const std::filesystem::path folder = std::filesystem::temp_directory_path(missing);
  if (missing) {
    throw std::runtime_error("cannot write " + nameOf(output.target) +
                             ": no folder for temporary files: " + missing.message());
  }
  std::string path = folder / "tintora-XXXXXX";
  const std::lock_guard lock(temporaryFiles().mutex);
  output.file.number = ::mkostemp(path.data(), O_CLOEXEC);
  if (output.file.number < 0) {
    throw std::runtime_error("cannot write " + nameOf(output.target) + ": no temporary file in " +
                             folder.string() + ": " + std::generic_category().message(errno));
  }
  ::unlink(path.c_str());
  output.sink.descriptor = output.file.number;
}

void copySpool(OutputFile& output) {
  const Descriptor opened(output.target == standardStream
                              ? -1
                              : ::open(output.target.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
  const bool toStream = output.target == standardStream;
  if (!toStream && opened.number < 0) throwUnwritable(output.target.string(), errno);
  ByteSource spool;
  spool.descriptor = output.file.number;
  if (::lseek(spool.descriptor, 0, SEEK_SET) < 0) throwUnwritable(nameOf(output.target), errno);
  while (refill(spool)) {
    const int error = writeAll(toStream ? STDOUT_FILENO : opened.number, spool.rest);
    if (error != 0) throwUnwritable(nameOf(output.target), error);
  }
  if (spool.error != 0) throwUnwritable(nameOf(output.target), spool.error);
}

}  // namespace

InputFile::InputFile(const std::filesystem::path& path)
    : file(path == standardStream ? -1 : ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)) {
  const bool fromStream = path == standardStream;
  if (!fromStream && file.number < 0) {
    throwUnreadable(path.string(), std::generic_category().message(errno));
  }
  source.descriptor = fromStream ? STDIN_FILENO : file.number;
}

std::vector<std::uint8_t> readFileWhole(const std::filesystem::path& source, std::uint64_t limit) {
  if (source == standardStream) return readAll(STDIN_FILENO, "standard input", limit);
  const Descriptor file(::open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
  if (file.number < 0) throwUnreadable(source.string(), std::generic_category().message(errno));
  return readAll(file.number, source.string(), limit);
}

OutputFile::OutputFile(std::filesystem::path path) : target(std::move(path)) {
  struct stat status {};
  const bool toStream = target == standardStream;
  const bool exists = !toStream && ::stat(target.c_str(), &status) == 0;
  if (!toStream && !exists && errno != ENOENT) throwUnwritable(target.string(), errno);
  if (toStream || (exists && (isStandardOutput(status) || !S_ISREG(status.st_mode)))) {
    spools = true;
    openSpool(*this);
    return;
  }
  // rename() would ignore write protection; honour it.
  if (exists && ::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) {
    throwUnwritable(target.string(), errno);
  }
  place = followLinks(target);
  int error = create(*this, place.parent_path());
  if (error != 0) {
    throw std::runtime_error(
        "cannot write " + target.string() +
        ": no file can be made beside it: " + std::generic_category().message(error));
  }
  if (exists) error = passOnPermissions(status, file.number);
  if (error != 0) {
    removeTemporary(*this);
    throwUnwritable(target.string(), error);
  }
  sink.descriptor = file.number;
}

OutputFile::~OutputFile() {
  if (!temporary.empty()) removeTemporary(*this);
}

void OutputFile::commit() {
  if (!flush(sink)) throwUnwritable(nameOf(target), sink.error);
  if (spools) return copySpool(*this);
  int error = ::fsync(file.number) == 0 ? 0 : errno;
  const int closed = ::close(std::exchange(file.number, -1));
  if (error == 0 && closed != 0) error = errno;
  if (error == 0) error = renameTemporary(*this);
  if (error != 0) throwUnwritable(target.string(), error);
}

void writeFileWhole(const std::filesystem::path& target, std::span<const std::uint8_t> contents) {
  struct stat status {};
  if (::stat(target.c_str(), &status) == 0) {
    if (isStandardOutput(status)) return writeStandardOutput(contents);
    if (!S_ISREG(status.st_mode)) return writeDirectly(target, contents);
  }
  OutputFile output(target);
  put(output.sink, contents);
  output.commit();
}

void writeStandardOutput(std::span<const std::uint8_t> contents) {
  const int error = writeAll(STDOUT_FILENO, contents);
  if (error != 0) throwUnwritable(standardOutputName, error);
}

}  // namespace tintora::cli
