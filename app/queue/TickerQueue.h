// The running ticker's queue, as the queue window shows and changes it.
#pragma once

#include "app/queue/QueueSource.h"

#include <memory>

namespace zq::app {

class QueueWindow;
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
  Strip::Entry entryOf(const platform::Ref<ZQTickerSign>& sign);
  bool changed(bool isChanged);

  Ticker& ticker_;
};

// The queue window of a ticker, made when it is first asked for. It must go before the ticker does.
//
// Thread: main.
class TickerQueueWindow {
 public:
  explicit TickerQueueWindow(Ticker& ticker);
  ~TickerQueueWindow();
  TickerQueueWindow(const TickerQueueWindow&) = delete;

  // Shows the window in front of others.
  void show();
  bool isShown() const;

 private:
  TickerQueue queue_;
  std::unique_ptr<QueueWindow> window_;
};

} // namespace zq::app
