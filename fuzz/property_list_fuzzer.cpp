// Property lists, binary and XML: read, look at everything, write, read again, compare.
#include "zqticker/platform/archiving/PropertyListWriter_p.h"
#include "zqticker/platform/objects/Exception.h"

#include <bit>
#include <cstdlib>
#include <set>
#include <unordered_map>

using namespace zq::platform;

namespace {

using Index = PropertyList::Index;
using Kind = PropertyList::Kind;

constexpr std::size_t LargestInput = 1 << 16;

void require(bool condition) {
  if (!condition)
    std::abort();
}

// Writes each value of a list once, however many containers share it.
class Rewriter {
 public:
  explicit Rewriter(const PropertyList& list) : list_(list) {}

  QByteArray binary() { return writer_.finish(rewrite(list_.top())); }

 private:
  Index rewrite(Index index) {
    if (const auto known = written_.find(index); known != written_.end())
      return known->second;
    const Index result = add(index);
    written_.emplace(index, result);
    return result;
  }

  Index add(Index index) {
    switch (list_.kind(index)) {
    case Kind::Boolean:
      return writer_.addBoolean(list_.boolean(index));
    case Kind::Integer:
      return list_.isUnsigned(index) ? writer_.addUnsigned(std::uint64_t(list_.integer(index)))
                                     : writer_.addInteger(list_.integer(index));
    case Kind::Real:
      return list_.isSinglePrecision(index) ? writer_.addSingle(float(list_.real(index)))
                                            : writer_.addReal(list_.real(index));
    case Kind::Date:
      return writer_.addDate(list_.real(index));
    case Kind::Uid:
      return writer_.addUid(list_.uid(index));
    case Kind::Data:
      return writer_.addData(list_.data(index));
    case Kind::String:
      return writer_.addString(list_.string(index));
    case Kind::Array:
    case Kind::Set: {
      std::vector<Index> elements;
      for (std::uint32_t i = 0; i < list_.count(index); ++i)
        elements.push_back(rewrite(list_.element(index, i)));
      return writer_.addArray(elements);
    }
    case Kind::Dictionary:
      break;
    }
    std::vector<Index> keys;
    std::vector<Index> values;
    for (std::uint32_t i = 0; i < list_.count(index); ++i) {
      keys.push_back(rewrite(list_.key(index, i)));
      values.push_back(rewrite(list_.value(index, i)));
      list_.position(index, QStringView(list_.string(list_.key(index, i))));
    }
    return writer_.addDictionary(keys, values);
  }

  const PropertyList& list_;
  PropertyListWriter writer_;
  std::unordered_map<Index, Index> written_;
};

class Comparison {
 public:
  Comparison(const PropertyList& a, const PropertyList& b) : a_(a), b_(b) {}

  void compare(Index a, Index b) {
    if (!compared_.emplace(a, b).second)
      return;
    // A set is written as an array.
    const Kind kind = a_.kind(a) == Kind::Set ? Kind::Array : a_.kind(a);
    require(kind == b_.kind(b));
    switch (kind) {
    case Kind::Boolean:
      require(a_.boolean(a) == b_.boolean(b));
      break;
    case Kind::Integer:
      require(a_.integer(a) == b_.integer(b) && a_.isUnsigned(a) == b_.isUnsigned(b));
      break;
    case Kind::Real:
    case Kind::Date:
      // Not a number has many forms, of which the processor may change one into another.
      require(a_.real(a) != a_.real(a) ? b_.real(b) != b_.real(b)
                                       : std::bit_cast<std::uint64_t>(a_.real(a)) ==
                                             std::bit_cast<std::uint64_t>(b_.real(b)));
      break;
    case Kind::Uid:
      require(a_.uid(a) == b_.uid(b));
      break;
    case Kind::Data:
      require(a_.data(a) == b_.data(b));
      break;
    case Kind::String:
      require(a_.string(a) == b_.string(b));
      break;
    case Kind::Array:
    case Kind::Set:
      require(a_.count(a) == b_.count(b));
      for (std::uint32_t i = 0; i < a_.count(a); ++i)
        compare(a_.element(a, i), b_.element(b, i));
      break;
    case Kind::Dictionary:
      require(a_.count(a) == b_.count(b));
      for (std::uint32_t i = 0; i < a_.count(a); ++i) {
        compare(a_.key(a, i), b_.key(b, i));
        compare(a_.value(a, i), b_.value(b, i));
      }
      break;
    }
  }

 private:
  const PropertyList& a_;
  const PropertyList& b_;
  std::set<std::pair<Index, Index>> compared_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > LargestInput)
    return 0;
  try {
    const PropertyList list =
        PropertyList::fromData(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));
    const PropertyList again = PropertyList::fromBinary(Rewriter(list).binary());
    Comparison(list, again).compare(list.top(), again.top());
  } catch (const ArchiveException&) {
    // The input is no property list.
  }
  return 0;
}
