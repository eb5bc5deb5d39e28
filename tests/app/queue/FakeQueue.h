// A queue for tests of the window: a list.
#pragma once

#include "app/queue/QueueSource.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <algorithm>

namespace zq::app::testing {

class FakeQueue : public QueueSource {
 public:
  std::uint64_t revision() const override { return revision_; }
  std::vector<QueuedSign> rows() override {
    ++readings;
    return list;
  }
  Strip::Entry add(platform::Ref<ZQTickerSign> sign, const SignOrigin& origin,
                   const Strip::Entry& before) override {
    if (isFull)
      return nullptr;
    QueuedSign row = rowOf(sign);
    row.origin = origin;
    const auto place = find(before);
    return list.insert(place, row)->entry;
  }
  bool remove(const Strip::Entry& entry) override {
    const auto place = find(entry);
    if (place == list.end() || !place->isWaiting)
      return false;
    if (place->isOnStrip)
      place->isWaiting = false, place->loopsLeft = 0;
    else
      list.erase(place);
    changed();
    return true;
  }
  bool move(const Strip::Entry& entry, const Strip::Entry& before) override {
    const auto place = find(entry);
    if (place == list.end() || place->isOnStrip || entry == before)
      return false;
    const QueuedSign row = *place;
    list.erase(place);
    list.insert(find(before), row);
    changed();
    return true;
  }
  Strip::Entry replace(const Strip::Entry& entry, platform::Ref<ZQTickerSign> sign,
                       std::optional<std::int64_t> loopsLeft) override {
    const auto place = find(entry);
    if (place == list.end() || !place->isWaiting)
      return nullptr;
    QueuedSign row = rowOf(sign);
    row.origin = place->origin;
    row.loopsLeft = loopsLeft.value_or(place->loopsLeft);
    *place = row;
    return row.entry;
  }
  platform::Ref<ZQTickerSign> makeTextSign(const QString& text) override {
    return ZQTextTickerSign::make(text);
  }
  QSizeF pictureRoom() const override { return room; }

  // Adds a waiting sign at the end.
  Strip::Entry addText(const QString& text, std::int64_t loops = 1) {
    const auto sign = ZQTextTickerSign::make(text);
    sign->setLoopCount(loops);
    return add(sign, SignOrigin(), nullptr);
  }
  // Adds lines that have no sign, much faster.
  void addLines(int count) {
    for (int i = 0; i < count; ++i) {
      QueuedSign row;
      row.entry = std::make_shared<StripQueue::Entry>();
      row.text = QStringLiteral("line %1").arg(i);
      row.loopsLeft = 1;
      row.isWaiting = true;
      list.push_back(row);
    }
    changed();
  }
  // Puts the first `count` rows on the strip.
  void run(int count) {
    for (int i = 0; i < count; ++i)
      list[static_cast<std::size_t>(i)].isOnStrip = true;
    changed();
  }
  void changed() { ++revision_; }

  QStringList texts() const {
    QStringList texts;
    for (const QueuedSign& row : list)
      texts.append(row.text);
    return texts;
  }

  std::vector<QueuedSign> list;
  int readings = 0;
  bool isFull = false;
  QSizeF room;

 private:
  std::vector<QueuedSign>::iterator find(const Strip::Entry& entry) {
    return std::find_if(list.begin(), list.end(),
                        [&](const QueuedSign& row) { return row.entry == entry; });
  }
  QueuedSign rowOf(const platform::Ref<ZQTickerSign>& sign) {
    QueuedSign row;
    row.entry = std::make_shared<StripQueue::Entry>();
    row.sign = sign;
    if (const auto combo = std::dynamic_pointer_cast<ZQComboTickerSign>(sign))
      row.text = combo->text().toString();
    else if (const auto text = std::dynamic_pointer_cast<ZQTextTickerSign>(sign))
      row.text = text->description();
    else if (const auto image = std::dynamic_pointer_cast<ZQImageTickerSign>(sign))
      row.text = image->textRepresentation().value_or(QString());
    row.loopsLeft = sign->loopCount();
    row.isWaiting = true;
    changed();
    return row;
  }

  std::uint64_t revision_ = 1;
};

// A picture of one colour.
inline platform::Ref<platform::Image> plainPicture(QSize size, const QColor& color) {
  QImage pixels(size, QImage::Format_ARGB32_Premultiplied);
  pixels.fill(color);
  return platform::Image::fromQImage(pixels);
}

} // namespace zq::app::testing
