// What rollover buttons cost, beside two kinds of QPushButton of the same size, font and title:
// with the style Fusion, and with a style sheet that has a gradient, round corners and a hover
// look.
//
// Redraw…        one redraw into an image, by QWidget::render:
//   …Normal, …Over, …Pressed, …On, …Disabled   each look: a gradient, shadows, a frame
//   …Flat, …Bilinear, …WithoutShadows          the normal look with other shading, without shadows
//   …Arrow                                     with a menu, and the arrow that says so
//   …Nothing                                   a widget that draws nothing: the floor
// FirstShow…     making 1,000 buttons in one window and painting them the first time; the heap that
//                a button takes by then
// Sweep…         moving the pointer from each of the 1,000 buttons to the next, with the redraws
// that
//                follow; a time for each button
#include "benchmarks/ratio_main.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/rollover/ZQRollOverButton.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"
#include "zqticker/rollover/ZQRollOverButtonCell.h"

#include <QtGui/QEnterEvent>
#include <QtGui/QPainter>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyleFactory>

#include <malloc.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

constexpr QSize ButtonSize(100, 22);
constexpr int Columns = 20;
constexpr int Buttons = 1000;

enum class Look { Normal, Over, Pressed, On, Disabled, Flat, Bilinear, WithoutShadows, Arrow };

QString buttonTitle() {
  return u"Play all"_s;
}

void enter(QWidget& widget) {
  widget.setAttribute(Qt::WA_UnderMouse);
  const QPointF point(5, 5);
  QEnterEvent event(point, widget.mapTo(widget.window(), point), widget.mapToGlobal(point));
  QApplication::sendEvent(&widget, &event);
}

void press(QWidget& widget) {
  const QPointF point(5, 5);
  QMouseEvent event(QEvent::MouseButtonPress, point, widget.mapToGlobal(point), Qt::LeftButton,
                    Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&widget, &event);
}

class RollOverButton : public ZQRollOverButton {
  Q_OBJECT

 public:
  explicit RollOverButton(QWidget* parent)
      : RollOverButtonClass(this),
        ZQRollOverButton(QRectF(QPointF(), ButtonSize), buttonTitle(), parent) {
    static const bool hasAppearance = [] {
      setAppearance<RollOverButton>(lightAppearance());
      return true;
    }();
    Q_UNUSED(hasAppearance);
  }

  void show(Look look) {
    switch (look) {
    case Look::Over:
      return enter(*this);
    case Look::Pressed:
      return press(*this);
    case Look::On:
      setButtonType(ButtonType::OnOff);
      return setState(CellState::On);
    case Look::Disabled:
      return setEnabled(false);
    case Look::Flat:
      return ownAppearance().setShadingMode(ZQShadingModeFlat);
    case Look::Bilinear:
      return ownAppearance().setShadingMode(ZQShadingModeBilinear);
    case Look::WithoutShadows:
      ownAppearance().setControlShadow(nullptr);
      return ownAppearance().setTextShadow(nullptr);
    case Look::Arrow:
      ownAppearance().setAlwaysShowMenuIndicator(true);
      return cell()->setMenu(Menu::make(std::make_unique<QMenu>()));
    case Look::Normal:
      return;
    }
  }

 private:
  static Ref<Shadow> shadow(double x, double y, double blurRadius, const QColor& color) {
    return std::make_shared<Shadow>(QSizeF(x, y), blurRadius, Color::fromQColor(color));
  }

