// Cells in archives: flag words of real files, bit by bit.
#include "tests/platform/archiving/ArchiveBuilder.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/archiving/PlaceholderObject.h"
#include "zqticker/platform/controls/ButtonCell.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/AttributedString.h"

#include <gtest/gtest.h>

#include <QtWidgets/QMenu>

#include <functional>
#include <ostream>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace zq::testing {

// Archives as the cell would, under a class name that nobody knows.
class UnlistedCell : public Object {
  Q_GADGET
  ZQ_OBJECT

 public:
  void encodeWithCoder(Coder& coder) override { cell->encodeWithCoder(coder); }
  Ref<Object> cell;
};

} // namespace zq::testing

namespace {

struct Words {
  quint32 flags;
  quint32 flags2;
  quint32 buttonFlags;
  quint32 buttonFlags2;

  friend bool operator==(const Words&, const Words&) = default;
  friend void PrintTo(const Words& words, std::ostream* out) {
    *out << std::hex << words.flags << ' ' << words.flags2 << ' ' << words.buttonFlags << ' '
         << words.buttonFlags2;
  }
};

const QStringList buttonCellClasses{u"NSActionCell"_s, u"NSCell"_s};

// The table of an archive of one button cell with `fields` added.
Table cellTable(const Words& words, const Record& fields = {}) {
  Record cell{{u"$class"_s, U(2)},
              {u"NSCellFlags"_s, qint32(words.flags)},
              {u"NSCellFlags2"_s, qint32(words.flags2)},
              {u"NSButtonFlags"_s, qint32(words.buttonFlags)},
              {u"NSButtonFlags2"_s, qint32(words.buttonFlags2)},
              {u"NSContents"_s, U(3)}};
  for (auto field = fields.begin(); field != fields.end(); ++field)
    cell.insert(field.key(), field.value());
  return {u"$null"_s, cell, classRecord(u"NSButtonCell"_s, buttonCellClasses), u"Title"_s};
}

Ref<ButtonCell> read(const Table& table) {
  return KeyedUnarchiver::unarchiveObjectOfClass<ButtonCell>(binaryArchive(table));
}

// The fields of what `cell` archives as.
Ref<PlaceholderObject> fieldsOf(const Ref<Object>& cell) {
  const auto wrapper = std::make_shared<zq::testing::UnlistedCell>();
  wrapper->cell = cell;
  KeyedUnarchiver::Options options;
  options.keepUnknownClasses = true;
  return objectOf<PlaceholderObject>(KeyedUnarchiver::unarchiveObjectWithData(
      KeyedArchiver::archivedDataWithRootObject(wrapper), options));
}

quint32 wordOf(const Ref<PlaceholderObject>& fields, const QString& key) {
  return quint32(fields->value(key).toLongLong());
}

Words wordsOf(const Ref<Object>& cell) {
  const Ref<PlaceholderObject> fields = fieldsOf(cell);
  return {wordOf(fields, u"NSCellFlags"_s), wordOf(fields, u"NSCellFlags2"_s),
          wordOf(fields, u"NSButtonFlags"_s), wordOf(fields, u"NSButtonFlags2"_s)};
}

constexpr Words newPushButton{0x04000000, 0x08000000, 0x86804000, 0x00000001};

} // namespace

TEST(CellArchives, WriteTheWordsOfAnOrdinaryPushButtonForANewOne) {
  EXPECT_EQ(wordsOf(std::make_shared<ButtonCell>()), newPushButton);
}

TEST(CellArchives, ReadTheWordsOfAnOldPushButton) {
  const auto cell = read(cellTable({0x0401FE00, 0x08000000, 0x868240FF, 0x00000001}));
  EXPECT_EQ(cell->type(), CellType::Text);
  EXPECT_EQ(cell->title(), u"Title"_s);
  EXPECT_EQ(cell->alignment(), TextAlignment::Center);
  EXPECT_EQ(cell->highlightsBy(), 14u);
  EXPECT_EQ(cell->showsStateBy(), 0u);
  EXPECT_EQ(cell->bezelStyle(), 1);
  EXPECT_TRUE(cell->isBordered());
  EXPECT_TRUE(cell->isEnabled());
  EXPECT_FALSE(cell->isContinuous());
  EXPECT_EQ(cell->state(), CellState::Off);
}

