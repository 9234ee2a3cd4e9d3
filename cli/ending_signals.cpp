#include "cli/ending_signals.h"

#include <pthread.h>
#include <unistd.h>

#include <csignal>
#include <system_error>
#include <thread>

namespace tintora::cli {

namespace {

// Waits for one of the signals and ends the process by it.
void endAtSignal(const sigset_t& signals) {
  int signal = 0;
  while (::sigwait(&signals, &signal) != 0) {
  }
  TemporaryFiles& files = temporaryFiles();
  // Held to the end, so that no other thread creates another file.
  const std::lock_guard lock(files.mutex);
  for (const std::filesystem::path& name : files.names) ::unlink(name.c_str());
  sigset_t one{};
  sigemptyset(&one);
  sigaddset(&one, signal);
  ::pthread_sigmask(SIG_UNBLOCK, &one, nullptr);
  static_cast<void>(::raise(signal));
}

}  // namespace

TemporaryFiles& temporaryFiles() {
  // Never destroyed, because a signal may arrive during the exit.
  static TemporaryFiles& files = *new TemporaryFiles;
  return files;
}

void removeTemporaryFilesAtSignals() {
  sigset_t signals{};
  sigemptyset(&signals);
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    struct sigaction action {};
    if (::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_DFL) {
      sigaddset(&signals, signal);
    }
  }
  ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  try {
    std::thread([signals] { endAtSignal(signals); }).detach();
  } catch (const std::system_error&) {
    // Without a thread to wait for them, the signals end the tool as they always do.
    ::pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
  }
}

}  // namespace tintora::cli
