#include "zqticker/platform/text/TextLine_p.h"

#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/image_drawing_p.h"
#include "zqticker/platform/graphics/shadow_drawing_p.h"
#include "zqticker/platform/text/line_breaks_p.h"

#include <QtGui/QPainter>
#include <QtGui/QTextLayout>

#include <algorithm>
#include <optional>

namespace zq::platform {

namespace {

// Characters whose glyphs one line keeps at most, beyond the segment being drawn: several screens
// of text.
constexpr qsizetype maximumKeptLength = 16384;

// Device pixels of the em between which colour pictures are drawn: smaller ones have no pixel of
// their own, larger ones would be scaled up from their few pixels at a cost without bound.
constexpr double minimumEmojiPixels = 2;
constexpr double maximumEmojiPixels = 2048;

} // namespace

// The shadow of a line drawn at one place.
class TextLine::Caster : public ShadowCaster {
 public:
  Caster(const TextLine& line, QPointF point) : line_(line), point_(point) {}

  QRectF bounds() const override {
    const double overhang = line_.overhang_;
    return QRectF(point_, line_.size()).adjusted(-overhang, -overhang, overhang, overhang);
  }
  // The colours of the text have their own.
  double alpha() const override { return 1; }
  bool describe(ShadowKey& key) const override {
    key.add(ShadowKey::Kind::Text);
    key.add(line_.identifier_);
    key.add(point_);
    return true;
  }
  void draw(GraphicsContext& context) const override { line_.paintGlyphs(context, point_); }

 private:
  const TextLine& line_;
  QPointF point_;
};

const QTextLayout& TextLine::layoutOf(std::size_t index) const {
  Segment& segment = segments_[index];
  if (segment.layout)
    return *segment.layout;
  while (!kept_.empty() && keptLength_ + segment.length > maximumKeptLength) {
    Segment& oldest = segments_[kept_.front()];
    oldest.layout.reset();
    keptLength_ -= oldest.length;
    kept_.erase(kept_.begin());
  }
  const QFont font = styles_[segment.style].style.layoutFont();
  segment.layout = layOut(text_.mid(segment.start, segment.length),
                          {font, segment.rightToLeft, forcesDirection_}, formatsOf(segment));
  kept_.push_back(index);
  keptLength_ += segment.length;
  return *segment.layout;
}

QList<QTextLayout::FormatRange> TextLine::formatsOf(const Segment& segment) const {
  QList<QTextLayout::FormatRange> formats;
  const qsizetype end = segment.start + segment.length;
  auto range =
      std::partition_point(styles_.begin(), styles_.end(), [&](const StyledRange& candidate) {
        return candidate.end <= segment.start;
      });
  for (; range != styles_.end() && range->start < end; ++range) {
    const qsizetype from = std::max(range->start, segment.start);
    formats.append(
        {int(from - segment.start), int(std::min(range->end, end) - from), range->style.format});
  }
  return formats;
}

void TextLine::forgetGlyphs() const {
  for (const std::size_t index : kept_)
    segments_[index].layout.reset();
  kept_.clear();
  keptLength_ = 0;
}

void TextLine::draw(const std::shared_ptr<const TextLine>& line, GraphicsContext& context,
                    QPointF point) {
  if (context.isRecording())
    return context.perform([=](GraphicsContext& target) { draw(line, target, point); });
  line->paint(context, point);
  LineCache::shared().use(line);
}

void TextLine::paint(GraphicsContext& context, QPointF point) const {
  if (context.shadow())
    castShadow(context, Caster(*this, point));
  paintGlyphs(context, point);
}

void TextLine::paintGlyphs(GraphicsContext& context, QPointF point) const {
  const QRectF visible = context.clipBounds().translated(-point);
  const double height = size().height();
  if (visible.bottom() < -overhang_ || visible.top() > height + overhang_)
    return;
  auto segment =
      std::partition_point(segments_.begin(), segments_.end(), [&](const Segment& candidate) {
        return candidate.x <= visible.left() - overhang_;
      });
  // The last one that starts before the visible part may reach into it.
  if (segment != segments_.begin())
    --segment;

  QPainter& painter = *context.painter();
  const QTransform before = painter.worldTransform();
  const QPen pen = painter.pen();
  const double deviceScale = context.scale();
  const double baseline = context.isFlipped() ? ascent_ : leading_ + descent_;
  const double down = context.isFlipped() ? 1 : -1;
  painter.setPen(Qt::black);
  for (; segment != segments_.end() && segment->x < visible.right() + overhang_; ++segment) {
    const TextStyle& style = styles_[segment->style].style;
    if (style.isPicture) {
      painter.setWorldTransform(before);
      paintPicture(
          context, style,
          QPointF(point.x() + segment->x, point.y() + baseline - down * style.baselineOffset));
      continue;
    }
    const double pixels = style.pointSize * deviceScale;
    if (style.isEmoji && !(pixels >= minimumEmojiPixels && pixels <= maximumEmojiPixels))
      continue;
    const QTextLayout& layout = layoutOf(std::size_t(segment - segments_.begin()));
    const double scale = style.scale();
    const QTransform toUser(scale, 0, 0, down * scale, point.x() + segment->x,
                            point.y() + baseline - down * style.baselineOffset);
    painter.setWorldTransform(toUser * before);
    layout.draw(&painter, QPointF(0, -layout.lineAt(0).ascent()));
  }
  painter.setPen(pen);
  painter.setWorldTransform(before);
}

void TextLine::paintPicture(GraphicsContext& context, const TextStyle& style,
                            QPointF corner) const {
  if (!style.picture)
    return;
  const QSizeF size = style.picture->size();
  const double down = context.isFlipped() ? 1 : -1;
  if (const QBrush background = style.format.background(); background.style() != Qt::NoBrush)
    context.painter()->fillRect(
        QRectF(corner, QPointF(corner.x() + size.width(), corner.y() - down * size.height()))
            .normalized(),
        background);
  // The line has cast the shadow of all that it shows.
  std::optional<SavedGraphicsState> state;
  if (context.shadow()) {
    state.emplace(&context);
    context.setShadow(nullptr);
  }
  drawContent(context, {size, style.picture->representations()},
              QTransform(1, 0, 0, -down, corner.x(), corner.y()), QRectF(QPointF(), size),
              context.compositingOperation(), 1);
}

} // namespace zq::platform
