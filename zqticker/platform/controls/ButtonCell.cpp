#include "zqticker/platform/controls/ButtonCell.h"

#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/controls/cell_drawing_p.h"
#include "zqticker/platform/controls/cell_flags_p.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/string_drawing.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

struct MaskBit {
  CellMask mask;
  FlagBits bit;
};

constexpr MaskBit highlightBits[] = {
    {ContentsCellMask, button_flags::HighlightsByContents},
    {PushInCellMask, button_flags::HighlightsByPushIn},
    {ChangeGrayCellMask, button_flags::HighlightsByGray},
    {ChangeBackgroundCellMask, button_flags::HighlightsByBackground},
};
constexpr MaskBit stateBits[] = {
    {ContentsCellMask, button_flags::ShowsStateByContents},
    {ChangeGrayCellMask, button_flags::ShowsStateByGray},
    {ChangeBackgroundCellMask, button_flags::ShowsStateByBackground},
};

template <std::size_t N>
unsigned maskOf(std::uint32_t word, const MaskBit (&bits)[N]) {
  unsigned mask = NoCellMask;
  for (const MaskBit& bit : bits)
    if (bit.bit.isSet(word))
      mask |= bit.mask;
  return mask;
}

template <std::size_t N>
void setMask(std::uint32_t& word, unsigned mask, const MaskBit (&bits)[N]) {
  for (const MaskBit& bit : bits)
    bit.bit.set(word, (mask & bit.mask) != 0);
}

struct TypeMasks {
  unsigned highlightsBy;
  unsigned showsStateBy;
};
// By the number of the button type.
constexpr TypeMasks masksByType[] = {{12, 0}, {14, 12}, {3, 1},   {1, 1},
                                     {1, 1},  {1, 0},   {12, 12}, {14, 0}};

// The space between border and title of a new button; its meaning is the archive's.
constexpr std::uint32_t DefaultInset = 2;

// Heights by control size, and the share of the height that is kept free at either end.
double heightOf(ControlSize size) {
  return size == ControlSize::Small ? 19 : size == ControlSize::Mini ? 16 : 22;
}
constexpr double EndShare = 0.5;

} // namespace

ButtonCell::ButtonCell() : ButtonCell(u"Button"_s) {}

ButtonCell::ButtonCell(const QString& title) : buttonFlags_(0) {
  button_flags::Inset.set(buttonFlags_, DefaultInset);
  button_flags::Bordered.set(buttonFlags_, true);
  setMask(buttonFlags_, 14, highlightBits);
  Cell::setAlignment(TextAlignment::Center);
  Cell::setObjectValue(title);
}

ButtonCell::~ButtonCell() = default;

Ref<Object> ButtonCell::copy() {
  return Ref<Object>(new ButtonCell(*this));
}

void ButtonCell::setAlternateTitle(const QString& title) {
  alternateTitle_ = title;
}

void ButtonCell::setBezelStyle(int style) {
  bezelStyle_ = style;
}

bool ButtonCell::isBordered() const {
  return button_flags::Bordered.isSet(buttonFlags_);
}
void ButtonCell::setBordered(bool bordered) {
  button_flags::Bordered.set(buttonFlags_, bordered);
}

bool ButtonCell::isTransparent() const {
  return button_flags::Transparent.isSet(buttonFlags_);
}
void ButtonCell::setTransparent(bool transparent) {
  button_flags::Transparent.set(buttonFlags_, transparent);
}

void ButtonCell::setButtonType(ButtonType type) {
  if (archivedType_)
    archivedType_ = std::int64_t(type);
  if (std::uint64_t(type) >= std::size(masksByType))
    return;
  const TypeMasks& masks = masksByType[std::size_t(type)];
  setHighlightsBy(masks.highlightsBy);
  setShowsStateBy(masks.showsStateBy);
}

unsigned ButtonCell::highlightsBy() const {
  return maskOf(buttonFlags_, highlightBits);
}
void ButtonCell::setHighlightsBy(unsigned mask) {
  setMask(buttonFlags_, mask, highlightBits);
}

unsigned ButtonCell::showsStateBy() const {
  return maskOf(buttonFlags_, stateBits);
}
void ButtonCell::setShowsStateBy(unsigned mask) {
  setMask(buttonFlags_, mask, stateBits);
}

QString ButtonCell::shownTitle() const {
  const bool isAlternate = (state() == CellState::On && (showsStateBy() & ContentsCellMask)) ||
                           (isHighlighted() && (highlightsBy() & ContentsCellMask));
  return isAlternate && !alternateTitle_.isEmpty() ? alternateTitle_ : title();
}

QSizeF ButtonCell::cellSize() const {
  const Attributes attributes = attributesOfTitle(*this);
  double width = sizeWithAttributes(title(), attributes).width();
  if (!alternateTitle_.isEmpty())
    width = std::max(width, sizeWithAttributes(alternateTitle_, attributes).width());
  const double height = heightOf(controlSize());
  return {width + 2 * EndShare * height, height};
}

void ButtonCell::drawWithFrame(const QRectF& frame, ControlView* inView) {
  if (isTransparent())
    return;
  if (isBordered()) {
    const bool isPressedIn =
        (isHighlighted() && (highlightsBy() & ~unsigned(ContentsCellMask))) ||
        (state() == CellState::On && (showsStateBy() & ~unsigned(ContentsCellMask)));
    drawButtonBody(frame, isPressedIn, *this, inView);
  }
  drawInteriorWithFrame(frame, inView);
}

void ButtonCell::drawInteriorWithFrame(const QRectF& frame, ControlView* inView) {
  drawTitle(shownTitle(), drawingRectForBounds(frame), *this, inView);
}

bool ButtonCell::clickChangesState(const ControlView*) const {
  return showsStateBy() != NoCellMask;
}

ButtonImageSource::ButtonImageSource() = default;
ButtonImageSource::~ButtonImageSource() = default;

} // namespace zq::platform
