#include "zqticker/platform/graphics/BezierPath.h"

#include "zqticker/platform/archiving/number_text.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/objects/AssertionHandler.h"
#include "zqticker/platform/objects/Exception.h"

#include <QtCore/QtMath>
#include <QtGui/QTransform>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

// The point of the unit circle at `angle` degrees, without error at whole quarters.
QPointF onUnitCircle(double angle) {
  const double turn = std::fmod(angle, 360);
  if (const double quarter = turn / 90; quarter == std::floor(quarter)) {
    static constexpr std::array<QPointF, 4> corners{QPointF(1, 0), {0, 1}, {-1, 0}, {0, -1}};
    return corners[std::size_t(quarter + 4) % 4];
  }
  const double radians = qDegreesToRadians(turn);
  return {std::cos(radians), std::sin(radians)};
}

bool isFinite(QPointF point) {
  return std::isfinite(point.x()) && std::isfinite(point.y());
}

} // namespace

BezierPath::BezierPath() {
  path_.setFillRule(Qt::WindingFill);
}

BezierPath::~BezierPath() = default;

Ref<BezierPath> BezierPath::make() {
  return std::make_shared<BezierPath>();
}

std::optional<QPointF> BezierPath::currentPoint() const {
  return elements_.empty() ? std::nullopt : std::optional(elements_.back().endPoint());
}

void BezierPath::extendPath(const Element& element) {
  isFinite_ = isFinite_ && std::all_of(element.points.begin(), element.points.end(), isFinite);
  if (!isFinite_) {
    path_.clear();
    return;
  }
  const auto& points = element.points;
  switch (element.type) {
  case ElementType::MoveTo:
    return path_.moveTo(points[0]);
  case ElementType::LineTo:
    return path_.lineTo(points[0]);
  case ElementType::CurveTo:
    return path_.cubicTo(points[0], points[1], points[2]);
  case ElementType::ClosePath:
    return path_.closeSubpath();
  }
}

void BezierPath::append(ElementType type, const std::array<QPointF, 3>& points) {
  elements_.push_back({type, points});
  extendPath(elements_.back());
}

void BezierPath::moveToPoint(QPointF point) {
  start_ = point;
  append(ElementType::MoveTo, {point});
}

void BezierPath::lineToPoint(QPointF point) {
  ZQ_ASSERT(currentPoint(), u"no current point for a line"_s);
  if (!currentPoint())
    return moveToPoint(point);
  append(ElementType::LineTo, {point});
}

void BezierPath::appendBezierPathWithArcWithCenter(QPointF center, double radius, double startAngle,
                                                   double endAngle) {
  double sweep = endAngle - startAngle;
  if (!std::isfinite(sweep))
    return;
  if (sweep < 0)
    sweep = std::fmod(sweep, 360);
  if (sweep < 0)
    sweep += 360;
  sweep = std::min(sweep, 360.0);

  QPointF from = onUnitCircle(startAngle);
  const QPointF start = center + radius * from;
  if (const std::optional<QPointF> current = currentPoint(); !current)
    moveToPoint(start);
  else if (current->x() != start.x() || current->y() != start.y())
    append(ElementType::LineTo, {start});

  // One curve for each quarter at most.
  const int count = int(std::ceil(sweep / 90));
  const double step = count == 0 ? 0 : sweep / count;
  // The length of a tangent that makes the curve touch the circle in its middle.
  const double tangent = 4.0 / 3 * std::tan(qDegreesToRadians(step) / 4);
  for (int i = 1; i <= count; ++i) {
    const QPointF to = onUnitCircle(startAngle + step * i);
    append(ElementType::CurveTo,
           {center + radius * (from + tangent * QPointF(-from.y(), from.x())),
            center + radius * (to - tangent * QPointF(-to.y(), to.x())), center + radius * to});
    from = to;
  }
}

void BezierPath::closePath() {
  if (currentPoint())
    append(ElementType::ClosePath, {start_});
}

void BezierPath::appendBezierPathWithRect(const QRectF& rect) {
  moveToPoint(rect.topLeft());
  lineToPoint({rect.x() + rect.width(), rect.y()});
  lineToPoint({rect.x() + rect.width(), rect.y() + rect.height()});
  lineToPoint({rect.x(), rect.y() + rect.height()});
  closePath();
}

const BezierPath::Element& BezierPath::elementAtIndex(int index) const {
  if (index < 0 || index >= elementCount())
    throw RangeException(
        u"element %1 out of bounds; the path has %2"_s.arg(index).arg(elementCount()));
  return elements_[std::size_t(index)];
}

QRectF BezierPath::bounds() const {
  return path_.boundingRect();
}

void BezierPath::transformUsingAffineTransform(const QTransform& transform) {
  path_.clear();
  isFinite_ = true;
  start_ = transform.map(start_);
  for (Element& element : elements_) {
    for (QPointF& point : element.points)
      point = transform.map(point);
    extendPath(element);
  }
}

void BezierPath::fill() const {
  if (GraphicsContext* context = GraphicsContext::currentContext())
    context->fillPath(path_);
}

void BezierPath::stroke() const {
  if (GraphicsContext* context = GraphicsContext::currentContext())
    context->strokePath(path_, lineWidth_);
}

void BezierPath::addClip() const {
  if (GraphicsContext* context = GraphicsContext::currentContext())
    context->clipToPath(path_);
}

QString BezierPath::description() const {
  return className() + u' ' + textOfRect(bounds()) + u", %1 elements"_s.arg(elementCount());
}

Ref<Object> BezierPath::copy() {
  return std::make_shared<BezierPath>(*this);
}

} // namespace zq::platform
