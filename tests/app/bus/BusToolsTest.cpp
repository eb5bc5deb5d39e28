// Programs that know nothing of the ticker but its description.
#include "app/bus/bus_names.h"
#include "tests/app/bus/BusTicker.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;

TEST_F(BusTicker, AnswersGdbus) {
  if (!XServer::hasProgram(u"gdbus"_s))
    GTEST_SKIP() << "gdbus is not installed";
  const QStringList place{u"--session"_s, u"--dest"_s, TickerBusName, u"--object-path"_s,
                          TickerObjectPath};
  const Outcome called = runTool(
      u"gdbus"_s, QStringList{u"call"_s} + place +
                      QStringList{u"--method"_s, u"org.zqticker.Ticker1.DisplayMessage"_s,
                                  u"{'text': <'Hello'>, 'identifier': <'g'>, 'loopCount': <2>}"_s});
  EXPECT_EQ(called.status, 0) << called.errors.toStdString();
  EXPECT_EQ(called.output, "('g',)\n");
  ASSERT_EQ(receiver_.messages.size(), 1u);
  EXPECT_EQ(receiver_.messages[0].dictionary.value(u"loopCount"_s), QVariant(2));

  const Outcome described = runTool(u"gdbus"_s, QStringList{u"introspect"_s} + place);
  EXPECT_EQ(described.status, 0) << described.errors.toStdString();
  EXPECT_TRUE(described.output.contains("DisplayMessage(in  a{sv} message,"))
      << described.output.toStdString();
  EXPECT_TRUE(described.output.contains("readonly s Version = '"))
      << described.output.toStdString();

  const Outcome emitted =
      runTool(u"gdbus"_s, {u"emit"_s, u"--session"_s, u"--object-path"_s, u"/"_s, u"--signal"_s,
                           u"org.zqticker.Ticker1.ZQTickerDisplayMessageNotification"_s,
                           u"{'text': <'for all'>}"_s});
  EXPECT_EQ(emitted.status, 0) << emitted.errors.toStdString();
  EXPECT_TRUE(waitUntil([&] { return receiver_.notifications.size() == 1; }));
}

TEST_F(BusTicker, AnswersBusctl) {
  if (!XServer::hasProgram(u"busctl"_s))
    GTEST_SKIP() << "busctl is not installed";
  const Outcome called =
      runTool(u"busctl"_s, {u"--user"_s, u"call"_s, TickerBusName, TickerObjectPath,
                            TickerInterface, u"DisplayMessage"_s, u"a{sv}"_s, u"2"_s, u"text"_s,
                            u"s"_s, u"Hello"_s, u"identifier"_s, u"s"_s, u"b"_s});
  EXPECT_EQ(called.status, 0) << called.errors.toStdString();
  EXPECT_EQ(called.output, "s \"b\"\n");
  const Outcome described =
      runTool(u"busctl"_s, {u"--user"_s, u"introspect"_s, TickerBusName, TickerObjectPath});
  EXPECT_EQ(described.status, 0) << described.errors.toStdString();
  EXPECT_TRUE(described.output.contains(".DisplaySignFrom")) << described.output.toStdString();
}

TEST_F(BusTicker, TakesADictionaryOfStringsFromDbusSend) {
  if (!XServer::hasProgram(u"dbus-send"_s))
    GTEST_SKIP() << "dbus-send is not installed";
  const Outcome called =
      runTool(u"dbus-send"_s, {u"--session"_s, u"--print-reply"_s, u"--dest="_s + TickerBusName,
                               TickerObjectPath, u"org.zqticker.Ticker1.DisplayMessage"_s,
                               u"dict:string:string:text,Hello,identifier,d"_s});
  EXPECT_EQ(called.status, 0) << called.errors.toStdString();
  EXPECT_TRUE(called.output.contains("string \"d\"")) << called.output.toStdString();
  ASSERT_EQ(receiver_.messages.size(), 1u);
  EXPECT_EQ(receiver_.messages[0].dictionary,
            (QVariantMap{{u"text"_s, u"Hello"_s}, {u"identifier"_s, u"d"_s}}));
}
