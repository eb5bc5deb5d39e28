#include "app/commands/ManualPage.h"

#include "zqticker/version.h"

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr qsizetype LineWidth = 78;

QString escapeOf(char32_t letter) {
  switch (letter) {
  case U'\\':
    return u"\\e"_s;
  case U'-':
    return u"\\-"_s;
  case U'\'':
    return u"\\(aq"_s;
  case U'"':
    return u"\\(dq"_s;
  case U'`':
    return u"\\(ga"_s;
  case U'^':
    return u"\\(ha"_s;
  case U'~':
    return u"\\(ti"_s;
  default:
    break;
  }
  if (letter < 0x20 || letter == 0x7f)
    return u" "_s;
  if (letter < 0x7f)
    return QString(QChar(static_cast<char16_t>(letter)));
  return u"\\[u%1]"_s.arg(static_cast<uint>(letter), 4, 16, QLatin1Char('0'))
      .toUpper()
      .replace(u"\\[U"_s, u"\\[u"_s);
}

// Where lines break no request may come up by chance.
QString guarded(const QString& line) {
  return line.startsWith(u'.') ? QString(u"\\&"_s + line) : line;
}

// What stands in backquotes in bold; a single backquote is one.
QString withBold(const QString& text) {
  const QStringList parts = text.split(u'`');
  if (parts.size() % 2 == 0)
    return roffText(text);
  QString roff;
  for (qsizetype i = 0; i < parts.size(); ++i)
    roff += i % 2 == 0 ? roffText(parts[i]) : QString(u"\\fB"_s + roffText(parts[i]) + u"\\fR"_s);
  return roff;
}
} // namespace

QString roffText(const QString& text) {
  QString roff;
  for (const char32_t letter : text.toUcs4())
    roff += escapeOf(letter);
  return roff;
}

ManualPage::ManualPage(const QString& name) {
  roffLine(u".TH "_s + roffText(name.toUpper()) +
           u" 1 \"\" \"zqticker " ZQTICKER_VERSION "\" \"User Commands\""_s);
  // Options and addresses stay in one piece.
  roffLine(u".nh"_s);
  roffLine(u".ad l"_s);
}

void ManualPage::section(const QString& title) {
  roffLine(u".SH \""_s + roffText(title.toUpper()) + u'"');
}

void ManualPage::subsection(const QString& title) {
  roffLine(u".SS \""_s + roffText(title) + u'"');
}

void ManualPage::paragraph(const QString& text) {
  if (!isAtHeading_)
    roffLine(u".PP"_s);
  filled(text);
}

void ManualPage::roffLine(const QString& roff) {
  bytes_ += roff.toLatin1() + '\n';
  isAtHeading_ = roff.startsWith(".SH "_L1) || roff.startsWith(".SS "_L1);
}

void ManualPage::entry(const QString& tag, const QString& text) {
  roffLine(u".TP"_s);
  roffLine(tag);
  filled(text);
}

void ManualPage::list(const QString& title, const std::vector<NamedText>& entries) {
  if (entries.empty())
    return;
  section(title);
  for (const NamedText& each : entries)
    entry(u"\\fB"_s + roffText(each.name) + u"\\fR"_s, each.text);
}

void ManualPage::example(const QString& line, const QString& text) {
  paragraph(text);
  for (const QString& roff : {u".RS 4"_s, u".PP"_s, u".nf"_s})
    roffLine(roff);
  roffLine(guarded(roffText(line)));
  roffLine(u".fi"_s);
  roffLine(u".RE"_s);
}

void ManualPage::seeAlso(const QStringList& names) {
  section(u"See also"_s);
  for (const QString& name : names)
    roffLine(u".BR "_s + roffText(name) + u" (1)"_s + (name == names.last() ? u""_s : u","_s));
}

void ManualPage::filled(const QString& text) {
  QString line;
  for (const QString& word : withBold(text).split(u' ', Qt::SkipEmptyParts)) {
    // Sentences begin lines, by which roff knows them.
    const bool endsSentence = line.endsWith(u'.') || line.endsWith(u'?');
    if (!line.isEmpty() && (endsSentence || line.size() + 1 + word.size() > LineWidth)) {
      roffLine(guarded(line));
      line.clear();
    }
    line += (line.isEmpty() ? QString() : u" "_s) + word;
  }
  if (!line.isEmpty())
    roffLine(guarded(line));
}

} // namespace zq::app
