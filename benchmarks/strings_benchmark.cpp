// Operations on strings of 1 KiB, 1 MiB and 64 MiB (two bytes a character), beside what the toolkit
// offers for the same work, or for the nearest.
//
//   Initials            initials of the words of prose
//   InitialsByBoundary  the same by QTextBoundaryFinder
//   Lines               prose in lines of 60 characters on average, as a list
//   LinesBySplit        by QString::split at LF
//   First               half of a list's components, with an ellipsis
//   FirstBySplit        by QString::split and join
//   RemoveHTML          the text of a page with a tag for every 30 characters
//   RemoveByExpression  by QString::remove with a regular expression
//   FirstURL            an address with a long host and a long path
//   FirstURLByIndex     by QString::indexOf and left
//   Escape              prose with a character to be escaped for every 25
//   EscapeHtml          by QString::toHtmlEscaped, which leaves apostrophes
//   EscapeFurther       the same with three further entities
//   Unescape            the escaped prose again
//   UnescapeByReplace   by five times QString::replace
//   Trim                prose between spaces, half of it spaces
//   TrimQt              by QString::trimmed
//   Replace             every run of white space in prose by one space
//   ReplaceSimplified   by QString::simplified, which trims the end as well
//   Keep                the digits of prose with numbers
//   KeepByRemoveIf      by QString::removeIf with the same set, which skips no white space
//   Hex                 bytes in hexadecimal
//   HexFromLatin1       by QByteArray::fromHex after toLatin1
//   Compare             two equal lists of numbered names
//   CompareCollator     by QCollator in numeric mode
//   Number              a number behind white space
//   NumberTrimmed       by QStringView::trimmed and toULongLong
//   Characters          every character as a string, by a scanner
//   CharactersOfString  by a loop over the string
//   Random              a random string
//   RandomBounded       by QRandomGenerator::bounded
//
// `cost` is the processor's time for one KiB; each benchmark's at 1 MiB and at 64 MiB stands beside
// that at 1 KiB. Memory stays with the process once it has it: what the kernel takes to hand out
// fresh pages would hide the rest, and is the same for all that return as much.
#include "benchmarks/ratio_main.h"
#include "zqticker/foundation_additions/string_additions.h"
#include "zqticker/platform/text/CharacterSet.h"
#include "zqticker/platform/text/Scanner.h"

#include <benchmark/benchmark.h>

#include <QtCore/QCollator>
#include <QtCore/QRandomGenerator>
#include <QtCore/QRegularExpression>
#include <QtCore/QTextBoundaryFinder>

#include <functional>
#include <limits>

#include <malloc.h>

using namespace Qt::StringLiterals;
using zq::platform::CharacterSet;
using zq::platform::Scanner;

