#include "zqticker/platform/archiving/SequentialUnarchiver.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/PropertyList.h"
#include "zqticker/platform/archiving/reference_date_p.h"
#include "zqticker/platform/archiving/sequential_format_p.h"
#include "zqticker/platform/objects/Exception.h"

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

using Kind = PropertyList::Kind;
using Index = PropertyList::Index;

// Decoded values may take this many times the bytes of the data, beyond an allowance.
constexpr qint64 MaximumExpansionFactor = 32;
constexpr qint64 ExpansionAllowance = 1 << 16;
// What a value counts as beside its text or data, in bytes.
constexpr qint64 ValueBytes = 16;

} // namespace

class SequentialUnarchiverState {
 public:
  SequentialUnarchiverState(SequentialUnarchiver& coder, const QByteArray& data)
      : list_(PropertyList::fromBinary(data)), coder_(coder),
        budget_(list_.sourceSize() * MaximumExpansionFactor + ExpansionAllowance) {
    const Index top = list_.top();
    if (list_.kind(top) != Kind::Array || list_.count(top) < SequentialHeaderCount ||
        !list_.isString(list_.element(top, 0), SequentialSignature) ||
        list_.kind(list_.element(top, 1)) != Kind::Integer ||
        list_.integer(list_.element(top, 1)) != SequentialVersion)
      throw ArchiveException(u"not a sequential archive"_s);
    place_ = {top, SequentialHeaderCount};
  }

  bool isAtEnd() const { return place_.next >= list_.count(place_.array); }

  Any next() {
    if (isAtEnd())
      throw ArchiveException(u"no value is left"_s);
    return decode(list_.element(place_.array, place_.next++));
  }

 private:
  struct Place {
    Index array = 0;
    std::uint32_t next = 0;
  };
  struct KnownObject {
    Ref<Object> object;
    // Whether it may be referred to now.
    bool isReady = false;
    // How deep a walk through it goes.
    int height = 0;
  };
  // Reads the values of an object or a container while it lives.
  class Nested {
   public:
    Nested(SequentialUnarchiverState& state, Index array)
        : state_(state), outer_(state.place_), outerHeight_(state.height_) {
      state.height_ = 0;
      if (state.list_.kind(array) != Kind::Array)
        throw ArchiveException(u"the values of a sequential archive are no array"_s);
      state.place_ = {array, 0};
    }
    // What was read is one step higher than its contents.
    ~Nested() {
      state_.place_ = outer_;
      state_.height_ = std::max(outerHeight_, state_.height_ + 1);
    }
    Nested(const Nested&) = delete;
    Nested& operator=(const Nested&) = delete;

   private:
    SequentialUnarchiverState& state_;
    Place outer_;
    int outerHeight_;
  };

  void charge(qint64 bytes) {
    budget_ -= bytes;
    if (budget_ < 0)
      throw ArchiveException(u"the archive expands to more than its size allows"_s);
  }

  Any decode(Index value);
  Any decodeContainer(Index dictionary);
  Any decodeObject(Index className, Index values);

  const PropertyList list_;
  SequentialUnarchiver& coder_;
  qint64 budget_;
  Place place_;
  // Of what has been read at this place.
  int height_ = 0;
  std::vector<KnownObject> objects_;
};

Any SequentialUnarchiverState::decodeObject(Index className, Index values) {
  if (list_.kind(className) != Kind::String)
    throw ArchiveException(u"an object without a class"_s);
  const ClassRegistry::Registration registration =
      ClassRegistry::registration(list_.string(className));
  if (!registration.factory)
    throw ArchiveException(u"the class %1 is unknown"_s.arg(list_.string(className).left(200)));
  const std::size_t number = objects_.size();
  const Ref<Object> object = registration.factory();
  objects_.push_back({object, registration.cycles == ClassRegistry::Cycles::Allowed});
  try {
    Nested nested(*this, values);
    const Ref<Object> decoded = object->initWithCoder(coder_);
    if (!decoded)
      throw ArchiveException(
          u"the object of class %1 could not be decoded"_s.arg(list_.string(className)));
    objects_[number] = {decoded, true, height_ + 1};
    return any(decoded);
  } catch (...) {
    objects_[number] = {nullptr, false};
    throw;
  }
}

Any SequentialUnarchiverState::decodeContainer(Index dictionary) {
  if (list_.count(dictionary) == 0)
    return {};
  const auto className = list_.find(dictionary, SequentialClassKey);
  const auto values = list_.find(dictionary, SequentialValuesKey);
  if (className && values)
    return decodeObject(*className, *values);
  if (const auto array = list_.find(dictionary, SequentialListKey)) {
    Nested nested(*this, *array);
    QVariantList list;
    while (!isAtEnd())
      list.append(next());
    return list;
  }
  if (const auto array = list_.find(dictionary, SequentialMapKey)) {
    Nested nested(*this, *array);
    QVariantMap map;
    while (!isAtEnd()) {
      const Any key = next();
      if (key.metaType() != QMetaType::fromType<QString>())
        throw ArchiveException(u"a key of a map is no string"_s);
      map.insert(key.toString(), next());
    }
    return map;
  }
  throw ArchiveException(u"a value of a sequential archive is of no known kind"_s);
}

Any SequentialUnarchiverState::decode(Index value) {
  charge(ValueBytes);
  switch (list_.kind(value)) {
  case Kind::Boolean:
    return list_.boolean(value);
  case Kind::Integer:
    return list_.isUnsigned(value) ? Any(qulonglong(list_.integer(value)))
                                   : Any(qlonglong(list_.integer(value)));
  case Kind::Real:
    return list_.isSinglePrecision(value) ? Any(float(list_.real(value))) : Any(list_.real(value));
  case Kind::Date:
    if (const auto date = dateOfSeconds(list_.real(value)))
      return *date;
    throw ArchiveException(u"a date is out of range"_s);
  case Kind::String:
    charge(qint64(2 * list_.byteCount(value)));
    return list_.string(value);
  case Kind::Data:
    charge(qint64(list_.byteCount(value)));
    return list_.data(value);
  case Kind::Uid:
    if (list_.uid(value) >= objects_.size() || !objects_[list_.uid(value)].isReady)
      throw ArchiveException(u"a reference leads to no object"_s);
    height_ = std::max(height_, objects_[list_.uid(value)].height);
    if (height_ > PropertyList::MaximumDepth)
      throw ArchiveException(u"values are nested too deeply"_s);
    return any(objects_[list_.uid(value)].object);
  case Kind::Dictionary:
    return decodeContainer(value);
  case Kind::Array:
  case Kind::Set:
    break;
  }
  throw ArchiveException(u"a value of a sequential archive is of no known kind"_s);
}

SequentialUnarchiver::SequentialUnarchiver(const QByteArray& data)
    : state_(std::make_unique<SequentialUnarchiverState>(*this, data)) {}
SequentialUnarchiver::~SequentialUnarchiver() = default;

bool SequentialUnarchiver::isAtEnd() const {
  return state_->isAtEnd();
}

Any SequentialUnarchiver::decodeValue() {
  return state_->next();
}

} // namespace zq::platform
