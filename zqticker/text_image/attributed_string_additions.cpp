#include "zqticker/text_image/attributed_string_additions.h"

#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/platform/text/TextAttachment.h"

namespace zq {

using platform::Any;
using platform::AttributedString;
using platform::Attributes;
using platform::Font;
using platform::Image;
using platform::MutableAttributedString;
using platform::Ref;
using platform::TextAttachment;

Ref<AttributedString> attributedStringWithString(const QString& string,
                                                 const Attributes& attributes) {
  return AttributedString::make(string, attributes);
}

Ref<AttributedString> attributedStringWithImage(const Ref<Image>& image, const Ref<Font>& font) {
  const Ref<Font> line = font ? font : std::make_shared<Font>();
  const double imageHeight = image ? image->size().height() : 0;
  const auto halfGap = float((line->lineHeight() - imageHeight) * 0.5);
  const auto baselineOffset = float(double(halfGap) + line->descender());
  const Ref<MutableAttributedString> text =
      AttributedString::attributedStringWithAttachment(TextAttachment::make(image))->mutableCopy();
  text->addAttribute(platform::BaselineOffsetAttributeName, Any(baselineOffset),
                     {0, text->length()});
  return platform::copyOf<AttributedString>(text);
}

namespace {

bool isLineTerminator(QChar c) {
  return c == u'\n' || c == u'\r' || c == QChar(QChar::LineSeparator) ||
         c == QChar(QChar::ParagraphSeparator);
}

} // namespace

std::vector<Ref<AttributedString>>
componentsSeparatedByLineDelimiter(const AttributedString& string) {
  const QString& characters = string.string();
  const qsizetype length = characters.size();
  std::vector<Ref<AttributedString>> lines;
  qsizetype position = 0;
  // Asked after the first line, so that empty text has one and a last terminator adds none.
  do {
    qsizetype contentsEnd = position;
    while (contentsEnd < length && !isLineTerminator(characters[contentsEnd]))
      ++contentsEnd;
    lines.push_back(string.attributedSubstringFromRange({position, contentsEnd - position}));
    const bool isPair = contentsEnd + 1 < length && characters[contentsEnd] == u'\r' &&
                        characters[contentsEnd + 1] == u'\n';
    position = contentsEnd + (isPair ? 2 : 1);
  } while (position < length);
  return lines;
}

} // namespace zq