TEST(CellArchives, ReadTheWordsOfACheckBox) {
  const auto cell = read(cellTable({0x04000000, 0x00020000, 0x48385100, 0x00000002}));
  EXPECT_EQ(cell->alignment(), TextAlignment::Left);
  EXPECT_EQ(cell->controlSize(), ControlSize::Small);
  EXPECT_EQ(cell->highlightsBy(), 1u);
  EXPECT_EQ(cell->showsStateBy(), 1u);
  EXPECT_EQ(cell->bezelStyle(), 2);
  EXPECT_FALSE(cell->isBordered());
}

TEST(CellArchives, ReadTheWordsOfAChosenRadioButton) {
  const auto cell = read(cellTable({0x8401FE00, 0x00000000, 0x483C51FF, 0x00000000}));
  EXPECT_EQ(cell->state(), CellState::On);
  EXPECT_EQ(cell->highlightsBy(), 1u);
  EXPECT_EQ(cell->showsStateBy(), 1u);
  EXPECT_EQ(read(cellTable({0x0401FE00, 0, 0x483C51FF, 0}))->state(), CellState::Off);
}

TEST(CellArchives, ReadTheWordsOfDisclosureSquareHelpAndDisabledButtons) {
  const auto disclosure = read(cellTable({0x04000000, 0x08008000, 0xB8C84000, 0x00000085}));
  EXPECT_EQ(disclosure->highlightsBy(), 3u);
  EXPECT_EQ(disclosure->showsStateBy(), 12u);
  EXPECT_EQ(disclosure->bezelStyle(), 5);
  const auto square = read(cellTable({0x04000000, 0x08000000, 0x08C04000, 0x00000086}));
  EXPECT_EQ(square->bezelStyle(), 6);
  EXPECT_EQ(square->highlightsBy(), 1u);
  EXPECT_TRUE(square->isBordered());
  const auto help = read(cellTable({0x0401FE00, 0x08000000, 0x868240FF, 0x00000021}));
  EXPECT_EQ(help->bezelStyle(), 9);
  EXPECT_FALSE(read(cellTable({0x24000000, 0x00020000, 0x48385100, 0x00000002}))->isEnabled());
}

TEST(CellArchives, WriteTheWordsOfRealCellsBackWithoutTheMeaninglessBitsOfOldSystems) {
  const Words samples[] = {{0x0401FE00, 0x08000000, 0x868240FF, 0x00000001},
                           newPushButton,
                           {0x04000000, 0x00020000, 0x48385100, 0x00000002},
                           {0x0401FE00, 0x00000000, 0x483C51FF, 0x00000000},
                           {0x8401FE00, 0x00000000, 0x483C51FF, 0x00000000},
                           {0x04000000, 0x08000000, 0x08C04000, 0x00000086},
                           {0x04000000, 0x08008000, 0xB8C84000, 0x00000085},
                           {0x0401FE00, 0x08000000, 0x868240FF, 0x00000021},
                           {0x24000000, 0x00020000, 0x48385100, 0x00000002}};
  for (const Words& sample : samples) {
    Words expected = sample;
    expected.flags &= ~0x0001FE00u;
    EXPECT_EQ(wordsOf(read(cellTable(sample))), expected);
  }
}

TEST(CellArchives, WriteBitsThatNobodyKnowsAsTheyWereRead) {
  // All ones but for what contradicts itself: mixed means not on.
  const Words all{0x7FFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF};
  Words expected = all;
  expected.flags &= ~0x0001FE00u;
  EXPECT_EQ(wordsOf(read(cellTable(all))), expected);
}

