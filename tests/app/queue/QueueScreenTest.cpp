// The queue window on a real X server: drags from other programs and within it, and real keys.
#include "tests/app/Probe.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <memory>
#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;

namespace {
constexpr int RowHeight = 36;
const QString Fox = u"The quick brown fox jumps over the lazy dog"_s;
const QString Box = u"Pack my box with five dozen liquor jugs"_s;
const QString Moons = u"A combo sign: two moons"_s;
const QString Rain = u"Rain tomorrow, 12 °C — شمس بعد غد"_s;

const QString ProbeProgram = QStringLiteral(ZQTICKER_QUEUE_PROBE);

class QueueScreen : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!XServer::isInstalled() || !XServer::hasProgram(u"xdotool"_s))
      GTEST_SKIP() << "Xvfb or xdotool is not installed";
    server_.emplace(800, 500);
    ASSERT_FALSE(server_->display().isEmpty()) << "Xvfb does not start";
    pointer_.emplace(*server_);
    window_ = std::make_unique<Probe>(ProbeProgram, QStringList{u"window"_s}, *server_);
    const auto corner = window_->awaitWindow(u"window"_s);
    ASSERT_TRUE(corner);
    table_ = *corner;
  }
  void startSource(const QStringList& contents) {
    source_ = std::make_unique<Probe>(ProbeProgram, QStringList{u"source"_s} + contents, *server_);
    const auto corner = source_->awaitWindow(u"source"_s);
    ASSERT_TRUE(corner);
    sourceCorner_ = *corner;
    tellMove(sourceCorner_ + QPoint(50, 30));
    tell({u"mousedown"_s, u"1"_s});
    ASSERT_TRUE(waitUntil([&] { return source_->hasSaid(u"pressed"_s); }));
    ASSERT_TRUE(
        moveUntil(sourceCorner_ + QPoint(60, 40), [&] { return source_->hasSaid(u"dragging"_s); }));
  }

  void tell(const QStringList& what) { pointer_->tell(what); }
  void tellMove(QPoint point) { pointer_->moveTo(point); }
  void key(const QString& keys) { tell({u"key"_s, keys}); }
  bool moveUntil(QPoint point, const std::function<bool()>& condition) {
    return pointer_->moveUntil(point, condition);
  }
  // A point in a row of the table, by a part of its height.
  QPoint inRow(int row, double part) const {
    return table_ + QPoint(200, static_cast<int>((row + part) * RowHeight));
  }
  QRgb colorAt(QPoint point) const { return server_->screenshot().pixel(point) & 0xffffff; }
  // The frame of a table that takes a drop.
  bool isFramed() {
    const QImage screen = server_->screenshot();
    const QRgb edge = screen.pixel(table_ + QPoint(0, 2)) & 0xffffff;
    return edge == (screen.pixel(table_ + QPoint(1, 60)) & 0xffffff) &&
           edge == (screen.pixel(table_ + QPoint(2, 120)) & 0xffffff) &&
           edge != (screen.pixel(table_ + QPoint(4, 60)) & 0xffffff);
  }
  void dropAt(QPoint point) {
    ASSERT_TRUE(moveUntil(point, [&] { return source_->hasSaid(u"action copy"_s); }));
    EXPECT_TRUE(moveUntil(point, [&] { return isFramed(); }));
    tell({u"mouseup"_s, u"1"_s});
    EXPECT_TRUE(waitUntil([&] { return source_->hasSaid(u"result copy"_s); }))
        << "never a move, which would take it from the other program";
    EXPECT_TRUE(waitUntil([&] { return !isFramed(); }));
  }
  bool becomes(const QStringList& rows) {
    return waitUntil([&] { return window_->last(u"rows "_s) == rows.join(u'|'); });
  }

  std::optional<XServer> server_;
  std::optional<Pointer> pointer_;
  std::unique_ptr<Probe> window_;
  std::unique_ptr<Probe> source_;
  QPoint table_; // the upper left corner of its rows
  QPoint sourceCorner_;
};
} // namespace

TEST_F(QueueScreen, TakesTextWhereItIsDropped) {
  ASSERT_FALSE(isFramed());
  ASSERT_NO_FATAL_FAILURE(startSource({u"text"_s, u"one\ntwo"_s}));
  ASSERT_NO_FATAL_FAILURE(dropAt(inRow(2, 0.1)));
  EXPECT_TRUE(becomes({Fox, Box, u"one"_s, u"two"_s, Moons, QString(), Rain}));
  EXPECT_EQ(window_->last(u"said "_s), u"2 signs added"_s);
}

