// What holds for every connection, whatever its scheme: order, silence before the event loop, end.
#include "zqticker/platform/system/URLConnection.h"

#include "tests/platform/system/ConnectionRecorder.h"
#include "tests/support/LogWatch.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/system/url_errors.h"

#include <gtest/gtest.h>

#include <QtCore/QEventLoop>
#include <QtCore/QThread>

#include <memory>
#include <stdexcept>
#include <thread>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {
const QUrl Hello(u"data:,hello"_s);

// Sets a limit for one test.
struct BodyLimit {
  explicit BodyLimit(qint64 bytes) { URLConnection::setMaximumBodyLength(bytes); }
  ~BodyLimit() { URLConnection::setMaximumBodyLength(before); }
  qint64 before = URLConnection::maximumBodyLength();
};
} // namespace

TEST(URLConnection, IsNullForANullRequest) {
  ConnectionRecorder recorder;
  EXPECT_FALSE(URLConnection::connectionWithRequest(nullptr, &recorder));
}

TEST(URLConnection, SaysNothingBeforeTheEventLoopRuns) {
  ConnectionRecorder recorder;
  recorder.start(Hello);
  EXPECT_TRUE(recorder.responses.empty());
  EXPECT_EQ(recorder.ends, 0);
  EXPECT_TRUE(waitFor([&] { return recorder.ends > 0; }));
  EXPECT_EQ(recorder.body(), "hello");
}

TEST(URLConnection, FailsOnceAndLaterForAnotherScheme) {
  ConnectionRecorder recorder;
  recorder.start(QUrl(u"gopher://example.org/"_s));
  EXPECT_EQ(recorder.ends, 0);
  ASSERT_TRUE(waitFor([&] { return recorder.ends > 0; }));
  runPostedEvents();
  EXPECT_EQ(recorder.ends, 1);
  EXPECT_EQ(recorder.error->domain(), u"NSURLErrorDomain"_s);
  EXPECT_EQ(recorder.errorCode(), UnsupportedURL);
  EXPECT_EQ(recorder.errorText(), u"unsupported URL scheme: gopher"_s);
  EXPECT_EQ(recorder.error->failingURL(), QUrl(u"gopher://example.org/"_s));
}

TEST(URLConnection, FailsWithoutAHost) {
  for (const QString& text : {u"http:///path"_s, u"https:/path"_s}) {
    ConnectionRecorder recorder;
    ASSERT_TRUE(recorder.load(QUrl(text)));
    EXPECT_EQ(recorder.errorCode(), BadURL) << text.toStdString();
  }
}

TEST(URLConnection, SaysNothingAfterItWasCancelledBeforeTheEventLoopRan) {
  ConnectionRecorder recorder;
  recorder.start(Hello)->cancel();
  runPostedEvents();
  EXPECT_TRUE(recorder.responses.empty());
  EXPECT_EQ(recorder.ends, 0);
}

TEST(URLConnection, SaysNothingAfterItsDelegateHasCancelledIt) {
  ConnectionRecorder recorder;
  const auto connection = recorder.start(Hello);
  recorder.onResponse = [&] { connection->cancel(); };
  ASSERT_TRUE(waitFor([&] { return !recorder.responses.empty(); }));
  runPostedEvents();
  EXPECT_TRUE(recorder.pieces.empty());
  EXPECT_EQ(recorder.ends, 0);
}

TEST(URLConnection, TakesACancellationAfterTheEnd) {
  ConnectionRecorder recorder;
  const auto connection = recorder.start(Hello);
  recorder.onEnd = [&] { connection->cancel(); };
  ASSERT_TRUE(waitFor([&] { return recorder.ends > 0; }));
  connection->cancel();
  runPostedEvents();
  EXPECT_EQ(recorder.ends, 1);
}

TEST(URLConnection, KeepsItselfAliveUntilItsEndAndNoLonger) {
  ConnectionRecorder recorder;
  const std::weak_ptr<URLConnection> weak = recorder.start(Hello);
  EXPECT_FALSE(weak.expired());
  ASSERT_TRUE(waitFor([&] { return recorder.ends > 0; }));
  EXPECT_TRUE(weak.expired());
}

TEST(URLConnection, GoesWhenItIsCancelled) {
  ConnectionRecorder recorder;
  const std::weak_ptr<URLConnection> weak = recorder.start(Hello);
  weak.lock()->cancel();
  runPostedEvents();
  EXPECT_TRUE(weak.expired());
}

TEST(URLConnection, EndsInSilenceWhenItsDelegateHasGone) {
  std::weak_ptr<URLConnection> weak;
  {
    ConnectionRecorder recorder;
    weak = recorder.start(Hello);
  }
  EXPECT_TRUE(waitFor([&] { return weak.expired(); }));
}

TEST(URLConnection, EndsInSilenceWhenItsDelegateGoesDuringACall) {
  auto recorder = std::make_unique<ConnectionRecorder>();
  const std::weak_ptr<URLConnection> weak = recorder->start(Hello);
  bool isCalled = false;
  const std::function<void()> destroy = [&] {
    isCalled = true;
    // The function must outlive its object.
    const auto kept = std::move(recorder->onResponse);
    recorder.reset();
  };
  recorder->onResponse = [&destroy] { destroy(); };
  EXPECT_TRUE(waitFor([&] { return weak.expired(); }));
  EXPECT_TRUE(isCalled);
}

