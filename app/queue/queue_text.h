// What the queue window says about a sign.
#pragma once

#include "app/queue/QueueSource.h"

namespace zq::app {

// "On the strip" or "Waiting".
QString stateText(const QueuedSign& row);
// What the picture is, in words; that there is none, where there is none.
QString pictureText(const QueuedSign& row);
// The name of the sender, else its identifier; empty for this program itself.
QString senderText(const QueuedSign& row);
// A number or "∞", and the same in words.
QString loopsText(std::int64_t loopsLeft);
QString loopsSentence(std::int64_t loopsLeft);

// At most `most` UTF-16 units of `text` on one line, an ellipsis at its end where it was cut.
QString shortened(const QString& text, qsizetype most);
// A tool tip that shows `text` itself, whatever marks stand in it.
QString plainToolTip(const QString& text);

} // namespace zq::app
