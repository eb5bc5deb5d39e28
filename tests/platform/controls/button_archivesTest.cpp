// Buttons in archives.
#include "tests/platform/archiving/ArchiveBuilder.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/controls/Button.h"
#include "zqticker/platform/controls/ButtonCell.h"
#include "zqticker/platform/controls/ButtonObject.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <QtCore/QPointer>

#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

Ref<ButtonObject> read(const QByteArray& data) {
  return KeyedUnarchiver::unarchiveObjectOfClass<ButtonObject>(data);
}

std::unique_ptr<Button> roundTrip(Button& button) {
  return read(KeyedArchiver::archivedDataWithRootObject(button.viewObject()))->takeButton();
}

// An archive of one button with `fields` and an ordinary cell that refers back to it.
QByteArray archiveOf(const Record& fields) {
  Record view{{u"$class"_s, U(2)}, {u"NSCell"_s, U(3)}, {u"NSvFlags"_s, 268}};
  for (auto field = fields.begin(); field != fields.end(); ++field)
    view.insert(field.key(), field.value());
  const Record cell{{u"$class"_s, U(4)},
                    {u"NSCellFlags"_s, 0x24000000},
                    {u"NSCellFlags2"_s, 0x08000000},
                    {u"NSButtonFlags"_s, qint32(0x86804000)},
                    {u"NSButtonFlags2"_s, 1},
                    {u"NSControlView"_s, U(1)},
                    {u"NSTarget"_s, U(1)},
                    {u"NSContents"_s, U(5)}};
  return binaryArchive({u"$null"_s, view,
                        classRecord(u"NSButton"_s, {u"NSControl"_s, u"NSView"_s, u"NSResponder"_s}),
                        cell, classRecord(u"NSButtonCell"_s, {u"NSActionCell"_s, u"NSCell"_s}),
                        u"Title"_s, u"{{10, 20}, {90, 25}}"_s, u"{70, 19}"_s});
}

} // namespace

TEST(ButtonArchives, BringBackFrameAndCell) {
  QWidget superview;
  superview.resize(200, 100);
  Button button(&superview);
  button.setGeometry(10, 20, 90, 22);
  button.setTitle(u"Play"_s);
  button.setBezelStyle(6);
  button.setEnabled(false);
  button.hide();
  QWidget other;
  other.resize(200, 60);
  const auto back = roundTrip(button);
  ASSERT_TRUE(back);
  EXPECT_EQ(back->title(), u"Play"_s);
  EXPECT_EQ(back->bezelStyle(), 6);
  EXPECT_FALSE(back->isEnabled());
  EXPECT_FALSE(back->cell()->isEnabled());
  EXPECT_EQ(back->cell()->controlView(), back.get());
  EXPECT_EQ(back->frame(), QRectF(10, 58, 90, 22));
  back->setParent(&other);
  EXPECT_EQ(back->geometry(), QRect(10, -20, 90, 22));
  other.show();
  // Hidden by itself, whatever the window does.
  EXPECT_FALSE(back->isVisible());
}

TEST(ButtonArchives, TakeTheEnabledStateFromTheCell) {
  const auto object = read(archiveOf({{u"NSEnabled"_s, true}, {u"NSFrame"_s, U(6)}}));
  EXPECT_FALSE(object->button()->isEnabled());
  EXPECT_EQ(object->button()->frame(), QRectF(10, 20, 90, 25));
  EXPECT_EQ(object->button()->title(), u"Title"_s);
}

TEST(ButtonArchives, TakeASizeWithoutAnOrigin) {
  const auto object = read(archiveOf({{u"NSFrameSize"_s, U(7)}}));
  EXPECT_EQ(object->button()->frame(), QRectF(0, 0, 70, 19));
}

TEST(ButtonArchives, FindTheButtonAsViewAndAsTargetOfItsCell) {
  const auto object = read(archiveOf({{u"NSFrame"_s, U(6)}}));
  Button* button = object->button();
  EXPECT_EQ(button->cell()->controlView(), button);
  EXPECT_EQ(button->cell()->target().qObject(), button);
  EXPECT_EQ(button->viewObject(), object);
}

TEST(ButtonArchives, OwnTheButtonUntilItIsTaken) {
  auto object = read(archiveOf({{u"NSFrame"_s, U(6)}}));
  QPointer<Button> watched = object->button();
  object.reset();
  EXPECT_FALSE(watched);

  object = read(archiveOf({{u"NSFrame"_s, U(6)}}));
  auto button = object->takeButton();
  EXPECT_EQ(object->takeButton(), nullptr);
  const std::weak_ptr<ButtonObject> kept = object;
  object.reset();
  EXPECT_EQ(button->viewObject(), kept.lock());
  button.reset();
  EXPECT_TRUE(kept.expired());
}

TEST(ButtonArchives, WriteUnknownFlagsOfTheViewAsTheyWereRead) {
  for (const qint32 flags : {268, qint32(0x80000124), 0x7FFFFFFF}) {
    const auto object = read(archiveOf({{u"NSvFlags"_s, flags}, {u"NSFrame"_s, U(6)}}));
    const QByteArray data = KeyedArchiver::archivedDataWithRootObject(object);
    const auto again = read(data);
    EXPECT_EQ(again->button()->testAttribute(Qt::WA_WState_ExplicitShowHide), flags < 0);
    // Once more through the wire: a lost bit would have changed the bytes.
    EXPECT_EQ(KeyedArchiver::archivedDataWithRootObject(again), data);
  }
}

TEST(ButtonArchives, RefuseAButtonWithoutCellAndAFrameThatNoViewCanHave) {
  EXPECT_THROW(read(archiveOf({{u"NSCell"_s, U(0)}})), ArchiveException);
  const Record view{{u"$class"_s, U(2)}, {u"NSFrame"_s, U(3)}};
  for (const QString& frame : {u"{{0, 0}, {1e+300, 10}}"_s, u"{{1e+9, 0}, {10, 10}}"_s})
    EXPECT_THROW(read(binaryArchive({u"$null"_s, view, classRecord(u"NSButton"_s), frame})),
                 ArchiveException);
}

TEST(ButtonArchives, RefuseToWriteAButtonThatHasGone) {
  auto button = std::make_unique<Button>();
  const Ref<Object> object = button->viewObject();
  EXPECT_EQ(button->viewObject(), object);
  button.reset();
  EXPECT_THROW(KeyedArchiver::archivedDataWithRootObject(object), InvalidArgumentException);
}
