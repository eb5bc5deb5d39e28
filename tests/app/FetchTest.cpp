// The command `fetch` as a user meets it, against a server on loopback.
#include "app/commands/TransferProgress.h"
#include "tests/app/Program.h"
#include "tests/support/HttpServer.h"
#include "tests/support/waiting.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::testing;

namespace {
class Fetch : public ::testing::Test {
 protected:
  QString address(const QByteArray& path) const { return server_.url(path).toString(); }
  QString file(const QString& name) const { return folder_.filePath(name); }
  QByteArray contentsOf(const QString& name) const {
    QFile opened(file(name));
    return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray("unreadable");
  }
  QStringList entries() const {
    return QDir(folder_.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::Hidden);
  }
  // With a cache folder of its own.
  QProcessEnvironment environment() const {
    QProcessEnvironment result = plainEnvironment();
    result.insert(u"XDG_CACHE_HOME"_s, cacheFolder_.path());
    return result;
  }
  Outcome fetch(const QStringList& arguments) const {
    return runZqticker(QStringList{u"fetch"_s} + arguments, {}, environment());
  }
  QJsonObject fetchJson(const QStringList& arguments, int status) const {
    const Outcome outcome = fetch(QStringList{u"--json"_s} + arguments);
    EXPECT_EQ(outcome.status, status) << outcome.errors.constData();
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(outcome.output, &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << outcome.output.constData();
    return document.object();
  }

  HttpServer server_;
  QTemporaryDir folder_;
  QTemporaryDir cacheFolder_;
};
} // namespace

TEST_F(Fetch, WritesTheBodyToStandardOutput) {
  server_.route("/body", 200, QByteArray("a\0b\n", 4));
  const Outcome outcome = fetch({address("/body")});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, QByteArray("a\0b\n", 4));
  EXPECT_EQ(outcome.errors, "");
}

TEST_F(Fetch, WritesTheBodyToAFileAndNothingElse) {
  server_.route("/body", 200, "body");
  const Outcome outcome = fetch({u"--output"_s, file(u"out"_s), address("/body")});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(contentsOf(u"out"_s), "body");
  EXPECT_EQ(entries(), QStringList{u"out"_s});
}

TEST_F(Fetch, WritesAnEmptyBodyAsAnEmptyFile) {
  server_.route("/empty", 200, "");
  EXPECT_EQ(fetch({address("/empty"), u"--output"_s, file(u"out"_s)}).status, 0);
  EXPECT_EQ(contentsOf(u"out"_s), "");
}

TEST_F(Fetch, FollowsRedirectsAndTellsTheLastAddress) {
  server_.redirect("/from", "to");
  server_.route("/to", 200, "there", {{"X-Test", "1"}, {"x-test", "2"}});
  const QJsonObject json = fetchJson({address("/from")}, 0);
  EXPECT_EQ(json[u"outcome"_s], u"finished"_s);
  EXPECT_EQ(json[u"bytes"_s], 5);
  EXPECT_TRUE(json[u"error"_s].isNull());
  const QJsonObject response = json[u"response"_s].toObject();
  EXPECT_EQ(response[u"status"_s], 200);
  EXPECT_EQ(response[u"url"_s], address("/to"));
  EXPECT_EQ(response[u"headers"_s].toObject()[u"X-Test"_s], u"1, 2"_s);
}

TEST_F(Fetch, TellsTheSizeForPeopleBesideTheBytesForPrograms) {
  server_.route("/body", 200, QByteArray(1536, 'x'));
  const QJsonObject json = fetchJson({address("/body")}, 0);
  EXPECT_EQ(json[u"bytes"_s], 1536);
  EXPECT_EQ(json[u"size"_s], u"1.5 KB"_s);
}

TEST_F(Fetch, WritesFileAndJsonTogether) {
  server_.route("/body", 200, "body");
  const QJsonObject json = fetchJson({u"--output"_s, file(u"out"_s), address("/body")}, 0);
  EXPECT_EQ(json[u"bytes"_s], 4);
  EXPECT_EQ(contentsOf(u"out"_s), "body");
}

