// A table with a frame around what can be seen of it.
#pragma once

#include "zqticker/platform/controls/TableView.h"
#include "zqticker/zqticker_export.h"

// A table view that draws, where it is asked to, a highlight over its rows: a border inside the
// edges of its visibleRect, wherever the table is scrolled to, in the desktop's colour behind
// selected text (selectedTextBackgroundColor). No other scroll view is needed, see clipView.
//
// Thread: main.
class ZQTICKER_EXPORT ZQHighlightTableView : public zq::platform::TableView {
  Q_OBJECT
  Q_PROPERTY(bool drawHighlight READ drawHighlight WRITE setDrawHighlight)

 public:
  // The width of the border, in points.
  static constexpr double HighlightWidth = 3.0;

  explicit ZQHighlightTableView(QWidget* parent = nullptr);
  ~ZQHighlightTableView() override;

  // False at first. A change has the whole view drawn anew.
  bool drawHighlight() const { return drawHighlight_; }
  void setDrawHighlight(bool flag);

 protected:
  void drawRect(const QRectF& dirtyRect) override;

  void scrollContentsBy(int dx, int dy) override;
  void moveEvent(QMoveEvent* event) override;

 private:
  void visibleRectDidChange();

  bool drawHighlight_ = false;
};
