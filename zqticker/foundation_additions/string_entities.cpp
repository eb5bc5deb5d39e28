// Entities of XML in strings.
#include "zqticker/foundation_additions/string_additions.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

using namespace Qt::StringLiterals;

namespace zq {

namespace {

struct Predefined {
  char16_t character;
  QStringView name;
  // As it stands in a text.
  QStringView reference;
};

constexpr std::array<Predefined, 5> PredefinedEntities{{{u'&', u"amp", u"&amp;"},
                                                        {u'<', u"lt", u"&lt;"},
                                                        {u'>', u"gt", u"&gt;"},
                                                        {u'"', u"quot", u"&quot;"},
                                                        {u'\'', u"apos", u"&apos;"}}};

// The five characters, one bit each.
constexpr std::uint64_t PredefinedCharacters = [] {
  std::uint64_t bits = 0;
  for (const Predefined& entity : PredefinedEntities)
    bits |= std::uint64_t(1) << entity.character;
  return bits;
}();

bool isPredefined(QChar character) {
  return character.unicode() < 64 && (PredefinedCharacters >> character.unicode() & 1);
}

// The entity of a character that has one.
const Predefined* entityOf(QChar character) {
  for (const Predefined& entity : PredefinedEntities)
    if (entity.character == character)
      return &entity;
  return nullptr;
}

const Predefined* entityNamed(QStringView name) {
  for (const Predefined& entity : PredefinedEntities)
    if (entity.name == name)
      return &entity;
  return nullptr;
}

// An expansion and the name that is put in its place.
struct Expansion {
  QStringView text;
  QStringView name;
};

// Whether &name; is read back as an entity of the caller.
bool isReadable(const QString& name) {
  return !name.isEmpty() && !name.startsWith(u'#') && !name.contains(u'&') &&
         !name.contains(u';') && !entityNamed(name);
}

// The expansions that count.
class Expansions {
 public:
  explicit Expansions(const Entities& entities) {
    for (auto entity = entities.begin(); entity != entities.end(); ++entity)
      if (!entity->isEmpty() && isReadable(entity.key())) {
        byFirst_[entity->front()].push_back({*entity, entity.key()});
        firstBits_ |= bitOf(entity->front());
      }
    for (std::vector<Expansion>& each : byFirst_)
      std::sort(each.begin(), each.end(), [](const Expansion& a, const Expansion& b) {
        return a.text.size() != b.text.size() ? a.text.size() > b.text.size() : a.name < b.name;
      });
  }

  bool isEmpty() const { return byFirst_.isEmpty(); }

  // The one that `text` begins with and that goes before the others, if it has `shortest`
  // characters at least.
  const Expansion* find(QStringView text, qsizetype shortest) const {
    if (!(firstBits_ & bitOf(text.front())))
      return nullptr;
    const auto candidates = byFirst_.find(text.front());
    if (candidates == byFirst_.end())
      return nullptr;
    const auto found =
        std::find_if(candidates->begin(), candidates->end(), [&](const Expansion& candidate) {
          return candidate.text.size() >= shortest && text.startsWith(candidate.text);
        });
    return found == candidates->end() ? nullptr : &*found;
  }

 private:
  // Most characters begin no expansion, and are told by one of 64 bits.
  static std::uint64_t bitOf(QChar first) { return std::uint64_t(1) << first.unicode() % 64; }

  QHash<QChar, std::vector<Expansion>> byFirst_;
  std::uint64_t firstBits_ = 0;
};

// The digits of a reference behind "&#" (hexadecimal behind an "x") as the character that they
// stand for; 0 for none.
char32_t characterNumbered(QStringView digits) {
  const bool isHexadecimal = digits.startsWith(u'x');
  const char32_t base = isHexadecimal ? 16 : 10;
  char32_t character = 0;
  for (const QChar digit : digits.sliced(isHexadecimal ? 1 : 0)) {
    const char32_t c = digit.unicode();
    const char32_t value = c >= u'0' && c <= u'9'   ? c - u'0'
                           : c >= u'a' && c <= u'f' ? c - u'a' + 10
                           : c >= u'A' && c <= u'F' ? c - u'A' + 10
                                                    : base;
    if (value >= base)
      return 0;
    character = character * base + value;
    if (character > QChar::LastValidCodePoint)
      return 0;
  }
  return QChar::isSurrogate(character) ? 0 : character;
}

// Appends what the reference &`name`; stands for; false where it stands for nothing.
bool appendExpansion(QString& result, QStringView name, const Entities& entities) {
  if (name.startsWith(u'#')) {
    const char32_t character = characterNumbered(name.sliced(1));
    if (character != 0)
      result.append(QChar::fromUcs4(character));
    return character != 0;
  }
  if (const Predefined* entity = entityNamed(name)) {
    result.append(QChar(entity->character));
    return true;
  }
  if (entities.isEmpty())
    return false;
  const auto found = entities.find(name.toString());
  if (found == entities.end())
    return false;
  result.append(*found);
  return true;
}

} // namespace

QString stringByEscapingEntities(const QString& string) {
  QString result;
  qsizetype copied = 0;
  for (qsizetype i = 0; i < string.size(); ++i)
    if (isPredefined(string[i])) {
      result.append(QStringView(string).sliced(copied, i - copied));
      result.append(entityOf(string[i])->reference);
      copied = i + 1;
    }
  result.append(QStringView(string).sliced(copied));
  return result;
}

QString stringByEscapingEntities(const QString& string, const Entities& entities) {
  const Expansions expansions(entities);
  if (expansions.isEmpty())
    return stringByEscapingEntities(string);
  QString result;
  qsizetype copied = 0;
  for (qsizetype i = 0; i < string.size();) {
    const bool hasEntity = isPredefined(string[i]);
    const Expansion* expansion = expansions.find(QStringView(string).sliced(i), hasEntity ? 2 : 1);
    if (!hasEntity && !expansion) {
      ++i;
      continue;
    }
    result.append(QStringView(string).sliced(copied, i - copied));
    if (expansion)
      result.append(u'&').append(expansion->name).append(u';');
    else
      result.append(entityOf(string[i])->reference);
    i += expansion ? expansion->text.size() : 1;
    copied = i;
  }
  result.append(QStringView(string).sliced(copied));
  return result;
}

QString stringByUnescapingEntities(const QString& string) {
  return stringByUnescapingEntities(string, Entities());
}

QString stringByUnescapingEntities(const QString& string, const Entities& entities) {
  QString result;
  qsizetype copied = 0;
  qsizetype start = string.indexOf(u'&');
  while (start >= 0) {
    // The name ends at a semicolon; an ampersand before that begins another reference.
    qsizetype end = start + 1;
    while (end < string.size() && string[end] != u';' && string[end] != u'&')
      ++end;
    if (end < string.size() && string[end] == u';') {
      result.append(QStringView(string).sliced(copied, start - copied));
      copied = start;
      if (appendExpansion(result, QStringView(string).sliced(start + 1, end - start - 1), entities))
        copied = end + 1;
    }
    start = string.indexOf(u'&', end);
  }
  result.append(QStringView(string).sliced(copied));
  return result;
}

} // namespace zq
