#include "zqticker/watching/path_text_p.h"

#include <QtCore/QFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
bool isBare(QChar unit) {
  return unit.unicode() < 0x80 && unit.isLetterOrNumber();
}

void appendQuoted(QString& text, QChar unit) {
  const char16_t code = unit.unicode();
  if (code == u'"' || code == u'\\')
    text += u'\\' % unit;
  else if (code == u'\n')
    text += "\\n"_L1;
  else if (code == u'\t')
    text += "\\t"_L1;
  else if (code == u'\r')
    text += "\\r"_L1;
  else if (code < u' ' || code == 0x7F)
    text += u"\\%1"_s.arg(uint(code), 3, 8, QChar(u'0'));
  else if (code < 0x80)
    text += unit;
  else
    text += u"\\U%1"_s.arg(uint(code), 4, 16, QChar(u'0'));
}
} // namespace

QString describePaths(const QStringList& paths) {
  QString text = u"("_s;
  for (const QString& path : paths) {
    text += text.size() > 1 ? ",\n    "_L1 : "\n    "_L1;
    if (!path.isEmpty() && std::all_of(path.begin(), path.end(), isBare)) {
      text += path;
      continue;
    }
    text += u'"';
    for (const QChar unit : path)
      appendQuoted(text, unit);
    text += u'"';
  }
  return text + "\n)"_L1;
}

QByteArray fileSystemRepresentation(const QString& path) {
  return path.contains(QChar::Null) || !path.isValidUtf16() ? QByteArray()
                                                            : QFile::encodeName(path);
}
