#include "zqticker/platform/graphics/GraphicsContext.h"

#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/DrawingRecording_p.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/platform/graphics/shading_drawing_p.h"
#include "zqticker/platform/graphics/shadow_drawing_p.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include <algorithm>
#include <cmath>

namespace zq::platform {

namespace {

// The contexts of this thread, innermost last. An image whose focus is unlocked late takes its
// context out of the middle.
thread_local std::vector<GraphicsContext*> contexts;

QPainter::CompositionMode modeOf(CompositingOperation operation) {
  switch (operation) {
  case CompositingOperation::Clear:
    return QPainter::CompositionMode_Clear;
  case CompositingOperation::Copy:
    return QPainter::CompositionMode_Source;
  case CompositingOperation::SourceOver:
    return QPainter::CompositionMode_SourceOver;
  case CompositingOperation::SourceIn:
    return QPainter::CompositionMode_SourceIn;
  case CompositingOperation::SourceOut:
    return QPainter::CompositionMode_SourceOut;
  case CompositingOperation::SourceAtop:
    return QPainter::CompositionMode_SourceAtop;
  case CompositingOperation::DestinationOver:
    return QPainter::CompositionMode_DestinationOver;
  case CompositingOperation::DestinationIn:
    return QPainter::CompositionMode_DestinationIn;
  case CompositingOperation::DestinationOut:
    return QPainter::CompositionMode_DestinationOut;
  case CompositingOperation::DestinationAtop:
    return QPainter::CompositionMode_DestinationAtop;
  case CompositingOperation::XOR:
    return QPainter::CompositionMode_Xor;
  case CompositingOperation::PlusLighter:
    return QPainter::CompositionMode_Plus;
  }
  return QPainter::CompositionMode_SourceOver;
}

// The brush of `color`; a pattern becomes a texture at the scale of `context`.
QBrush brushOf(const Ref<Color>& color, const GraphicsContext& context) {
  if (!color)
    return QColor(Qt::transparent);
  const Ref<Image>& pattern = color->patternImage();
  if (!pattern)
    return color->qColor();
  const double scale = context.scale();
  QBrush brush(pattern->rasterised(scale));
  // The texture's rows run downwards from its upper edge, which is the lower edge of the tile
  // below the origin.
  brush.setTransform(QTransform::fromScale(1 / scale, (context.isFlipped() ? 1 : -1) / scale));
  return brush;
}

QPen penOf(const QBrush& brush, double width) {
  QPen pen(brush, width, Qt::SolidLine, Qt::FlatCap, Qt::SvgMiterJoin);
  pen.setMiterLimit(GraphicsContext::MiterLimit);
  return pen;
}

} // namespace

GraphicsContext::GraphicsContext(QPainter* painter, QSizeF sizeInPoints, bool flipped)
    : painter_(painter), size_(sizeInPoints), flipped_(flipped) {
  painter_->save();
  painter_->setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                           QPainter::SmoothPixmapTransform);
  painter_->setCompositionMode(QPainter::CompositionMode_SourceOver);
  painter_->setOpacity(1);
  if (!flipped_) {
    painter_->translate(0, size_.height());
    painter_->scale(1, -1);
  }
  base_ = painter_->worldTransform();
  baseToDevice_ = painter_->deviceTransform();
  state_.fillColor = state_.strokeColor = Color::deviceWhite(0);
  contexts.push_back(this);
}

GraphicsContext::GraphicsContext(DrawingRecording* recording, QSizeF sizeInPoints)
    : recording_(recording), size_(sizeInPoints) {
  contexts.push_back(this);
}

GraphicsContext::~GraphicsContext() {
  while (!saved_.empty())
    restoreGraphicsState();
  contexts.erase(std::find(contexts.begin(), contexts.end(), this));
  if (painter_)
    painter_->restore();
}

GraphicsContext* GraphicsContext::currentContext() {
  return contexts.empty() ? nullptr : contexts.back();
}

QTransform GraphicsContext::deviceTransform() const {
  return painter_ ? painter_->deviceTransform() : QTransform();
}

double GraphicsContext::scale() const {
  const QTransform transform = deviceTransform();
  return std::max(std::hypot(transform.m11(), transform.m12()),
                  std::hypot(transform.m21(), transform.m22()));
}

QRectF GraphicsContext::clipBounds() const {
  const QRectF area(QPointF(), size_);
  if (!painter_)
    return area;
  const QRectF mapped = (base_ * painter_->worldTransform().inverted()).mapRect(area);
  return painter_->hasClipping() ? mapped & painter_->clipBoundingRect() : mapped;
}

