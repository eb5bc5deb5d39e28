#include "zqticker/rollover/RollOverButtonClass.h"

#include "zqticker/platform/objects/Exception.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"

#include <QtCore/QFile>
#include <QtCore/QLoggingCategory>
#include <QtCore/QMetaObject>

#include <map>
#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace zq {

struct RollOverButtonClass::Record {
  Ref<ZQRollOverButtonAppearance> appearance;
};

static void logUnreadable(const QString& className, const QString& error) {
  static const QLoggingCategory category("zqticker.rollover");
  qCWarning(category, "Error loading appearance data for %ls: %ls", qUtf16Printable(className),
            qUtf16Printable(error));
}

// The contents of the file; nothing where the class has none or where it cannot be read.
static std::optional<QByteArray> contentsOf(const QUrl& url, const QString& className) {
  if (!url.isLocalFile())
    return std::nullopt;
  QFile file(url.toLocalFile());
  QByteArray contents;
  if (file.open(QIODevice::ReadOnly))
    contents = file.readAll();
  if (file.error() != QFileDevice::NoError) {
    logUnreadable(className, file.errorString());
    return std::nullopt;
  }
  return contents;
}

RollOverButtonClass::Record& RollOverButtonClass::recordOf(const QMetaObject& metaObject,
                                                           DataURL appearanceDataURL) {
  // By the name of the class with its namespace. Never freed: buttons may go after everything else.
  static auto& records = *new std::map<QByteArray, Record>;
  const auto [found, isNew] = records.try_emplace(metaObject.className());
  Record& record = found->second;
  if (!isNew)
    return record;
  // It counts as used from here on, also where this fails: the file is read once.
  const QString qualified = QString::fromUtf8(metaObject.className());
  const QString name = qualified.sliced(qualified.lastIndexOf(u':') + 1);
  if (const auto data = contentsOf(appearanceDataURL(name), name))
    setAppearanceOf(record, ZQRollOverButtonAppearance::appearanceWithDataRepresentation(*data));
  return record;
}

Ref<ZQRollOverButtonAppearance> RollOverButtonClass::appearanceOf(const Record& record) {
  return record.appearance;
}

void RollOverButtonClass::setAppearanceOf(Record& record,
                                          Ref<ZQRollOverButtonAppearance> appearance) {
  if (!appearance)
    throw InvalidArgumentException(u"the appearance of a class cannot be nothing"_s);
  record.appearance = std::move(appearance);
}

} // namespace zq
