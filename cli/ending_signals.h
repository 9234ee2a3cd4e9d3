// What happens to temporary files when a signal ends the tool.
#pragma once

#include <filesystem>
#include <mutex>
#include <set>

namespace tintora::cli {

// The temporary files that exist now. Whoever creates, renames or removes one holds the mutex, so
// that the names are right at every moment.
struct TemporaryFiles {
  std::mutex mutex;
  std::set<std::filesystem::path> names;
};

TemporaryFiles& temporaryFiles();

// Makes signals that ask the tool to end (SIGHUP, SIGINT, SIGTERM) remove its temporary files
// first. Signals that the tool was started to ignore stay ignored. Must be called before any thread
// is started, because threads inherit which signals they leave to others.
void removeTemporaryFilesAtSignals();

}  // namespace tintora::cli
