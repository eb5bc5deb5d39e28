#include "app/queue/sign_changes.h"

#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <algorithm>

namespace zq::app {

using namespace platform;

namespace {
// `text` changed to `characters`, only where the two differ.
Ref<AttributedString> changed(const AttributedString& text, const QString& characters) {
  const QString& before = text.string();
  const qsizetype shorter = std::min(before.size(), characters.size());
  qsizetype start = 0;
  while (start < shorter && before[start] == characters[start])
    ++start;
  qsizetype end = 0;
  while (end < shorter - start &&
         before[before.size() - 1 - end] == characters[characters.size() - 1 - end])
    ++end;
  const Ref<MutableAttributedString> result = text.mutableCopy();
  result->replaceCharactersInRange(Range{start, before.size() - start - end},
                                   characters.mid(start, characters.size() - start - end));
  return std::static_pointer_cast<AttributedString>(result->AttributedString::copy());
}
} // namespace

Ref<Image> pictureOf(const Ref<ZQTickerSign>& sign) {
  if (const auto combo = std::dynamic_pointer_cast<ZQComboTickerSign>(sign))
    return combo->image();
  // The image of a text sign is its text.
  const auto image = std::dynamic_pointer_cast<ZQImageTickerSign>(sign);
  return image && !std::dynamic_pointer_cast<ZQTextTickerSign>(sign) ? image->image() : nullptr;
}

Ref<ZQTickerSign> signWithText(const Ref<ZQTickerSign>& sign, const QString& text) {
  if (const auto combo = std::dynamic_pointer_cast<ZQComboTickerSign>(sign)) {
    const Ref<ZQComboTickerSign> copy = copyOf(combo);
    const auto attributed = objectOf<AttributedString>(combo->text());
    copy->setText(attributed ? any(changed(*attributed, text)) : Any(text));
    copy->setNeedsLayout(true);
    return copy;
  }
  if (const auto textSign = std::dynamic_pointer_cast<ZQTextTickerSign>(sign)) {
    const Ref<ZQTextTickerSign> copy = copyOf(textSign);
    copy->setText(textSign->text() ? changed(*textSign->text(), text)
                                   : AttributedString::make(text));
    return copy;
  }
  if (const auto picture = std::dynamic_pointer_cast<ZQImageTickerSign>(sign)) {
    const Ref<ZQImageTickerSign> copy = copyOf(picture);
    copy->setTextRepresentation(text.isEmpty() ? std::nullopt : std::optional(text));
    return copy;
  }
  return nullptr;
}

void fitPicture(Image& image, QSizeF room) {
  const QSizeF size = image.size();
  double factor = 1;
  if (room.width() > 0 && size.width() > room.width())
    factor = room.width() / size.width();
  if (room.height() > 0 && size.height() * factor > room.height())
    factor = room.height() / size.height();
  if (factor < 1)
    image.setSize(size * factor);
}

} // namespace zq::app
