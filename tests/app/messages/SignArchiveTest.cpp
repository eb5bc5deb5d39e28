// Archives from strangers: taken where they hold a sign or a text, refused without harm otherwise.
#include "tests/app/messages/Samples.h"

#include "app/intake/HeldSigns.h"
#include "app/intake/LineSplitter.h"
#include "app/intake/message_pictures.h"
#include "zqticker/platform/archiving/PortCoder.h"
#include "zqticker/platform/controls/ButtonCell.h"
#include "zqticker/platform/text/TextAttachment.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QtEndian>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {
QString signComplaint(const QByteArray& archive) {
  return errorOf<SignError>([&] { readArchivedSign(archive); });
}

QString textComplaint(const QByteArray& archive) {
  return errorOf<SignError>([&] { readArchivedText(archive); });
}

QByteArray archivedSign(const Ref<ZQTickerSign>& sign) {
  PortCoder coder(PortCoder::Passing::ByCopy);
  return portMessageItem(sign, coder).archive;
}

Ref<AttributedString> styled(const QString& text, const QString& name, const Any& value) {
  return AttributedString::make(text, {{name, value}});
}

QByteArray dictionary(const QByteArray& pairs) {
  return "<dict>" + pairs + "</dict>";
}

QByteArray reference(int uid) {
  return dictionary("<key>CF$UID</key><integer>" + QByteArray::number(uid) + "</integer>");
}

QByteArray classRecord(const QByteArray& name) {
  return dictionary("<key>$classname</key><string>" + name +
                    "</string><key>$classes</key><array><string>" + name + "</string></array>");
}

QByteArray record(int classUid, const QByteArray& pairs) {
  return dictionary("<key>$class</key>" + reference(classUid) + pairs);
}

// An archive of these objects, counted from 1, whose root is the first.
QByteArray archiveOf(const QByteArrayList& objects) {
  return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>$version</key>"
         "<integer>100000</integer><key>$archiver</key><string>NSKeyedArchiver</string>"
         "<key>$top</key><dict><key>root</key>" +
         reference(1) + "</dict><key>$objects</key><array><string>$null</string>" + objects.join() +
         "</array></dict></plist>";
}

QByteArray dataElement(const QByteArray& bytes) {
  return "<data>" + bytes.toBase64() + "</data>";
}

// The head of a PNG file that says that it is so large.
QByteArray pngHead(quint32 width, quint32 height) {
  QByteArray sides(8, '\0');
  qToBigEndian(width, sides.data());
  qToBigEndian(height, sides.data() + 4);
  return QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16) + sides + QByteArray("\x08\x02\0\0\0", 5);
}
} // namespace

TEST(SignArchive, BringsEverySignThatShowsSomething) {
  const auto image = Image::fromQImage(solid(16, 12));
  const auto text =
      styled(u"Hello"_s, FontAttributeName, any(Font::fontWithName(u"DejaVu Sans"_s, 20)));
  const Ref<ZQTickerSign> signs[] = {ZQImageTickerSign::make(image),
                                     ZQTextTickerSign::make(text),
                                     ZQComboTickerSign::make(u"Hello"_s, image),
                                     ZQComboTickerSign::make(any(text), image),
                                     ZQComboTickerSign::make(u"Hello"_s, nullptr),
                                     ZQComboTickerSign::make(u""_s, image)};
  for (const Ref<ZQTickerSign>& sign : signs) {
    sign->setIdentifier(u"one"_s);
    sign->setLoopCount(ZQEndlessLoopCount);
    const auto arrived = readArchivedSign(archivedSign(sign));
    EXPECT_EQ(arrived->className(), sign->className());
    EXPECT_EQ(arrived->identifier(), u"one"_s);
    EXPECT_EQ(arrived->loopCount(), ZQEndlessLoopCount);
    EXPECT_EQ(arrived->size(), sign->size());
  }
}

TEST(SignArchive, BringsAllThatATextMayHold) {
  Attributes attributes{
      {FontAttributeName, any(Font::fontWithName(u"DejaVu Sans"_s, 20))},
      {ForegroundColorAttributeName, any(Color::deviceRGB(1, 0, 0))},
      {AttachmentAttributeName, any(TextAttachment::make(Image::fromQImage(solid(16, 12))))},
      {LinkAttributeName, QUrl(u"https://example.org/"_s)},
      {KernAttributeName, 1.5}};
  const auto text = AttributedString::make(u"a\uFFFCb"_s, attributes);
  EXPECT_TRUE(readArchivedText(archived(text))->isEqual(*text));
}

