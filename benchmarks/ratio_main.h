// The main function of a benchmark: runs it offscreen and closes with the ratios to the peers.
#pragma once

#include <benchmark/benchmark.h>

#include <QtGui/QGuiApplication>

#include <map>
#include <string>
#include <utility>
#include <vector>

// A benchmark and the peer or floor that it stands beside.
using BenchmarkPairs = std::vector<std::pair<std::string, std::string>>;

// Prints, after everything else, how long each benchmark takes relative to its peer, and how both
// compare in the counters of `comparedCounters`.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  explicit RatioReporter(BenchmarkPairs pairs, std::vector<std::string> comparedCounters)
      : ConsoleReporter(OO_Tabular), pairs_(std::move(pairs)),
        comparedCounters_(std::move(comparedCounters)) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs)
      if (run.run_type == Run::RT_Iteration || run.aggregate_name == "median") {
        Figures& figures = figures_[run.run_name.function_name];
        figures["time"] =
            run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
        for (const std::string& counter : comparedCounters_)
          if (const auto found = run.counters.find(counter); found != run.counters.end())
            figures[counter] = found->second;
      }
  }

  void Finalize() override {
    ConsoleReporter::Finalize();
    for (const auto& [ours, peer] : pairs_) {
      if (!figures_.count(ours) || !figures_.count(peer))
        continue;
      GetOutputStream() << ours << " / " << peer << ": "
                        << figures_[ours]["time"] / figures_[peer]["time"] << " x the time";
      for (const std::string& counter : comparedCounters_)
        if (figures_[ours].count(counter) && figures_[peer].count(counter))
          GetOutputStream() << ", " << figures_[ours][counter] / figures_[peer][counter] << " x "
                            << counter;
      GetOutputStream() << '\n';
    }
  }

 private:
  using Figures = std::map<std::string, double>;

  BenchmarkPairs pairs_;
  std::vector<std::string> comparedCounters_;
  std::map<std::string, Figures> figures_;
};

// `Application` is QApplication for benchmarks of widgets.
template <class Application = QGuiApplication>
int runBenchmarks(int argc, char** argv, BenchmarkPairs pairs,
                  std::vector<std::string> comparedCounters = {}) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  Application application(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv))
    return 1;
  RatioReporter reporter(std::move(pairs), std::move(comparedCounters));
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return 0;
}
