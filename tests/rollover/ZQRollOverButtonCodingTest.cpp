// Rollover buttons in archives.
#include "tests/platform/archiving/ArchiveBuilder.h"
#include "tests/rollover/RollOverButtonProbe.h"
#include "tests/support/LogWatch.h"
#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/archiving/SequentialArchiver.h"
#include "zqticker/platform/controls/ButtonObject.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/system/NotificationCenter.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace zq::testing {

// A subclass that archives under its own name.
class ArchivedButton : public ZQRollOverButton {
  Q_OBJECT

 public:
  explicit ArchivedButton(QWidget* parent = nullptr)
      : RollOverButtonClass(this), ZQRollOverButton(parent) {}

 protected:
  Ref<ButtonObject> makeViewObject() override;
};

class ArchivedButtonObject : public ButtonObject {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "ArchivedButton")

 public:
  using ButtonObject::ButtonObject;

 protected:
  std::unique_ptr<Button> makeButton() const override { return std::make_unique<ArchivedButton>(); }
};

Ref<ButtonObject> ArchivedButton::makeViewObject() {
  return std::make_shared<ArchivedButtonObject>(this);
}

ZQ_REGISTER_CLASS(ArchivedButtonObject);

} // namespace zq::testing

namespace {

// The button in `data`, as what it is.
template <class Class = ZQRollOverButton>
std::unique_ptr<Class> read(const QByteArray& data) {
  auto button = KeyedUnarchiver::unarchiveObjectOfClass<ButtonObject>(data)->takeButton();
  auto* made = qobject_cast<Class*>(button.get());
  EXPECT_NE(made, nullptr);
  if (made)
    button.release();
  return std::unique_ptr<Class>(made);
}

template <class Class>
std::unique_ptr<Class> roundTrip(Class& button) {
  return read<Class>(KeyedArchiver::archivedDataWithRootObject(button.viewObject()));
}

// An archive of one button with a rollover cell, or one of the platform, and `fields`.
QByteArray archiveWith(const Record& fields, const QString& cellClass = u"ZQRollOverButtonCell"_s) {
  Record button{{u"$class"_s, U(2)}, {u"NSCell"_s, U(3)}, {u"NSvFlags"_s, 268}};
  for (auto field = fields.begin(); field != fields.end(); ++field)
    button.insert(field.key(), field.value());
  const Record cell{{u"$class"_s, U(4)},
                    {u"NSCellFlags"_s, 0x24000000},
                    {u"NSCellFlags2"_s, 0x08000000},
                    {u"NSButtonFlags"_s, qint32(0x86804000)},
                    {u"NSContents"_s, U(5)},
                    {u"NSTag"_s, 7}};
  return binaryArchive({u"$null"_s, button,
                        classRecord(u"ZQRollOverButton"_s,
                                    {u"NSButton"_s, u"NSControl"_s, u"NSView"_s, u"NSResponder"_s}),
                        cell,
                        classRecord(cellClass, {u"NSButtonCell"_s, u"NSActionCell"_s, u"NSCell"_s}),
                        u"Play"_s});
}

class WithoutKeys : public Coder {};

} // namespace

TEST(RollOverButtonCoding, BringsBackWhetherTheButtonTracksTheMouse) {
  for (const bool tracks : {true, false}) {
    ZQRollOverButton button;
    button.setTitle(u"Play"_s);
    button.setTracksMouseInside(tracks);
    const auto back = roundTrip(button);
    EXPECT_EQ(back->tracksMouseInside(), tracks);
    EXPECT_EQ(back->title(), u"Play"_s);
    EXPECT_NE(std::dynamic_pointer_cast<ZQRollOverButtonCell>(back->cell()), nullptr);
  }
}

TEST(RollOverButtonCoding, BringsBackTheLookOfTheCell) {
  ZQRollOverButton button;
  const auto look = distinctAppearance();
  std::static_pointer_cast<ZQRollOverButtonCell>(button.cell())->setAppearance(look);
  const auto back = roundTrip(button);
  EXPECT_TRUE(back->controlColor()->isEqual(*look->controlColor()));
  EXPECT_EQ(back->popUpMenuDelay(), look->popUpMenuDelay());
}

TEST(RollOverButtonCoding, WritesTheFlagUnderItsKey) {
  // Notes the keys of the button's own.
  class Notes : public Coder {
   public:
    QStringList notes;
    bool allowsKeyedCoding() const override { return true; }
    void encodeInt(std::int32_t, QAnyStringView) override {}
    void encodeSize(QSizeF, QAnyStringView) override {}
    void encodeInt64(std::int64_t, QAnyStringView) override {}
    void encodeDouble(double, QAnyStringView) override {}
    using Coder::encodeObject;
    void encodeObject(const Any&, QAnyStringView) override {}
    void encodeBool(bool value, QAnyStringView key) override {
      if (key.toString().startsWith("zq_"_L1))
        notes.append(QString(key.toString() + (value ? u" yes" : u" no")));
    }
  } coder;
  ZQRollOverButton button;
  button.encodeWithCoder(coder);
  button.setTracksMouseInside(false);
  button.encodeWithCoder(coder);
  EXPECT_EQ(coder.notes,
            (QStringList{u"zq_doesNotTrackMouseInside no"_s, u"zq_doesNotTrackMouseInside yes"_s}));
}

