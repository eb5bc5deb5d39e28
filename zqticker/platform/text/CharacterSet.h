// Sets of Unicode characters.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QChar>
#include <QtCore/QStringView>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace zq::platform {

// An immutable set of code points, U+0000 to U+10FFFF. A lone surrogate is the code point of its
// own value. Copies share their contents. The sets by general category follow the version of
// Unicode that ICU has.
//
// Thread: any.
class ZQTICKER_EXPORT CharacterSet {
 public:
  // The empty set.
  CharacterSet();

  // General categories L* and M*: letters and the marks that combine with them.
  static const CharacterSet& letterCharacterSet();
  // General category Nd: the digits 0 to 9 of every script.
  static const CharacterSet& decimalDigitCharacterSet();
  // General category Zs (space, no-break space and the other horizontal spaces) and tab. No line
  // ends.
  static const CharacterSet& whitespaceCharacterSet();
  // U+000A to U+000D, U+0085, U+2028 and U+2029.
  static const CharacterSet& newlineCharacterSet();
  // Both of the last two.
  static const CharacterSet& whitespaceAndNewlineCharacterSet();

  // The code points of `string`: a pair of surrogates is one, a lone surrogate one as well.
  static CharacterSet characterSetWithCharactersInString(QStringView string);

  // Whether the set has the code unit `character`, taken as a code point by itself: half of a pair
  // is in no set by category.
  bool characterIsMember(char16_t character) const {
    return contents_->units[character >> 6] >> (character & 63) & 1;
  }
  // Whether the set has the code point `character`. False beyond U+10FFFF.
  bool longCharacterIsMember(char32_t character) const;

  // Everything that is not in this set.
  CharacterSet invertedSet() const;
  // What is in either set.
  CharacterSet unionWithCharacterSet(const CharacterSet& other) const;
  // What is in both sets.
  CharacterSet intersectionWithCharacterSet(const CharacterSet& other) const;

  // The first index from `from` on at which a character of the set begins, the length of `text`
  // where there is none. Pairs of surrogates count as the code points that they are; a low one at
  // `from` itself stands alone.
  qsizetype indexOfMember(QStringView text, qsizetype from) const { return find<true>(text, from); }
  // The same for a character that is not in the set.
  qsizetype indexOfOther(QStringView text, qsizetype from) const { return find<false>(text, from); }

  // Whether both have the same code points.
  friend bool operator==(const CharacterSet& a, const CharacterSet& b) {
    return a.contents_ == b.contents_ || a.contents_->boundaries == b.contents_->boundaries;
  }

 private:
  // Code points at which membership changes, in ascending order: the first begins a range that is
  // in the set, the second ends it.
  using Boundaries = std::vector<char32_t>;
  struct Contents {
    Boundaries boundaries;
    // The same for the code points below U+10000, one bit each.
    std::array<std::uint64_t, 1024> units{};
  };

  explicit CharacterSet(Boundaries boundaries);
  static CharacterSet setOfCategories(std::uint32_t mask);
  // Up to the first surrogate here, since most texts have none.
  template <bool IsMember>
  qsizetype find(QStringView text, qsizetype from) const {
    const std::uint64_t* const units = contents_->units.data();
    for (const qsizetype length = text.size(); from < length; ++from) {
      const char16_t c = text[from].unicode();
      if (QChar::isSurrogate(c))
        return findPast(text, from, IsMember);
      if (bool(units[c >> 6] >> (c & 63) & 1) == IsMember)
        break;
    }
    return from;
  }
  qsizetype findPast(QStringView text, qsizetype from, bool isMember) const;

  std::shared_ptr<const Contents> contents_;
};

} // namespace zq::platform
