#include "zqticker/platform/text/CharacterSet.h"

#include <unicode/uchar.h>

#include <algorithm>

namespace zq::platform {

namespace {

constexpr char32_t CodePointEnd = 0x110000;
constexpr char32_t UnitEnd = 0x10000;

// Adds a range that begins at or after the end of the last one.
void append(std::vector<char32_t>& boundaries, char32_t start, char32_t end) {
  if (!boundaries.empty() && boundaries.back() == start)
    boundaries.back() = end;
  else
    boundaries.insert(boundaries.end(), {start, end});
}

struct CategoryFilter {
  std::uint32_t mask;
  std::vector<char32_t> boundaries;
};

UBool takeCategory(const void* context, UChar32 start, UChar32 limit, UCharCategory category) {
  auto* filter = const_cast<CategoryFilter*>(static_cast<const CategoryFilter*>(context));
  if (filter->mask & U_MASK(category))
    append(filter->boundaries, char32_t(start), char32_t(limit));
  return true;
}

// The code points at which `isIn(inFirst, inSecond)` changes.
template <class Rule>
std::vector<char32_t> combine(const std::vector<char32_t>& first,
                              const std::vector<char32_t>& second, Rule isIn) {
  std::vector<char32_t> all;
  std::size_t i = 0;
  std::size_t j = 0;
  bool isInside = false;
  while (i < first.size() || j < second.size()) {
    const char32_t at = std::min(i < first.size() ? first[i] : CodePointEnd,
                                 j < second.size() ? second[j] : CodePointEnd);
    i += i < first.size() && first[i] == at;
    j += j < second.size() && second[j] == at;
    if (isIn(i % 2 == 1, j % 2 == 1) != isInside) {
      all.push_back(at);
      isInside = !isInside;
    }
  }
  return all;
}

} // namespace

CharacterSet::CharacterSet() : CharacterSet(Boundaries()) {}

CharacterSet::CharacterSet(Boundaries boundaries) {
  const auto contents = std::make_shared<Contents>();
  for (std::size_t i = 0; i < boundaries.size(); i += 2)
    for (char32_t c = boundaries[i]; c < std::min(boundaries[i + 1], UnitEnd);) {
      const bool isWholeWord = c % 64 == 0 && boundaries[i + 1] - c >= 64;
      contents->units[c >> 6] |= isWholeWord ? ~std::uint64_t(0) : std::uint64_t(1) << (c & 63);
      c += isWholeWord ? 64 : 1;
    }
  contents->boundaries = std::move(boundaries);
  contents_ = contents;
}

CharacterSet CharacterSet::setOfCategories(std::uint32_t mask) {
  CategoryFilter filter{mask, {}};
  u_enumCharTypes(takeCategory, &filter);
  return CharacterSet(std::move(filter.boundaries));
}

const CharacterSet& CharacterSet::letterCharacterSet() {
  static const CharacterSet set = setOfCategories(U_GC_L_MASK | U_GC_M_MASK);
  return set;
}

const CharacterSet& CharacterSet::decimalDigitCharacterSet() {
  static const CharacterSet set = setOfCategories(U_GC_ND_MASK);
  return set;
}

const CharacterSet& CharacterSet::whitespaceCharacterSet() {
  static const CharacterSet set =
      setOfCategories(U_GC_ZS_MASK).unionWithCharacterSet(CharacterSet(Boundaries{u'\t', u'\n'}));
  return set;
}

const CharacterSet& CharacterSet::newlineCharacterSet() {
  static const CharacterSet set(Boundaries{0x0a, 0x0e, 0x85, 0x86, 0x2028, 0x202a});
  return set;
}

const CharacterSet& CharacterSet::whitespaceAndNewlineCharacterSet() {
  static const CharacterSet set =
      whitespaceCharacterSet().unionWithCharacterSet(newlineCharacterSet());
  return set;
}

CharacterSet CharacterSet::characterSetWithCharactersInString(QStringView string) {
  std::vector<char32_t> characters;
  characters.reserve(std::size_t(string.size()));
  for (qsizetype i = 0; i < string.size(); ++i) {
    const bool isPair =
        string[i].isHighSurrogate() && i + 1 < string.size() && string[i + 1].isLowSurrogate();
    characters.push_back(isPair ? QChar::surrogateToUcs4(string[i], string[i + 1])
                                : char32_t(string[i].unicode()));
    i += isPair;
  }
  std::sort(characters.begin(), characters.end());
  characters.erase(std::unique(characters.begin(), characters.end()), characters.end());
  Boundaries boundaries;
  for (const char32_t c : characters)
    append(boundaries, c, c + 1);
  return CharacterSet(std::move(boundaries));
}

bool CharacterSet::longCharacterIsMember(char32_t character) const {
  if (character < UnitEnd)
    return characterIsMember(char16_t(character));
  const Boundaries& boundaries = contents_->boundaries;
  const auto after = std::upper_bound(boundaries.begin(), boundaries.end(), character);
  return (after - boundaries.begin()) % 2 == 1;
}

CharacterSet CharacterSet::invertedSet() const {
  return CharacterSet(
      combine(contents_->boundaries, {0, CodePointEnd}, [](bool a, bool b) { return !a && b; }));
}

CharacterSet CharacterSet::unionWithCharacterSet(const CharacterSet& other) const {
  return CharacterSet(combine(contents_->boundaries, other.contents_->boundaries,
                              [](bool a, bool b) { return a || b; }));
}

CharacterSet CharacterSet::intersectionWithCharacterSet(const CharacterSet& other) const {
  return CharacterSet(combine(contents_->boundaries, other.contents_->boundaries,
                              [](bool a, bool b) { return a && b; }));
}

qsizetype CharacterSet::findPast(QStringView text, qsizetype from, bool isMember) const {
  const char16_t* const characters = text.utf16();
  const qsizetype length = text.size();
  for (qsizetype i = from; i < length; ++i) {
    const char16_t c = characters[i];
    if (QChar::isHighSurrogate(c) && i + 1 < length && QChar::isLowSurrogate(characters[i + 1])) {
      if (longCharacterIsMember(QChar::surrogateToUcs4(c, characters[i + 1])) == isMember)
        return i;
      ++i;
    } else if (characterIsMember(c) == isMember) {
      return i;
    }
  }
  return length;
}

} // namespace zq::platform
