#include "app/services/FeedSigns.h"

#include "app/display/SignItem.h"
#include "app/display/TickerDisplay.h"
#include "app/services/DisplayReceiver.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <gtest/gtest.h>

#include <string>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::platform;

namespace {
constexpr LoopRule Forever{-1, 0, true};
constexpr LoopRule Once{1, 0, false};

ShownItem item(const QString& identifier, const QString& title = u"title"_s) {
  return {identifier, title, QUrl(), nullptr};
}

std::vector<ShownItem> items(const QStringList& identifiers) {
  std::vector<ShownItem> result;
  for (const QString& identifier : identifiers)
    result.push_back(item(identifier));
  return result;
}

Ref<Image> picture() {
  QImage image(20, 20, QImage::Format_RGB32);
  image.fill(Qt::red);
  return Image::fromQImage(image);
}

class SignsOfFeeds : public ::testing::Test {
 protected:
  void SetUp() override {
    display.setSize(QSizeF(300, 24), 0);
    display.setDefaultFont(Font::fontWithName(u"DejaVu Sans"_s, 12));
    display.setDefaultTextColor(Color::deviceRGB(0, 0, 0));
    display.setSpeed(100, 0);
  }

  const Ref<ZQTickerSign>& signOf(const Strip::Run& run) {
    return static_cast<const SignItem&>(run.item()).sign();
  }
  // Identifiers in the order of entering between now and `until`.
  std::string entering(double until) {
    QString text;
    for (double time = display.strip().time(); time <= until; time += 0.05) {
      display.advanceTo(time);
      for (const Strip::Run& run : display.strip().runs())
        if (run.number > seen) {
          seen = run.number;
          text += signOf(run)->identifier().value_or(u"?"_s) + u' ';
        }
    }
    return text.toStdString();
  }

  TickerDisplay display;
  double now = 0;
  DisplayReceiver receiver{display, [this] { return now; }};
  std::uint64_t seen = 0;
};
} // namespace

TEST_F(SignsOfFeeds, ShowsTheItemsInTheirOrderInEveryRound) {
  FeedSigns signs(receiver, Forever);
  now = 0;
  signs.show(items({u"a"_s, u"b"_s, u"c"_s}));
  EXPECT_EQ(entering(2.2).substr(0, 12), "a b c a b c ");
}

TEST_F(SignsOfFeeds, MakesATextSignThatOpensTheLink) {
  FeedSigns signs(receiver, {3, 2, true});
  ShownItem shown = item(u"a"_s, u"A title"_s);
  shown.link = QUrl(u"https://example.org/ä?b c"_s);
  now = 0;
  signs.show({shown});
  display.advanceTo(0.1);
  const auto sign =
      std::dynamic_pointer_cast<ZQTextTickerSign>(signOf(display.strip().runs().front()));
  ASSERT_NE(sign, nullptr);
  EXPECT_EQ(sign->text()->string(), u"A title"_s);
  EXPECT_EQ(sign->identifier(), u"a"_s);
  EXPECT_EQ(sign->actionType(), 1);
  EXPECT_EQ(sign->actionString(), u"https://example.org/%C3%A4?b%20c"_s);
  EXPECT_EQ(sign->loopCount(), 3);
  EXPECT_EQ(sign->loopDelay(), 2);
  EXPECT_TRUE(sign->continuousScrolling());
}

TEST_F(SignsOfFeeds, MakesAComboSignOfAnItemWithAPicture) {
  FeedSigns signs(receiver, Forever);
  ShownItem shown = item(u"a"_s, u"A title"_s);
  shown.picture = picture();
  now = 0;
  signs.show({shown});
  display.advanceTo(0.1);
  const auto sign =
      std::dynamic_pointer_cast<ZQComboTickerSign>(signOf(display.strip().runs().front()));
  ASSERT_NE(sign, nullptr);
  EXPECT_EQ(sign->image(), shown.picture);
  EXPECT_EQ(sign->text(), Any(u"A title"_s));
  EXPECT_EQ(sign->actionType(), 0) << "there is nothing to open";
  EXPECT_EQ(sign->actionString(), std::nullopt);
}

TEST_F(SignsOfFeeds, LeavesAloneWhatHasNotChanged) {
  FeedSigns signs(receiver, Forever);
  const std::vector<ShownItem> same = items({u"a"_s, u"b"_s});
  now = 0;
  signs.show(same);
  entering(2);
  const Ref<ZQTickerSign> before = signOf(display.strip().runs().back());
  const std::string identifier = before->identifier()->toStdString();
  now = 2;
  signs.show(same);
  while (entering(display.strip().time() + 0.1) != identifier + " ") {
  }
  EXPECT_EQ(signOf(display.strip().runs().back()), before);
}

TEST_F(SignsOfFeeds, ShowsANewItemSoonAndKeepsTheOrder) {
  FeedSigns signs(receiver, Forever);
  now = 0;
  signs.show(items({u"a"_s, u"b"_s, u"c"_s, u"d"_s}));
  ASSERT_EQ(entering(0.4), "a b ");
  now = 0.4;
  signs.show(items({u"new"_s, u"a"_s, u"b"_s, u"c"_s, u"d"_s}));
  EXPECT_EQ(entering(4).substr(0, 20), "new c d new a b c d ");
}

