#include "zqticker/platform/text/string_search.h"

#include <vector>

namespace zq::platform {

namespace {

// Up to here the toolkit's search is the fastest; its worst case is the product of both lengths.
constexpr qsizetype LongestShortString = 32;

// By the lengths of the borders of all its prefixes (Knuth, Morris and Pratt).
qsizetype indexOfLongString(QStringView text, QStringView string, qsizetype from) {
  std::vector<qsizetype> borders(std::size_t(string.size()), 0);
  qsizetype matched = 0;
  const auto advance = [&](QChar c) {
    while (matched > 0 && string[matched] != c)
      matched = borders[std::size_t(matched - 1)];
    matched += string[matched] == c;
  };
  for (qsizetype i = 1; i < string.size(); ++i) {
    advance(string[i]);
    borders[std::size_t(i)] = matched;
  }
  matched = 0;
  for (qsizetype i = from; i < text.size(); ++i) {
    advance(text[i]);
    if (matched == string.size())
      return i + 1 - matched;
  }
  return -1;
}

} // namespace

qsizetype indexOfString(QStringView text, QStringView string, qsizetype from) {
  if (string.isEmpty() || string.size() > text.size() - from)
    return -1;
  if (string.size() == 1)
    return text.indexOf(string.front(), from);
  return string.size() <= LongestShortString ? text.indexOf(string, from)
                                             : indexOfLongString(text, string, from);
}

} // namespace zq::platform
