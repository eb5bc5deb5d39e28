#include "app/intake/DisplayMessage.h"

#include "app/intake/LineSplitter.h"
#include "app/intake/MessageValues.h"
#include "app/intake/message_pictures.h"
#include "app/intake/sign_archives.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"
#include "zqticker/signs/message_keys.h"

#include <limits>
#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
// Of what the sign's archive keeps.
constexpr qint64 Least32 = std::numeric_limits<std::int32_t>::min();
constexpr qint64 Most32 = std::numeric_limits<std::int32_t>::max();

// A QString made showable or a Ref to an AttributedString; invalid for none.
Any readText(const MessageValues& values, const WorkGate& gate) {
  const QString& key = ZQTickerMessageTextKey;
  const QVariant found = values.value(key);
  if (!found.isValid())
    return Any();
  if (found.typeId() == QMetaType::QByteArray) {
    try {
      return any(readArchivedText(found.toByteArray(), gate));
    } catch (const SignError& error) {
      throw MessageError(key, error.message());
    }
  }
  if (found.typeId() != QMetaType::QString)
    throw MessageError(key, u"must be a string or the bytes of an archived attributed string"_s);
  const QString text = showableLine(*values.string(key, LongestLine));
  admitWork(gate, text.size() * PixelsPerCharacter);
  return text.trimmed().isEmpty() ? Any() : Any(text);
}

// The file of the picture, and its pixels; empty for none.
std::pair<QByteArray, qint64> readPicture(const MessageValues& values, const WorkGate& gate) {
  const QString& key = ZQTickerMessageImageKey;
  const QVariant found = values.value(key);
  if (!found.isValid())
    return {};
  if (found.typeId() != QMetaType::QByteArray)
    throw MessageError(key, u"must be the bytes of a TIFF or PNG file"_s);
  QString complaint;
  const QByteArray data = found.toByteArray();
  const std::optional<qint64> pixels = admitMessagePicture(data, complaint, gate);
  if (!pixels)
    throw MessageError(key, complaint);
  return {data, *pixels};
}

Ref<ZQTickerSign> makeSign(const Any& text, const Ref<Image>& image, const MessageStyle& style) {
  if (text.isValid() && image)
    return ZQComboTickerSign::make(text, image);
  if (image)
    return ZQImageTickerSign::make(image);
  if (const auto styled = objectOf<AttributedString>(text))
    return ZQTextTickerSign::make(styled);
  return ZQTextTickerSign::make(AttributedString::make(text.toString(), style.attributes()));
}

// The fields that every sign has.
void fill(ZQTickerSign& sign, const MessageValues& values) {
  const std::optional<QString> identifier =
      values.string(ZQTickerMessageIdentifierKey, LongestIdentifier);
  // An empty one identifies nothing.
  if (identifier && !identifier->isEmpty())
    sign.setIdentifier(identifier);
  if (const auto count =
          values.wholeNumber(ZQTickerMessageLoopCountKey, ZQEndlessLoopCount, Most32))
    sign.setLoopCount(*count);
  if (const auto delay = values.number(ZQTickerMessageLoopDelayKey, 0, LongestLoopDelay))
    sign.setLoopDelay(*delay);
  if (const auto direction = values.wholeNumber(ZQTickerMessageScrollDirectionKey, Least32, Most32))
    sign.setScrollDirection(static_cast<std::int32_t>(*direction));
  if (const auto continuous = values.boolean(ZQTickerMessageContinuousScrollingKey))
    sign.setContinuousScrolling(*continuous);
  if (const auto type = values.wholeNumber(ZQTickerMessageActionTypeKey, Least32, Most32))
    sign.setActionType(static_cast<std::int32_t>(*type));
  sign.setActionString(values.string(ZQTickerMessageActionStringKey, LongestActionString));
}
} // namespace

MessageStyle MessageStyle::of(const ZQTickerDisplayProtocol& display) {
  return {display.defaultFont(), display.defaultTextColor()};
}

Attributes MessageStyle::attributes() const {
  Attributes attributes;
  if (font)
    attributes.insert(FontAttributeName, any(font));
  if (color)
    attributes.insert(ForegroundColorAttributeName, any(color));
  return attributes;
}

MessageError::MessageError(const QString& key, const QString& complaint)
    : std::runtime_error(QString(key + u": "_s + complaint).toStdString()), key_(key),
      message_(key + u": "_s + complaint) {}

MessageError::~MessageError() = default;

SignOrigin readOrigin(const QVariantMap& dictionary) {
  const MessageValues values(dictionary);
  SignOrigin origin;
  origin.senderIdentifier =
      values.string(ZQTickerMessageSenderIdentifierKey, LongestIdentifier).value_or(QString());
  origin.senderName =
      showableLine(
          values.string(ZQTickerMessageSenderNameKey, LongestSenderName).value_or(QString()))
          .trimmed();
  origin.priority = values.number(ZQTickerMessagePriorityKey).value_or(0);
  origin.fades = values.number(ZQTickerMessageFadeInOutTypeKey).value_or(0) != 0;
  origin.actionData = values.value(ZQTickerMessageActionDataKey);
  if (origin.actionData.isValid() &&
      byteCountOf(origin.actionData, LargestActionData) > LargestActionData)
    throw MessageError(ZQTickerMessageActionDataKey,
                       u"larger than %1 KiB"_s.arg(LargestActionData >> 10));
  return origin;
}

MessageDraft::MessageDraft(const QVariantMap& dictionary, const WorkGate& gate)
    : dictionary_(dictionary), origin_(readOrigin(dictionary)) {
  const MessageValues values(dictionary_);
  // What costs little comes first; the fields are filled into a sign without contents to check
  // them before anything is decoded.
  ZQImageTickerSign fields;
  fill(fields, values);
  text_ = readText(values, gate);
  std::tie(picture_, undecodedPixels_) = readPicture(values, gate);
}

void MessageDraft::decode() {
  image_ = decodeAdmittedPicture(picture_);
  undecodedPixels_ = 0;
}

DisplayMessage MessageDraft::message(const MessageStyle& style) {
  if (undecodedPixels_ > 0)
    decode();
  if (!picture_.isEmpty() && !image_)
    throw MessageError(ZQTickerMessageImageKey, damagedPicture());
  if (!text_.isValid() && !image_)
    throw MessageError(ZQTickerMessageTextKey, dictionary_.contains(ZQTickerMessageTextKey)
                                                   ? u"nothing to show in it, and no image either"_s
                                                   : u"missing, and no image either"_s);
  const Ref<ZQTickerSign> sign = makeSign(text_, image_, style);
  fill(*sign, MessageValues(dictionary_));
  return {sign, origin_};
}

DisplayMessage readMessage(const QVariantMap& dictionary, const MessageStyle& style,
                           const WorkGate& gate) {
  return MessageDraft(dictionary, gate).message(style);
}

} // namespace zq::app
