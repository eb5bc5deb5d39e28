// Loading from a server on loopback: one body of 1 GiB kept in memory (Big), and 10,000 bodies of
// 1 KiB, 100 at a time (Small). Real time from the first request to the last byte, and as counters
// processor time (user and system) in seconds and peak memory in MiB.
//
//   Loader         ZQURLLoader
//   Libcurl        the floor: libcurl's own multi loop and nothing around it, the body reserved
//                  once at its announced length
//   NetworkAccess  QNetworkAccessManager, its reply read as it comes into a buffer reserved alike
//   CurlProgram    the program curl as a whole, which throws the bodies away
//
// Each runs in a process of its own, so that peak memory is its own; so does the server.
#include "benchmarks/child_process.h"
#include "benchmarks/ratio_main.h"
#include "zqticker/net/ZQURLLoader.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QNetworkReply>
#include <QtNetwork/QNetworkRequest>

#include <curl/curl.h>
#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

// `count` bodies of `length` bytes, `parallel` at a time.
struct Work {
  const char* name;
  qint64 length;
  int count;
  int parallel;
};
constexpr Work Works[] = {{"Big", qint64(1) << 30, 1, 1}, {"Small", 1024, 10'000, 100}};

// --- The candidates, each in a process of its own. Each returns the bytes that it has got.

class LoaderRun : public zq::platform::WeakReferenced {
 public:
  explicit LoaderRun(const Work& work, const QUrl& url) : work_(work), url_(url) {}

  qint64 run() {
    while (started_ < work_.parallel)
      start();
    QCoreApplication::exec();
    return received_;
  }

 private:
  void start() {
    ++started_;
    ZQURLLoader::loaderWithURL(url_, this, &LoaderRun::loaded)->load();
  }
  void loaded(const std::optional<QByteArray>& data, const QVariantMap&) {
    received_ += data ? data->size() : 0;
    if (started_ < work_.count)
      start();
    if (++ended_ == work_.count)
      QCoreApplication::quit();
  }

  const Work& work_;
  const QUrl url_;
  int started_ = 0;
  int ended_ = 0;
  qint64 received_ = 0;
};

class NetworkAccessRun {
 public:
  explicit NetworkAccessRun(const Work& work, const QUrl& url) : work_(work), request_(url) {}

  qint64 run() {
    while (started_ < work_.parallel)
      start();
    QCoreApplication::exec();
    return received_;
  }

 private:
  void start() {
    ++started_;
    QNetworkReply* reply = manager_.get(request_);
    auto body = std::make_shared<QByteArray>();
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [reply, body] {
      if (body->isEmpty())
        body->reserve(reply->header(QNetworkRequest::ContentLengthHeader).toLongLong());
      const qsizetype before = body->size();
      const qsizetype available = reply->bytesAvailable();
      body->resize(before + available);
      reply->read(body->data() + before, available);
    });
    QObject::connect(reply, &QNetworkReply::finished, reply, [this, reply, body] {
      body->append(reply->readAll());
      received_ += body->size();
      reply->deleteLater();
      if (started_ < work_.count)
        start();
      if (++ended_ == work_.count)
        QCoreApplication::quit();
    });
  }

  const Work& work_;
  const QNetworkRequest request_;
  QNetworkAccessManager manager_;
  int started_ = 0;
  int ended_ = 0;
  qint64 received_ = 0;
};

class LibcurlRun {
 public:
  explicit LibcurlRun(const Work& work, const QUrl& url)
      : work_(work), url_(url.toEncoded().toStdString()) {}

  qint64 run() {
    curl_global_init(CURL_GLOBAL_DEFAULT);
    multi_ = curl_multi_init();
    transfers_.resize(work_.parallel);
    for (Transfer& transfer : transfers_)
      start(transfer, curl_easy_init());
    int running = 0;
    do {
      curl_multi_perform(multi_, &running);
      takeFinished();
      if (ended_ < work_.count)
        curl_multi_poll(multi_, nullptr, 0, 1000, nullptr);
    } while (ended_ < work_.count);
    for (Transfer& transfer : transfers_)
      curl_easy_cleanup(transfer.curl);
    curl_multi_cleanup(multi_);
    return received_;
  }

 private:
  struct Transfer {
    CURL* curl = nullptr;
    std::string body;
  };

  void start(Transfer& transfer, CURL* curl) {
    ++started_;
    transfer.curl = curl;
    curl_easy_setopt(curl, CURLOPT_URL, url_.c_str());
    curl_easy_setopt(curl, CURLOPT_ACCEPT_ENCODING, "");
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_BUFFERSIZE, 512L * 1024);
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(curl, CURLOPT_PRIVATE, &transfer);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &transfer);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, append);
    curl_multi_add_handle(multi_, curl);
  }

  static std::size_t append(char* bytes, std::size_t, std::size_t count, void* data) {
    auto& transfer = *static_cast<Transfer*>(data);
    if (transfer.body.empty()) {
      curl_off_t length = -1;
      curl_easy_getinfo(transfer.curl, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
      if (length > 0)
        transfer.body.reserve(std::size_t(length));
    }
    transfer.body.append(bytes, count);
    return count;
  }

  void takeFinished() {
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_, &left)) {
      CURL* curl = message->easy_handle;
      Transfer* transfer = nullptr;
      curl_easy_getinfo(curl, CURLINFO_PRIVATE, &transfer);
      received_ += qint64(transfer->body.size());
      transfer->body.clear();
      curl_multi_remove_handle(multi_, curl);
      ++ended_;
      if (started_ < work_.count)
        start(*transfer, curl);
    }
  }

  const Work& work_;
  const std::string url_;
  CURLM* multi_ = nullptr;
  std::vector<Transfer> transfers_;
  int started_ = 0;
  int ended_ = 0;
  qint64 received_ = 0;
};