namespace {

constexpr qsizetype BytesPerKiB = 1024;

const QString prose =
    u"The harbour office tells that the ferry at noon is late, and caf\u00e9s along the quay stay "
    "open until the last of its passengers has had a seat.\nAll 214 of them are expected \u2014 so "
    "is the mayor.\n"_s;
const QString marked = u"Fish & chips, <5 euros\u2026 \"so cheap\", it isn't true > ask; 5 & 20 "_s;
const QString page = u"harbour office <b class=\"news\">late ferry</b> at noon today, "
                     "all <a href=\"/seats?id=7\">seats</a> taken\n"_s;

// `length` characters of `pattern` again and again.
QString repeated(const QString& pattern, qsizetype length) {
  return pattern.repeated(length / pattern.size() + 1).first(length);
}

QString spaced(qsizetype length) {
  return QString(length / 4, u' ') + repeated(prose, length / 2) + QString(length / 4, u' ');
}

QString address(qsizetype length) {
  return u"http://"_s + repeated(u"host.example."_s, length / 2) + u'/' +
         repeated(u"path/"_s, length / 2);
}

QString numbered(qsizetype length) {
  return QString(length, u' ') + u"42"_s;
}

// One benchmark: what it does with a text, and how that is made.
struct Case {
  const char* name;
  std::function<QString(qsizetype length)> makeText;
  std::function<void(const QString& text)> run;
};

template <class Operation>
std::function<void(const QString&)> result(Operation operation) {
  return [operation](const QString& text) {
    auto value = operation(text);
    benchmark::DoNotOptimize(value);
  };
}

std::function<QString(qsizetype)> of(const QString& pattern) {
  return [pattern](qsizetype length) { return repeated(pattern, length); };
}

QString initialsByBoundary(const QString& text) {
  QString initials;
  QTextBoundaryFinder finder(QTextBoundaryFinder::Word, text);
  for (qsizetype at = 0; at >= 0 && at < text.size(); at = finder.toNextBoundary())
    if ((finder.boundaryReasons() & QTextBoundaryFinder::StartOfItem) && text[at].isLetter())
      initials.append(text[at]);
  return initials;
}

QString firstBySplit(const QString& text) {
  const QStringList components = text.split(u',');
  return components.first(components.size() / 2).join(u',') + u'\u2026';
}

void charactersByScanner(const QString& text) {
  Scanner scanner(text);
  QString character;
  while (zq::scanCharacterIntoString(scanner, &character))
    benchmark::DoNotOptimize(character);
}

void charactersOfString(const QString& text) {
  for (const QChar c : text) {
    QString character(c);
    benchmark::DoNotOptimize(character);
  }
}

QString randomBounded(const QString& text) {
  QRandomGenerator generator(7);
  const QString characters = u"0123456789abcdef"_s;
  QString string(text.size(), Qt::Uninitialized);
  for (QChar& c : string)
    c = characters[generator.bounded(16)];
  return string;
}

bool isKept(QChar c) {
  return CharacterSet::decimalDigitCharacterSet().characterIsMember(c.unicode());
}

std::vector<Case> cases() {
  const auto items = of(u"item,"_s);
  const auto names = of(u"img12.png "_s);
  const auto escaped = of(marked.toHtmlEscaped());
  const auto digits = of(u"0123456789abcdefABCDEF"_s);
  const zq::Entities further{
      {u"hellip"_s, u"\u2026"_s}, {u"euro"_s, u"\u20ac"_s}, {u"copy"_s, u"\u00a9"_s}};
  QCollator collator(QLocale(QLocale::English));
  collator.setNumericMode(true);
  const QRegularExpression tag(u"<[^>]*>"_s);
  const CharacterSet& blank = CharacterSet::whitespaceAndNewlineCharacterSet();

  return {
      {"Initials", of(prose), result(zq::initialCharacters)},
      {"InitialsByBoundary", of(prose), result(initialsByBoundary)},
      {"Lines", of(prose), result(zq::componentsSeparatedByLineDelimiter)},
      {"LinesBySplit", of(prose), result([](const QString& text) { return text.split(u'\n'); })},
      {"First", items, result([](const QString& text) {
         return zq::stringWithFirst(text, std::size_t(text.size() / 10), u","_s, u"\u2026"_s);
       })},
      {"FirstBySplit", items, result(firstBySplit)},
      {"RemoveHTML", of(page), result([](const QString& text) {
         return zq::stringByRemovingHTMLUsingDelimiter(text, u" "_s);
       })},
      {"RemoveByExpression", of(page),
       result([tag](const QString& text) { return QString(text).remove(tag); })},
      {"FirstURL", address, result(zq::stringWithFirstURLComponent)},
      {"FirstURLByIndex", address, result([](const QString& text) {
         return text.left(text.indexOf(u'/', text.indexOf(u"://"_s) + 3));
       })},
      {"Escape", of(marked),
       result([](const QString& text) { return zq::stringByEscapingEntities(text); })},
      {"EscapeHtml", of(marked), result([](const QString& text) { return text.toHtmlEscaped(); })},
      {"EscapeFurther", of(marked), result([further](const QString& text) {
         return zq::stringByEscapingEntities(text, further);
       })},
      {"Unescape", escaped,
       result([](const QString& text) { return zq::stringByUnescapingEntities(text); })},
      {"UnescapeByReplace", escaped, result([](QString text) {
         return text.replace(u"&lt;"_s, u"<"_s)
             .replace(u"&gt;"_s, u">"_s)
             .replace(u"&quot;"_s, u"\""_s)
             .replace(u"&apos;"_s, u"'"_s)
             .replace(u"&amp;"_s, u"&"_s);
       })},
      {"Trim", spaced, result(zq::stringByTrimmingWhitespace)},
      {"TrimQt", spaced, result([](const QString& text) { return text.trimmed(); })},
      {"Replace", of(prose), result([blank](const QString& text) {
         return zq::stringByReplacingCharactersInSet(text, blank, u" "_s);
       })},
      {"ReplaceSimplified", of(prose),
       result([](const QString& text) { return text.simplified(); })},
      {"Keep", of(prose), result([](QString text) {
         zq::removeCharactersNotInSet(text, CharacterSet::decimalDigitCharacterSet());
         return text;
       })},
      {"KeepByRemoveIf", of(prose),
       result([](QString text) { return text.removeIf([](QChar c) { return !isKept(c); }); })},
      {"Hex", digits, result(zq::hexValue)},
      {"HexFromLatin1", digits,
       result([](const QString& text) { return QByteArray::fromHex(text.toLatin1()); })},
      {"Compare", names, result([](const QString& text) {
         const QString other(text.constData(), text.size());
         return zq::numericCompare(text, other) == 0;
       })},
      {"CompareCollator", names, result([collator](const QString& text) {
         const QString other(text.constData(), text.size());
         return collator.compare(text, other);
       })},
      {"Number", numbered, result(zq::unsignedLongValue)},
      {"NumberTrimmed", numbered,
       result([](const QString& text) { return QStringView(text).trimmed().toULongLong(); })},
      {"Characters", of(prose), charactersByScanner},
      {"CharactersOfString", of(prose), charactersOfString},
      {"Random", of(prose), result([](const QString& text) {
         return zq::randomStringOfLength(std::size_t(text.size()), u"0123456789abcdef"_s);
       })},
      {"RandomBounded", of(prose), result(randomBounded)},
  };
}

const std::vector<std::pair<std::string, std::string>> peers = {
    {"Initials", "InitialsByBoundary"},
    {"Lines", "LinesBySplit"},
    {"First", "FirstBySplit"},
    {"RemoveHTML", "RemoveByExpression"},
    {"FirstURL", "FirstURLByIndex"},
    {"Escape", "EscapeHtml"},
    {"EscapeFurther", "EscapeHtml"},
    {"Unescape", "UnescapeByReplace"},
    {"Trim", "TrimQt"},
    {"Replace", "ReplaceSimplified"},
    {"Keep", "KeepByRemoveIf"},
    {"Hex", "HexFromLatin1"},
    {"Compare", "CompareCollator"},
    {"Number", "NumberTrimmed"},
    {"Characters", "CharactersOfString"},
    {"Random", "RandomBounded"}};

} // namespace

