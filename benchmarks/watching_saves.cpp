#include "benchmarks/watching_work.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

using namespace std::chrono_literals;

namespace {

// Five saves of a watched file as editors do them: a new file is written and renamed over it.
class SavesWork final : public Work {
 public:
  SavesWork(const std::string& candidate, const std::string& folder, bool addsAgain)
      : Work(candidate, folder) {
    watching_->setAddsAgain(addsAgain);
  }

  bool begin() override {
    paths_.append(watchedPath(folder_, 0));
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

} // namespace

std::unique_ptr<Work> makeSavesWork(const std::string& name, const std::string& candidate,
                                    const std::string& folder) {
  if (name == "Saves" || name == "SavesAddedAgain")
    return std::make_unique<SavesWork>(candidate, folder, name == "SavesAddedAgain");
  return nullptr;
}
