#include "benchmarks/ticker_desktop.h"

#include <QtCore/QDir>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtDBus/QDBusMessage>
#include <QtGui/QImage>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {
const QString SaverName = u"org.gnome.ScreenSaver"_s;
const QString SaverPath = u"/org/gnome/ScreenSaver"_s;
constexpr double SecondsBetweenPictures = 1.5;
constexpr int LargestShift = 900;
// The mean difference of gray that pictures with the right shift stay below, of 255, where parts of
// pixels make letters differ a little.
constexpr double MostDifference = 12;

double now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// How much `second` differs from `first` moved by `shift` to the left, a pixel.
double difference(const QImage& first, const QImage& second, int shift) {
  const int width = first.width() - LargestShift;
  qint64 sum = 0;
  for (int y = 0; y < first.height(); ++y) {
    const uchar* before = first.constScanLine(y) + shift;
    const uchar* after = second.constScanLine(y);
    for (int x = 0; x < width; ++x)
      sum += std::abs(int(before[x]) - int(after[x]));
  }
  return double(sum) / width / first.height();
}
} // namespace

void pass(double seconds) {
  QEventLoop loop;
  QTimer::singleShot(int(std::lround(seconds * 1000)), Qt::PreciseTimer, &loop, &QEventLoop::quit);
  loop.exec();
}

TickerDesktop::TickerDesktop()
    : server_(Width, Height), saver_(QDBusConnection::connectToBus(bus_.address(), u"saver"_s)),
      connection_(xcb_connect(server_.display().constData(), nullptr)) {
  saver_.registerService(SaverName);
  QDir().mkpath(home());
}

TickerDesktop::~TickerDesktop() {
  xcb_disconnect(connection_);
  QDBusConnection::disconnectFromBus(u"saver"_s);
}

bool TickerDesktop::isComplete() const {
  return !server_.display().isEmpty() && bus_.isRunning() && saver_.isConnected() &&
         xcb_connection_has_error(connection_) == 0 &&
         zq::app::testing::XServer::hasProgram(u"openbox"_s);
}

// Below folders of its own: watched settings wake the program when anything happens above them, and
// that of temporary files is busy.
QString TickerDesktop::home() const {
  return folder_.filePath(u"desktop/user/home"_s);
}

QProcessEnvironment TickerDesktop::environment() const {
  QProcessEnvironment environment = bus_.environment(server_.environment());
  environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, bus_.address());
  for (const QString& name :
       {u"XDG_CONFIG_HOME"_s, u"XDG_CACHE_HOME"_s, u"XDG_RUNTIME_DIR"_s, u"XDG_DATA_HOME"_s})
    environment.insert(name, home());
  return environment;
}

void TickerDesktop::setCovered(bool isCovered) {
  if (cover_ == XCB_WINDOW_NONE) {
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    cover_ = xcb_generate_id(connection_);
    const std::uint32_t values[] = {screen->black_pixel, 1};
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, cover_, screen->root, 0, 0, Width, Height,
                      0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
  }
  if (isCovered)
    xcb_map_window(connection_, cover_);
  else
    xcb_unmap_window(connection_, cover_);
  xcb_flush(connection_);
}

void TickerDesktop::setLocked(bool isLocked) {
  QDBusMessage signal = QDBusMessage::createSignal(SaverPath, SaverName, u"ActiveChanged"_s);
  signal.setArguments({isLocked});
  saver_.send(signal);
}

std::optional<double> TickerDesktop::speedOf(int firstRow, int lastRow) const {
  const auto picture = [&] {
    return server_.screenshot()
        .copy(0, firstRow, Width, lastRow - firstRow + 1)
        .convertToFormat(QImage::Format_Grayscale8);
  };
  double before = now();
  const QImage first = picture();
  const double firstTime = (before + now()) / 2;
  pass(SecondsBetweenPictures);
  before = now();
  const QImage second = picture();
  const double secondTime = (before + now()) / 2;
  int best = 0;
  double least = difference(first, second, 0);
  for (int shift = 1; shift <= LargestShift; ++shift)
    if (const double value = difference(first, second, shift); value < least) {
      least = value;
      best = shift;
    }
  if (best == 0 || least > MostDifference)
    return std::nullopt;
  return best / (secondTime - firstTime);
}
