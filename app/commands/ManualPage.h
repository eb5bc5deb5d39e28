// One manual page, written from its top to its end.
#pragma once

#include "app/commands/OptionTable.h"

#include <QtCore/QByteArray>

namespace zq::app {

// `text` as roff prints it letter by letter, in ASCII; hyphens as those of options, so that they
// can be copied. A line must not begin with it where it begins with a full stop.
QString roffText(const QString& text);

// Texts are plain; those within backquotes are set in bold. Tags, and what is named "roff", are
// roff already.
class ManualPage {
 public:
  // `name` as in "zqticker-run".
  explicit ManualPage(const QString& name);

  void section(const QString& title);
  void subsection(const QString& title);
  void paragraph(const QString& text);
  void roffLine(const QString& roff);
  // A paragraph with a hanging tag.
  void entry(const QString& tag, const QString& text);
  // A section of entries; nothing where there are none.
  void list(const QString& title, const std::vector<NamedText>& entries);
  // A command line, with what it is for.
  void example(const QString& line, const QString& text);
  // The last section: pages of section 1.
  void seeAlso(const QStringList& names);

  const QByteArray& bytes() const { return bytes_; }

 private:
  void filled(const QString& text);

  QByteArray bytes_;
  bool isAtHeading_ = false; // what comes next begins a paragraph by itself
};

} // namespace zq::app
