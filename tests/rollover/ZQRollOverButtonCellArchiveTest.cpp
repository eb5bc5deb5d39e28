// Rollover button cells in archives.
#include "tests/platform/archiving/ArchiveBuilder.h"
#include "tests/rollover/RollOverView.h"
#include "tests/support/LogWatch.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/archiving/SequentialArchiver.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

// Notes under which keys of the rollover cell, and as what, values are written and read.
class KeyNotes : public Coder {
 public:
  QStringList notes;
  bool hasColor = true;

  bool allowsKeyedCoding() const override { return true; }
  bool containsValueForKey(QAnyStringView) const override { return hasColor; }

  void encodeInt(std::int32_t, QAnyStringView key) override { note("int", key); }
  void encodeInt64(std::int64_t, QAnyStringView key) override { note("integer", key); }
  void encodeBool(bool, QAnyStringView key) override { note("boolean", key); }
  void encodeDouble(double, QAnyStringView key) override { note("double", key); }
  using Coder::encodeObject;
  void encodeObject(const Any&, QAnyStringView key) override { note("object", key); }
  void encodeConditionalObject(const Ref<Object>&, QAnyStringView) override {}

  std::int32_t decodeIntForKey(QAnyStringView key) override {
    note("int", key);
    return 0;
  }
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
    if (key.toString().startsWith("zq_"_L1))
      notes.append(QString(QLatin1StringView(kind) + u' ' + key.toString()));
  }
};

const QStringList keysInOrder{
    u"object zq_controlColor"_s,
    u"object zq_frameColor"_s,
    u"object zq_textColor"_s,
    u"object zq_arrowColor"_s,
    u"object zq_mouseoverControlColor"_s,
    u"object zq_mouseoverFrameColor"_s,
    u"object zq_mouseoverTextColor"_s,
    u"object zq_mouseoverArrowColor"_s,
    u"object zq_highlightedControlColor"_s,
    u"object zq_highlightedFrameColor"_s,
    u"object zq_highlightedTextColor"_s,
    u"object zq_highlightedArrowColor"_s,
    u"object zq_controlShadow"_s,
    u"object zq_textShadow"_s,
    u"object zq_mouseoverTextShadow"_s,
    u"object zq_highlightedTextShadow"_s,
    u"object zq_highlightedControlShadow"_s,
    u"double zq_popUpMenuDelay"_s,
    u"object zq_shadingColor"_s,
    u"object zq_mouseoverShadingColor"_s,
    u"object zq_highlightedShadingColor"_s,
    u"integer zq_shadingMode"_s,
    u"integer zq_bezelStyle"_s,
    u"boolean zq_alwaysShowMenuIndicator"_s,
};

Ref<ZQRollOverButtonCell> cellWith(const Ref<ZQRollOverButtonAppearance>& appearance) {
  const auto cell = std::make_shared<ZQRollOverButtonCell>(u"Play"_s);
  cell->setAppearance(appearance);
  return cell;
}

Ref<ZQRollOverButtonCell> reread(const Ref<ZQRollOverButtonCell>& cell) {
  return KeyedUnarchiver::unarchiveObjectOfClass<ZQRollOverButtonCell>(
      KeyedArchiver::archivedDataWithRootObject(cell));
}

// The archive of a cell with `fields` besides those of the platform.
QByteArray archiveWith(const Record& fields, const Table& others = {}) {
  Record cell{{u"$class"_s, U(2)}, {u"NSContents"_s, U(3)}};
  for (auto field = fields.begin(); field != fields.end(); ++field)
    cell.insert(field.key(), field.value());
  return binaryArchive(Table{u"$null"_s, cell,
                             classRecord(u"ZQRollOverButtonCell"_s,
                                         {u"NSButtonCell"_s, u"NSActionCell"_s, u"NSCell"_s}),
                             u"Title"_s} +
                       others);
}

Ref<ZQRollOverButtonCell> read(const QByteArray& archive) {
  return KeyedUnarchiver::unarchiveObjectOfClass<ZQRollOverButtonCell>(archive);
}