TEST(SignArchive, RefusesWhatIsNoArchive) {
  for (const QByteArray& bytes : {QByteArray(), QByteArray("x"), QByteArray("bplist00"), png(),
                                  QByteArray("<?xml version=\"1.0\"?><plist/>")}) {
    EXPECT_NE(signComplaint(bytes), QString());
    EXPECT_NE(textComplaint(bytes), QString());
  }
  const QByteArray whole = archivedSign(ZQTextTickerSign::make(u"Hello"_s));
  for (qsizetype size = 0; size < whole.size(); size += 7)
    EXPECT_NE(signComplaint(whole.left(size)), QString());
}

TEST(SignArchive, RefusesOtherRoots) {
  const auto text = AttributedString::make(u"Hello"_s);
  EXPECT_EQ(signComplaint(archived(text)), u"its root is no sign"_s);
  EXPECT_EQ(signComplaint(archived(Any(u"Hello"_s))), u"its root is no sign"_s);
  EXPECT_EQ(signComplaint(archived(Any(QVariantList{any(text)}))), u"its root is no sign"_s);
  EXPECT_EQ(signComplaint(archived(Any())), u"it has no root"_s);
  EXPECT_EQ(textComplaint(archived(Any(u"Hello"_s))), u"its root is no attributed string"_s);
  const Ref<ZQTickerSign> sign = ZQTextTickerSign::make(text);
  EXPECT_EQ(textComplaint(archived(sign)), u"holds an object of class ZQTextTickerSign"_s);
}

TEST(SignArchive, RefusesClassesThatNoSignConsistsOf) {
  EXPECT_EQ(signComplaint(archived(std::make_shared<ZQTickerSign>())),
            u"holds an object of class ZQTickerSign"_s);
  const auto hiding = styled(u"Hello"_s, u"x"_s, any(std::make_shared<ButtonCell>()));
  EXPECT_EQ(signComplaint(archivedSign(ZQTextTickerSign::make(hiding))),
            u"holds an object of class NSButtonCell"_s);
  EXPECT_EQ(textComplaint(archived(hiding)), u"holds an object of class NSButtonCell"_s);
  EXPECT_EQ(signComplaint(archiveOf({record(2, ""), classRecord("Trojan")})),
            u"holds an object of class Trojan"_s);
}

TEST(SignArchive, RefusesAnUnknownClassThatNamesAKnownOneAsItsHint) {
  const QByteArray hinted =
      dictionary("<key>$classname</key><string>Trojan</string><key>$classhints</key><array>"
                 "<string>ZQTextTickerSign</string></array>");
  EXPECT_EQ(signComplaint(archiveOf({record(2, ""), hinted})),
            u"holds an object of class Trojan"_s);
}

TEST(SignArchive, RefusesSignsWithNothingToShow) {
  const auto empty = AttributedString::make(u" \n"_s);
  const Ref<ZQTickerSign> signs[] = {ZQImageTickerSign::make(), ZQTextTickerSign::make(empty),
                                     ZQComboTickerSign::make(u" "_s, nullptr),
                                     ZQComboTickerSign::make(any(empty), nullptr)};
  for (const Ref<ZQTickerSign>& sign : signs)
    EXPECT_EQ(signComplaint(archivedSign(sign)), u"it has nothing to show"_s);
  EXPECT_EQ(textComplaint(archived(empty)), u"nothing to show in it"_s);
}

