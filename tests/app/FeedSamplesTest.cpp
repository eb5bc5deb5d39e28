// The documents in tests/app/feeds: what is read from each stands under its name in expected/, and
// does not depend on how the document is cut.
#include "tests/app/FeedDescription.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QHash>

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
const QString ContentTypes = u"content_types.txt"_s;

QDir samples() {
  return QDir(QStringLiteral(ZQTICKER_SOURCE_DIR "/tests/app/feeds"));
}

QByteArray read(const QString& name) {
  QFile file(samples().filePath(name));
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
  return file.readAll();
}

// What a server says of the sample; empty for most.
QString contentType(const QString& name) {
  for (const QString& line : QString::fromUtf8(read(ContentTypes)).split(u'\n'))
    if (line.startsWith(name + u' '))
      return line.section(u' ', 1);
  return {};
}

// The result of the document in pieces, the first of `first` bytes and the others of `size`.
QString parsed(const QByteArray& document, const QString& type, qsizetype first, qsizetype size) {
  FeedParser parser(QUrl(u"https://base.example/feeds/feed"_s), type);
  qsizetype from = 0;
  for (qsizetype length = first; from < document.size(); length = size) {
    length = std::min(length, document.size() - from);
    parser.addData(QByteArrayView(document).sliced(from, length));
    from += length;
  }
  parser.finish();
  return zq::app::testing::describe(parser);
}

class FeedSample : public ::testing::TestWithParam<std::string> {
 protected:
  QString name() const { return QString::fromStdString(GetParam()); }
};

std::vector<std::string> sampleNames() {
  std::vector<std::string> names;
  for (const QString& name : samples().entryList(QDir::Files))
    if (name != ContentTypes)
      names.push_back(name.toStdString());
  return names;
}
} // namespace

TEST_P(FeedSample, IsReadAsExpected) {
  const QByteArray document = read(name());
  const QByteArray expected = read(u"expected/"_s + name() + u".txt"_s);
  const QString result = parsed(document, contentType(name()), document.size(), document.size());
  EXPECT_EQ(result.toStdString(), expected.toStdString());
}

TEST_P(FeedSample, IsReadTheSameInPiecesOfAnySize) {
  const QByteArray document = read(name());
  const QString type = contentType(name());
  const QString whole = parsed(document, type, document.size(), document.size());
  for (const qsizetype size : {1, 2, 3, 5, 16, 100})
    EXPECT_EQ(parsed(document, type, size, size), whole) << "pieces of " << size;
}

TEST_P(FeedSample, IsReadTheSameInTwoPiecesWhereverItIsCut) {
  constexpr qsizetype MostCuts = 800;
  const QByteArray document = read(name());
  const QString type = contentType(name());
  const QString whole = parsed(document, type, document.size(), document.size());
  // Of the few longer documents not every place.
  const qsizetype step = document.size() / MostCuts + 1;
  for (qsizetype cut = 1; cut < document.size(); cut += step)
    ASSERT_EQ(parsed(document, type, cut, document.size()), whole) << "cut at byte " << cut;
}

INSTANTIATE_TEST_SUITE_P(Feeds, FeedSample, ::testing::ValuesIn(sampleNames()),
                         [](const auto& sample) {
                           std::string name = sample.param;
                           std::replace(name.begin(), name.end(), '.', '_');
                           return name;
                         });

TEST(FeedSamples, HaveAnExpectedResultEach) {
  QStringList expected = samples().entryList(QDir::Files);
  expected.removeAll(ContentTypes);
  EXPECT_FALSE(expected.isEmpty());
  for (QString& name : expected)
    name += u".txt"_s;
  EXPECT_EQ(QDir(samples().filePath(u"expected"_s)).entryList(QDir::Files), expected);
}
