// The order of strings with numbers in them.
#include "zqticker/foundation_additions/string_additions.h"

#include <algorithm>

namespace zq {

namespace {

bool isDigitAt(QStringView text, qsizetype index) {
  return index >= 0 && index < text.size() && text[index] >= u'0' && text[index] <= u'9';
}

// Moves `index` past a run of digits and answers it without its leading zeros.
QStringView takeDigits(QStringView text, qsizetype& index) {
  while (isDigitAt(text, index) && text[index] == u'0')
    ++index;
  const qsizetype start = index;
  while (isDigitAt(text, index))
    ++index;
  return text.sliced(start, index - start);
}

std::strong_ordering compareUnits(QStringView a, QStringView b) {
  return a.compare(b) <=> 0;
}

} // namespace

std::strong_ordering numericCompare(const QString& string, const QString& other) {
  const QStringView a(string);
  const QStringView b(other);
  // Past what is the same in both, up to the run of digits at its end.
  const auto* const difference = std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first;
  qsizetype i = difference - a.begin();
  while (isDigitAt(a, i - 1))
    --i;
  qsizetype j = i;
  while (i < a.size() && j < b.size()) {
    if (isDigitAt(a, i) && isDigitAt(b, j)) {
      const QStringView first = takeDigits(a, i);
      const QStringView second = takeDigits(b, j);
      const auto order = first.size() == second.size() ? compareUnits(first, second)
                                                       : first.size() <=> second.size();
      if (order != 0)
        return order;
    } else if (a[i] != b[j]) {
      return a[i].unicode() <=> b[j].unicode();
    } else {
      ++i;
      ++j;
    }
  }
  const auto rest = a.size() - i <=> b.size() - j;
  return rest != 0 ? rest : compareUnits(a, b);
}

} // namespace zq
