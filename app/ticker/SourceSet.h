// What one command line brings to the strip.
#pragma once

#include "app/commands/StripOptions.h"
#include "app/display/LineSource.h"
#include "app/display/StripItem.h"
#include "app/services/DisplayReceiver.h"

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtDBus/QDBusUnixFileDescriptor>

#include <memory>
#include <utility>
#include <vector>

namespace zq::app {

class FeedService;
class FeedSigns;
class FileService;
class FileSigns;
class LineReader;
class Ticker;

// The signs that the options name, and the services that go on bringing more: files, feeds and
// lines of standard input. They end with the object; what they have brought stays.
//
// Thread: main.
class SourceSet : public QObject {
  Q_OBJECT

 public:
  // Reads and checks everything, puts the signs into the ticker's queue and begins. Lines come from
  // `standardInput` where it is valid. Raises RunTimeError for what cannot be shown, watched or
  // followed; the queue is unchanged then. `ticker` must outlive the
  // object.
  SourceSet(Ticker& ticker, const StripOptions& options,
            const QDBusUnixFileDescriptor& standardInput);
  ~SourceSet() override;

  // Whether nothing more can come: feeds and files may always bring something, standard input until
  // it ends.
  bool hasEnded() const;
  Q_SIGNAL void ended();

  // Shows nothing more of its feeds, and asks them no more.
  void withdrawFeeds();

 private:
  void followFilesOf(const StripOptions& options);
  void readFeedsOf(const StripOptions& options);
  void readLinesOf(const QDBusUnixFileDescriptor& standardInput);
  void addFileLine(const QString& line, const QString& path);
  void addLine(const QString& line, const std::shared_ptr<const LineSource>& source);
  std::shared_ptr<const LineSource> lineSource(const QString& name) const;

  Ticker& ticker_;
  DisplayReceiver receiver_;
  LoopRule lineRule_;
  // Of its own, where the options ask for them.
  platform::Ref<platform::Font> lineFont_;
  platform::Ref<platform::Color> lineColor_;
  bool isComplete_ = false;                             // all that could fail is done
  std::vector<std::pair<QString, QString>> earlyLines_; // of files until then, with their paths
  QHash<QString, std::shared_ptr<const LineSource>> lineSources_; // by path
  std::unique_ptr<FileSigns> fileSigns_;
  std::unique_ptr<FileService> files_;
  std::unique_ptr<FeedSigns> feedSigns_;
  std::unique_ptr<FeedService> feeds_;
  QDBusUnixFileDescriptor standardInput_;
  std::unique_ptr<LineReader> reader_;
};

} // namespace zq::app
