#include "app/interaction/MeantSign.h"

#include "app/display/SignItem.h"
#include "app/display/StripWidget.h"
#include "zqticker/platform/graphics/Color.h"

#include <algorithm>

namespace zq::app {

namespace {
std::size_t indexOf(const std::vector<SignSpot>& spots, std::uint64_t run) {
  const auto found = std::find_if(spots.begin(), spots.end(),
                                  [=](const SignSpot& spot) { return spot.run == run; });
  return static_cast<std::size_t>(found - spots.begin());
}
} // namespace

MeantSign::MeantSign(StripWidget& strip, TickerDisplay& display)
    : strip_(strip), display_(display), outline_(new SignMark(SignMark::Kind::Outline, &strip)) {
  // Controls stand over it, the ring of the focus under it.
  outline_->lower();
  connect(&strip.player(), &StripPlayer::frameDue, this, &MeantSign::mark);
  connect(&strip.keyboard(), &StripFocus::changed, this, [this] {
    chosen_ = 0;
    mark();
  });
}

MeantSign::~MeantSign() = default;

std::optional<SignSpot> MeantSign::sign() const {
  return isPinned_ ? pinned_ : signOfKeys();
}

std::optional<SignSpot> MeantSign::signOfKeys() const {
  if (!strip_.keyboard().isTaken())
    return std::nullopt;
  const std::vector<SignSpot> spots = signsInSight(display_);
  if (spots.empty())
    return std::nullopt;
  if (const std::size_t chosen = indexOf(spots, chosen_); chosen < spots.size())
    return spots[chosen];
  const auto whole = std::find_if(spots.begin(), spots.end(),
                                  [](const SignSpot& spot) { return !spot.isLeaving; });
  return whole != spots.end() ? *whole : spots.front();
}

void MeantSign::choose(int count) {
  const std::optional<SignSpot> meant = signOfKeys();
  if (!meant)
    return;
  const std::vector<SignSpot> spots = signsInSight(display_);
  const auto size = static_cast<int>(spots.size());
  const int index = (static_cast<int>(indexOf(spots, meant->run)) + count % size + size) % size;
  chosen_ = spots[static_cast<std::size_t>(index)].run;
  mark();
}

void MeantSign::chooseNeighbour() {
  const std::optional<SignSpot> meant = signOfKeys();
  if (!meant)
    return;
  const std::vector<SignSpot> spots = signsInSight(display_);
  const std::size_t index = indexOf(spots, meant->run);
  if (index + 1 < spots.size())
    chosen_ = spots[index + 1].run;
  else if (index > 0)
    chosen_ = spots[index - 1].run;
}

void MeantSign::pin(const std::optional<SignSpot>& sign) {
  isPinned_ = true;
  pinned_ = sign;
  mark();
}

void MeantSign::unpin() {
  isPinned_ = false;
  pinned_.reset();
  mark();
}

// As long as neither keyboard nor menu is here, this costs a look at them a frame.
void MeantSign::mark() {
  if (!isPinned_ && !strip_.keyboard().isTaken()) {
    outline_->hide();
    return;
  }
  std::optional<SignSpot> meant = sign();
  // Where it stands now.
  if (meant)
    meant = spotOfRun(display_, meant->run);
  if (!meant) {
    outline_->hide();
    return;
  }
  const platform::Ref<platform::Color> text = display_.defaultTextColor();
  outline_->setColors(text ? text->qColor() : QColor(Qt::black), strip_.background());
  // Beside the sign, where another one leaves it the room: behind it only as far as a gap goes.
  const double before = SignMark::Breadth;
  const double behind =
      isReversed(display_.direction()) ? 0 : std::min(before, meant->item().placement().gap);
  outline_->showAt(display_.isHorizontal() ? meant->area.adjusted(-before, 0, behind, 0)
                                           : meant->area.adjusted(0, -before, 0, behind));
}

} // namespace zq::app
