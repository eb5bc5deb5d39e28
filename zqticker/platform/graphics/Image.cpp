#include "zqticker/platform/graphics/Image.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/graphics/DrawingRepresentation_p.h"
#include "zqticker/platform/graphics/TileCache_p.h"
#include "zqticker/platform/graphics/image_drawing_p.h"
#include "zqticker/platform/graphics/picture_data_p.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::platform {

ZQ_REGISTER_VALUE_CLASS(Image);

// What is drawn between lock and unlock.
struct Image::Focus {
  explicit Focus(DrawingRecording base) : recording(std::move(base)) {
    context.emplace(&recording, recording.size);
    // Colours, transform and clip of one focus do not reach the next.
    context->saveGraphicsState();
  }

  DrawingRecording recording;
  std::optional<GraphicsContext> context;
  int depth = 1;
};

static QSizeF validSize(QSizeF size) {
  const auto side = [](double length) {
    return std::isfinite(length) && length > 0 ? length : 0.0;
  };
  return {side(size.width()), side(size.height())};
}

Image::Image() = default;
Image::~Image() = default;

Ref<Image> Image::make(QSizeF sizeInPoints) {
  return make(sizeInPoints, {});
}

Ref<Image> Image::make(QSizeF sizeInPoints, Representations representations) {
  auto image = std::make_shared<Image>();
  image->size_ = validSize(sizeInPoints);
  image->representations_ = std::move(representations);
  return image;
}

Ref<Image> Image::initWithData(const QByteArray& data) {
  Representations representations = representationsFromData(data);
  if (representations.empty())
    return nullptr;
  const QSizeF size = representations.front()->size();
  return make(size, std::move(representations));
}

Ref<Image> Image::initWithContentsOfFile(const QString& path, QString* error) {
  // A file larger than this holds no picture that could be shown.
  constexpr qint64 maximumBytes = qint64(1) << 30;
  QFile file(path);
  QString reason;
  Ref<Image> image;
  // A pipe or a device may never end.
  if (const QFileInfo info(path); info.exists() && !info.isFile())
    reason = u"It is not an ordinary file."_s;
  else if (!file.open(QIODevice::ReadOnly))
    reason = file.errorString();
  else if (file.size() > maximumBytes)
    reason = u"The file is too large for a picture."_s;
  else if (image = initWithData(file.read(maximumBytes)); !image)
    reason = u"The file holds no picture in a known format."_s;
  if (error && !image)
    *error = path + u": " + reason;
  return image;
}

Ref<Image> Image::fromQImage(const QImage& image) {
  if (image.isNull())
    return nullptr;
  const QSizeF size = image.deviceIndependentSize();
  return make(size, {ImageRepresentation::make(image, size)});
}

void Image::setSize(QSizeF sizeInPoints) {
  size_ = validSize(sizeInPoints);
}

void Image::setRepresentations(Representations representations) {
  representations_ = std::move(representations);
}

std::optional<QByteArray> Image::TIFFRepresentation() const {
  if (size_.isEmpty() || representations_.empty())
    return std::nullopt;
  return tiffData(size_, representations_);
}

void Image::lockFocus() {
  if (focus_) {
    ++focus_->depth;
    return;
  }
  DrawingRecording recording;
  recording.size = size_;
  if (const ImageContent present{size_, representations_}; !present.isEmpty()) {
    const auto* drawing =
        dynamic_cast<const DrawingRepresentation*>(representations_.front().get());
    if (drawing && drawing->size() == size_)
      recording.commands = drawing->recording().commands;
    else
      recording.commands.push_back(
          [size = size_, representations = representations_](GraphicsContext& context) {
            drawContent(context, {size, representations}, QTransform(), QRectF(QPointF(), size),
                        CompositingOperation::SourceOver, 1);
          });
  }
  focus_ = std::make_unique<Focus>(std::move(recording));
}

void Image::unlockFocus() {
  if (!focus_ || --focus_->depth > 0)
    return;
  const auto focus = std::move(focus_);
  // Restores every state that is still saved.
  focus->context.reset();
  if (!focus->recording.size.isEmpty())
    representations_ = {std::make_shared<DrawingRepresentation>(std::move(focus->recording))};
}

