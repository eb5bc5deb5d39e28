// The platform's table view.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QRectF>
#include <QtWidgets/QTableView>

namespace zq::platform {

// A QTableView that may be drawn over. Its rows are drawn, and drawRect draws, in the coordinates
// of its viewport: points, the origin at the upper left, y downwards.
//
// What drawing raises is logged.
//
// Thread: main.
class ZQTICKER_EXPORT TableView : public QTableView {
  Q_OBJECT

 public:
  explicit TableView(QWidget* parent = nullptr);
  ~TableView() override;

  // The view inside which the table is scrolled, whose area is what can be seen of it: the viewport
  // of the scroll area in whose viewport the table stands, else the table's own, in which it
  // scrolls its rows itself. Never null.
  QWidget* clipView() const;
  // The bounds of the clip view in the table's coordinates, without what the table's headers, frame
  // and scroll bars take of it. Empty where nothing can be seen.
  QRectF visibleRect() const;

  // Has everything but headers, frame and scroll bars drawn anew.
  virtual void setNeedsDisplay();

 protected:
  // Draws into the current context, over the rows of `dirtyRect`; here nothing.
  virtual void drawRect(const QRectF& dirtyRect);

  void paintEvent(QPaintEvent* event) override;
};

} // namespace zq::platform
