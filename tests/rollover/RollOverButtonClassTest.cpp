// The looks that the buttons of a class share, and the files that they come from.
#include "tests/rollover/RollOverView.h"
#include "tests/support/LogWatch.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/rollover/ZQRollOverButton.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QMetaProperty>
#include <QtCore/QTemporaryDir>

#include <array>
#include <atomic>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

// A class of buttons without a file of its own, as each test needs a new one.
#define ZQ_TEST_BUTTON(Class)                                                                      \
  class Class : public ZQRollOverButton {                                                          \
    Q_OBJECT                                                                                       \
                                                                                                   \
   public:                                                                                         \
    explicit Class(QWidget* parent = nullptr)                                                      \
        : RollOverButtonClass(this), ZQRollOverButton(parent) {}                                   \
  };

// One whose file the test names.
#define ZQ_TEST_BUTTON_WITH_FILE(Class)                                                            \
  class Class : public ZQRollOverButton {                                                          \
    Q_OBJECT                                                                                       \
                                                                                                   \
   public:                                                                                         \
    explicit Class(QWidget* parent = nullptr)                                                      \
        : RollOverButtonClass(this), ZQRollOverButton(parent) {}                                   \
    static QUrl appearanceDataURL(const QString& className) {                                      \
      askedFor.append(className);                                                                  \
      return url;                                                                                  \
    }                                                                                              \
    static inline QStringList askedFor;                                                            \
    static inline QUrl url;                                                                        \
  };

namespace zq::testing {
ZQ_TEST_BUTTON(ButtonWithResource)
ZQ_TEST_BUTTON(ButtonOfLooks)
ZQ_TEST_BUTTON(ButtonThatIsSet)
ZQ_TEST_BUTTON(ButtonWithoutFile)
ZQ_TEST_BUTTON_WITH_FILE(ButtonReadOnce)
ZQ_TEST_BUTTON_WITH_FILE(ButtonReadByItsLook)
ZQ_TEST_BUTTON_WITH_FILE(ButtonOfTheNet)
ZQ_TEST_BUTTON_WITH_FILE(ButtonOfAFolder)
ZQ_TEST_BUTTON_WITH_FILE(ButtonOfALostFile)
ZQ_TEST_BUTTON_WITH_FILE(ButtonOfAClosedFile)
ZQ_TEST_BUTTON_WITH_FILE(ButtonOfABrokenFile)
ZQ_TEST_BUTTON_WITH_FILE(ButtonOfACutOffFile)
ZQ_TEST_BUTTON_WITH_FILE(ButtonOfAnotherRoot)
ZQ_TEST_BUTTON_WITH_FILE(ButtonOfAnUnknownColor)
ZQ_TEST_BUTTON_WITH_FILE(ButtonOfNothing)
ZQ_TEST_BUTTON_WITH_FILE(ButtonWithoutKeys)
ZQ_TEST_BUTTON_WITH_FILE(ButtonOfNoNumbers)
ZQ_TEST_BUTTON_WITH_FILE(ButtonWithItsFile)
ZQ_TEST_BUTTON(ButtonOfThreads)
ZQ_TEST_BUTTON(NamesakeButton)

class ButtonBelow : public ButtonWithItsFile {
  Q_OBJECT

 public:
  explicit ButtonBelow(QWidget* parent = nullptr)
      : RollOverButtonClass(this), ButtonWithItsFile(parent) {}
};
} // namespace zq::testing

namespace zq::testing::other {
ZQ_TEST_BUTTON(NamesakeButton)
} // namespace zq::testing::other

namespace {

QUrl goldenUrl(const QString& name) {
  return QUrl::fromLocalFile(QStringLiteral(ZQTICKER_SOURCE_DIR "/tests/rollover/golden/") + name);
}

template <class Class>
Ref<ZQRollOverButtonAppearance> lookOf() {
  return ZQRollOverButton::appearance<Class>();
}

class RollOverButtonClassTest : public ::testing::Test {
 protected:
  // A file with the look that `appearance` is.
  QUrl write(const Ref<ZQRollOverButtonAppearance>& appearance) {
    return write(ZQRollOverButtonAppearance::dataRepresentationFromAppearance(appearance));
  }
  QUrl write(const QByteArray& bytes) {
    QFile file(folder.filePath(u"%1.button"_s.arg(++files)));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return QUrl::fromLocalFile(file.fileName());
  }

