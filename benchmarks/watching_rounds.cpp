#include "benchmarks/watching_work.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <thread>
#include <vector>

using namespace std::chrono_literals;

namespace {

// A thousand files, each written `rounds` times at full speed: `filesAtATime` files in turn until
// they are done, then the next ones. Each report reads what its
// file says now; complete when the last contents of each have been read. Ends at the latest when
// nothing has been reported for two seconds.
class RoundsWork final : public Work {
 public:
  RoundsWork(const std::string& candidate, const std::string& folder, int rounds, int filesAtATime)
      : Work(candidate, folder), rounds_(rounds), filesAtATime_(filesAtATime) {}

  bool begin() override {
    for (int i = 0; i < Files; ++i) {
      paths_.append(watchedPath(folder_, i));
      files_.push_back(::open(paths_.encoded.back().c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600));
    }
    return watch(paths_);
  }

  Figures measure() override {
    isComplete_.assign(Files, false);
    reports_ = 0;
    left_ = Files;
    const double processorBefore = processorSecondsOf(*watching_);
    double writing = 0;
    Clock::time_point begin, written;
    runBesideEventLoop([&] {
      last_ = version_ + rounds_;
      begin = Clock::now();
      lastReport_ = begin;
      for (int first = 0; first < Files; first += filesAtATime_)
        for (int version = version_ + 1; version <= last_; ++version)
          for (int i = first; i < first + filesAtATime_; ++i)
            if (::pwrite(files_[std::size_t(i)], &version, sizeof version, 0) != sizeof version)
              std::perror("write");
      version_ = last_;
      written = Clock::now();
      writing = processorSeconds(CLOCK_THREAD_CPUTIME_ID);
      while (left_ > 0 && Clock::now() - std::max(lastReport_.load(), written) < 2s)
        std::this_thread::sleep_for(200us);
    });
    const double processor = processorSecondsOf(*watching_) - processorBefore - writing;
    Figures figures{{"s", {seconds(lastReport_.load() - begin)}},
                    {"reports", {double(reports_)}},
                    {"lost", {double(left_)}},
                    {"processor_s", {processor}}};
    // What is left of reports that nobody waits for.
    for (int before = -1; before != reports_;) {
      before = reports_;
      runEventLoop(50ms);
    }
    return figures;
  }

 private:
  static constexpr int Files = 1'000;

  // All by the same thread.
  void reported(int number) override {
    ++reports_;
    int version = 0;
    if (::pread(files_[std::size_t(number)], &version, sizeof version, 0) != sizeof version)
      return;
    if (left_ > 0)
      lastReport_ = Clock::now();
    if (version != last_ || isComplete_[std::size_t(number)])
      return;
    isComplete_[std::size_t(number)] = true;
    --left_;
  }

  const int rounds_;
  const int filesAtATime_;
  WatchedPaths paths_{};
  std::vector<int> files_;
  int version_ = 0;
  std::vector<bool> isComplete_;
  std::atomic<int> last_ = 0;
  std::atomic<int> left_ = 0;
  std::atomic<int> reports_ = 0;
  std::atomic<Clock::time_point> lastReport_;
};

} // namespace

std::unique_ptr<Work> makeRoundsWork(const std::string& name, const std::string& candidate,
                                     const std::string& folder) {
  if (name == "Burst")
    return std::make_unique<RoundsWork>(candidate, folder, 1, 1'000);
  if (name == "Storm")
    return std::make_unique<RoundsWork>(candidate, folder, 1'000, 1'000);
  if (name == "StormInPairs")
    return std::make_unique<RoundsWork>(candidate, folder, 1'000, 2);
  return nullptr;
}
