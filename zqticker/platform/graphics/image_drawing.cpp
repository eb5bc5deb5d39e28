#include "zqticker/platform/graphics/image_drawing_p.h"

#include "zqticker/platform/graphics/ImageRepresentation.h"
#include "zqticker/platform/graphics/TileCache_p.h"
#include "zqticker/platform/graphics/shadow_drawing_p.h"

#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>

namespace zq::platform {

namespace {

// Puts back what drawing a picture changes, without the copy of the whole state that a save makes.
class PainterRestorer {
 public:
  explicit PainterRestorer(QPainter& painter)
      : painter_(painter), transform_(painter.worldTransform()), mode_(painter.compositionMode()),
        opacity_(painter.opacity()) {}
  ~PainterRestorer() {
    painter_.setWorldTransform(transform_);
    painter_.setCompositionMode(mode_);
    painter_.setOpacity(opacity_);
  }
  PainterRestorer(const PainterRestorer&) = delete;
  PainterRestorer& operator=(const PainterRestorer&) = delete;

 private:
  QPainter& painter_;
  QTransform transform_;
  QPainter::CompositionMode mode_;
  double opacity_;
};

// Whether pixels can be copied row by row: no rotation, no mirror image.
bool isUpright(const QTransform& toDevice) {
  return toDevice.type() <= QTransform::TxScale && toDevice.m11() > 0 && toDevice.m22() < 0;
}

// From pixels of the grid, rows downwards, to points of the image, y upwards.
QTransform fromGrid(const RasterGrid& grid, const ImageRepresentation& representation,
                    QSizeF size) {
  const double x = size.width() / representation.size().width() / grid.scaleX;
  const double y = size.height() / representation.size().height() / grid.scaleY;
  return QTransform(x, 0, 0, -y, 0, grid.pixels.height() * y);
}

// Draws the pixels of `visible`; the painter's transform leads from the grid to the device.
void drawPixels(QPainter& painter, const ImageRepresentation& representation,
                const RasterGrid& grid, const QRect& visible) {
  if (representation.pixelSize() == grid.pixels) {
    const QImage bitmap = representation.bitmap();
    if (!bitmap.isNull())
      painter.drawImage(visible.topLeft(), bitmap, visible);
    return;
  }
  constexpr int width = TileCache::TileWidth;
  constexpr int height = TileCache::TileHeight;
  for (int y = visible.top() / height; y <= visible.bottom() / height; ++y)
    for (int x = visible.left() / width; x <= visible.right() / width; ++x)
      painter.drawImage(QPoint(x * width, y * height),
                        TileCache::shared().tile(representation, grid, x, y));
}

// The shadow of an image drawn at one place.
class ContentCaster : public ShadowCaster {
 public:
  ContentCaster(const ImageContent& content, const QTransform& placement, const QRectF& shown,
                double fraction)
      : content_(content), placement_(placement), shown_(shown), fraction_(fraction) {}

  QRectF bounds() const override { return placement_.mapRect(shown_); }
  double alpha() const override { return std::clamp(fraction_, 0.0, 1.0); }
  bool describe(ShadowKey& key) const override {
    key.add(ShadowKey::Kind::Image);
    for (const auto& representation : content_.representations)
      key.add(representation->identifier());
    for (const QPointF corner : {shown_.topLeft(), shown_.bottomRight()}) {
      key.add(corner.x());
      key.add(corner.y());
    }
    const QRectF whole(QPointF(), content_.size);
    for (const QPointF corner : {whole.topLeft(), whole.topRight(), whole.bottomLeft()})
      key.add(placement_.map(corner));
    return true;
  }
  void draw(GraphicsContext& context) const override {
    drawContent(context, content_, placement_, shown_, CompositingOperation::SourceOver, 1);
  }

