// Watching files, beside the kernel's own interface and its peers.
//
//   Write, AddFile    time from a write to a watched file, or from adding a file to a watched
//                     folder, to the report: median, and p99_us the 99th percentile. Changes come
//                     after pauses of 0.1 to 0.4 ms
//   WriteOneProcessor the same, with all threads on one processor: how much is done. Elsewhere the
//                     kernel may wake a sleeping processor for each thread, which takes a virtual
//                     machine longer than the rest
//   Burst             1,000 files written once each: time until the last of them is reported
//   Storm             1,000,000 writes over 1,000 files: time until the last contents of each have
//                     been read by a report about it, and `lost`, the files with which that never
//                     happened; processor time without that of the writing
//   StormInPairs      the same, two files at a time: the kernel's queue overflows with events of
//                     some, and others are not written again
//   Add1000 …         adding and removing so many files: time of adding one, and as counters its
//                     processor time, time of removing one, and bytes for each path besides the
//                     path: on the heap, and private and dirty. Ends after five seconds, with
//                     `added` and `removed` files
//   Idle              processor time and wake-ups of 10,000 watched files in 20 idle seconds
//   Saves             how many of five saves by renaming over the watched file are reported;
//                     SavesAddedAgain when the path is added again where it has gone
//
//   KQueue       VXKQueue with a delegate
//   Bare         the floor: a thread that reads inotify and does nothing else; reports on it
//   BareMain     the same, and Qt's blocking queued call to the main thread for each event
//   QtWatcher    QFileSystemWatcher
//   Inotifywait  the program, its lines read from a pipe by a thread, which reports
//   Fswatch      the same
//
// Each runs in a process of its own and they take turns, so that what else the machine does meets
// all of them. Files are in memory where /dev/shm can be written to; TMPDIR takes them elsewhere.
#include "benchmarks/child_process.h"
#include "benchmarks/ratio_main.h"
#include "benchmarks/watching_works.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>