  QTemporaryDir folder;
  int files = 0;
};

// Whether the property takes the value and gives it back.
template <class Value>
bool isWritten(QObject& object, const char* name, const Value& value) {
  const int index = object.metaObject()->indexOfProperty(name);
  const QMetaProperty found = object.metaObject()->property(index);
  return found.write(&object, QVariant::fromValue(value)) &&
         found.read(&object).template value<Value>() == value;
}

// Expects that the first use of `Class` raises, and that it has no look afterwards.
template <class Class, class Raised>
void expectRefused() {
  EXPECT_THROW(Class(), Raised);
  EXPECT_EQ(lookOf<Class>(), nullptr);
  EXPECT_EQ(Class().classAppearance(), nullptr);
  EXPECT_EQ(Class::askedFor.size(), 1);
}

} // namespace

// From resources.

TEST_F(RollOverButtonClassTest, ReadsTheResourceThatIsCalledAsTheClassIs) {
  const QByteArray formerHome = qgetenv("XDG_DATA_HOME");
  qputenv("XDG_DATA_HOME", QFile::encodeName(folder.path()));
  const QString own = folder.filePath(QCoreApplication::applicationName());
  ASSERT_TRUE(QDir().mkpath(own));
  ASSERT_TRUE(QFile::copy(goldenUrl(u"complete.button"_s).toLocalFile(),
                          own + u"/ButtonWithResource.button"_s));
  EXPECT_EQ(ZQRollOverButton::appearanceDataURL(u"ButtonWithResource"_s),
            QUrl::fromLocalFile(own + u"/ButtonWithResource.button"_s));
  ASSERT_NE(lookOf<ButtonWithResource>(), nullptr);
  EXPECT_EQ(lookOf<ButtonWithResource>()->popUpMenuDelay(), 0.35);
  EXPECT_EQ(ButtonWithResource().popUpMenuDelay(), 0.35);
  formerHome.isNull() ? qunsetenv("XDG_DATA_HOME") : qputenv("XDG_DATA_HOME", formerHome);
}

TEST_F(RollOverButtonClassTest, HasNoLookWithoutAFileAndSaysNothing) {
  EXPECT_TRUE(ZQRollOverButton::appearanceDataURL(u"ButtonWithoutFile"_s).isEmpty());
  EXPECT_EQ(lookOf<ButtonWithoutFile>(), nullptr);
  ButtonWithoutFile button;
  EXPECT_EQ(button.classAppearance(), nullptr);
  EXPECT_EQ(button.controlColor(), nullptr);
}

TEST_F(RollOverButtonClassTest, HasNotTheLookOfTheClassAbove) {
  ZQRollOverButton::setAppearance<ZQRollOverButton>(distinctAppearance());
  EXPECT_NE(lookOf<ZQRollOverButton>(), nullptr);
  EXPECT_EQ(lookOf<ButtonWithoutFile>(), nullptr);
  EXPECT_EQ(ButtonWithoutFile().classAppearance(), nullptr);
  EXPECT_EQ(ZQRollOverButton().classAppearance(), lookOf<ZQRollOverButton>());
}

TEST_F(RollOverButtonClassTest, ReadsTheFileThatTheClassNames) {
  const auto look = distinctAppearance();
  ButtonWithItsFile::url = write(look);
  ButtonWithItsFile button;
  EXPECT_EQ(ButtonWithItsFile::askedFor, QStringList{u"ButtonWithItsFile"_s});
  ASSERT_NE(lookOf<ButtonWithItsFile>(), nullptr);
#define ZQ_COMPARE(Type, property, getter, setter)                                                 \
  EXPECT_TRUE(equalAttributes<Type>(lookOf<ButtonWithItsFile>()->getter(), look->getter()))        \
      << #property;
  ZQ_APPEARANCE_ATTRIBUTES(ZQ_COMPARE)
#undef ZQ_COMPARE

  // The classes below ask the same function, by their own names, for looks of their own.
  ButtonWithItsFile::askedFor.clear();
  ButtonBelow below;
  EXPECT_EQ(ButtonWithItsFile::askedFor, QStringList{u"ButtonBelow"_s});
  EXPECT_NE(below.classAppearance(), nullptr);
  EXPECT_NE(below.classAppearance(), button.classAppearance());
}

TEST_F(RollOverButtonClassTest, ReadsOnceWhateverHappensToTheFile) {
  ButtonReadOnce::url = write(distinctAppearance());
  const auto look = ButtonReadOnce().classAppearance();
  ASSERT_NE(look, nullptr);
  ButtonReadOnce::url = write(std::make_shared<ZQRollOverButtonAppearance>());
  EXPECT_EQ(ButtonReadOnce().classAppearance(), look);
  EXPECT_EQ(lookOf<ButtonReadOnce>(), look);
  EXPECT_EQ(ButtonReadOnce::askedFor.size(), 1);
}