TEST(SignArchive, RefusesFieldsOutsideOfTheirLimits) {
  const auto complaintAfter = [](auto change) {
    const auto sign = ZQComboTickerSign::make(u"Hello"_s, nullptr);
    change(*sign);
    return signComplaint(archivedSign(sign));
  };
  EXPECT_EQ(complaintAfter([](auto& sign) { sign.setLoopDelay(-1); }),
            u"the delay must be from 0 to 1000000000"_s);
  EXPECT_EQ(complaintAfter([](auto& sign) { sign.setLoopDelay(std::nan("")); }),
            u"the delay must be from 0 to 1000000000"_s);
  EXPECT_EQ(complaintAfter([](auto& sign) { sign.setIdentifier(QString(1001, u'x')); }),
            u"the identifier is longer than 1,000 characters"_s);
  EXPECT_EQ(complaintAfter([](auto& sign) { sign.setActionString(QString(32'769, u'x')); }),
            u"the action's string is longer than 32,768 characters"_s);
  EXPECT_EQ(complaintAfter([](auto& sign) { sign.setText(Any(QString(LongestLine + 1, u'x'))); }),
            u"a text in it is longer than 1,000,000 characters"_s);
}

TEST(SignArchive, RefusesTextsThatNoStripCanShow) {
  EXPECT_EQ(textComplaint(archived(AttributedString::make(QString(LongestLine + 1, u'x')))),
            u"a text in it is longer than 1,000,000 characters"_s);
  EXPECT_EQ(textComplaint(archived(styled(u"x"_s, FontAttributeName,
                                          any(Font::fontWithName(u"DejaVu Sans"_s, 1001))))),
            u"a font is larger than 1000 points"_s);
  const auto vast = Image::fromQImage(solid(1, 1));
  vast->setSize(QSizeF(2e8, 1));
  EXPECT_EQ(textComplaint(archived(
                styled(u"\uFFFC"_s, AttachmentAttributeName, any(TextAttachment::make(vast))))),
            u"the text has no size that can be shown"_s);
  const auto colorful = MutableAttributedString::make(QString(20'001, u'x'));
  for (qsizetype i = 0; i < colorful->length(); ++i)
    colorful->addAttribute(KernAttributeName, i, {i, 1});
  EXPECT_EQ(textComplaint(archived(colorful)),
            u"the text has more than 20000 changes of its look"_s);
}

TEST(SignArchive, RefusesALargeArchiveWithoutReadingIt) {
  EXPECT_EQ(signComplaint(QByteArray(LargestMessageArchive + 1, 'x')), u"larger than 8 MiB"_s);
}

namespace {
// The objects of a text with an attribute, up to the list that is its value: the next object, whose
// class is the sixth.
QByteArrayList textWithAttributeList() {
  return {
      record(2, "<key>NSString</key>" + reference(3) + "<key>NSAttributes</key>" + reference(4)),
      classRecord("NSAttributedString"),
      "<string>Hello</string>",
      record(5, "<key>NS.keys</key><array>" + reference(3) +
                    "</array><key>NS.objects</key><array>" + reference(7) + "</array>"),
      classRecord("NSDictionary"),
      classRecord("NSArray")};
}
} // namespace

TEST(SignArchive, TakesATextWhoseAttributeIsAList) {
  QByteArrayList objects = textWithAttributeList();
  objects.append(
      record(6, "<key>NS.objects</key><array>" + reference(int(objects.size()) + 2) + "</array>"));
  objects.append("<string>harmless</string>");
  EXPECT_EQ(textComplaint(archiveOf(objects)), QString());
}

TEST(SignArchive, RefusesAnArchiveBomb) {
  // Lists of ten references to the next list: ten thousand million elements in a few kilobytes.
  QByteArrayList objects = textWithAttributeList();
  for (int level = 0; level < 10; ++level)
    objects.append(record(6, "<key>NS.objects</key><array>" +
                                 reference(int(objects.size()) + 2).repeated(10) + "</array>"));
  objects.append("<string>boom</string>");
  EXPECT_NE(textComplaint(archiveOf(objects)), QString());
}

TEST(SignArchive, RefusesADeepChain) {
  QByteArrayList objects = textWithAttributeList();
  for (int level = 0; level < 100'000; ++level)
    objects.append(record(6, "<key>NS.objects</key><array>" + reference(int(objects.size()) + 2) +
                                 "</array>"));
  objects.append("<string>end</string>");
  EXPECT_NE(textComplaint(archiveOf(objects)), QString());
}

TEST(SignArchive, RefusesASignThatIsItsOwnText) {
  EXPECT_NE(signComplaint(archiveOf(
                {record(2, "<key>ZQText</key>" + reference(1)), classRecord("ZQComboTickerSign")})),
            QString());
}

TEST(SignArchive, RefusesASignInsideOfASign) {
  const Ref<ZQTickerSign> inner = ZQTextTickerSign::make(u"inner"_s);
  EXPECT_EQ(signComplaint(archivedSign(ZQTextTickerSign::make(styled(u"x"_s, u"x"_s, any(inner))))),
            u"holds more than one sign"_s);
}

TEST(SignArchive, RefusesLongTextsBeforeTheyAreLaidOut) {
  const auto archiveWith = [](const QByteArray& textRecord) {
    return archiveOf({record(2, "<key>NSString</key>" + reference(3)),
                      classRecord("NSAttributedString"), textRecord});
  };
  EXPECT_EQ(textComplaint(archiveWith("<string>" + QByteArray(1'000'001, 'x') + "</string>")),
            u"a text in it is longer than 1,000,000 characters"_s);
  EXPECT_EQ(textComplaint(archiveWith(dataElement(QByteArray(1'000'001, 'x')))),
            u"a piece of data in it is too large"_s);
  EXPECT_EQ(textComplaint(archiveWith("<string>" + QByteArray(1'000'000, 'x') + "</string>")),
            QString());
}

TEST(SignArchive, AsksForTheWorkBeforeItIsDone) {
  qint64 asked = 0;
  const WorkGate gate = [&](qint64 pixels) { asked += pixels; };
  readArchivedSign(archivedSign(ZQComboTickerSign::make(QString(1000, u'x'),
                                                        Image::fromQImage(solid(400, 300)))),
                   gate);
  EXPECT_GE(asked, 400 * 300 + 1000 * PixelsPerCharacter);
  EXPECT_LE(asked, 400 * 300 + 2000 * PixelsPerCharacter);
  const WorkGate closed = [](qint64) { throw std::length_error("enough"); };
  EXPECT_THROW(readArchivedText(archived(AttributedString::make(u"x"_s)), closed),
               std::length_error);
}

TEST(SignArchive, CountsPixelsBeforeOneIsDecoded) {
  const auto archiveWith = [](const QByteArray& picture) {
    return archiveOf({record(2, "<key>ZQImage</key>" + reference(3)),
                      classRecord("ZQImageTickerSign"), dataElement(picture)});
  };
  const QString complaint = u"the pictures in it have more than 16 million pixels"_s;
  EXPECT_EQ(signComplaint(archiveWith(pngHead(4097, 4096))), complaint);
  EXPECT_EQ(signComplaint(archiveWith(pngHead(0xFFFFFFFF, 0xFFFFFFFF))), complaint);
  EXPECT_EQ(signComplaint(archiveWith(pngHead(4096, 4096))), u"it has nothing to show"_s)
      << "looked at, and found to be no picture";
  EXPECT_EQ(signComplaint(archiveWith(tiff(4100, 4100))), complaint);
  EXPECT_EQ(signComplaint(archiveWith(encoded(solid(4100, 4100), "bmp").left(1000))), complaint);
  EXPECT_EQ(signComplaint(archiveWith(tiff(30, 20))), QString());
}

TEST(SignArchive, CountsAPictureForEachObjectThatMayDecodeIt) {
  // One picture, shown by five attachments.
  const auto withAttachments = [](int count) {
    QByteArrayList objects{
        record(2, "<key>NSString</key>" + reference(3) + "<key>NSAttributes</key>" + reference(4)),
        classRecord("NSAttributedString"),
        "<string>Hello</string>",
        record(5, "<key>NS.keys</key><array/><key>NS.objects</key><array/>"),
        classRecord("NSDictionary"),
        classRecord("NSBitmapImageRep"),
        dataElement(pngHead(4096, 4096))};
    for (int i = 0; i < count; ++i)
      objects.append(record(6, "<key>NSTIFFRepresentation</key>" + reference(7)));
    return archiveOf(objects);
  };
  EXPECT_EQ(textComplaint(withAttachments(4)), QString());
  EXPECT_EQ(textComplaint(withAttachments(5)),
            u"the pictures in it have more than 16 million pixels"_s);
}

TEST(SignArchive, CountsTheMemoryOfASign) {
  const auto image = Image::fromQImage(solid(1000, 1000));
  const auto of = [](const Ref<ZQTickerSign>& sign) { return memoryOf(*sign); };
  EXPECT_GE(of(ZQImageTickerSign::make(image)), 4'000'000);
  EXPECT_GE(of(ZQComboTickerSign::make(u"Hello"_s, image)), 4'000'000);
  EXPECT_LT(of(ZQComboTickerSign::make(u"Hello"_s, nullptr)), 10'000);
  EXPECT_GE(of(ZQComboTickerSign::make(QString(100'000, u'x'), nullptr)), 1'000'000);
  EXPECT_GE(of(ZQTextTickerSign::make(QString(100'000, u'x'))), 1'000'000);
  EXPECT_GE(of(ZQTextTickerSign::make(
                styled(u"\uFFFC"_s, AttachmentAttributeName, any(TextAttachment::make(image))))),
            4'000'000);
  EXPECT_GE(of(ZQTextTickerSign::make(
                styled(u"x"_s, ForegroundColorAttributeName, any(Color::pattern(image))))),
            4'000'000);
}

TEST(SignArchive, ReadsEveryGoldenSignOrSaysWhyNot) {
  const QDir folder(QStringLiteral(ZQTICKER_SOURCE_DIR "/tests/signs/golden"));
  const QStringList names = folder.entryList({u"*.archive"_s});
  ASSERT_FALSE(names.isEmpty());
  for (const QString& name : names) {
    QFile file(folder.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString complaint = signComplaint(file.readAll());
    const bool isShown = name.startsWith("combo"_L1) || name == "image.archive"_L1 ||
                         name == "text.archive"_L1 || name == "text.xml.archive"_L1;
    EXPECT_EQ(complaint.isEmpty(), isShown) << name.toStdString() << " " << complaint.toStdString();
  }
}
