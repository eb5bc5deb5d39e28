// JSON token by token, whole and byte by byte.
#include "app/services/JsonTokenizer.h"

#include <QtCore/QStringList>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
constexpr int Deepest = 8;
constexpr qsizetype LongestText = 32;

// Notes what it is told.
class Notes : public JsonTokenizer::Receiver {
 public:
  void beginObject() override { notes += u"{"_s; }
  void endObject() override { notes += u"}"_s; }
  void beginList() override { notes += u"["_s; }
  void endList() override { notes += u"]"_s; }
  void name(const QString& name) override { notes += name + u":"_s; }
  void text(const QString& text) override { notes += u"'"_s + text + u"'"_s; }
  void other() override { notes += u"*"_s; }
  bool isDone() const override { return notes.size() == enough; }

  QStringList notes;
  qsizetype enough = -1;
};

// The tokens, parted by spaces, then "end", the error or "open".
std::string read(const QByteArray& json, qsizetype size) {
  Notes notes;
  JsonTokenizer tokenizer(notes, Deepest, LongestText);
  for (qsizetype i = 0; i < json.size(); i += size)
    tokenizer.add(QByteArrayView(json).sliced(i, std::min(size, json.size() - i)));
  notes.notes += tokenizer.isAtEnd()               ? u"end"_s
                 : tokenizer.errorText().isEmpty() ? u"open"_s
                                                   : tokenizer.errorText();
  return notes.notes.join(u' ').toStdString();
}

std::string read(const QByteArray& json) {
  const std::string whole = read(json, json.size() + 1);
  EXPECT_EQ(read(json, 1), whole) << json.constData();
  return whole;
}
} // namespace

TEST(JsonTokenizer, ReadsEveryKindOfValue) {
  EXPECT_EQ(read(R"({"a" : [1, -2.5e+3, "x", true, false, null, {}, []] , "b":{"c":"d"}})"),
            "{ a: [ '1' '-2.5e+3' 'x' * * * { } [ ] ] b: { c: 'd' } } end");
  EXPECT_EQ(read("\"alone\""), "'alone' end");
  EXPECT_EQ(read("[]]"), "[ ] end");
}

TEST(JsonTokenizer, ReadsEscapes) {
  EXPECT_EQ(read(R"(["\"\\\/\b\f\n\r\t\u00e9\u20AC"])"), "[ '\"\\/\b\f\n\r\té€' ] end");
  EXPECT_EQ(read(R"(["\ud83d\ude80"])"), "[ '🚀' ] end");
  EXPECT_EQ(read(R"(["\ud83d", "\ude80x", "\ud83d\n", "\ud83d\ud83d\ude80"])"),
            "[ '\uFFFD' '\uFFFDx' '\uFFFD\n' '\uFFFD🚀' ] end");
  EXPECT_EQ(read(R"(["\x"])"), "[ JSON error in line 1: unexpected 'x'");
  EXPECT_EQ(read(R"(["\u12g4"])"), "[ JSON error in line 1: unexpected 'g'");
}

TEST(JsonTokenizer, TakesLineEndsInsideStrings) {
  EXPECT_EQ(read("[\"a\nb\tc\"]"), "[ 'a\nb\tc' ] end");
}

TEST(JsonTokenizer, RefusesWhatIsNotJson) {
  EXPECT_EQ(read("{a:1}"), "{ JSON error in line 1: unexpected 'a'");
  EXPECT_EQ(read("{\"a\" 1}"), "{ a: JSON error in line 1: unexpected '1'");
  EXPECT_EQ(read("{\"a\":1,}"), "{ a: '1' JSON error in line 1: unexpected '}'");
  EXPECT_EQ(read("[1,]"), "[ '1' JSON error in line 1: unexpected ']'");
  EXPECT_EQ(read("[1\n2]"), "[ '1' JSON error in line 2: unexpected '2'");
  EXPECT_EQ(read("[1}"), "[ '1' JSON error in line 1: unexpected '}'");
  EXPECT_EQ(read("[01]"), "[ JSON error in line 1: unexpected '01'");
  EXPECT_EQ(read("[tru]"), "[ JSON error in line 1: unexpected 'tru'");
  EXPECT_EQ(read("[1.]"), "[ JSON error in line 1: unexpected '1.'");
  EXPECT_EQ(read("[\xC3\xA9]"), "[ JSON error in line 1: an unexpected character");
  EXPECT_EQ(read("[" + QByteArray(65, '1')),
            "[ '" + std::string(64, '1') + "' JSON error in line 1: unexpected '1'");
}

TEST(JsonTokenizer, WaitsForTheRest) {
  for (const char* json : {"", "[", "{\"a", "{\"a\"", "{\"a\":", "[1", "[\"\\", "[\"\\u1", "[tr"})
    EXPECT_TRUE(read(json).ends_with("open")) << json;
}

TEST(JsonTokenizer, LimitsDepthAndTexts) {
  EXPECT_EQ(read(QByteArray(Deepest, '[') + QByteArray(Deepest, ']')),
            "[ [ [ [ [ [ [ [ ] ] ] ] ] ] ] ] end");
  EXPECT_EQ(read(QByteArray(Deepest + 1, '[')),
            "[ [ [ [ [ [ [ [ too deeply nested: more than 8 levels");
  EXPECT_EQ(read('"' + QByteArray(100, 'x') + '"'), "'" + std::string(LongestText, 'x') + "' end");
  // A cut tears no character.
  const std::string torn = read("[\"" + QByteArray("x\xE2\x82\xAC").repeated(20) + "\"]");
  EXPECT_EQ(torn.find("\uFFFD"), std::string::npos);
}

TEST(JsonTokenizer, EndsWhereNothingMoreIsWanted) {
  Notes notes;
  notes.enough = 3;
  JsonTokenizer tokenizer(notes, Deepest, LongestText);
  tokenizer.add("[1, 2, 3, no json");
  EXPECT_EQ(notes.notes.join(u' '), "[ '1' '2'");
  EXPECT_EQ(tokenizer.errorText(), "");
}
