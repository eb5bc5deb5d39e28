// Sign archives that another program wrote, and the shape of those that are written here.
#include "tests/signs/SignTestSupport.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQImageTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

QByteArray golden(const QString& name) {
  QFile file(QStringLiteral(ZQTICKER_SOURCE_DIR "/tests/signs/golden/") + name);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
  return file.readAll();
}

template <class Sign>
Ref<Sign> readGolden(const QString& name) {
  return objectOf<Sign>(KeyedUnarchiver::unarchiveObjectWithData(golden(name)));
}

// Expects that reading `name` raises with the key path of the value at fault.
void expectArchiveException(const QString& name, const QString& keyPath) {
  try {
    KeyedUnarchiver::unarchiveObjectWithData(golden(name));
    ADD_FAILURE() << name.toStdString() << " was read";
  } catch (const ArchiveException& exception) {
    EXPECT_EQ(exception.keyPath().toStdString(), keyPath.toStdString()) << exception.what();
  }
}

void expectGoldenBase(const ZQTickerSign& sign) {
  EXPECT_TRUE(sign.continuousScrolling());
  EXPECT_EQ(sign.loopCount(), ZQEndlessLoopCount);
  EXPECT_EQ(sign.actionType(), 1);
  EXPECT_EQ(sign.actionString(), u"https://example.org/"_s);
  EXPECT_EQ(sign.loopDelay(), 0.5);
  EXPECT_EQ(sign.identifier(), u"golden"_s);
}

} // namespace

TEST(ForeignSignArchive, ABaseSignIsRead) {
  const auto sign = readGolden<ZQTickerSign>(u"base.archive"_s);
  ASSERT_NE(sign, nullptr);
  expectGoldenBase(*sign);
  EXPECT_EQ(sign->scrollDirection(), 1);
  EXPECT_EQ(sign->size(), QSizeF(135, 20));
}

TEST(ForeignSignArchive, AnImageSignIsReadWithItsPicture) {
  const auto sign = readGolden<ZQImageTickerSign>(u"image.archive"_s);
  ASSERT_NE(sign, nullptr);
  expectGoldenBase(*sign);
  EXPECT_EQ(sign->size(), QSizeF(4, 3));
  EXPECT_EQ(sign->description(), u"red"_s);
  EXPECT_EQ(sign->image()->rasterised(1).pixel(3, 2), 0xffff0000U);
}

TEST(ForeignSignArchive, AnUndecodablePictureLeavesTheSignWithoutOne) {
  const auto sign = readGolden<ZQImageTickerSign>(u"image-undecodable-picture.archive"_s);
  ASSERT_NE(sign, nullptr);
  expectGoldenBase(*sign);
  EXPECT_EQ(sign->image(), nullptr);
  EXPECT_EQ(sign->size(), QSizeF(0, 0));
}

TEST(ForeignSignArchive, ATextSignIsReadAndRenderedFromBinaryAndXml) {
  for (const auto& name : {u"text.archive"_s, u"text.xml.archive"_s}) {
    const auto sign = readGolden<ZQTextTickerSign>(name);
    ASSERT_NE(sign, nullptr);
    expectGoldenBase(*sign);
    EXPECT_EQ(sign->description(), u"grüß 𝄞"_s);
    const Attributes& attributes = sign->text()->attributesAtIndex(0, nullptr);
    EXPECT_EQ(objectOf<Font>(attributes.value(FontAttributeName))->pointSize(), 18);
    EXPECT_TRUE(objectOf<Color>(attributes.value(ForegroundColorAttributeName))
                    ->isEqual(*Color::deviceRGB(0.25, 0.5, 0.75)));
    const QSizeF text = sign->text()->size();
    EXPECT_EQ(sign->size(), QSizeF(text.width() + text.height(), text.height()));
  }
}

TEST(ForeignSignArchive, AComboSignIsReadWithAPlainText) {
  const auto sign = readGolden<ZQComboTickerSign>(u"combo-plain.archive"_s);
  ASSERT_NE(sign, nullptr);
  expectGoldenBase(*sign);
  EXPECT_EQ(sign->text().toString(), u"plain text"_s);
  EXPECT_EQ(sign->image()->size(), QSizeF(40, 40));
  EXPECT_EQ(sign->imagePosition(), 0U);
  EXPECT_TRUE(sign->needsLayout());
}

TEST(ForeignSignArchive, AComboSignIsReadWithAnAttributedText) {
  const auto sign = readGolden<ZQComboTickerSign>(u"combo-attributed.archive"_s);
  ASSERT_NE(sign, nullptr);
  EXPECT_EQ(objectOf<AttributedString>(sign->text())->string(), u"styled text"_s);
  EXPECT_EQ(sign->image(), nullptr);
}

TEST(ForeignSignArchive, EveryMissingKeyGivesZeroOrNothing) {
  const auto sign = readGolden<ZQTextTickerSign>(u"text-empty-record.archive"_s);
  ASSERT_NE(sign, nullptr);
  EXPECT_EQ(sign->identifier(), std::nullopt);
  EXPECT_EQ(sign->scrollDirection(), 0);
  EXPECT_FALSE(sign->continuousScrolling());
  EXPECT_EQ(sign->loopCount(), 0);
  EXPECT_EQ(sign->loopDelay(), 0);
  EXPECT_EQ(sign->size(), QSizeF(0, 0));
  EXPECT_EQ(sign->actionType(), 0);
  EXPECT_EQ(sign->actionString(), std::nullopt);
  EXPECT_EQ(sign->textRepresentation(), std::nullopt);
  EXPECT_EQ(sign->image(), nullptr);
  EXPECT_EQ(sign->text(), nullptr);
}

