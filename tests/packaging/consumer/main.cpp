// A small client: makes a sign, archives it, reads it back.
#include <zqticker/platform/archiving/KeyedArchiver.h>
#include <zqticker/platform/archiving/KeyedUnarchiver.h>
#include <zqticker/signs/ZQTextTickerSign.h>
#include <zqticker/signs/rectangle_text.h>
#include <zqticker/version.h>

#include <QtGui/QGuiApplication>

#include <cstdio>

int main(int argc, char** argv) {
  using namespace zq::platform;
  QGuiApplication application(argc, argv);
  const auto sign = ZQTextTickerSign::make(QStringLiteral("Hello"));
  const QByteArray archive = KeyedArchiver::archivedDataWithRootObject(any(sign));
  const auto read = objectOf<ZQTextTickerSign>(KeyedUnarchiver::unarchiveObjectWithData(archive));
  if (!read || read->description() != sign->description() || read->size() != sign->size())
    return 1;
  std::printf("zqticker %s: %s\n", ZQTICKER_VERSION,
              qPrintable(ZQStringFromRect(QRectF(QPointF(0, 0), read->size()))));
  return 0;
}