namespace {

// What one work prints besides its time: the quantile of a figure, times `scale`.
struct Counter {
  const char* name;
  const char* figure;
  double quantile = 0.5;
  double scale = 1;
};

enum class Turns {
  Alternating,      // one process each, for all turns
  AlternatingFresh, // a fresh process for each turn
  Together,         // all at the same time, once
};

struct Group {
  std::string work;
  std::vector<std::string> candidates;
  Turns turns;
  int turnCount;
  benchmark::TimeUnit unit;
  std::vector<Counter> counters;
  int watches = 0; // of the kernel, at the same time
};

const std::vector<std::string> Everybody = {"KQueue",    "Bare",        "BareMain",
                                            "QtWatcher", "Inotifywait", "Fswatch"};
const std::vector<std::string> WithoutProxy = {"KQueue", "Bare", "QtWatcher", "Inotifywait",
                                               "Fswatch"};
const std::vector<std::string> InProcess = {"KQueue", "Bare", "QtWatcher"};

std::vector<Group> groups() {
  const std::vector<Counter> latency = {
      {"p99_us", "s", 0.99, 1e6}, {"samples", "s", -1}, {"lost", "lost", -1}};
  const std::vector<Counter> rounds = {
      {"reports", "reports"}, {"processor_s", "processor_s"}, {"lost", "lost", 1}};
  const std::vector<Counter> adding = {{"processor_us", "processor_s", 0.5, 1e6},
                                       {"remove_us", "remove_s", 0.5, 1e6},
                                       {"heap_B", "heap_B"},
                                       {"private_B", "private_B"},
                                       {"added", "added"},
                                       {"removed", "removed"}};
  using enum Turns;
  return {
      {"Write", Everybody, Alternating, 40, benchmark::kMicrosecond, latency},
      {"WriteOneProcessor", Everybody, Alternating, 40, benchmark::kMicrosecond, latency},
      {"AddFile", Everybody, Alternating, 40, benchmark::kMicrosecond, latency},
      {"Burst", Everybody, Alternating, 20, benchmark::kMillisecond, rounds},
      {"Storm", Everybody, Alternating, 3, benchmark::kMillisecond, rounds},
      {"StormInPairs", Everybody, Alternating, 3, benchmark::kMillisecond, rounds},
      {"Add1000", InProcess, AlternatingFresh, 9, benchmark::kMicrosecond, adding, 1'100},
      {"Add10000", InProcess, AlternatingFresh, 5, benchmark::kMicrosecond, adding, 10'100},
      {"Add100000", InProcess, AlternatingFresh, 3, benchmark::kMicrosecond, adding, 100'200},
      {"Idle",
       WithoutProxy,
       Together,
       1,
       benchmark::kMillisecond,
       {{"wake_ups", "wake_ups"}},
       51'000},
      {"Saves", WithoutProxy, Together, 1, benchmark::kMillisecond, {{"seen_of_5", "seen_of_5"}}},
      {"SavesAddedAgain",
       WithoutProxy,
       Together,
       1,
       benchmark::kMillisecond,
       {{"seen_of_5", "seen_of_5"}}}};
}

// The folder of the watched files, for as long as this object lives.
class Folder {
 public:
  Folder() {
    const char* chosen = std::getenv("TMPDIR");
    std::string name = chosen ? chosen : ::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    name += "/watching_benchmark.XXXXXX";
    if (!::mkdtemp(name.data()))
      std::perror(name.c_str());
    path_ = name;
  }
  ~Folder() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
  }

  const std::string& path() const { return path_; }
  std::string fresh() {
    const std::string name = path_ + "/own" + std::to_string(++count_);
    std::filesystem::create_directory(name);
    return name;
  }
  // Makes the files that candidates share.
  void makeFiles() {
    if (std::exchange(hasFiles_, true))
      return;
    for (int i = 0; i < SharedFiles; ++i) {
      const std::string name = sharedFile(path_, i);
      if (i % SharedFilesInAFolder == 0)
        std::filesystem::create_directories(std::filesystem::path(name).parent_path());
      std::ofstream(name) << i;
    }
  }

 private:
  std::string path_;
  int count_ = 0;
  bool hasFiles_ = false;
};

// A candidate in its process.
class Session {
 public:
  Session(const std::string& program, const std::string& candidate, const std::string& work,
          const std::string& folder) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
      return;
    child_ = startChild({program, "--candidate", candidate, work, folder}, ends[0]);
    ::close(ends[0]);
    input_ = ends[1];
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session() {
    ::close(input_);
    ::close(child_.output);
    ::waitpid(child_.process, nullptr, 0);
  }

  void start() { hasStarted_ = ::write(input_, "go\n", 3) == 3; }

  // Adds the figures of what was started to `figures`; false where it failed.
  bool finish(Figures& figures) {
    if (!hasStarted_)
      return false;
    for (std::string line; readLine(line);) {
      if (line == "end")
        return true;
      if (line == "failed")
        return false;
      std::istringstream words(line);
      std::string figure;
      if (double value = 0; words >> figure >> value)
        figures[figure].push_back(value);
    }
    return false;
  }

 private:
  bool readLine(std::string& line) {
    std::size_t end;
    while ((end = read_.find('\n')) == read_.npos) {
      char bytes[4096];
      const ssize_t count = ::read(child_.output, bytes, sizeof bytes);
      if (count <= 0)
        return false;
      read_.append(bytes, std::size_t(count));
    }
    line = read_.substr(0, end);
    read_.erase(0, end + 1);
    return true;
  }

  Child child_;
  int input_ = -1;
  bool hasStarted_ = false;
  std::string read_;
};

// Measures a group when the first of its candidates is asked for.
class Measurement {
 public:
  Measurement(Group group, std::string program, Folder& folder)
      : group_(std::move(group)), program_(std::move(program)), folder_(folder) {}

  const Group& group() const { return group_; }

  void report(benchmark::State& state, const std::string& candidate) {
    if (!std::exchange(hasRun_, true))
      run();
    if (!obstacle_.empty() || failed_[candidate]) {
      const std::string reason = obstacle_.empty() ? candidate + " failed" : obstacle_;
      state.SkipWithError(reason.c_str());
      return;
    }
    Figures& figures = figures_[candidate];
    for (auto _ : state)
      state.SetIterationTime(quantile(figures["s"], 0.5));
    for (const Counter& counter : group_.counters)
      state.counters[counter.name] =
          counter.quantile < 0
              ? double(figures[counter.figure].size())
              : counter.scale * quantile(figures[counter.figure], counter.quantile);
  }

 private:
  static double quantile(std::vector<double>& values, double part) {
    if (values.empty())
      return 0;
    std::sort(values.begin(), values.end());
    const double rank = std::ceil(part * double(values.size()));
    return values[std::size_t(std::max(rank, 1.0)) - 1];
  }

  void run() {
    int limit = 0;
    std::ifstream("/proc/sys/fs/inotify/max_user_watches") >> limit;
    if (limit < group_.watches) {
      obstacle_ = "needs fs.inotify.max_user_watches=" + std::to_string(group_.watches) +
                  ", which is " + std::to_string(limit);
      return;
    }
    if (group_.watches > 0)
      folder_.makeFiles();
    std::map<std::string, std::unique_ptr<Session>> sessions;
    const auto begin = [&](const std::string& candidate) {
      sessions[candidate] =
          std::make_unique<Session>(program_, candidate, group_.work, folder_.fresh());
    };
    const auto finish = [&](const std::string& candidate) {
      if (!sessions[candidate]->finish(figures_[candidate]))
        failed_[candidate] = true;
    };
    if (group_.turns != Turns::AlternatingFresh)
      for (const std::string& candidate : group_.candidates)
        begin(candidate);
    std::vector<std::string> order = group_.candidates;
    for (int turn = 0; turn < group_.turnCount; ++turn) {
      for (const std::string& candidate : order) {
        if (group_.turns == Turns::AlternatingFresh)
          begin(candidate);
        sessions[candidate]->start();
        if (group_.turns != Turns::Together)
          finish(candidate);
        if (group_.turns == Turns::AlternatingFresh)
          sessions[candidate].reset();
      }
      // Each comes after another one in the next turn but seldom in the same place.
      std::rotate(order.begin(), order.begin() + 1, order.end());
    }
    if (group_.turns == Turns::Together)
      for (const std::string& candidate : group_.candidates)
        finish(candidate);
  }

  const Group group_;
  const std::string program_;
  Folder& folder_;
  bool hasRun_ = false;
  std::string obstacle_;
  std::map<std::string, Figures> figures_;
  std::map<std::string, bool> failed_;
};

} // namespace

int main(int argc, char** argv) {
  if (argc == 5 && std::string(argv[1]) == "--candidate")
    return runWatchingCandidate(argc, argv);
  Folder folder;
  BenchmarkPairs pairs;
  for (Group& group : groups()) {
    const auto measurement =
        std::make_shared<Measurement>(std::move(group), "/proc/self/exe", folder);
    const std::string work = measurement->group().work;
    for (const std::string& candidate : measurement->group().candidates) {
      benchmark::RegisterBenchmark((work + candidate).c_str(),
                                   [measurement, candidate](benchmark::State& state) {
                                     measurement->report(state, candidate);
                                   })
          ->UseManualTime()
          ->Iterations(1)
          ->Unit(measurement->group().unit);
      if (candidate != "KQueue" && !work.starts_with("Saves"))
        pairs.emplace_back(work + "KQueue", work + candidate);
    }
  }
  return runBenchmarks(
      argc, argv, pairs,
      {"p99_us", "processor_s", "processor_us", "remove_us", "heap_B", "wake_ups"});
}