TEST_F(RollOverButtonClassTest, ReadsWhenTheLookIsAskedForBeforeThereAreButtons) {
  EXPECT_EQ(ButtonReadByItsLook::askedFor, QStringList());
  ButtonReadByItsLook::url = write(distinctAppearance());
  EXPECT_NE(lookOf<ButtonReadByItsLook>(), nullptr);
  EXPECT_EQ(ButtonReadByItsLook::askedFor.size(), 1);
}

TEST_F(RollOverButtonClassTest, ReadsNoAddressButThoseOfFiles) {
  ButtonOfTheNet::url = QUrl(u"http://127.0.0.1:1/Look.button"_s);
  EXPECT_EQ(lookOf<ButtonOfTheNet>(), nullptr);
}

// Files that are no use.

TEST_F(RollOverButtonClassTest, LogsAFileThatCannotBeRead) {
  ButtonOfAFolder::url = QUrl::fromLocalFile(folder.path());
  expectLog(u"Error loading appearance data for ButtonOfAFolder: "_s);
  EXPECT_EQ(ButtonOfAFolder().classAppearance(), nullptr);
  ButtonOfALostFile::url = QUrl::fromLocalFile(folder.filePath(u"lost"_s));
  expectLog(u"Error loading appearance data for ButtonOfALostFile: No such file or directory"_s);
  EXPECT_EQ(lookOf<ButtonOfALostFile>(), nullptr);
}

TEST_F(RollOverButtonClassTest, LogsAFileThatMayNotBeRead) {
  static constexpr uid_t Nobody = 65534;
  const bool isRoot = ::geteuid() == 0;
  ButtonOfAClosedFile::url = write(distinctAppearance());
  QFile::setPermissions(ButtonOfAClosedFile::url.toLocalFile(), QFileDevice::Permissions());
  expectLog(u"Error loading appearance data for ButtonOfAClosedFile: Permission denied"_s);
  ASSERT_TRUE(!isRoot || ::seteuid(Nobody) == 0);
  const auto look = lookOf<ButtonOfAClosedFile>();
  ASSERT_TRUE(!isRoot || ::seteuid(0) == 0);
  EXPECT_EQ(look, nullptr);
}

TEST_F(RollOverButtonClassTest, RaisesWhereTheClassIsFirstUsedForAFileThatIsNoArchive) {
  ButtonOfABrokenFile::url = write(QByteArray("no archive"));
  expectRefused<ButtonOfABrokenFile, ArchiveException>();
}

TEST_F(RollOverButtonClassTest, RaisesForAFileThatIsCutOff) {
  QFile whole(goldenUrl(u"complete.button"_s).toLocalFile());
  ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
  ButtonOfACutOffFile::url = write(whole.read(whole.size() / 2));
  expectRefused<ButtonOfACutOffFile, ArchiveException>();
}

TEST_F(RollOverButtonClassTest, RaisesForAFileOfAnotherRoot) {
  ButtonOfAnotherRoot::url = goldenUrl(u"broken-root-is-a-color.button"_s);
  expectRefused<ButtonOfAnotherRoot, ArchiveException>();
}

TEST_F(RollOverButtonClassTest, RaisesForAColorOfAnUnknownSpace) {
  ButtonOfAnUnknownColor::url = goldenUrl(u"broken-color-of-unknown-space.button"_s);
  expectRefused<ButtonOfAnUnknownColor, ArchiveException>();
}

TEST_F(RollOverButtonClassTest, RaisesForAFileOfNothing) {
  ButtonOfNothing::url = write(Ref<ZQRollOverButtonAppearance>());
  expectRefused<ButtonOfNothing, InvalidArgumentException>();
}

TEST_F(RollOverButtonClassTest, TakesAFileWithoutKeysAndOneWithoutNumbers) {
  ButtonWithoutKeys::url = goldenUrl(u"without-keys.button"_s);
  ASSERT_NE(lookOf<ButtonWithoutKeys>(), nullptr);
  EXPECT_EQ(lookOf<ButtonWithoutKeys>()->controlColor(), nullptr);
  ButtonOfNoNumbers::url = goldenUrl(u"not-a-number.button"_s);
  ASSERT_NE(lookOf<ButtonOfNoNumbers>(), nullptr);
  // And draws.
  ButtonOfNoNumbers button;
  button.resize(100, 22);
  EXPECT_FALSE(button.grab().isNull());
}

// Looks that the program sets.

TEST_F(RollOverButtonClassTest, TakesTheLookThatIsSet) {
  ButtonThatIsSet button;
  for (int i = 0; i < 2; ++i) {
    const auto look = distinctAppearance();
    ZQRollOverButton::setAppearance<ButtonThatIsSet>(look);
    EXPECT_EQ(lookOf<ButtonThatIsSet>(), look);
    EXPECT_EQ(button.classAppearance(), look);
    EXPECT_EQ(button.controlColor(), look->controlColor());
  }
}

