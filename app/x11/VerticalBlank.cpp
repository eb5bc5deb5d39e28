#include "app/x11/VerticalBlank.h"

#include "app/display/FrameClock.h"
#include "app/x11/XConnection.h"
#include "app/x11/x_replies.h"

#include <xcb/present.h>

namespace zq::app {

namespace {
// A server on another machine has another clock: its times are no use.
constexpr double MostDifference = 1;
constexpr double Microsecond = 1e-6;
} // namespace

std::unique_ptr<VerticalBlank> VerticalBlank::make(WId window) {
  std::shared_ptr<XConnection> connection = XConnection::shared();
  if (!connection || !window)
    return nullptr;
  const xcb_query_extension_reply_t* extension =
      xcb_get_extension_data(connection->get(), &xcb_present_id);
  if (!extension || !extension->present)
    return nullptr;
  return std::unique_ptr<VerticalBlank>(
      new VerticalBlank(std::move(connection), window, extension->major_opcode));
}

VerticalBlank::VerticalBlank(std::shared_ptr<XConnection> connection, WId window,
                             std::uint8_t extension)
    : connection_(std::move(connection)), window_(static_cast<std::uint32_t>(window)),
      extension_(extension) {
  connect(connection_.get(), &XConnection::received, this, &VerticalBlank::receive);
  // The server answers nothing to who has not asked for its version.
  xcb_discard_reply(connection_->get(),
                    xcb_present_query_version(connection_->get(), XCB_PRESENT_MAJOR_VERSION,
                                              XCB_PRESENT_MINOR_VERSION)
                        .sequence);
}

VerticalBlank::~VerticalBlank() {
  cancel();
}

void VerticalBlank::request(quint64 count) {
  select(true);
  isAwaited_ = true;
  askedAt_ = FrameClock::now();
  // "A multiple of one" is the next one, where `count` is past.
  xcb_present_notify_msc(connection_->get(), window_, ++serial_, count, 1, 0);
  connection_->flush();
}

// A blank cannot be asked for no more. What is not selected is not sent, and wakes nobody.
void VerticalBlank::cancel() {
  isAwaited_ = false;
  if (!eventId_)
    return;
  select(false);
  connection_->flush();
}

void VerticalBlank::select(bool isWanted) {
  if (isWanted == (eventId_ != 0))
    return;
  if (isWanted)
    eventId_ = xcb_generate_id(connection_->get());
  xcb_present_select_input(connection_->get(), eventId_, window_,
                           isWanted ? XCB_PRESENT_EVENT_MASK_COMPLETE_NOTIFY
                                    : XCB_PRESENT_EVENT_MASK_NO_EVENT);
  if (!isWanted)
    eventId_ = 0;
}

void VerticalBlank::receive(const xcb_generic_event_t* event) {
  if (!isAwaited_ || typeOf(*event) != XCB_GE_GENERIC)
    return;
  const auto* report = reinterpret_cast<const xcb_present_complete_notify_event_t*>(event);
  if (report->extension != extension_ || report->event_type != XCB_PRESENT_COMPLETE_NOTIFY ||
      report->event != eventId_ || report->kind != XCB_PRESENT_COMPLETE_KIND_NOTIFY_MSC ||
      report->serial != serial_)
    return;
  isAwaited_ = false;
  const double now = FrameClock::now();
  const double told = static_cast<double>(report->ust) * Microsecond;
  // It may have been read long after it was sent.
  const bool isOurClock = told >= askedAt_ - MostDifference && told <= now + MostDifference;
  Q_EMIT blank(report->msc, isOurClock ? told : now);
}

} // namespace zq::app
