// Date formats in percent style, made into Unicode date patterns.
#pragma once

#include "zqticker/platform/objects/AtomicProperty.h"
#include "zqticker/platform/objects/Object.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QMap>
#include <QtCore/QString>

#include <optional>

// Converts a date format such as "%Y-%m-%d %H:%M" into "yyyy'-'MM'-'dd' 'HH':'mm", which a date
// formatter takes; see zq::descriptionWithCalendarFormat.
//
// Thread: any. A property may be read on one thread while another writes it; a conversion reads
// each when it needs it.
class ZQTICKER_EXPORT ZQTimeFormatPatternConverter : public zq::platform::Object {
  Q_GADGET
  ZQ_OBJECT

 public:
  using Mapping = QMap<QString, QString>;

  // Has the table, and the patterns of the user's long styles, of the current calendar; later
  // changes of the user's settings are not seen.
  // Operation: init
  static zq::platform::Ref<ZQTimeFormatPatternConverter> make();
  ZQTimeFormatPatternConverter();
  ~ZQTimeFormatPatternConverter() override;

  // What "%X" stands for: a pattern for a time. Nothing for a sequence that is dropped.
  std::optional<QString> localTimeFormat() const { return localTimeFormat_.load(); }
  void setLocalTimeFormat(std::optional<QString> format) {
    localTimeFormat_.store(std::move(format));
  }

  // What "%x" stands for: a pattern for a date. Nothing for a sequence that is dropped.
  std::optional<QString> localDateFormat() const { return localDateFormat_.load(); }
  void setLocalDateFormat(std::optional<QString> format) {
    localDateFormat_.store(std::move(format));
  }

  // What the other sequences stand for, by the character after "%". Nothing for none at all.
  std::optional<Mapping> timeFormatPatternsMapping() const {
    return timeFormatPatternsMapping_.load();
  }
  void setTimeFormatPatternsMapping(std::optional<Mapping> mapping) {
    timeFormatPatternsMapping_.store(std::move(mapping));
  }

  // Sets the mapping to the table of percent sequences.
  void createTimeFormatPatternsMapping();

  // The Unicode pattern for `string`. Sequences are replaced, all other text stands between
  // apostrophes, one in the text itself as it is. A sequence that is not known is dropped; a "%" at
  // the end stands for nothing.
  //
  // Of two sequences that follow each other directly the first one's character is text between
  // them: "%Y%m" gives "yyyy'Y'MM". "%%" gives a "%" without apostrophes.
  QString stringByReplacingOldTimeFormatPatternsInString(const QString& string) const;

 private:
  zq::platform::AtomicProperty<std::optional<QString>> localTimeFormat_;
  zq::platform::AtomicProperty<std::optional<QString>> localDateFormat_;
  zq::platform::AtomicProperty<std::optional<Mapping>> timeFormatPatternsMapping_;
};