TEST_F(Fetch, TakesAnErrorPageAsContents) {
  server_.route("/gone", 410, "gone");
  const Outcome outcome = fetch({address("/gone")});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "gone");
  EXPECT_EQ(fetchJson({address("/gone")}, 0)[u"response"_s].toObject()[u"status"_s], 410);
}

TEST_F(Fetch, LeavesTheFileAsItWasWhenTheBodyBreaksOff) {
  server_.route("/half", [](const HttpRequest&, HttpReply& reply) {
    reply.beginWithLength(200, 100);
    reply.write(QByteArray(50, 'x'));
    reply.close();
  });
  QFile before(file(u"out"_s));
  ASSERT_TRUE(before.open(QIODevice::WriteOnly));
  before.write("before");
  before.close();
  const Outcome outcome = fetch({u"--output"_s, file(u"out"_s), address("/half")});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors.count('\n'), 1);
  EXPECT_TRUE(
      outcome.errors.startsWith(QByteArray("zqticker: " + address("/half").toUtf8() + ": ")));
  EXPECT_EQ(contentsOf(u"out"_s), "before");
  EXPECT_EQ(entries(), QStringList{u"out"_s});
}

TEST_F(Fetch, TellsAFailureAsJsonWithTheResponseThatCame) {
  server_.route("/half", [](const HttpRequest&, HttpReply& reply) {
    reply.beginWithLength(200, 100);
    reply.write(QByteArray(50, 'x'));
    reply.close();
  });
  const QJsonObject json = fetchJson({address("/half")}, 1);
  EXPECT_EQ(json[u"outcome"_s], u"failed"_s);
  EXPECT_EQ(json[u"bytes"_s], 0);
  EXPECT_EQ(json[u"response"_s].toObject()[u"status"_s], 200);
  const QJsonObject error = json[u"error"_s].toObject();
  EXPECT_EQ(error[u"domain"_s], u"NSURLErrorDomain"_s);
  EXPECT_EQ(error[u"code"_s], -1005);
  EXPECT_FALSE(error[u"text"_s].toString().isEmpty());
}

TEST_F(Fetch, TellsAFailureWithoutAResponseAsJson) {
  const QString refused = address("/");
  server_.stop();
  const QJsonObject json = fetchJson({refused}, 1);
  EXPECT_TRUE(json[u"response"_s].isNull());
  EXPECT_EQ(json[u"error"_s].toObject()[u"code"_s], -1004);
}

TEST_F(Fetch, GivesUpWhenNothingComesForTheTimeout) {
  const HttpLatch never;
  server_.route("/never", [never](const HttpRequest&, HttpReply& reply) { reply.wait(never); });
  const QJsonObject json = fetchJson({u"--timeout"_s, u"0.2"_s, address("/never")}, 1);
  EXPECT_EQ(json[u"error"_s].toObject()[u"code"_s], -1001);
}

TEST_F(Fetch, StopsWhenInterruptedAndLeavesNoFile) {
  const HttpLatch never;
  server_.route("/never", [never](const HttpRequest&, HttpReply& reply) {
    reply.beginWithLength(200, 100);
    reply.write("part");
    reply.wait(never);
  });
  RunningProgram program({u"fetch"_s, u"--output"_s, file(u"out"_s), address("/never")},
                         environment());
  ASSERT_TRUE(waitFor([&] { return server_.requestCount("/never") == 1; }));
  program.interrupt(SIGINT);
  EXPECT_EQ(program.awaitStatus(), 1);
  EXPECT_EQ(program.process().readAllStandardError(),
            "zqticker: " + address("/never").toUtf8() + ": interrupted\n");
  EXPECT_EQ(entries(), QStringList());
}

