// How texts follow the default font and colour of a display.
#pragma once

#include "zqticker/platform/objects/Object.h"
#include "zqticker/platform/text/text_attributes.h"

#include <QtCore/QString>

#include <cstdint>
#include <vector>

namespace zq::platform {
class AttributedString;
} // namespace zq::platform

namespace zq::app {

// The changes of the defaults, in order. A text that has one of them takes each change on, but not
// before it is needed: a long queue of texts is not gone through. Texts with the same attributes
// share them afterwards as well.
class StyleChanges {
 public:
  // So many changes are remembered; then every text has to take them on, and they are forgotten.
  static constexpr std::size_t Most = 64;

  // How many there have been.
  std::uint64_t count() const { return forgotten_ + changes_.size(); }
  bool isFull() const { return changes_.size() >= Most; }
  void forget();

  // Texts whose attribute `name` is the very object `before` have `after` from now on; null for
  // none.
  void add(const QString& name, platform::Ref<platform::Object> before,
           platform::Ref<platform::Object> after);

  // `text` with the changes that came after the first `known`; null where none concerns it.
  platform::Ref<platform::AttributedString>
  applied(const platform::Ref<platform::AttributedString>& text, std::uint64_t known) const;

 private:
  struct Change {
    QString name;
    platform::Ref<platform::Object> before;
    platform::Ref<platform::Object> after;
  };

  bool apply(platform::Attributes& attributes, std::uint64_t known) const;

  std::vector<Change> changes_;
  std::uint64_t forgotten_ = 0;
  // The attributes that were changed last, and what became of them.
  mutable platform::Attributes lastBefore_;
  mutable platform::Attributes lastAfter_;
  mutable std::uint64_t lastKnown_ = 0;
};

} // namespace zq::app
