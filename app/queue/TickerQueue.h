// The running ticker's queue, as the queue window shows and changes it.
#pragma once

#include "app/queue/QueueSource.h"

namespace zq::app {

class Ticker;

// Thread: main.
class TickerQueue : public QueueSource {
 public:
  // With so many signs that wait, no more are added.
  static constexpr std::size_t MostWaiting = 100'000;

  // `ticker` must outlive the queue.
  explicit TickerQueue(Ticker& ticker);
  ~TickerQueue() override;

  std::uint64_t revision() const override;
  std::vector<QueuedSign> rows() override;
  Strip::Entry add(platform::Ref<ZQTickerSign> sign, const SignOrigin& origin,
                   const Strip::Entry& before) override;
  bool remove(const Strip::Entry& entry) override;
  bool move(const Strip::Entry& entry, const Strip::Entry& before) override;
  Strip::Entry replace(const Strip::Entry& entry, platform::Ref<ZQTickerSign> sign,
                       std::optional<std::int64_t> loopsLeft) override;
  platform::Ref<ZQTickerSign> makeTextSign(const QString& text) override;
  QSizeF pictureRoom() const override;

 private:
  bool changed(bool isChanged);

  Ticker& ticker_;
};

} // namespace zq::app
