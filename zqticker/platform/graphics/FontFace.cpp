#include "zqticker/platform/graphics/FontFace_p.h"

#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/FontName_p.h"
#include "zqticker/platform/objects/Exception.h"

#include <QtCore/QHash>
#include <QtCore/QMutex>
#include <QtGui/QFontInfo>
#include <QtGui/QFontMetricsF>
#include <QtGui/QGuiApplication>
#include <QtGui/QRawFont>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::platform {

void FontFace::requireApplication() {
  // Not an assertion: a handler that returned would let Qt end the process.
  if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
    throw InternalInconsistencyException(u"text needs a GUI application"_s, u"FontFace.cpp"_s,
                                         __LINE__);
}

const FontFace& FontFace::of(const Font& font) {
  return font.face();
}

std::shared_ptr<const FontFace> FontFace::named(const QString& name) {
  requireApplication();
  // Never freed: fonts may outlive everything else at the end of the process.
  static auto& mutex = *new QMutex;
  static auto& faces = *new QHash<QString, std::shared_ptr<const FontFace>>;
  const QMutexLocker lock(&mutex);
  std::shared_ptr<const FontFace>& face = faces[name];
  if (!face)
    face.reset(new FontFace(name));
  return face;
}

std::shared_ptr<const FontFace> FontFace::emoji() {
  // Looked for once; never freed, like the faces themselves.
  static const auto& found =
      *new std::shared_ptr<const FontFace>([]() -> std::shared_ptr<const FontFace> {
        for (const QString& name : {u"Noto Color Emoji"_s, u"Twemoji"_s, u"Twitter Color Emoji"_s,
                                    u"JoyPixels"_s, u"Apple Color Emoji"_s, u"Segoe UI Emoji"_s})
          if (isInstalled(name))
            return named(name);
        return nullptr;
      }());
  return found;
}

bool FontFace::isInstalled(const QString& name) {
  requireApplication();
  return FontName::parse(name).isInstalled;
}

FontFace::FontFace(const QString& name) {
  const FontName parsed = FontName::parse(name);
  layoutFont_ = QFont(parsed.family);
  layoutFont_.setPixelSize(ReferenceSize);
  layoutFont_.setWeight(parsed.weight);
  layoutFont_.setItalic(parsed.italic);
  if (parsed.stretch != 100)
    layoutFont_.setStretch(parsed.stretch);
  layoutFont_.setHintingPreference(QFont::PreferNoHinting);
  layoutFont_.setStyleStrategy(QFont::PreferQuality);
  family_ = QFontInfo(layoutFont_).family();

  const QFontMetricsF metrics(layoutFont_);
  ascent_ = metrics.ascent() / ReferenceSize;
  descent_ = metrics.descent() / ReferenceSize;
  // Some fonts ask for a gap below 0, which would let neighbouring lines overlap.
  leading_ = std::max(0.0, metrics.leading()) / ReferenceSize;
  // The raw font at one pixel a unit gives these two without rounding to pixels.
  QRawFont raw = QRawFont::fromFont(layoutFont_);
  const double unitsPerEm = raw.unitsPerEm();
  if (unitsPerEm > 0)
    raw.setPixelSize(unitsPerEm);
  const double em = unitsPerEm > 0 ? unitsPerEm : ReferenceSize;
  xHeight_ = raw.xHeight() / em;
  capHeight_ = raw.capHeight() / em;
}

} // namespace zq::platform
