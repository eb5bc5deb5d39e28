#include "zqticker/platform/text/TextStyle_p.h"

#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/FontFace_p.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/TextAttachment.h"

#include <QtGui/QBrush>

#include <algorithm>
#include <cmath>

namespace zq::platform {

// The kern is limited to so many ems, which keeps a segment within the layout's number range.
static constexpr double MaximumKern = 8;

// A number, or 0 for what is none.
static double numberOf(const Attributes& attributes, QLatin1StringView name) {
  const auto found = attributes.constFind(name);
  if (found == attributes.constEnd() || objectOf(*found))
    return 0;
  const double number = found->toDouble();
  return std::isfinite(number) ? number : 0;
}

static Ref<Color> colorOf(const Attributes& attributes, QLatin1StringView name) {
  const auto found = attributes.constFind(name);
  return found == attributes.constEnd() ? nullptr : objectOf<Color>(*found);
}

TextStyle TextStyle::from(const Attributes& attributes) {
  TextStyle style;
  Ref<Font> font;
  if (const auto found = attributes.constFind(FontAttributeName); found != attributes.constEnd())
    font = objectOf<Font>(*found);
  if (!font)
    font = std::make_shared<Font>();
  style.face = FontFace::named(font->fontName());
  style.pointSize = font->pointSize();
  style.kern = numberOf(attributes, KernAttributeName);
  style.baselineOffset = numberOf(attributes, BaselineOffsetAttributeName);

  if (const auto found = attributes.constFind(AttachmentAttributeName);
      found != attributes.constEnd())
    if (const auto attachment = objectOf<TextAttachment>(*found)) {
      style.isPicture = true;
      // The image may change while the layout is kept.
      if (const Ref<TextAttachmentCell>& cell = attachment->attachmentCell())
        style.picture = copyOf(cell->image());
    }

  const Ref<Color> color = colorOf(attributes, ForegroundColorAttributeName);
  style.format.setForeground(color ? color->qColor() : QColor(Qt::black));
  if (const Ref<Color> background = colorOf(attributes, BackgroundColorAttributeName))
    style.format.setBackground(background->qColor());
  if (numberOf(attributes, UnderlineStyleAttributeName) != 0)
    style.format.setUnderlineStyle(QTextCharFormat::SingleUnderline);
  if (const Ref<Color> underline = colorOf(attributes, UnderlineColorAttributeName))
    style.format.setUnderlineColor(underline->qColor());
  if (numberOf(attributes, StrikethroughStyleAttributeName) != 0)
    style.format.setFontStrikeOut(true);
  return style;
}

double TextStyle::scale() const {
  return pointSize / FontFace::ReferenceSize;
}

double TextStyle::kernInEms() const {
  return std::clamp(kern / pointSize, -MaximumKern, MaximumKern);
}

QFont TextStyle::layoutFont() const {
  const std::shared_ptr<const FontFace> emoji = isEmoji ? FontFace::emoji() : nullptr;
  QFont font = emoji ? emoji->layoutFont() : face->layoutFont();
  if (kern != 0)
    font.setLetterSpacing(QFont::AbsoluteSpacing, kernInEms() * FontFace::ReferenceSize);
  return font;
}

bool TextStyle::measuresLike(const TextStyle& other) const {
  return !isPicture && !other.isPicture && face == other.face && isEmoji == other.isEmoji &&
         pointSize == other.pointSize && kern == other.kern &&
         baselineOffset == other.baselineOffset;
}

} // namespace zq::platform
