#include "app/queue/queue_text.h"

#include "app/queue/sign_changes.h"
#include "zqticker/platform/graphics/Image.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLocale>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
QString tr(const char* text) {
  return QCoreApplication::translate("QueueWindow", text);
}
} // namespace

QString stateText(const QueuedSign& row) {
  return row.isOnStrip ? tr("On the strip") : tr("Waiting");
}

QString pictureText(const QueuedSign& row) {
  const auto image = pictureOf(row.sign);
  if (!image)
    return tr("No picture");
  const QString size =
      tr("%1 by %2 points").arg(qRound(image->size().width())).arg(qRound(image->size().height()));
  return row.text.isEmpty() ? tr("Picture, %1").arg(size)
                            : tr("Picture, %1: %2").arg(size, shortened(row.text, 100));
}

QString senderText(const QueuedSign& row) {
  return row.origin.senderName.isEmpty() ? row.origin.senderIdentifier : row.origin.senderName;
}

QString loopsText(std::int64_t loopsLeft) {
  return loopsLeft < 0 ? u"∞"_s : QLocale().toString(static_cast<qlonglong>(loopsLeft));
}

QString loopsSentence(std::int64_t loopsLeft) {
  if (loopsLeft < 0)
    return tr("Shown without end");
  if (loopsLeft == 0)
    return tr("Shown for the last time");
  return loopsLeft == 1 ? tr("1 showing left") : tr("%1 showings left").arg(loopsText(loopsLeft));
}

QString shortened(const QString& text, qsizetype most) {
  QString line = text.size() > most ? QString(text.left(most - 1) + u'…') : text;
  for (QChar& character : line)
    if (character.category() == QChar::Other_Control || character == QChar::LineSeparator ||
        character == QChar::ParagraphSeparator)
      character = u' ';
  return line;
}

QString plainToolTip(const QString& text) {
  return u"<p>"_s + text.toHtmlEscaped() + u"</p>"_s;
}

} // namespace zq::app
