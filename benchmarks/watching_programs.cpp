#include "benchmarks/watching_programs.h"
#include "benchmarks/child_process.h"

#include <signal.h>

#include <array>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <thread>

namespace {

using Arguments = std::vector<std::string>;

Arguments inotifywait(const PathRange& range, bool once) {
  Arguments arguments = {"inotifywait", "--quiet", "--format", "%w"};
  if (!once)
    arguments.push_back("--monitor");
  if (range.paths.areFolders)
    arguments.insert(arguments.end(), {"-e", "create", "-e", "delete", "-e", "move"});
  else
    arguments.insert(arguments.end(),
                     {"-e", "modify", "-e", "attrib", "-e", "delete_self", "-e", "move_self"});
  return arguments;
}

Arguments fswatch(const PathRange& range, bool once) {
  Arguments arguments = {"fswatch", "--monitor=inotify_monitor", "--latency=0.1", "--format=%p",
                         "--allow-overflow"};
  if (once)
    arguments.push_back("--one-event");
  const std::vector<std::string> events =
      range.paths.areFolders
          ? Arguments{"Created", "Removed", "Renamed", "MovedFrom", "MovedTo"}
          : Arguments{"Updated", "AttributeModified", "Removed", "Renamed", "MovedFrom", "MovedTo"};
  for (const std::string& event : events)
    arguments.push_back("--event=" + event);
  return arguments;
}

// How many paths the kernel watches for `process`.
int watchCount(pid_t process) {
  int count = 0;
  std::error_code error;
  const std::string folder = "/proc/" + std::to_string(process) + "/fdinfo";
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    std::ifstream information(entry.path());
    for (std::string line; std::getline(information, line);)
      count += line.starts_with("inotify ");
  }
  return count;
}

class ProgramWatching final : public Watching {
 public:
  using MakeArguments = Arguments (*)(const PathRange&, bool once);

  ProgramWatching(Report report, MakeArguments arguments)
      : Watching(std::move(report)), makeArguments_(arguments) {}
  ~ProgramWatching() override {
    ended_ = true;
    if (process_ > 0)
      ::kill(process_, SIGTERM);
    if (thread_.joinable())
      thread_.join();
  }

  bool add(const PathRange& range) override {
    arguments_ = makeArguments_(range, addsAgain_);
    arguments_.insert(arguments_.end(), range.paths.encoded.begin() + range.first,
                      range.paths.encoded.begin() + range.end);
    const int output = start();
    if (output < 0)
      return false;
    thread_ = std::thread([this, output] { read(output); });
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (watchCount(process_) < range.end - range.first) {
      if (std::chrono::steady_clock::now() > end)
        return false;
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
  }

  int process() const override { return process_; }

 private:
  int start() {
    const int nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    const Child child = startChild(arguments_, nowhere, nowhere);
    ::close(nowhere);
    process_ = child.process;
    return child.process > 0 ? child.output : -1;
  }

  void read(int output) {
    for (;;) {
      readLines(output);
      ::close(output);
      ::waitpid(process_, nullptr, 0);
      if (ended_ || !addsAgain_ || (output = start()) < 0)
        return;
      // Asked to end meanwhile: this one has not been told.
      if (ended_)
        ::kill(process_, SIGTERM);
    }
  }

  void readLines(int output) {
    std::array<char, 64 * 1024> buffer;
    std::size_t length = 0;
    for (ssize_t count;
         (count = ::read(output, buffer.data() + length, buffer.size() - length)) > 0;) {
      length += std::size_t(count);
      std::string_view rest(buffer.data(), length);
      for (std::size_t end; (end = rest.find('\n')) != rest.npos; rest.remove_prefix(end + 1))
        report_(number(rest.substr(0, end)));
      std::copy(rest.begin(), rest.end(), buffer.begin());
      length = rest.size();
    }
  }

  static int number(std::string_view path) {
    int value = 0;
    for (std::size_t at = path.rfind('w') + 1;
         at < path.size() && path[at] >= '0' && path[at] <= '9'; ++at)
      value = value * 10 + (path[at] - '0');
    return value;
  }

  const MakeArguments makeArguments_;
  Arguments arguments_;
  std::atomic<pid_t> process_ = 0;
  std::atomic<bool> ended_ = false;
  std::thread thread_;
};

} // namespace

std::unique_ptr<Watching> makeProgramWatching(const std::string& candidate,
                                              Watching::Report report) {
  if (candidate == "Inotifywait")
    return std::make_unique<ProgramWatching>(std::move(report), inotifywait);
  if (candidate == "Fswatch")
    return std::make_unique<ProgramWatching>(std::move(report), fswatch);
  return nullptr;
}
