#include "app/ticker/SourceSet.h"

#include "app/commands/file_following.h"
#include "app/commands/sign_loading.h"
#include "app/commands/strip_setup.h"
#include "app/intake/LineReader.h"
#include "app/services/FeedService.h"
#include "app/services/FeedSigns.h"
#include "app/services/FileReport.h"
#include "app/services/FileSigns.h"
#include "app/services/loading_setup.h"
#include "app/ticker/Ticker.h"
#include "zqticker/signs/ZQTickerSign.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

SourceSet::SourceSet(Ticker& ticker, const StripOptions& options,
                     const QDBusUnixFileDescriptor& standardInput)
    : ticker_(ticker), receiver_(ticker.display(), [&ticker] { return ticker.time(); }),
      lineRule_(lineRuleOf(options)) {
  const StripLook look = ticker.lookFor(options);
  if (look.font != ticker.display().defaultFont())
    lineFont_ = look.font;
  if (look.color != ticker.display().defaultTextColor())
    lineColor_ = look.color;
  const std::vector<Ref<ZQTickerSign>> signs = loadSigns(options, look.font, look.color);
  followFilesOf(options);
  for (const Ref<ZQTickerSign>& sign : signs)
    ticker_.show(sign);
  isComplete_ = true;
  for (const auto& [line, path] : std::exchange(earlyLines_, {}))
    addFileLine(line, path);
  readFeedsOf(options);
  if (options.readsStandardInput)
    readLinesOf(standardInput);
}

SourceSet::~SourceSet() = default;

bool SourceSet::hasEnded() const {
  return !feeds_ && !files_ && (!reader_ || reader_->hasEnded());
}

std::shared_ptr<const LineSource> SourceSet::lineSource(const QString& name) const {
  LineSource source;
  source.origin.senderName = name;
  source.font = lineFont_;
  source.color = lineColor_;
  return std::make_shared<const LineSource>(std::move(source));
}

void SourceSet::addLine(const QString& line, const std::shared_ptr<const LineSource>& source) {
  ticker_.display().addLine(line, ticker_.time(), lineRule_, source);
}

void SourceSet::addFileLine(const QString& line, const QString& path) {
  if (!isComplete_) {
    earlyLines_.emplace_back(line, path);
    return;
  }
  std::shared_ptr<const LineSource>& source = lineSources_[path];
  if (!source)
    source = lineSource(nameOfFile(path));
  addLine(line, source);
}

void SourceSet::followFilesOf(const StripOptions& options) {
  fileSigns_ = std::make_unique<FileSigns>(receiver_, lineRule_);
  files_ = followFiles(
      options, {[this](const QString& line, const QString& path) { addFileLine(line, path); },
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
                                         [this, source = lineSource(u"standard input"_s)](
                                             const QString& line) { addLine(line, source); });
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
