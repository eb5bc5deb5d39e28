// Texts and addresses of feeds, made fit to be shown.
#pragma once

#include <QtCore/QString>
#include <QtCore/QUrl>

namespace zq::app {

enum class FeedTextKind {
  Plain,
  // With markup and entities; both are also found escaped once more than they should be.
  Html,
};

// The longest title, in UTF-16 code units.
constexpr qsizetype LongestTitle = 500;
// The longest title that is made of a description.
constexpr qsizetype LongestFirstWords = 100;

// `text` on one line: markup left out and entities decoded (Html), white space collapsed, control
// characters and those that turn the direction of text left out. What is longer than `longest` is
// cut between two characters as readers see them, and ends in an ellipsis.
QString titleText(QStringView text, FeedTextKind kind, qsizetype longest = LongestTitle);

// The first words of a text, cut between words where that leaves enough.
QString firstWords(QStringView text, FeedTextKind kind);

// Whether an element of HTML parts the words before and after it: "p" does, "b" does not.
bool partsWords(QStringView elementName);

// `text` resolved against `base`, where that is an absolute http or https address; else empty.
QUrl webAddress(const QUrl& base, QStringView text);

} // namespace zq::app
