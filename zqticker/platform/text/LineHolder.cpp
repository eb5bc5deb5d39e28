#include "zqticker/platform/text/LineHolder_p.h"

#include "zqticker/platform/text/LineCache_p.h"
#include "zqticker/platform/text/TextLine_p.h"

namespace zq::platform {

QSizeF LineHolder::size(const QString& text, const Runs& runs) {
  if (!size_.isValid())
    measureUntil(text, runs, QDeadlineTimer(QDeadlineTimer::Forever));
  return size_;
}

std::shared_ptr<const TextLine> LineHolder::line(const QString& text, const Runs& runs) {
  size(text, runs);
  std::shared_ptr<const TextLine> line = recent_.lock();
  if (!line) {
    // Not made together with its count of holders, whose memory the weak one holds on to.
    line.reset(new TextLine(text, runs));
    recent_ = line;
  }
  LineCache::shared().use(line);
  return line;
}

bool LineHolder::measureUntil(const QString& text, const Runs& runs,
                              const QDeadlineTimer& deadline) {
  if (size_.isValid())
    return true;
  if (!kept_)
    kept_.reset(new TextLine(text, runs, {}, TextLine::Measuring::InSteps));
  if (!kept_->measureUntil(deadline))
    return false;
  size_ = kept_->size();
  recent_ = kept_;
  LineCache::shared().use(kept_);
  if (!kept_->isToBeKept())
    kept_.reset();
  return true;
}

} // namespace zq::platform
