#include "app/services/feed_dates.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr qsizetype LongestDate = 64;
constexpr int SecondsPerHour = 3600;

// Zones that RFC 822 names, and those that are met besides, in hours.
constexpr std::array Zones = std::to_array<std::pair<std::u16string_view, double>>({
    {u"UT", 0},   {u"GMT", 0},  {u"UTC", 0},  {u"EST", -5}, {u"EDT", -4},  {u"CST", -6},
    {u"CDT", -5}, {u"MST", -7}, {u"MDT", -6}, {u"PST", -8}, {u"PDT", -7},  {u"WET", 0},
    {u"BST", 1},  {u"CET", 1},  {u"MET", 1},  {u"EET", 2},  {u"CEST", 2},  {u"MEST", 2},
    {u"MSK", 3},  {u"JST", 9},  {u"KST", 9},  {u"EEST", 3}, {u"AEST", 10}, {u"AEDT", 11},
});

struct Parts {
  int year = -1;
  int month = -1;
  int day = -1;
  QTime time{0, 0};
  int offset = 0; // seconds east of UTC
};

std::optional<QDateTime> moment(const Parts& parts) {
  const QDate date(parts.year, parts.month, parts.day);
  if (!date.isValid() || !parts.time.isValid() || parts.year < 1 || parts.year > 9999)
    return std::nullopt;
  return QDateTime(date, parts.time, Qt::UTC).addSecs(-parts.offset);
}

bool isDigit(QChar c) {
  return c >= u'0' && c <= u'9';
}

// The number that `text` is; -1 where it is none.
int numberOf(QStringView text) {
  constexpr qsizetype MostDigits = 6;
  if (text.isEmpty() || text.size() > MostDigits || !std::all_of(text.begin(), text.end(), isDigit))
    return -1;
  return text.toInt();
}

// "10:20", "10:20:30", "10:20:30.5". Leap seconds count as the second before.
QTime timeOf(QStringView text) {
  const qsizetype first = text.indexOf(u':');
  const qsizetype second = text.indexOf(u':', first + 1);
  if (first < 0)
    return {};
  const int hour = numberOf(text.left(first));
  const int minute = numberOf(text.mid(first + 1, second < 0 ? -1 : second - first - 1));
  if (second < 0)
    return QTime(hour, minute);
  const qsizetype point = text.indexOf(u'.', second);
  const int seconds = numberOf(text.mid(second + 1, point < 0 ? -1 : point - second - 1));
  int milliseconds = 0;
  if (point >= 0) {
    const QStringView fraction = text.mid(point + 1);
    if (fraction.isEmpty() || !std::all_of(fraction.begin(), fraction.end(), isDigit))
      return {};
    milliseconds = fraction.left(3).toString().leftJustified(3, u'0').toInt();
  }
  return QTime(hour, minute, seconds == 60 ? 59 : seconds, milliseconds);
}

// "+0130", "-01:30", "+01". Seconds; nothing where it is no offset.
std::optional<int> offsetOf(QStringView text) {
  if (text.size() < 2 || (text[0] != u'+' && text[0] != u'-'))
    return std::nullopt;
  const QStringView digits = text.mid(1);
  const qsizetype colon = digits.indexOf(u':');
  const qsizetype hourDigits = colon >= 0          ? colon
                               : digits.size() > 2 ? digits.size() - 2
                                                   : digits.size();
  const QStringView minuteText = digits.mid(colon >= 0 ? colon + 1 : hourDigits);
  const int hours = numberOf(digits.left(hourDigits));
  const int minutes = colon < 0 && minuteText.isEmpty() ? 0 : numberOf(minuteText);
  if (hours < 0 || hourDigits > 2 || minutes < 0 || minuteText.size() > 2)
    return std::nullopt;
  const int seconds = hours * SecondsPerHour + minutes * 60;
  return text[0] == u'-' ? -seconds : seconds;
}