TEST_F(Fetch, TakesFromTheUsersCacheWhatThePolicySays) {
  server_.route("/kept", 200, "kept", {{"Cache-Control", "max-age=1000"}});
  EXPECT_EQ(fetch({u"--policy"_s, u"cache-only"_s, address("/kept")}).status, 1);
  EXPECT_EQ(server_.requestCount(), 0);
  EXPECT_EQ(fetch({address("/kept")}).output, "kept");
  EXPECT_EQ(server_.requestCount(), 1);
  for (const QString& policy : {u"protocol"_s, u"cache-else-load"_s, u"cache-only"_s})
    EXPECT_EQ(fetch({u"--policy"_s, policy, address("/kept")}).output, "kept");
  EXPECT_EQ(server_.requestCount(), 1);
  EXPECT_EQ(fetch({u"--policy"_s, u"ignore-cache"_s, address("/kept")}).output, "kept");
  EXPECT_EQ(server_.requestCount(), 2);
}

TEST_F(Fetch, ReadsFilesAndDataAddresses) {
  QFile source(file(u"source"_s));
  ASSERT_TRUE(source.open(QIODevice::WriteOnly));
  source.write("from a file");
  source.close();
  EXPECT_EQ(fetch({QUrl::fromLocalFile(source.fileName()).toString()}).output, "from a file");
  EXPECT_EQ(fetch({u"data:text/plain;base64,aGVsbG8="_s}).output, "hello");
}

TEST_F(Fetch, KeepsAPasswordOutOfItsMessages) {
  server_.stop();
  QUrl url = server_.url("/");
  url.setUserName(u"me"_s);
  url.setPassword(u"secret"_s);
  const Outcome outcome = fetch({url.toString()});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_FALSE(outcome.errors.contains("secret")) << outcome.errors.constData();
}

TEST_F(Fetch, RefusesAddressesOfOtherSchemes) {
  const Outcome outcome = fetch({u"gopher://example.invalid/"_s});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors,
            "zqticker: gopher://example.invalid/: unsupported URL scheme: gopher\n");
}

TEST_F(Fetch, RefusesWrongCommandLines) {
  const auto expectUsage = [&](const QStringList& arguments, const QByteArray& line) {
    const Outcome outcome = fetch(arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors, "zqticker: " + line + "\n");
    EXPECT_EQ(outcome.output, "");
  };
  expectUsage({}, "URL: missing (see zqticker fetch --help)");
  expectUsage({u"http://a/"_s, u"http://b/"_s},
              "http://b/: unexpected argument (see zqticker fetch --help)");
  expectUsage({u"example.org"_s}, "example.org: no scheme (such as https://) begins this address");
  expectUsage({u""_s}, "the address is empty");
  expectUsage({u"http://[bad/"_s}, "http://[bad/: not an address");
  expectUsage({u"--timeout"_s, u"0"_s, u"http://a/"_s},
              "--timeout 0: must be between 0.001 and 86400");
  expectUsage({u"--policy"_s, u"never"_s, u"http://a/"_s},
              "--policy never: must be protocol or ignore-cache or cache-else-load or cache-only");
}

TEST(ProgressText, ShowsABarWhereTheTotalIsKnown) {
  EXPECT_EQ(progressText(4'718'592, 10'485'760, 2),
            u" 45 % [#############                 ] 4.5 MB of 10.0 MB, 2.2 MB/s"_s);
}

TEST(ProgressText, ShowsSizeAndRateWhereItIsNot) {
  EXPECT_EQ(progressText(1536, -1, 1), u"1.5 KB, 1.5 KB/s"_s);
}

TEST(ProgressText, ShowsSizesBeyondTheUnitsInBytes) {
  EXPECT_EQ(progressText(std::numeric_limits<qint64>::max(), -1, 0.001),
            u"9223372036854775807 B, 4611686018427387904 B/s"_s);
  EXPECT_EQ(progressText(0, (qint64(1) << 50) - 1, 0).section(u"] "_s, 1), u"0.0 B of 1024.0 TB"_s);
}

TEST(ProgressText, StaysWholeWhenMoreComesThanAnnounced) {
  EXPECT_TRUE(progressText(20, 10, 1).startsWith("100 % [##############################]"_L1));
}
