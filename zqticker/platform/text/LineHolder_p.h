// Where the layout of one text is.
#pragma once

#include "zqticker/platform/text/AttributedString.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QSizeF>

#include <memory>
#include <vector>

namespace zq::platform {

class TextLine;

// Measures a text once, and has its layout for as long as LineCache keeps it; for good where it
// cannot be made again at little cost. Shared by the copies of a text; whoever asks gives that
// text.
//
// Thread: main; any for the end of its life.
class LineHolder {
 public:
  using Runs = std::vector<AttributedString::Run>;

  // See AttributedString::size.
  QSizeF size(const QString& text, const Runs& runs);
  std::shared_ptr<const TextLine> line(const QString& text, const Runs& runs);
  // See AttributedString::measureUntil.
  bool measureUntil(const QString& text, const Runs& runs, const QDeadlineTimer& deadline);

 private:
  QSizeF size_; // invalid until it is measured
  std::shared_ptr<TextLine> kept_;
  std::weak_ptr<const TextLine> recent_;
};

} // namespace zq::platform
