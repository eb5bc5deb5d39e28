#include "benchmarks/watching_works.h"
#include "benchmarks/watching_candidates.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

#include <fcntl.h>
#include <malloc.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <mutex>
#include <random>
#include <thread>

using namespace std::chrono_literals;

namespace {

using Clock = std::chrono::steady_clock;

double seconds(Clock::duration duration) {
  return std::chrono::duration<double>(duration).count();
}

double processorSeconds(clockid_t clock) {
  timespec time{};
  ::clock_gettime(clock, &time);
  return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

double processorSecondsOf(int process) {
  clockid_t clock{};
  if (process == 0 || ::clock_getcpuclockid(process, &clock) != 0)
    return 0;
  return processorSeconds(clock);
}

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

// Runs the event loop of the main thread while `work` runs on another.
void runBesideEventLoop(const std::function<void()>& work) {
  QEventLoop loop;
  std::thread thread([&] {
    work();
    QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
  });
  loop.exec();
  thread.join();
}

void runEventLoop(std::chrono::milliseconds duration) {
  QEventLoop loop;
  QTimer::singleShot(duration, &loop, &QEventLoop::quit);
  loop.exec();
}

std::string pathOf(const std::string& folder, int number) {
  return folder + "/w" + std::to_string(number);
}

class Work {
 public:
  Work(const std::string& candidate, const std::string& folder)
      : folder_(folder),
        watching_(Watching::make(candidate, [this](int number) { reported(number); })) {}
  virtual ~Work() = default;
  // Once, before all. Whether the candidate could be set up.
  virtual bool begin() { return true; }
  virtual Figures measure() = 0;

 protected:
  virtual void reported(int) {}

  bool watch(const WatchedPaths& paths) { return watching_->add({paths, 0, paths.count()}); }

  const std::string folder_;
  const std::unique_ptr<Watching> watching_;
};

// Time from a change to its report, over 16 files or folders in turn.
class LatencyWork : public Work {
 public:
  using Work::Work;

  bool begin() override {
    for (int i = 0; i < Targets; ++i) {
      paths_.append(pathOf(folder_, i));
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
    const std::string path = pathOf(folder_, target) + "/n" + std::to_string(count);
    ::close(::open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600));
  }
};

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
      paths_.append(pathOf(folder_, i));
      files_.push_back(::open(paths_.encoded.back().c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600));
    }
    return watch(paths_);
  }

  Figures measure() override {
    isComplete_.assign(Files, false);
    reports_ = 0;
    left_ = Files;
    const double processorBefore = processorSecondsUsed();
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
    const double processor = processorSecondsUsed() - processorBefore - writing;
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

  double processorSecondsUsed() const {
    return processorSeconds(CLOCK_PROCESS_CPUTIME_ID) + processorSecondsOf(watching_->process());
  }

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
    const auto begin = Clock::now();
    const int added =
        inSteps([&](const PathRange& range) { return watching_->add(range); }, paths_.count());
    const auto middle = Clock::now();
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
    const double processor = processorSecondsUsed();
    const double sleeps = sleepCount();
    runEventLoop(duration_);
    return {{"s", {processorSecondsUsed() - processor}}, {"wake_ups", {sleepCount() - sleeps}}};
  }

 private:
  double processorSecondsUsed() const {
    return processorSeconds(CLOCK_PROCESS_CPUTIME_ID) + processorSecondsOf(watching_->process());
  }
  double sleepCount() const {
    const int process = watching_->process();
    return wakeUps("self") + (process != 0 ? wakeUps(std::to_string(process)) : 0);
  }

  const std::chrono::seconds duration_;
  WatchedPaths paths_{};
};

// Five saves of a watched file as editors do them: a new file is written and renamed over it.
class SavesWork final : public Work {
 public:
  SavesWork(const std::string& candidate, const std::string& folder, bool addsAgain)
      : Work(candidate, folder) {
    watching_->setAddsAgain(addsAgain);
  }

  bool begin() override {
    paths_.append(pathOf(folder_, 0));
    write(paths_.encoded[0], "0");
    return watch(paths_);
  }

  Figures measure() override {
    int seen = 0;
    runBesideEventLoop([&] {
      for (int i = 0; i < 5; ++i) {
        // The candidate has added the path again, and has told all about the last save.
        std::this_thread::sleep_for(300ms);
        reports_ = 0;
        const std::string fresh = folder_ + "/fresh";
        write(fresh, std::to_string(i));
        std::filesystem::rename(fresh, paths_.encoded[0]);
        const auto end = Clock::now() + 1500ms;
        while (reports_ == 0 && Clock::now() < end)
          std::this_thread::sleep_for(1ms);
        seen += reports_ > 0;
      }
    });
    return {{"s", {0}}, {"seen_of_5", {double(seen)}}};
  }

 private:
  static void write(const std::string& path, const std::string& text) {
    std::ofstream(path) << text;
  }
  void reported(int) override { ++reports_; }

  WatchedPaths paths_{};
  std::atomic<int> reports_ = 0;
};

std::unique_ptr<Work> makeWork(const std::string& name, const std::string& candidate,
                               const std::string& folder) {
  if (name == "Write")
    return std::make_unique<WriteWork>(candidate, folder);
  if (name == "AddFile")
    return std::make_unique<AddFileWork>(candidate, folder);
  if (name == "Burst")
    return std::make_unique<RoundsWork>(candidate, folder, 1, 1'000);
  if (name == "Storm")
    return std::make_unique<RoundsWork>(candidate, folder, 1'000, 1'000);
  if (name == "StormInPairs")
    return std::make_unique<RoundsWork>(candidate, folder, 1'000, 2);
  if (name == "Idle")
    return std::make_unique<IdleWork>(candidate, folder, 20s);
  if (name == "Saves" || name == "SavesAddedAgain")
    return std::make_unique<SavesWork>(candidate, folder, name == "SavesAddedAgain");
  if (name.starts_with("Add"))
    return std::make_unique<AddingWork>(candidate, folder, std::atoi(name.c_str() + 3));
  return nullptr;
}

} // namespace

std::string sharedFile(const std::string& folder, int number) {
  char path[64];
  std::snprintf(path, sizeof path, "/files/%03d/w%06d", number / SharedFilesInAFolder, number);
  return folder + path;
}

int runWatchingCandidate(int argc, char** argv) {
  const std::string candidate = argv[2];
  QCoreApplication application(argc, argv);
  const std::unique_ptr<Work> work = makeWork(argv[3], candidate, argv[4]);
  const bool hasBegun = work && work->begin();
  for (std::string line; std::getline(std::cin, line);) {
    if (!hasBegun) {
      std::cout << "failed" << std::endl;
      continue;
    }
    std::cout.precision(12);
    for (const auto& [figure, values] : work->measure())
      for (const double value : values)
        std::cout << figure << ' ' << value << '\n';
    std::cout << "end" << std::endl;
  }
  return 0;
}
