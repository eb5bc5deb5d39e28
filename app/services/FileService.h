// The files of the program: what happens to them, and what is written to them, is shown.
#pragma once

#include "app/intake/LineSplitter.h"
#include "app/services/FileOptions.h"
#include "app/services/FileReport.h"

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace zq::app {

class PathWatch;
class TailFollower;

// Takes what files bring. All are called from `start` and from the event loop.
struct FileReceivers {
  std::function<void(const QString& line, const QString& path)> line;
  ReportReceiver report;
  // Whether lines are dropped because there are too many; null for never. Then files are read with
  // pauses.
  std::function<bool()> isFull;
};

// What cannot be watched or followed.
struct FileFailure {
  QString option; // "--watch" or "--tail"
  QString path;
  QString reason;
};

// What to do about text files that are not there when the service starts.
enum class MissingFiles { AreAwaited, Fail };

// Reports what happens to the watched files and folders, and gives out the last line of each text
// file and those that are appended to it; see TailReader. A file that leaves its path while another
// takes its place is reported as replaced, one that comes later as appeared.
//
// A text file that is not there, or that cannot be read later on, is told in one log line (category
// zqticker.files) and waited for. Besides the watcher's reports text files are looked at now and
// then: a rotated log may still be written to, and other machines' changes are reported by nobody.
//
// Thread: main.
class FileService : public QObject {
  Q_OBJECT

 public:
  // How often text files are looked at without a report.
  static constexpr std::chrono::milliseconds LookInterval = std::chrono::seconds(1);

  FileService(const FileOptions& options, FileReceivers receivers,
              std::chrono::milliseconds lookInterval = LookInterval);
  ~FileService() override;

  // Begins; last lines are given out at once. What stands in the way of the first file that cannot
  // be followed or watched; nothing where all can.
  std::optional<FileFailure> start(MissingFiles missing = MissingFiles::AreAwaited);

  // Lines or reports were given out, one or many.
  Q_SIGNAL void received();

 private:
  void takeReport(const QString& notification, const QString& path);
  void takeAppearance(const QString& path);
  void tellWhatLeft(const QString& path);
  void tell(const QString& path, const QString& what);
  void lookAt(const QString& path);

  FileOptions options_;
  FileReceivers receivers_;
  std::vector<std::unique_ptr<TailFollower>> tails_;
  QTimer look_;
  // How a watched file has left its path, while it is not clear whether it was replaced.
  QHash<QString, QStringList> left_;
  std::unique_ptr<PathWatch> watch_;
};

} // namespace zq::app
