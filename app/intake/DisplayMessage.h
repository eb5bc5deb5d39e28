// Display messages: from the dictionary that a program sends to a sign and its origin.
#pragma once

#include "app/display/SignOrigin.h"
#include "app/intake/WorkGate.h"
#include "zqticker/platform/objects/Object.h"
#include "zqticker/platform/text/text_attributes.h"

#include <QtCore/QVariant>

#include <stdexcept>

class ZQTickerDisplayProtocol;
class ZQTickerSign;

namespace zq::platform {
class Color;
class Font;
class Image;
} // namespace zq::platform

namespace zq::app {

// The longest strings of a message, in UTF-16 code units. The text has its limit from LongestLine.
inline constexpr qsizetype LongestIdentifier = 1000; // also of a sender
inline constexpr qsizetype LongestSenderName = 200;  // one line of the queue's window
inline constexpr qsizetype LongestActionString = 32'768;
// The most bytes of a message's action data, strings in it counted as UTF-16.
inline constexpr qsizetype LargestActionData = 64 << 10;
// The longest pause between two showings, in seconds: some thirty years, as on the command line.
inline constexpr double LongestLoopDelay = 1e9;

// How plain texts look.
struct MessageStyle {
  platform::Ref<platform::Font> font;
  platform::Ref<platform::Color> color;

  // The defaults of `display` as they are now.
  static MessageStyle of(const ZQTickerDisplayProtocol& display);

  platform::Attributes attributes() const;
};

struct DisplayMessage {
  platform::Ref<ZQTickerSign> sign;
  SignOrigin origin;
};

// A message that cannot be shown, or that holds what it may not.
class MessageError : public std::runtime_error {
 public:
  // `complaint` says what is wrong with the value under `key`.
  MessageError(const QString& key, const QString& complaint);
  ~MessageError() override;

  const QString& key() const { return key_; }
  // "loopCount: must be a whole number".
  const QString& message() const { return message_; }

 private:
  QString key_;
  QString message_;
};

// The sign that `dictionary` describes, with the keys of message_keys.h. Other keys are passed
// over; a value of a known key that is of the wrong type or outside its limits raises MessageError.
// Values are plain: strings, numbers, booleans, byte arrays, and for the action data lists and maps
// of them. One that is invalid counts as missing.
//
// A text and a picture give a combo sign, one of both a text sign or an image sign. A plain text is
// made showable as lines are, see showableLine; in a text sign it takes `style`, in a combo sign it
// follows the display. What `gate` raises is passed on.
//
// Thread: main.
DisplayMessage readMessage(const QVariantMap& dictionary, const MessageStyle& style,
                           const WorkGate& gate = {});

// A message on its way to a sign: checked, but for what shows only when its picture is decoded.
//
// Thread: main where nothing else is said.
class MessageDraft {
 public:
  // Raises like readMessage.
  MessageDraft(const QVariantMap& dictionary, const WorkGate& gate);

  // Of the picture that is not decoded yet; 0 where there is none.
  qint64 undecodedPixels() const { return undecodedPixels_; }
  // Decodes it.
  //
  // Thread: any, and nothing else is done with the draft meanwhile.
  void decode();

  // As readMessage gives it; decodes where that is not done yet. Raises the same.
  DisplayMessage message(const MessageStyle& style);

 private:
  QVariantMap dictionary_;
  SignOrigin origin_;
  platform::Any text_; // a QString or a Ref to an AttributedString; invalid for none
  QByteArray picture_;
  qint64 undecodedPixels_ = 0;
  platform::Ref<platform::Image> image_;
};

// What `dictionary` says about the sender and its wishes: the keys that fill no field of a sign.
// Raises like readMessage.
SignOrigin readOrigin(const QVariantMap& dictionary);

} // namespace zq::app