TEST_F(RollOverButtonClassTest, RefusesALookOfNothing) {
  const auto look = distinctAppearance();
  ZQRollOverButton::setAppearance<ButtonThatIsSet>(look);
  EXPECT_THROW(ZQRollOverButton::setAppearance<ButtonThatIsSet>(nullptr), InvalidArgumentException);
  EXPECT_EQ(lookOf<ButtonThatIsSet>(), look);
}

TEST_F(RollOverButtonClassTest, TellsClassesOfTheSameNameInTwoNamespacesApart) {
  ZQRollOverButton::setAppearance<zq::testing::NamesakeButton>(distinctAppearance());
  EXPECT_EQ(lookOf<zq::testing::other::NamesakeButton>(), nullptr);
}

TEST_F(RollOverButtonClassTest, SharesTheLookAmongTheButtonsThatHaveNoneOfTheirOwn) {
  ZQRollOverButton::setAppearance<ButtonOfLooks>(std::make_shared<ZQRollOverButtonAppearance>());
  ButtonOfLooks one;
  ButtonOfLooks another;
  ButtonOfLooks own;
  const auto ownLook = std::make_shared<ZQRollOverButtonAppearance>();
  std::static_pointer_cast<ZQRollOverButtonCell>(own.cell())->setAppearance(ownLook);
  for (QWidget* each :
       {static_cast<QWidget*>(&one), static_cast<QWidget*>(&another), static_cast<QWidget*>(&own)})
    each->resize(100, 22);
  const auto middle = [](QWidget& button) {
    return button.grab().toImage().pixelColor(button.width() / 4, button.height() / 2);
  };
  one.setBordered(false);
  one.setControlColor(Color::deviceRGB(1, 0, 0));
  own.setControlColor(Color::deviceRGB(0, 0, 1));
  EXPECT_EQ(middle(one), QColor(Qt::red));
  EXPECT_EQ(middle(another), QColor(Qt::red));
  EXPECT_EQ(middle(own), QColor(Qt::blue));
}

// Properties.

TEST_F(RollOverButtonClassTest, HasAPropertyForEachAttributeOfALook) {
  ZQRollOverButton::setAppearance<ButtonOfLooks>(std::make_shared<ZQRollOverButtonAppearance>());
  ButtonOfLooks button;
  const auto look = lookOf<ButtonOfLooks>();
  const auto values = distinctAppearance();
  int properties = 0;
#define ZQ_WRITE(Type, property, getter, setter)                                                   \
  EXPECT_TRUE(isWritten(button, #property, values->getter())) << #property;                        \
  EXPECT_EQ(look->getter(), values->getter()) << #property;                                        \
  ++properties;
  ZQ_APPEARANCE_ATTRIBUTES(ZQ_WRITE)
#undef ZQ_WRITE
  EXPECT_EQ(properties, 25);
}

// The attributes of a class's look on two threads.
TEST_F(RollOverButtonClassTest, IsReadWhileAnotherThreadWrites) {
  ZQRollOverButton::setAppearance<ButtonOfThreads>(std::make_shared<ZQRollOverButtonAppearance>());
  ButtonOfThreads button;
  const auto look = lookOf<ButtonOfThreads>();
  const std::array values{distinctAppearance(), distinctAppearance()};
  std::atomic<bool> isOver = false;
  std::atomic<int> wrong = 0;
  std::thread reader([&] {
    while (!isOver) {
      // Whole objects only, of the first values or of the others.
#define ZQ_READ(Type, property, getter, setter)                                                    \
  {                                                                                                \
    const auto read = look->getter();                                                              \
    if (read && read != values[0]->getter() && read != values[1]->getter())                        \
      ++wrong;                                                                                     \
  }
      ZQ_APPEARANCE_ATTRIBUTES(ZQ_READ)
#undef ZQ_READ
    }
  });
  for (int i = 0; i < 500; ++i) {
    const auto& source = values[std::size_t(i % 2)];
#define ZQ_WRITE(Type, property, getter, setter) button.setter(source->getter());
    ZQ_APPEARANCE_OBJECTS(ZQ_WRITE)
#undef ZQ_WRITE
    button.setShadingMode(source->shadingMode());
    button.setPopUpMenuDelay(source->popUpMenuDelay());
    button.setAlwaysShowMenuIndicator(source->alwaysShowMenuIndicator());
    button.setBezelStyle(int(source->bezelStyle()));
    button.setBordered(source->isBordered());
  }
  isOver = true;
  reader.join();
  EXPECT_EQ(wrong, 0);
}

#include "RollOverButtonClassTest.moc"
