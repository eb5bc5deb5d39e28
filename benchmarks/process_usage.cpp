#include "benchmarks/process_usage.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

namespace {
// Fields of /proc/PID/stat behind the program's name.
constexpr int UserField = 12;
constexpr int SystemField = 13;

double numberIn(const std::filesystem::path& file, const std::string& word) {
  std::ifstream stream(file);
  for (std::string each; stream >> each;)
    if (double number = 0; each == word && stream >> number)
      return number;
  return 0;
}

double processorSecondsOf(const std::string& folder) {
  std::ifstream stream(folder + "/stat");
  const std::string text{std::istreambuf_iterator<char>(stream), {}};
  std::istringstream fields(text.substr(std::min(text.rfind(')') + 1, text.size())));
  double ticks = 0;
  std::string field;
  for (int number = 1; fields >> field; ++number)
    if (number == UserField || number == SystemField)
      ticks += std::stod(field);
  return ticks / double(::sysconf(_SC_CLK_TCK));
}
} // namespace

ProcessReading ProcessReading::of(qint64 process) {
  const std::string folder = "/proc/" + std::to_string(process);
  ProcessReading reading;
  std::error_code error;
  for (const auto& thread : std::filesystem::directory_iterator(folder + "/task", error))
    reading.sleeps += numberIn(thread.path() / "status", "voluntary_ctxt_switches:");
  reading.processorSeconds = processorSecondsOf(folder);
  reading.seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
  return reading;
}

ProcessUsage ProcessUsage::between(const ProcessReading& first, const ProcessReading& last) {
  const double seconds = last.seconds - first.seconds;
  return {100 * (last.processorSeconds - first.processorSeconds) / seconds,
          (last.sleeps - first.sleeps) / seconds};
}

ProcessMemory ProcessMemory::of(qint64 process) {
  const std::string file = "/proc/" + std::to_string(process) + "/smaps_rollup";
  return {numberIn(file, "Rss:") / 1024, numberIn(file, "Pss:") / 1024};
}
