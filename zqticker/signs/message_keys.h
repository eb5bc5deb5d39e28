// The display-message notification: its name and the keys of its dictionary.
//
// Any program asks a ticker to show something by posting this notification. No key is mandatory;
// a receiver reads the keys that it knows and ignores the rest. Key strings are the wire format.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QString>

// Name of the notification.
ZQTICKER_EXPORT extern const QString ZQTickerDisplayMessageNotification;

// String that identifies the sending program; for the receiver.
ZQTICKER_EXPORT extern const QString ZQTickerMessageSenderIdentifierKey;
// Name of the sender for people; for the receiver.
ZQTICKER_EXPORT extern const QString ZQTickerMessageSenderNameKey;
// String; the sign's identifier.
ZQTICKER_EXPORT extern const QString ZQTickerMessageIdentifierKey;
// String or attributed string; the text of a text sign or combo sign.
ZQTICKER_EXPORT extern const QString ZQTickerMessageTextKey;
// Picture; the image of an image sign or combo sign.
ZQTICKER_EXPORT extern const QString ZQTickerMessageImageKey;
// Number; for the receiver.
ZQTICKER_EXPORT extern const QString ZQTickerMessagePriorityKey;
// Integer; the sign's loopCount, ZQEndlessLoopCount for endless repetition.
ZQTICKER_EXPORT extern const QString ZQTickerMessageLoopCountKey;
// Floating-point number; the sign's loopDelay.
ZQTICKER_EXPORT extern const QString ZQTickerMessageLoopDelayKey;
// Integer; the sign's scrollDirection, 1 is horizontal.
ZQTICKER_EXPORT extern const QString ZQTickerMessageScrollDirectionKey;
// Boolean; the sign's continuousScrolling.
ZQTICKER_EXPORT extern const QString ZQTickerMessageContinuousScrollingKey;
// Number; for the receiver.
ZQTICKER_EXPORT extern const QString ZQTickerMessageFadeInOutTypeKey;
// Integer; the sign's actionType.
ZQTICKER_EXPORT extern const QString ZQTickerMessageActionTypeKey;
// String; the sign's actionString.
ZQTICKER_EXPORT extern const QString ZQTickerMessageActionStringKey;
// Data that accompanies the action; for the receiver.
ZQTICKER_EXPORT extern const QString ZQTickerMessageActionDataKey;
