#include "zqticker/platform/controls/TableView.h"

#include "tests/support/LogWatch.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <QtGui/QStandardItemModel>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QScrollArea>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

class DrawnOver : public TableView {
 public:
  using TableView::TableView;

  int drawings = 0;
  bool raises = false;

 protected:
  void drawRect(const QRectF& dirtyRect) override {
    ++drawings;
    const GraphicsContext* context = GraphicsContext::currentContext();
    ASSERT_NE(context, nullptr);
    EXPECT_TRUE(context->isFlipped());
    EXPECT_EQ(context->size(), QSizeF(viewport()->size()));
    EXPECT_EQ(dirtyRect, QRectF(viewport()->rect()));
    if (raises)
      throw RangeException(u"while drawing"_s);
  }
};

} // namespace

TEST(TableView, IsItsOwnClipViewWhereItScrollsItself) {
  QWidget window;
  TableView table(&window);
  QStandardItemModel model(100, 3);
  table.setModel(&model);
  table.setGeometry(10, 10, 150, 100);
  EXPECT_EQ(table.clipView(), table.viewport());
  EXPECT_EQ(table.visibleRect(), QRectF(table.viewport()->rect()));
  EXPECT_FALSE(table.visibleRect().isEmpty());
}

TEST(TableView, IsClippedByTheScrollAreaAroundIt) {
  QScrollArea area;
  area.setFrameShape(QFrame::NoFrame);
  area.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area.resize(100, 80);
  area.show();
  auto* table = new TableView;
  table->setFrameShape(QFrame::NoFrame);
  table->horizontalHeader()->hide();
  table->verticalHeader()->hide();
  table->resize(300, 400);
  area.setWidget(table);
  EXPECT_EQ(table->clipView(), area.viewport());
  EXPECT_EQ(table->visibleRect(), QRectF(0, 0, 100, 80));
  table->move(-30, -50);
  EXPECT_EQ(table->visibleRect(), QRectF(30, 50, 100, 80));
  table->move(20, -350);
  EXPECT_EQ(table->visibleRect(), QRectF(0, 350, 80, 50)) << "no more than there is of the table";
  table->move(-300, 0);
  EXPECT_TRUE(table->visibleRect().isEmpty());
}

TEST(TableView, LeavesHeadersAndFrameOutOfWhatIsVisible) {
  QScrollArea area;
  area.setFrameShape(QFrame::NoFrame);
  area.setWidgetResizable(true);
  area.resize(200, 100);
  auto* table = new TableView;
  QStandardItemModel model(100, 3);
  table->setModel(&model);
  area.setWidget(table);
  area.show();
  EXPECT_EQ(table->clipView(), area.viewport());
  EXPECT_GT(table->viewport()->y(), 5) << "below the header";
  EXPECT_EQ(table->visibleRect(), QRectF(table->viewport()->rect()));
}

TEST(TableView, InsideAnotherWidgetOfAScrollAreaIsItsOwnClipView) {
  QScrollArea area;
  auto* document = new QWidget;
  area.setWidget(document);
  TableView table(document);
  EXPECT_EQ(table.clipView(), table.viewport());
  QWidget beside(&area);
  TableView other(&beside);
  EXPECT_EQ(other.clipView(), other.viewport());
}

TEST(TableView, IsDrawnOver) {
  DrawnOver table;
  table.resize(100, 80);
  table.grab();
  EXPECT_EQ(table.drawings, 1);
}

TEST(TableView, LogsWhatDrawingRaises) {
  DrawnOver table;
  table.raises = true;
  zq::testing::expectLog(u"Error in the callback of a view: while drawing"_s);
  table.grab();
  EXPECT_EQ(table.drawings, 1);
}
