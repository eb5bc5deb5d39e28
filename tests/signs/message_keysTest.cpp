#include "zqticker/signs/message_keys.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(MessageKeys, NotificationNameIsItsOwnIdentifier) {
  EXPECT_EQ(ZQTickerDisplayMessageNotification, u"ZQTickerDisplayMessageNotification"_s);
}

TEST(MessageKeys, ContinuousScrollingIsSpelledWithOneL) {
  EXPECT_EQ(ZQTickerMessageContinuousScrollingKey, u"continuousScroling"_s);
}

TEST(MessageKeys, SenderIdentifierHasTheShortForm) {
  EXPECT_EQ(ZQTickerMessageSenderIdentifierKey, u"senderID"_s);
}

TEST(MessageKeys, EveryOtherKeyIsItsWireForm) {
  EXPECT_EQ(ZQTickerMessageSenderNameKey, u"senderName"_s);
  EXPECT_EQ(ZQTickerMessageIdentifierKey, u"identifier"_s);
  EXPECT_EQ(ZQTickerMessageTextKey, u"text"_s);
  EXPECT_EQ(ZQTickerMessageImageKey, u"image"_s);
  EXPECT_EQ(ZQTickerMessagePriorityKey, u"priority"_s);
  EXPECT_EQ(ZQTickerMessageLoopCountKey, u"loopCount"_s);
  EXPECT_EQ(ZQTickerMessageLoopDelayKey, u"loopDelay"_s);
  EXPECT_EQ(ZQTickerMessageScrollDirectionKey, u"scrollDirection"_s);
  EXPECT_EQ(ZQTickerMessageFadeInOutTypeKey, u"fadeInOutType"_s);
  EXPECT_EQ(ZQTickerMessageActionTypeKey, u"actionType"_s);
  EXPECT_EQ(ZQTickerMessageActionStringKey, u"actionString"_s);
  EXPECT_EQ(ZQTickerMessageActionDataKey, u"actionData"_s);
}
