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

// Prints, after everything else, how long each benchmark takes relative to its peer.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  explicit RatioReporter(BenchmarkPairs pairs)
      : ConsoleReporter(OO_Tabular), pairs_(std::move(pairs)) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs)
      if (run.run_type == Run::RT_Iteration || run.aggregate_name == "median")
        seconds_[run.run_name.function_name] =
            run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
  }

  void Finalize() override {
    ConsoleReporter::Finalize();
    for (const auto& [ours, peer] : pairs_)
      if (seconds_.count(ours) && seconds_.count(peer))
        GetOutputStream() << ours << " / " << peer << ": " << seconds_[ours] / seconds_[peer]
                          << " x the time\n";
  }

 private:
  BenchmarkPairs pairs_;
  std::map<std::string, double> seconds_;
};

inline int runBenchmarks(int argc, char** argv, BenchmarkPairs pairs) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv))
    return 1;
  RatioReporter reporter(std::move(pairs));
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return 0;
}