void GraphicsContext::saveGraphicsState() {
  saved_.push_back(state_);
  if (recording_)
    return perform([](GraphicsContext& context) { context.saveGraphicsState(); });
  painter_->save();
}

void GraphicsContext::restoreGraphicsState() {
  if (saved_.empty())
    return;
  state_ = std::move(saved_.back());
  saved_.pop_back();
  if (recording_)
    return perform([](GraphicsContext& context) { context.restoreGraphicsState(); });
  painter_->restore();
}

void GraphicsContext::concat(const QTransform& transform) {
  if (recording_)
    return perform([=](GraphicsContext& context) { context.concat(transform); });
  painter_->setWorldTransform(transform, true);
}

void GraphicsContext::translate(double x, double y) {
  concat(QTransform::fromTranslate(x, y));
}

void GraphicsContext::clipToRect(const QRectF& rect) {
  if (recording_)
    return perform([=](GraphicsContext& context) { context.clipToRect(rect); });
  painter_->setClipRect(rect, Qt::IntersectClip);
}

void GraphicsContext::clipToPath(const QPainterPath& path) {
  if (recording_)
    return perform([=](GraphicsContext& context) { context.clipToPath(path); });
  painter_->setClipPath(path, Qt::IntersectClip);
}

void GraphicsContext::setFillColor(const Ref<Color>& color) {
  if (recording_)
    return perform([=](GraphicsContext& context) { context.setFillColor(color); });
  state_.fillColor = color;
}

void GraphicsContext::setStrokeColor(const Ref<Color>& color) {
  if (recording_)
    return perform([=](GraphicsContext& context) { context.setStrokeColor(color); });
  state_.strokeColor = color;
}

void GraphicsContext::setShadow(const Shadow* shadow) {
  std::shared_ptr<const Shadow> kept;
  if (shadow && shadow->shadowColor())
    kept = std::make_shared<const Shadow>(*shadow);
  if (recording_)
    return perform([=](GraphicsContext& context) { context.setShadow(kept.get()); });
  state_.shadow = std::move(kept);
}

QTransform GraphicsContext::unflippedBaseTransform() const {
  return flipped_ ? QTransform::fromScale(1, -1) * baseToDevice_ : baseToDevice_;
}

void GraphicsContext::setCompositingOperation(CompositingOperation operation) {
  state_.operation = operation;
  if (recording_)
    return perform([=](GraphicsContext& context) { context.setCompositingOperation(operation); });
  painter_->setCompositionMode(modeOf(operation));
}

void GraphicsContext::setFraction(double fraction) {
  if (recording_)
    return perform([=](GraphicsContext& context) { context.setFraction(fraction); });
  painter_->setOpacity(std::clamp(fraction, 0.0, 1.0));
}

void GraphicsContext::fillRect(const QRectF& rect) {
  if (recording_)
    return perform([=](GraphicsContext& context) { context.fillRect(rect); });
  if (state_.shadow) {
    QPainterPath path;
    path.addRect(rect);
    castShadowOfFill(*this, path, state_.fillColor);
  }
  painter_->fillRect(rect, brushOf(state_.fillColor, *this));
}

void GraphicsContext::fillPath(const QPainterPath& path) {
  if (recording_)
    return perform([=](GraphicsContext& context) { context.fillPath(path); });
  if (state_.shadow)
    castShadowOfFill(*this, path, state_.fillColor);
  painter_->fillPath(path, brushOf(state_.fillColor, *this));
}

void GraphicsContext::fillPathWithShading(const QPainterPath& path,
                                          const VerticalShading& shading) {
  if (recording_)
    return perform([=](GraphicsContext& context) { context.fillPathWithShading(path, shading); });
  const QBrush brush = brushOfShading(shading, *this, path.boundingRect());
  if (brush.style() != Qt::NoBrush)
    painter_->fillPath(path, brush);
}

void GraphicsContext::strokePath(const QPainterPath& path, double width) {
  if (recording_)
    return perform([=](GraphicsContext& context) { context.strokePath(path, width); });
  if (state_.shadow)
    castShadowOfStroke(*this, path, width, state_.strokeColor);
  painter_->strokePath(path, penOf(brushOf(state_.strokeColor, *this), width));
}

void GraphicsContext::perform(const std::function<void(GraphicsContext&)>& command) {
  if (recording_)
    recording_->commands.push_back(command);
  else
    command(*this);
}

SavedGraphicsState::SavedGraphicsState(GraphicsContext* context) : context_(context) {
  if (context_)
    context_->saveGraphicsState();
}

SavedGraphicsState::~SavedGraphicsState() {
  if (context_)
    context_->restoreGraphicsState();
}

} // namespace zq::platform