TEST(URLConnection, GoesOnInAnEventLoopThatItsDelegateRuns) {
  ConnectionRecorder recorder;
  bool isEndedInside = false;
  recorder.onResponse = [&] { isEndedInside = waitFor([&] { return recorder.ends > 0; }); };
  recorder.start(Hello);
  ASSERT_TRUE(waitFor([&] { return recorder.ends > 0; }));
  EXPECT_TRUE(isEndedInside);
  EXPECT_EQ(recorder.body(), "hello");
  EXPECT_EQ(recorder.ends, 1);
}

TEST(URLConnection, ServesOthersWhileADelegateRunsAnEventLoop) {
  ConnectionRecorder first;
  ConnectionRecorder second;
  bool isSecondEndedInside = false;
  first.onResponse = [&] { isSecondEndedInside = waitFor([&] { return second.ends > 0; }); };
  first.start(Hello);
  second.start(QUrl(u"data:,second"_s));
  ASSERT_TRUE(waitFor([&] { return first.ends > 0; }));
  EXPECT_TRUE(isSecondEndedInside);
  EXPECT_EQ(first.body(), "hello");
  EXPECT_EQ(second.body(), "second");
}

TEST(URLConnection, LetsADelegateStartAnotherConnection) {
  ConnectionRecorder first;
  ConnectionRecorder second;
  first.onEnd = [&] { second.start(QUrl(u"data:,second"_s)); };
  first.start(Hello);
  ASSERT_TRUE(waitFor([&] { return second.ends > 0; }));
  EXPECT_EQ(second.body(), "second");
}

TEST(URLConnection, LogsWhatADelegateRaisesAndGoesOn) {
  ConnectionRecorder recorder;
  recorder.onResponse = [] { throw InvalidArgumentException(u"not today"_s); };
  recorder.onEnd = [] { throw std::runtime_error("nor tomorrow"); };
  expectLog(u"zqticker.net: not today"_s);
  expectLog(u"zqticker.net: nor tomorrow"_s);
  ASSERT_TRUE(recorder.load(Hello));
  EXPECT_EQ(recorder.body(), "hello");
  EXPECT_TRUE(recorder.isFinished);
}

TEST(URLConnection, FailsAtOnceWhenMoreIsAnnouncedThanTheLimit) {
  const BodyLimit limit(4);
  ConnectionRecorder recorder;
  ASSERT_TRUE(recorder.load(Hello));
  EXPECT_EQ(recorder.errorCode(), DataLengthExceedsMaximum);
  EXPECT_EQ(recorder.errorText(), u"the body is larger than the limit of 4 bytes"_s);
  EXPECT_TRUE(recorder.pieces.empty());
}

TEST(URLConnection, LoadsABodyOfExactlyTheLimit) {
  const BodyLimit limit(5);
  ConnectionRecorder recorder;
  ASSERT_TRUE(recorder.load(Hello));
  EXPECT_EQ(recorder.body(), "hello");
  EXPECT_TRUE(recorder.isFinished);
}

TEST(URLConnection, HasALimitOfTwoGibibytes) {
  EXPECT_EQ(URLConnection::maximumBodyLength(), qint64(2147483648));
}

TEST(URLConnection, LeavesOptionalOperationsToADelegatesDefaults) {
  struct Silent : URLConnectionDelegate {
  } silent;
  const std::weak_ptr<URLConnection> weak =
      URLConnection::connectionWithRequest(URLRequest::requestWithURL(Hello), &silent);
  EXPECT_TRUE(waitFor([&] { return weak.expired(); }));
}

TEST(URLConnection, DeliversOnTheThreadThatStartedIt) {
  std::thread::id deliveredOn;
  std::thread::id startedOn;
  std::thread thread([&] {
    startedOn = std::this_thread::get_id();
    ConnectionRecorder recorder;
    recorder.onEnd = [&] { deliveredOn = std::this_thread::get_id(); };
    EXPECT_TRUE(recorder.load(Hello));
  });
  thread.join();
  EXPECT_EQ(deliveredOn, startedOn);
  EXPECT_NE(deliveredOn, std::this_thread::get_id());
}

TEST(URLConnection, EndsWithItsThread) {
  std::weak_ptr<URLConnection> weak;
  ConnectionRecorder recorder;
  std::thread thread([&] { weak = recorder.start(Hello); });
  thread.join();
  EXPECT_TRUE(weak.expired());
  EXPECT_EQ(recorder.ends, 0);
}

TEST(URLConnection, EndsWithAWorkerOfQt) {
  std::weak_ptr<URLConnection> weak;
  ConnectionRecorder recorder;
  const std::unique_ptr<QThread> thread(QThread::create([&] { weak = recorder.start(Hello); }));
  thread->start();
  ASSERT_TRUE(thread->wait(60000));
  EXPECT_TRUE(weak.expired());
  EXPECT_EQ(recorder.ends, 0);
}
