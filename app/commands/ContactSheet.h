// All looks of a rollover button on one page.
#pragma once

#include "app/commands/ButtonSample.h"

#include <QtCore/QPointF>
#include <QtCore/QRect>
#include <QtGui/QColor>
#include <QtGui/QImage>

#include <vector>

namespace zq::app {

// A page for people to look at. Each row shows a button in every state, without and with a menu.
// The first rows show the appearance as it is, in all control sizes and with a title that is too
// long, and the contrast of its title to its bezel; the others each outline with each shading mode
// in both coordinate systems. Labels that name the appearance's own outline and mode are marked.
//
// Lengths are points, from the upper left corner. Needs a QApplication.
//
// Thread: main.
class ContactSheet {
 public:
  // A button on the page.
  struct Entry {
    ButtonSample sample;
    QRect frame;
  };

  // Of `appearance`, under the heading `title`; `ground` is the color behind the buttons.
  ContactSheet(const ZQRollOverButtonAppearance& appearance, const QString& title,
               const QColor& ground);
  ~ContactSheet();

  // A ground such as windows have in which buttons of that look stand: a dark one for dark bezels,
  // and for light titles without a bezel.
  static QColor usualGround(const ZQRollOverButtonAppearance& appearance);

  QSize size() const { return size_; }
  // Row by row, those without a menu first.
  const std::vector<Entry>& entries() const { return entries_; }

  // The page with `scale` pixels along each point; opaque, and as large as size() in print and on
  // screens that ask for it.
  QImage image(int scale) const;

 private:
  enum class Style { Title, Heading, Plain, Marked, Faint };
  enum class Edge { Left, Center };
  struct Label {
    QString text;
    Style style;
    Edge edge;
    QPointF place; // its left end or its middle on the baseline
  };
  // What the buttons of a row have in common.
  struct Row {
    QString label;
    bool isMarked = false;
    ButtonSample sample;
  };

  void addHead(const ZQRollOverButtonAppearance& appearance, const QString& title);
  void addOwnRows(const platform::Ref<ZQRollOverButtonAppearance>& appearance);
  void addOutline(const ZQRollOverButtonAppearance& appearance, const QString& heading,
                  std::uint64_t bezelStyle);
  void addRow(const Row& row);
  void addContrasts(const ZQRollOverButtonAppearance& appearance);
  void addLabel(const QString& text, Style style, Edge edge, double x, double baseline);
  void drawLabel(const Label& label) const;

  QColor ground_;
  platform::Ref<platform::Menu> menu_;
  std::vector<Label> labels_;
  std::vector<Entry> entries_;
  QSize size_;
  // Where the next row begins.
  int y_ = 0;
};

} // namespace zq::app
