// Scripts by which shells complete the program's command lines: commands, options, the words that
// options allow, and file names; made from the same tables as the help texts.
#pragma once

#include <QtCore/QByteArray>

namespace zq::app {

// For bash 4.3 and later; needs nothing beside it.
QByteArray bashCompletion();

// For zsh, as the function _zqticker.
QByteArray zshCompletion();

// For fish 3.0 and later.
QByteArray fishCompletion();

} // namespace zq::app
