#include "tests/rollover/ButtonScreen.h"

#include <utility>

using namespace Qt::StringLiterals;
using zq::app::testing::waitUntil;
using zq::app::testing::XServer;

namespace zq::testing {

namespace {
constexpr int PatienceMilliseconds = 60'000;
} // namespace

ButtonProbeProcess::ButtonProbeProcess(const QProcessEnvironment& environment) {
  process_.setProcessEnvironment(environment);
  process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  process_.start(QStringLiteral(ZQTICKER_BINARY_DIR "/bin/zqticker-button-probe"), {});
  EXPECT_TRUE(awaits(u"ready"_s));
  lines_.clear();
}

ButtonProbeProcess::~ButtonProbeProcess() {
  process_.closeWriteChannel();
  if (!process_.waitForFinished(PatienceMilliseconds)) {
    process_.kill();
    process_.waitForFinished();
  }
}

void ButtonProbeProcess::tell(const QString& command) {
  process_.write(command.toUtf8() + '\n');
}

void ButtonProbeProcess::read() {
  while (process_.canReadLine()) {
    const QString line = QString::fromUtf8(process_.readLine()).trimmed();
    heard_.append(line);
    if (!line.startsWith(u'#'))
      lines_.append(line);
  }
}

bool ButtonProbeProcess::awaits(const QString& line) {
  const bool isHeard = waitUntil([&] {
    read();
    return heard_.contains(line) || !isRunning();
  });
  const qsizetype index = isHeard ? heard_.indexOf(line) : -1;
  if (index >= 0)
    heard_.remove(0, index + 1);
  return index >= 0;
}

void ButtonProbeProcess::dealWithInput() {
  tell(u"mark"_s);
  EXPECT_TRUE(awaits(u"mark"_s)) << "the probe does not answer";
  lines_.removeAll(u"mark"_s);
}

std::string ButtonProbeProcess::happened() {
  dealWithInput();
  return std::exchange(lines_, {}).join(u", "_s).toStdString();
}

QString ButtonProbeProcess::answer(const QString& command, const QString& start) {
  tell(command);
  QString found;
  EXPECT_TRUE(waitUntil([&] {
    read();
    for (const QString& line : std::as_const(lines_))
      if (line.startsWith(start))
        found = line;
    return !found.isEmpty() || !isRunning();
  }));
  lines_.removeAll(found);
  return found.mid(start.size()).trimmed();
}

std::string ButtonProbeProcess::stateOf(const QString& button) {
  dealWithInput();
  return answer(u"state "_s + button, u"state "_s + button).toStdString();
}

QRectF ButtonProbeProcess::rectAnswer(const QString& command, const QString& name) {
  const QStringList words = answer(command, u"place %1 "_s.arg(name)).split(u' ');
  return {words.value(0).toDouble(), words.value(1).toDouble(), words.value(2).toDouble(),
          words.value(3).toDouble()};
}

QRectF ButtonProbeProcess::placeOf(const QString& widget) {
  return rectAnswer(u"place "_s + widget, widget);
}

QRectF ButtonProbeProcess::placeOfItem(const QString& button, int number) {
  return rectAnswer(u"placeOfItem %1 %2"_s.arg(button).arg(number), button);
}

bool ButtonProbeProcess::endsWell() {
  process_.closeWriteChannel();
  return waitUntil([this] { return !isRunning(); }) &&
         process_.exitStatus() == QProcess::NormalExit && process_.exitCode() == 0;
}

std::unique_ptr<XServer> ButtonScreen::server_;

void ButtonScreen::SetUpTestSuite() {
  if (XServer::isInstalled() && XServer::hasProgram(u"openbox"_s) &&
      XServer::hasProgram(u"xdotool"_s))
    server_ = std::make_unique<XServer>(800, 600);
}

void ButtonScreen::TearDownTestSuite() {
  server_.reset();
}

void ButtonScreen::SetUp() {
  if (!server_)
    GTEST_SKIP() << "Xvfb, openbox or xdotool is not installed";
  ASSERT_FALSE(server_->display().isEmpty()) << "Xvfb does not start";
  start(1);
}

void ButtonScreen::start(double scale) {
  probe_.reset();
  scale_ = scale;
  input({u"mouseup"_s, u"1"_s, u"mousemove"_s, u"799"_s, u"599"_s});
  QProcessEnvironment environment = server_->environment();
  environment.insert(u"QT_SCALE_FACTOR"_s, QString::number(scale));
  probe_ = std::make_unique<ButtonProbeProcess>(environment);
  tell(u"window window 40 60 320 200"_s);
  tell(u"button play window 20 20 100 22"_s);
  ASSERT_TRUE(awaits(u"# window active"_s));
  ASSERT_TRUE(shows(Qt::red));
}

ButtonProbeProcess& ButtonScreen::otherProgram() {
  if (!other_)
    other_ = std::make_unique<ButtonProbeProcess>(server_->environment());
  return *other_;
}

void ButtonScreen::input(const QStringList& words) {
  QProcess tool;
  tool.setProcessEnvironment(server_->environment());
  tool.start(u"xdotool"_s, words);
  ASSERT_TRUE(tool.waitForFinished(PatienceMilliseconds));
  ASSERT_EQ(tool.exitCode(), 0) << words.join(u' ').toStdString();
}

void ButtonScreen::moveTo(QPointF pixel) {
  const QPoint place = pixel.toPoint();
  input({u"mousemove"_s, QString::number(place.x()), QString::number(place.y())});
}

void ButtonScreen::point(const QString& widget, double x, double y) {
  moveTo(probe_->placeOf(widget).topLeft() + scale_ * QPointF(x, y));
}

void ButtonScreen::pointAtItem(int number) {
  moveTo(probe_->placeOfItem(u"play"_s, number).center());
}

// The window manager holds a press back until it has looked at it.
void ButtonScreen::press() {
  input({u"mousedown"_s, u"1"_s});
  EXPECT_TRUE(awaits(u"# press"_s));
}

void ButtonScreen::release() {
  input({u"mouseup"_s, u"1"_s});
  EXPECT_TRUE(awaits(u"# release"_s));
}

void ButtonScreen::click() {
  press();
  release();
}

QImage ButtonScreen::picture(const QString& widget) {
  return server_->screenshot().copy(probe_->placeOf(widget).toRect());
}

bool ButtonScreen::shows(const QColor& color, const QString& button) {
  // Off the title, off an open menu, and off the picture of the pointer, which the server paints as
  // well.
  const QPoint place = (probe_->placeOf(button).topLeft() + scale_ * QPointF(30, 4)).toPoint();
  return waitUntil([&] { return server_->screenshot().pixelColor(place) == color; });
}

} // namespace zq::testing
