// Bytes into lines of text that can be shown.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <functional>

namespace zq::app {

// The most characters (UTF-16 units) of a line; a longer one is cut there and ends in an ellipsis.
inline constexpr qsizetype LongestLine = 1'000'000;

// Cuts a stream of bytes into lines at line feeds and gives each to a receiver as soon as it is
// complete, made showable by `showableLine`. Lines without anything to show are left out. Bytes
// that are no UTF-8 become replacement characters. Memory is bounded by the longest line, whatever
// comes in: a line that is too long is given out when that is clear, and its rest is skipped.
class LineSplitter {
 public:
  using Receiver = std::function<void(const QString&)>;

  explicit LineSplitter(Receiver receiver, qsizetype longestLine = LongestLine);

  void append(QByteArrayView bytes);
  // The stream has ended; what is left is a line.
  void finish();

 private:
  enum class Ending { Complete, Lost };
  void giveOut(Ending ending);

  Receiver receiver_;
  qsizetype longestLine_;
  QByteArray pending_;
  bool skipping_ = false;
};

// `text` on one line: line breaks and tabs become spaces, terminal escape sequences, other control
// characters and white space at the end go.
QString showableLine(const QString& text);

} // namespace zq::app
