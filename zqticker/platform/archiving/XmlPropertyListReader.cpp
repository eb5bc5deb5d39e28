#include "zqticker/platform/archiving/XmlPropertyListReader_p.h"

#include "zqticker/platform/archiving/number_text.h"
#include "zqticker/platform/archiving/reference_date_p.h"
#include "zqticker/platform/objects/Exception.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

// Without a byte-order mark and white space in front of the XML declaration.
QByteArray trimmedFront(const QByteArray& data) {
  qsizetype start = data.startsWith("\xEF\xBB\xBF") ? 3 : 0;
  while (start < data.size() && QByteArrayView(" \t\r\n").contains(data[start]))
    ++start;
  return start == 0 ? data : data.sliced(start);
}

} // namespace

PropertyList PropertyList::fromXml(const QByteArray& data) {
  PropertyList list = fromBinary(XmlPropertyListReader(data).binary());
  list.sourceSize_ = data.size();
  return list;
}

XmlPropertyListReader::XmlPropertyListReader(const QByteArray& data) : xml_(trimmedFront(data)) {}

void XmlPropertyListReader::fail(const QString& reason) const {
  throw ArchiveException(u"not a property list: line %1: %2"_s.arg(xml_.lineNumber()).arg(reason));
}

QByteArray XmlPropertyListReader::binary() {
  bool inPropertyList = false;
  while (!xml_.atEnd()) {
    switch (xml_.readNext()) {
    case QXmlStreamReader::StartElement: {
      const QStringView name = xml_.name();
      if (!inPropertyList) {
        if (name != "plist"_L1)
          fail(u"the document is no plist but %1"_s.arg(name));
        inPropertyList = true;
      } else if (name == "dict"_L1 || name == "array"_L1) {
        open();
      } else if (name == "key"_L1) {
        addKey();
      } else {
        addValue(scalar(name));
      }
      break;
    }
    case QXmlStreamReader::EndElement:
      if (!path_.empty())
        if (const std::optional<Index> value = close())
          addValue(*value);
      break;
    case QXmlStreamReader::Characters:
      if (!xml_.isWhitespace())
        fail(u"text stands between values"_s);
      break;
    case QXmlStreamReader::DTD:
      // The reader would expand entities that the document declares.
      if (!xml_.entityDeclarations().isEmpty())
        fail(u"it declares entities"_s);
      break;
    case QXmlStreamReader::EntityReference:
      fail(u"the entity %1 is unknown"_s.arg(xml_.name()));
    default:
      break;
    }
  }
  if (xml_.hasError())
    fail(xml_.errorString());
  if (!top_)
    fail(u"it holds no value"_s);
  return writer_.finish(*top_);
}

// The text of the current element, which must not contain another one.
QString XmlPropertyListReader::text() {
  QString text;
  for (;;) {
    switch (xml_.readNext()) {
    case QXmlStreamReader::Characters:
      text += xml_.text();
      break;
    case QXmlStreamReader::EndElement:
      return text;
    case QXmlStreamReader::Comment:
    case QXmlStreamReader::ProcessingInstruction:
      break;
    case QXmlStreamReader::EntityReference:
      fail(u"the entity %1 is unknown"_s.arg(xml_.name()));
    case QXmlStreamReader::StartElement:
      fail(u"a simple value contains the element %1"_s.arg(xml_.name()));
    default:
      fail(xml_.hasError() ? xml_.errorString() : u"the text is cut off"_s);
    }
  }
}

void XmlPropertyListReader::open() {
  if (path_.size() >= std::size_t(PropertyList::MaximumDepth))
    fail(u"it is nested too deeply"_s);
  if (top_ && path_.empty())
    fail(u"more than one value"_s);
  if (!path_.empty() && path_.back().isDictionary && !path_.back().hasKey)
    fail(u"a value without a key"_s);
  path_.push_back({xml_.name() == "dict"_L1, {}, {}, false, false, std::nullopt});
}

// Ends the innermost container and returns its value.
std::optional<XmlPropertyListReader::Index> XmlPropertyListReader::close() {
  const Frame frame = std::move(path_.back());
  path_.pop_back();
  if (frame.hasKey)
    fail(u"a key without a value"_s);
  if (!frame.isDictionary)
    return writer_.addArray(frame.values);
  if (frame.keys.size() == 1 && frame.isUidKey && frame.lastInteger) {
    if (*frame.lastInteger < 0 ||
        *frame.lastInteger > std::int64_t(std::numeric_limits<std::uint32_t>::max()))
      fail(u"a UID is larger than 32 bits"_s);
    return writer_.addUid(std::uint32_t(*frame.lastInteger));
  }
  return writer_.addDictionary(frame.keys, frame.values);
}

void XmlPropertyListReader::addKey() {
  if (path_.empty() || !path_.back().isDictionary || path_.back().hasKey)
    fail(u"a key stands where a value belongs"_s);
  const QString key = text();
  Frame& frame = path_.back();
  frame.keys.push_back(writer_.addString(key));
  frame.hasKey = true;
  frame.isUidKey = key == "CF$UID"_L1;
  frame.lastInteger.reset();
}

void XmlPropertyListReader::addValue(Index value) {
  if (path_.empty()) {
    if (top_)
      fail(u"more than one value"_s);
    top_ = value;
    return;
  }
  Frame& frame = path_.back();
  if (frame.isDictionary && !frame.hasKey)
    fail(u"a value without a key"_s);
  frame.hasKey = false;
  frame.values.push_back(value);
}

XmlPropertyListReader::Index XmlPropertyListReader::integer(const QString& digits) {
  const QString trimmed = digits.trimmed();
  bool isGood = false;
  if (const qlonglong value = trimmed.toLongLong(&isGood); isGood) {
    if (!path_.empty())
      path_.back().lastInteger = value;
    return writer_.addInteger(value);
  }
  if (const qulonglong value = trimmed.toULongLong(&isGood); isGood) {
    if (!path_.empty())
      path_.back().lastInteger = std::numeric_limits<std::int64_t>::max();
    return writer_.addUnsigned(value);
  }
  fail(u"\"%1\" is no integer of 64 bits"_s.arg(trimmed.left(40)));
}

XmlPropertyListReader::Index XmlPropertyListReader::scalar(QStringView element) {
  const QString name = element.toString();
  const QString content = text();
  if (name == "string"_L1)
    return writer_.addString(content);
  if (name == "integer"_L1)
    return integer(content);
  if (name == "real"_L1) {
    if (const std::optional<double> value = numberOfText(content))
      return writer_.addReal(*value);
    fail(u"\"%1\" is no number"_s.arg(content.left(40)));
  }
  if (name == "true"_L1 || name == "false"_L1) {
    if (!content.trimmed().isEmpty())
      fail(u"text stands inside %1"_s.arg(name));
    return writer_.addBoolean(name == "true"_L1);
  }
  if (name == "data"_L1) {
    QByteArray encoded = content.toLatin1();
    encoded.removeIf([](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
    const auto decoded =
        QByteArray::fromBase64Encoding(encoded, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
      fail(u"data is not in base64"_s);
    return writer_.addData(*decoded);
  }
  if (name == "date"_L1) {
    const QDateTime date = QDateTime::fromString(content.trimmed(), Qt::ISODateWithMs);
    if (!date.isValid())
      fail(u"\"%1\" is no date"_s.arg(content.left(40)));
    return writer_.addDate(secondsOfDate(date));
  }
  fail(u"the element %1 is unknown"_s.arg(name));
}

} // namespace zq::platform
