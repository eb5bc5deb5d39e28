// A program for tests of what is in sight on a real window system: a strip with a picture that
// moves, or a window that covers others. Says on standard output what happens, one thing a line.
//
//   zqticker-sight-probe strip X Y WIDTH HEIGHT [remade]
//     "strip shown x y"; "in FRAMES TRAVEL" and "out FRAMES TRAVEL" when it comes into sight and
//     goes out of it; "moves" after every tenth frame
//   zqticker-sight-probe cover X Y WIDTH HEIGHT
//     "cover shown x y"
#include "app/display/StripWidget.h"
#include "tests/app/probe_program.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/signs/ZQImageTickerSign.h"

#include <QtWidgets/QApplication>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {
constexpr double Speed = 200;
constexpr int FramesToTell = 10;

class ProbeStrip {
 public:
  ProbeStrip(const QRect& place, bool isRemade)
      : display_(FrameClock::now()), widget_(display_, Qt::white), isRemade_(isRemade) {
    QImage image(30, place.height(), QImage::Format_RGB32);
    image.fill(Qt::red);
    const auto sign = ZQImageTickerSign::make(Image::fromQImage(image));
    sign->setLoopCount(ZQEndlessLoopCount);
    display_.setSpeed(Speed, widget_.time());
    display_.addSign(sign, widget_.time());
    QObject::connect(&widget_.sight(), &StripSight::changed, &widget_,
                     [this](bool isInSight) { tell(isInSight); });
    QObject::connect(&widget_.player(), &StripPlayer::frameDue, &widget_, [this] {
      if (widget_.frameCount() % FramesToTell == 0)
        say(u"moves"_s);
    });
    new ShownWatch(widget_, u"strip"_s);
    widget_.place(place, StripWidget::Kind::Dock);
    widget_.show();
  }

 private:
  void tell(bool isInSight) {
    // Where it stands, to the very end of the time in sight.
    if (!isInSight)
      display_.advanceTo(widget_.time());
    say(u"%1 %2 %3"_s.arg(isInSight ? u"in"_s : u"out"_s)
            .arg(widget_.frameCount())
            .arg(display_.strip().travel(), 0, 'f', 9));
    // A window of another depth takes the place of the first one, and one like it that of this.
    if (isInSight && isRemade_) {
      isRemade_ = false;
      QMetaObject::invokeMethod(
          &widget_,
          [this] {
            widget_.setBackground(QColor(0, 0, 0, 128));
            widget_.setBackground(Qt::white);
            say(u"remade"_s);
          },
          Qt::QueuedConnection);
    }
  }

  TickerDisplay display_;
  StripWidget widget_;
  bool isRemade_;
};
} // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const QStringList words = application.arguments().mid(1);
  if (words.size() < 5)
    return 2;
  const QRect place(words[1].toInt(), words[2].toInt(), words[3].toInt(), words[4].toInt());
  if (words[0] == "strip"_L1) {
    const ProbeStrip strip(place, words.contains(u"remade"_s));
    return QApplication::exec();
  }
  QWidget cover(nullptr, Qt::BypassWindowManagerHint | Qt::FramelessWindowHint);
  new ShownWatch(cover, u"cover"_s);
  cover.setGeometry(place);
  cover.show();
  return QApplication::exec();
}