QByteArray golden(const QString& name) {
  QFile file(QStringLiteral(ZQTICKER_SOURCE_DIR "/tests/rollover/golden/") + name);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
  return file.readAll();
}

void expectEqualButForBorder(const ZQRollOverButtonAppearance& a,
                             const ZQRollOverButtonAppearance& b) {
#define ZQ_COMPARE(Type, property, getter, setter)                                                 \
  EXPECT_TRUE(#property == "bordered"_L1 || equalAttributes<Type>(a.getter(), b.getter()))         \
      << #property;
  ZQ_APPEARANCE_ATTRIBUTES(ZQ_COMPARE)
#undef ZQ_COMPARE
}

} // namespace

TEST(RollOverButtonCellArchive, EveryAttributeButTheBorderedFlagComesBack) {
  const auto source = distinctAppearance();
  const auto cell = reread(cellWith(source));
  ASSERT_NE(cell, nullptr);
  const auto own = cell->appearance();
  ASSERT_NE(own, nullptr);
  EXPECT_FALSE(own->isBordered());
  expectEqualButForBorder(*own, *source);
}

TEST(RollOverButtonCellArchive, TheStateOfTheBaseComesBack) {
  const auto cell = cellWith(nullptr);
  cell->setTag(7);
  cell->setAlternateTitle(u"Stop"_s);
  cell->setState(CellState::On);
  const auto read = reread(cell);
  EXPECT_EQ(read->title(), u"Play"_s);
  EXPECT_EQ(read->alternateTitle(), u"Stop"_s);
  EXPECT_EQ(read->tag(), 7);
  EXPECT_EQ(read->state(), CellState::On);
  EXPECT_EQ(read->lastFrameSize(), QSizeF(0, 0));
}

TEST(RollOverButtonCellArchive, WritesItsKeysInOrder) {
  KeyNotes notes;
  cellWith(distinctAppearance())->encodeWithCoder(notes);
  EXPECT_EQ(notes.notes, keysInOrder);
}

TEST(RollOverButtonCellArchive, WritesTheKeysOfAnEmptyAppearanceToo) {
  KeyNotes notes;
  cellWith(std::make_shared<ZQRollOverButtonAppearance>())->encodeWithCoder(notes);
  EXPECT_EQ(notes.notes, keysInOrder);
}

TEST(RollOverButtonCellArchive, ReadsItsKeysInOrder) {
  KeyNotes notes;
  cellWith(nullptr)->initWithCoder(notes);
  EXPECT_EQ(notes.notes, keysInOrder);
}

TEST(RollOverButtonCellArchive, WritesNothingOfTheAppearanceOfTheClass) {
  RollOverView view;
  view.shared = distinctAppearance();
  const auto cell = cellWith(nullptr);
  cell->setControlView(&view);
  KeyNotes notes;
  cell->encodeWithCoder(notes);
  EXPECT_EQ(notes.notes, QStringList());

  const auto read = reread(cell);
  EXPECT_EQ(read->appearance(), nullptr);
  read->setControlView(&view);
  EXPECT_EQ(read->appearance(), view.shared);
}

TEST(RollOverButtonCellArchive, ReadsNoAppearanceWithoutTheControlColor) {
  KeyNotes notes;
  notes.hasColor = false;
  const auto cell = cellWith(nullptr);
  cell->initWithCoder(notes);
  EXPECT_EQ(notes.notes, QStringList());
  EXPECT_EQ(cell->appearance(), nullptr);
  // The other keys alone do not make one.
  EXPECT_EQ(read(archiveWith({{u"zq_popUpMenuDelay"_s, 1.5}}))->appearance(), nullptr);
}

TEST(RollOverButtonCellArchive, AControlColorOfNothingMakesAnAppearance) {
  const auto cell = reread(cellWith(std::make_shared<ZQRollOverButtonAppearance>()));
  ASSERT_NE(cell->appearance(), nullptr);
  EXPECT_EQ(cell->controlColor(), nullptr);
}

