// Archives of attributed strings.
#include "zqticker/platform/archiving/Coder.h"
#include "zqticker/platform/archiving/seven_bit_groups.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/AttributedString.h"

#include <optional>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

constexpr QLatin1StringView StringKey{"NSString"};
constexpr QLatin1StringView AttributesKey{"NSAttributes"};
constexpr QLatin1StringView RunsKey{"NSAttributeInfo"};

// One dictionary of attributes.
Attributes attributesOf(const Any& dictionary, Coder& coder) {
  if (dictionary.metaType() != QMetaType::fromType<QVariantMap>())
    throw ArchiveException(u"attributes are a dictionary"_s, coder.keyPath(AttributesKey));
  return dictionary.toMap();
}

} // namespace

void AttributedString::encodeWithCoder(Coder& coder) {
  coder.encodeObject(Any(string_), StringKey);
  if (runs_.empty())
    return;
  if (runs_.size() == 1) {
    coder.encodeObject(Any(runs_.front().attributes), AttributesKey);
    return;
  }
  QVariantList dictionaries;
  QByteArray info;
  for (const Run& run : runs_) {
    appendSevenBitGroups(info, quint64(run.range.length));
    appendSevenBitGroups(info, quint64(dictionaries.size()));
    dictionaries.append(Any(run.attributes));
  }
  coder.encodeObject(Any(dictionaries), AttributesKey);
  coder.encodeObject(Any(info), RunsKey);
}

Ref<Object> AttributedString::initWithCoder(Coder& coder) {
  line_.reset();
  runs_.clear();
  string_ = coder.decodeStringForKey(StringKey).value_or(QString());
  const Any attributes = coder.decodeObjectForKey(AttributesKey);
  const std::optional<QByteArray> info = coder.decodeDataForKey(RunsKey);
  if (string_.isEmpty())
    return shared_from_this();
  if (!info) {
    runs_.push_back(
        {{0, length()}, attributes.isValid() ? attributesOf(attributes, coder) : Attributes()});
    return shared_from_this();
  }

  if (attributes.metaType() != QMetaType::fromType<QVariantList>())
    throw ArchiveException(u"the attributes of several runs are a list"_s,
                           coder.keyPath(AttributesKey));
  const QVariantList dictionaries = attributes.toList();
  qsizetype position = 0;
  qsizetype covered = 0;
  while (covered < length() && position < info->size()) {
    const std::optional<qint64> runLength = takeSevenBitGroups(*info, position);
    const std::optional<qint64> index = takeSevenBitGroups(*info, position);
    if (!runLength || !index)
      throw ArchiveException(u"a number of the runs is cut off or too wide"_s,
                             coder.keyPath(RunsKey));
    if (*runLength > length() - covered)
      throw ArchiveException(u"a run goes past the end of the text"_s, coder.keyPath(RunsKey));
    if (*index >= dictionaries.size())
      throw ArchiveException(u"a run has attributes that do not exist"_s, coder.keyPath(RunsKey));
    if (*runLength > 0)
      runs_.push_back({{covered, *runLength}, attributesOf(dictionaries[*index], coder)});
    covered += *runLength;
  }
  // Runs that end early leave the rest of the text without attributes.
  if (covered < length())
    runs_.push_back({{covered, length() - covered}, {}});
  return shared_from_this();
}

} // namespace zq::platform