TEST(BrokenSignArchive, AComboSignsTextThatIsNoTextFailsTheAssertion) {
  for (const auto& name :
       {u"broken-combo-without-text.archive"_s, u"broken-combo-number-as-text.archive"_s})
    expectAssertion([&] { readGolden<ZQComboTickerSign>(name); },
                    u"text must be NSString or NSAttributedString"_s);
}

TEST(BrokenSignArchive, AValueOfAWrongClassRaisesWithItsKeyPath) {
  expectArchiveException(u"broken-text-of-wrong-class.archive"_s, u"root.ZQText"_s);
  expectArchiveException(u"broken-image-of-wrong-class.archive"_s, u"root.ZQImage"_s);
  expectArchiveException(u"broken-identifier-of-wrong-class.archive"_s, u"root.ZQSignIdentifier"_s);
}

TEST(BrokenSignArchive, AValueOfAWrongClassIsNamedAsArchivesDo) {
  try {
    KeyedUnarchiver::unarchiveObjectWithData(golden(u"broken-text-of-wrong-class.archive"_s));
    ADD_FAILURE() << "was read";
  } catch (const ArchiveException& exception) {
    EXPECT_STREQ(exception.what(), "root.ZQText: expected NSAttributedString, found NSData");
  }
}

TEST(BrokenSignArchive, ANumberBeyond32BitsRaisesWithItsKeyPath) {
  expectArchiveException(u"broken-loop-count-out-of-range.archive"_s, u"root.ZQLoopCount"_s);
}

TEST(BrokenSignArchive, ASignThatIsItsOwnTextRaisesRatherThanHang) {
  expectArchiveException(u"broken-text-that-is-the-sign-itself.archive"_s, u"root.ZQText"_s);
}

TEST(BrokenSignArchive, TruncatedAnywhereItRaisesAndDoesNoHarm) {
  const QByteArray whole = golden(u"text.archive"_s);
  for (qsizetype length = 0; length < whole.size(); ++length)
    EXPECT_THROW(KeyedUnarchiver::unarchiveObjectWithData(whole.first(length)), ArchiveException)
        << length;
}

namespace {

// The keys of the root record of `sign`'s archive, in the order in which they were written.
QStringList keysWrittenBy(const Ref<ZQTickerSign>& sign) {
  class KeyRecorder : public Coder {
   public:
    bool allowsKeyedCoding() const override { return true; }
    void encodeInt(std::int32_t, QAnyStringView key) override { note(key, "int"); }
    void encodeBool(bool, QAnyStringView key) override { note(key, "bool"); }
    void encodeFloat(float, QAnyStringView key) override { note(key, "float"); }
    void encodeSize(QSizeF, QAnyStringView key) override { note(key, "size"); }
    void encodeObject(const Any&, QAnyStringView key) override { note(key, "object"); }
    QStringList keys;

   private:
    void note(QAnyStringView key, const char* kind) {
      keys.append(key.toString() + u' ' + QLatin1StringView(kind));
    }
  };
  KeyRecorder recorder;
  sign->encodeWithCoder(recorder);
  return recorder.keys;
}

const QStringList baseKeys = {u"ZQScrollDirection int"_s, u"ZQContinuousScrolling bool"_s,
                              u"ZQLoopCount int"_s,       u"ZQSize size"_s,
                              u"ZQActionType int"_s,      u"ZQActionString object"_s,
                              u"ZQLoopDelay float"_s,     u"ZQSignIdentifier object"_s};

} // namespace

TEST(WrittenSignArchive, TheBaseWritesItsKeysInTheirOrder) {
  EXPECT_EQ(keysWrittenBy(std::make_shared<ZQTickerSign>()), baseKeys);
}

TEST(WrittenSignArchive, AnImageSignAddsPictureAndTextRepresentation) {
  EXPECT_EQ(keysWrittenBy(ZQImageTickerSign::make()),
            baseKeys + QStringList({u"ZQImage object"_s, u"ZQTextRepresentation object"_s}));
}

TEST(WrittenSignArchive, ATextSignAddsItsTextAfterTheBuffer) {
  EXPECT_EQ(keysWrittenBy(ZQTextTickerSign::make(u"x"_s)),
            baseKeys + QStringList({u"ZQImage object"_s, u"ZQTextRepresentation object"_s,
                                    u"ZQText object"_s}));
}

TEST(WrittenSignArchive, AComboSignAddsPictureAndTextOnly) {
  EXPECT_EQ(keysWrittenBy(ZQComboTickerSign::make(u"x"_s, nullptr)),
            baseKeys + QStringList({u"ZQImage object"_s, u"ZQText object"_s}));
}

TEST(WrittenSignArchive, TheSameSignGivesTheSameBytes) {
  const auto bytes = [] {
    return KeyedArchiver::archivedDataWithRootObject(any(ZQTextTickerSign::make(u"stable"_s)));
  };
  EXPECT_EQ(bytes(), bytes());
}