  static Ref<ZQRollOverButtonAppearance> lightAppearance() {
    const auto color = [](QRgb rgb) { return Color::fromQColor(QColor(rgb)); };
    const auto look = std::make_shared<ZQRollOverButtonAppearance>();
    look->setControlColor(color(0xffffff));
    look->setShadingColor(color(0xe9ecf1));
    look->setFrameColor(color(0xa7aeb9));
    look->setTextColor(color(0x262a31));
    look->setArrowColor(color(0x5a616c));
    look->setMouseoverControlColor(color(0xffffff));
    look->setMouseoverShadingColor(color(0xdfeafb));
    look->setMouseoverFrameColor(color(0x4f80cc));
    look->setMouseoverTextColor(color(0x10264a));
    look->setMouseoverArrowColor(color(0x2f5fae));
    look->setHighlightedControlColor(color(0xcdd5e0));
    look->setHighlightedShadingColor(color(0xb9c3d1));
    look->setHighlightedFrameColor(color(0x7a8494));
    look->setHighlightedTextColor(color(0x141a24));
    look->setHighlightedArrowColor(color(0x3b4350));
    look->setControlShadow(shadow(0, -1, 1.5, QColor(27, 36, 51, 38)));
    look->setTextShadow(shadow(0, -1, 0, QColor(255, 255, 255, 179)));
    look->setMouseoverTextShadow(shadow(0, -1, 0, QColor(255, 255, 255, 204)));
    look->setHighlightedTextShadow(shadow(0, -1, 0, QColor(255, 255, 255, 89)));
    look->setHighlightedControlShadow(shadow(0, 1, 0, QColor(0xaeb8c6)));
    look->setBezelStyle(6);
    look->setShadingMode(ZQShadingModeLinear);
    look->setBordered(true);
    look->setPopUpMenuDelay(0.35);
    return look;
  }

  ZQRollOverButtonAppearance& ownAppearance() {
    const auto own = std::static_pointer_cast<ZQRollOverButtonAppearance>(lightAppearance());
    dynamic_cast<ZQRollOverButtonCell&>(*cell()).setAppearance(own);
    return *own;
  }
};

class PeerButton : public QPushButton {
 public:
  explicit PeerButton(QWidget* parent) : QPushButton(buttonTitle(), parent) {
    resize(ButtonSize);
    QFont bold = font();
    bold.setFamily(u"DejaVu Sans"_s);
    bold.setPixelSize(13);
    bold.setBold(true);
    setFont(bold);
  }

  void show(Look look) {
    switch (look) {
    case Look::Over:
      return enter(*this);
    case Look::Pressed:
      return setDown(true);
    case Look::On:
      setCheckable(true);
      return setChecked(true);
    case Look::Disabled:
      return setEnabled(false);
    case Look::Arrow:
      return setMenu(new QMenu(this));
    default:
      return;
    }
  }
};

struct RollOver {
  using Button = RollOverButton;
  static void prepare(QWidget&) {}
};

struct Fusion {
  using Button = PeerButton;
  static void prepare(QWidget&) {}
};

