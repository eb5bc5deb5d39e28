// Archives of buttons.
#include "zqticker/platform/archiving/Coder.h"
#include "zqticker/platform/controls/ButtonCell.h"
#include "zqticker/platform/controls/ButtonObject.h"
#include "zqticker/platform/controls/Button_p.h"
#include "zqticker/platform/controls/cell_coding_p.h"
#include "zqticker/platform/controls/cell_flags_p.h"
#include "zqticker/platform/objects/Exception.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::platform {

static constexpr QLatin1StringView FrameKey{"NSFrame"};
static constexpr QLatin1StringView FrameSizeKey{"NSFrameSize"};
static constexpr QLatin1StringView FlagsKey{"NSvFlags"};
static constexpr QLatin1StringView CellKey{"NSCell"};
static constexpr QLatin1StringView EnabledKey{"NSEnabled"};
static constexpr QLatin1StringView TagKey{"NSTag"};

static constexpr FlagBits HiddenFlag{31};

// The farthest that a view may reach, in points; the toolkit's own limit for widgets is near.
static constexpr double LargestCoordinate = 1 << 23;

static bool isExplicitlyHidden(const QWidget& widget) {
  return widget.isHidden() && widget.testAttribute(Qt::WA_WState_ExplicitShowHide);
}

void Button::encodeWithCoder(Coder& coder) {
  const QRectF place = frame();
  if (!place.topLeft().isNull())
    coder.encodeRect(place, FrameKey);
  else if (!place.size().isNull())
    coder.encodeSize(place.size(), FrameSizeKey);
  std::uint32_t flags = private_->viewFlags;
  HiddenFlag.set(flags, isExplicitlyHidden(*this));
  encodeFlagWord(coder, flags, FlagsKey);
  coder.encodeObject(private_->cell, CellKey);
  coder.encodeBool(isEnabled(), EnabledKey);
  if (const std::int64_t tag = private_->cell->tag())
    coder.encodeInt64(tag, TagKey);
}

static QRectF decodeFrame(Coder& coder) {
  const bool hasOrigin = coder.containsValueForKey(FrameKey);
  const QRectF frame = hasOrigin ? coder.decodeRectForKey(FrameKey)
                                 : QRectF({0, 0}, coder.decodeSizeForKey(FrameSizeKey));
  for (const double value : {frame.x(), frame.y(), frame.width(), frame.height()})
    if (!(std::abs(value) <= LargestCoordinate))
      throw ArchiveException(u"no view can have this frame"_s,
                             coder.keyPath(hasOrigin ? FrameKey : FrameSizeKey));
  return frame;
}

void Button::initWithCoder(Coder& coder) {
  const QRectF place = decodeFrame(coder);
  private_->viewFlags = decodeFlagWord(coder, FlagsKey);
  const auto cell = coder.decodeObjectOfClass<ButtonCell>(CellKey);
  if (!cell)
    throw ArchiveException(u"a button needs a cell"_s, coder.keyPath(CellKey));
  // The cell knows; what the view says is nearly always true.
  setEnabled(cell->isEnabled());
  setCell(cell);
  setFrame(place);
  if (HiddenFlag.isSet(private_->viewFlags))
    hide();
}

} // namespace zq::platform
