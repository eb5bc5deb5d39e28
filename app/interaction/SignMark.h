// A mark on the strip at one of its signs.
#pragma once

#include <QtGui/QColor>
#include <QtWidgets/QWidget>

namespace zq::app {

// Lies over the strip, lets everything through that a pointer does, and takes no time while it does
// not show.
//
// Thread: main.
class SignMark : public QWidget {
  Q_OBJECT

 public:
  enum class Kind {
    Underline, // at the lower edge of the sign
    Outline,   // around it
  };

  // Of its line, the one besides it included, in points.
  static constexpr int Breadth = 3;

  SignMark(Kind kind, QWidget* strip);
  ~SignMark() override;

  // Shows the mark at `area` of the strip, which is then in sight, or moves it there.
  void showAt(const QRectF& area);

  // The colours of the strip. The mark stands out from its background, with a line of that besides
  // it, so that it does so from pictures too.
  void setColors(const QColor& text, const QColor& background);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Kind kind_;
  QColor line_;
  QColor ground_;
};

} // namespace zq::app
