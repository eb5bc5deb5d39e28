// What watches files in watching_benchmark: the watcher, the kernel's own interface, its peers.
#pragma once

#include <QtCore/QStringList>

#include <functional>
#include <memory>
#include <string>
#include <vector>

// Files or folders to be watched: the last part of each path is "w" and its number in the list.
struct WatchedPaths {
  QStringList names;
  std::vector<std::string> encoded; // the same for the kernel
  bool areFolders = false;

  void append(const std::string& path);
  int count() const { return int(encoded.size()); }
};

// The number of a watched path, or of one in a watched folder.
int watchedNumber(QStringView path);

// A range of a list of paths.
struct PathRange {
  const WatchedPaths& paths;
  int first;
  int end;
};

// A candidate. Each report calls the function that it was made with, with the path's number:
// on the main thread where the head of watching_benchmark.cpp does not say otherwise.
class Watching {
 public:
  using Report = std::function<void(int number)>;

  // Null for an unknown name.
  static std::unique_ptr<Watching> make(const std::string& candidate, Report report);

  virtual ~Watching() = default;
  Watching(const Watching&) = delete;
  Watching& operator=(const Watching&) = delete;

  // Watches the paths; they have been when it returns. The list outlives this object. Programs take
  // it whole and once. False where it failed.
  virtual bool add(const PathRange& range) = 0;
  virtual void remove(const PathRange&) {}

  // Whether a path is added again when what was there has been deleted or renamed, the way users
  // of the candidate do that. To be set before paths are added.
  void setAddsAgain(bool addsAgain) { addsAgain_ = addsAgain; }

  // The process of a program; 0 for what works in this one.
  virtual int process() const { return 0; }

 protected:
  explicit Watching(Report report) : report_(std::move(report)) {}

  const Report report_;
  bool addsAgain_ = false;
};
