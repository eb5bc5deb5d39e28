#include "tests/conformance/Runner.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace zq::conformance;

namespace {
QByteArray rewritten(const QByteArray& json) {
  return CaseValue::read(json).json();
}

bool isEqual(const QByteArray& a, const QByteArray& b) {
  return CaseValue::read(a).isEqual(CaseValue::read(b));
}

QByteArray resultOf(const QByteArray& line) {
  return resultOfLine(line).json();
}

QByteArray failureOf(const QByteArray& line) {
  return failureOfLine(line);
}

struct ProgramRun {
  int status;
  QByteArray output;
  QByteArray errors;
};

ProgramRun run(const QStringList& arguments, const QByteArray& input = {}) {
  QProcess process;
  process.start(QStringLiteral(ZQTICKER_CONFORMANCE), arguments);
  process.write(input);
  process.closeWriteChannel();
  EXPECT_TRUE(process.waitForFinished(60000));
  EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
  return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

constexpr char Good[] = R"({"id": "g", "op": "lastCharacter", "receiver": "ab", "value": "b"})";
constexpr char Bad[] = R"({"id": "b", "op": "lastCharacter", "receiver": "ab", "value": "a"})";
constexpr char Unknown[] = R"({"id": "u", "op": "firstCharacter", "receiver": "ab", "value": "a"})";
} // namespace

TEST(CaseValue, KeepsLoneSurrogates) {
  EXPECT_EQ(CaseValue::read(R"("\ud83d\ude00\ud83d")").as<QString>(),
            QString::fromUtf16(u"\xd83d\xde00\xd83d"));
  EXPECT_EQ(rewritten(R"("\ud83d")"), R"("\ud83d")");
  EXPECT_EQ(rewritten(R"("\ude00\ud83d")"), R"("\ude00\ud83d")");
}

TEST(CaseValue, ReadsEveryEscapeAndWritesAscii) {
  EXPECT_EQ(CaseValue::read(R"("\"\\\/\b\f\n\r\t\u0041\u00E9")").as<QString>(),
            u"\"\\/\b\f\n\r\tA\u00e9");
  EXPECT_EQ(rewritten("\"\xc3\xa9\\u0000\\u007f \\\\\""), R"("\u00e9\u0000\u007f \\")");
}

TEST(CaseValue, TellsIntegersFromFloatingPointNumbers) {
  EXPECT_TRUE(CaseValue::read("1").is<qint64>());
  EXPECT_TRUE(CaseValue::read("1.0").is<double>());
  EXPECT_TRUE(CaseValue::read("1e3").is<double>());
  EXPECT_EQ(rewritten("9223372036854775807"), "9223372036854775807");
  EXPECT_EQ(rewritten("18446744073709551616"), "18446744073709551616");
}

TEST(CaseValue, KeepsSeventeenDigitsAndTheSignOfZero) {
  EXPECT_EQ(rewritten("0.10000000000000001"), "0.10000000000000001");
  EXPECT_EQ(rewritten("-0.0"), "-0.0");
  EXPECT_EQ(rewritten("1e+22"), "1e+22");
  EXPECT_EQ(CaseValue(0.1 + 0.2).json(), "0.30000000000000004");
  EXPECT_EQ(CaseValue(-1.0).json(), "-1.0");
  EXPECT_EQ(CaseValue(-1.0 / 0.0).json(), R"({"float": "-inf"})");
}

TEST(CaseValue, ReadsLongLines) {
  const QByteArray line = '"' + QByteArray(5'000'000, 'x') + '"';
  EXPECT_EQ(rewritten(line), line);
}

TEST(CaseValue, RefusesWhatIsNoJson) {
  for (const char* json : {"", "{", "[1,]", "{\"a\" 1}", "{a: 1}", "\"", "\"\\x\"", "\"\\u12g4\"",
                           "nul", "1 2", "1..2", "--1", "+1", "1e999", "\"\\", "\"\\u12"})
    EXPECT_THROW(CaseValue::read(json), CaseError) << json;
  EXPECT_THROW(CaseValue::read(QByteArray(100'000, '[')), CaseError);
}

TEST(CaseValue, ComparesByValue) {
  EXPECT_TRUE(isEqual("1", "1.0"));
  EXPECT_TRUE(isEqual("-0.0", "0"));
  EXPECT_TRUE(isEqual(R"({"a": 1, "b": [2]})", R"({"b": [2], "a": 1})"));
  EXPECT_TRUE(isEqual(R"({"decimal": "1.50"})", R"({"decimal": "1.5"})"));
  EXPECT_TRUE(isEqual(R"({"float": "nan"})", R"({"float": "nan"})"));
}

TEST(CaseValue, TellsApartWhatDiffers) {
  for (const auto& [a, b] : std::vector<std::pair<const char*, const char*>>{
           {"1", "2"},
           {"1", "true"},
           {"0", "null"},
           {"\"\"", "null"},
           {"\"1\"", "1"},
           {"0.1", "0.10000000000000002"},
           {"9007199254740993", "9007199254740992.0"},
           {"[1]", "[1, 1]"},
           {R"({"a": 1})", R"({"a": 1, "b": 1})"},
           {R"({"a": null})", R"({"b": null})"},
           {R"({"decimal": "1.5"})", R"({"decimal": "1.51"})"},
           {R"("\ud83d")", R"("\ud83e")"}}) {
    EXPECT_FALSE(isEqual(a, b)) << a << ' ' << b;
    EXPECT_FALSE(isEqual(b, a)) << a << ' ' << b;
  }
}

TEST(ConformanceRunner, AnswersWithWhatTheOperationHas) {
  EXPECT_EQ(resultOf(Bad), R"({"id": "b", "value": "b"})");
  EXPECT_EQ(resultOf(R"({"id": "d", "op": "deleteAllCharacters", "receiver": "x"})"),
            R"({"id": "d", "receiverAfter": ""})");
  EXPECT_EQ(resultOf(R"({"id": "s", "op": "scanCharacterIntoString:",
                         "receiver": {"scanner": {"string": "a", "location": 1, "skip": null}}})"),
            R"({"id": "s", "value": false, "out": null, "locationAfter": 1})");
  EXPECT_EQ(resultOf(R"({"id": "r", "op": "initialCharacters", "receiver": "12"})"),
            R"({"id": "r", "raises": "RangeException"})");
}

TEST(ConformanceRunner, SaysWhatItDoesNotKnow) {
  EXPECT_EQ(resultOf(Unknown), R"({"id": "u", "error": "unknown operation"})");
  EXPECT_EQ(failureOfLine(Unknown), "\"u\": unknown operation");
}

TEST(ConformanceRunner, SaysWhatIsNoCase) {
  for (const char* line :
       {"[]", "{\"op\"", R"({"op": 1})", R"({"op": "lastCharacter", "receiver": 1})",
        R"({"op": "lastCharacter"})", R"({"op": "advance", "receiver": {"scanner": {}}})",
        R"({"op": "startOfDay", "receiver": {"calendarDate": {"instant": 0}}})",
        R"({"op": "isEmptyString", "receiver": "", "environment": {"timeZone": "No/Where"}})"}) {
    EXPECT_NE(resultOfLine(line).find(u"error"), nullptr) << line;
    EXPECT_FALSE(failureOfLine(line).isEmpty()) << line;
  }
}

TEST(ConformanceRunner, ComparesEveryFieldThatIsStated) {
  EXPECT_EQ(failureOfLine(Good), "");
  EXPECT_EQ(failureOfLine(R"({"id": "n", "op": "lastCharacter", "receiver": "ab"})"), "");
  EXPECT_EQ(failureOfLine(Bad), R"("b": value: expected "a", found "b")");
  const QByteArray scan = R"({"id": "s", "op": "scanCharacterIntoString:",
      "receiver": {"scanner": {"string": "a", "location": 0, "skip": null}}, )";
  EXPECT_EQ(failureOf(scan + R"("value": true, "out": "a", "locationAfter": 1})"), "");
  EXPECT_EQ(failureOf(scan + R"("value": false})"), R"("s": value: expected false, found true)");
  EXPECT_EQ(failureOf(scan + R"("out": null})"), R"("s": out: expected null, found "a")");
  EXPECT_EQ(failureOf(scan + R"("locationAfter": 0})"),
            R"("s": locationAfter: expected 0, found 1)");
  EXPECT_EQ(failureOf(scan + R"("receiverAfter": "a"})"),
            R"("s": receiverAfter: expected "a", found none)");
}

TEST(ConformanceRunner, ComparesExceptions) {
  const QByteArray raising = R"({"id": "r", "op": "initialCharacters", "receiver": "12")";
  EXPECT_EQ(failureOf(raising + R"(, "raises": "RangeException"})"), "");
  EXPECT_NE(failureOf(raising + R"(, "raises": "InvalidArgumentException"})"), "");
  EXPECT_NE(failureOf(raising + "}"), "");
  EXPECT_NE(failureOf(raising + R"(, "value": ""})"), "");
  EXPECT_NE(failureOfLine(R"({"id": "x", "op": "lastCharacter", "receiver": "ab",
                              "raises": "RangeException"})"),
            "");
}

TEST(ConformanceRunner, LetsNoCaseChangeTheSurroundingsOfTheNext) {
  const QByteArray first = R"({"op": "timeZone", "receiver": {"date": 0.0})";
  const QByteArray before = resultOf(first + '}');
  EXPECT_EQ(resultOf(first + R"(, "environment": {"timeZone": "Asia/Kathmandu"}})"),
            R"({"id": "", "value": {"timeZone": "Asia/Kathmandu"}})");
  EXPECT_EQ(resultOf(first + '}'), before);
}

TEST(ConformanceProgram, AnswersEachLineOfItsInput) {
  const ProgramRun result = run({}, QByteArray(Good) + "\n\n" + Unknown + '\n' + Bad);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "{\"id\": \"g\", \"value\": \"b\"}\n"
                           "{\"id\": \"u\", \"error\": \"unknown operation\"}\n"
                           "{\"id\": \"b\", \"value\": \"b\"}\n");
  EXPECT_EQ(result.errors, "");
}

TEST(ConformanceProgram, ChecksFilesAndFailsWhereACaseDiffers) {
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"cases.jsonl"_s);
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(QByteArray(Good) + '\n' + Bad + '\n' + Unknown + '\n');
  file.close();
  const ProgramRun result = run({path});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, path.toUtf8() + ":2: \"b\": value: expected \"a\", found \"b\"\n" +
                               path.toUtf8() + ":3: \"u\": unknown operation\n" +
                               "3 cases, 2 failures\n");
  const ProgramRun passing = run({u"-"_s}, Good);
  EXPECT_EQ(passing.status, 0);
  EXPECT_EQ(passing.output, "1 cases, 0 failures\n");
}

TEST(ConformanceProgram, FailsWhereAFileCannotBeRead) {
  const ProgramRun result = run({u"/nowhere/cases.jsonl"_s});
  EXPECT_EQ(result.status, 2);
  EXPECT_TRUE(result.errors.startsWith("/nowhere/cases.jsonl: ")) << result.errors.constData();
}