TEST(RollOverButtonCoding, ReadsAnArchiveOfAnotherProgram) {
  const auto quiet = read(archiveWith({{u"zq_doesNotTrackMouseInside"_s, true}}));
  EXPECT_FALSE(quiet->tracksMouseInside());
  EXPECT_EQ(quiet->cell()->tag(), 7);
  EXPECT_EQ(quiet->title(), u"Play"_s);
  EXPECT_TRUE(read(archiveWith({}))->tracksMouseInside());
}

TEST(RollOverButtonCoding, RefusesAFlagOfAnotherKind) {
  EXPECT_THROW(read(archiveWith({{u"zq_doesNotTrackMouseInside"_s, U(5)}})), ArchiveException);
}

TEST(RollOverButtonCoding, SetsNoDefaultsUntilTheButtonAwakes) {
  ZQRollOverButton button({0, 0, 90, 22}, u"Play"_s);
  const auto& center = NotificationCenter::defaultCenter();
  const auto data = archiveWith({}, u"NSButtonCell"_s);
  const std::size_t before = center.registrationCount();
  const auto back = read(data);
  EXPECT_EQ(center.registrationCount(), before);
  EXPECT_EQ(back->cell()->font(), nullptr);
  EXPECT_EQ(std::dynamic_pointer_cast<ZQRollOverButtonCell>(back->cell()), nullptr);
  back->awakeFromNib();
  EXPECT_NE(std::dynamic_pointer_cast<ZQRollOverButtonCell>(back->cell()), nullptr);
  EXPECT_EQ(back->cell()->tag(), 7);
  EXPECT_EQ(back->title(), u"Play"_s);
  EXPECT_NE(back->cell()->font(), nullptr);
  EXPECT_EQ(center.registrationCount(), before + 1);
}

TEST(RollOverButtonCoding, TellsTheCellOfABorderThatTheButtonDecoded) {
  class BorderNotes : public ArchivedButton {
   public:
    BorderNotes() : RollOverButtonClass(static_cast<ArchivedButton*>(this)) {}
    void setBordered(bool bordered) override {
      set.push_back(bordered);
      ArchivedButton::setBordered(bordered);
    }
    std::vector<bool> set;
  };
  // The class's look says what the decoded cell answers, and is what it sets.
  for (const bool bordered : {true, false}) {
    const auto look = std::make_shared<ZQRollOverButtonAppearance>();
    look->setBordered(bordered);
    ZQRollOverButton::setAppearance<ArchivedButton>(look);
    class Source : public Coder {
     public:
      bool allowsKeyedCoding() const override { return true; }
      bool containsValueForKey(QAnyStringView) const override { return false; }
      std::int32_t decodeIntForKey(QAnyStringView) override { return 0; }
      QSizeF decodeSizeForKey(QAnyStringView) override { return {}; }
      std::int64_t decodeInt64ForKey(QAnyStringView) override { return 0; }
      bool decodeBoolForKey(QAnyStringView) override { return false; }
      Any decodeObjectForKey(QAnyStringView key) override {
        return key.toString() == "NSCell"_L1 ? any(cell) : Any();
      }
      Ref<ZQRollOverButtonCell> cell = std::make_shared<ZQRollOverButtonCell>();
    } source;
    BorderNotes button;
    button.initWithCoder(source);
    EXPECT_EQ(button.set, std::vector<bool>{bordered});
    EXPECT_EQ(button.cell(), source.cell);
    EXPECT_EQ(source.cell->isBordered(), bordered);
  }
}

TEST(RollOverButtonCoding, ACoderWithoutKeysIsLoggedAndLeftAlone) {
  ZQRollOverButton button;
  button.setTracksMouseInside(false);
  SequentialArchiver archiver;
  expectLog(u"will only work with keyed coding"_s);
  button.encodeWithCoder(archiver);
  EXPECT_EQ(archiver.encodedData(), SequentialArchiver().encodedData());
  WithoutKeys coder;
  expectLog(u"will only work with keyed coding"_s);
  button.initWithCoder(coder);
  EXPECT_FALSE(button.tracksMouseInside());
}

TEST(RollOverButtonCoding, ASubclassArchivesUnderItsOwnName) {
  ArchivedButton button;
  button.setTracksMouseInside(false);
  const QByteArray data = KeyedArchiver::archivedDataWithRootObject(button.viewObject());
  EXPECT_TRUE(data.contains("ArchivedButton"));
  EXPECT_FALSE(data.contains("ZQRollOverButton\x5a")); // a name, not the beginning of the cell's
  EXPECT_FALSE(read<ArchivedButton>(data)->tracksMouseInside());
}

TEST(RollOverButtonCoding, RecordsTheClassesThatItStandsFor) {
  ZQRollOverButton button;
  EXPECT_EQ(ClassRegistry::archiveClassesOf(*button.viewObject()->metaObject()),
            (QStringList{u"ZQRollOverButton"_s, u"NSButton"_s, u"NSControl"_s, u"NSView"_s,
                         u"NSObject"_s}));
}

#include "ZQRollOverButtonCodingTest.moc"