TEST(CellArchives, ChangeTheirOwnBitsAndNoOther) {
  const auto changed = [](const std::function<void(ButtonCell&)>& change) {
    const auto cell = read(cellTable({0x04000004, 0x08008000, 0x86824020, 0x10000041}));
    change(*cell);
    return wordsOf(cell);
  };
  using Cell = ButtonCell;
  EXPECT_EQ(changed([](Cell& c) { c.setState(CellState::On); }),
            (Words{0x84000004, 0x08008000, 0x86824020, 0x10000041}));
  EXPECT_EQ(changed([](Cell& c) { c.setHighlighted(true); }),
            (Words{0x44000004, 0x08008000, 0x86824020, 0x10000041}));
  EXPECT_EQ(changed([](Cell& c) { c.setEnabled(false); }),
            (Words{0x24000004, 0x08008000, 0x86824020, 0x10000041}));
  EXPECT_EQ(changed([](Cell& c) { c.setContinuous(true); }),
            (Words{0x04080004, 0x08008000, 0x86824020, 0x10000041}));
  EXPECT_EQ(changed([](Cell& c) { c.setAlignment(TextAlignment::Natural); }),
            (Words{0x04000004, 0x10008000, 0x86824020, 0x10000041}));
  EXPECT_EQ(changed([](Cell& c) { c.setControlSize(ControlSize::Mini); }),
            (Words{0x04000004, 0x08048000, 0x86824020, 0x10000041}));
  EXPECT_EQ(changed([](Cell& c) {
              c.setAllowsMixedState(true);
              c.setState(CellState::Mixed);
            }),
            (Words{0x04000004, 0x09808000, 0x86824020, 0x10000041}));
  EXPECT_EQ(changed([](Cell& c) { c.setBordered(false); }),
            (Words{0x04000004, 0x08008000, 0x86024020, 0x10000041}));
  EXPECT_EQ(changed([](Cell& c) { c.setTransparent(true); }),
            (Words{0x04000004, 0x08008000, 0x8682C020, 0x10000041}));
  EXPECT_EQ(changed([](Cell& c) { c.setButtonType(ButtonType::OnOff); }),
            (Words{0x04000004, 0x08008000, 0x36824020, 0x10000041}));
  EXPECT_EQ(changed([](Cell& c) { c.setBezelStyle(12); }),
            (Words{0x04000004, 0x08008000, 0x86824020, 0x10000064}));
}

TEST(CellArchives, KeepNumbersThatTheWordsHaveNoRoomFor) {
  const auto cell = std::make_shared<ButtonCell>();
  cell->setBezelStyle(1000);
  cell->setControlSize(ControlSize(9));
  const auto back = objectOf<ButtonCell>(
      KeyedUnarchiver::unarchiveObjectWithData(KeyedArchiver::archivedDataWithRootObject(cell)));
  ASSERT_TRUE(back);
  EXPECT_EQ(back->bezelStyle(), 1000);
  EXPECT_EQ(int(back->controlSize()), 9);
  const auto negative = std::make_shared<ButtonCell>();
  negative->setBezelStyle(-1);
  EXPECT_EQ(objectOf<ButtonCell>(KeyedUnarchiver::unarchiveObjectWithData(
                                     KeyedArchiver::archivedDataWithRootObject(negative)))
                ->bezelStyle(),
            -1);
}

TEST(CellArchives, WriteBezelStyleAndTypeAsNumbersWhereTheyWereReadSo) {
  const auto cell =
      read(cellTable(newPushButton, {{u"NSBezelStyle"_s, 1}, {u"NSAuxButtonType"_s, 7}}));
  const auto fields = fieldsOf(cell);
  EXPECT_EQ(fields->value(u"NSBezelStyle"_s).toInt(), 1);
  EXPECT_EQ(fields->value(u"NSAuxButtonType"_s).toInt(), 7);
  const auto without = fieldsOf(read(cellTable(newPushButton)));
  EXPECT_FALSE(without->contains(u"NSBezelStyle"_s));
  EXPECT_FALSE(without->contains(u"NSAuxButtonType"_s));
}

