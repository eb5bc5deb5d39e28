#include "zqticker/rollover/ZQRollOverButtonAppearance.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/archiving/SequentialArchiver.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/platform/objects/Exception.h"

#include <QtCore/QFile>
#include <QtCore/QStringList>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <thread>
#include <typeinfo>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace zq::testing {

// A subclass that archives under its own name.
class DerivedAppearance : public ZQRollOverButtonAppearance {
  Q_GADGET
  ZQ_OBJECT
};
ZQ_REGISTER_VALUE_CLASS(DerivedAppearance);

// Tells when it goes.
class WatchedColor : public Color {
 public:
  explicit WatchedColor(std::function<void()> gone) : gone_(std::move(gone)) {}
  ~WatchedColor() override { gone_(); }

 private:
  std::function<void()> gone_;
};
class WatchedShadow : public Shadow {
 public:
  explicit WatchedShadow(std::function<void()> gone) : gone_(std::move(gone)) {}
  ~WatchedShadow() override { gone_(); }

 private:
  std::function<void()> gone_;
};

// Notes under which keys, and as what, values are written and read.
class KeyRecorder : public Coder {
 public:
  QStringList notes;

  void encodeInt64(std::int64_t, QAnyStringView key) override { note("integer", key); }
  void encodeBool(bool, QAnyStringView key) override { note("boolean", key); }
  void encodeDouble(double, QAnyStringView key) override { note("double", key); }
  using Coder::encodeObject;
  void encodeObject(const Any&, QAnyStringView key) override { note("object", key); }

  std::int64_t decodeInt64ForKey(QAnyStringView key) override {
    note("integer", key);
    return 0;
  }
  bool decodeBoolForKey(QAnyStringView key) override {
    note("boolean", key);
    return false;
  }
  double decodeDoubleForKey(QAnyStringView key) override {
    note("double", key);
    return 0;
  }
  Any decodeObjectForKey(QAnyStringView key) override {
    note("object", key);
    return {};
  }

 private:
  void note(const char* kind, QAnyStringView key) {
    notes.append(QString(QLatin1StringView(kind) + u' ' + key.toString()));
  }
};

} // namespace zq::testing

using zq::testing::DerivedAppearance;
using zq::testing::KeyRecorder;
using zq::testing::WatchedColor;
using zq::testing::WatchedShadow;

