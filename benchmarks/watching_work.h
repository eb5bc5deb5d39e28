// What the works of watching_benchmark have in common.
#pragma once

#include "benchmarks/watching_candidates.h"
#include "benchmarks/watching_works.h"

#include <time.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

using Clock = std::chrono::steady_clock;

// Something that one candidate is put to.
class Work {
 public:
  Work(const std::string& candidate, const std::string& folder)
      : folder_(folder),
        watching_(Watching::make(candidate, [this](int number) { reported(number); })) {}
  virtual ~Work() = default;
  // Once, before all. Whether the candidate could be set up.
  virtual bool begin() { return true; }
  virtual Figures measure() = 0;
  // Once, after all: nothing is reported from then on.
  void end() { watching_.reset(); }

 protected:
  virtual void reported(int) {}

  bool watch(const WatchedPaths& paths) { return watching_->add({paths, 0, paths.count()}); }

  const std::string folder_;
  std::unique_ptr<Watching> watching_;
};

// The works of each source: null for a name that it does not know.
std::unique_ptr<Work> makeLatencyWork(const std::string& name, const std::string& candidate,
                                      const std::string& folder);
std::unique_ptr<Work> makeRoundsWork(const std::string& name, const std::string& candidate,
                                     const std::string& folder);
std::unique_ptr<Work> makeCostWork(const std::string& name, const std::string& candidate,
                                   const std::string& folder);
std::unique_ptr<Work> makeSavesWork(const std::string& name, const std::string& candidate,
                                    const std::string& folder);

// The path of the file or folder `number` in the candidate's own folder.
std::string watchedPath(const std::string& folder, int number);

double seconds(Clock::duration duration);
// The reading of a processor clock.
double processorSeconds(clockid_t clock);
// What this process has used, and the program of the candidate if it has one.
double processorSecondsOf(const Watching& watching);

// Runs the event loop of the main thread while `work` runs on another.
void runBesideEventLoop(const std::function<void()>& work);
void runEventLoop(std::chrono::milliseconds duration);
