#include "app/services/TickerLink.h"

namespace zq::app {

TickerLink::TickerLink(QObject* parent) : QObject(parent) {}

TickerLink::~TickerLink() = default;

} // namespace zq::app
