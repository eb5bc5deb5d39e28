#include "zqticker/platform/archiving/PropertyList.h"

#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

using Kind = PropertyList::Kind;

PropertyList plist(const QByteArray& body) {
  return PropertyList::fromData("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                "<plist version=\"1.0\">" +
                                body + "</plist>\n");
}

QString text(const QByteArray& body) {
  const PropertyList list = plist(body);
  return list.kind(list.top()) == Kind::String ? list.string(list.top()) : u"(no string)"_s;
}

double real(const QByteArray& digits) {
  const PropertyList list = plist("<real>" + digits + "</real>");
  return list.real(list.top());
}

void expectRefused(const QByteArray& file, const char* reason) {
  try {
    PropertyList::fromData(file);
    ADD_FAILURE() << "was read; expected: " << reason;
  } catch (const ArchiveException& exception) {
    EXPECT_TRUE(exception.reason().contains(QLatin1StringView(reason))) << exception.what();
  }
}

void expectBodyRefused(const QByteArray& body, const char* reason) {
  expectRefused("<plist version=\"1.0\">" + body + "</plist>", reason);
}

} // namespace

TEST(XmlPropertyListReader, ReadsEveryElement) {
  const PropertyList list = plist("<dict><key>a</key><array><string>x</string><true/><false/>"
                                  "<integer>-5</integer><real>0.5</real><data>\nAP8 =\n</data>"
                                  "<date>2000-12-31T00:00:00Z</date></array></dict>");
  const auto array = list.find(list.top(), "a"_L1);
  ASSERT_TRUE(array);
  ASSERT_EQ(list.count(*array), 7U);
  EXPECT_EQ(list.string(list.element(*array, 0)), u"x"_s);
  EXPECT_TRUE(list.boolean(list.element(*array, 1)));
  EXPECT_FALSE(list.boolean(list.element(*array, 2)));
  EXPECT_EQ(list.integer(list.element(*array, 3)), -5);
  EXPECT_EQ(list.real(list.element(*array, 4)), 0.5);
  EXPECT_EQ(list.data(list.element(*array, 5)), QByteArray("\0\xff", 2));
  EXPECT_EQ(list.real(list.element(*array, 6)), -86400.0);
}

TEST(XmlPropertyListReader, SkipsByteOrderMarkAndWhiteSpaceBeforeTheDeclaration) {
  const QByteArray file = "<?xml version=\"1.0\"?><plist><true/></plist>";
  EXPECT_NO_THROW(PropertyList::fromData("\xEF\xBB\xBF" + file));
  EXPECT_NO_THROW(PropertyList::fromData(" \r\n\t" + file));
  EXPECT_NO_THROW(PropertyList::fromData("\xEF\xBB\xBF\n" + file));
}

TEST(XmlPropertyListReader, ReadsUtf16) {
  const QString file = u"\uFEFF<?xml version=\"1.0\"?><plist><string>grüß</string></plist>"_s;
  const QByteArray bytes(reinterpret_cast<const char*>(file.utf16()), file.size() * 2);
  const PropertyList list = PropertyList::fromData(bytes);
  EXPECT_EQ(list.string(list.top()), u"grüß"_s);
}

TEST(XmlPropertyListReader, SkipsDocumentTypeAndComments) {
  const PropertyList list = PropertyList::fromData(
      "<?xml version=\"1.0\"?><!-- a --><!DOCTYPE plist PUBLIC \"-//A//DTD PLIST 1.0//EN\" "
      "\"http://example.org/PropertyList-1.0.dtd\"><plist><!-- b --><dict><!-- c --><key>k<!-- d "
      "--></key><string>v<!-- e -->w</string></dict></plist><!-- f -->");
  EXPECT_EQ(list.string(*list.find(list.top(), "k"_L1)), u"vw"_s);
}

TEST(XmlPropertyListReader, ResolvesTheFivePredefinedEntitiesAndNumericReferences) {
  EXPECT_EQ(text("<string>&lt;&gt;&amp;&quot;&apos;&#65;&#x1D11E;</string>"),
            u"<>&\"'A\U0001D11E"_s);
  EXPECT_EQ(text("<string><![CDATA[<&>]]></string>"), u"<&>"_s);
}

TEST(XmlPropertyListReader, ExpandsNoOtherEntity) {
  expectRefused("<!DOCTYPE plist SYSTEM \"x.dtd\"><plist><string>&other;</string></plist>",
                "entity");
  expectRefused("<plist><string>&other;</string></plist>", "not a property list");
  expectRefused("<!DOCTYPE plist [<!ENTITY own \"text\">]><plist><string>&own;</string></plist>",
                "not a property list");
  expectRefused("<!DOCTYPE plist [<!ENTITY file SYSTEM \"file:///etc/passwd\">]><plist>"
                "<string>&file;</string></plist>",
                "not a property list");
}

TEST(XmlPropertyListReader, EntitiesThatDoubleDoNotExpand) {
  QByteArray file = "<!DOCTYPE plist [<!ENTITY e0 \"x\">";
  for (int i = 1; i < 40; ++i)
    file += "<!ENTITY e" + QByteArray::number(i) + " \"&e" + QByteArray::number(i - 1) + ";&e" +
            QByteArray::number(i - 1) + ";\">";
  expectRefused(file + "]><plist><string>&e39;</string></plist>", "not a property list");
}

