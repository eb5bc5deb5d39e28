#include "zqticker/views/ZQHighlightTableView.h"

#include "tests/support/waiting.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/SystemColors.h"

#include <gtest/gtest.h>

#include <QtGui/QPaintEvent>
#include <QtGui/QScreen>
#include <QtGui/QStandardItemModel>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using zq::testing::runPostedEvents;
using zq::testing::waitFor;

namespace {

constexpr QRgb Green = qRgb(0, 255, 0);

// 100 rows of white cells, nothing around them.
class HighlightTable : public ZQHighlightTableView {
 public:
  explicit HighlightTable(QWidget* parent = nullptr)
      : ZQHighlightTableView(parent), model_(100, 10) {
    setModel(&model_);
    setFrameShape(QFrame::NoFrame);
    setShowGrid(false);
    setFocusPolicy(Qt::NoFocus);
    horizontalHeader()->hide();
    verticalHeader()->hide();
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollMode(ScrollPerPixel);
    setVerticalScrollMode(ScrollPerPixel);
    viewport()->installEventFilter(this);
  }

  QStandardItemModel model_;
  // What was painted since it was last emptied.
  QRegion painted;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (watched == viewport() && event->type() == QEvent::Paint)
      painted += static_cast<QPaintEvent*>(event)->region();
    return ZQHighlightTableView::eventFilter(watched, event);
  }
};

class ZQHighlightTableViewDrawing : public ::testing::Test {
 protected:
  void SetUp() override {
    SystemColors::setTable([](const QString& name) -> Ref<Color> {
      return name == u"selectedTextBackgroundColor" ? Color::deviceRGB(0, 1, 0) : nullptr;
    });
  }
  void TearDown() override { SystemColors::setTable(nullptr); }

  // Whether green is where `rect` has its border of 3 points, and nowhere else.
  static ::testing::AssertionResult isFramed(const QImage& image, const QRect& rect) {
    if (image.isNull() || (!rect.isNull() && !image.rect().contains(rect)))
      return ::testing::AssertionFailure() << "no picture of it";
    const QRect inner = rect.adjusted(3, 3, -3, -3);
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x) {
        const bool isBorder = rect.contains(x, y) && !inner.contains(x, y);
        if ((image.pixel(x, y) == Green) != isBorder)
          return ::testing::AssertionFailure()
                 << x << ", " << y << (isBorder ? " is no border" : " is green");
      }
    return ::testing::AssertionSuccess();
  }
  static QImage pictureOf(QWidget& view) {
    return view.grab().toImage().convertToFormat(QImage::Format_RGB32);
  }
  // What stands on the screen, as it was painted piece by piece.
  static QImage screenOf(QWidget& window) {
    runPostedEvents();
    return window.screen()
        ->grabWindow(window.winId())
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
  }
  static void show(QWidget& window) {
    window.show();
    EXPECT_TRUE(waitFor([&] { return window.windowHandle()->isExposed(); }));
    runPostedEvents();
  }
};

} // namespace

TEST_F(ZQHighlightTableViewDrawing, HasNoFrameAtFirst) {
  HighlightTable table;
  table.resize(100, 80);
  EXPECT_FALSE(table.drawHighlight());
  EXPECT_TRUE(isFramed(pictureOf(table), QRect()));
}

TEST_F(ZQHighlightTableViewDrawing, FramesWhatIsVisibleThreePointsWide) {
  HighlightTable table;
  table.resize(100, 80);
  table.setDrawHighlight(true);
  EXPECT_TRUE(table.drawHighlight());
  EXPECT_TRUE(isFramed(pictureOf(table), QRect(0, 0, 100, 80)));
  table.setDrawHighlight(false);
  EXPECT_TRUE(isFramed(pictureOf(table), QRect()));
}

TEST_F(ZQHighlightTableViewDrawing, DrawsTheFrameOverTheRows) {
  HighlightTable table;
  table.resize(100, 80);
  for (int row = 0; row < 3; ++row)
    table.model_.setItem(row, 0, new QStandardItem(u"text"_s));
  for (int row = 0; row < 3; ++row)
    table.model_.item(row, 0)->setBackground(Qt::red);
  table.setDrawHighlight(true);
  const QImage image = pictureOf(table);
  EXPECT_TRUE(isFramed(image, QRect(0, 0, 100, 80)));
  EXPECT_EQ(image.pixel(4, 4), qRgb(255, 0, 0)) << "the rows are drawn";
}

TEST_F(ZQHighlightTableViewDrawing, FramesTheSameWhereverTheTableIsScrolledTo) {
  HighlightTable table;
  table.resize(100, 80);
  table.setDrawHighlight(true);
  show(table);
  table.verticalScrollBar()->setValue(37);
  table.horizontalScrollBar()->setValue(11);
  ASSERT_EQ(table.verticalScrollBar()->value(), 37);
  EXPECT_TRUE(isFramed(screenOf(table), QRect(0, 0, 100, 80)));
}