TEST(RollOverButtonCellArchive, WhatIsMissingBesidesTheControlColorIsNothing) {
  const auto cell = read(archiveWith({{u"zq_controlColor"_s, U(0)}, {u"zq_bezelStyle"_s, 6}}));
  ASSERT_NE(cell->appearance(), nullptr);
  EXPECT_EQ(cell->zqBezelStyle(), 6U);
  EXPECT_EQ(cell->shadingMode(), 0U);
  EXPECT_EQ(cell->textShadow(), nullptr);
  EXPECT_EQ(cell->popUpMenuDelay(), 0);
  EXPECT_FALSE(cell->alwaysShowMenuIndicator());
}

TEST(RollOverButtonCellArchive, RefusesAColorThatIsNone) {
  try {
    read(archiveWith({{u"zq_controlColor"_s, U(0)}, {u"zq_frameColor"_s, U(3)}}));
    ADD_FAILURE() << "was read";
  } catch (const ArchiveException& exception) {
    EXPECT_EQ(exception.keyPath(), u"root.zq_frameColor"_s);
  }
}

TEST(RollOverButtonCellArchive, IsCentredWhateverTheArchiveSays) {
  for (const bool hasOwn : {false, true}) {
    const auto cell = cellWith(hasOwn ? distinctAppearance() : nullptr);
    cell->setAlignment(TextAlignment::Right);
    EXPECT_EQ(reread(cell)->alignment(), TextAlignment::Center);
  }
}

TEST(RollOverButtonCellArchive, ACoderWithoutKeysIsLoggedAndLeftAlone) {
  const auto cell = cellWith(distinctAppearance());
  SequentialArchiver archiver;
  expectLog(u"will only work with keyed coding"_s);
  cell->encodeWithCoder(archiver);
  EXPECT_EQ(archiver.encodedData(), SequentialArchiver().encodedData());

  class WithoutKeys : public Coder {
  } coder;
  const auto fresh = cellWith(nullptr);
  fresh->setAlignment(TextAlignment::Left);
  expectLog(u"will only work with keyed coding"_s);
  EXPECT_EQ(fresh->initWithCoder(coder), fresh);
  EXPECT_EQ(fresh->appearance(), nullptr);
  EXPECT_EQ(fresh->title(), u"Play"_s);
  EXPECT_EQ(fresh->alignment(), TextAlignment::Center);
}

// Archives of another program.

TEST(ForeignRollOverButtonCell, IsReadWithEveryValueAndWrittenAgain) {
  const auto look =
      ZQRollOverButtonAppearance::appearanceWithDataRepresentation(golden(u"complete.button"_s));
  ASSERT_NE(look, nullptr);
  const auto foreign = read(golden(u"cell.archive"_s));
  ASSERT_NE(foreign, nullptr);
  for (const auto& cell : {foreign, reread(foreign)}) {
    EXPECT_EQ(cell->title(), u"Play"_s);
    EXPECT_EQ(cell->tag(), 7);
    EXPECT_EQ(cell->state(), CellState::On);
    EXPECT_EQ(cell->showsStateBy(), unsigned(ContentsCellMask));
    EXPECT_EQ(cell->alignment(), TextAlignment::Center);
    EXPECT_EQ(cell->bezelStyle(), 6);
    ASSERT_NE(cell->appearance(), nullptr);
    expectEqualButForBorder(*cell->appearance(), *look);
    // The archive has the key, which is that of an appearance, and the flag of the platform's cell.
    EXPECT_FALSE(cell->isBordered());
  }
}

TEST(ForeignRollOverButtonCell, HasNoAppearanceWhereTheArchiveHasNone) {
  const auto cell = read(golden(u"cell-of-the-class.archive"_s));
  ASSERT_NE(cell, nullptr);
  EXPECT_EQ(cell->title(), u"Play"_s);
  EXPECT_EQ(cell->appearance(), nullptr);
}

TEST(ForeignRollOverButtonCell, IsNotItsOwnColor) {
  try {
    read(golden(u"broken-color-is-the-cell.archive"_s));
    ADD_FAILURE() << "was read";
  } catch (const ArchiveException& exception) {
    EXPECT_EQ(exception.keyPath(), u"root.zq_controlColor"_s);
  }
}
