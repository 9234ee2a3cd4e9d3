#include "cli/batch.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <new>
#include <optional>
#include <thread>

#include "cli/messages.h"
#include "cli/progress_bar.h"

namespace tintora::cli {

namespace {

// What the threads share; the mutex guards all of it and standard error.
struct Batch {
  const std::vector<std::string>& names;
  bool showsProgress;
  std::mutex mutex;
  std::size_t next = 0, done = 0, failed = 0;
};

std::optional<std::size_t> startNext(Batch& batch) {
  const std::lock_guard lock(batch.mutex);
  if (batch.next == batch.names.size()) return std::nullopt;
  if (batch.showsProgress) {
    drawProgressBar(batch.done, batch.names.size(), batch.names[batch.next]);
  }
  return batch.next++;
}

// Counts a step as done and says why it failed; `failure` is empty for one that came through.
void finish(Batch& batch, const std::string& failure) {
  const std::lock_guard lock(batch.mutex);
  ++batch.done;
  if (failure.empty()) return;
  ++batch.failed;
  if (batch.showsProgress) clearProgressBar();
  complain(failure);
}

void work(Batch& batch, const std::function<void(std::size_t)>& step) {
  while (const auto i = startNext(batch)) {
    std::string failure;
    try {
      step(*i);
    } catch (const std::bad_alloc&) {
      failure = batch.names[*i] + ": out of memory";
    } catch (const std::exception& error) {
      failure = error.what();
    }
    finish(batch, failure);
  }
}

}  // namespace

std::size_t runBatch(const std::vector<std::string>& names, std::size_t threads, bool showsProgress,
                     const std::function<void(std::size_t)>& step) {
  Batch batch{names, showsProgress, {}};
  {
    std::vector<std::jthread> others;
    for (std::size_t i = 1; i < std::min(threads, names.size()); ++i) {
      others.emplace_back([&] { work(batch, step); });
    }
    work(batch, step);
  }
  if (showsProgress) clearProgressBar();
  return batch.failed;
}

}  // namespace tintora::cli
