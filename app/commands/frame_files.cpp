#include "app/commands/frame_files.h"

#include "app/commands/failures.h"
#include "app/commands/interrupts.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>
#include <QtGui/QImageWriter>
#include <QtGui/QPainter>

#include <cstdio>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// A sheet takes four bytes a pixel in memory.
constexpr qint64 LargestSheet = qint64(1) << 28;
constexpr int DigitsOfFrame = 6;
constexpr int BarWidth = 40;

// A line on standard error that is drawn over again, where that is a terminal.
class ProgressBar {
 public:
  explicit ProgressBar(int total) : total_(total), shown_(::isatty(STDERR_FILENO)) {}
  ~ProgressBar() {
    if (filled_ >= 0)
      std::fputs("\r\x1b[K", stderr);
  }

  void show(int done) {
    const int filled = static_cast<int>(qint64(BarWidth) * done / total_);
    if (!shown_ || filled == filled_)
      return;
    filled_ = filled;
    std::fprintf(stderr, "\r[%.*s%*s] %d/%d", filled, "########################################",
                 BarWidth - filled, "", done, total_);
    std::fflush(stderr);
  }

 private:
  int total_;
  bool shown_;
  int filled_ = -1;
};

void stopIfInterrupted(const QString& argument, int done) {
  if (Interrupts::received())
    throw RunTimeError(argument + u": interrupted after %1 frames"_s.arg(done));
}

void writePng(const QImage& image, const QString& argument, const QString& path) {
  const auto fail = [&](const QString& reason) {
    throw RunTimeError(argument + u": cannot write "_s + QFileInfo(path).fileName() + u": "_s +
                       reason);
  };
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly))
    fail(file.errorString());
  QImageWriter writer(&file, "png");
  if (!writer.write(image))
    fail(writer.errorString());
  if (!file.commit())
    fail(file.errorString());
}

QImage emptyFrame(const QSize& size) {
  return QImage(size, QImage::Format_ARGB32_Premultiplied);
}

void paintInto(QImage& image, int y, TickerDisplay& display, const FrameSeries& series, int index) {
  display.advanceTo(series.start + index / series.framesPerSecond);
  QPainter painter(&image);
  painter.translate(0, y);
  paintFrame(painter, display.frame(), series.background);
}

// Pictures without transparency are smaller, and the same everywhere.
QImage finished(const QImage& image, const QColor& background) {
  return image.convertToFormat(background.alpha() == 255 ? QImage::Format_RGB888
                                                         : QImage::Format_RGBA8888);
}
} // namespace

QImage renderFrame(TickerDisplay& display, const FrameSeries& series, int index) {
  QImage image = emptyFrame(display.frame().size);
  paintInto(image, 0, display, series, index);
  return finished(image, series.background);
}

void writeFrameFolder(TickerDisplay& display, const FrameSeries& series, const QString& argument,
                      const QString& folder) {
  if (!QDir().mkpath(folder))
    throw RunTimeError(argument + u": cannot make the folder "_s + folder);
  ProgressBar progress(series.frames);
  for (int index = 0; index < series.frames; ++index) {
    stopIfInterrupted(argument, index);
    const QString name = u"frame-%1.png"_s.arg(index + 1, DigitsOfFrame, 10, QLatin1Char('0'));
    writePng(renderFrame(display, series, index), argument, QDir(folder).filePath(name));
    progress.show(index + 1);
  }
}

void writeFrameSheet(TickerDisplay& display, const FrameSeries& series, const QString& argument,
                     const QString& file) {
  const QSize size = display.frame().size;
  if (qint64(size.width()) * size.height() * series.frames > LargestSheet)
    throw RunTimeError(argument +
                       u": %1 frames of %2 x %3 pixels are too large for one picture; give a "
                       u"folder"_s.arg(series.frames)
                           .arg(size.width())
                           .arg(size.height()));
  QImage sheet = emptyFrame(QSize(size.width(), size.height() * series.frames));
  ProgressBar progress(series.frames);
  for (int index = 0; index < series.frames; ++index) {
    stopIfInterrupted(argument, index);
    paintInto(sheet, size.height() * index, display, series, index);
    progress.show(index + 1);
  }
  writePng(finished(sheet, series.background), argument, file);
}

} // namespace zq::app
