#include "zqticker/platform/text/TextLine_p.h"

#include "zqticker/platform/graphics/FontFace_p.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/image_drawing_p.h"
#include "zqticker/platform/graphics/shadow_drawing_p.h"
#include "zqticker/platform/text/ParagraphStyle.h"
#include "zqticker/platform/text/TextAttachment.h"
#include "zqticker/platform/text/bidi_p.h"
#include "zqticker/platform/text/emoji_p.h"
#include "zqticker/platform/text/line_breaks_p.h"

#include <QtGui/QPainter>
#include <QtGui/QTextLayout>

#include <algorithm>
#include <atomic>
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

constexpr char16_t zeroWidthSpace = 0x200b;

// What stands for `text[i]` on one line.
char16_t onOneLine(const QString& text, qsizetype i) {
  const QChar c = text[i];
  switch (c.unicode()) {
  case u'\n':
    return i > 0 && text[i - 1] == u'\r' ? zeroWidthSpace : u' ';
  case u'\r':
  case u'\t':
  case u'\v':
  case u'\f':
  case 0x85:
  case QChar::LineSeparator:
  case QChar::ParagraphSeparator:
    return u' ';
  default:
    break;
  }
  if (c.unicode() < 0x20 || (c.unicode() >= 0x7f && c.unicode() < 0xa0))
    return zeroWidthSpace;
  const bool isLone =
      (c.isHighSurrogate() && (i + 1 == text.size() || !text[i + 1].isLowSurrogate())) ||
      (c.isLowSurrogate() && (i == 0 || !text[i - 1].isHighSurrogate()));
  return isLone ? char16_t(QChar::ReplacementCharacter) : c.unicode();
}

QString onOneLine(const QString& text) {
  QString line(text.size(), Qt::Uninitialized);
  for (qsizetype i = 0; i < text.size(); ++i)
    line[i] = onOneLine(text, i);
  return line;
}

bool isAttachmentCharacter(QChar c) {
  return c == QChar(TextAttachment::AttachmentCharacter);
}

// Whether the unit at `i` belongs to the character before it: a run that begins there would tear
// a letter from its marks, or an emoji from its parts.
bool continuesCharacter(const QString& text, qsizetype i) {
  constexpr char16_t joiner = 0x200d;
  const QChar c = text[i];
  // Pictures stand for themselves.
  if (i == 0 || isAttachmentCharacter(c) || isAttachmentCharacter(text[i - 1]))
    return false;
  const bool isSkinTone = c == QChar(0xd83c) && i + 1 < text.size() &&
                          text[i + 1] >= QChar(0xdffb) && text[i + 1] <= QChar(0xdfff);
  return c.isMark() || c == QChar(joiner) || text[i - 1] == QChar(joiner) || isSkinTone ||
         (c.isLowSurrogate() && text[i - 1].isHighSurrogate());
}

std::optional<bool> directionOf(const std::vector<AttributedString::Run>& runs) {
  if (runs.empty())
    return std::nullopt;
  const auto style =
      objectOf<ParagraphStyle>(runs.front().attributes.value(ParagraphStyleAttributeName));
  if (!style || style->settings().writingDirection == WritingDirection::Natural)
    return std::nullopt;
  return style->settings().writingDirection == WritingDirection::RightToLeft;
}

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

static std::atomic<quint64> lastIdentifier = 0;

TextLine::~TextLine() = default;

TextLine::TextLine(const QString& text, const std::vector<AttributedString::Run>& runs,
                   const Attributes& ifEmpty)
    : identifier_(++lastIdentifier), text_(onOneLine(text)) {
  if (text_.isEmpty()) {
    const TextStyle style = TextStyle::from(ifEmpty);
    ascent_ = style.face->ascent() * style.pointSize;
    descent_ = style.face->descent() * style.pointSize;
    leading_ = style.face->leading() * style.pointSize;
    return;
  }
  for (const AttributedString::Run& run : runs) {
    qsizetype start = run.range.location;
    while (start < run.range.end() && continuesCharacter(text_, start))
      ++start;
    if (!styles_.empty())
      styles_.back().end = start;
    if (start < run.range.end())
      styles_.push_back({start, run.range.end(), TextStyle::from(run.attributes)});
  }
  if (styles_.empty())
    styles_.push_back({0, text_.size(), TextStyle::from({})});
  styles_.front().start = 0;
  styles_.back().end = text_.size();

  markPictures();
  markEmoji();

  const std::vector<DirectionRun> directions = directionRuns(text_, directionOf(runs));
  // The order is known now; what directed it must not do so again within a segment.
  for (QChar& c : text_)
    if (isDirectionControl(c.unicode())) {
      forcesDirection_ |= isDirectionOverride(c.unicode());
      c = QChar(zeroWidthSpace);
    }

  // The parts of each direction run that measure alike, in visual order.
  for (const DirectionRun& run : directions) {
    const qsizetype end = run.start + run.length;
    auto style =
        std::partition_point(styles_.begin(), styles_.end(),
                             [&](const StyledRange& range) { return range.end <= run.start; });
    std::vector<std::size_t> starts;
    for (; style != styles_.end() && style->start < end; ++style)
      if (starts.empty() || !style->style.measuresLike(styles_[starts.back()].style))
        starts.push_back(std::size_t(style - styles_.begin()));
    const std::size_t count = starts.size();
    for (std::size_t i = 0; i < count; ++i) {
      const std::size_t part = run.rightToLeft ? count - 1 - i : i;
      const qsizetype from = std::max(run.start, styles_[starts[part]].start);
      const qsizetype to = part + 1 < count ? styles_[starts[part + 1]].start : end;
      cut(from, to, starts[part], run.rightToLeft);
    }
  }
}

