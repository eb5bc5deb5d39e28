#include "app/commands/ContactSheet.h"

#include "app/commands/color_contrast.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/text/string_drawing.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"

#include <QtGui/QPainter>
#include <QtWidgets/QMenu>

#include <array>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {

constexpr int Margin = 28;
constexpr int LabelWidth = 132;
constexpr int ButtonWidth = 96;
constexpr int ButtonGap = 12;
// Between the buttons without and those with a menu.
constexpr int MenuGap = 32;
constexpr int RowGap = 10;
constexpr int GroupGap = 22;
// From a row of text to the next.
constexpr int LineHeight = 18;
// The baseline of a label in a row of regular buttons, which is about that of their titles.
constexpr int LabelBaseline = 15;
// A point is 1/72 of an inch.
constexpr double PointsPerMetre = 72 / 0.0254;

constexpr QRgb LightGround = 0xfff3f4f6;
constexpr QRgb DarkGround = 0xff24262b;

// The bezel styles of the two outlines; any other number is a plate too.
constexpr std::uint64_t RoundedRectangle = 6;
constexpr std::uint64_t UsualPlate = 1;

constexpr std::array<QStringView, 5> StateNames = {u"Normal", u"Mouse-over", u"Pressed", u"On",
                                                   u"Disabled"};
constexpr std::array<QStringView, 3> ModeNames = {u"Flat", u"Linear", u"Bilinear"};
constexpr int Columns = int(StateNames.size());

int columnX(int column, bool hasMenu) {
  constexpr int pitch = ButtonWidth + ButtonGap;
  return Margin + LabelWidth + column * pitch +
         (hasMenu ? Columns * pitch - ButtonGap + MenuGap : 0);
}

Ref<ZQRollOverButtonAppearance> copyOf(const ZQRollOverButtonAppearance& appearance) {
  // Copying changes nothing of the source.
  return std::static_pointer_cast<ZQRollOverButtonAppearance>(
      const_cast<ZQRollOverButtonAppearance&>(appearance).copy());
}

// Modes that are not known draw flat.
std::uint64_t drawnMode(const ZQRollOverButtonAppearance& appearance) {
  const std::uint64_t mode = appearance.shadingMode();
  return mode < ModeNames.size() ? mode : std::uint64_t(ZQShadingModeFlat);
}

bool hasRoundedRectangle(const ZQRollOverButtonAppearance& appearance) {
  return appearance.bezelStyle() == RoundedRectangle;
}

} // namespace

ContactSheet::ContactSheet(const ZQRollOverButtonAppearance& appearance, const QString& title,
                           const QColor& ground)
    : ground_(blended(ground, Qt::white)), menu_(Menu::make(std::make_unique<QMenu>())),
      y_(Margin) {
  const Ref<ZQRollOverButtonAppearance> own = copyOf(appearance);
  addHead(*own, title);
  addOwnRows(own);
  addOutline(*own, u"Rounded rectangle"_s, RoundedRectangle);
  addOutline(*own, u"Plate"_s, hasRoundedRectangle(*own) ? UsualPlate : own->bezelStyle());
  size_ = {columnX(Columns, true) - ButtonGap + Margin, y_ - RowGap + Margin};
}

ContactSheet::~ContactSheet() = default;

QColor ContactSheet::usualGround(const ZQRollOverButtonAppearance& appearance) {
  const ZQColorAttribute control = appearance.controlColor();
  const ZQColorAttribute text = appearance.textColor();
  constexpr double half = 0.5;
  const bool needsDark = control && control->alphaComponent() > half
                             ? isDark(control->qColor())
                             : text && !isDark(text->qColor());
  return QColor::fromRgb(needsDark ? DarkGround : LightGround);
}

void ContactSheet::addHead(const ZQRollOverButtonAppearance& appearance, const QString& title) {
  const QString outline = hasRoundedRectangle(appearance) ? u"rounded rectangle"_s : u"plate"_s;
  const QStringList facts{u"bezelStyle %1 (%2)"_s.arg(appearance.bezelStyle()).arg(outline),
                          u"shadingMode %1 (%2)"_s.arg(appearance.shadingMode())
                              .arg(ModeNames[drawnMode(appearance)].toString().toLower()),
                          appearance.isBordered() ? u"bordered"_s : u"not bordered"_s,
                          appearance.alwaysShowMenuIndicator() ? u"arrow always"_s
                                                               : u"arrow under the pointer"_s,
                          u"menu after %1 s"_s.arg(appearance.popUpMenuDelay())};
  y_ += LineHeight;
  addLabel(title, Style::Title, Edge::Left, Margin, y_);
  y_ += LineHeight + 2;
  addLabel(facts.join(u"  \u00b7  "_s), Style::Faint, Edge::Left, Margin, y_);
  y_ += 2 * LineHeight;
  addLabel(u"Without a menu"_s, Style::Heading, Edge::Left, columnX(0, false), y_);
  addLabel(u"With a menu"_s, Style::Heading, Edge::Left, columnX(0, true), y_);
  y_ += LineHeight + 4;
  for (const bool hasMenu : {false, true})
    for (int column = 0; column < Columns; ++column)
      addLabel(StateNames[std::size_t(column)].toString(), Style::Faint, Edge::Center,
               columnX(column, hasMenu) + ButtonWidth / 2.0, y_);
  y_ += RowGap;
}

