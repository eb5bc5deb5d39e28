#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/AttributedString.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace zq::testing {

// A record of a text as other writers make it.
class TextRecord : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSAttributedString")

 public:
  void encodeWithCoder(Coder& coder) override {
    coder.encodeObject(text, "NSString");
    if (attributes.isValid())
      coder.encodeObject(attributes, "NSAttributes");
    if (info.isValid())
      coder.encodeObject(info, "NSAttributeInfo");
  }
  Any text;
  Any attributes;
  Any info;
};

class TextStorageRecord : public TextRecord {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSTextStorage")
};

} // namespace zq::testing

using zq::testing::TextRecord;
using zq::testing::TextStorageRecord;

namespace {

const Attributes plain;
const Attributes marked{{u"mark"_s, 1}};

template <class Record = TextRecord>
Ref<AttributedString> read(const Any& text, const Any& attributes = Any(),
                           const QByteArray& info = QByteArray()) {
  const auto record = std::make_shared<Record>();
  record->text = text;
  record->attributes = attributes;
  if (!info.isNull())
    record->info = info;
  return KeyedUnarchiver::unarchiveObjectOfClass<AttributedString>(
      KeyedArchiver::archivedDataWithRootObject(record));
}

// The fields that `text` writes, at the top level of an archive.
KeyedUnarchiver fieldsOf(const Ref<AttributedString>& text) {
  KeyedArchiver archiver;
  text->encodeWithCoder(archiver);
  return KeyedUnarchiver(archiver.finishEncoding());
}

QByteArray infoOf(const Ref<AttributedString>& text) {
  return fieldsOf(text).decodeDataForKey("NSAttributeInfo").value();
}

void expectFailure(const Any& attributes, const char* hex, const char* key) {
  try {
    read(u"abc"_s, attributes, QByteArray::fromHex(hex));
    ADD_FAILURE() << "nothing raised for " << hex;
  } catch (const ArchiveException& exception) {
    EXPECT_EQ(exception.keyPath(), u"root."_s + QString::fromLatin1(key)) << hex;
  }
}

const QVariantList one{Any(plain)};
const QVariantList two{Any(plain), Any(marked)};

} // namespace

TEST(AttributedStringArchive, OneRunIsADictionaryWithoutInfo) {
  KeyedUnarchiver fields = fieldsOf(AttributedString::make(u"abc"_s, marked));
  EXPECT_EQ(fields.decodeStringForKey("NSString"), u"abc"_s);
  EXPECT_EQ(fields.decodeObjectForKey("NSAttributes").toMap().value(u"mark"_s).toInt(), 1);
  EXPECT_FALSE(fields.containsValueForKey("NSAttributeInfo"));
}

TEST(AttributedStringArchive, OneRunWithoutAttributesIsAnEmptyDictionary) {
  KeyedUnarchiver fields = fieldsOf(AttributedString::make(u"abc"_s));
  const Any attributes = fields.decodeObjectForKey("NSAttributes");
  EXPECT_EQ(attributes.metaType(), QMetaType::fromType<QVariantMap>());
  EXPECT_TRUE(attributes.toMap().isEmpty());
}

TEST(AttributedStringArchive, EmptyTextHasNoAttributes) {
  KeyedUnarchiver fields = fieldsOf(AttributedString::make(QString(), marked));
  EXPECT_EQ(fields.decodeStringForKey("NSString"), QString(u""_s));
  EXPECT_FALSE(fields.containsValueForKey("NSAttributes"));
  EXPECT_FALSE(fields.containsValueForKey("NSAttributeInfo"));
}

TEST(AttributedStringArchive, SeveralRunsAreAListWithLengthsAndIndexes) {
  const auto text = MutableAttributedString::make(u"abcdef"_s);
  text->setAttributes(marked, {1, 2});
  EXPECT_EQ(infoOf(text), QByteArray::fromHex("010002010302"));
  EXPECT_EQ(fieldsOf(text).decodeObjectForKey("NSAttributes").toList().size(), 3);
}

TEST(AttributedStringArchive, LengthsAreInGroupsOfSevenBits) {
  const auto text = MutableAttributedString::make(QString(400, u'x'));
  text->setAttributes(marked, {300, 100});
  EXPECT_EQ(infoOf(text), QByteArray::fromHex("ac02006401"));
}

