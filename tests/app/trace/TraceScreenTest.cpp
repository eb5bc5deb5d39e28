// Traces of strips that a user handles.
#include "tests/app/interaction/StripOnScreen.h"

#include <csignal>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;

namespace {
class HandledTrace : public StripOnScreen {
 protected:
  void start(const QStringList& arguments) {
    program_.emplace(QStringList{u"--text"_s, u"A strip that is traced, from end to end"_s,
                                 u"--background"_s, u"#123456"_s, u"--continuous"_s,
                                 u"--no-control-bar"_s, u"--trace"_s, trace()} +
                         arguments,
                     environment());
  }
  QProcessEnvironment environment() const {
    QProcessEnvironment environment = server_->environment();
    environment.insert(u"XDG_CONFIG_HOME"_s, folder_.path());
    return environment;
  }
  void set(const QString& name, const QString& value) const {
    EXPECT_EQ(runZqticker({u"settings"_s, u"set"_s, name, value}, {}, environment()).status, 0);
  }
  // Whether `part` of the screen shows another picture than it did.
  bool changes(const QRect& part) {
    const QImage before = server_->screenshot().copy(part);
    return waitUntil([&] { return server_->screenshot().copy(part) != before; });
  }
  QString trace() const { return folder_.filePath(u"trace.csv"_s); }
  void expectEven() {
    program_->interrupt(SIGTERM);
    EXPECT_EQ(program_->awaitStatus(), 0);
    const Outcome outcome = runZqticker({u"trace"_s, u"check"_s, trace()});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_TRUE(outcome.output.contains("\ndoubled steps: 0\nmissing steps: 0\n"))
        << outcome.output.constData();
  }
};
} // namespace

TEST_F(HandledTrace, IsEvenToTheRightWhateverAUserDoes) {
  const QRect strip(0, Top, Width, 24);
  set(u"speed"_s, u"150"_s);
  start({u"--direction"_s, u"right"_s});
  ASSERT_TRUE(waitUntil([&] { return isFull(); }));
  moveTo(300);
  ASSERT_TRUE(waitUntil([&] { return stands(); }));
  button("click", 5);
  ASSERT_TRUE(waitUntil([&] { return stands(); }));
  button("mousedown", 1);
  for (int x = 300; x <= 400; x += 20)
    moveTo(x);
  button("mouseup", 1);
  moveTo(300, 50);
  ASSERT_TRUE(waitUntil([&] { return !stands(); }));
  button("click", 5);
  set(u"speed"_s, u"77"_s);
  ASSERT_TRUE(changes(strip));
  expectEven();
}

TEST_F(HandledTrace, IsEvenWhereTheDirectionChanges) {
  const QRect strip(0, Top, Width, 24);
  set(u"speed"_s, u"150"_s);
  start({});
  ASSERT_TRUE(waitUntil([&] { return isFull(); }));
  for (const QString& direction : {u"right"_s, u"left"_s}) {
    set(u"direction"_s, direction);
    ASSERT_TRUE(changes(strip));
    ASSERT_TRUE(changes(strip));
  }
  expectEven();
}

TEST_F(HandledTrace, IsEvenDownwards) {
  start({u"--direction"_s, u"down"_s, u"--width"_s, u"100"_s, u"--speed"_s, u"137.5"_s});
  const QRect strip(Width - 100, 0, 100, Height);
  ASSERT_TRUE(
      waitUntil([&] { return (server_->screenshot().pixel(Width - 2, 2) & 0xffffff) == Ground; }));
  for (int i = 0; i < 20; ++i)
    ASSERT_TRUE(changes(strip));
  moveTo(Width - 50, 200);
  button("click", 5);
  moveTo(100, 200);
  ASSERT_TRUE(changes(strip));
  expectEven();
}