void ContactSheet::addOwnRows(const Ref<ZQRollOverButtonAppearance>& appearance) {
  Row row;
  row.sample.appearance = appearance;
  row.sample.title = u"Button"_s;
  for (const auto& [label, size] :
       {std::pair{u"Regular"_s, ControlSize::Regular}, std::pair{u"Small"_s, ControlSize::Small},
        std::pair{u"Mini"_s, ControlSize::Mini}}) {
    row.label = label;
    row.sample.controlSize = size;
    addRow(row);
  }
  row.label = u"Long title"_s;
  row.sample.controlSize = ControlSize::Regular;
  row.sample.title = u"A title without room"_s;
  addRow(row);
  addContrasts(*appearance);
}

void ContactSheet::addOutline(const ZQRollOverButtonAppearance& appearance, const QString& heading,
                              std::uint64_t bezelStyle) {
  y_ += GroupGap;
  addLabel(heading, Style::Heading, Edge::Left, Margin, y_);
  y_ += RowGap;
  for (std::uint64_t mode = 0; mode < ModeNames.size(); ++mode) {
    const Ref<ZQRollOverButtonAppearance> shown = copyOf(appearance);
    shown->setBezelStyle(bezelStyle);
    shown->setShadingMode(mode);
    for (const bool isFlipped : {false, true}) {
      Row row;
      row.label = ModeNames[mode] + (isFlipped ? u", flipped"_s : u""_s);
      row.isMarked = appearance.bezelStyle() == bezelStyle && drawnMode(appearance) == mode;
      row.sample.appearance = shown;
      row.sample.title = u"Button"_s;
      row.sample.isFlipped = isFlipped;
      addRow(row);
    }
  }
}

void ContactSheet::addRow(const Row& row) {
  const int height = int(heightOfButton(row.sample.controlSize));
  // Labels of low buttons keep their distance to the title.
  const int baseline =
      y_ + LabelBaseline - (int(heightOfButton(ControlSize::Regular)) - height) / 2;
  addLabel(row.label, row.isMarked ? Style::Marked : Style::Plain, Edge::Left, Margin, baseline);
  for (const bool hasMenu : {false, true})
    for (int column = 0; column < Columns; ++column) {
      Entry entry{row.sample, {columnX(column, hasMenu), y_, ButtonWidth, height}};
      entry.sample.state = SampleStates[column];
      entry.sample.menu = hasMenu ? menu_ : nullptr;
      entries_.push_back(entry);
    }
  y_ += height + RowGap;
}

void ContactSheet::addContrasts(const ZQRollOverButtonAppearance& appearance) {
  y_ += LabelBaseline - RowGap / 2;
  addLabel(u"Contrast of the title"_s, Style::Faint, Edge::Left, Margin, y_);
  for (int column = 0; column < Columns; ++column) {
    const auto contrast = titleContrast(appearance, SampleStates[column], ground_);
    addLabel(contrast ? QString::number(*contrast, 'f', 1) + u" : 1"_s : u"\u2013"_s, Style::Faint,
             Edge::Center, columnX(column, false) + ButtonWidth / 2.0, y_);
  }
  y_ += RowGap;
}

void ContactSheet::addLabel(const QString& text, Style style, Edge edge, double x,
                            double baseline) {
  labels_.push_back({text, style, edge, {x, baseline}});
}

void ContactSheet::drawLabel(const Label& label) const {
  constexpr double titleSize = 17;
  constexpr double labelSize = 12;
  constexpr double faint = 0.66;
  const bool isBold = label.style != Style::Plain && label.style != Style::Faint;
  const double size = label.style == Style::Title ? titleSize : labelSize;
  const Ref<Font> font = isBold ? Font::boldSystemFontOfSize(size) : Font::systemFontOfSize(size);
  const double white = isDark(ground_) ? 1 : 0;
  const Attributes attributes{
      {FontAttributeName, any(font)},
      {ForegroundColorAttributeName,
       any(Color::deviceWhite(white, label.style == Style::Faint ? faint : 1))}};
  const QString text =
      label.style == Style::Marked ? QString(label.text + u"  \u2022"_s) : label.text;
  const double width = sizeWithAttributes(text, attributes).width();
  const double part = label.edge == Edge::Left ? 0 : 0.5;
  drawAtPoint(text, label.place - QPointF(width * part, font->ascender()), attributes);
}

QImage ContactSheet::image(int scale) const {
  QImage page(size_ * scale, QImage::Format_RGB32);
  page.fill(ground_);
  page.setDevicePixelRatio(scale);
  page.setDotsPerMeterX(int(PointsPerMetre * scale + 0.5));
  page.setDotsPerMeterY(page.dotsPerMeterX());
  QPainter painter(&page);
  painter.setRenderHint(QPainter::Antialiasing);
  {
    const GraphicsContext context(&painter, size_, true);
    for (const Label& label : labels_)
      drawLabel(label);
  }
  for (const Entry& entry : entries_) {
    painter.save();
    painter.translate(entry.frame.topLeft());
    entry.sample.draw(painter, entry.frame.size());
    painter.restore();
  }
  return page;
}

} // namespace zq::app