TEST(CellArchives, WriteWhatEveryRealButtonCellHas) {
  const auto fields = fieldsOf(std::make_shared<ButtonCell>(u"Play"_s));
  EXPECT_EQ(fields->value(u"NSContents"_s).toString(), u"Play"_s);
  EXPECT_EQ(fields->value(u"NSAlternateContents"_s), Any(QString()));
  EXPECT_EQ(fields->value(u"NSKeyEquivalent"_s), Any(QString()));
  EXPECT_EQ(fields->value(u"NSPeriodicDelay"_s).toInt(), 400);
  EXPECT_EQ(fields->value(u"NSPeriodicInterval"_s).toInt(), 75);
  EXPECT_FALSE(fields->contains(u"NSSupport"_s));
  EXPECT_FALSE(fields->contains(u"NSTag"_s));
  EXPECT_FALSE(fields->contains(u"NSAction"_s));
  EXPECT_FALSE(fields->contains(u"NSTarget"_s));
  EXPECT_FALSE(fields->contains(u"NSControlView"_s));
  EXPECT_FALSE(fields->contains(u"NSMenu"_s));
}

TEST(CellArchives, BringBackWhatACellShowsAndSends) {
  const auto cell = std::make_shared<ButtonCell>(u"Play"_s);
  cell->setAlternateTitle(u"Stop"_s);
  cell->setKeyEquivalent(u"\r"_s);
  cell->setFont(Font::fontWithName(u"DejaVu Sans"_s, 11));
  cell->setTag(-7);
  cell->setAction("play:");
  const auto back = objectOf<ButtonCell>(
      KeyedUnarchiver::unarchiveObjectWithData(KeyedArchiver::archivedDataWithRootObject(cell)));
  ASSERT_TRUE(back);
  EXPECT_EQ(back->title(), u"Play"_s);
  EXPECT_EQ(back->alternateTitle(), u"Stop"_s);
  EXPECT_EQ(back->keyEquivalent(), u"\r"_s);
  ASSERT_TRUE(back->font());
  EXPECT_TRUE(back->font()->isEqual(*cell->font()));
  EXPECT_EQ(back->tag(), -7);
  EXPECT_EQ(back->action().name(), u"play:"_s);
}

TEST(CellArchives, LeaveAMenuOut) {
  const auto cell = std::make_shared<ButtonCell>();
  cell->setMenu(Menu::make(std::make_unique<QMenu>()));
  EXPECT_FALSE(fieldsOf(cell)->contains(u"NSMenu"_s));
}

TEST(CellArchives, IgnoreAMenuOfAClassThatIsUnknownHere) {
  Table table = cellTable(newPushButton, {{u"NSMenu"_s, U(4)}});
  table << Record{{u"$class"_s, U(5)}} << classRecord(u"NSMenu"_s);
  EXPECT_EQ(read(table)->menu(), nullptr);
}

TEST(CellArchives, FindTheTargetAgainWhereTheArchiveHoldsIt) {
  const auto target = std::make_shared<ActionCell>();
  const auto cell = std::make_shared<ButtonCell>();
  cell->setTarget(target);
  const QVariantList pair{any(cell), any(Ref<Object>(target))};
  const QVariantList back =
      KeyedUnarchiver::unarchiveObjectWithData(KeyedArchiver::archivedDataWithRootObject(Any(pair)))
          .toList();
  ASSERT_EQ(back.size(), 2);
  const auto read = objectOf<ButtonCell>(back[0]);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->target().object(), objectOf(back[1]));
  EXPECT_NE(read->target().object(), nullptr);

  const auto alone = objectOf<ButtonCell>(
      KeyedUnarchiver::unarchiveObjectWithData(KeyedArchiver::archivedDataWithRootObject(cell)));
  EXPECT_FALSE(alone->target());
}

