#include "zqticker/platform/archiving/PropertyList.h"

#include "zqticker/platform/objects/Exception.h"

#include <QtCore/QtEndian>

#include <bit>
#include <cstring>

using namespace Qt::StringLiterals;

namespace zq::platform {

PropertyList::PropertyList() = default;
PropertyList::PropertyList(PropertyList&&) noexcept = default;
PropertyList& PropertyList::operator=(PropertyList&&) noexcept = default;
PropertyList::PropertyList(const PropertyList&) = default;
PropertyList& PropertyList::operator=(const PropertyList&) = default;
PropertyList::~PropertyList() = default;

PropertyList PropertyList::fromData(const QByteArray& data) {
  if (data.isEmpty())
    throw ArchiveException(u"the file is empty"_s);
  return data.startsWith("bplist") ? fromBinary(data) : fromXml(data);
}

double PropertyList::real(Index index) const {
  return std::bit_cast<double>(nodes_[index].value);
}

QString PropertyList::string(Index index) const {
  const Node& node = nodes_[index];
  const unsigned char* at = bytesAt(node.value);
  if (node.form == Form::Plain)
    return QString::fromLatin1(reinterpret_cast<const char*>(at), node.count);
  if (node.form == Form::Utf8)
    return QString::fromUtf8(reinterpret_cast<const char*>(at), node.count);
  QString text(qsizetype(node.count), Qt::Uninitialized);
  qFromBigEndian<char16_t>(at, node.count, text.data());
  return text;
}

QByteArray PropertyList::data(Index index) const {
  return QByteArray(bytes_.constData() + nodes_[index].value, nodes_[index].count);
}

std::uint64_t PropertyList::byteCount(Index index) const {
  return std::uint64_t(nodes_[index].count) * (nodes_[index].form == Form::Utf16 ? 2 : 1);
}

bool PropertyList::isString(Index index, QLatin1StringView text) const {
  const Node& node = nodes_[index];
  if (node.kind != Kind::String || node.count != std::size_t(text.size()))
    return false;
  if (node.form != Form::Utf16)
    return std::memcmp(bytesAt(node.value), text.data(), node.count) == 0;
  return string(index) == text;
}

std::optional<QLatin1StringView> PropertyList::asciiString(Index index) const {
  const Node& node = nodes_[index];
  if (node.kind != Kind::String || node.form != Form::Plain)
    return std::nullopt;
  return QLatin1StringView(bytes_.constData() + node.value, node.count);
}

std::optional<std::uint32_t> PropertyList::position(Index dictionary, QLatin1StringView wanted,
                                                    std::uint32_t from) const {
  const std::uint32_t pairs = count(dictionary);
  for (std::uint32_t i = from; i < pairs; ++i)
    if (isString(key(dictionary, i), wanted))
      return i;
  for (std::uint32_t i = 0; i < std::min(from, pairs); ++i)
    if (isString(key(dictionary, i), wanted))
      return i;
  return std::nullopt;
}

std::optional<std::uint32_t> PropertyList::position(Index dictionary, QStringView wanted) const {
  for (std::uint32_t i = 0; i < count(dictionary); ++i)
    if (string(key(dictionary, i)) == wanted)
      return i;
  return std::nullopt;
}

std::optional<PropertyList::Index> PropertyList::find(Index dictionary,
                                                      QLatin1StringView wanted) const {
  if (const auto found = position(dictionary, wanted))
    return value(dictionary, *found);
  return std::nullopt;
}

} // namespace zq::platform
