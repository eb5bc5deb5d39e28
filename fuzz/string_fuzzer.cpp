// Operations on strings that scan, against models that go character by character: what they give,
// where they stop, and what they leave alone.
#include "zqticker/foundation_additions/string_additions.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/CharacterSet.h"
#include "zqticker/platform/text/Scanner.h"
#include "zqticker/platform/text/line_ranges.h"
#include "zqticker/platform/text/string_search.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <limits>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;
using zq::platform::CharacterSet;
using zq::platform::LineRange;
using zq::platform::Scanner;

namespace {

// The models take up to the cube of it.
constexpr std::size_t LargestInput = 1 << 9;

void check(bool holds) {
  if (!holds)
    std::abort();
}

// A set as a question.
using Question = std::function<bool(char32_t)>;

bool isWhitespace(char32_t c) {
  return c == u'\t' || QChar::category(c) == QChar::Separator_Space;
}

bool isWhitespaceOrNewline(char32_t c) {
  return isWhitespace(c) || (c >= 0x0a && c <= 0x0d) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

bool isLetter(char32_t c) {
  return QChar::isLetter(c) || QChar::isMark(c);
}

bool isDecimalDigit(char32_t c) {
  return QChar::category(c) == QChar::Number_DecimalDigit;
}

bool isNothing(char32_t) {
  return false;
}

// The character at an index and how many code units it has.
std::pair<char32_t, qsizetype> characterAt(const QString& text, qsizetype index) {
  if (text[index].isHighSurrogate() && index + 1 < text.size() && text[index + 1].isLowSurrogate())
    return {QChar::surrogateToUcs4(text[index], text[index + 1]), 2};
  return {text[index].unicode(), 1};
}

Question anyOf(const QString& characters) {
  return [characters](char32_t c) {
    for (qsizetype i = 0; i < characters.size();) {
      const auto [member, length] = characterAt(characters, i);
      if (member == c)
        return true;
      i += length;
    }
    return false;
  };
}

// A set and the question that it answers.
struct Set {
  CharacterSet set;
  Question contains;
};

Set setNumbered(unsigned number, const QString& characters) {
  const Set own{CharacterSet::characterSetWithCharactersInString(characters), anyOf(characters)};
  switch (number % 8) {
  case 0:
    return {CharacterSet::letterCharacterSet(), isLetter};
  case 1:
    return {CharacterSet::whitespaceCharacterSet(), isWhitespace};
  case 2:
    return {CharacterSet::whitespaceAndNewlineCharacterSet(), isWhitespaceOrNewline};
  case 3:
    return {CharacterSet::decimalDigitCharacterSet(), isDecimalDigit};
  case 4:
    return {own.set.invertedSet(), [own](char32_t c) { return !own.contains(c); }};
  case 5:
    return {own.set.unionWithCharacterSet(CharacterSet::letterCharacterSet()),
            [own](char32_t c) { return own.contains(c) || isLetter(c); }};
  case 6:
    return {own.set.intersectionWithCharacterSet(CharacterSet::letterCharacterSet()),
            [own](char32_t c) { return own.contains(c) && isLetter(c); }};
  default:
    return own;
  }
}

// A scanner that remembers nothing but its location.
struct Slow {
  QString text;
  Question isSkipped = isWhitespaceOrNewline;
  qsizetype location = 0;

  qsizetype afterAll(const Question& isMember, qsizetype from) const {
    while (from < text.size() && isMember(characterAt(text, from).first))
      from += characterAt(text, from).second;
    return from;
  }
  qsizetype start() const { return afterAll(isSkipped, location); }
  bool isAtEnd() const { return start() == text.size(); }
  bool take(qsizetype from, qsizetype to, QString* found) {
    if (from == to)
      return false;
    if (found)
      *found = text.mid(from, to - from);
    location = to;
    return true;
  }
  bool characters(const Question& isMember, QString* found) {
    return take(start(), afterAll(isMember, start()), found);
  }
  bool upToCharacters(const Question& isMember, QString* found) {
    return characters([&](char32_t c) { return !isMember(c); }, found);
  }
  bool hasAt(const QString& string, qsizetype at) const {
    return !string.isEmpty() && text.mid(at, string.size()) == string;
  }
  bool string(const QString& string, QString* found) {
    return hasAt(string, start()) && take(start(), start() + string.size(), found);
  }
  bool upToString(const QString& string, QString* found) {
    qsizetype end = start();
    while (end < text.size() && !hasAt(string, end))
      ++end;
    return take(start(), end, found);
  }
  bool number(qint64* value, bool* isOutOfRange) {
    qsizetype at = start();
    const bool isNegative = at < text.size() && text[at] == u'-';
    at += isNegative || (at < text.size() && text[at] == u'+');
    const qsizetype digits = at;
    __int128 sum = 0;
    const __int128 limit = __int128(std::numeric_limits<qint64>::max()) + (isNegative ? 1 : 0);
    bool isBeyond = false;
    for (; at < text.size() && text[at] >= u'0' && text[at] <= u'9'; ++at) {
      sum = sum * 10 + (text[at].unicode() - u'0');
      isBeyond = isBeyond || sum > limit;
      sum = isBeyond ? limit : sum;
    }
    if (at == digits)
      return false;
    *value = qint64(isNegative ? -sum : sum);
    *isOutOfRange = isBeyond;
    return take(start(), at, nullptr);
  }
};

std::optional<QString> initials(const QString& text) {
  Slow scanner{text};
  QString result;
  QString word;
  while (!scanner.isAtEnd()) {
    scanner.upToCharacters(isLetter, nullptr);
    scanner.characters(isLetter, &word);
    if (word.isEmpty())
      return std::nullopt;
    result += word[0];
  }
  return result;
}

QString withoutTags(const QString& text, const std::optional<QString>& delimiter) {
  Slow scanner{text};
  QString result;
  while (true) {
    QString piece;
    const bool isFound = scanner.upToString(u"<"_s, &piece);
    if (scanner.upToString(u">"_s, nullptr))
      scanner.string(u">"_s, nullptr);
    if (!isFound)
      return result;
    if (!result.isEmpty() && delimiter)
      result += *delimiter;
    result += piece;
  }
}

QString schemeAndHost(const QString& text) {
  Slow scanner{text};
  QString scheme;
  QString host;
  if (scanner.upToString(u"://"_s, &scheme)) {
    scanner.string(u"://"_s, nullptr);
    scanner.upToString(u"/"_s, &host);
  }
  return scheme + u"://"_s + host;
}

QString replaced(const QString& text, const Question& isMember, const QString& replacement) {
  Slow scanner{text, [&](char32_t c) { return isWhitespaceOrNewline(c) && !isMember(c); }};
  QString result;
  while (!scanner.isAtEnd()) {
    QString chunk;
    scanner.upToCharacters(isMember, &chunk);
    const bool isMatched = scanner.characters(isMember, nullptr);
    result += chunk;
    if (isMatched)
      result += replacement;
  }
  return result;
}

QString kept(const QString& text, const Question& isMember) {
  Slow scanner{text};
  QString result;
  while (!scanner.isAtEnd()) {
    QString chunk;
    scanner.characters(isMember, &chunk);
    scanner.upToCharacters(isMember, nullptr);
    result += chunk;
  }
  return result;
}

QStringList lines(const QString& text) {
  QStringList result{QString()};
  for (qsizetype i = 0; i < text.size(); ++i) {
    const QChar c = text[i];
    const bool isPair = c == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n';
    if (c != u'\n' && c != u'\r' && c != u'\u2028' && c != u'\u2029') {
      result.last() += c;
      continue;
    }
    // An empty first line keeps its terminator.
    if (result.size() == 1 && result.first().isEmpty())
      result.first() = text.left(isPair ? 2 : 1);
    i += isPair;
    if (i + 1 < text.size())
      result += QString();
  }
  return result;
}

QString unescaped(const QString& text, const zq::Entities& entities) {
  QString result;
  for (qsizetype i = 0; i < text.size();) {
    const qsizetype end = text.indexOf(u';', i);
    const QString name = end < 0 ? QString() : text.mid(i + 1, end - i - 1);
    std::optional<QString> expansion;
    if (text[i] == u'&' && end >= 0 && !name.contains(u'&')) {
      static const zq::Entities predefined{{u"amp"_s, u"&"_s},
                                           {u"lt"_s, u"<"_s},
                                           {u"gt"_s, u">"_s},
                                           {u"quot"_s, u"\""_s},
                                           {u"apos"_s, u"'"_s}};
      if (name.startsWith(u'#')) {
        const bool isHexadecimal = name.startsWith(u"#x"_s);
        QString digits = name.mid(isHexadecimal ? 2 : 1);
        bool isNumber = !digits.isEmpty();
        for (const QChar c : digits)
          isNumber = isNumber &&
                     (isHexadecimal ? u"0123456789abcdefABCDEF"_s : u"0123456789"_s).contains(c);
        while (digits.startsWith(u'0'))
          digits.remove(0, 1);
        const uint number = digits.size() < 9 ? digits.toUInt(nullptr, isHexadecimal ? 16 : 10) : 0;
        if (isNumber && number > 0 && number < 0x110000 && !QChar::isSurrogate(number)) {
          const char32_t character = number;
          expansion = QString::fromUcs4(&character, 1);
        }
      } else if (predefined.contains(name)) {
        expansion = predefined[name];
      } else if (entities.contains(name)) {
        expansion = entities[name];
      }
    }
    result += expansion ? *expansion : QString(text[i]);
    i = expansion ? end + 1 : i + 1;
  }
  return result;
}

std::optional<QByteArray> bytes(const QString& text) {
  if (text.isEmpty())
    return std::nullopt;
  QByteArray result((text.size() + 1) / 2, '\0');
  for (qsizetype i = 0; i < text.size() && text[i] != QChar(0); ++i) {
    const qsizetype digit = u"0123456789abcdef"_s.indexOf(text[i], 0, Qt::CaseInsensitive);
    result[i / 2] = char(result[i / 2] << (i % 2 ? 4 : 0) | std::max(digit, qsizetype(0)));
  }
  return result;
}

// Digit runs padded to the same width sort as text.
int order(const QString& a, const QString& b) {
  const auto padded = [&](const QString& text) {
    QString result;
    for (qsizetype i = 0; i < text.size();) {
      qsizetype end = i;
      while (end < text.size() && text[end] >= u'0' && text[end] <= u'9')
        ++end;
      if (end > i)
        result += QString(a.size() + b.size() - (end - i), u'0') + text.mid(i, end - i);
      else
        result += text[end++];
      i = end;
    }
    return result;
  };
  const int byValue = padded(a).compare(padded(b));
  return byValue != 0 ? byValue : a.compare(b);
}

void checkSet(const Set& set) {
  for (const char32_t c :
       U"\u0000 \t\n\r<>&;0aZ\u0085\u00a0\u00e9\u0301\u2028\u3000\uff15\U0001D400"
       U"\U0001F600\U0010FFFF")
    check(set.set.longCharacterIsMember(c) == set.contains(c));
  for (const char16_t c : {0xd83d, 0xde00, 0xffff})
    check(set.set.characterIsMember(c) == set.contains(c));
}

// Carries out what the characters of `program` say on both scanners.
void walk(const QString& text, const QString& program, const QString& other) {
  Scanner scanner(text);
  Slow slow{text};
  for (qsizetype step = 0; step < program.size(); ++step) {
    const unsigned code = program[step].unicode();
    const Set set = setNumbered(code / 16, other);
    QString found = u"kept"_s;
    QString slowly = u"kept"_s;
    qint64 value = 7;
    qint64 slowValue = 7;
    bool isBeyond = false;
    bool isSlowlyBeyond = false;
    switch (code % 11) {
    case 0:
      check(scanner.scanCharactersFromSet(set.set, &found) ==
            slow.characters(set.contains, &slowly));
      break;
    case 1:
      check(scanner.scanUpToCharactersFromSet(set.set, &found) ==
            slow.upToCharacters(set.contains, &slowly));
      break;
    case 2:
      check(scanner.scanString(other, &found) == slow.string(other, &slowly));
      break;
    case 3:
      check(scanner.scanUpToString(other, &found) == slow.upToString(other, &slowly));
      break;
    case 4:
      check(scanner.scanLongLong(&value, &isBeyond) == slow.number(&slowValue, &isSlowlyBeyond));
      break;
    case 5:
      scanner.setCharactersToBeSkipped(set.set);
      slow.isSkipped = set.contains;
      break;
    case 6:
      scanner.setCharactersToBeSkipped(std::nullopt);
      slow.isSkipped = isNothing;
      break;
    case 7:
      slow.location = qsizetype(code) * text.size() / 0xffff;
      scanner.setScanLocation(slow.location);
      break;
    case 8: {
      const bool isAtEnd = slow.isAtEnd();
      check(zq::characterAtScanLocation(scanner).has_value() == !isAtEnd);
      check(zq::scanCharacterIntoString(scanner, &found) == !isAtEnd);
      if (!isAtEnd)
        slowly = text[slow.location++];
      break;
    }
    default: {
      const bool isAtEnd = slow.isAtEnd();
      check(zq::advance(scanner) == !isAtEnd);
      slow.location += !isAtEnd;
    }
    }
    check(found == slowly && value == slowValue && isBeyond == isSlowlyBeyond);
    check(scanner.scanLocation() == slow.location);
    check(scanner.isAtEnd() == slow.isAtEnd());
  }
}

void checkLines(const QString& text) {
  qsizetype start = 0;
  while (start < text.size()) {
    const LineRange line = zq::platform::lineRangeAt(text, start);
    check(line.start == start && line.end > start);
    for (qsizetype position = start; position < line.end; ++position)
      check(zq::platform::lineRangeAt(text, position) == line);
    start = line.end;
  }
  check(zq::componentsSeparatedByLineDelimiter(text) == lines(text));
}

void checkPieces(const QString& text, const QString& other, std::size_t count) {
  const qsizetype found = other.isEmpty() ? -1 : text.indexOf(other);
  check(zq::platform::indexOfString(text, other) == found);
  const QStringList components = other.isEmpty() ? QStringList{text} : text.split(other);
  check(zq::stringWithFirst(text, count, other, u"~"_s) ==
        (std::size_t(components.size()) <= count
             ? text
             : components.first(qsizetype(count)).join(other) + u"~"_s));
  std::optional<QString> found_initials;
  try {
    found_initials = zq::initialCharacters(text);
  } catch (const zq::platform::RangeException&) {
  }
  check(found_initials == initials(text));
  check(zq::stringByRemovingHTMLUsingDelimiter(text, other) == withoutTags(text, other));
  check(zq::stringByRemovingHTMLUsingDelimiter(text, std::nullopt) ==
        withoutTags(text, std::nullopt));
  check(zq::stringWithFirstURLComponent(text) == schemeAndHost(text));
}

void checkEntities(const QString& text, const QString& other) {
  const zq::Entities entities{{u"e"_s, other}, {u"copy"_s, u"\u00a9"_s}, {other, text.left(3)}};
  check(zq::stringByUnescapingEntities(text) == unescaped(text, {}));
  check(zq::stringByUnescapingEntities(text, entities) == unescaped(text, entities));
  QString escaped = text;
  escaped.replace(u'&', u"&amp;"_s)
      .replace(u'<', u"&lt;"_s)
      .replace(u'>', u"&gt;"_s)
      .replace(u'"', u"&quot;"_s)
      .replace(u'\'', u"&apos;"_s);
  check(zq::stringByEscapingEntities(text) == escaped);
  check(zq::stringByUnescapingEntities(zq::stringByEscapingEntities(text)) == text);
  check(zq::stringByUnescapingEntities(zq::stringByEscapingEntities(text, entities), entities) ==
        text);
}

void checkValues(const QString& text, const QString& other) {
  std::optional<QByteArray> found;
  bool isAscii = true;
  for (const QChar c : text)
    isAscii = isAscii && c.unicode() < 0x80;
  try {
    found = zq::hexValue(text);
    check(isAscii);
  } catch (const zq::platform::InvalidArgumentException&) {
    check(!isAscii);
  }
  check(!isAscii || found == bytes(text));
  qint64 value = 0;
  bool isBeyond = false;
  const bool isRead = Slow{text}.number(&value, &isBeyond) && !isBeyond && value > 0;
  check(zq::unsignedLongValue(text) == (isRead ? static_cast<unsigned long>(value) : 0));
  check(zq::boolValue(text) == (text != u"0"_s));
  check(zq::numericCompare(text, other) == (order(text, other) <=> 0));
  check(zq::numericCompare(other, text) == (order(other, text) <=> 0));
}

void checkSets(const QString& text, const QString& other, unsigned number) {
  const Set set = setNumbered(number, other);
  checkSet(set);
  check(zq::stringByReplacingCharactersInSet(text, set.set, other) ==
        replaced(text, set.contains, other));
  QString remaining = text;
  zq::removeCharactersNotInSet(remaining, set.set);
  check(remaining == kept(text, set.contains));
  QString trimmed = text;
  while (!trimmed.isEmpty() && isWhitespace(trimmed.front().unicode()))
    trimmed.remove(0, 1);
  while (!trimmed.isEmpty() && isWhitespace(trimmed.back().unicode()))
    trimmed.chop(1);
  check(zq::stringByTrimmingWhitespace(text) == trimmed);
}

// ASCII as it is; every other byte stands for a character that matters to some operation.
QString textOf(const std::uint8_t* bytes, std::size_t size) {
  static const QString special =
      u"\u0085\u00a0\u00e9\u0301\u0661\u1680\u2003\u200b\u2028\u2029\u2167"
      u"\u3000\u65e5\ufeff\uff15\uffff\xd83d\xde00\xd835\xdc00"_s;
  QString text;
  for (std::size_t i = 0; i < size; ++i)
    text += bytes[i] < 0x80 ? QChar(bytes[i]) : special[(bytes[i] - 0x80) % special.size()];
  return text;
}

} // namespace

// A line with the other string, then the text; what a walk does comes from both.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > LargestInput)
    return 0;
  const auto* end = data + size;
  const auto* newline = std::find(data, end, std::uint8_t('\n'));
  const QString other = textOf(data, std::size_t(newline - data));
  const auto* start = newline == end ? data : newline + 1;
  const QString text = textOf(start, std::size_t(end - start));
  const auto number = unsigned(size);

  checkLines(text);
  checkPieces(text, other, number % 5);
  checkEntities(text, other);
  checkValues(text, other);
  checkSets(text, other, number);
  walk(text, other.isEmpty() ? text.left(40) : QString(other + text.left(40)), other.left(2));
  return 0;
}