namespace {

using Appearance = ZQRollOverButtonAppearance;

const QStringList keysInOrder{
    u"object zq_controlColor"_s,
    u"object zq_frameColor"_s,
    u"object zq_textColor"_s,
    u"object zq_arrowColor"_s,
    u"object zq_shadingColor"_s,
    u"object zq_mouseoverControlColor"_s,
    u"object zq_mouseoverFrameColor"_s,
    u"object zq_mouseoverTextColor"_s,
    u"object zq_mouseoverArrowColor"_s,
    u"object zq_mouseoverShadingColor"_s,
    u"object zq_highlightedControlColor"_s,
    u"object zq_highlightedFrameColor"_s,
    u"object zq_highlightedTextColor"_s,
    u"object zq_highlightedArrowColor"_s,
    u"object zq_highlightedShadingColor"_s,
    u"object zq_controlShadow"_s,
    u"object zq_textShadow"_s,
    u"object zq_mouseoverTextShadow"_s,
    u"object zq_highlightedTextShadow"_s,
    u"object zq_highlightedControlShadow"_s,
    u"integer zq_bezelStyle"_s,
    u"integer zq_shadingMode"_s,
    u"boolean zq_bordered"_s,
    u"double zq_popUpMenuDelay"_s,
    u"boolean zq_alwaysShowMenuIndicator"_s,
};

Ref<Appearance> newAppearance() {
  return std::make_shared<Appearance>();
}

// The attribute number `index` of a look in which no two attributes are equal.
template <class Type>
Type distinct(int index) {
  if constexpr (std::is_same_v<Type, ZQColorAttribute>)
    return Color::deviceRGB(index / 32.0, 0.5, 1, 0.25);
  else if constexpr (std::is_same_v<Type, ZQShadowAttribute>)
    return std::make_shared<Shadow>(QSizeF(index, -index), index / 4.0, Color::deviceWhite(0.5));
  else if constexpr (std::is_same_v<Type, ZQIntegerAttribute>)
    return 100U + unsigned(index);
  else if constexpr (std::is_same_v<Type, ZQSecondsAttribute>)
    return index / 8.0;
  else
    return true;
}

Ref<Appearance> filled(Ref<Appearance> appearance = newAppearance()) {
  int index = 0;
#define ZQ_FILL(Type, property, getter, setter) appearance->setter(distinct<Type>(++index));
  ZQ_APPEARANCE_ATTRIBUTES(ZQ_FILL)
#undef ZQ_FILL
  return appearance;
}

template <class Type>
bool equal(const Type& a, const Type& b) {
  if constexpr (std::is_same_v<Type, ZQColorAttribute> || std::is_same_v<Type, ZQShadowAttribute>)
    return isEqualValue(any(a), any(b));
  else
    return a == b;
}

void expectEqual(const Appearance& a, const Appearance& b) {
#define ZQ_COMPARE(Type, property, getter, setter)                                                 \
  EXPECT_TRUE(equal<Type>(a.getter(), b.getter())) << #property;
  ZQ_APPEARANCE_ATTRIBUTES(ZQ_COMPARE)
#undef ZQ_COMPARE
}

Ref<Appearance> reread(const Ref<Appearance>& appearance) {
  return Appearance::appearanceWithDataRepresentation(
      Appearance::dataRepresentationFromAppearance(appearance));
}

QByteArray golden(const QString& name) {
  QFile file(QStringLiteral(ZQTICKER_SOURCE_DIR "/tests/rollover/golden/") + name);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
  return file.readAll();
}

Ref<Appearance> readGolden(const QString& name) {
  return Appearance::appearanceWithDataRepresentation(golden(name));
}

// Expects that reading `name` raises with this key path and these words.
void expectRefused(const QString& name, const char* keyPath, const char* words) {
  try {
    readGolden(name);
    ADD_FAILURE() << name.toStdString() << " was read";
  } catch (const ArchiveException& exception) {
    EXPECT_EQ(exception.keyPath().toStdString(), keyPath) << exception.what();
    EXPECT_TRUE(exception.reason().contains(QString::fromUtf8(words))) << exception.what();
  }
}

} // namespace

TEST(Appearance, ANewOneIsEmpty) {
  const Appearance appearance;
#define ZQ_EXPECT_EMPTY(Type, property, getter, setter)                                            \
  EXPECT_EQ(appearance.getter(), Type()) << #property;
  ZQ_APPEARANCE_ATTRIBUTES(ZQ_EXPECT_EMPTY)
#undef ZQ_EXPECT_EMPTY
}

TEST(Appearance, HasTwentyFiveAttributesOfWhichTwentyAreObjects) {
  int objects = 0;
  int values = 0;
#define ZQ_COUNT_OBJECT(Type, property, getter, setter) ++objects;
#define ZQ_COUNT_VALUE(Type, property, getter, setter) ++values;
  ZQ_APPEARANCE_OBJECTS(ZQ_COUNT_OBJECT)
  ZQ_APPEARANCE_VALUES(ZQ_COUNT_VALUE)
#undef ZQ_COUNT_OBJECT
#undef ZQ_COUNT_VALUE
  EXPECT_EQ(objects, 20);
  EXPECT_EQ(values, 5);
}

TEST(Appearance, EachSetterStoresItsOwnAttributeAndTheVeryObject) {
  int index = 0;
#define ZQ_EXPECT_STORED(Type, property, getter, setter)                                           \
  {                                                                                                \
    const auto appearance = newAppearance();                                                       \
    const Type value = distinct<Type>(++index);                                                    \
    appearance->setter(value);                                                                     \
    EXPECT_EQ(appearance->getter(), value) << #property;                                           \
    appearance->setter(Type());                                                                    \
    expectEqual(*appearance, Appearance());                                                        \
  }
  ZQ_APPEARANCE_ATTRIBUTES(ZQ_EXPECT_STORED)
#undef ZQ_EXPECT_STORED
}