// The current context's drawing of `content`, at once or recorded.
static void draw(const ImageContent& content, const QTransform& placement, const QRectF& source,
                 CompositingOperation operation, double fraction) {
  GraphicsContext* context = GraphicsContext::currentContext();
  if (!context->isRecording())
    return drawContent(*context, content, placement, source, operation, fraction);
  context->perform(
      [=, size = content.size, representations = content.representations](GraphicsContext& target) {
        drawContent(target, {size, representations}, placement, source, operation, fraction);
      });
}

void Image::dissolveToPoint(QPointF point, double fraction) const {
  const GraphicsContext* context = GraphicsContext::currentContext();
  if (!context)
    return;
  const double up = context->isFlipped() ? -1 : 1;
  draw({size_, representations_}, QTransform(1, 0, 0, up, point.x(), point.y()),
       QRectF(QPointF(), size_), CompositingOperation::SourceOver, fraction);
}

void Image::drawInRect(const QRectF& rect, const QRectF& fromRect, CompositingOperation operation,
                       double fraction, bool respectFlipped) const {
  const GraphicsContext* context = GraphicsContext::currentContext();
  const QRectF source = fromRect.isNull() && fromRect.topLeft().isNull() ? QRectF(QPointF(), size_)
                                                                         : fromRect.normalized();
  if (!context || source.isEmpty() || rect.isEmpty())
    return;
  const double x = rect.width() / source.width();
  const double y = rect.height() / source.height();
  const QTransform placement =
      context->isFlipped() && respectFlipped
          ? QTransform(x, 0, 0, -y, rect.left() - source.left() * x,
                       rect.bottom() + source.top() * y)
          : QTransform(x, 0, 0, y, rect.left() - source.left() * x, rect.top() - source.top() * y);
  draw({size_, representations_}, placement, source, operation, fraction);
}

QSize Image::pixelSize(double scale) const {
  const ImageContent content{size_, representations_};
  if (content.isEmpty())
    return {0, 0};
  return bestRepresentation(content, scale, scale).grid(size_, scale, scale).pixels;
}

QImage Image::rasterised(double scale, const QRect& devicePixels) const {
  const ImageContent content{size_, representations_};
  if (content.isEmpty() || !(scale > 0))
    return {};
  const ImageRepresentation& representation = bestRepresentation(content, scale, scale);
  const RasterGrid grid = representation.grid(size_, scale, scale);
  const QRect whole(QPoint(), grid.pixels);
  const QRect part = devicePixels == QRect() ? whole : devicePixels & whole;
  if (part.isEmpty() || qint64(part.width()) * part.height() > MaximumPixels)
    return {};
  return representation.render(grid, part);
}

// Whether two representations show the same pixels.
static bool showTheSame(const ImageRepresentation& a, const ImageRepresentation& b) {
  if (&a == &b)
    return true;
  if (a.pixelSize() != b.pixelSize() || a.size() != b.size())
    return false;
  // Drawings are compared as they show on a screen of two pixels a point.
  const double scale = a.isBitmap() ? a.pixelSize().width() / a.size().width() : 2;
  const RasterGrid grid = a.grid(a.size(), scale, scale);
  if (qint64(grid.pixels.width()) * grid.pixels.height() > Image::MaximumPixels)
    return false;
  if (a.isBitmap())
    return a.bitmap().convertToFormat(QImage::Format_ARGB32_Premultiplied) ==
           b.bitmap().convertToFormat(QImage::Format_ARGB32_Premultiplied);
  for (int y = 0; y < grid.pixels.height(); y += TileCache::TileHeight)
    for (int x = 0; x < grid.pixels.width(); x += TileCache::TileWidth) {
      const QRect part =
          QRect(x, y, TileCache::TileWidth, TileCache::TileHeight) & QRect(QPoint(), grid.pixels);
      if (a.render(grid, part) != b.render(grid, part))
        return false;
    }
  return true;
}

bool Image::isEqual(const Object& other) const {
  const auto* image = dynamic_cast<const Image*>(&other);
  return image && (image == this ||
                   (image->size_ == size_ &&
                    std::equal(representations_.begin(), representations_.end(),
                               image->representations_.begin(), image->representations_.end(),
                               [](const auto& a, const auto& b) { return showTheSame(*a, *b); })));
}

Ref<Object> Image::copy() {
  return make(size_, representations_);
}

ImageFocus::ImageFocus(Image& image) : image_(image) {
  image_.lockFocus();
}

ImageFocus::~ImageFocus() {
  image_.unlockFocus();
}

} // namespace zq::platform
