// A window of another program, for tests of where windows stand: its title is "other".
//
//   zqticker-window-probe maximized
//   zqticker-window-probe panel X Y WIDTH HEIGHT
//   zqticker-window-probe window X Y WIDTH HEIGHT
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

using namespace Qt::StringLiterals;

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments().mid(1);
  QWidget window;
  window.setWindowTitle(u"other"_s);
  window.setPalette(QColor(90, 110, 90));
  if (arguments.value(0) == "maximized"_L1) {
    window.showMaximized();
  } else {
    if (arguments.value(0) == "panel"_L1)
      window.setWindowFlags(Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                            Qt::WindowDoesNotAcceptFocus);
    window.setGeometry(arguments.value(1).toInt(), arguments.value(2).toInt(),
                       arguments.value(3).toInt(), arguments.value(4).toInt());
    window.show();
  }
  return QApplication::exec();
}
