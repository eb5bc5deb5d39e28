#include "benchmarks/watching_works.h"
#include "benchmarks/watching_work.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

#include <cstdio>
#include <iostream>
#include <thread>

std::string watchedPath(const std::string& folder, int number) {
  return folder + "/w" + std::to_string(number);
}

double seconds(Clock::duration duration) {
  return std::chrono::duration<double>(duration).count();
}

double processorSeconds(clockid_t clock) {
  timespec time{};
  ::clock_gettime(clock, &time);
  return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

double processorSecondsOf(const Watching& watching) {
  double used = processorSeconds(CLOCK_PROCESS_CPUTIME_ID);
  if (clockid_t clock{};
      watching.process() != 0 && ::clock_getcpuclockid(watching.process(), &clock) == 0)
    used += processorSeconds(clock);
  return used;
}

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

namespace {

std::unique_ptr<Work> makeWork(const std::string& name, const std::string& candidate,
                               const std::string& folder) {
  for (const auto make : {makeLatencyWork, makeRoundsWork, makeCostWork, makeSavesWork})
    if (auto work = make(name, candidate, folder))
      return work;
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
  if (work)
    work->end();
  return 0;
}
