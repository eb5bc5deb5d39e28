// A call that another thread has the main thread make, and waits for, beside Qt's own blocking
// queued call, while the main thread runs the event loop of a program with windows (Gui) or without
// (Core). All in one process and in random turns; the times are medians.
//
//   CallGui, CallCore              a member function through the proxy
//   SendGui, SendCore              the same by its name
//   QtCallGui, QtCallCore          QMetaObject::invokeMethod with Qt::BlockingQueuedConnection
//   QtSendGui, QtSendCore          the same by its name
//   CallAfterPause                 one call 200 µs after the last, so that both threads sleep
//   QtCallAfterPause               the same by Qt
//   CallOnMainThread               a member function through the proxy, on the main thread itself
//   SendOnMainThread               the same by its name
//
// The processor's time (CPU) is that of both threads together.
#include "benchmarks/ratio_main.h"
#include "zqticker/watching/VXMainThreadProxy.h"

#include <benchmark/benchmark.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QObject>
#include <QtGui/QGuiApplication>

#include <chrono>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

class Receiver : public QObject {
  Q_OBJECT

 public:
  Q_INVOKABLE int add(int number) { return sum_ += number; }

 private:
  int sum_ = 0;
};

int argumentCount = 1;
char programName[] = "proxy_benchmark";
char* programArguments[] = {programName, nullptr};

// Runs `work(receiver, proxy)` on another thread while an `Application` runs its loop.
template <class Application, class Work>
void runBesideLoop(Work work) {
  Application application(argumentCount, programArguments);
  Receiver receiver;
  const auto proxy = mainThreadProxy(&receiver);
  std::thread thread([&] {
    // The first calls wait for the loop to begin.
    for (int i = 0; i < 100; ++i)
      proxy->call(&Receiver::add, 1);
    work(receiver, *proxy);
    QMetaObject::invokeMethod(&application, &QCoreApplication::quit, Qt::QueuedConnection);
  });
  QCoreApplication::exec();
  thread.join();
}

// One call of each kind.
const auto call = [](Receiver&, VXMainThreadProxy& proxy) {
  benchmark::DoNotOptimize(proxy.call(&Receiver::add, 1));
};
const auto send = [](Receiver&, VXMainThreadProxy& proxy) {
  benchmark::DoNotOptimize(proxy.send("add:", {1}));
};
const auto qtCall = [](Receiver& receiver, VXMainThreadProxy&) {
  int sum = 0;
  QMetaObject::invokeMethod(
      &receiver, [&] { return receiver.add(1); }, Qt::BlockingQueuedConnection, &sum);
  benchmark::DoNotOptimize(sum);
};
const auto qtSend = [](Receiver& receiver, VXMainThreadProxy&) {
  int sum = 0;
  QMetaObject::invokeMethod(&receiver, "add", Qt::BlockingQueuedConnection, Q_RETURN_ARG(int, sum),
                            Q_ARG(int, 1));
  benchmark::DoNotOptimize(sum);
};

template <class Application, class One>
void besideLoop(benchmark::State& state, One one) {
  runBesideLoop<Application>([&](Receiver& receiver, VXMainThreadProxy& proxy) {
    for (auto _ : state)
      one(receiver, proxy);
  });
}

template <class One>
void afterPause(benchmark::State& state, One one) {
  using Clock = std::chrono::steady_clock;
  runBesideLoop<QGuiApplication>([&](Receiver& receiver, VXMainThreadProxy& proxy) {
    for (auto _ : state) {
      std::this_thread::sleep_for(std::chrono::microseconds(200));
      const Clock::time_point begin = Clock::now();
      one(receiver, proxy);
      state.SetIterationTime(std::chrono::duration<double>(Clock::now() - begin).count());
    }
  });
}

template <class One>
void onMainThread(benchmark::State& state, One one) {
  const QCoreApplication application(argumentCount, programArguments);
  Receiver receiver;
  const auto proxy = mainThreadProxy(&receiver);
  for (auto _ : state)
    one(receiver, *proxy);
}

void CallGui(benchmark::State& state) {
  besideLoop<QGuiApplication>(state, call);
}
void SendGui(benchmark::State& state) {
  besideLoop<QGuiApplication>(state, send);
}
void QtCallGui(benchmark::State& state) {
  besideLoop<QGuiApplication>(state, qtCall);
}
void QtSendGui(benchmark::State& state) {
  besideLoop<QGuiApplication>(state, qtSend);
}
void CallCore(benchmark::State& state) {
  besideLoop<QCoreApplication>(state, call);
}
void SendCore(benchmark::State& state) {
  besideLoop<QCoreApplication>(state, send);
}
void QtCallCore(benchmark::State& state) {
  besideLoop<QCoreApplication>(state, qtCall);
}
void QtSendCore(benchmark::State& state) {
  besideLoop<QCoreApplication>(state, qtSend);
}
void CallAfterPause(benchmark::State& state) {
  afterPause(state, call);
}
void QtCallAfterPause(benchmark::State& state) {
  afterPause(state, qtCall);
}
void CallOnMainThread(benchmark::State& state) {
  onMainThread(state, call);
}
void SendOnMainThread(benchmark::State& state) {
  onMainThread(state, send);
}

void setUp(benchmark::internal::Benchmark* benchmark) {
  benchmark->Repetitions(21)->MinTime(0.03)->MeasureProcessCPUTime()->DisplayAggregatesOnly();
}
void setUpBesideLoop(benchmark::internal::Benchmark* benchmark) {
  setUp(benchmark);
  benchmark->Unit(benchmark::kMicrosecond)->UseRealTime();
}
void setUpAfterPause(benchmark::internal::Benchmark* benchmark) {
  benchmark->Repetitions(21)->Iterations(200)->DisplayAggregatesOnly();
  benchmark->Unit(benchmark::kMicrosecond)->UseManualTime()->MeasureProcessCPUTime();
}
BENCHMARK(CallGui)->Apply(setUpBesideLoop);
BENCHMARK(SendGui)->Apply(setUpBesideLoop);
BENCHMARK(QtCallGui)->Apply(setUpBesideLoop);
BENCHMARK(QtSendGui)->Apply(setUpBesideLoop);
BENCHMARK(CallCore)->Apply(setUpBesideLoop);
BENCHMARK(SendCore)->Apply(setUpBesideLoop);
BENCHMARK(QtCallCore)->Apply(setUpBesideLoop);
BENCHMARK(QtSendCore)->Apply(setUpBesideLoop);
BENCHMARK(CallAfterPause)->Apply(setUpAfterPause);
BENCHMARK(QtCallAfterPause)->Apply(setUpAfterPause);
BENCHMARK(CallOnMainThread)->Apply(setUp);
BENCHMARK(SendOnMainThread)->Apply(setUp);

} // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // First, so that an argument of the user's wins.
  std::vector<char*> arguments(argv, argv + argc);
  char randomTurns[] = "--benchmark_enable_random_interleaving=true";
  arguments.insert(arguments.begin() + 1, randomTurns);
  int count = int(arguments.size());
  arguments.push_back(nullptr);
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
    return 1;
  RatioReporter reporter({{"CallGui", "QtCallGui"},
                          {"SendGui", "QtSendGui"},
                          {"CallCore", "QtCallCore"},
                          {"SendCore", "QtSendCore"},
                          {"CallAfterPause", "QtCallAfterPause"}},
                         {});
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return 0;
}

#include "proxy_benchmark.moc"