double processorSeconds(const rusage& usage) {
  const auto seconds = [](const timeval& time) { return double(time.tv_sec) + time.tv_usec / 1e6; };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double ownProcessorSeconds() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return processorSeconds(usage);
}

// Of this program alone: the usage that a parent is told of counts what was there before, too.
double peakMebibytes() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;)
    if (double kilobytes = 0; word == "VmHWM:" && status >> kilobytes)
      return kilobytes / 1024;
  return 0;
}

// What a child is asked for on its command line: the candidate, the work, the address. It prints
// real and processor time of the loads alone, and its peak memory.
int runCandidate(int argc, char** argv) {
  const std::string candidate = argv[2];
  const Work& work = Works[std::atoi(argv[3])];
  const QUrl url(QString::fromLatin1(argv[4]));
  QCoreApplication application(argc, argv);
  const double before = ownProcessorSeconds();
  QElapsedTimer timer;
  timer.start();
  qint64 received = 0;
  if (candidate == "Loader")
    received = LoaderRun(work, url).run();
  else if (candidate == "NetworkAccess")
    received = NetworkAccessRun(work, url).run();
  else if (candidate == "Libcurl")
    received = LibcurlRun(work, url).run();
  const double seconds = double(timer.nsecsElapsed()) / 1e9;
  std::printf("%.6f %.6f %.3f\n", seconds, ownProcessorSeconds() - before, peakMebibytes());
  return received == work.length * work.count ? 0 : 1;
}

// --- The parent.

// The server as a process, for as long as this object lives.
class Server {
 public:
  explicit Server(const std::string& program) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
      return;
    input_ = ends[1];
    child_ = startChild({program}, ends[0]);
    ::close(ends[0]);
    for (char digit; ::read(child_.output, &digit, 1) == 1 && digit != '\n';)
      port_ += digit;
  }
  ~Server() {
    ::close(input_);
    ::waitpid(child_.process, nullptr, 0);
  }
  std::string url(const Work& work) const {
    return "http://127.0.0.1:" + port_ + '/' + std::to_string(work.length);
  }

 private:
  Child child_;
  int input_ = -1;
  std::string port_;
};

std::vector<std::string> curlProgram(const Work& work, const std::string& url) {
  std::vector<std::string> arguments = {
      "curl", "--silent", "--no-progress-meter", "--noproxy", "*", "--output", "/dev/null"};
  if (work.count > 1)
    arguments.insert(arguments.end(),
                     {"--parallel", "--parallel-max", std::to_string(work.parallel),
                      url + "/[1-" + std::to_string(work.count) + ']'});
  else
    arguments.push_back(url);
  return arguments;
}

void measure(benchmark::State& state, const std::string& self, const Server& server,
             const std::string& candidate, int number) {
  const Work& work = Works[number];
  const std::string url = server.url(work);
  for (auto _ : state) {
    QElapsedTimer timer;
    timer.start();
    const Child child =
        candidate == "CurlProgram"
            ? startChild(curlProgram(work, url))
            : startChild({self, "--candidate", candidate, std::to_string(number), url});
    const std::string figures = readAll(child.output);
    ::close(child.output);
    int status = -1;
    rusage usage{};
    if (child.process < 0 || ::wait4(child.process, &status, 0, &usage) < 0 || status != 0) {
      state.SkipWithError("failed");
      return;
    }
    double seconds = double(timer.nsecsElapsed()) / 1e9;
    double processor = processorSeconds(usage);
    double peak = 0;
    if (candidate != "CurlProgram" &&
        std::sscanf(figures.c_str(), "%lf %lf %lf", &seconds, &processor, &peak) != 3) {
      state.SkipWithError("no figures");
      return;
    }
    state.SetIterationTime(seconds);
    state.counters["processor_s"] = processor;
    if (peak > 0)
      state.counters["peak_MiB"] = peak;
    state.counters["loads/s"] = work.count / seconds;
  }
}

} // namespace

int main(int argc, char** argv) {
  if (argc == 5 && std::string(argv[1]) == "--candidate")
    return runCandidate(argc, argv);
  for (const char* variable : {"http_proxy", "all_proxy", "ALL_PROXY"})
    ::unsetenv(variable);
  std::string folder(argv[0]);
  folder.erase(folder.rfind('/') + 1);
  const Server server(folder + "http_server");
  BenchmarkPairs pairs;
  for (int number = 0; number < 2; ++number) {
    const std::string work = Works[number].name;
    for (const std::string candidate : {"Loader", "Libcurl", "NetworkAccess", "CurlProgram"}) {
      benchmark::RegisterBenchmark((work + candidate).c_str(),
                                   [&server, argv, candidate, number](benchmark::State& state) {
                                     measure(state, argv[0], server, candidate, number);
                                   })
          ->UseManualTime()
          ->Iterations(1)
          ->Repetitions(5)
          ->Unit(benchmark::kMillisecond);
      if (candidate != "Loader")
        pairs.emplace_back(work + "Loader", work + candidate);
    }
  }
  // Peers take turns, so that what else the machine does meets all of them.
  std::string interleaved = "--benchmark_enable_random_interleaving=true";
  std::vector<char*> arguments(argv, argv + argc);
  arguments.insert(arguments.begin() + 1, interleaved.data());
  int count = int(arguments.size());
  arguments.push_back(nullptr);
  return runBenchmarks(count, arguments.data(), pairs, {"processor_s", "peak_MiB"});
}
