#include "zqticker/platform/graphics/rect_drawing.h"

#include "zqticker/platform/graphics/GraphicsContext.h"

namespace zq::platform {

void frameRectWithWidth(const QRectF& rect, double frameWidth) {
  GraphicsContext* context = GraphicsContext::currentContext();
  if (!context || rect.isEmpty() || !(frameWidth > 0))
    return;
  const QRectF inner = rect.adjusted(frameWidth, frameWidth, -frameWidth, -frameWidth);
  if (inner.isEmpty())
    return context->fillRect(rect);
  // Both horizontal sides in full, the vertical ones between them: no point is drawn twice.
  context->fillRect(QRectF(rect.left(), rect.top(), rect.width(), frameWidth));
  context->fillRect(QRectF(rect.left(), inner.bottom(), rect.width(), frameWidth));
  context->fillRect(QRectF(rect.left(), inner.top(), frameWidth, inner.height()));
  context->fillRect(QRectF(inner.right(), inner.top(), frameWidth, inner.height()));
}

} // namespace zq::platform
