#include "app/display/StyleChanges.h"

#include "zqticker/platform/text/AttributedString.h"

#include <utility>

namespace zq::app {

using namespace platform;

void StyleChanges::forget() {
  forgotten_ = count();
  changes_.clear();
}

void StyleChanges::add(const QString& name, Ref<Object> before, Ref<Object> after) {
  if (!before || before == after)
    return;
  changes_.push_back({name, std::move(before), std::move(after)});
  lastBefore_.clear();
  lastAfter_.clear();
}

// Whether anything changed.
bool StyleChanges::apply(Attributes& attributes, std::uint64_t known) const {
  if (known == lastKnown_ && !lastAfter_.isEmpty() && attributes.isSharedWith(lastBefore_)) {
    attributes = lastAfter_;
    return true;
  }
  Attributes changed = attributes;
  bool isChanged = false;
  for (std::size_t i = known > forgotten_ ? std::size_t(known - forgotten_) : 0;
       i < changes_.size(); ++i) {
    const Change& change = changes_[i];
    if (objectOf<Object>(changed.value(change.name)) != change.before)
      continue;
    isChanged = true;
    if (change.after)
      changed.insert(change.name, any(change.after));
    else
      changed.remove(change.name);
  }
  if (isChanged) {
    lastKnown_ = known;
    lastBefore_ = std::exchange(attributes, changed);
    lastAfter_ = std::move(changed);
  }
  return isChanged;
}

Ref<AttributedString> StyleChanges::applied(const Ref<AttributedString>& text,
                                            std::uint64_t known) const {
  if (!text || known >= count())
    return nullptr;
  Ref<MutableAttributedString> changed;
  for (const AttributedString::Run& run : text->runs()) {
    Attributes attributes = run.attributes;
    if (!apply(attributes, known))
      continue;
    if (run.range.length == text->length())
      return AttributedString::make(text->string(), attributes);
    if (!changed)
      changed = text->mutableCopy();
    changed->setAttributes(attributes, run.range);
  }
  return changed ? std::static_pointer_cast<AttributedString>(changed->copy()) : nullptr;
}

} // namespace zq::app
