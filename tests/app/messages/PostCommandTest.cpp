// The command `post` as a user meets it, against a ticker on a bus of its own.
#include "app/bus/TickerService.h"
#include "app/bus/intake_failures.h"
#include "tests/app/Program.h"
#include "tests/app/bus/FakeReceiver.h"
#include "tests/app/bus/PrivateBus.h"
#include "tests/app/messages/Samples.h"
#include "zqticker/signs/message_keys.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {
// A ticker whose signs are kept in place of a display.
class KeepingReceiver : public FakeReceiver {
 public:
  ArrivingSign displayMessage(const QVariantMap& message, const BusSender& sender) override {
    messages.push_back({message, {}, sender});
    return withBusFailures(
        [&] { return shownWithBusFailures(intake_.takeMessage(message, sender.name)); });
  }
  std::vector<DisplayMessage> shown;

 private:
  MessageIntake intake_{{[] { return style(); },
                         [this](const Ref<ZQTickerSign>& sign, const SignOrigin& origin, auto) {
                           shown.push_back({sign, origin});
                           return sign->identifier().value_or(u"made"_s);
                         },
                         [] { return 0.0; }}};
};

class PostCommand : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivateBus::isInstalled())
      GTEST_SKIP() << "no dbus-daemon";
    bus_.emplace();
    service_.emplace(bus_->address());
    service_->setReceiver(&receiver_);
    ASSERT_EQ(service_->start(), TickerService::Start::IsOwner);
  }

  Outcome post(const QStringList& arguments) {
    RunningProgram program(QStringList{u"post"_s} + arguments, bus_->environment());
    Outcome outcome;
    outcome.status = program.awaitStatus();
    outcome.output = program.process().readAllStandardOutput();
    outcome.errors = program.process().readAllStandardError();
    return outcome;
  }
  void expectTaken(const QStringList& arguments, const QByteArray& output = {}) {
    const Outcome outcome = post(arguments);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.output, output);
  }
  static void expectFailure(const Outcome& outcome, int status, const QByteArray& line) {
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.errors, "zqticker: " + line + "\n");
    EXPECT_EQ(outcome.output, "");
  }
  QString write(const QString& name, const QByteArray& bytes) const {
    QFile file(folder_.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return file.fileName();
  }

  QTemporaryDir folder_;
  std::optional<PrivateBus> bus_;
  KeepingReceiver receiver_;
  std::optional<TickerService> service_;
};
} // namespace

TEST_F(PostCommand, SendsAText) {
  expectTaken({u"--text"_s, u"Tea is ready"_s});
  ASSERT_EQ(receiver_.shown.size(), 1u);
  EXPECT_EQ(receiver_.messages[0].dictionary, (QVariantMap{{u"text"_s, u"Tea is ready"_s}}));
  EXPECT_EQ(receiver_.shown[0].sign->description(), u"Tea is ready"_s);
}

TEST_F(PostCommand, SendsEverythingThatItsOptionsSay) {
  expectTaken({u"--text"_s, u"Hello"_s, u"--loop"_s, u"forever"_s, u"--delay"_s, u"1.5"_s,
               u"--priority"_s, u"-2.5"_s, u"--identifier"_s, u"tea"_s, u"--action"_s,
               u"https://example.org/"_s, u"--sender"_s, u"Kitchen"_s, u"--sender-id"_s,
               u"org.example.kitchen"_s, u"--fade"_s, u"--continuous"_s, u"--print-identifier"_s},
              "tea\n");
  ASSERT_EQ(receiver_.shown.size(), 1u);
  const DisplayMessage& shown = receiver_.shown[0];
  EXPECT_EQ(shown.sign->loopCount(), ZQEndlessLoopCount);
  EXPECT_EQ(shown.sign->loopDelay(), 1.5);
  EXPECT_TRUE(shown.sign->continuousScrolling());
  EXPECT_EQ(shown.sign->identifier(), u"tea"_s);
  EXPECT_EQ(shown.sign->actionType(), 1);
  EXPECT_EQ(shown.sign->actionString(), u"https://example.org/"_s);
  EXPECT_EQ(shown.origin.priority, -2.5);
  EXPECT_EQ(shown.origin.senderName, u"Kitchen"_s);
  EXPECT_EQ(shown.origin.senderIdentifier, u"org.example.kitchen"_s);
  EXPECT_TRUE(shown.origin.fades);
}

