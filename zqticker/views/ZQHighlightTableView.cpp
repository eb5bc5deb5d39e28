#include "zqticker/views/ZQHighlightTableView.h"

#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/SystemColors.h"
#include "zqticker/platform/graphics/rect_drawing.h"

using namespace Qt::StringLiterals;
using namespace zq::platform;

ZQHighlightTableView::ZQHighlightTableView(QWidget* parent) : TableView(parent) {}
ZQHighlightTableView::~ZQHighlightTableView() = default;

void ZQHighlightTableView::setDrawHighlight(bool flag) {
  if (flag == drawHighlight_)
    return;
  drawHighlight_ = flag;
  setNeedsDisplay();
}

void ZQHighlightTableView::drawRect(const QRectF& dirtyRect) {
  TableView::drawRect(dirtyRect);
  if (!drawHighlight_)
    return;
  if (const Ref<Color> color = SystemColors::colorNamed(u"selectedTextBackgroundColor"_s)) {
    color->set();
    frameRectWithWidth(visibleRect(), HighlightWidth);
  }
}

// Scrolling moves what is on the screen, the border with it, and draws only what has come into
// sight.
void ZQHighlightTableView::visibleRectDidChange() {
  if (drawHighlight_)
    setNeedsDisplay();
}

void ZQHighlightTableView::scrollContentsBy(int dx, int dy) {
  TableView::scrollContentsBy(dx, dy);
  visibleRectDidChange();
}

void ZQHighlightTableView::moveEvent(QMoveEvent* event) {
  TableView::moveEvent(event);
  visibleRectDidChange();
}
