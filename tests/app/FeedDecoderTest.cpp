// Encodings of feeds: which one is taken, and that bytes may come one by one.
#include "app/services/FeedDecoder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
// The text of `bytes`, which must not depend on how they come.
std::string decode(const QByteArray& bytes, const QString& charset = {}) {
  FeedDecoder whole(charset);
  QByteArray text = whole.add(bytes);
  text += whole.finish();
  FeedDecoder single(charset);
  QByteArray joined;
  for (const char& byte : bytes) {
    const QByteArray piece = single.add(QByteArrayView(&byte, 1));
    EXPECT_TRUE(QUtf8StringView(piece.constData(), piece.size()).isValidUtf8());
    joined += piece;
  }
  joined += single.finish();
  EXPECT_EQ(joined, text);
  EXPECT_EQ(single.encoding(), whole.encoding());
  return text.toStdString();
}

QByteArray declared(const char* encoding, const char* text) {
  return "<?xml version='1.0' encoding='" + QByteArray(encoding) + "'?>" + text;
}

std::string afterDeclaration(const std::string& text) {
  return text.substr(text.find("?>") + 2);
}
} // namespace

TEST(FeedDecoder, TakesUtf8WhereNothingElseIsSaid) {
  EXPECT_EQ(decode("<a>\xC3\xA9\xF0\x9F\x9A\x80</a>"), "<a>é🚀</a>");
  EXPECT_EQ(decode(""), "");
  EXPECT_EQ(decode("a"), "a");
}

TEST(FeedDecoder, TakesTheDeclaration) {
  EXPECT_EQ(afterDeclaration(decode(declared("windows-1251", "\xCD\xEE"))), "Но");
  EXPECT_EQ(afterDeclaration(decode("\n " + declared("koi8-r", "\xEE\xCF"))), "Но");
  EXPECT_EQ(afterDeclaration(decode(declared("Shift_JIS", "\x93\x8C\x8B\x9E"))), "東京");
  // Longer ones are not looked for.
  EXPECT_EQ(decode("<?xml " + QByteArray(2000, ' ') + "encoding='koi8-r'?>\xC3\xA9").substr(2025),
            "é");
}

TEST(FeedDecoder, TakesTheServersWordBeforeTheDeclaration) {
  EXPECT_EQ(afterDeclaration(decode(declared("utf-8", "\xCD\xEE"), u"windows-1251"_s)), "Но");
  EXPECT_EQ(afterDeclaration(decode(declared("windows-1251", "\xC3\xA9"), u"UTF-8"_s)), "é");
}

TEST(FeedDecoder, TakesTheByteOrderMarkBeforeAllElse) {
  EXPECT_EQ(
      afterDeclaration(decode("\xEF\xBB\xBF" + declared("koi8-r", "\xC3\xA9"), u"windows-1251"_s)),
      "é");
  EXPECT_EQ(decode(QByteArray("\xFE\xFF\0<\xD8\x3D\xDE\x80", 8), u"utf-8"_s), "<🚀");
  EXPECT_EQ(decode(QByteArray("\xFF\xFE<\0\x3D\xD8\x80\xDE", 8)), "<🚀");
  EXPECT_EQ(decode(QByteArray("\xFF\xFE\0\0<\0\0\0", 8)), "<");
}

TEST(FeedDecoder, KnowsUtf16ByItsZeros) {
  EXPECT_EQ(decode(QByteArray("<\0\xE9\0>\0", 6)), "<é>");
  EXPECT_EQ(decode(QByteArray("\0<\0\xE9\0>", 6)), "<é>");
  EXPECT_EQ(decode(QByteArray("<\0\xE9\0>\0", 6), u"utf-16"_s), "<é>");
}

TEST(FeedDecoder, PassesOverNamesThatCannotBeMeant) {
  FeedDecoder decoder(u"x-none"_s);
  EXPECT_EQ(decoder.add(declared("x-martian", "\xC3\xA9")).last(2), "\xC3\xA9");
  EXPECT_EQ(decoder.encoding(), "UTF-8");
  EXPECT_EQ(decoder.unknownEncodings(), (QStringList{u"x-none"_s, u"x-martian"_s}));
  // The declaration could not have been read.
  EXPECT_EQ(afterDeclaration(decode(declared("UTF-16", "\xC3\xA9"))), "é");
}

TEST(FeedDecoder, TakesLatin1ForWindows1252) {
  EXPECT_EQ(decode("\x93quoted\x94 \xE9", u"ISO-8859-1"_s), "“quoted” é");
  EXPECT_EQ(decode("\x93quoted\x94 \xE9", u"us-ascii"_s), "“quoted” é");
}

TEST(FeedDecoder, ReplacesBytesThatAreNotInTheEncoding) {
  FeedDecoder decoder({});
  EXPECT_EQ(decoder.add("<a>\xFF\xC3<b>\xE2\x82<"), "<a>\uFFFD\uFFFD<b>\uFFFD\uFFFD<");
  EXPECT_EQ(decode("<a>\xC3"), "<a>\uFFFD");
  EXPECT_EQ(decode("<a>\xED\xA0\x80\xF4\x90\x80\x80\xC0\x80"),
            "<a>\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(decode(QByteArray("\xFE\xFF\0<\xD8\x3D\0>", 8)), "<\uFFFD>");
  EXPECT_EQ(decode(QByteArray("\xFE\xFF\0<\xD8\x3D", 6)), "<\uFFFD");
}
