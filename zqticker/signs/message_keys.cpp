#include "zqticker/signs/message_keys.h"

using namespace Qt::StringLiterals;

const QString ZQTickerDisplayMessageNotification = u"ZQTickerDisplayMessageNotification"_s;

const QString ZQTickerMessageSenderIdentifierKey = u"senderID"_s;
const QString ZQTickerMessageSenderNameKey = u"senderName"_s;
const QString ZQTickerMessageIdentifierKey = u"identifier"_s;
const QString ZQTickerMessageTextKey = u"text"_s;
const QString ZQTickerMessageImageKey = u"image"_s;
const QString ZQTickerMessagePriorityKey = u"priority"_s;
const QString ZQTickerMessageLoopCountKey = u"loopCount"_s;
const QString ZQTickerMessageLoopDelayKey = u"loopDelay"_s;
const QString ZQTickerMessageScrollDirectionKey = u"scrollDirection"_s;
// One l: the wire format. Senders in the field use this spelling; mending it would cut them off.
const QString ZQTickerMessageContinuousScrollingKey = u"continuousScroling"_s;
const QString ZQTickerMessageFadeInOutTypeKey = u"fadeInOutType"_s;
const QString ZQTickerMessageActionTypeKey = u"actionType"_s;
const QString ZQTickerMessageActionStringKey = u"actionString"_s;
const QString ZQTickerMessageActionDataKey = u"actionData"_s;
