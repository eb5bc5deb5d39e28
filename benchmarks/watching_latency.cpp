#include "benchmarks/watching_work.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <optional>
#include <random>
#include <thread>
#include <vector>

using namespace std::chrono_literals;

namespace {

// Time from a change to its report, over 16 files or folders in turn.
class LatencyWork : public Work {
 public:
  using Work::Work;

  bool begin() override {
    for (int i = 0; i < Targets; ++i) {
      paths_.append(watchedPath(folder_, i));
      prepare(paths_.encoded.back());
    }
    return watch(paths_);
  }

  // At most 100 changes, or a quarter of a second.
  Figures measure() override {
    Figures figures;
    runBesideEventLoop([&] {
      const auto end = Clock::now() + 250ms;
      for (int i = 0; i < 100 && Clock::now() < end; ++i) {
        // Nobody is busy when the change comes, and nothing comes at regular times.
        std::this_thread::sleep_for(std::chrono::microseconds(pause_(random_)));
        if (const auto time = timeOfOne())
          figures["s"].push_back(*time);
        else
          figures["lost"].push_back(1);
      }
    });
    return figures;
  }

 protected:
  virtual void prepare(const std::string& path) = 0;
  virtual void change(int target, int count) = 0;

  WatchedPaths paths_{};

 private:
  static constexpr int Targets = 16;

  std::optional<double> timeOfOne() {
    const int target = count_ % Targets;
    {
      const std::lock_guard lock(mutex_);
      expected_ = target;
    }
    const auto begin = Clock::now();
    change(target, count_++);
    std::unique_lock lock(mutex_);
    if (changed_.wait_for(lock, 3s, [&] { return expected_ < 0; }))
      return seconds(reportedAt_ - begin);
    expected_ = -1;
    return std::nullopt;
  }

  void reported(int number) override {
    const auto now = Clock::now();
    const std::lock_guard lock(mutex_);
    if (number != expected_)
      return;
    expected_ = -1;
    reportedAt_ = now;
    changed_.notify_one();
  }

  int count_ = 0;
  std::minstd_rand random_{1};
  std::uniform_int_distribution<int> pause_{100, 400};
  std::mutex mutex_;
  std::condition_variable changed_;
  // Protected by the mutex.
  int expected_ = -1;
  Clock::time_point reportedAt_;
};

class WriteWork final : public LatencyWork {
 public:
  using LatencyWork::LatencyWork;

 private:
  void prepare(const std::string& path) override {
    files_.push_back(::open(path.c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600));
  }
  void change(int target, int count) override {
    if (::pwrite(files_[std::size_t(target)], &count, sizeof count, 0) != sizeof count)
      std::perror("write");
  }

  std::vector<int> files_;
};

class AddFileWork final : public LatencyWork {
 public:
  using LatencyWork::LatencyWork;

 private:
  void prepare(const std::string& path) override {
    paths_.areFolders = true;
    ::mkdir(path.c_str(), 0700);
  }
  void change(int target, int count) override {
    const std::string path = watchedPath(folder_, target) + "/n" + std::to_string(count);
    ::close(::open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600));
  }
};

// For this process, its threads and programs that it starts.
void useOneProcessor() {
  cpu_set_t processors;
  CPU_ZERO(&processors);
  CPU_SET(::sched_getcpu(), &processors);
  if (::sched_setaffinity(0, sizeof processors, &processors) != 0)
    std::perror("sched_setaffinity");
}

} // namespace

std::unique_ptr<Work> makeLatencyWork(const std::string& name, const std::string& candidate,
                                      const std::string& folder) {
  if (name == "Write")
    return std::make_unique<WriteWork>(candidate, folder);
  if (name == "WriteOneProcessor") {
    useOneProcessor();
    return std::make_unique<WriteWork>(candidate, folder);
  }
  if (name == "AddFile")
    return std::make_unique<AddFileWork>(candidate, folder);
  return nullptr;
}