TEST_F(ZQHighlightTableViewDrawing, LeavesTheHeadersOut) {
  HighlightTable table;
  table.horizontalHeader()->show();
  table.resize(100, 80);
  table.setDrawHighlight(true);
  show(table);
  const int header = table.viewport()->y();
  EXPECT_GT(header, 0);
  EXPECT_TRUE(isFramed(pictureOf(table), QRect(0, header, 100, 80 - header)));
}

class ZQHighlightTableViewInAScrollArea : public ZQHighlightTableViewDrawing {
 protected:
  void SetUp() override {
    ZQHighlightTableViewDrawing::SetUp();
    area.setFrameShape(QFrame::NoFrame);
    area.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area.resize(100, 80);
    table = new HighlightTable;
    // The toolkit then moves its pixels rather than drawing them anew.
    table->setAutoFillBackground(true);
    table->resize(300, 400);
    area.setWidget(table);
    show(area);
    table->setDrawHighlight(true);
  }

  QScrollArea area;
  HighlightTable* table = nullptr;
};

TEST_F(ZQHighlightTableViewInAScrollArea, FramesTheVisiblePart) {
  EXPECT_TRUE(isFramed(screenOf(area), QRect(0, 0, 100, 80)));
  EXPECT_TRUE(isFramed(pictureOf(*table), QRect(0, 0, 100, 80)));
}

TEST_F(ZQHighlightTableViewInAScrollArea, FramesThePartToWhichItIsScrolled) {
  runPostedEvents();
  area.verticalScrollBar()->setValue(37);
  area.horizontalScrollBar()->setValue(11);
  EXPECT_TRUE(isFramed(screenOf(area), QRect(0, 0, 100, 80)));
  EXPECT_TRUE(isFramed(pictureOf(*table), QRect(11, 37, 100, 80)));
}

TEST_F(ZQHighlightTableViewInAScrollArea, FramesThePartThatAChangedSizeShows) {
  runPostedEvents();
  area.resize(140, 120);
  EXPECT_TRUE(isFramed(screenOf(area), QRect(0, 0, 140, 120)));
  area.resize(90, 60);
  EXPECT_TRUE(isFramed(screenOf(area), QRect(0, 0, 90, 60)));
}

TEST_F(ZQHighlightTableViewInAScrollArea, DrawsNoFrameWhereNothingIsVisible) {
  table->move(-300, 0);
  EXPECT_TRUE(isFramed(pictureOf(*table), QRect()));
}

TEST_F(ZQHighlightTableViewInAScrollArea, FollowsTheViewAroundItIntoAnother) {
  QScrollArea other;
  other.setFrameShape(QFrame::NoFrame);
  other.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  other.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  other.resize(50, 40);
  other.setWidget(area.takeWidget());
  show(other);
  EXPECT_TRUE(isFramed(screenOf(other), QRect(0, 0, 50, 40)));
  other.resize(70, 60);
  EXPECT_TRUE(isFramed(screenOf(other), QRect(0, 0, 70, 60)));
}

TEST_F(ZQHighlightTableViewDrawing, ChangesHaveTheWholeViewDrawnAnew) {
  HighlightTable table;
  table.resize(100, 80);
  show(table);
  for (const bool flag : {true, false}) {
    table.painted = QRegion();
    table.setDrawHighlight(flag);
    runPostedEvents();
    EXPECT_EQ(table.painted, QRegion(0, 0, 100, 80));
  }
}

TEST_F(ZQHighlightTableViewDrawing, TheSameStateAgainDrawsNothing) {
  HighlightTable table;
  table.resize(100, 80);
  show(table);
  table.setDrawHighlight(true);
  runPostedEvents();
  table.painted = QRegion();
  table.setDrawHighlight(true);
  // What the view is asked to draw comes in one go with this.
  table.viewport()->update(0, 0, 1, 1);
  runPostedEvents();
  EXPECT_EQ(table.painted, QRegion(0, 0, 1, 1));
}

TEST_F(ZQHighlightTableViewDrawing, HasTheDesktopsColour) {
  SystemColors::setTable(nullptr);
  const QPalette before = QApplication::palette();
  QPalette palette = before;
  palette.setColor(QPalette::Active, QPalette::Highlight, QColor(0, 255, 0));
  QApplication::setPalette(palette);
  HighlightTable table;
  table.resize(100, 80);
  table.setDrawHighlight(true);
  EXPECT_TRUE(isFramed(pictureOf(table), QRect(0, 0, 100, 80)));
  QApplication::setPalette(before);
}

TEST_F(ZQHighlightTableViewDrawing, HasNoFrameWithoutAColour) {
  SystemColors::setTable([](const QString&) { return nullptr; });
  HighlightTable table;
  table.resize(100, 80);
  table.setDrawHighlight(true);
  const QImage image = pictureOf(table);
  EXPECT_EQ(image.pixel(0, 0), image.pixel(50, 40));
}

TEST(ZQHighlightTableView, HasItsHighlightAsAProperty) {
  ZQHighlightTableView table;
  EXPECT_TRUE(table.setProperty("drawHighlight", true));
  EXPECT_TRUE(table.drawHighlight());
}
