#include "app/bus/BusInbox.h"

#include <gtest/gtest.h>

#include <thread>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
using Admission = BusInbox::Admission;

PendingRequest from(const QString& sender, qsizetype bytes = 0) {
  BusRequest request;
  request.sender = sender;
  request.bytes = bytes;
  return {request, QDBusMessage(), QDBusConnection(QString())};
}
} // namespace

TEST(BusInbox, GivesRequestsOutInTheirOrder) {
  BusInbox inbox;
  EXPECT_FALSE(inbox.take());
  EXPECT_EQ(inbox.put(from(u"a"_s)), Admission::First);
  EXPECT_EQ(inbox.put(from(u"b"_s)), Admission::Further);
  EXPECT_EQ(inbox.take()->request.sender, u"a"_s);
  EXPECT_EQ(inbox.put(from(u"a"_s)), Admission::Further);
  EXPECT_EQ(inbox.take()->request.sender, u"b"_s);
  EXPECT_EQ(inbox.take()->request.sender, u"a"_s);
  EXPECT_FALSE(inbox.take());
  EXPECT_EQ(inbox.put(from(u"a"_s)), Admission::First) << "after it was empty";
}

TEST(BusInbox, LetsOthersThroughWhereOneSenderHasFilledItsShare) {
  BusInbox inbox;
  for (std::size_t i = 0; i < BusInbox::OfSender.requests; ++i)
    ASSERT_NE(inbox.put(from(u"flood"_s)), Admission::Refused);
  EXPECT_EQ(inbox.put(from(u"flood"_s)), Admission::Refused);
  EXPECT_EQ(inbox.put(from(u"other"_s)), Admission::Further);
  inbox.take();
  EXPECT_EQ(inbox.put(from(u"flood"_s)), Admission::Further);
  EXPECT_EQ(inbox.put(from(u"flood"_s)), Admission::Refused);
}

TEST(BusInbox, IsBoundedForAllSendersTogether) {
  BusInbox inbox;
  for (std::size_t i = 0; i < BusInbox::OfAll.requests; ++i)
    ASSERT_NE(inbox.put(from(QString::number(i))), Admission::Refused);
  EXPECT_EQ(inbox.put(from(u"one more"_s)), Admission::Refused);
}

TEST(BusInbox, CountsBytesOfWhatWaits) {
  BusInbox inbox;
  const qsizetype large = BusInbox::OfSender.bytes;
  EXPECT_EQ(inbox.put(from(u"a"_s, large + 1)), Admission::First) << "a sender's first one";
  EXPECT_EQ(inbox.put(from(u"a"_s, 1)), Admission::Refused);
  EXPECT_EQ(inbox.put(from(u"b"_s, large)), Admission::Further);
  EXPECT_EQ(inbox.put(from(u"b"_s, 1)), Admission::Refused);
  EXPECT_EQ(inbox.put(from(u"c"_s, BusInbox::OfAll.bytes - 2 * large)), Admission::Refused);
  EXPECT_EQ(inbox.put(from(u"c"_s, BusInbox::OfAll.bytes - 2 * large - 1)), Admission::Further);
  inbox.take();
  EXPECT_EQ(inbox.put(from(u"a"_s, large)), Admission::Further);
}

TEST(BusInbox, KeepsTheOrderOfEachSenderWhileAnotherThreadTakes) {
  BusInbox inbox;
  constexpr int Count = 20'000;
  std::thread writer([&] {
    for (int i = 0; i < Count;) {
      PendingRequest pending = from(u"a"_s, i % 7);
      pending.request.text = QString::number(i);
      if (inbox.put(std::move(pending)) != Admission::Refused)
        ++i;
    }
  });
  for (int i = 0; i < Count;)
    if (const auto pending = inbox.take()) {
      EXPECT_EQ(pending->request.text, QString::number(i++));
    }
  writer.join();
  EXPECT_FALSE(inbox.take());
}
