// Shadows under what is drawn into a context.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QRectF>
#include <QtGui/QTransform>

#include <memory>

class QPainterPath;

namespace zq::platform {

class Color;
class GraphicsContext;

// What tells a shadow from others, as bytes: what casts it, to 1/256 of a device pixel.
class ShadowKey {
 public:
  // What the geometry describes; each kind of caster has its own.
  enum class Kind { Fill, Stroke, Text, Image };

  // Writes into `bytes`; `toMask` leads from user space to the pixels of the mask.
  ShadowKey(QByteArray& bytes, const QTransform& toMask) : bytes_(bytes), toMask_(toMask) {}

  void add(Kind kind);
  void add(quint64 number);
  void add(double number);
  // A place in user space, as the place on the mask.
  void add(QPointF point);
  void add(const QPainterPath& path);

 private:
  QByteArray& bytes_;
  const QTransform& toMask_;
};

// Something drawn that has a shadow.
class ShadowCaster {
 public:
  ShadowCaster() = default;
  virtual ~ShadowCaster() = default;
  ShadowCaster(const ShadowCaster&) = delete;
  ShadowCaster& operator=(const ShadowCaster&) = delete;

  // Where it is drawn, in user space; may be larger.
  virtual QRectF bounds() const = 0;
  // Its opacity as a whole, which draw() leaves out.
  virtual double alpha() const = 0;
  // Adds to `key` all that decides what draw() covers. False where that cannot be told; the shadow
  // is not kept then.
  virtual bool describe(ShadowKey& key) const = 0;
  // Draws it; only its alpha counts. The context has the user space of the true one.
  virtual void draw(GraphicsContext& context) const = 0;
};

// Draws the shadow of `caster` into `context`, which must have one and must not be recording.
void castShadow(GraphicsContext& context, const ShadowCaster& caster);

// The shadows of `path` filled and stroked in `color`.
void castShadowOfFill(GraphicsContext& context, const QPainterPath& path,
                      const std::shared_ptr<Color>& color);
void castShadowOfStroke(GraphicsContext& context, const QPainterPath& path, double width,
                        const std::shared_ptr<Color>& color);

} // namespace zq::platform