void TextLine::markPictures() {
  const auto isPicture = [](const StyledRange& range) { return range.style.isPicture; };
  if (std::none_of(styles_.begin(), styles_.end(), isPicture))
    return;
  std::vector<StyledRange> marked;
  for (const StyledRange& styled : styles_) {
    if (!styled.style.isPicture) {
      marked.push_back(styled);
      continue;
    }
    for (qsizetype start = styled.start; start < styled.end;) {
      const bool pictures = isAttachmentCharacter(text_[start]);
      marked.push_back(styled);
      marked.back().start = start;
      while (start < styled.end && isAttachmentCharacter(text_[start]) == pictures)
        ++start;
      marked.back().end = start;
      if (!pictures) {
        marked.back().style.isPicture = false;
        marked.back().style.picture.reset();
      }
    }
  }
  styles_ = std::move(marked);
}

void TextLine::markEmoji() {
  const std::vector<Range> emoji = emojiRanges(text_);
  if (emoji.empty() || !FontFace::emoji())
    return;
  std::vector<StyledRange> marked;
  auto range = emoji.begin();
  for (const StyledRange& styled : styles_) {
    for (qsizetype start = styled.start; start < styled.end;) {
      while (range != emoji.end() && range->end() <= start)
        ++range;
      const bool inside = range != emoji.end() && range->location <= start;
      const qsizetype limit = range == emoji.end() ? styled.end
                              : inside             ? range->end()
                                                   : range->location;
      marked.push_back(styled);
      marked.back().start = start;
      marked.back().end = start = std::min(limit, styled.end);
      marked.back().style.isEmoji = inside;
    }
  }
  styles_ = std::move(marked);
}

void TextLine::cut(qsizetype start, qsizetype end, std::size_t style, bool rightToLeft) {
  const TextStyle& shown = styles_[style].style;
  if (shown.isPicture)
    return placePictures(start, end, style, rightToLeft);
  const QFont font = shown.layoutFont();
  std::vector<qsizetype> breaks{start};
  while (breaks.back() < end)
    breaks.push_back(shown.isEmoji ? nextEmojiBreak(text_, breaks.back(), end)
                                   : nextBreak(text_, breaks.back(), end,
                                               {font, rightToLeft, forcesDirection_}));
  const std::size_t count = breaks.size() - 1;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t part = rightToLeft ? count - 1 - i : i;
    segments_.push_back(
        {breaks[part], breaks[part + 1] - breaks[part], style, rightToLeft, width_, nullptr});
    const Segment& segment = segments_.back();
    if (shown.isEmoji && shown.kern == 0) {
      for (qsizetype at = segment.start; at < segment.start + segment.length;) {
        const qsizetype next = std::max(at + 1, endOfEmoji(text_, at));
        add(emojiExtent(text_.mid(at, next - at), font), shown);
        at = next;
      }
    } else {
      add(extentOf(layoutOf(segments_.size() - 1)), shown);
    }
  }
}

void TextLine::add(const TextExtent& extent, const TextStyle& style) {
  const double scale = style.scale();
  // Marks without a letter may step back; the line never does.
  width_ += std::max(0.0, extent.width) * scale;
  // The run's own font counts even where others stand in for all of its characters.
  ascent_ =
      std::max(ascent_, std::max(extent.ascent * scale, style.face->ascent() * style.pointSize) +
                            style.baselineOffset);
  descent_ =
      std::max(descent_, std::max(extent.descent * scale, style.face->descent() * style.pointSize) -
                             style.baselineOffset);
  leading_ = std::max(leading_, style.face->leading() * style.pointSize);
  // Slanted letters and swashes leave their box by less than this.
  overhang_ = std::max(overhang_, 2 * style.pointSize);
}

void TextLine::placePictures(qsizetype start, qsizetype end, std::size_t style, bool rightToLeft) {
  const TextStyle& shown = styles_[style].style;
  const QSizeF size = shown.picture ? shown.picture->size() : QSizeF(0, 0);
  const double advance = std::max(0.0, size.width() + shown.kernInEms() * shown.pointSize);
  for (qsizetype i = 0; i < end - start; ++i) {
    segments_.push_back(
        {rightToLeft ? end - 1 - i : start + i, 1, style, rightToLeft, width_, nullptr});
    width_ += advance;
  }
  if (shown.picture) {
    ascent_ = std::max(ascent_, size.height() + shown.baselineOffset);
    descent_ = std::max(descent_, -shown.baselineOffset);
  }
  // Pictures are moved to whole pixels, and stay as wide as they are where the kern is negative.
  overhang_ = std::max({overhang_, 1.0, size.width() - advance});
}

const QTextLayout& TextLine::layoutOf(std::size_t index) const {
  Segment& segment = segments_[index];
  if (segment.layout)
    return *segment.layout;
  while (!kept_.empty() && keptLength_ + segment.length > maximumKeptLength) {
    Segment& oldest = segments_[kept_.front()];
    oldest.layout.reset();
    keptLength_ -= oldest.length;
    kept_.pop_front();
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

void TextLine::draw(const std::shared_ptr<const TextLine>& line, GraphicsContext& context,
                    QPointF point) {
  if (context.isRecording())
    context.perform([=](GraphicsContext& target) { line->paint(target, point); });
  else
    line->paint(context, point);
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
