// Two windows that show the same frames of a strip, one above the other: the upper one by QPainter,
// the lower one as StripSurface finds best. What it does it is told on standard input, a command a
// line, and says "done" and how many frames the lower window has shown within the X server.
//
//   scene NAME SECONDS   shows a display of this name at this time
//   cover, uncover       puts another window over the middle of both, and takes it away
//   child, childless     shows a part of the windows on their right ends, and hides it
//   again                makes the lower window anew
//   lose                 ends the connection for the lower window
//   reference FILE       writes the first sign of the scene, drawn without a strip
//   pixmaps              besides says how many pictures are in the server
#include "app/display/SignItem.h"
#include "app/display/StripSurface.h"
#include "app/display/TickerDisplay.h"
#include "app/x11/PixmapSurface.h"
#include "app/x11/XConnection.h"
#include "tests/app/DisplayFrames.h"
#include "tests/app/probe_program.h"
#include "zqticker/platform/graphics/GraphicsContext.h"

#include <QtCore/QSocketNotifier>
#include <QtGui/QPaintEvent>
#include <QtWidgets/QApplication>

#include <cmath>
#include <iostream>
#include <string>

#include <sys/socket.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {
constexpr int WindowDistance = 100;
constexpr int ChildWidth = 60;

class FrameWindow : public QWidget {
 public:
  explicit FrameWindow(const QRect& geometry)
      : QWidget(nullptr, Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint),
        child_(new QWidget(this)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setGeometry(geometry);
    child_->setGeometry(width() - ChildWidth, 0, ChildWidth, height());
    child_->setAutoFillBackground(true);
    child_->setPalette(QPalette(Qt::darkGreen));
    child_->hide();
  }

  StripSurface& surface() { return surface_; }
  QWidget& child() { return *child_; }
  void show(const StripFrame& frame, const QColor& background) {
    frame_ = frame;
    background_ = background;
    surface_.show(frame_, background_);
  }
  void makeAnew() {
    hide();
    destroy();
    setVisible(true);
  }
  using QWidget::show;

 protected:
  void paintEvent(QPaintEvent* event) override { surface_.paint(*event, frame_, background_); }

 private:
  StripFrame frame_;
  QColor background_ = Qt::white;
  StripSurface surface_{*this};
  QWidget* child_;
};

// A picture whose pixels all differ in color and opacity.
Ref<ZQImageTickerSign> shadedPicture(int width, int height) {
  QImage image(width, height, QImage::Format_ARGB32);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      image.setPixel(x, y, qRgba((x * 5) % 256, (y * 9) % 256, (x * y) % 256, (x * 3 + y) % 256));
  const auto sign = ZQImageTickerSign::make(Image::fromQImage(image));
  sign->setLoopCount(ZQEndlessLoopCount);
  sign->setContinuousScrolling(true);
  return sign;
}

class Probe : public QObject {
 public:
  explicit Probe(const QSize& size)
      : upper_(QRect(QPoint(0, 0), size)), lower_(QRect(QPoint(0, WindowDistance), size)) {
    upper_.surface().setWay(StripSurface::Way::Painter);
    cover_.setGeometry(size.width() / 3, 0, size.width() / 3, WindowDistance + size.height());
    upper_.show();
    lower_.show();
  }

  void perform(const QStringList& words) {
    const QString& command = words.value(0);
    if (command == "scene"_L1)
      showScene(words.value(1), words.value(2).toDouble());
    else if (command == "cover"_L1 || command == "uncover"_L1)
      cover_.setVisible(command == "cover"_L1);
    else if (command == "child"_L1 || command == "childless"_L1)
      for (FrameWindow* window : {&upper_, &lower_})
        window->child().setVisible(command == "child"_L1);
    else if (command == "again"_L1)
      lower_.makeAnew();
    else if (command == "lose"_L1)
      ::shutdown(xcb_get_file_descriptor(XConnection::shared()->get()), SHUT_RDWR);
    else if (command == "reference"_L1)
      writeReference(words.value(1));
    QString pixmaps;
    if (command == "pixmaps"_L1 && lower_.surface().native())
      pixmaps = u" %1"_s.arg(lower_.surface().native()->pixmapCount());
    say(u"done %1"_s.arg(lower_.surface().nativeCount()) + pixmaps);
  }

 private:
  void showScene(const QString& name, double seconds) {
    const double scale = lower_.devicePixelRatioF();
    const bool isDark = name == "dark"_L1;
    display_ = std::make_unique<TickerDisplay>();
    setUp(*display_, lower_.size(), !name.startsWith("vertical"_L1), scale);
    if (isDark)
      display_->setDefaultTextColor(Color::deviceRGB(1, 1, 0.5));
    SignOrigin origin;
    origin.fades = name == "fading"_L1;
    if (name == "shaded"_L1 || name == "fading"_L1 || name == "touching"_L1) {
      for (int i = 0; i < 5; ++i)
        display_->addSign(shadedPicture(40 + 30 * i, 24), 0, origin);
    } else {
      for (int i = 0; i < 8; ++i) {
        const auto sign = display_->makeTextSign(u"Signal %1, ÄÖÜ gjpq|"_s.arg(i));
        sign->setLoopCount(ZQEndlessLoopCount);
        sign->setContinuousScrolling(true);
        display_->addSign(sign, 0);
      }
    }
    if (name == "ends"_L1 || name == "verticalends"_L1)
      display_->setEdgeFade(name == "ends"_L1 ? 70 : 9);
    display_->advanceTo(seconds);
    StripFrame frame = display_->frame();
    if (name == "touching"_L1)
      for (std::size_t i = 0; i < frame.pieces.size(); ++i)
        frame.pieces[i].target.rx() -= static_cast<int>(20 * i);
    const QColor background = isDark ? QColor(0x12, 0x34, 0x56) : QColor(Qt::white);
    upper_.FrameWindow::show(frame, background);
    lower_.FrameWindow::show(frame, background);
  }

  void writeReference(const QString& file) {
    const Strip::Run& run = display_->strip().runs().front();
    const auto& item = static_cast<const SignItem&>(run.item());
    const double scale = display_->scale();
    const StripFrame& frame = display_->frame();
    QImage image(frame.size, QImage::Format_RGB32);
    image.fill(Qt::white);
    {
      QPainter painter(&image);
      painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
      painter.scale(scale, scale);
      GraphicsContext context(&painter, QSizeF(image.size()) / scale);
      const double across = std::round(item.placement().across * scale) / scale;
      const int lead = frame.pieces.front().target.x();
      item.sign()->drawAtPoint(QPointF(lead / scale, across));
    }
    image.save(file);
  }

  FrameWindow upper_;
  FrameWindow lower_;
  QWidget cover_{nullptr, Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint};
  std::unique_ptr<TickerDisplay> display_;
};
} // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  Probe probe(QSize(arguments.value(1).toInt(), arguments.value(2).toInt()));
  QSocketNotifier input(0, QSocketNotifier::Read);
  QObject::connect(&input, &QSocketNotifier::activated, [&] {
    std::string line;
    if (!std::getline(std::cin, line))
      return QApplication::quit();
    probe.perform(QString::fromStdString(line).split(u' '));
  });
  return QApplication::exec();
}
