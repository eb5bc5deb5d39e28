#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/text/AttributedString.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::platform {

ZQ_REGISTER_VALUE_CLASS(MutableAttributedString);

// The text of an editable view, which archives under a name of its own.
[[maybe_unused]] static const bool textStorageIsRegistered = [] {
  ClassRegistry::registerClass(
      u"NSTextStorage"_s,
      []() -> Ref<Object> { return std::make_shared<MutableAttributedString>(); },
      ClassRegistry::Cycles::Refused);
  return true;
}();

Ref<MutableAttributedString> MutableAttributedString::make(const QString& string,
                                                           const Attributes& attributes) {
  auto text = std::make_shared<MutableAttributedString>();
  text->replaceCharactersInRange({0, 0}, *AttributedString::make(string, attributes));
  return text;
}

std::pair<std::size_t, std::size_t> MutableAttributedString::isolate(Range range) {
  checkRange(range);
  // The index of the first run that starts at or after `position`, after cutting one that holds
  // it.
  const auto cutAt = [&](qsizetype position) {
    const auto run = std::partition_point(runs_.begin(), runs_.end(),
                                          [&](const Run& r) { return r.range.end() <= position; });
    const auto index = std::size_t(run - runs_.begin());
    if (run == runs_.end() || run->range.location >= position)
      return index;
    Run tail = *run;
    tail.range = {position, run->range.end() - position};
    run->range.length = position - run->range.location;
    runs_.insert(run + 1, std::move(tail));
    return index + 1;
  };
  const std::size_t first = cutAt(range.location);
  return {first, cutAt(range.end())};
}

void MutableAttributedString::changed() {
  line_.reset();
}

void MutableAttributedString::replaceCharactersInRange(Range range, const QString& string) {
  checkRange(range);
  Attributes attributes;
  if (range.length > 0)
    attributes = attributesAtIndex(range.location);
  else if (range.location > 0)
    attributes = attributesAtIndex(range.location - 1);
  else if (length() > 0)
    attributes = attributesAtIndex(0);
  replaceCharactersInRange(range, *AttributedString::make(string, attributes));
}

void MutableAttributedString::replaceCharactersInRange(Range range,
                                                       const AttributedString& string) {
  // The text may be put into itself.
  std::vector<Run> added = string.runs();
  const QString characters = string.string();
  const auto [first, last] = isolate(range);
  string_.replace(range.location, range.length, characters);
  const auto begin = runs_.begin() + std::ptrdiff_t(first);
  runs_.erase(begin, runs_.begin() + std::ptrdiff_t(last));
  for (Run& run : added)
    run.range.location += range.location;
  const qsizetype shift = characters.size() - range.length;
  for (auto run = runs_.begin() + std::ptrdiff_t(first); run != runs_.end(); ++run)
    run->range.location += shift;
  runs_.insert(runs_.begin() + std::ptrdiff_t(first), std::make_move_iterator(added.begin()),
               std::make_move_iterator(added.end()));
  changed();
}

void MutableAttributedString::deleteCharactersInRange(Range range) {
  replaceCharactersInRange(range, AttributedString());
}

void MutableAttributedString::appendAttributedString(const AttributedString& string) {
  replaceCharactersInRange({length(), 0}, string);
}

void MutableAttributedString::setAttributes(const Attributes& attributes, Range range) {
  auto [first, last] = isolate(range);
  if (first < last) {
    // One run in the place of all.
    runs_[first] = {range, attributes};
    runs_.erase(runs_.begin() + std::ptrdiff_t(first) + 1, runs_.begin() + std::ptrdiff_t(last));
  }
  changed();
}

void MutableAttributedString::addAttribute(const QString& name, const Any& value, Range range) {
  if (!value.isValid())
    return removeAttribute(name, range);
  const auto [first, last] = isolate(range);
  for (std::size_t i = first; i < last; ++i)
    runs_[i].attributes.insert(name, value);
  changed();
}

void MutableAttributedString::addAttributes(const Attributes& attributes, Range range) {
  const auto [first, last] = isolate(range);
  for (std::size_t i = first; i < last; ++i)
    for (auto attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
      if (attribute.value().isValid())
        runs_[i].attributes.insert(attribute.key(), attribute.value());
      else
        runs_[i].attributes.remove(attribute.key());
  changed();
}

void MutableAttributedString::removeAttribute(const QString& name, Range range) {
  const auto [first, last] = isolate(range);
  for (std::size_t i = first; i < last; ++i)
    runs_[i].attributes.remove(name);
  changed();
}

} // namespace zq::platform