TEST(Appearance, ASetterReleasesTheFormerObject) {
  const auto appearance = newAppearance();
  bool gone = false;
  appearance->setFrameColor(std::make_shared<WatchedColor>([&] { gone = true; }));
  EXPECT_FALSE(gone);
  appearance->setFrameColor(nullptr);
  EXPECT_TRUE(gone);
}

TEST(Appearance, ReleasesItsObjectsInTheOrderOfDeclaration) {
  QStringList gone;
  QStringList expected;
  {
    const auto appearance = newAppearance();
    const auto watch = [&]<class Type>(Type*, const QString& name) -> Type {
      expected.append(name);
      const auto note = [&gone, name] { gone.append(name); };
      if constexpr (std::is_same_v<Type, ZQColorAttribute>)
        return std::make_shared<WatchedColor>(note);
      else
        return std::make_shared<WatchedShadow>(note);
    };
#define ZQ_WATCH(Type, property, getter, setter)                                                   \
  appearance->setter(watch(static_cast<Type*>(nullptr), QStringLiteral(#property)));
    ZQ_APPEARANCE_OBJECTS(ZQ_WATCH)
#undef ZQ_WATCH
    EXPECT_TRUE(gone.isEmpty());
  }
  EXPECT_EQ(expected.size(), 20);
  EXPECT_EQ(gone, expected);
}

TEST(Appearance, KeepsEnumerationNumbersWithoutAName) {
  const auto appearance = newAppearance();
  for (const std::uint64_t number :
       {std::uint64_t(3), std::uint64_t(1) << 40, std::uint64_t(1) << 63,
        std::numeric_limits<std::uint64_t>::max()}) {
    appearance->setShadingMode(number);
    appearance->setBezelStyle(number - 1);
    for (const auto& read : {appearance, reread(appearance), copyOf(appearance)}) {
      EXPECT_EQ(read->shadingMode(), number);
      EXPECT_EQ(read->bezelStyle(), number - 1);
    }
  }
}

TEST(Appearance, ShadingModesHaveTheirNumbers) {
  EXPECT_EQ(ZQShadingModeFlat, 0U);
  EXPECT_EQ(ZQShadingModeLinear, 1U);
  EXPECT_EQ(ZQShadingModeBilinear, 2U);
}

// While a writer replaces an object, a reader finds the old or the new one, whole.
TEST(Appearance, AttributesMayBeReadWhileAnotherThreadWritesThem) {
  constexpr int rounds = 1000;
  const auto appearance = newAppearance();
  std::thread writer([&] {
    for (int i = 0; i < rounds; ++i) {
      appearance->setControlColor(Color::deviceWhite(0.5));
      appearance->setControlShadow(std::make_shared<Shadow>(QSizeF(1, 1), 1, nullptr));
      appearance->setShadingMode(i % 2 == 0 ? ~std::uint64_t(0) : 0);
      appearance->setBordered(i % 2 == 0);
      appearance->setPopUpMenuDelay(i % 2 == 0 ? 1e300 : 1e-300);
    }
  });
  for (int i = 0; i < rounds; ++i) {
    const Ref<Color> color = appearance->controlColor();
    EXPECT_TRUE(!color || color->redComponent() == 0.5);
    const Ref<Shadow> shadow = appearance->controlShadow();
    EXPECT_TRUE(!shadow || shadow->shadowOffset() == QSizeF(1, 1));
    const std::uint64_t mode = appearance->shadingMode();
    EXPECT_TRUE(mode == 0 || mode == ~std::uint64_t(0)) << mode;
    static_cast<void>(appearance->isBordered());
    const double delay = appearance->popUpMenuDelay();
    EXPECT_TRUE(delay == 0 || delay == 1e300 || delay == 1e-300) << delay;
  }
  writer.join();
  EXPECT_NE(appearance->controlColor(), nullptr);
}

TEST(AppearanceCopy, HasEqualButDistinctObjects) {
  const auto source = filled();
  const auto copy = copyOf(source);
  expectEqual(*copy, *source);
#define ZQ_EXPECT_DISTINCT(Type, property, getter, setter)                                         \
  EXPECT_NE(copy->getter(), source->getter()) << #property;
  ZQ_APPEARANCE_OBJECTS(ZQ_EXPECT_DISTINCT)
#undef ZQ_EXPECT_DISTINCT
}

TEST(AppearanceCopy, StaysAsItIsWhenTheSourceChanges) {
  const auto source = filled();
  const auto copy = copyOf(source);
  source->textShadow()->setShadowBlurRadius(99);
  source->setControlColor(nullptr);
  source->setBordered(false);
  source->setPopUpMenuDelay(7);
  expectEqual(*copy, *filled());
}

TEST(AppearanceCopy, OfNothingIsNothing) {
  expectEqual(*copyOf(newAppearance()), Appearance());
}

TEST(AppearanceCopy, OfASubclassIsOfTheBaseClass) {
  const Ref<Object> copy = filled(std::make_shared<DerivedAppearance>())->copy();
  const Object& made = *copy;
  EXPECT_EQ(typeid(made), typeid(Appearance));
  expectEqual(dynamic_cast<const Appearance&>(made), *filled());
}

TEST(AppearanceArchive, WritesItsKeysInOrder) {
  KeyRecorder recorder;
  filled()->encodeWithCoder(recorder);
  EXPECT_EQ(recorder.notes, keysInOrder);
}

TEST(AppearanceArchive, WritesTheKeysOfNothingToo) {
  KeyRecorder recorder;
  newAppearance()->encodeWithCoder(recorder);
  EXPECT_EQ(recorder.notes, keysInOrder);
}

TEST(AppearanceArchive, ReadsItsKeysInOrder) {
  KeyRecorder recorder;
  newAppearance()->initWithCoder(recorder);
  EXPECT_EQ(recorder.notes, keysInOrder);
}

TEST(AppearanceArchive, EveryAttributeComesBack) {
  const auto read = reread(filled());
  ASSERT_NE(read, nullptr);
  expectEqual(*read, *filled());
}

TEST(AppearanceArchive, AnEmptyOneComesBackEmpty) {
  const auto read = reread(newAppearance());
  ASSERT_NE(read, nullptr);
  expectEqual(*read, Appearance());
}

TEST(AppearanceArchive, NothingComesBackAsNothing) {
  EXPECT_EQ(reread(nullptr), nullptr);
  EXPECT_EQ(Appearance::appearanceWithDataRepresentation(KeyedArchiver().finishEncoding()),
            nullptr);
}

TEST(AppearanceArchive, ASharedColorIsOneObjectAgain) {
  const auto appearance = newAppearance();
  const Ref<Color> color = Color::deviceRGB(1, 0, 0);
  appearance->setTextColor(color);
  appearance->setArrowColor(color);
  const auto read = reread(appearance);
  EXPECT_NE(read->textColor(), nullptr);
  EXPECT_EQ(read->textColor(), read->arrowColor());
}

TEST(AppearanceArchive, IsWrittenUnderTheNameOfTheClass) {
  const QByteArray data = Appearance::dataRepresentationFromAppearance(filled());
  for (const char* name : {"ZQRollOverButtonAppearance", "NSColor", "NSShadow", "NSObject"})
    EXPECT_TRUE(data.contains(name)) << name;
}

TEST(AppearanceArchive, OfASubclassDecodesAsTheBaseClass) {
  const QByteArray data =
      Appearance::dataRepresentationFromAppearance(filled(std::make_shared<DerivedAppearance>()));
  ASSERT_TRUE(data.contains("DerivedAppearance"));
  const auto read = Appearance::appearanceWithDataRepresentation(data);
  ASSERT_NE(read, nullptr);
  const Object& made = *read;
  EXPECT_EQ(typeid(made), typeid(Appearance));
  expectEqual(*read, *filled());
}

TEST(AppearanceArchive, DecodingGivesANewObjectAndLeavesTheReceiver) {
  KeyedArchiver archiver;
  filled()->encodeWithCoder(archiver);
  KeyedUnarchiver unarchiver(archiver.finishEncoding());
  const auto receiver = newAppearance();
  const auto read = std::dynamic_pointer_cast<Appearance>(receiver->initWithCoder(unarchiver));
  ASSERT_NE(read, nullptr);
  EXPECT_NE(read, receiver);
  expectEqual(*receiver, Appearance());
  expectEqual(*read, *filled());
}

TEST(AppearanceArchive, ACoderWithoutKeysIsNotAskedForThem) {
  SequentialArchiver archiver;
  EXPECT_THROW(newAppearance()->encodeWithCoder(archiver), InvalidArgumentException);
}

TEST(ForeignAppearance, IsReadWithEveryValueFromBinaryAndXml) {
  for (const auto& name : {u"complete.button"_s, u"complete.xml.button"_s}) {
    const auto read = readGolden(name);
    ASSERT_NE(read, nullptr);
    const auto expectColor = [](const Ref<Color>& actual, const Ref<Color>& expected) {
      EXPECT_TRUE(isEqualValue(any(actual), any(expected)))
          << describe(actual).toStdString() << " instead of " << describe(expected).toStdString();
    };
    expectColor(read->controlColor(), Color::deviceRGB(0.25, 0.5, 0.75));
    expectColor(read->frameColor(), Color::calibratedRGB(0.1, 0.2, 0.3));
    expectColor(read->textColor(), Color::calibratedWhite(1));
    expectColor(read->arrowColor(), Color::deviceWhite(0.5, 0.25));
    expectColor(read->shadingColor(), nullptr);
    expectColor(read->mouseoverControlColor(), Color::deviceCMYK(0.1, 0.2, 0.3, 0.4));
    expectColor(read->mouseoverFrameColor(), Color::sRGB(0, 0, 1));
    expectColor(read->mouseoverTextColor(), Color::catalog(u"System"_s, u"controlColor"_s,
                                                           Color::calibratedWhite(0.6666666667)));
    expectColor(read->mouseoverArrowColor(), Color::deviceRGB(0, 0, 1, 0.5));
    expectColor(read->mouseoverShadingColor(), Color::deviceRGB(0.125, 0, 1, 0.5));
    expectColor(read->highlightedControlColor(), Color::deviceRGB(0.25, 0, 1, 0.5));
    expectColor(read->highlightedFrameColor(), Color::deviceRGB(0.375, 0, 1, 0.5));
    expectColor(read->highlightedTextColor(), Color::deviceRGB(0.5, 0, 1, 0.5));
    expectColor(read->highlightedArrowColor(), Color::deviceRGB(0.625, 0, 1, 0.5));
    expectColor(read->highlightedShadingColor(), Color::deviceRGB(0.75, 0, 1, 0.5));
    const auto black = Color::calibratedWhite(0, 0.5);
    EXPECT_TRUE(read->controlShadow()->isEqual(Shadow(QSizeF(1, -2), 3, black)));
    EXPECT_TRUE(read->textShadow()->isEqual(Shadow()));
    EXPECT_TRUE(read->mouseoverTextShadow()->isEqual(Shadow(QSizeF(0, -1), 1, nullptr)));
    EXPECT_EQ(read->highlightedTextShadow(), nullptr);
    EXPECT_TRUE(read->highlightedControlShadow()->isEqual(Shadow(QSizeF(0, 1), 0.5, black)));
    EXPECT_EQ(read->bezelStyle(), 6U);
    EXPECT_EQ(read->shadingMode(), ZQShadingModeBilinear);
    EXPECT_TRUE(read->isBordered());
    EXPECT_EQ(read->popUpMenuDelay(), 0.35);
    EXPECT_TRUE(read->alwaysShowMenuIndicator());
  }
}

TEST(ForeignAppearance, MissingKeysGiveNothing) {
  expectEqual(*readGolden(u"without-keys.button"_s), Appearance());
}

TEST(ForeignAppearance, UnknownNumbersAreKept) {
  const auto read = readGolden(u"unknown-numbers.button"_s);
  EXPECT_EQ(read->bezelStyle(), ~std::uint64_t(0));
  EXPECT_EQ(read->shadingMode(), std::uint64_t(1) << 40);
}

TEST(ForeignAppearance, WhatIsNoNumberIsRead) {
  const auto read = readGolden(u"not-a-number.button"_s);
  EXPECT_TRUE(std::isnan(read->popUpMenuDelay()));
  EXPECT_TRUE(std::isnan(read->controlShadow()->shadowOffset().width()));
  EXPECT_TRUE(std::isinf(read->controlShadow()->shadowOffset().height()));
  EXPECT_EQ(read->controlShadow()->shadowBlurRadius(), 0);
}

TEST(ForeignAppearance, AMegabyteNameIsRead) {
  const QString name(1 << 20, u'n');
  const auto appearance = newAppearance();
  appearance->setControlColor(Color::catalog(name, name, Color::deviceRGB(1, 0, 0)));
  const auto read = reread(appearance);
  EXPECT_EQ(read->controlColor()->colorName(), name);
}

TEST(BrokenAppearance, AnotherRootIsRefused) {
  expectRefused(u"broken-root-is-a-color.button"_s, "root",
                "expected ZQRollOverButtonAppearance, found NSColor");
  EXPECT_THROW(Appearance::appearanceWithDataRepresentation(
                   KeyedArchiver::archivedDataWithRootObject(Any(u"text"_s))),
               ArchiveException);
}

TEST(BrokenAppearance, AValueOfAnotherKindIsRefusedByItsKey) {
  expectRefused(u"broken-shadow-as-color.button"_s, "root.zq_arrowColor",
                "expected NSColor, found NSShadow");
  expectRefused(u"broken-text-as-shadow.button"_s, "root.zq_textShadow",
                "expected NSShadow, found NSString");
  expectRefused(u"broken-flag-as-text.button"_s, "root.zq_bordered", "");
  expectRefused(u"broken-color-is-the-appearance.button"_s, "root.zq_controlColor", "");
}

TEST(BrokenAppearance, AColorOfAnUnknownSpaceIsRefused) {
  expectRefused(u"broken-color-of-unknown-space.button"_s, "root.zq_frameColor.NSColorSpace",
                "unknown colour space 42");
}

TEST(BrokenAppearance, CutOffAtAnyByteItIsRefused) {
  const QByteArray data = golden(u"complete.button"_s);
  for (qsizetype size = 0; size < data.size(); ++size)
    EXPECT_THROW(Appearance::appearanceWithDataRepresentation(data.first(size)), ArchiveException)
        << size;
}

TEST(BrokenAppearance, WithAnyBitFlippedItIsReadOrRefused) {
  const QByteArray data = golden(u"complete.button"_s);
  int read = 0;
  int refused = 0;
  for (qsizetype i = 0; i < data.size(); ++i) {
    QByteArray flipped = data;
    flipped[i] = char(flipped[i] ^ (1 << (i % 8)));
    try {
      Appearance::appearanceWithDataRepresentation(flipped);
      ++read;
    } catch (const ArchiveException&) {
      ++refused;
    }
  }
  EXPECT_GT(read, 0);
  EXPECT_GT(refused, 0);
}

TEST(BrokenAppearance, WhatIsNoArchiveIsRefused) {
  for (const char* text : {"", "no archive", "<plist version=\"1.0\"><dict/></plist>"})
    EXPECT_THROW(Appearance::appearanceWithDataRepresentation(QByteArray(text)), ArchiveException);
}

#include "ZQRollOverButtonAppearanceTest.moc"
