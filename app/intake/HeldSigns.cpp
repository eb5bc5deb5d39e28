#include "app/intake/HeldSigns.h"

#include "app/intake/message_pictures.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/platform/text/TextAttachment.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
constexpr qint64 BytesPerPixel = 4;
// A long line with its layout, measured at 55 MB for a million.
constexpr qint64 BytesPerCharacter = 64;
constexpr qint64 BytesPerRun = 1024;
constexpr qint64 BytesPerSign = 4096;

// Pictures that stand in a text, or that it is painted with.
qint64 pixelsOf(const Any& attribute) {
  const Ref<Object> object = objectOf(attribute);
  if (const auto color = std::dynamic_pointer_cast<Color>(object))
    return pixelCountOf(color->patternImage());
  const auto attachment = std::dynamic_pointer_cast<TextAttachment>(object);
  return attachment && attachment->attachmentCell()
             ? pixelCountOf(attachment->attachmentCell()->image())
             : 0;
}

qint64 memoryOf(const Ref<AttributedString>& text) {
  if (!text)
    return 0;
  qint64 bytes = text->length() * BytesPerCharacter;
  for (const AttributedString::Run& run : text->runs()) {
    bytes += BytesPerRun;
    for (const Any& attribute : run.attributes)
      bytes += pixelsOf(attribute) * BytesPerPixel;
  }
  return bytes;
}

// What the signs of a sender, of a connection, or of all take together.
struct Sum {
  SenderLimits::Scope scope;
  const SenderAllowance& allowance;
  QString whose; // of one sender
  std::size_t count = 0;
  qint64 memory = 0;
};
} // namespace

std::optional<SenderLimits::Refusal> HeldSigns::refusal(const SenderKey& sender,
                                                        const QString& identifier, qint64 memory) {
  held_.erase(std::remove_if(held_.begin(), held_.end(),
                             [](const Held& held) { return held.sign.expired(); }),
              held_.end());
  using Scope = SenderLimits::Scope;
  Sum sums[] = {{Scope::Sender, OneSender, u"of one sender"_s},
                {Scope::Connection, OneConnection, u"of one program"_s},
                {Scope::All, AllSenders, u"of all senders"_s}};
  for (const Held& held : held_) {
    const Ref<ZQTickerSign> sign = held.sign.lock();
    if (!identifier.isEmpty() && sign->identifier() == identifier)
      continue;
    const bool counts[] = {held.sender.identifier == sender.identifier,
                           held.sender.connection == sender.connection, true};
    for (std::size_t i = 0; i < std::size(sums); ++i)
      if (counts[i]) {
        ++sums[i].count;
        sums[i].memory += held.memory;
      }
  }
  for (const Sum& sum : sums) {
    if (sum.count >= sum.allowance.signCount)
      return SenderLimits::Refusal{
          sum.scope, u"%1 signs %2 are queued already"_s.arg(sum.count).arg(sum.whose)};
    if (sum.memory + memory > sum.allowance.memory)
      return SenderLimits::Refusal{
          sum.scope,
          u"the signs %1 that are queued take %2 MiB"_s.arg(sum.whose).arg(sum.memory >> 20)};
  }
  return std::nullopt;
}

void HeldSigns::add(const Ref<ZQTickerSign>& sign, const SenderKey& sender, qint64 memory) {
  held_.push_back({sign, sender, memory});
}

std::size_t HeldSigns::count() {
  return std::size_t(std::count_if(held_.begin(), held_.end(),
                                   [](const Held& held) { return !held.sign.expired(); }));
}

qint64 memoryOf(const ZQTickerSign& sign) {
  qint64 bytes = BytesPerSign;
  if (const auto* combo = dynamic_cast<const ZQComboTickerSign*>(&sign)) {
    bytes += pixelCountOf(combo->image()) * BytesPerPixel;
    if (const auto styled = objectOf<AttributedString>(combo->text()))
      bytes += memoryOf(styled);
    else
      bytes += combo->text().toString().size() * BytesPerCharacter;
  } else if (const auto* text = dynamic_cast<const ZQTextTickerSign*>(&sign)) {
    bytes += memoryOf(text->text());
  } else if (const auto* picture = dynamic_cast<const ZQImageTickerSign*>(&sign)) {
    bytes += pixelCountOf(picture->image()) * BytesPerPixel;
  }
  return bytes;
}

} // namespace zq::app
