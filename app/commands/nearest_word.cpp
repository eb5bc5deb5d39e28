#include "app/commands/nearest_word.h"

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr qsizetype LongestWord = 40; // longer ones are no slip of the finger
constexpr qsizetype LettersPerSlip = 3;

qsizetype distance(const QString& a, const QString& b) {
  // Rows for the last two letters of `a` and the present one.
  const std::size_t width = static_cast<std::size_t>(b.size()) + 1;
  std::vector<qsizetype> before(width);
  std::vector<qsizetype> last(width);
  std::vector<qsizetype> row(width);
  for (std::size_t j = 0; j < width; ++j)
    last[j] = static_cast<qsizetype>(j);
  for (qsizetype i = 0; i < a.size(); ++i) {
    row[0] = i + 1;
    for (std::size_t j = 1; j < width; ++j) {
      const qsizetype at = static_cast<qsizetype>(j) - 1;
      const bool isSame = a[i] == b[at];
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (isSame ? 0 : 1)});
      if (i > 0 && at > 0 && a[i] == b[at - 1] && a[i - 1] == b[at])
        row[j] = std::min(row[j], before[j - 2] + 1);
    }
    before.swap(last);
    last.swap(row);
  }
  return last.back();
}
} // namespace

QString nearestWord(const QString& word, const QStringList& words) {
  if (word.size() > LongestWord)
    return {};
  QString nearest;
  qsizetype least = word.size() / LettersPerSlip + 1;
  for (const QString& each : words) {
    const qsizetype difference = distance(word, each);
    if (difference >= least)
      continue;
    least = difference;
    nearest = each;
  }
  return nearest;
}

QString suggestion(const QString& word, const QStringList& words, const QString& prefix) {
  const QString nearest = nearestWord(word, words);
  return nearest.isEmpty() ? QString() : QString(u"; did you mean "_s + prefix + nearest + u'?');
}

} // namespace zq::app
