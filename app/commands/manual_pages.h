// Manual pages, made from the tables that --help prints. Pages are roff for the man macros, section
// 1, in ASCII; what is not stands in escapes.
#pragma once

#include "app/commands/Command.h"

#include <QtCore/QByteArray>

namespace zq::app {

// "zqticker-feed-check".
QString manualPageName(const Command& command);

QByteArray manualPage(const Command& command);

// The page of the whole program, zqticker(1): its commands, and what they have in common.
QByteArray programManualPage();

} // namespace zq::app
