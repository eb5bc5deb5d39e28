#include "zqticker/rollover/RollOverPictures_p.h"

#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/graphics/Shadow.h"

#include <QtGui/QPaintEngine>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include <bit>
#include <cmath>

using namespace zq::platform;

namespace zq {

namespace {

// Whether drawing through `context` only puts pixels over others.
bool isPlain(const GraphicsContext& context, const QTransform& toDevice) {
  const QPainter* painter = context.painter();
  if (!painter || context.shadow() || painter->opacity() != 1 ||
      painter->compositionMode() != QPainter::CompositionMode_SourceOver ||
      painter->paintEngine()->type() != QPaintEngine::Raster ||
      toDevice.type() > QTransform::TxScale)
    return false;
  // Shadows know the scale of the context alone.
  const QTransform base = context.unflippedBaseTransform();
  return base.m11() == toDevice.m11() && std::abs(base.m22()) == std::abs(toDevice.m22());
}

void putPixels(QPainter& painter, const QTransform& toDevice, QPoint corner, const QImage& image) {
  if (toDevice.type() <= QTransform::TxTranslate)
    return painter.drawImage(corner - QPointF(toDevice.dx(), toDevice.dy()), image);
  const QTransform before = painter.worldTransform();
  painter.setWorldTransform(QTransform());
  painter.setWorldTransform(QTransform::fromTranslate(corner.x(), corner.y()) *
                            painter.deviceTransform().inverted());
  painter.drawImage(QPoint(), image);
  painter.setWorldTransform(before);
}

} // namespace

void PictureKey::add(double number) {
  add(std::bit_cast<std::uint64_t>(number));
}

void PictureKey::add(const QPainterPath& path) {
  for (int i = 0; i < path.elementCount(); ++i) {
    const QPainterPath::Element element = path.elementAt(i);
    add(std::uint64_t(element.type));
    add(double(element.x));
    add(double(element.y));
  }
}

void PictureKey::add(const Ref<Color>& color) {
  if (!color || color->patternImage()) {
    isComplete_ = false;
    return;
  }
  add(std::uint64_t(reinterpret_cast<std::uintptr_t>(color.get())));
  colors_.append(color);
}

void PictureKey::add(const Ref<Shadow>& shadow) {
  const bool isCast = shadow && shadow->shadowColor();
  add(std::uint64_t(isCast));
  if (!isCast)
    return;
  add(shadow->shadowOffset().width());
  add(shadow->shadowOffset().height());
  add(shadow->shadowBlurRadius());
  add(shadow->shadowColor());
}

QByteArray PictureKey::bytes() const {
  return QByteArray::fromRawData(reinterpret_cast<const char*>(numbers_.constData()),
                                 numbers_.size() * qsizetype(sizeof(std::uint64_t)));
}

RollOverPictures& RollOverPictures::shared() {
  // Never freed: buttons may be drawn until the end of the process.
  static auto& pictures = *new RollOverPictures;
  return pictures;
}

bool RollOverPictures::draw(PictureKey& key, const QRectF& area,
                            const std::function<void()>& draw) {
  GraphicsContext& context = *GraphicsContext::currentContext();
  const QTransform toDevice = context.deviceTransform();
  if (!key.isComplete() || !isPlain(context, toDevice))
    return false;
  const QRectF mapped = toDevice.mapRect(area);
  constexpr double farthest = 1 << 20;
  if (!(mapped.left() > -farthest && mapped.top() > -farthest && mapped.right() < farthest &&
        mapped.bottom() < farthest))
    return false;
  const QRect pixels = mapped.toAlignedRect();
  if (qint64(pixels.width()) * pixels.height() > MaximumPixels || pixels.isEmpty())
    return false;

  const QTransform toPicture = toDevice * QTransform::fromTranslate(-pixels.x(), -pixels.y());
  for (const double number :
       {toPicture.m11(), toPicture.m22(), toPicture.dx(), toPicture.dy(), double(pixels.width()),
        double(pixels.height()), context.size().height()})
    key.add(number);
  key.add(std::uint64_t(context.isFlipped()));
  const QByteArray bytes = key.bytes();
  QImage image;
  if (const Picture* found = pictures_.object(bytes)) {
    image = found->image;
  } else {
    ++made_;
    image = QImage(pixels.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
      QPainter painter(&image);
      // What the context is going to do to its user space is taken back first.
      const double height = context.size().height();
      const QTransform flip(1, 0, 0, -1, 0, height);
      painter.setWorldTransform(context.isFlipped() ? toPicture : flip * toPicture);
      GraphicsContext drawing(&painter, context.size(), context.isFlipped());
      draw();
    }
    pictures_.insert(QByteArray(bytes.constData(), bytes.size()), new Picture{image, key.colors_},
                     bytes.size() + image.sizeInBytes());
  }
  putPixels(*context.painter(), toDevice, pixels.topLeft(), image);
  return true;
}

} // namespace zq
