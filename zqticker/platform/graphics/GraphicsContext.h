// Where drawing goes.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <QtCore/QRectF>
#include <QtCore/QSizeF>
#include <QtGui/QTransform>

#include <functional>
#include <memory>
#include <vector>

class QPainter;
class QPainterPath;

namespace zq::platform {

class Color;
class Shadow;
struct DrawingRecording;
struct VerticalShading;

// How drawing combines with what is there; the operators of Porter and Duff, and the sum.
enum class CompositingOperation {
  Clear = 0,
  Copy = 1,
  SourceOver = 2,
  SourceIn = 3,
  SourceOut = 4,
  SourceAtop = 5,
  DestinationOver = 6,
  DestinationIn = 7,
  DestinationOut = 8,
  DestinationAtop = 9,
  XOR = 10,
  PlusLighter = 13,
};

// A context over a painter, or one that records. While it lives it is the current context of its
// thread; the one before becomes current again after it.
//
// User space is in points, its origin at the lower left, y upwards; in a flipped context the
// origin is at the upper left and y goes downwards, while text and pictures stay upright.
//
// A recording context keeps what is drawn in an immutable form, to be drawn later at any scale.
// What an object looks like is taken when it is drawn, not when the recording is shown.
//
// Thread: the one that made it.
class ZQTICKER_EXPORT GraphicsContext {
 public:
  // Draws through `painter` (not owned; must outlive the context), whose logical coordinates run
  // y downwards over an area of `sizeInPoints`, as Qt's do. The painter's state is as before when
  // the context has gone.
  GraphicsContext(QPainter* painter, QSizeF sizeInPoints, bool flipped = false);
  // Records into `recording` (not owned).
  GraphicsContext(DrawingRecording* recording, QSizeF sizeInPoints);
  ~GraphicsContext();
  GraphicsContext(const GraphicsContext&) = delete;
  GraphicsContext& operator=(const GraphicsContext&) = delete;

  // The current context of the calling thread, or null.
  static GraphicsContext* currentContext();

  // The painter; null while recording.
  QPainter* painter() const { return painter_; }
  bool isRecording() const { return recording_ != nullptr; }
  bool isFlipped() const { return flipped_; }
  QSizeF size() const { return size_; }

  // From user space to device pixels; the identity while recording.
  QTransform deviceTransform() const;
  // Device pixels per point, the larger of both axes; 1 while recording.
  double scale() const;
  // A rectangle in user space outside of which nothing shows: the clip, limited to the context's
  // area.
  QRectF clipBounds() const;

  // The graphics state: transform, clip, colours, shadow, compositing operation and fraction. A
  // restore without a save does nothing.
  void saveGraphicsState();
  void restoreGraphicsState();

  // Changes of the user space; `transform` applies before the present one.
  void concat(const QTransform& transform);
  void translate(double x, double y);
  // Limits drawing to the inside of the present clip and of `rect` or `path`.
  void clipToRect(const QRectF& rect);
  void clipToPath(const QPainterPath& path);

  // The colours of fills and strokes; black at first. Null is taken as clear.
  void setFillColor(const Ref<Color>& color);
  void setStrokeColor(const Ref<Color>& color);
  // The shadow that everything drawn casts, as `shadow` is now; null, the default, and a shadow
  // without colour mean none. It lies under what is drawn, inside the clip, and takes on the
  // opacity of what casts it. Its offset and its blur are in points of the context as it was made,
  // height upwards also in a flipped one: what was done to the user space since does not count. The
  // blur is a Gaussian with a standard deviation of half the blur radius. Finished shadows are kept
  // in a cache of bounded size for all contexts together.
  //
  // Drawing by SourceOver, SourceAtop and PlusLighter casts shadows; the other operations would
  // change what lies around, and cast none.
  void setShadow(const Shadow* shadow);
  // The shadow in force, or null; while recording null.
  const Shadow* shadow() const { return state_.shadow.get(); }
  // From points of the context as it was made, y upwards, to device pixels; the identity while
  // recording.
  QTransform unflippedBaseTransform() const;
  // SourceOver at first.
  void setCompositingOperation(CompositingOperation operation);
  CompositingOperation compositingOperation() const { return state_.operation; }
  // The opacity of everything drawn, 0 to 1; 1 at first.
  void setFraction(double fraction);

  void fillRect(const QRectF& rect);
  void fillPath(const QPainterPath& path);
  // Fills `path` with colours that change along the vertical of user space; casts no shadow. A path
  // with empty bounds draws nothing.
  void fillPathWithShading(const QPainterPath& path, const VerticalShading& shading);
  // Lines of `width` points, centred on the path, with butt ends and mitred joins; 0 is the
  // thinnest line that the device can draw. A join sticks out by MiterLimit half widths at most.
  void strokePath(const QPainterPath& path, double width = 1);
  static constexpr double MiterLimit = 10;

  // While recording, keeps `command`, which is run with the context of each showing; otherwise
  // runs it at once. The command must own what it needs.
  void perform(const std::function<void(GraphicsContext&)>& command);

 private:
  // What a save keeps besides what the painter keeps itself: transform, clip and fraction.
  struct State {
    Ref<Color> fillColor;
    Ref<Color> strokeColor;
    std::shared_ptr<const Shadow> shadow;
    CompositingOperation operation = CompositingOperation::SourceOver;
  };

  QPainter* painter_ = nullptr;
  DrawingRecording* recording_ = nullptr;
  QSizeF size_;
  bool flipped_ = false;
  QTransform base_;
  QTransform baseToDevice_;
  State state_;
  std::vector<State> saved_;
};

// Saves the state of a context and restores it at the end of the scope. A null context is allowed.
class ZQTICKER_EXPORT SavedGraphicsState {
 public:
  explicit SavedGraphicsState(GraphicsContext* context);
  ~SavedGraphicsState();
  SavedGraphicsState(const SavedGraphicsState&) = delete;
  SavedGraphicsState& operator=(const SavedGraphicsState&) = delete;

 private:
  GraphicsContext* context_;
};

} // namespace zq::platform
