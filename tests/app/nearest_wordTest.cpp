#include "app/commands/nearest_word.h"

#include "app/commands/Command.h"
#include "app/commands/failures.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
const QStringList Words{u"speed"_s, u"text"_s, u"tail"_s, u"color"_s, u"background"_s};

QString failureOf(const QStringList& arguments) {
  try {
    const CommandLine line = findCommand(arguments);
    parseOptions(*line.command->table, line.arguments);
  } catch (const UsageError& error) {
    return error.message();
  }
  return u"none"_s;
}
} // namespace

TEST(NearestWord, ForgivesASlipForEveryThreeLetters) {
  EXPECT_EQ(nearestWord(u"spede"_s, Words), u"speed"_s) << "exchanged";
  EXPECT_EQ(nearestWord(u"sped"_s, Words), u"speed"_s) << "left out";
  EXPECT_EQ(nearestWord(u"colour"_s, Words), u"color"_s) << "put in";
  EXPECT_EQ(nearestWord(u"tait"_s, Words), u"tail"_s) << "replaced";
  EXPECT_EQ(nearestWord(u"bakcgruond"_s, Words), u"background"_s) << "two of ten";
  EXPECT_EQ(nearestWord(u"tixl"_s, Words), u""_s) << "two of four";
  EXPECT_EQ(nearestWord(u"te"_s, Words), u""_s);
  EXPECT_EQ(nearestWord(u""_s, Words), u""_s);
  EXPECT_EQ(nearestWord(u"speed"_s, {}), u""_s);
  EXPECT_EQ(nearestWord(QString(100'000, u'x'), {QString(100'000, u'x')}), u""_s);
}

TEST(NearestWord, IsTheFirstOfSeveral) {
  EXPECT_EQ(nearestWord(u"tex"_s, {u"text"_s, u"tes"_s}), u"text"_s);
  EXPECT_EQ(nearestWord(u"tesd"_s, {u"text"_s, u"test"_s}), u"test"_s) << "but the nearest";
}

TEST(NearestWord, IsNamedForMistypedCommandsAndOptions) {
  EXPECT_EQ(failureOf({u"rendr"_s}),
            u"rendr: unknown command; did you mean render? (see zqticker --help)"_s);
  EXPECT_EQ(failureOf({u"apearance"_s, u"show"_s}),
            u"apearance: unknown command; did you mean appearance? (see zqticker --help)"_s);
  EXPECT_EQ(failureOf({u"--spede"_s, u"5"_s}),
            u"--spede: unknown option; did you mean --speed? (see zqticker run --help)"_s);
  EXPECT_EQ(failureOf({u"--spede=5"_s}),
            u"--spede=5: unknown option; did you mean --speed? (see zqticker run --help)"_s);
}