std::optional<QDateTime> rfc3339(QStringView text) {
  Parts parts;
  parts.year = numberOf(text.left(4));
  parts.month = text.size() > 4 ? numberOf(text.mid(5, 2)) : 1;
  parts.day = text.size() > 7 && text[7] == u'-' ? numberOf(text.mid(8, 2)) : 1;
  if (text.size() <= 10)
    return text.size() == 4 || text.size() == 7 || text.size() == 10 ? moment(parts) : std::nullopt;
  if (text[10] != u'T' && text[10] != u't' && text[10] != u' ')
    return std::nullopt;
  QStringView time = text.mid(11).trimmed();
  const auto zone = std::find_if(time.begin(), time.end(),
                                 [](QChar c) { return !isDigit(c) && c != u':' && c != u'.'; });
  const QStringView zoneText = time.mid(zone - time.begin()).trimmed();
  time = time.left(zone - time.begin());
  if (!zoneText.isEmpty() && zoneText.compare("z"_L1, Qt::CaseInsensitive) != 0 &&
      zoneText != "UTC"_L1) {
    const std::optional<int> offset = offsetOf(zoneText);
    if (!offset)
      return std::nullopt;
    parts.offset = *offset;
  }
  parts.time = timeOf(time);
  return moment(parts);
}

int monthOf(QStringView word) {
  constexpr QStringView Months(u"janfebmaraprmayjunjulaugsepoctnovdec");
  constexpr qsizetype Letters = 3;
  for (qsizetype place = 0; word.size() >= Letters && place < Months.size(); place += Letters)
    if (word.left(Letters).compare(Months.sliced(place, Letters), Qt::CaseInsensitive) == 0)
      return int(place / Letters) + 1;
  return -1;
}

int fullYear(QStringView word) {
  const int number = numberOf(word);
  if (word.size() == 2)
    return number < 50 ? 2000 + number : 1900 + number;
  return word.size() == 3 ? 1900 + number : number;
}

// A zone by name counts as UTC where the name says nothing: single letters were defined with the
// wrong sign and are used both ways.
int zoneOffset(QStringView word) {
  const auto found = std::find_if(Zones.begin(), Zones.end(), [word](const auto& zone) {
    return word.compare(QStringView(zone.first), Qt::CaseInsensitive) == 0;
  });
  return found == Zones.end() ? 0 : int(found->second * SecondsPerHour);
}

void readWord(QStringView word, Parts& parts) {
  for (const QStringView prefix : {QStringView(u"GMT"), QStringView(u"UTC")})
    if (word.size() > prefix.size() && word.startsWith(prefix))
      word = word.mid(prefix.size());
  if (isDigit(word[0]) && word.contains(u':')) {
    parts.time = timeOf(word);
  } else if (isDigit(word[0])) {
    if (parts.day < 0 && word.size() <= 2)
      parts.day = numberOf(word);
    else
      parts.year = fullYear(word);
  } else if (const std::optional<int> offset = offsetOf(word)) {
    parts.offset = *offset;
  } else if (parts.month < 0 && monthOf(word) > 0) {
    parts.month = monthOf(word);
  } else {
    parts.offset = zoneOffset(word);
  }
}

// Whether the place lies between words. The "-" of "05-Sep-2024" does, one before digits is a sign.
bool partsWords(QStringView text, qsizetype i) {
  if (text[i].isSpace() || text[i] == u',')
    return true;
  if (text[i] != u'-' || i == 0 || i + 1 == text.size())
    return false;
  const QStringView before = text.left(i);
  const bool isZone = before.endsWith("GMT"_L1) || before.endsWith("UTC"_L1);
  return !isZone && (before.back().isLetter() || text[i + 1].isLetter());
}

// By the shape of its words, so that their order and what is missing do not matter.
std::optional<QDateTime> rfc822(QStringView text) {
  Parts parts;
  qsizetype start = 0;
  for (qsizetype i = 0; i <= text.size(); ++i) {
    if (i < text.size() && !partsWords(text, i))
      continue;
    if (i > start)
      readWord(text.sliced(start, i - start), parts);
    start = i + 1;
  }
  return moment(parts);
}
} // namespace

std::optional<QDateTime> feedDate(QStringView text) {
  text = text.trimmed();
  if (text.isEmpty() || text.size() > LongestDate)
    return std::nullopt;
  if (numberOf(text.left(4)) >= 0 && (text.size() == 4 || text[4] == u'-'))
    return rfc3339(text);
  return rfc822(text);
}

} // namespace zq::app