TEST(CellArchives, DoNotOwnATargetThatRefersBack) {
  // Each is the other's target: with owning references neither could be freed.
  const auto first = std::make_shared<ButtonCell>();
  const auto second = std::make_shared<ButtonCell>();
  first->setTarget(second);
  second->setTarget(first);
  QVariantList back =
      KeyedUnarchiver::unarchiveObjectWithData(
          KeyedArchiver::archivedDataWithRootObject(Any(QVariantList{any(first), any(second)})))
          .toList();
  const std::weak_ptr<Object> watched = objectOf(back[0]);
  EXPECT_EQ(objectOf<ButtonCell>(back[1])->target().object(), watched.lock());
  back.clear();
  EXPECT_TRUE(watched.expired());
}

TEST(CellArchives, KeepTheNameOfAPlatformPictureAndTheFontOfAKey) {
  Table table = cellTable({0x04000000, 0, 0x48385100, 2}, {{u"NSAlternateImage"_s, U(4)}});
  table << Record{{u"$class"_s, U(5)}, {u"NSImageName"_s, U(6)}}
        << classRecord(u"NSButtonImageSource"_s) << u"NSSwitch"_s;
  const auto source =
      objectOf<ButtonImageSource>(fieldsOf(read(table))->value(u"NSAlternateImage"_s));
  ASSERT_TRUE(source);
  EXPECT_EQ(source->imageName(), u"NSSwitch"_s);

  Table withFont = cellTable({0x04000000, 0, 0x86824000, 1}, {{u"NSAlternateImage"_s, U(4)}});
  withFont << Record{{u"$class"_s, U(5)}, {u"NSName"_s, U(6)}, {u"NSSize"_s, 13.0}}
           << classRecord(u"NSFont"_s) << u"Helvetica"_s;
  EXPECT_TRUE(objectOf<Font>(fieldsOf(read(withFont))->value(u"NSAlternateImage"_s)));
}

TEST(CellArchives, TakeAnAttributedTitle) {
  Table table = cellTable(newPushButton);
  table[3] = Record{{u"$class"_s, U(5)}, {u"NSString"_s, U(4)}, {u"NSAttributes"_s, U(6)}};
  table << u"rich"_s << classRecord(u"NSAttributedString"_s)
        << Record{{u"$class"_s, U(7)},
                  {u"NS.keys"_s, QVariantList()},
                  {u"NS.objects"_s, QVariantList()}}
        << classRecord(u"NSDictionary"_s);
  EXPECT_EQ(read(table)->title(), u"rich"_s);
}

TEST(CellArchives, RefuseACellInsideOfItself) {
  Table contents = cellTable(newPushButton, {{u"NSContents"_s, U(1)}});
  EXPECT_THROW(read(contents), ArchiveException);
  EXPECT_THROW(read(cellTable(newPushButton, {{u"NSAlternateImage"_s, U(1)}})), ArchiveException);
  EXPECT_THROW(read(cellTable(newPushButton, {{u"NSSupport"_s, U(1)}})), ArchiveException);
  EXPECT_THROW(read(cellTable(newPushButton, {{u"NSNormalImage"_s, U(1)}})), ArchiveException);
}

TEST(CellArchives, RefuseAListAsContents) {
  Table table = cellTable(newPushButton);
  table[3] = Record{{u"$class"_s, U(4)}, {u"NS.objects"_s, QVariantList{U(1)}}};
  table << classRecord(u"NSArray"_s);
  EXPECT_THROW(read(table), ArchiveException);
}

TEST(CellArchives, RefuseAWordOfMoreThan32Bits) {
  EXPECT_THROW(read(cellTable(newPushButton, {{u"NSCellFlags"_s, qint64(1) << 32}})),
               ArchiveException);
  EXPECT_THROW(read(cellTable(newPushButton, {{u"NSButtonFlags2"_s, -(qint64(1) << 32)}})),
               ArchiveException);
  // Unsigned words are taken as well.
  EXPECT_EQ(read(cellTable(newPushButton, {{u"NSCellFlags"_s, qint64(0x84000000)}}))->state(),
            CellState::On);
}

#include "cell_archivesTest.moc"
