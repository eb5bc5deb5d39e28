// Reading a string piece by piece.
#pragma once

#include "zqticker/platform/text/CharacterSet.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QString>

#include <optional>

namespace zq::platform {

class DecimalNumber;

// A string and a location in it, in code units.
//
// Every scan… operation first skips the characters to be skipped. One that then consumes nothing
// answers false, and leaves the location (before what was skipped) and its output as they were.
// Otherwise it answers true, stores what it consumed, without what was skipped, and moves the
// location behind it. Every output may be left out. A view that is stored points into string() and
// lives as long as the scanner does.
//
// Strings are compared by code unit, so case counts; characters of sets are code points. Scanning
// through a string takes time in proportion to its length, whatever the operations. Numbers are
// read the same way in every locale.
//
// Thread: any one at a time, for reading too.
class ZQTICKER_EXPORT Scanner {
 public:
  // Begins at 0 and skips white space and newlines.
  explicit Scanner(QString string);

  const QString& string() const { return string_; }

  // 0 to the length of the string.
  qsizetype scanLocation() const { return location_; }
  // Raises RangeException below 0 or beyond the length.
  void setScanLocation(qsizetype location);

  // Nothing where every character counts.
  const std::optional<CharacterSet>& charactersToBeSkipped() const { return skipped_; }
  void setCharactersToBeSkipped(std::optional<CharacterSet> characters);

  // Whether only characters to be skipped remain, or none.
  bool isAtEnd() const { return afterSkipped() == string_.size(); }

  // The characters of `set` that come next.
  bool scanCharactersFromSet(const CharacterSet& set, QString* text = nullptr);
  bool scanCharactersFromSet(const CharacterSet& set, QStringView* text);
  // All before the next character of `set`, or to the end where there is none.
  bool scanUpToCharactersFromSet(const CharacterSet& set, QString* text = nullptr);
  bool scanUpToCharactersFromSet(const CharacterSet& set, QStringView* text);

  // `string` itself, if it comes next. The empty string never does.
  bool scanString(QStringView string, QString* text = nullptr);
  // All before the next `string`, or to the end where there is none. The empty string is never met.
  bool scanUpToString(QStringView string, QString* text = nullptr);
  bool scanUpToString(QStringView string, QStringView* text);

  // A decimal integer: a sign or none, then ASCII digits without anything between. Beyond 64 bits
  // the value is the nearest that there is, and `isOutOfRange` says so.
  bool scanLongLong(qint64* value = nullptr, bool* isOutOfRange = nullptr);
  // A decimal number: a sign or none, ASCII digits with or without a point among them, an exponent
  // or none. What DecimalNumber cannot hold is rounded, or not a number.
  bool scanDecimal(DecimalNumber* value = nullptr);

 private:
  qsizetype afterSkipped() const;
  // Takes what lies between `start` and `end`.
  bool take(qsizetype start, qsizetype end, QStringView* text);

  QString string_;
  qsizetype location_ = 0;
  std::optional<CharacterSet> skipped_;
  // What was skipped last, so that nothing is skipped twice by looking at it: from any location
  // within, the next character that counts is at its end.
  mutable qsizetype skippedStart_ = 0;
  mutable qsizetype skippedEnd_ = -1;
};

} // namespace zq::platform
