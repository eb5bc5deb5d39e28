#include "zqticker/foundation_additions/ZQTimeFormatPatternConverter.h"

#include "zqticker/foundation_additions/string_additions.h"
#include "zqticker/platform/calendar/DateFormatter.h"
#include "zqticker/platform/text/Scanner.h"

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
// The pattern of the user's long styles, `style` being the date's or the time's.
QString longPattern(void (DateFormatter::*setStyle)(DateFormatterStyle)) {
  DateFormatter formatter;
  formatter.setCalendar(Calendar::currentCalendar());
  (formatter.*setStyle)(DateFormatterStyle::Long);
  return formatter.dateFormat();
}

// Text that stands for itself in a pattern. Apostrophes in it are left alone, on purpose: formats
// that were stored with doubled ones mean what they say.
QString quoted(const QString& text) {
  return u'\'' + text + u'\'';
}
} // namespace

Ref<ZQTimeFormatPatternConverter> ZQTimeFormatPatternConverter::make() {
  return std::make_shared<ZQTimeFormatPatternConverter>();
}

ZQTimeFormatPatternConverter::ZQTimeFormatPatternConverter() {
  createTimeFormatPatternsMapping();
  setLocalDateFormat(longPattern(&DateFormatter::setDateStyle));
  setLocalTimeFormat(longPattern(&DateFormatter::setTimeStyle));
}

ZQTimeFormatPatternConverter::~ZQTimeFormatPatternConverter() = default;

void ZQTimeFormatPatternConverter::createTimeFormatPatternsMapping() {
  // Stored formats depend on every one of these, odd ones included ("c", "f", "w").
  setTimeFormatPatternsMapping(Mapping{
      {u"%"_s, u"%"_s},    {u"a"_s, u"EEE"_s},  {u"A"_s, u"EEEE"_s}, {u"b"_s, u"MMM"_s},
      {u"B"_s, u"MMMM"_s}, {u"c"_s, u""_s},     {u"d"_s, u"dd"_s},   {u"e"_s, u"d"_s},
      {u"f"_s, u"FFFF"_s}, {u"F"_s, u"SSS"_s},  {u"H"_s, u"HH"_s},   {u"I"_s, u"hh"_s},
      {u"j"_s, u"DDD"_s},  {u"m"_s, u"MM"_s},   {u"M"_s, u"mm"_s},   {u"p"_s, u"a"_s},
      {u"S"_s, u"ss"_s},   {u"w"_s, u"e"_s},    {u"x"_s, u""_s},     {u"X"_s, u""_s},
      {u"y"_s, u"yy"_s},   {u"Y"_s, u"yyyy"_s}, {u"z"_s, u"ZZ"_s},   {u"Z"_s, u"zzzz"_s},
  });
}

QString ZQTimeFormatPatternConverter::stringByReplacingOldTimeFormatPatternsInString(
    const QString& string) const {
  const Mapping mapping = timeFormatPatternsMapping().value_or(Mapping());
  const auto replacementOf = [&](const QString& character) -> std::optional<QString> {
    if (character == u"x")
      return localDateFormat();
    if (character == u"X")
      return localTimeFormat();
    const auto found = mapping.constFind(character);
    return found == mapping.constEnd() ? std::nullopt : std::optional(*found);
  };

  QString result;
  QString literal;
  std::optional<QString> piece;
  Scanner scanner(string);
  scanner.setCharactersToBeSkipped(std::nullopt);
  while (!scanner.isAtEnd()) {
    // Where nothing stands before the next "%" the piece is still the last sequence's character,
    // which becomes text. Stored formats were written with that in view: it is kept.
    if (QString text; scanner.scanUpToString(u"%", &text))
      piece = text;
    if (piece)
      literal += *piece;
    if (!scanner.scanString(u"%"))
      continue;
    piece.reset();
    if (QString character; zq::scanCharacterIntoString(scanner, &character))
      piece = character;
    const std::optional<QString> replacement = piece ? replacementOf(*piece) : std::nullopt;
    if (!replacement)
      continue;
    if (!literal.isEmpty()) {
      result += quoted(literal);
      zq::deleteAllCharacters(literal);
    }
    result += *replacement;
  }
  if (!literal.isEmpty())
    result += quoted(literal);
  return result;
}
