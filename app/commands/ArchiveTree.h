// A keyed archive as a value that can be printed.
#pragma once

#include "app/commands/OutputValue.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"

#include <QtCore/QSet>

#include <optional>
#include <vector>

namespace zq::app {

// Walks an archive from its top. A record becomes a map of its class ("$class", "$classes"), its
// place in the object table ("$id") and its values in the order of the file; it stands once, at the
// other places {"$ref": place}. Lists and dictionaries have their contents under "$elements" and
// "$entries"; the other value classes, colours, fonts, shadows and attributed strings what they
// mean under "$value".
class ArchiveTree {
 public:
  // Records deeper than this stand under "$deeper" at the end.
  static constexpr int MaximumDepth = 100;
  // Values of the output may take this many times the bytes of the file, beyond an allowance.
  static constexpr qint64 MaximumExpansionFactor = 64;
  static constexpr qint64 ExpansionAllowance = 1 << 20;

  // Raises ArchiveException where `data` is no keyed archive.
  explicit ArchiveTree(const QByteArray& data);

  // The values of the top level by key. Raises ArchiveException for references outside the table,
  // objects without a class, and values whose meaning cannot be told.
  OutputValue top();

 private:
  using Index = platform::PropertyList::Index;
  class Step;

  OutputValue value(Index index);
  OutputValue inlineValue(Index index);
  OutputValue reference(Index uid);
  OutputValue record(quint32 uid);
  OutputValue data(Index index);
  OutputValue string(const QString& text);

  bool addMeaning(OutputValue& output, quint32 uid, const QString& className);
  bool addContents(OutputValue& output, Index record);
  OutputValue elements(Index array);
  OutputValue entries(Index record, Index keys, Index objects);
  platform::Any decoded(platform::KeyedUnarchiver& unarchiver, quint32 uid) const;
  OutputValue plainValue(const platform::Any& value);
  OutputValue color(quint32 uid);
  OutputValue font(quint32 uid);
  OutputValue shadow(quint32 uid, Index record);
  OutputValue attributedString(quint32 uid, Index record);
  OutputValue attributes(Index reference);

  quint32 checkedUid(Index reference) const;
  void charge(qint64 bytes);
  [[noreturn]] void fail(const QString& reason) const;

  platform::KeyedUnarchiver values_;
  platform::KeyedUnarchiver objects_;
  const platform::KeyedArchive& archive_;
  const platform::PropertyList& list_;
  qint64 budget_;
  int depth_ = 0;
  QStringList path_;
  QSet<quint32> seen_;
  std::vector<quint32> deeper_;
};

} // namespace zq::app