TEST_F(PostCommand, PrintsTheIdentifierThatWasMade) {
  expectTaken({u"--text"_s, u"Hello"_s, u"--print-identifier"_s}, "made\n");
}

TEST_F(PostCommand, SendsPictures) {
  expectTaken({u"--image"_s, write(u"p.png"_s, png())});
  expectTaken({u"--image"_s, write(u"p.tiff"_s, tiff()), u"--text"_s, u"Hello"_s});
  ASSERT_EQ(receiver_.shown.size(), 2u);
  EXPECT_EQ(receiver_.messages[0].dictionary.value(ZQTickerMessageImageKey), QVariant(png()));
  EXPECT_EQ(receiver_.messages[1].dictionary.value(ZQTickerMessageImageKey), QVariant(tiff()));
  EXPECT_EQ(receiver_.shown[1].sign->className(), u"ZQComboTickerSign"_s);
}

TEST_F(PostCommand, ConvertsOtherPicturesToPng) {
  for (const char* format : {"jpeg", "bmp", "webp"})
    expectTaken({u"--image"_s, write(u"picture"_s, encoded(solid(16, 12), format))});
  ASSERT_EQ(receiver_.shown.size(), 3u);
  for (std::size_t i = 0; i < receiver_.shown.size(); ++i) {
    EXPECT_TRUE(receiver_.messages[i]
                    .dictionary.value(ZQTickerMessageImageKey)
                    .toByteArray()
                    .startsWith("\x89PNG"));
    EXPECT_EQ(receiver_.shown[i].sign->size(), QSizeF(16, 12));
  }
}

TEST_F(PostCommand, RefusesPicturesThatCannotBeSent) {
  const QString missing = folder_.filePath(u"missing.png"_s);
  expectFailure(post({u"--image"_s, missing}), 1,
                "--image " + missing.toUtf8() + ": cannot read: No such file or directory");
  const QString text = write(u"text"_s, "no picture");
  expectFailure(post({u"--image"_s, text}), 1,
                "--image " + text.toUtf8() +
                    ": not a picture that can be read, or too large a one");
  const QString large = write(u"large.png"_s, png(4001, 4000));
  expectFailure(post({u"--image"_s, large}), 1,
                "--image " + large.toUtf8() + ": more than 16 million pixels");
  EXPECT_TRUE(receiver_.messages.empty());
}

TEST_F(PostCommand, SaysWhyTheTickerRefuses) {
  expectFailure(post({u"--text"_s, u"\x01"_s}), 1,
                "the ticker refuses the message: text: nothing to show in it, and no image either");
  expectFailure(post({u"--text"_s, u"Hello"_s, u"--sender"_s, QString(201, u'x')}), 1,
                "the ticker refuses the message: senderName: longer than 200 characters");
}

TEST_F(PostCommand, NeedsSomethingToShow) {
  expectFailure(post({}), 2, "post: needs --text or --image (see zqticker post --help)");
  expectFailure(post({u"--text"_s, u" "_s}), 2, "--text: needs TEXT");
  expectFailure(post({u"--image"_s, u""_s}), 2, "--image: needs FILE");
  expectFailure(post({u"--text"_s, u"a"_s, u"--loop"_s, u"0"_s}), 2,
                "--loop 0: must be a whole number from 1 on, or forever");
  EXPECT_TRUE(receiver_.messages.empty());
}

TEST_F(PostCommand, SaysThatThereIsNoTicker) {
  service_.reset();
  expectFailure(post({u"--text"_s, u"Hello"_s}), 1,
                "no ticker is running, and the bus knows none to start");
}

TEST_F(PostCommand, SaysThatThereIsNoBus) {
  expectFailure(runZqticker({u"post"_s, u"--text"_s, u"Hello"_s}), 1, "no session bus");
}
