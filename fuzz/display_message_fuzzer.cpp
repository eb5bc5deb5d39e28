// Display messages and signs by copy. Whatever is taken must hold what is promised, be drawable,
// and survive the journey as a sign's archive; whatever is refused must say why.
//
// An archive is an input as it is. Any other input is a dictionary: for each entry a byte for the
// key, a byte for the type, and the value, with its length in two bytes before strings and bytes.
#include "app/intake/DisplayMessage.h"
#include "app/intake/LineSplitter.h"
#include "app/intake/sign_archives.h"
#include "zqticker/platform/archiving/PortCoder.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"
#include "zqticker/signs/message_keys.h"

#include <QtCore/QtEndian>
#include <QtGui/QPainter>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::platform;

namespace {
constexpr std::size_t LargestInput = 1 << 16;
// Longer texts are not rendered for an archive, which takes long.
constexpr qsizetype LongestArchivedText = 100;
constexpr double LargestArchivedSide = 500;

void check(bool holds) {
  if (!holds)
    std::abort();
}

// Reads the values of an input, nothing beyond its end.
class Input {
 public:
  explicit Input(QByteArrayView bytes) : bytes_(bytes) {}

  bool isAtEnd() const { return bytes_.isEmpty(); }
  QByteArrayView take(qsizetype count) {
    const QByteArrayView taken = bytes_.first(std::min(count, bytes_.size()));
    bytes_ = bytes_.sliced(taken.size());
    return taken;
  }
  template <class T>
  T number() {
    T value{};
    const QByteArrayView taken = take(sizeof value);
    std::memcpy(&value, taken.data(), std::size_t(taken.size()));
    return value;
  }
  QByteArray bytes() { return take(number<std::uint16_t>()).toByteArray(); }

 private:
  QByteArrayView bytes_;
};

QVariant takeValue(Input& input, int level = 0) {
  switch (input.number<std::uint8_t>() % 12) {
  case 0:
    return QString::fromUtf8(input.bytes());
  case 1:
    return input.bytes();
  case 2:
    return input.number<std::uint8_t>() % 2 == 1;
  case 3:
    return QVariant::fromValue(input.number<std::uint8_t>());
  case 4:
    return QVariant::fromValue(input.number<std::int16_t>());
  case 5:
    return QVariant::fromValue(input.number<std::int32_t>());
  case 6:
    return QVariant::fromValue(input.number<std::uint32_t>());
  case 7:
    return QVariant::fromValue(qint64(input.number<std::int64_t>()));
  case 8:
    return QVariant::fromValue(quint64(input.number<std::uint64_t>()));
  case 9:
    return input.number<double>();
  case 10:
    return level < 100 ? QVariantList{takeValue(input, level + 1)} : QVariant();
  default:
    return level < 100 ? QVariantMap{{u"key"_s, takeValue(input, level + 1)}} : QVariant();
  }
}

const QStringList& keys() {
  static const QStringList names{ZQTickerMessageTextKey,
                                 ZQTickerMessageImageKey,
                                 ZQTickerMessageIdentifierKey,
                                 ZQTickerMessagePriorityKey,
                                 ZQTickerMessageLoopCountKey,
                                 ZQTickerMessageLoopDelayKey,
                                 ZQTickerMessageScrollDirectionKey,
                                 ZQTickerMessageContinuousScrollingKey,
                                 ZQTickerMessageFadeInOutTypeKey,
                                 ZQTickerMessageActionTypeKey,
                                 ZQTickerMessageActionStringKey,
                                 ZQTickerMessageActionDataKey,
                                 ZQTickerMessageSenderIdentifierKey,
                                 ZQTickerMessageSenderNameKey,
                                 u"unknown"_s};
  return names;
}

QVariantMap takeDictionary(QByteArrayView bytes) {
  Input input(bytes);
  QVariantMap dictionary;
  while (!input.isAtEnd()) {
    const QString& key = keys()[input.number<std::uint8_t>() % keys().size()];
    dictionary.insert(key, takeValue(input));
  }
  return dictionary;
}

bool hasControls(const QString& text) {
  return std::any_of(text.begin(), text.end(),
                     [](QChar c) { return c.category() == QChar::Other_Control; });
}

void draw(ZQTickerSign& sign) {
  QImage picture(64, 24, QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&picture);
  GraphicsContext context(&painter, QSizeF(picture.size()));
  sign.drawAtPoint(QPointF(0, 0));
}

void checkFields(const ZQTickerSign& sign) {
  check(sign.loopDelay() >= 0 && sign.loopDelay() <= LongestLoopDelay);
  check(sign.identifier().value_or(QString()).size() <= LongestIdentifier);
  check(sign.actionString().value_or(QString()).size() <= LongestActionString);
}

bool isSmall(const ZQTickerSign& sign) {
  if (const auto* text = dynamic_cast<const ZQTextTickerSign*>(&sign))
    return text->text()->length() <= LongestArchivedText &&
           text->size().width() <= LargestArchivedSide;
  if (const auto* image = dynamic_cast<const ZQImageTickerSign*>(&sign))
    return image->size().width() * image->size().height() <=
           LargestArchivedSide * LargestArchivedSide;
  const auto& combo = dynamic_cast<const ZQComboTickerSign&>(sign);
  return !combo.image() || combo.image()->size().width() * combo.image()->size().height() <=
                               LargestArchivedSide * LargestArchivedSide;
}

// As it goes to another ticker.
void checkJourney(const Ref<ZQTickerSign>& sign) {
  if (!isSmall(*sign))
    return;
  PortCoder coder(PortCoder::Passing::ByCopy);
  const Ref<ZQTickerSign> arrived = readArchivedSign(portMessageItem(sign, coder).archive);
  check(arrived->className() == sign->className());
  check(arrived->identifier() == sign->identifier());
  check(arrived->actionType() == sign->actionType());
}

void readArchives(const QByteArray& archive) {
  try {
    const Ref<ZQTickerSign> sign = readArchivedSign(archive);
    checkFields(*sign);
    draw(*sign);
    checkJourney(sign);
  } catch (const SignError& error) {
    check(!error.message().isEmpty());
  }
  try {
    const Ref<AttributedString> text = readArchivedText(archive);
    check(text->length() > 0 && text->length() <= LongestLine);
    check(text->size().width() <= LongestMessageText);
  } catch (const SignError& error) {
    check(!error.message().isEmpty());
  }
}

void readDictionary(const QVariantMap& dictionary) {
  static const MessageStyle style{Font::fontWithName(u"DejaVu Sans"_s, 14), nullptr};
  try {
    const DisplayMessage message = readMessage(dictionary, style);
    checkFields(*message.sign);
    check(message.sign->loopCount() >= ZQEndlessLoopCount);
    check(message.origin.senderName.size() <= LongestSenderName);
    check(!hasControls(message.origin.senderName));
    check(message.origin.priority == message.origin.priority);
    if (dictionary.value(ZQTickerMessageTextKey).typeId() == QMetaType::QString &&
        message.sign->className() == u"ZQTextTickerSign"_s)
      check(!hasControls(message.sign->description()));
    draw(*message.sign);
    checkJourney(message.sign);
  } catch (const MessageError& error) {
    check(keys().contains(error.key()));
    check(error.message().startsWith(error.key() + u": "_s));
  }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > LargestInput)
    return 0;
  const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
  if (bytes.startsWith("bplist") || bytes.startsWith("<"))
    readArchives(bytes);
  else
    readDictionary(takeDictionary(bytes));
  return 0;
}
