#include "app/ticker/SourceSet.h"

#include "app/commands/file_following.h"
#include "app/commands/sign_loading.h"
#include "app/commands/strip_setup.h"
#include "app/intake/LineReader.h"
#include "app/services/FeedService.h"
#include "app/services/FeedSigns.h"
#include "app/services/FileSigns.h"
#include "app/services/loading_setup.h"
#include "app/ticker/Ticker.h"
#include "zqticker/signs/ZQTickerSign.h"

#include <utility>

namespace zq::app {

using namespace platform;

SourceSet::SourceSet(Ticker& ticker, const StripOptions& options,
                     const QDBusUnixFileDescriptor& standardInput)
    : ticker_(ticker), receiver_(ticker.display(), [&ticker] { return ticker.time(); }),
      lineRule_(lineRuleOf(options)) {
  const StripLook look = ticker.lookFor(options);
  const std::vector<Ref<ZQTickerSign>> signs = loadSigns(options, look.font, look.color);
  followFilesOf(options);
  for (const Ref<ZQTickerSign>& sign : signs)
    ticker_.show(sign);
  isComplete_ = true;
  for (const QString& line : std::exchange(earlyLines_, {}))
    addLine(line);
  readFeedsOf(options);
  if (options.readsStandardInput)
    readLinesOf(standardInput);
}

SourceSet::~SourceSet() = default;

bool SourceSet::hasEnded() const {
  return !feeds_ && !files_ && (!reader_ || reader_->hasEnded());
}

void SourceSet::addLine(const QString& line) {
  if (!isComplete_)
    earlyLines_.append(line);
  else
    ticker_.display().addLine(line, ticker_.time(), lineRule_);
}

void SourceSet::followFilesOf(const StripOptions& options) {
  fileSigns_ = std::make_unique<FileSigns>(receiver_, lineRule_);
  files_ = followFiles(options, {[this](const QString& line, const QString&) { addLine(line); },
                                 [this](const FileReport& report) { fileSigns_->show(report); },
                                 [this] { return ticker_.isFullOfLines(); }});
  if (files_)
    connect(files_.get(), &FileService::received, &ticker_, &Ticker::displayChanged);
}

void SourceSet::readFeedsOf(const StripOptions& options) {
  if (options.feeds.feeds.empty())
    return;
  prepareLoading();
  feedSigns_ = std::make_unique<FeedSigns>(receiver_, feedRuleOf(options));
  feeds_ = std::make_unique<FeedService>(options.feeds, ticker_.pictureRoom(),
                                         [this](const std::vector<ShownItem>& items) {
                                           feedSigns_->show(items);
                                           ticker_.displayChanged();
                                         });
  feeds_->start();
}

void SourceSet::withdrawFeeds() {
  feeds_.reset();
  if (feedSigns_)
    feedSigns_->show({});
}

void SourceSet::readLinesOf(const QDBusUnixFileDescriptor& standardInput) {
  if (!standardInput.isValid())
    return;
  standardInput_ = standardInput;
  reader_ = std::make_unique<LineReader>(standardInput_.fileDescriptor(),
                                         [this](const QString& line) { addLine(line); });
  connect(reader_.get(), &LineReader::received, this, [this] {
    reader_->setUnhurried(ticker_.isFullOfLines());
    ticker_.displayChanged();
  });
  connect(reader_.get(), &LineReader::ended, this, [this] {
    ticker_.displayChanged();
    Q_EMIT ended();
  });
}

} // namespace zq::app
