#include "app/intake/sign_archives.h"

#include "app/intake/DisplayMessage.h"
#include "app/intake/LineSplitter.h"
#include "app/intake/SilencedStandardError.h"
#include "app/intake/message_pictures.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <QtCore/QBuffer>
#include <QtCore/QLocale>
#include <QtCore/QSet>
#include <QtGui/QImageReader>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
// As many pixels as a sign of our own library writes at most for the rendering of its text.
constexpr qint64 MostSignPixels = Image::MaximumWrittenPixels;
// What may be decoded while one archive is read: a text with its rendering and attachments.
constexpr qint64 MostPixelsInAll = 4 * MostSignPixels;
// Pieces of data that are looked at for pictures in other formats.
constexpr int MostOtherData = 256;
constexpr qsizetype SmallestOtherPicture = 12;

// Classes that texts consist of.
const QSet<QString>& textClasses() {
  static const QSet<QString> names{u"NSArray"_s,
                                   u"NSAttributedString"_s,
                                   u"NSBitmapImageRep"_s,
                                   u"NSColor"_s,
                                   u"NSColorSpace"_s,
                                   u"NSData"_s,
                                   u"NSDate"_s,
                                   u"NSDecimalNumber"_s,
                                   u"NSDictionary"_s,
                                   u"NSFont"_s,
                                   u"NSImage"_s,
                                   u"NSMutableArray"_s,
                                   u"NSMutableAttributedString"_s,
                                   u"NSMutableData"_s,
                                   u"NSMutableDictionary"_s,
                                   u"NSMutableParagraphStyle"_s,
                                   u"NSMutableString"_s,
                                   u"NSNull"_s,
                                   u"NSNumber"_s,
                                   u"NSParagraphStyle"_s,
                                   u"NSShadow"_s,
                                   u"NSString"_s,
                                   u"NSTextAttachment"_s,
                                   u"NSTextAttachmentCell"_s,
                                   u"NSTextTab"_s,
                                   u"NSURL"_s,
                                   u"NSUUID"_s,
                                   u"NSValue"_s};
  return names;
}

const QSet<QString>& signClasses() {
  static const QSet<QString> names{u"ZQComboTickerSign"_s, u"ZQImageTickerSign"_s,
                                   u"ZQTextTickerSign"_s};
  return names;
}

enum class Root { Text, Sign };

// The area of a picture in one of the other formats that an image decodes; 0 for other data.
qint64 otherPixelCount(QByteArray data) {
  QBuffer buffer(&data);
  QImageReader reader(&buffer);
  reader.setDecideFormatFromContent(true);
  if (reader.format().isEmpty())
    return 0;
  const QSize size = reader.size();
  return size.isValid() ? qint64(size.width()) * size.height() : MostSignPixels + 1;
}

void checkLength(const QString& text, qsizetype longest, const char* what) {
  if (text.size() > longest)
    throw SignError(u"%1 longer than %2 characters"_s.arg(
        QLatin1StringView(what), QLocale(QLocale::English).toString(longest)));
}

// What the pictures and texts of an archive ask for.
struct Contents {
  qint64 largestPicture = 0;
  qint64 pixels = 0; // of all pictures, once each
  qint64 textBytes = 0;
};

void countData(const QByteArray& data, int& others, Contents& contents) {
  std::optional<qint64> pixels = pixelCountOf(data);
  if (!pixels && data.size() >= SmallestOtherPicture) {
    // The bytes of a text may be written as data.
    if (data.size() > LongestLine)
      throw SignError(u"a piece of data in it is too large"_s);
    if (++others > MostOtherData)
      throw SignError(u"too many pieces of data"_s);
    pixels = otherPixelCount(data);
  }
  contents.largestPicture = std::max(contents.largestPicture, pixels.value_or(0));
  contents.pixels += std::min(pixels.value_or(0), MostSignPixels);
  contents.textBytes += pixels.value_or(0) > 0 ? 0 : data.size();
}

Contents contentsOf(const PropertyList& list) {
  Contents contents;
  int others = 0;
  for (PropertyList::Index i = 0; i < list.size(); ++i) {
    if (list.kind(i) == PropertyList::Kind::Data) {
      countData(list.data(i), others, contents);
    } else if (list.kind(i) == PropertyList::Kind::String) {
      const auto bytes = qint64(list.byteCount(i));
      if (bytes > LongestLine)
        checkLength(list.string(i), LongestLine, "a text in it is");
      contents.textBytes += bytes;
    }
  }
  return contents;
}

// Looks at the archive before any object is made.
void inspect(const KeyedArchive& archive, Root root, const WorkGate& gate) {
  std::vector<bool> isChecked(archive.objectCount());
  QSet<std::uint32_t> pictureClasses;
  QSet<std::uint32_t> signClassUids;
  qint64 pictures = 0; // objects that decode one
  int signs = 0;
  for (std::uint32_t uid = 0; uid < archive.objectCount(); ++uid) {
    if (archive.entry(uid) != KeyedArchive::Entry::Record)
      continue;
    const std::uint32_t classUid = archive.classUidOf(archive.object(uid));
    if (!isChecked[classUid]) {
      isChecked[classUid] = true;
      const QString name = archive.classAt(classUid).name;
      const bool isSign = signClasses().contains(name);
      if (!textClasses().contains(name) && !(isSign && root == Root::Sign))
        throw SignError(u"holds an object of class "_s + name.left(LongestSenderName));
      if (isSign || name == "NSBitmapImageRep"_L1)
        pictureClasses.insert(classUid);
      if (isSign)
        signClassUids.insert(classUid);
    }
    pictures += pictureClasses.contains(classUid);
    // One inside of another would be rendered too.
    if (signClassUids.contains(classUid) && ++signs > 1)
      throw SignError(u"holds more than one sign"_s);
  }
  const Contents contents = contentsOf(archive.list());
  const qint64 largest = contents.largestPicture;
  if (largest > MostSignPixels || (pictures > 0 && largest > MostPixelsInAll / pictures))
    throw SignError(
        u"the pictures in it have more than %1 million pixels"_s.arg(MostSignPixels / 1'000'000));
  admitWork(gate, contents.pixels + contents.textBytes * PixelsPerCharacter);
}