TEST_F(QueueScreen, TakesAPictureAndALink) {
  ASSERT_NO_FATAL_FAILURE(startSource({u"picture"_s}));
  ASSERT_NO_FATAL_FAILURE(dropAt(inRow(5, 0.9)));
  EXPECT_TRUE(becomes({Fox, Box, Moons, QString(), Rain, QString()}));
  ASSERT_NO_FATAL_FAILURE(startSource({u"link"_s, u"https://example.org/"_s, u"The title"_s}));
  ASSERT_NO_FATAL_FAILURE(dropAt(inRow(1, 0.1)));
  EXPECT_TRUE(becomes({Fox, u"The title"_s, Box, Moons, QString(), Rain, QString()}));
}

TEST_F(QueueScreen, TakesFilesAndNamesTheBrokenOnes) {
  const QTemporaryDir folder;
  const auto write = [&](const QString& name, const QByteArray& bytes) {
    QFile file(folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return file.fileName();
  };
  ASSERT_NO_FATAL_FAILURE(startSource({u"files"_s, write(u"broken.png"_s, "\x89PNG\r\n\x1a\n"),
                                       write(u"lines.txt"_s, "from a file\n")}));
  // What is on the strip stays before.
  ASSERT_NO_FATAL_FAILURE(dropAt(inRow(0, 0.2)));
  EXPECT_TRUE(becomes({Fox, u"from a file"_s, Box, Moons, QString(), Rain}));
  EXPECT_EQ(window_->last(u"said "_s),
            u"1 sign added; broken.png: not a picture that can be read"_s);
}

TEST_F(QueueScreen, RefusesTooMuchWhileItIsDragged) {
  ASSERT_NO_FATAL_FAILURE(startSource({u"many"_s}));
  ASSERT_TRUE(moveUntil(inRow(2, 0.5), [&] { return window_->hasSaidStart(u"status "_s); }));
  EXPECT_EQ(window_->last(u"status "_s), u"Only 100 files can be dropped at once"_s);
  EXPECT_FALSE(isFramed());
  tell({u"mouseup"_s, u"1"_s});
  EXPECT_TRUE(waitUntil([&] { return source_->hasSaid(u"result none"_s); }));
  EXPECT_EQ(window_->last(u"rows "_s), (QStringList{Fox, Box, Moons, QString(), Rain}.join(u'|')));
}

TEST_F(QueueScreen, MovesASignThatIsDraggedWithinIt) {
  tellMove(inRow(4, 0.5));
  tell({u"mousedown"_s, u"1"_s});
  ASSERT_TRUE(moveUntil(inRow(3, 0.5), [&] { return isFramed(); }));
  EXPECT_TRUE(moveUntil(inRow(1, 0.2), [&] { return isFramed(); }));
  // The line before the row.
  EXPECT_TRUE(moveUntil(inRow(1, 0.2), [&] {
    return colorAt(table_ + QPoint(100, RowHeight)) == colorAt(table_ + QPoint(0, 2));
  }));
  tell({u"mouseup"_s, u"1"_s});
  EXPECT_TRUE(becomes({Fox, Rain, Box, Moons, QString()}));
  EXPECT_TRUE(waitUntil([&] { return !isFramed(); }));
}

TEST_F(QueueScreen, IsUsedByKeys) {
  tellMove(inRow(1, 0.5));
  tell({u"click"_s, u"1"_s});
  key(u"ctrl+Down"_s);
  EXPECT_TRUE(becomes({Fox, Moons, Box, QString(), Rain}));
  key(u"alt+Up"_s);
  EXPECT_TRUE(becomes({Fox, Box, Moons, QString(), Rain}));
  key(u"F2"_s);
  key(u"ctrl+a"_s);
  tell({u"type"_s, u"edited"_s});
  key(u"Return"_s);
  EXPECT_TRUE(becomes({Fox, u"edited"_s, Moons, QString(), Rain}));
  key(u"Delete"_s);
  EXPECT_TRUE(becomes({Fox, Moons, QString(), Rain}));
  key(u"ctrl+z"_s);
  EXPECT_TRUE(becomes({Fox, u"edited"_s, Moons, QString(), Rain}));
  // By its letter, wherever the focus is.
  key(u"alt+r"_s);
  EXPECT_TRUE(becomes({Fox, Moons, QString(), Rain}));
  key(u"alt+t"_s);
  tell({u"type"_s, u"typed"_s});
  key(u"Return"_s);
  EXPECT_TRUE(becomes({Fox, Moons, QString(), Rain, u"typed"_s}));
}
