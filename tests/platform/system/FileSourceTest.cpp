// Addresses of files.
#include "tests/platform/system/ConnectionRecorder.h"
#include "zqticker/platform/system/url_errors.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {
class FileSource : public ::testing::Test {
 protected:
  // Makes a file and returns its address.
  QUrl makeFile(const QString& name, const QByteArray& contents) {
    QFile file(folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(file.write(contents), contents.size());
    return QUrl::fromLocalFile(file.fileName());
  }

  QTemporaryDir folder;
  ConnectionRecorder recorder;
};
} // namespace

TEST_F(FileSource, LoadsAFile) {
  const QUrl url = makeFile(u"a.txt"_s, "contents");
  ASSERT_TRUE(recorder.load(url));
  EXPECT_TRUE(recorder.isFinished);
  EXPECT_EQ(recorder.body(), "contents");
  ASSERT_EQ(recorder.responses.size(), 1u);
  EXPECT_EQ(recorder.responses[0]->URL(), url);
  EXPECT_EQ(recorder.responses[0]->statusCode(), 0);
  EXPECT_EQ(recorder.responses[0]->expectedContentLength(), 8);
  EXPECT_EQ(recorder.responses[0]->MIMEType(), u"text/plain"_s);
  EXPECT_FALSE(recorder.responses[0]->textEncodingName());
}

TEST_F(FileSource, KnowsATypeByTheNameAlone) {
  ASSERT_TRUE(recorder.load(makeFile(u"a.png"_s, "no picture")));
  ASSERT_EQ(recorder.responses.size(), 1u);
  EXPECT_EQ(recorder.responses[0]->MIMEType(), u"image/png"_s);
}

TEST_F(FileSource, LoadsAnEmptyFileWithoutAPiece) {
  ASSERT_TRUE(recorder.load(makeFile(u"empty"_s, {})));
  EXPECT_TRUE(recorder.isFinished);
  EXPECT_EQ(recorder.responses.size(), 1u);
  EXPECT_EQ(recorder.responses[0]->expectedContentLength(), 0);
  EXPECT_TRUE(recorder.pieces.empty());
}

TEST_F(FileSource, DeliversALargeFileInPieces) {
  QByteArray contents;
  for (int i = 0; i < 200000; ++i)
    contents += QByteArray::number(i) + '\n';
  ASSERT_GT(contents.size(), 1 << 20);
  ASSERT_TRUE(recorder.load(makeFile(u"large"_s, contents)));
  EXPECT_GT(recorder.pieces.size(), 3u);
  EXPECT_TRUE(recorder.body() == contents);
}

TEST_F(FileSource, ServesOthersBetweenThePiecesOfALargeFile) {
  ConnectionRecorder other;
  bool isOtherEndedBefore = false;
  recorder.onEnd = [&] { isOtherEndedBefore = other.ends > 0; };
  recorder.start(makeFile(u"large"_s, QByteArray(4 << 20, 'x')));
  other.start(makeFile(u"small"_s, "small"));
  ASSERT_TRUE(waitFor([&] { return recorder.ends > 0 && other.ends > 0; }));
  EXPECT_TRUE(isOtherEndedBefore);
}

TEST_F(FileSource, StopsReadingWhenItIsCancelled) {
  const auto connection = recorder.start(makeFile(u"large"_s, QByteArray(4 << 20, 'x')));
  recorder.onData = [&] { connection->cancel(); };
  ASSERT_TRUE(waitFor([&] { return !recorder.pieces.empty(); }));
  runPostedEvents();
  EXPECT_EQ(recorder.pieces.size(), 1u);
  EXPECT_EQ(recorder.ends, 0);
}

TEST_F(FileSource, ReadsEscapedNames) {
  ASSERT_TRUE(recorder.load(makeFile(u"50% größer #1?.txt"_s, "odd name")));
  EXPECT_EQ(recorder.body(), "odd name") << recorder.errorText().toStdString();
}

TEST_F(FileSource, ReadsANameThatIsNoUnicode) {
  const QByteArray path = QFile::encodeName(folder.filePath(u"x"_s)).chopped(1) + "\xff.txt";
  FILE* const file = fopen(path.constData(), "w");
  ASSERT_TRUE(file);
  fputs("odd bytes", file);
  fclose(file);
  const QByteArray address =
      "file://" + QFile::encodeName(folder.path()).toPercentEncoding("/") + "/%FF.txt";
  ASSERT_TRUE(recorder.load(QUrl::fromEncoded(address)));
  EXPECT_EQ(recorder.body(), "odd bytes") << recorder.errorText().toStdString();
  EXPECT_EQ(unlink(path.constData()), 0);
}

TEST_F(FileSource, TakesLocalhostForThisHost) {
  QUrl url = makeFile(u"a"_s, "here");
  url.setHost(u"localhost"_s);
  ASSERT_TRUE(recorder.load(url));
  EXPECT_EQ(recorder.body(), "here");
}

TEST_F(FileSource, RefusesAnotherHost) {
  QUrl url = makeFile(u"a"_s, "here");
  url.setHost(u"example.org"_s);
  ASSERT_TRUE(recorder.load(url));
  EXPECT_EQ(recorder.errorCode(), BadURL);
  EXPECT_EQ(recorder.errorText(), u"a file of another host: example.org"_s);
}

TEST_F(FileSource, FailsForAFileThatIsNotThere) {
  const QString path = folder.filePath(u"missing"_s);
  ASSERT_TRUE(recorder.load(QUrl::fromLocalFile(path)));
  EXPECT_EQ(recorder.errorCode(), FileDoesNotExist);
  EXPECT_EQ(recorder.errorText(), "no such file: "_L1 + path);
  EXPECT_TRUE(recorder.responses.empty());
}

TEST_F(FileSource, FailsForAFolder) {
  ASSERT_TRUE(recorder.load(QUrl::fromLocalFile(folder.path())));
  EXPECT_EQ(recorder.errorCode(), FileIsDirectory);
}

TEST_F(FileSource, FailsForAFileThatMayNotBeRead) {
  const QUrl url = makeFile(u"secret"_s, "secret");
  ASSERT_EQ(chmod(QFile::encodeName(url.toLocalFile()).constData(), 0), 0);
  if (geteuid() == 0)
    GTEST_SKIP() << "the superuser may read everything";
  ASSERT_TRUE(recorder.load(url));
  EXPECT_EQ(recorder.errorCode(), NoPermissionsToReadFile);
}

TEST_F(FileSource, RefusesAPipeWithoutWaitingForIt) {
  const QString path = folder.filePath(u"pipe"_s);
  ASSERT_EQ(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
  ASSERT_TRUE(recorder.load(QUrl::fromLocalFile(path)));
  EXPECT_EQ(recorder.errorCode(), CannotOpenFile);
  EXPECT_EQ(recorder.errorText(), "not a regular file: "_L1 + path);
}

TEST_F(FileSource, RefusesADevice) {
  ASSERT_TRUE(recorder.load(QUrl(u"file:///dev/zero"_s)));
  EXPECT_EQ(recorder.errorCode(), CannotOpenFile);
}

TEST_F(FileSource, RefusesAPathWithAZeroByte) {
  ASSERT_TRUE(recorder.load(QUrl::fromEncoded("file:///etc/passwd%00.txt")));
  EXPECT_EQ(recorder.errorCode(), BadURL);
}
