// A program for tests of the queue window on a real window system: the window over a queue of its
// own, or another program's window to drag from. Says on standard output what happens, one thing a
// line.
//
//   zqticker-queue-probe window [empty | dark]…
//   zqticker-queue-probe source text TEXT | link URL TITLE | picture | files PATH… | many
#include "app/queue/QueueWindow.h"
#include "tests/app/probe_program.h"
#include "tests/app/queue/FakeQueue.h"

#include <QtCore/QMimeData>
#include <QtCore/QTimer>
#include <QtCore/QUrl>
#include <QtGui/QDrag>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyleFactory>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {
QImage drawnPicture() {
  QImage picture(60, 40, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(QColor(240, 150, 30));
  painter.drawEllipse(QRectF(2, 2, 56, 36));
  painter.setBrush(QColor(40, 110, 200));
  painter.drawEllipse(QRectF(16, 8, 26, 24));
  return picture;
}

class SourceWindow : public QWidget {
 public:
  explicit SourceWindow(const QStringList& contents) : contents_(contents) {
    setWindowFlags(Qt::FramelessWindowHint);
    setGeometry(20, 400, 100, 60);
    new ShownWatch(*this, u"source"_s);
  }

 protected:
  void mousePressEvent(QMouseEvent*) override { say(u"pressed"_s); }
  void mouseMoveEvent(QMouseEvent* event) override {
    if (!(event->buttons() & Qt::LeftButton))
      return;
    auto* drag = new QDrag(this);
    drag->setMimeData(make());
    connect(drag, &QDrag::actionChanged, this,
            [](Qt::DropAction action) { say(u"action "_s % nameOf(action)); });
    say(u"dragging"_s);
    say(u"result "_s %
        nameOf(drag->exec(Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, Qt::MoveAction)));
  }

 private:
  QMimeData* make() const {
    auto* made = new QMimeData;
    const QString kind = contents_.value(0);
    if (kind == "text"_L1)
      made->setText(contents_.value(1));
    if (kind == "link"_L1) {
      made->setUrls({QUrl(contents_.value(1))});
      made->setData(u"_NETSCAPE_URL"_s, (contents_.value(1) + u'\n' + contents_.value(2)).toUtf8());
    }
    if (kind == "picture"_L1)
      made->setImageData(drawnPicture());
    QList<QUrl> urls;
    if (kind == "files"_L1)
      for (const QString& path : contents_.mid(1))
        urls.append(QUrl::fromLocalFile(path));
    if (kind == "many"_L1)
      for (int i = 0; i < 200; ++i)
        urls.append(QUrl(u"https://example.org/%1"_s.arg(i)));
    if (!urls.isEmpty())
      made->setUrls(urls);
    return made;
  }

  const QStringList contents_;
};

void fill(FakeQueue& queue) {
  queue.addText(u"The quick brown fox jumps over the lazy dog"_s, -1);
  queue.addText(u"Pack my box with five dozen liquor jugs"_s, 3);
  const auto combo =
      ZQComboTickerSign::make(u"A combo sign: two moons"_s, Image::fromQImage(drawnPicture()));
  combo->setLoopCount(ZQEndlessLoopCount);
  SignOrigin mail;
  mail.senderName = u"Mail"_s;
  queue.add(combo, mail, nullptr);
  const auto picture = ZQImageTickerSign::make(Image::fromQImage(drawnPicture()));
  picture->setLoopCount(12);
  queue.add(picture, SignOrigin(), nullptr);
  SignOrigin program;
  program.senderIdentifier = u"org.example.Weather.Service"_s;
  const auto weather = ZQTextTickerSign::make(u"Rain tomorrow, 12 °C — شمس بعد غد"_s);
  weather->setLoopCount(1);
  queue.add(weather, program, nullptr);
  queue.run(1);
}

void makeDark() {
  QPalette palette(QColor(53, 53, 53), QColor(42, 42, 42));
  palette.setColor(QPalette::Base, QColor(35, 35, 35));
  palette.setColor(QPalette::AlternateBase, QColor(45, 45, 45));
  palette.setColor(QPalette::Highlight, QColor(61, 109, 194));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::PlaceholderText, QColor(150, 150, 150));
  QApplication::setPalette(palette);
}

int runWindow(const QStringList& options) {
  if (options.contains(u"dark"_s))
    makeDark();
  FakeQueue queue;
  queue.room = QSizeF(0, 24);
  if (!options.contains(u"empty"_s))
    fill(queue);
  QueueWindow window(queue, QString());
  window.setGeometry(150, 40, 600, 340);
  QObject::connect(&window.editor(), &QueueEditor::said,
                   [](const QString& text) { say(u"said "_s + text); });
  new ShownWatch(*window.table().viewport(), u"window"_s);
  QTimer look;
  std::uint64_t revision = 0;
  QString status;
  QObject::connect(&look, &QTimer::timeout, [&] {
    if (window.status() != status)
      say(u"status "_s + window.status());
    status = window.status();
    if (queue.revision() != revision)
      say(u"rows "_s + queue.texts().join(u'|'));
    revision = queue.revision();
  });
  look.start(10);
  window.present();
  return QApplication::exec();
}
} // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setApplicationName(u"zqticker"_s);
  QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
  const QStringList arguments = QApplication::arguments().mid(1);
  if (arguments.value(0) == "window"_L1)
    return runWindow(arguments.mid(1));
  SourceWindow source(arguments.mid(1));
  source.show();
  return QApplication::exec();
}
