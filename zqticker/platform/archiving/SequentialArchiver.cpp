#include "zqticker/platform/archiving/SequentialArchiver.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/PropertyListWriter_p.h"
#include "zqticker/platform/archiving/reference_date_p.h"
#include "zqticker/platform/archiving/sequential_format_p.h"
#include "zqticker/platform/objects/Exception.h"

#include <QtCore/QHash>

using namespace Qt::StringLiterals;

namespace zq::platform {

class SequentialArchiverState {
 public:
  using Index = PropertyListWriter::Index;
  using Values = std::vector<Index>;

  explicit SequentialArchiverState(SequentialArchiver& coder) : coder_(coder) {
    values_ = {writer_.addAscii(SequentialSignature), writer_.addInteger(SequentialVersion)};
  }

  void encode(const Any& value) { values_.push_back(add(value)); }

  QByteArray data() const {
    PropertyListWriter writer = writer_;
    return writer.finish(writer.addArray(values_));
  }

 private:
  // Collects the values of an object or a container while it lives.
  class Nested {
   public:
    explicit Nested(SequentialArchiverState& state) : state_(state) {
      if (state.depth_ >= SequentialArchiver::MaximumDepth)
        throw ArchiveException(u"values are nested too deeply"_s);
      ++state.depth_;
      outer_.swap(state.values_);
    }
    ~Nested() {
      outer_.swap(state_.values_);
      --state_.depth_;
    }
    Nested(const Nested&) = delete;
    Nested& operator=(const Nested&) = delete;

   private:
    SequentialArchiverState& state_;
    Values outer_;
  };

  Index add(const Any& value);
  Index addObject(const Ref<Object>& object);
  Index addList(const QVariantList& list);
  Index addMap(const QVariantMap& map);
  Index dictionary(QLatin1StringView key, Index value) {
    const Index name = writer_.addAscii(key);
    return writer_.addDictionary({&name, 1}, {&value, 1});
  }

  SequentialArchiver& coder_;
  PropertyListWriter writer_;
  Values values_;
  int depth_ = 0;
  QHash<const Object*, std::uint32_t> numbers_;
  std::vector<Ref<Object>> held_;
};

SequentialArchiverState::Index SequentialArchiverState::addObject(const Ref<Object>& object) {
  if (!object)
    return writer_.addDictionary({}, {});
  if (const auto known = numbers_.constFind(object.get()); known != numbers_.cend())
    return writer_.addUid(*known);
  numbers_.insert(object.get(), std::uint32_t(held_.size()));
  held_.push_back(object);
  Nested nested(*this);
  object->encodeWithCoder(coder_);
  const QString name = ClassRegistry::archiveClassesOf(*object->metaObject()).first();
  const Index keys[] = {writer_.addAscii(SequentialClassKey),
                        writer_.addAscii(SequentialValuesKey)};
  const Index values[] = {writer_.addString(name), writer_.addArray(values_)};
  return writer_.addDictionary(keys, values);
}

SequentialArchiverState::Index SequentialArchiverState::addList(const QVariantList& list) {
  Nested nested(*this);
  for (const Any& element : list)
    encode(element);
  return dictionary(SequentialListKey, writer_.addArray(values_));
}

SequentialArchiverState::Index SequentialArchiverState::addMap(const QVariantMap& map) {
  Nested nested(*this);
  for (auto pair = map.begin(); pair != map.end(); ++pair) {
    values_.push_back(writer_.addString(pair.key()));
    encode(pair.value());
  }
  return dictionary(SequentialMapKey, writer_.addArray(values_));
}

SequentialArchiverState::Index SequentialArchiverState::add(const Any& value) {
  switch (value.typeId()) {
  case QMetaType::UnknownType:
    return writer_.addDictionary({}, {});
  case QMetaType::QString:
    return writer_.addString(value.toString());
  case QMetaType::QByteArray:
    return writer_.addData(value.toByteArray());
  case QMetaType::Bool:
    return writer_.addBoolean(value.toBool());
  case QMetaType::Int:
  case QMetaType::LongLong:
    return writer_.addInteger(value.toLongLong());
  case QMetaType::UInt:
  case QMetaType::ULongLong:
    return writer_.addUnsigned(value.toULongLong());
  case QMetaType::Float:
    return writer_.addSingle(value.toFloat());
  case QMetaType::Double:
    return writer_.addReal(value.toDouble());
  case QMetaType::QDateTime:
    if (!value.toDateTime().isValid())
      throw InvalidArgumentException(u"the date is invalid"_s);
    return writer_.addDate(secondsOfDate(value.toDateTime()));
  case QMetaType::QVariantList:
    return addList(value.toList());
  case QMetaType::QVariantMap:
    return addMap(value.toMap());
  default:
    break;
  }
  if (value.metaType() == QMetaType::fromType<Ref<Object>>())
    return addObject(objectOf(value));
  throw InvalidArgumentException(u"a value of type %1 cannot be archived in order"_s.arg(
      QLatin1StringView(value.metaType().name())));
}

SequentialArchiver::SequentialArchiver()
    : state_(std::make_unique<SequentialArchiverState>(*this)) {}
SequentialArchiver::~SequentialArchiver() = default;

QByteArray SequentialArchiver::encodedData() const {
  return state_->data();
}

void SequentialArchiver::encodeValue(const Any& value) {
  state_->encode(value);
}

} // namespace zq::platform
