#include "benchmarks/watching_work.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

using namespace std::chrono_literals;

namespace {

// The number after `word` in a file of the form "word: number".
double numberIn(const std::filesystem::path& file, const std::string& word) {
  std::ifstream stream(file);
  for (std::string each; stream >> each;)
    if (double number = 0; each == word && stream >> number)
      return number;
  return 0;
}

// How often the threads of a process went to sleep, and so were woken.
double wakeUps(const std::string& process) {
  double count = 0;
  for (const auto& thread : std::filesystem::directory_iterator("/proc/" + process + "/task"))
    count += numberIn(thread.path() / "status", "voluntary_ctxt_switches:");
  return count;
}

// Adding `count` files and removing them in the same order, and what they take of memory.
class AddingWork final : public Work {
 public:
  AddingWork(const std::string& candidate, const std::string& folder, int count)
      : Work(candidate, folder) {
    const std::string top = std::filesystem::path(folder).parent_path();
    for (int i = 0; i < count; ++i)
      paths_.append(sharedFile(top, i));
  }

  Figures measure() override {
    ::malloc_trim(0);
    const double heap = heapBytes();
    const double memory = privateBytes();
    const double processor = processorSecondsOf(*watching_);
    const auto begin = Clock::now();
    const int added =
        inSteps([&](const PathRange& range) { return watching_->add(range); }, paths_.count());
    const auto middle = Clock::now();
    const double processorUsed = processorSecondsOf(*watching_) - processor;
    const double heapUsed = heapBytes() - heap;
    const double memoryUsed = privateBytes() - memory;
    const auto beginOfRemoving = Clock::now();
    const int removed = inSteps(
        [&](const PathRange& range) {
          watching_->remove(range);
          return true;
        },
        added);
    const auto end = Clock::now();
    return {{"s", {seconds(middle - begin) / added}},
            {"processor_s", {processorUsed / added}},
            {"remove_s", {seconds(end - beginOfRemoving) / removed}},
            {"added", {double(added)}},
            {"removed", {double(removed)}},
            {"heap_B", {heapUsed / added}},
            {"private_B", {memoryUsed / added}}};
  }

 private:
  // A thousand at a time, for at most five seconds. How many were done.
  template <class F>
  int inSteps(F&& step, int count) const {
    const auto end = Clock::now() + 5s;
    int done = 0;
    while (done < count && Clock::now() < end) {
      const int next = std::min(done + 1'000, count);
      if (!step(PathRange{paths_, done, next}))
        break;
      done = next;
    }
    return done;
  }

  static double heapBytes() {
    const auto information = ::mallinfo2();
    return double(information.uordblks + information.hblkhd);
  }
  static double privateBytes() {
    return numberIn("/proc/self/smaps_rollup", "Private_Dirty:") * 1024;
  }

  WatchedPaths paths_{};
};

// 10,000 files to which nothing happens.
class IdleWork final : public Work {
 public:
  IdleWork(const std::string& candidate, const std::string& folder, std::chrono::seconds duration)
      : Work(candidate, folder), duration_(duration) {}

  bool begin() override {
    const std::string top = std::filesystem::path(folder_).parent_path();
    for (int i = 0; i < 10'000; ++i)
      paths_.append(sharedFile(top, i));
    return watch(paths_);
  }

  Figures measure() override {
    runEventLoop(1s);
    const double processor = processorSecondsOf(*watching_);
    const double sleeps = sleepCount();
    runEventLoop(duration_);
    return {{"s", {processorSecondsOf(*watching_) - processor}},
            {"wake_ups", {sleepCount() - sleeps}}};
  }

 private:
  double sleepCount() const {
    const int process = watching_->process();
    return wakeUps("self") + (process != 0 ? wakeUps(std::to_string(process)) : 0);
  }

  const std::chrono::seconds duration_;
  WatchedPaths paths_{};
};

} // namespace

std::unique_ptr<Work> makeCostWork(const std::string& name, const std::string& candidate,
                                   const std::string& folder) {
  if (name == "Idle")
    return std::make_unique<IdleWork>(candidate, folder, 20s);
  const int count = name.starts_with("Add") ? std::atoi(name.c_str() + 3) : 0;
  if (count > 0)
    return std::make_unique<AddingWork>(candidate, folder, count);
  return nullptr;
}
