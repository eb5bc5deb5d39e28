// Reads XML property lists.
#pragma once

#include "zqticker/platform/archiving/PropertyListWriter_p.h"

#include <QtCore/QXmlStreamReader>

#include <optional>

namespace zq::platform {

// Translates an XML list into a binary one, so that both are read by the same code.
class XmlPropertyListReader {
 public:
  explicit XmlPropertyListReader(const QByteArray& data);

  // The same list in binary. Raises ArchiveException where the text is no XML property list.
  QByteArray binary();

 private:
  using Index = PropertyListWriter::Index;
  // An open dict or array.
  struct Frame {
    bool isDictionary;
    std::vector<Index> keys;
    std::vector<Index> values;
    bool hasKey = false;
    // What a dictionary of one pair would stand for as a UID.
    bool isUidKey = false;
    std::optional<std::int64_t> lastInteger;
  };

  [[noreturn]] void fail(const QString& reason) const;
  QString text();
  void open();
  std::optional<Index> close();
  void addKey();
  void addValue(Index value);
  Index scalar(QStringView element);
  Index integer(const QString& digits);

  QXmlStreamReader xml_;
  PropertyListWriter writer_;
  std::vector<Frame> path_;
  std::optional<Index> top_;
};

} // namespace zq::platform
