// Archives that other programs send: signs and attributed texts.
//
// Both are hostile until read: only classes that a sign consists of may stand in them, pictures are
// counted before one is decoded, and the unarchiver bounds the rest.
#pragma once

#include "app/intake/WorkGate.h"
#include "zqticker/platform/objects/Object.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <stdexcept>

class ZQTickerSign;

namespace zq::platform {
class AttributedString;
class Image;
} // namespace zq::platform

namespace zq::app {

// The most bytes of an archive.
inline constexpr qsizetype LargestMessageArchive = qsizetype(8) << 20;
// The most stretches of a text with attributes of their own.
inline constexpr std::size_t MostTextRuns = 20'000;
// The largest font, and the longest line, in points.
inline constexpr double LargestMessageFont = 1000;
inline constexpr double LongestMessageText = 1e8;

// An archive that is not taken.
class SignError : public std::runtime_error {
 public:
  explicit SignError(const QString& message)
      : std::runtime_error(message.toStdString()), message_(message) {}
  ~SignError() override;

  const QString& message() const { return message_; }

 private:
  QString message_;
};

// The sign that is the root of `archive`: an image, text or combo sign that has something to show.
// SignError where it is none, of another class, damaged, or larger than stated above and in
// DisplayMessage.h. What `gate` raises is passed on.
//
// Thread: main.
platform::Ref<ZQTickerSign> readArchivedSign(const QByteArray& archive, const WorkGate& gate = {});

// The first part of it: what is left is to check the sign, for which its picture is decoded.
platform::Ref<ZQTickerSign> unarchiveSign(const QByteArray& archive, const WorkGate& gate = {});
// The second part. Raises SignError.
void checkSign(const ZQTickerSign& sign);
// The picture of an image or combo sign; null for none.
platform::Ref<platform::Image> pictureOf(const ZQTickerSign& sign);

// The attributed string that is the root of `archive`. Raises the same.
platform::Ref<platform::AttributedString> readArchivedText(const QByteArray& archive,
                                                           const WorkGate& gate = {});

} // namespace zq::app