 private:
  const ImageContent& content_;
  const QTransform& placement_;
  QRectF shown_;
  double fraction_;
};

} // namespace

const ImageRepresentation& bestRepresentation(const ImageContent& content, double scaleX,
                                              double scaleY) {
  const ImageRepresentation* best = nullptr;
  // A page of another size in points is another picture, not another resolution.
  const QSizeF size = content.representations.front()->size();
  const auto pixels = [](const ImageRepresentation& r) {
    return qint64(r.pixelSize().width()) * r.pixelSize().height();
  };
  // Half a pixel less is the rounding of a size to whole pixels.
  const auto suffices = [&](const ImageRepresentation& r) {
    return r.pixelSize().width() + 0.5 >= content.size.width() * scaleX &&
           r.pixelSize().height() + 0.5 >= content.size.height() * scaleY;
  };
  for (const auto& candidate : content.representations) {
    if (std::abs(candidate->size().width() - size.width()) > 1 ||
        std::abs(candidate->size().height() - size.height()) > 1)
      continue;
    if (!candidate->isBitmap())
      return *candidate;
    const bool better =
        !best || (suffices(*best) ? suffices(*candidate) && pixels(*candidate) < pixels(*best)
                                  : pixels(*candidate) > pixels(*best));
    if (better)
      best = candidate.get();
  }
  return *best;
}

void drawContent(GraphicsContext& context, const ImageContent& content, const QTransform& placement,
                 const QRectF& source, CompositingOperation operation, double fraction) {
  const QRectF whole(QPointF(), content.size);
  const QRectF shown = source & whole;
  if (content.isEmpty() || shown.isEmpty())
    return;
  QPainter& painter = *context.painter();
  const QTransform userToDevice = context.deviceTransform();
  const QTransform toDevice = placement * userToDevice;
  const double scaleX = std::hypot(toDevice.m11(), toDevice.m12());
  const double scaleY = std::hypot(toDevice.m21(), toDevice.m22());
  // False for what is no number, too.
  if (!(scaleX > 0 && scaleY > 0 && toDevice.isInvertible() && std::isfinite(toDevice.dx()) &&
        std::isfinite(toDevice.dy())))
    return;
  const ImageRepresentation& representation = bestRepresentation(content, scaleX, scaleY);
  const RasterGrid grid = representation.grid(content.size, scaleX, scaleY);
  if (grid.pixels.isEmpty())
    return;
  const PainterRestorer restorer(painter);
  const CompositingOperation before = context.compositingOperation();
  if (context.shadow()) {
    context.setCompositingOperation(operation);
    castShadow(context, ContentCaster(content, placement, shown, fraction));
    context.setCompositingOperation(before);
  }

  QTransform gridToDevice = fromGrid(grid, representation, content.size) * toDevice;
  if (isUpright(toDevice)) {
    // One pixel of the grid on one of the device, from the whole pixel nearest to the corner.
    const QPointF corner = toDevice.map(QPointF());
    gridToDevice = QTransform::fromTranslate(std::floor(corner.x() + 0.5),
                                             std::floor(corner.y() + 0.5) - grid.pixels.height());
  }

  // The pixels that can show, with one more on each side for what rounding moved.
  QRectF bounds = userToDevice.mapRect(context.clipBounds());
  if (shown != whole)
    bounds &= toDevice.mapRect(shown);
  const QRectF inGrid = gridToDevice.inverted().mapRect(bounds).adjusted(-1, -1, 1, 1) &
                        QRectF(QPointF(), QSizeF(grid.pixels));
  if (!(inGrid.width() > 0 && inGrid.height() > 0))
    return;

  const bool clipped = shown != whole;
  if (clipped) {
    painter.save();
    // On whole pixels, so that the picture's edges do not fade.
    painter.setWorldTransform(QTransform());
    const QTransform logicalToDevice = painter.deviceTransform();
    const QRectF edge = toDevice.mapRect(shown);
    const QPointF topLeft(std::floor(edge.left() + 0.5), std::floor(edge.top() + 0.5));
    const QPointF bottomRight(std::floor(edge.right() + 0.5), std::floor(edge.bottom() + 0.5));
    painter.setClipRect(logicalToDevice.inverted().mapRect(QRectF(topLeft, bottomRight)),
                        Qt::IntersectClip);
  }
  painter.setWorldTransform(QTransform());
  painter.setWorldTransform(gridToDevice * painter.deviceTransform().inverted());
  {
    context.setCompositingOperation(operation);
    painter.setOpacity(painter.opacity() * std::clamp(fraction, 0.0, 1.0));
    drawPixels(painter, representation, grid, inGrid.toAlignedRect());
    context.setCompositingOperation(before);
  }
  if (clipped)
    painter.restore();
}

} // namespace zq::platform