TEST_F(SignsOfFeeds, ChangesTheTextOfAnItemWithItsNextShowing) {
  FeedSigns signs(receiver, Forever);
  now = 0;
  signs.show({item(u"a"_s, u"old"_s), item(u"b"_s)});
  ASSERT_EQ(entering(0.1), "a ");
  const Ref<ZQTickerSign> old = signOf(display.strip().runs().front());
  now = 0.1;
  signs.show({item(u"a"_s, u"a much longer title"_s), item(u"b"_s)});
  EXPECT_EQ(signOf(display.strip().runs().front()), old);
  EXPECT_EQ(entering(1.0), "b a ");
  const auto changed =
      std::dynamic_pointer_cast<ZQTextTickerSign>(signOf(display.strip().runs().back()));
  EXPECT_EQ(changed->text()->string(), u"a much longer title"_s);
}

TEST_F(SignsOfFeeds, ShowsALatePictureWithTheNextShowing) {
  FeedSigns signs(receiver, Forever);
  now = 0;
  signs.show({item(u"a"_s)});
  ASSERT_EQ(entering(0.1), "a ");
  ShownItem pictured = item(u"a"_s);
  pictured.picture = picture();
  now = 0.1;
  signs.show({pictured});
  EXPECT_NE(std::dynamic_pointer_cast<ZQTextTickerSign>(signOf(display.strip().runs().front())),
            nullptr);
  ASSERT_EQ(entering(0.5), "a ");
  EXPECT_NE(std::dynamic_pointer_cast<ZQComboTickerSign>(signOf(display.strip().runs().back())),
            nullptr);
}

TEST_F(SignsOfFeeds, LetsItemsGoThatTheFeedHasDropped) {
  FeedSigns signs(receiver, Forever);
  now = 0;
  signs.show(items({u"a"_s, u"b"_s, u"c"_s}));
  ASSERT_EQ(entering(0.1), "a ");
  now = 0.1;
  signs.show(items({u"b"_s}));
  EXPECT_EQ(display.strip().runs().size(), 1u) << "the one on the strip goes on";
  EXPECT_EQ(entering(1.2).substr(0, 4), "b b ");
  now = 1.2;
  signs.show({});
  display.advanceTo(20);
  EXPECT_TRUE(display.isFinished());
}

TEST_F(SignsOfFeeds, ShowsAnItemAgainThatComesBack) {
  FeedSigns signs(receiver, Forever);
  now = 0;
  signs.show(items({u"a"_s}));
  now = 0;
  signs.show({});
  now = 0;
  signs.show(items({u"a"_s}));
  EXPECT_EQ(entering(0.1), "a ");
}

TEST_F(SignsOfFeeds, ShowsOnlyWhatIsNewWhereItemsAreShownOnce) {
  FeedSigns signs(receiver, Once);
  now = 0;
  signs.show(items({u"a"_s, u"b"_s}));
  EXPECT_EQ(entering(10), "a b ");
  EXPECT_TRUE(display.isFinished());
  now = 10;
  signs.show(items({u"a"_s, u"b"_s}));
  EXPECT_TRUE(display.isFinished());
  now = 10;
  signs.show({item(u"a"_s, u"changed"_s), item(u"b"_s)});
  EXPECT_TRUE(display.isFinished()) << "it has had its showing";
  now = 10;
  signs.show(items({u"c"_s, u"a"_s}));
  EXPECT_EQ(entering(20), "c ");
  now = 20;
  signs.show(items({u"c"_s, u"a"_s, u"b"_s}));
  EXPECT_TRUE(display.isFinished()) << "b is back, but not new";
}

TEST_F(SignsOfFeeds, ShowsItemsBehindSignsOfTheCommandLine) {
  const auto headline = ZQTextTickerSign::make(u"headline"_s);
  headline->setIdentifier(u"headline"_s);
  headline->setLoopCount(-1);
  headline->setContinuousScrolling(true);
  display.addSign(headline, 0);
  display.advanceTo(0.1);
  FeedSigns signs(receiver, Forever);
  now = 0.1;
  signs.show(items({u"a"_s, u"b"_s}));
  EXPECT_EQ(entering(4).substr(0, 30), "headline a b headline a b head");
}

TEST_F(SignsOfFeeds, SayWhichFeedTheyAreFrom) {
  FeedSigns signs(receiver, Forever);
  ShownItem shown = item(u"a"_s);
  shown.source = u"News"_s;
  signs.show({shown});
  ASSERT_EQ(display.queuedSigns(0).size(), 1u);
  EXPECT_EQ(display.queuedSigns(0)[0].origin.senderName, u"News"_s);
  shown.source = u"Old news"_s;
  signs.show({shown});
  ASSERT_EQ(display.queuedSigns(0).size(), 1u);
  EXPECT_EQ(display.queuedSigns(0)[0].origin.senderName, u"Old news"_s);
}

TEST_F(SignsOfFeeds, AreShownOnceWhereTwoBringTheSame) {
  FeedSigns first(receiver, Forever);
  FeedSigns second(receiver, Forever);
  first.show(items({u"a"_s, u"b"_s}));
  second.show(items({u"b"_s, u"c"_s}));
  EXPECT_EQ(display.waitingCount(), 3u);
}
