// Shadows of filled and stroked paths.
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/graphics/shadow_drawing_p.h"

#include <QtGui/QPainterPath>

namespace zq::platform {

namespace {

// A path of more steps is cheaper to draw again than to tell from others.
constexpr int maximumElements = 512;

class PathCaster : public ShadowCaster {
 public:
  PathCaster(const QPainterPath& path, const Ref<Color>& color) : path_(path), color_(color) {}

  QRectF bounds() const override { return path_.controlPointRect(); }
  double alpha() const override { return color_ ? color_->alphaComponent() : 0; }

 protected:
  // The alpha of a pattern differs from place to place.
  bool isPattern() const { return color_ && color_->patternImage(); }
  const QPainterPath& path() const { return path_; }
  const Ref<Color>& color() const { return color_; }

 private:
  const QPainterPath& path_;
  const Ref<Color>& color_;
};

class FillCaster : public PathCaster {
 public:
  using PathCaster::PathCaster;

  bool describe(ShadowKey& key) const override {
    if (isPattern() || path().elementCount() > maximumElements)
      return false;
    key.add(ShadowKey::Kind::Fill);
    key.add(path());
    return true;
  }
  void draw(GraphicsContext& context) const override {
    if (isPattern())
      context.setFillColor(color());
    context.fillPath(path());
  }
};

class StrokeCaster : public PathCaster {
 public:
  StrokeCaster(const QPainterPath& path, double width, const Ref<Color>& color)
      : PathCaster(path, color), width_(width) {}

  QRectF bounds() const override {
    // As far as a mitred join may stick out.
    const double margin = width_ / 2 * GraphicsContext::MiterLimit;
    return PathCaster::bounds().adjusted(-margin, -margin, margin, margin);
  }
  bool describe(ShadowKey& key) const override {
    if (isPattern() || path().elementCount() > maximumElements)
      return false;
    key.add(ShadowKey::Kind::Stroke);
    key.add(width_);
    key.add(path());
    return true;
  }
  void draw(GraphicsContext& context) const override {
    if (isPattern())
      context.setStrokeColor(color());
    context.strokePath(path(), width_);
  }

 private:
  double width_;
};

} // namespace

void castShadowOfFill(GraphicsContext& context, const QPainterPath& path, const Ref<Color>& color) {
  castShadow(context, FillCaster(path, color));
}

void castShadowOfStroke(GraphicsContext& context, const QPainterPath& path, double width,
                        const Ref<Color>& color) {
  // The thinnest line is one pixel of the device, not of the mask.
  castShadow(context, StrokeCaster(path, width > 0 ? width : 1 / context.scale(), color));
}

} // namespace zq::platform
