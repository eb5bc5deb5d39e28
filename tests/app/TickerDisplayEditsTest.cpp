// Edits of a display while it runs: nothing that is to be seen moves by a pixel.
#include "tests/app/DisplayFrames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {

class Editor {
 public:
  explicit Editor(unsigned seed) : random_(seed) { setUp(display, QSizeF(300, 24)); }

  void edit(double time) {
    const QString identifier = QString::number(below(40));
    SignOrigin origin;
    origin.priority = below(5) - 2;
    origin.fades = below(3) == 0;
    const std::vector<QueuedSign> queued = display.queuedSigns(time);
    const auto any = [&] {
      return queued.empty() ? display.addSign(sign(identifier), time)
                            : queued[static_cast<std::size_t>(below(int(queued.size())))].entry;
    };
    switch (below(8)) {
    case 0:
    case 1:
      display.addSign(sign(identifier), time, origin);
      return;
    case 2:
      display.addArrangedSign(sign(identifier), time, origin);
      return;
    case 3:
      display.replaceSign(sign(identifier), time, origin);
      return;
    case 4:
      display.removeSign(identifier, time);
      return;
    case 5:
      display.moveEntry(any(), any(), time);
      return;
    case 6:
      display.replaceEntry(any(), sign(identifier), time);
      return;
    default: {
      QStringList order;
      for (int i = 0; i < 40; ++i)
        order.append(QString::number(i));
      std::shuffle(order.begin(), order.end(), random_);
      display.arrangeSigns(order, time);
      return;
    }
    }
  }

  TickerDisplay display;

 private:
  int below(int end) { return static_cast<int>(random_() % static_cast<unsigned>(end)); }

  Ref<ZQTickerSign> sign(const QString& identifier) {
    const auto made = picture(5 + below(60), 24, QColor::fromHsv(below(360), 255, 200));
    made->setIdentifier(identifier);
    made->setLoopCount(below(4) - 1);
    made->setLoopDelay(below(3) == 0 ? below(4) : 0);
    made->setContinuousScrolling(below(2) == 0);
    return made;
  }

  std::mt19937 random_;
};

} // namespace

TEST(TickerDisplayEdits, MoveNothingThatIsToBeSeen) {
  for (unsigned seed = 1; seed <= 4; ++seed) {
    Editor editor(seed);
    for (int i = 1; i < 1000; ++i) {
      const double time = i / 10.0;
      const QImage before = shown(editor.display, time);
      editor.edit(time);
      ASSERT_EQ(shown(editor.display, time), before) << "seed " << seed << ", edit " << i;
    }
    EXPECT_GT(editor.display.strip().runs().back().number, 50u) << "there was something to be seen";
  }
}

TEST(TickerDisplayEdits, KeepWhatIsOnTheStripAtItsPace) {
  TickerDisplay display;
  setUp(display, QSizeF(300, 24));
  const auto running = picture(40, 24, Qt::red);
  running->setIdentifier(QStringLiteral("running"));
  running->setLoopCount(-1);
  const TickerDisplay::Entry entry = display.addSign(running, 0);
  TickerDisplay untouched;
  setUp(untouched, QSizeF(300, 24));
  untouched.addSign(picture(40, 24, Qt::red), 0);
  for (int i = 1; i < 300; ++i) {
    const double time = i / 60.0;
    const auto other = picture(40, 24, Qt::blue);
    other->setIdentifier(QString::number(i));
    display.moveEntry(display.addSign(other, time), entry, time);
    display.removeSign(QString::number(i), time);
    ASSERT_EQ(shown(display, time), shown(untouched, time)) << i;
  }
}
