// Outlines made of lines, arcs and curves.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtGui/QPainterPath>

#include <array>
#include <optional>
#include <vector>

class QTransform;

namespace zq::platform {

// An outline in user space, of any number of subpaths, and how it is stroked. A point is inside
// where the subpaths wind around it (the non-zero rule), so that shapes that overlap fill as one.
//
// An outline with a coordinate that is no finite number draws nothing and has no bounds.
//
// Thread: any, one at a time.
class ZQTICKER_EXPORT BezierPath : public Object {
  Q_GADGET
  ZQ_OBJECT

 public:
  enum class ElementType { MoveTo = 0, LineTo = 1, CurveTo = 2, ClosePath = 3 };
  // One step of an outline.
  struct Element {
    ElementType type;
    // Two control points and the end point of a curve; otherwise the first is the end point, of a
    // ClosePath the point where its subpath started.
    std::array<QPointF, 3> points;

    QPointF endPoint() const { return points[type == ElementType::CurveTo ? 2 : 0]; }
  };

  BezierPath();
  ~BezierPath() override;

  // A path without elements.
  // Operation: + bezierPath
  static Ref<BezierPath> make();

  // Starts a subpath at `point`.
  void moveToPoint(QPointF point);
  // A line from the current point. Without a current point the assertion "no current point for a
  // line" fails; where the handler goes on, the line only starts a subpath.
  void lineToPoint(QPointF point);
  // An arc counter-clockwise from `startAngle` to `endAngle`, both in degrees: 0 points to +x, 90
  // to +y, which looks clockwise in a flipped context. `endAngle` counts as raised by whole turns
  // until it is not below `startAngle`, and the arc is one whole turn at most. Adds the line from
  // the current point to the arc's start; without a current point the arc starts a subpath there.
  // Angles that are no finite numbers add nothing. The outline leaves the circle by less than
  // 0.03 % of the radius.
  // Operation: appendBezierPathWithArcWithCenter:radius:startAngle:endAngle:
  void appendBezierPathWithArcWithCenter(QPointF center, double radius, double startAngle,
                                         double endAngle);
  // Adds the line back to the start of the subpath, which is the current point from then on.
  // Without a current point nothing happens.
  void closePath();
  // A closed subpath of four lines, from the origin of `rect` counter-clockwise.
  void appendBezierPathWithRect(const QRectF& rect);

  bool isEmpty() const { return elements_.empty(); }
  int elementCount() const { return int(elements_.size()); }
  // Counted from 0. Raises RangeException.
  const Element& elementAtIndex(int index) const;
  // The smallest rectangle around the outline, curves taken exactly, the line width left out. The
  // zero rectangle for an empty path.
  QRectF bounds() const;
  // The same outline for drawing.
  const QPainterPath& painterPath() const { return path_; }

  // Maps every point.
  void transformUsingAffineTransform(const QTransform& transform);

  // The width of strokes in points, 1 at first. 0 is the thinnest line that the device can draw;
  // so is what is negative or no number.
  double lineWidth() const { return lineWidth_; }
  void setLineWidth(double width) { lineWidth_ = width > 0 ? width : 0; }
  // How far a drawn curve may leave the true one, in device pixels; 0.6 at first. Kept only:
  // drawing is always finer.
  double flatness() const { return flatness_; }
  void setFlatness(double flatness) { flatness_ = flatness; }

  // Draw with the colours of the current context; without one nothing happens. A stroke has butt
  // ends and mitred joins, these limited to ten times the line width.
  void fill() const;
  void stroke() const;
  // Limits drawing in the current context to the inside of the path, until its state is restored.
  void addClip() const;

  // "BezierPath {{x, y}, {w, h}}, 5 elements".
  QString description() const override;
  Ref<Object> copy() override;

 private:
  std::optional<QPointF> currentPoint() const;
  void append(ElementType type, const std::array<QPointF, 3>& points);
  // Adds `element` to what is drawn.
  void extendPath(const Element& element);

  std::vector<Element> elements_;
  // The start of the last subpath.
  QPointF start_;
  QPainterPath path_;
  bool isFinite_ = true;
  double lineWidth_ = 1;
  double flatness_ = 0.6;
};

} // namespace zq::platform