TEST(XmlPropertyListReader, ADictionaryOfTheSingleKeyIsAUid) {
  const PropertyList list = plist("<dict><key>CF$UID</key><integer>4294967295</integer></dict>");
  EXPECT_EQ(list.kind(list.top()), Kind::Uid);
  EXPECT_EQ(list.uid(list.top()), 4294967295U);
}

TEST(XmlPropertyListReader, ADictionaryWithAnotherKeyBesideIsNone) {
  const PropertyList list = plist("<dict><key>CF$UID</key><integer>1</integer><key>x</key><true/>"
                                  "</dict>");
  EXPECT_EQ(list.kind(list.top()), Kind::Dictionary);
  const PropertyList text = plist("<dict><key>CF$UID</key><string>1</string></dict>");
  EXPECT_EQ(text.kind(text.top()), Kind::Dictionary);
}

TEST(XmlPropertyListReader, RefusesUidsBeyond32Bits) {
  expectBodyRefused("<dict><key>CF$UID</key><integer>4294967296</integer></dict>", "UID");
  expectBodyRefused("<dict><key>CF$UID</key><integer>-1</integer></dict>", "UID");
  expectBodyRefused("<dict><key>CF$UID</key><integer>18446744073709551615</integer></dict>", "UID");
}

TEST(XmlPropertyListReader, ReadsIntegersOf64Bits) {
  const PropertyList list = plist("<array><integer>+7</integer><integer> -9223372036854775808 "
                                  "</integer><integer>18446744073709551615</integer></array>");
  EXPECT_EQ(list.integer(list.element(list.top(), 0)), 7);
  EXPECT_EQ(list.integer(list.element(list.top(), 1)), std::numeric_limits<qint64>::min());
  EXPECT_TRUE(list.isUnsigned(list.element(list.top(), 2)));
  for (const char* digits : {"", "x", "1.5", "18446744073709551616", "1 2", "0x10"})
    expectBodyRefused(QByteArray("<integer>") + digits + "</integer>", "no integer");
}

TEST(XmlPropertyListReader, ReadsReals) {
  EXPECT_EQ(real("13"), 13);
  EXPECT_EQ(real("-0.10000000000000001"), -0.1);
  EXPECT_EQ(real("+1e3"), 1000);
  EXPECT_EQ(real("1.5E-7"), 1.5e-7);
  EXPECT_EQ(real("2."), 2);
  EXPECT_TRUE(std::isnan(real("nan")));
  EXPECT_EQ(real("inf"), HUGE_VAL);
  EXPECT_EQ(real("-inf"), -HUGE_VAL);
  EXPECT_EQ(real("+infinity"), HUGE_VAL);
  EXPECT_EQ(real("-Infinity"), -HUGE_VAL);
  for (const char* digits : {"", "x", "1,5", "1 2", "--1", "e5"})
    expectBodyRefused(QByteArray("<real>") + digits + "</real>", "no number");
}

TEST(XmlPropertyListReader, KeepsTheNulAtTheEndOfData) {
  const PropertyList list = plist("<data>MC41IDAA</data>");
  EXPECT_EQ(list.data(list.top()), QByteArray("0.5 0\0", 6));
}

TEST(XmlPropertyListReader, RefusesWhatIsNoBase64) {
  expectBodyRefused("<data>!!!!</data>", "base64");
}

TEST(XmlPropertyListReader, RefusesWhatIsNoDate) {
  expectBodyRefused("<date>yesterday</date>", "no date");
}

TEST(XmlPropertyListReader, RefusesMisplacedElements) {
  expectBodyRefused("", "no value");
  expectBodyRefused("<true/><true/>", "more than one");
  expectBodyRefused("<dict/><dict/>", "more than one");
  expectBodyRefused("<dict><true/></dict>", "without a key");
  expectBodyRefused("<dict><dict/></dict>", "without a key");
  expectBodyRefused("<dict><key>a</key></dict>", "without a value");
  expectBodyRefused("<dict><key>a</key><key>b</key></dict>", "a key stands");
  expectBodyRefused("<array><key>a</key></array>", "a key stands");
  expectBodyRefused("<key>a</key>", "a key stands");
  expectBodyRefused("<string>a<b/></string>", "contains the element");
  expectBodyRefused("<true>x</true>", "text stands inside");
  expectBodyRefused("<array>x</array>", "text stands between");
  expectBodyRefused("<colour/>", "unknown");
  expectRefused("<html/>", "no plist");
}

TEST(XmlPropertyListReader, RefusesTextThatIsCutOff) {
  const QByteArray file =
      "<?xml version=\"1.0\"?><plist><dict><key>a</key><string>b</string></dict></plist>";
  for (qsizetype size = 0; size < file.size(); ++size)
    EXPECT_THROW(PropertyList::fromData(file.first(size)), ArchiveException) << size;
}

TEST(XmlPropertyListReader, ReadsContainersUpToTheDepthLimit) {
  const auto nested = [](int depth) -> QByteArray {
    return QByteArray("<array>").repeated(depth) + QByteArray("</array>").repeated(depth);
  };
  EXPECT_NO_THROW(plist(nested(PropertyList::MaximumDepth)));
  expectBodyRefused(nested(PropertyList::MaximumDepth + 1), "nested too deeply");
  expectBodyRefused(nested(100000), "nested too deeply");
}

TEST(XmlPropertyListReader, NamesTheLineOfAnError) {
  expectRefused("<plist>\n<dict>\n<colour/>", "line 3");
}
