#include "tests/support/LogWatch.h"

#include <gtest/gtest.h>

#include <QtCore/QMutex>

#include <algorithm>

namespace zq::testing {

namespace {

struct State {
  QMutex mutex;
  QStringList expected;
  QStringList allowed;
  QStringList unannounced;
};

State& state() {
  static State instance;
  return instance;
}

void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& message) {
  if (type == QtDebugMsg || type == QtInfoMsg) {
    return;
  }
  const QString line =
      QString::fromUtf8(context.category ? context.category : "") + u": " + message;
  QMutexLocker lock(&state().mutex);
  const auto contained = [&](const QString& part) { return line.contains(part); };
  auto& expected = state().expected;
  if (auto found = std::find_if(expected.begin(), expected.end(), contained);
      found != expected.end())
    expected.erase(found);
  else if (std::none_of(state().allowed.begin(), state().allowed.end(), contained))
    state().unannounced.append(line);
}

class Listener : public ::testing::EmptyTestEventListener {
  void OnTestStart(const ::testing::TestInfo&) override { clear(); }

  void OnTestEnd(const ::testing::TestInfo&) override {
    QMutexLocker lock(&state().mutex);
    const QStringList unannounced = state().unannounced;
    const QStringList expected = state().expected;
    lock.unlock();
    for (const QString& line : unannounced)
      ADD_FAILURE() << "unannounced log line: " << line.toStdString();
    for (const QString& part : expected)
      ADD_FAILURE() << "announced log line did not come: " << part.toStdString();
    clear();
  }

  static void clear() {
    QMutexLocker lock(&state().mutex);
    state().expected.clear();
    state().allowed.clear();
    state().unannounced.clear();
  }
};

} // namespace

void expectLog(const QString& part) {
  QMutexLocker lock(&state().mutex);
  state().expected.append(part);
}

void allowLog(const QString& part) {
  QMutexLocker lock(&state().mutex);
  state().allowed.append(part);
}

void installLogWatch() {
  qInstallMessageHandler(handleMessage);
  ::testing::UnitTest::GetInstance()->listeners().Append(new Listener);
}

} // namespace zq::testing
