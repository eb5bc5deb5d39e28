// Says how often this process asks for memory while it shows frames in which nothing new comes into
// sight: "painter N" for frames that are painted, and, with the argument "native", "native N" for
// those that the X server copies.
#include "app/display/StripSurface.h"
#include "app/display/TickerDisplay.h"
#include "tests/app/DisplayFrames.h"
#include "tests/app/probe_program.h"

#include <QtGui/QPaintEvent>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>

#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;

namespace {
thread_local bool isCounting = false;
thread_local int allocations = 0;
} // namespace

// All memory but that which is mapped directly comes through these.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);

void* malloc(std::size_t size) {
  allocations += isCounting ? 1 : 0;
  return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) {
  allocations += isCounting ? 1 : 0;
  return __libc_calloc(count, size);
}
void* realloc(void* memory, std::size_t size) {
  allocations += isCounting ? 1 : 0;
  return __libc_realloc(memory, size);
}
}

namespace {
constexpr QSize Size(800, 24);
constexpr int Frames = 400;

class FullDisplay {
 public:
  FullDisplay() {
    setUp(display, Size);
    display.setEdgeFade(30);
    for (int i = 0; i < 30; ++i) {
      const auto sign = display.makeTextSign(u"Signal %1"_s.arg(i));
      sign->setLoopCount(ZQEndlessLoopCount);
      sign->setContinuousScrolling(true);
      display.addSign(sign, 0);
    }
    // Every sign has come once, and what is kept has got its size.
    for (; time_ < 60; time_ += 1.0 / 60)
      display.advanceTo(time_);
  }

  // Moves on, and shows it by `show`; what that asked for, where nothing new has come.
  template <class Show>
  int allocationsOf(Show show) {
    int most = 0;
    int counted = 0;
    for (int i = 0; i < Frames; ++i) {
      const std::uint64_t before = revision();
      time_ += 1.0 / 60;
      allocations = 0;
      isCounting = true;
      const bool isNew = display.advanceTo(time_);
      if (isNew)
        show();
      isCounting = false;
      if (revision() != before)
        continue;
      ++counted;
      most = std::max(most, allocations);
    }
    return counted > Frames / 2 ? most : -1;
  }

  TickerDisplay display;

 private:
  // Another number whenever something comes into sight or leaves.
  std::uint64_t revision() const { return display.strip().revision() + display.tiles().drawn(); }

  double time_ = 0;
};

class FrameWindow : public QWidget {
 public:
  explicit FrameWindow(const StripFrame& frame) : frame_(frame) {}
  StripSurface& surface() { return surface_; }

 protected:
  void paintEvent(QPaintEvent* event) override { surface_.paint(*event, frame_, Qt::white); }

 private:
  const StripFrame& frame_;
  StripSurface surface_{*this};
};
} // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  {
    FullDisplay full;
    QImage image(Size, QImage::Format_RGB32);
    QPainter painter(&image);
    paintFrame(painter, full.display.frame(), Qt::white);
    say(u"painter %1"_s.arg(
        full.allocationsOf([&] { paintFrame(painter, full.display.frame(), Qt::white); })));
  }
  if (application.arguments().contains(u"native"_s)) {
    FullDisplay full;
    FrameWindow window(full.display.frame());
    window.resize(Size);
    window.show();
    while (window.surface().nativeCount() < 10) {
      QApplication::processEvents();
      window.surface().show(full.display.frame(), Qt::white);
    }
    const std::uint64_t before = window.surface().nativeCount();
    const int most =
        full.allocationsOf([&] { window.surface().show(full.display.frame(), Qt::white); });
    say(u"native %1"_s.arg(window.surface().nativeCount() > before ? most : -1));
  }
  return 0;
}