int main(int argc, char** argv) {
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
  const std::vector<std::pair<std::string, qsizetype>> sizes{
      {"1KiB", 1}, {"1MiB", 1 << 10}, {"64MiB", 64 << 10}};
  static const std::vector<Case> all = cases();
  BenchmarkPairs pairs;
  for (const auto& [size, kibibytes] : sizes)
    for (const Case& each : all)
      benchmark::RegisterBenchmark(
          (each.name + ("/" + size)).c_str(), [&each, count = kibibytes](benchmark::State& state) {
            const QString text = each.makeText(count * BytesPerKiB / qsizetype(sizeof(char16_t)));
            each.run(text);
            for (auto iteration : state)
              each.run(text);
            state.counters["cost"] = benchmark::Counter(
                double(count),
                benchmark::Counter::Flags(benchmark::Counter::kIsIterationInvariantRate |
                                          benchmark::Counter::kInvert));
          });
  for (const auto& [ours, peer] : peers)
    for (const auto& [size, kibibytes] : sizes)
      pairs.push_back({ours + "/" + size, peer + "/" + size});
  for (const Case& each : all)
    for (const auto* size : {"/1MiB", "/64MiB"})
      pairs.push_back({each.name + std::string(size), each.name + std::string("/1KiB")});
  return runBenchmarks(argc, argv, pairs, {"cost"});
}
