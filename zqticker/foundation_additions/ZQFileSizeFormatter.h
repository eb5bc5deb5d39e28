// Sizes of files as short texts for people.
#pragma once

#include "zqticker/platform/text/Formatter.h"

// Shows a number of bytes as "1.5 KB" and reads such a text back. The units B, KB, MB, GB and TB
// are powers of 1024; a number below 1024 stands in bytes, with a decimal all the same. Numbers
// look the same in every locale.
class ZQTICKER_EXPORT ZQFileSizeFormatter : public zq::platform::Formatter {
  Q_GADGET
  ZQ_OBJECT

 public:
  ZQFileSizeFormatter();
  ~ZQFileSizeFormatter() override;

  // What stands around the size: a text with exactly one "%@", for which the pattern of the size is
  // put; in both together "%%" then stands for "%". Nothing, the default, for the size alone.
  //
  // A second "%@" shows "(null)"; a text without any shows no size.
  const std::optional<QString>& formatString() const { return formatString_; }
  void setFormatString(const std::optional<QString>& formatString) { formatString_ = formatString; }

  // The text for a number, or for a text that begins with one; what follows a decimal point is cut
  // off. Nothing for a value that is neither, nothing included. Not a number shows as 0.
  //
  // Whether the next unit is taken is decided before rounding: 1,048,575 bytes are "1024.0 KB".
  //
  // A negative number fails an assertion, of the file "ZQFileSizeFormatter" and line 34; with a
  // handler that returns, it shows in bytes. Raises RangeException from 1024 TB on, for infinity
  // too.
  std::optional<QString> stringForObjectValue(const zq::platform::Any& object) const override;

  // Reads a decimal number and the unit behind it, "KB", "MB", "GB" or "TB" in any case, to the end
  // of the line, into `object`, as a DecimalNumber of bytes. Whatever else stands there, "B"
  // included, is no unit and changes nothing. A text that begins with no number, and nothing, are
  // 0; a number too large for its kind is not a number. Answers true, always, and leaves
  // `errorDescription` alone.
  bool getObjectValue(zq::platform::Any* object, const std::optional<QString>& string,
                      QString* errorDescription) const override;

 private:
  std::optional<QString> formatString_;
};