struct StyleSheet {
  using Button = PeerButton;
  // One sheet for the whole window, as programs have it.
  static void prepare(QWidget& window) {
    window.setStyleSheet(uR"(
      QPushButton { border: 1px solid #a7aeb9; border-radius: 4px; color: #262a31;
        background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 #ffffff, stop:1 #e9ecf1); }
      QPushButton:hover { border-color: #4f80cc; color: #10264a;
        background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 #ffffff, stop:1 #dfeafb); }
      QPushButton:pressed, QPushButton:checked { border-color: #7a8494; color: #141a24;
        background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 #cdd5e0, stop:1 #b9c3d1); }
      QPushButton:disabled { color: #80262a31; })"_s);
  }
};

void measureRedraw(benchmark::State& state, QWidget& widget) {
  QImage canvas(ButtonSize, QImage::Format_ARGB32_Premultiplied);
  canvas.fill(Qt::white);
  QPainter painter(&canvas);
  for (auto _ : state)
    widget.render(&painter, QPoint(), QRegion(), QWidget::RenderFlags());
}

template <class Candidate, Look look>
void Redraw(benchmark::State& state) {
  QWidget window;
  Candidate::prepare(window);
  typename Candidate::Button button(&window);
  button.move(10, 10);
  window.show();
  QCoreApplication::processEvents();
  button.show(look);
  QCoreApplication::processEvents();
  measureRedraw(state, button);
}

void RedrawNothing(benchmark::State& state) {
  QWidget window;
  QWidget nothing(&window);
  nothing.resize(ButtonSize);
  window.show();
  QCoreApplication::processEvents();
  measureRedraw(state, nothing);
}
BENCHMARK(RedrawNothing);

template <class Candidate>
std::unique_ptr<QWidget> makeWindow() {
  auto window = std::make_unique<QWidget>();
  Candidate::prepare(*window);
  window->resize(Columns * 110 + 10, Buttons / Columns * 30 + 10);
  for (int i = 0; i < Buttons; ++i)
    (new typename Candidate::Button(window.get()))
        ->move(10 + i % Columns * 110, 10 + i / Columns * 30);
  return window;
}

template <class Candidate>
void FirstShow(benchmark::State& state) {
  double heap = 0;
  for (auto _ : state) {
    const auto before = mallinfo2().uordblks;
    const auto window = makeWindow<Candidate>();
    window->show();
    QCoreApplication::processEvents();
    state.PauseTiming();
    heap = double(mallinfo2().uordblks) - double(before);
    state.ResumeTiming();
    window->hide();
  }
  state.counters["heap_per_button"] = heap / Buttons;
}

// Counts paint events, so that it can be seen whether each step was painted.
class PaintCounter : public QObject {
 public:
  bool eventFilter(QObject*, QEvent* event) override {
    count += event->type() == QEvent::Paint;
    return false;
  }
  int count = 0;
};

template <class Candidate>
void Sweep(benchmark::State& state) {
  const auto window = makeWindow<Candidate>();
  window->show();
  QCoreApplication::processEvents();
  PaintCounter paints;
  const auto buttons = window->template findChildren<typename Candidate::Button*>();
  for (auto* button : buttons)
    button->installEventFilter(&paints);
  for (auto _ : state)
    for (const auto* button : buttons) {
      QTest::mouseMove(window->windowHandle(), button->geometry().center());
      // What would wait for the screen.
      QEvent update(QEvent::UpdateRequest);
      QCoreApplication::sendEvent(window.get(), &update);
    }
  state.counters["paints_per_button"] =
      double(paints.count) / double(Buttons) / double(state.iterations());
  state.SetItemsProcessed(state.iterations() * Buttons);
}

template <Look look>
void addRedraw(const std::string& name, BenchmarkPairs& pairs) {
  const std::string ours = "Redraw" + name;
  benchmark::RegisterBenchmark(ours.c_str(), Redraw<RollOver, look>);
  benchmark::RegisterBenchmark((ours + "StyleSheet").c_str(), Redraw<StyleSheet, look>);
  benchmark::RegisterBenchmark((ours + "Fusion").c_str(), Redraw<Fusion, look>);
  pairs.emplace_back(ours, ours + "StyleSheet");
  pairs.emplace_back(ours, ours + "Fusion");
}

// Beside the peers' normal look.
template <Look look>
void addNormalRedraw(const std::string& name, BenchmarkPairs& pairs) {
  const std::string ours = "Redraw" + name;
  benchmark::RegisterBenchmark(ours.c_str(), Redraw<RollOver, look>);
  pairs.emplace_back(ours, "RedrawNormalStyleSheet");
  pairs.emplace_back(ours, "RedrawNormalFusion");
}

using Measurement = void(benchmark::State&);

void addThousand(const std::string& name, Measurement* ours, Measurement* styleSheet,
                 Measurement* fusion, BenchmarkPairs& pairs) {
  for (const auto& [suffix, measurement] :
       {std::pair("", ours), std::pair("StyleSheet", styleSheet), std::pair("Fusion", fusion)})
    benchmark::RegisterBenchmark((name + suffix).c_str(), measurement)
        ->Unit(benchmark::kMillisecond)
        ->Iterations(3);
  pairs.emplace_back(name, name + "StyleSheet");
  pairs.emplace_back(name, name + "Fusion");
}

} // namespace

int main(int argc, char** argv) {
  BenchmarkPairs pairs;
  addRedraw<Look::Normal>("Normal", pairs);
  addRedraw<Look::Over>("Over", pairs);
  addRedraw<Look::Pressed>("Pressed", pairs);
  addRedraw<Look::On>("On", pairs);
  addRedraw<Look::Disabled>("Disabled", pairs);
  addRedraw<Look::Arrow>("Arrow", pairs);
  addNormalRedraw<Look::Flat>("Flat", pairs);
  addNormalRedraw<Look::Bilinear>("Bilinear", pairs);
  addNormalRedraw<Look::WithoutShadows>("WithoutShadows", pairs);
  addThousand("FirstShow", FirstShow<RollOver>, FirstShow<StyleSheet>, FirstShow<Fusion>, pairs);
  addThousand("Sweep", Sweep<RollOver>, Sweep<StyleSheet>, Sweep<Fusion>, pairs);
  qputenv("QT_STYLE_OVERRIDE", "Fusion");
  return runBenchmarks<QApplication>(argc, argv, std::move(pairs), {"heap_per_button"});
}

#include "button_benchmark.moc"
