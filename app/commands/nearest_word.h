// The word that someone may have meant.
#pragma once

#include <QtCore/QStringList>

namespace zq::app {

// The one of `words` from which `word` differs by the fewest letters left out, put in, replaced or
// exchanged with their neighbours; the first of several. Empty where all differ by more than a
// third of `word`'s letters, and for words of fewer than three.
QString nearestWord(const QString& word, const QStringList& words);

// "; did you mean --speed?", or nothing. `prefix` stands before the word ("--").
QString suggestion(const QString& word, const QStringList& words, const QString& prefix = {});

} // namespace zq::app
