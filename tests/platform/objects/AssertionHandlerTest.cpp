#include "zqticker/platform/objects/AssertionHandler.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using zq::platform::AssertionHandler;
using zq::platform::InternalInconsistencyException;

namespace {
struct Recorder : AssertionHandler {
  void handleFailure(const QString& message, const QString& file, int line) override {
    ++failures;
    lastMessage = message;
    lastFile = file;
    lastLine = line;
  }
  int failures = 0;
  QString lastMessage;
  QString lastFile;
  int lastLine = 0;
};
} // namespace

TEST(AssertionHandler, RaisesWithMessageBaseNameAndLine) {
  int line = 0;
  try {
    line = __LINE__ + 1;
    ZQ_ASSERT(false, u"two is odd"_s);
    FAIL() << "nothing was raised";
  } catch (const InternalInconsistencyException& exception) {
    EXPECT_EQ(exception.message(), u"two is odd"_s);
    EXPECT_EQ(exception.file(), u"AssertionHandlerTest.cpp"_s);
    EXPECT_EQ(exception.line(), line);
    EXPECT_STREQ(exception.what(), "two is odd");
  }
}

TEST(AssertionHandler, DoesNothingWhenTheConditionHolds) {
  EXPECT_NO_THROW(ZQ_ASSERT(true, u"never seen"_s));
}

TEST(AssertionHandler, ReplacementIsCalledAndTheCodeAfterTheCheckGoesOn) {
  Recorder recorder;
  AssertionHandler* before = AssertionHandler::setCurrentHandler(&recorder);
  bool wentOn = false;
  ZQ_ASSERT(false, u"carry on"_s);
  wentOn = true;
  EXPECT_EQ(AssertionHandler::setCurrentHandler(before), &recorder);
  EXPECT_TRUE(wentOn);
  EXPECT_EQ(recorder.failures, 1);
  EXPECT_EQ(recorder.lastMessage, u"carry on"_s);
  EXPECT_EQ(recorder.lastFile, u"AssertionHandlerTest.cpp"_s);
  EXPECT_GT(recorder.lastLine, 0);
}

TEST(AssertionHandler, NullPutsTheDefaultBackInForce) {
  Recorder recorder;
  AssertionHandler::setCurrentHandler(&recorder);
  AssertionHandler::setCurrentHandler(nullptr);
  EXPECT_THROW(ZQ_ASSERT(false, u"default again"_s), InternalInconsistencyException);
  EXPECT_NE(AssertionHandler::currentHandler(), nullptr);
}