template <class T>
Ref<T> unarchive(const QByteArray& data, Root root, const WorkGate& gate) {
  if (data.size() > LargestMessageArchive)
    throw SignError(u"larger than %1 MiB"_s.arg(LargestMessageArchive >> 20));
  try {
    const SilencedStandardError silence;
    KeyedUnarchiver unarchiver(data);
    inspect(unarchiver.archive(), root, gate);
    const Any object = unarchiver.decodeObjectForKey("root");
    if (const Ref<T> wanted = objectOf<T>(object))
      return wanted;
    throw SignError(!object.isValid()    ? u"it has no root"_s
                    : root == Root::Sign ? u"its root is no sign"_s
                                         : u"its root is no attributed string"_s);
  } catch (const ArchiveException& exception) {
    const QString path = exception.keyPath();
    throw SignError(path.isEmpty() || exception.reason().contains(path)
                        ? exception.reason()
                        : QString(path + u": "_s + exception.reason()));
  } catch (const Exception& exception) {
    throw SignError(exception.reason());
  }
}

void checkText(const AttributedString& text) {
  checkLength(text.string(), LongestLine, "the text is");
  if (text.runs().size() > MostTextRuns)
    throw SignError(u"the text has more than %1 changes of its look"_s.arg(MostTextRuns));
  for (const AttributedString::Run& run : text.runs()) {
    const auto font = objectOf<Font>(run.attributes.value(FontAttributeName));
    if (font && !(font->pointSize() <= LargestMessageFont))
      throw SignError(u"a font is larger than %1 points"_s.arg(LargestMessageFont));
  }
  const QSizeF size = text.size();
  if (!(size.width() >= 0 && size.width() <= LongestMessageText) ||
      !(size.height() >= 0 && size.height() <= LongestMessageText))
    throw SignError(u"the text has no size that can be shown"_s);
}

bool showsText(const AttributedString& text) {
  return !text.string().trimmed().isEmpty();
}

void checkImage(const Ref<Image>& image) {
  if (!image)
    return;
  if (image->size().isEmpty() || !isWhole(*image))
    throw SignError(u"its picture cannot be decoded"_s);
  if (pixelCountOf(image) > MostSignPixels)
    throw SignError(
        u"its picture has more than %1 million pixels"_s.arg(MostSignPixels / 1'000'000));
}

// Whether there is anything to see.
bool checkContents(const ZQTickerSign& sign) {
  if (const auto* text = dynamic_cast<const ZQTextTickerSign*>(&sign)) {
    if (!text->text())
      return false;
    checkText(*text->text());
    return showsText(*text->text());
  }
  if (const auto* picture = dynamic_cast<const ZQImageTickerSign*>(&sign)) {
    checkImage(picture->image());
    return picture->image() != nullptr;
  }
  const auto& combo = dynamic_cast<const ZQComboTickerSign&>(sign);
  checkImage(combo.image());
  const auto styled = objectOf<AttributedString>(combo.text());
  if (styled)
    checkText(*styled);
  else
    checkLength(combo.text().toString(), LongestLine, "the text is");
  return combo.image() ||
         (styled ? showsText(*styled) : !combo.text().toString().trimmed().isEmpty());
}

} // namespace

SignError::~SignError() = default;

Ref<ZQTickerSign> readArchivedSign(const QByteArray& archive, const WorkGate& gate) {
  const Ref<ZQTickerSign> sign = unarchiveSign(archive, gate);
  checkSign(*sign);
  return sign;
}

Ref<ZQTickerSign> unarchiveSign(const QByteArray& archive, const WorkGate& gate) {
  return unarchive<ZQTickerSign>(archive, Root::Sign, gate);
}

void checkSign(const ZQTickerSign& sign) {
  checkLength(sign.identifier().value_or(QString()), LongestIdentifier, "the identifier is");
  checkLength(sign.actionString().value_or(QString()), LongestActionString,
              "the action's string is");
  if (!(sign.loopDelay() >= 0 && sign.loopDelay() <= LongestLoopDelay))
    throw SignError(u"the delay must be from 0 to %1"_s.arg(LongestLoopDelay, 0, 'f', 0));
  if (!checkContents(sign))
    throw SignError(u"it has nothing to show"_s);
}
Ref<Image> pictureOf(const ZQTickerSign& sign) {
  if (const auto* picture = dynamic_cast<const ZQImageTickerSign*>(&sign))
    return picture->image();
  const auto* combo = dynamic_cast<const ZQComboTickerSign*>(&sign);
  return combo ? combo->image() : nullptr;
}

Ref<AttributedString> readArchivedText(const QByteArray& archive, const WorkGate& gate) {
  const auto text = unarchive<AttributedString>(archive, Root::Text, gate);
  checkText(*text);
  if (!showsText(*text))
    throw SignError(u"nothing to show in it"_s);
  // One that nobody else can change.
  return copyOf(text);
}

} // namespace zq::app