TEST(AttributedStringArchive, LengthsCountUtf16Units) {
  const auto text = MutableAttributedString::make(u"\U0001D11Ex"_s);
  text->setAttributes(marked, {2, 1});
  EXPECT_EQ(infoOf(text), QByteArray::fromHex("02000101"));
}

TEST(AttributedStringArchive, KeepsValuesOfEveryKind) {
  const auto text = MutableAttributedString::make(u"abcdef"_s);
  text->addAttribute(FontAttributeName, any(Font::fontWithName(u"Helvetica"_s, 12)), {0, 6});
  text->addAttribute(ForegroundColorAttributeName, any(Color::deviceRGB(1, 0.5, 0)), {1, 3});
  text->addAttribute(KernAttributeName, 1.5, {2, 3});
  text->addAttribute(u"com.example.own"_s, u"kept"_s, {4, 2});
  const auto immutable = std::static_pointer_cast<AttributedString>(text->copy());
  for (const Ref<AttributedString>& source : {immutable, Ref<AttributedString>(text)}) {
    const auto decoded = KeyedUnarchiver::unarchiveObjectOfClass<AttributedString>(
        KeyedArchiver::archivedDataWithRootObject(source));
    EXPECT_TRUE(decoded->isEqual(*source));
    EXPECT_EQ(decoded->className(), source->className());
  }
}

TEST(AttributedStringArchive, ReadsEqualRunsInEitherForm) {
  const auto text = MutableAttributedString::make(u"abcdef"_s);
  text->setAttributes(marked, {1, 2});
  EXPECT_TRUE(read(u"abcdef"_s, two, QByteArray::fromHex("010002010300"))->isEqual(*text));
  EXPECT_TRUE(read(u"abcdef"_s, QVariantList{Any(plain), Any(marked), Any(plain)},
                   QByteArray::fromHex("010002010302"))
                  ->isEqual(*text));
}

TEST(AttributedStringArchive, ReadsATextStorageAsMutable) {
  const auto text = read<TextStorageRecord>(u"abc"_s, Any(marked));
  EXPECT_NE(std::dynamic_pointer_cast<MutableAttributedString>(text), nullptr);
  EXPECT_TRUE(text->isEqual(*AttributedString::make(u"abc"_s, marked)));
}

TEST(AttributedStringArchive, NoTextIsEmptyText) {
  EXPECT_EQ(read(Any())->length(), 0);
  EXPECT_EQ(read(u""_s)->length(), 0);
  EXPECT_TRUE(read(u"abc"_s)->attributesAtIndex(0).isEmpty());
}

TEST(AttributedStringArchive, StopsWhenTheTextIsCovered) {
  EXPECT_EQ(read(u"abc"_s, one, QByteArray::fromHex("03008005"))->runs().size(), 1U);
}

TEST(AttributedStringArchive, RunsThatEndEarlyLeaveTheRestWithoutAttributes) {
  const auto text = read(u"abc"_s, two, QByteArray::fromHex("0101"));
  EXPECT_EQ(text->attributesAtIndex(0).size(), 1);
  EXPECT_TRUE(text->attributesAtIndex(2).isEmpty());
}

TEST(AttributedStringArchive, MalformedRunsRaiseWithTheKeyPath) {
  expectFailure(one, "0105", "NSAttributeInfo");
  expectFailure(one, "0400", "NSAttributeInfo");
  expectFailure(one, "80", "NSAttributeInfo");
  expectFailure(one, "01", "NSAttributeInfo");
  expectFailure(one, "0180", "NSAttributeInfo");
  expectFailure(one, "ffffffffffffffffff01", "NSAttributeInfo");
  expectFailure(one, "ffffffffffffffff7f00", "NSAttributeInfo");
  expectFailure(Any(plain), "0300", "NSAttributes");
  expectFailure(Any(), "0300", "NSAttributes");
  expectFailure(QVariantList{u"no dictionary"_s}, "0300", "NSAttributes");
  EXPECT_THROW(read(u"abc"_s, one), ArchiveException);
  EXPECT_THROW(read(u"abc"_s, u"text"_s), ArchiveException);
  EXPECT_THROW(read(7), ArchiveException);
}

#include "attributed_string_archivesTest.moc"
