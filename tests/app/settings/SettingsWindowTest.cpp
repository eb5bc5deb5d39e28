// The settings window, used as its user and a screen reader do.
#include "app/settings/SettingsWindow.h"

#include "app/settings/ColorButton.h"
#include "app/settings/SettingsPage.h"
#include "app/settings/SettingsStore.h"
#include "tests/app/XServer.h"
#include "tests/support/LogWatch.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QSet>
#include <QtCore/QTemporaryDir>
#include <QtGui/QAccessible>
#include <QtGui/QGuiApplication>
#include <QtGui/QKeyEvent>
#include <QtGui/QScreen>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QColorDialog>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QFontComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>
#include <QtWidgets/QTabWidget>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

using namespace Qt::StringLiterals;
using namespace zq::app;
using zq::app::testing::waitUntil;

namespace {
class SettingsDialog : public ::testing::Test {
 protected:
  SettingsDialog() {
    zq::testing::allowLog(u"does not support raise()"_s);
    zq::testing::allowLog(u"does not support propagateSizeHints()"_s);
    window.showInFront();
  }

  const Settings& settings() const { return store.settings(); }
  void turnTo(int page) { window.findChild<QTabWidget*>()->setCurrentIndex(page); }
  // What a screen reader calls it, without the mark of its key.
  static QString nameOf(const QWidget* widget) {
    QAccessibleInterface* accessible =
        QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
    if (!accessible)
      return QString();
    if (!widget->accessibleName().isEmpty())
      return widget->accessibleName();
    const auto labels = accessible->relations(QAccessible::Label);
    if (labels.isEmpty())
      return accessible->text(QAccessible::Name).remove(u'&');
    return labels.first().first->text(QAccessible::Name).remove(u'&');
  }
  template <class Widget>
  Widget& named(const QString& name) {
    for (Widget* widget : window.findChildren<Widget*>())
      if (nameOf(widget).startsWith(name))
        return *widget;
    throw std::runtime_error("nothing is called " + name.toStdString());
  }
  static void press(QWidget& widget, int key, const QString& text = {}) {
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
      QKeyEvent event(type, key, Qt::NoModifier, text);
      QCoreApplication::sendEvent(&widget, &event);
    }
  }
  QPushButton& button(const QString& name) { return named<QPushButton>(name); }

  QTemporaryDir folder;
  SettingsStore store{folder.filePath(u"settings.json"_s), folder.filePath(u"autostart"_s)};
  SettingsWindow window{store};
};
} // namespace

TEST_F(SettingsDialog, ShowsTheSettings) {
  store.change({{u"direction"_s, {u"vertical"_s}},
                {u"speed"_s, {u"12.5"_s}},
                {u"position"_s, {u"left"_s}},
                {u"height"_s, {u"300"_s}},
                {u"control-bar"_s, {u"off"_s}},
                {u"pause-on-hover"_s, {u"off"_s}},
                {u"reduced-motion"_s, {u"on"_s}},
                {u"font"_s, {u"DejaVu Sans 18"_s}},
                {u"color"_s, {u"#000080"_s}},
                {u"background"_s, {u"#80ffffe0"_s}},
                {u"autoscale"_s, {u"on"_s}},
                {u"feeds"_s, {u"https://a/"_s, u"https://b/"_s}},
                {u"feed-items"_s, {u"3"_s}},
                {u"feed-interval"_s, {u"7"_s}},
                {u"autostart"_s, {u"on"_s}}});
  EXPECT_EQ(named<QComboBox>(u"Direction"_s).currentData(), u"up"_s);
  EXPECT_EQ(named<QDoubleSpinBox>(u"Speed"_s).value(), 12.5);
  EXPECT_EQ(named<QComboBox>(u"Position"_s).currentData(), u"left"_s);
  EXPECT_EQ(named<QDoubleSpinBox>(u"Height"_s).value(), 300);
  EXPECT_EQ(named<QDoubleSpinBox>(u"Width"_s).text(), u"Automatic"_s);
  EXPECT_FALSE(named<QCheckBox>(u"Show buttons"_s).isChecked());
  EXPECT_FALSE(named<QCheckBox>(u"Pause"_s).isChecked());
  EXPECT_EQ(named<QComboBox>(u"Motion"_s).currentData(), u"on"_s);
  EXPECT_TRUE(named<QCheckBox>(u"Font of your own"_s).isChecked());
  EXPECT_EQ(named<QFontComboBox>(u"Family"_s).currentText(), u"DejaVu Sans"_s);
  EXPECT_EQ(named<QDoubleSpinBox>(u"Size"_s).value(), 18);
  EXPECT_EQ(named<ColorButton>(u"Text color"_s).color(), QColor(0, 0, 128));
  EXPECT_EQ(named<ColorButton>(u"Background"_s).color(), QColor(255, 255, 224, 128));
  EXPECT_TRUE(named<QCheckBox>(u"Scale texts"_s).isChecked());
  EXPECT_EQ(named<QListWidget>(u"Feeds"_s).count(), 2);
  EXPECT_EQ(named<QSpinBox>(u"Items of each feed"_s).value(), 3);
  EXPECT_EQ(named<QDoubleSpinBox>(u"Ask anew after"_s).value(), 7);
  EXPECT_TRUE(named<QCheckBox>(u"Start with the session"_s).isChecked());
}

TEST_F(SettingsDialog, AppliesEveryChoiceAtOnce) {
  for (const ScrollDirection direction : {ScrollDirection::Right, ScrollDirection::Down,
                                          ScrollDirection::Left, ScrollDirection::Up}) {
    auto& box = named<QComboBox>(u"Direction"_s);
    box.setCurrentIndex(static_cast<int>(direction));
    EXPECT_EQ(settings().direction, direction);
  }
  named<QComboBox>(u"Position"_s).setCurrentIndex(0);
  EXPECT_EQ(settings().position, Edge::Left);
  named<QDoubleSpinBox>(u"Speed"_s).setValue(12.5);
  EXPECT_EQ(settings().speed, 12.5);
  named<QDoubleSpinBox>(u"Height"_s).setValue(300);
  EXPECT_EQ(settings().height, 300);
  named<QDoubleSpinBox>(u"Height"_s).setValue(0);
  EXPECT_EQ(settings().height, std::nullopt);
  named<QDoubleSpinBox>(u"Width"_s).setValue(100);
  EXPECT_EQ(settings().width, 100);
  named<QCheckBox>(u"Show buttons"_s).click();
  EXPECT_FALSE(settings().showsControlBar);
  named<QCheckBox>(u"Pause"_s).click();
  EXPECT_FALSE(settings().pausesOnHover);
  named<QComboBox>(u"Motion"_s).setCurrentIndex(1);
  EXPECT_EQ(settings().reducesMotion, false);
  named<QComboBox>(u"Motion"_s).setCurrentIndex(0);
  EXPECT_EQ(settings().reducesMotion, std::nullopt);
  named<QCheckBox>(u"Start with the session"_s).click();
  EXPECT_TRUE(settings().startsWithSession);
  turnTo(1);
  named<QCheckBox>(u"Font of your own"_s).click();
  named<QFontComboBox>(u"Family"_s).setCurrentFont(QFont(u"DejaVu Sans Mono"_s));
  EXPECT_EQ(settings().font->text, u"DejaVu Sans Mono"_s);
  named<QDoubleSpinBox>(u"Size"_s).setValue(18);
  EXPECT_EQ(settings().font->text, u"DejaVu Sans Mono 18"_s);
  named<QCheckBox>(u"Font of your own"_s).click();
  EXPECT_EQ(settings().font, std::nullopt);
  named<QCheckBox>(u"Scale texts"_s).click();
  EXPECT_TRUE(settings().autoscale);
  turnTo(2);
  named<QSpinBox>(u"Items of each feed"_s).setValue(4);
  EXPECT_EQ(settings().feeds.itemsPerFeed, 4u);
  named<QDoubleSpinBox>(u"Ask anew after"_s).setValue(9);
  EXPECT_EQ(settings().feeds.intervalMinutes, 9.0);
  // Kept, not only here.
  EXPECT_EQ(SettingsStore::peek(store.path()).feeds.itemsPerFeed, 4u);
}

TEST_F(SettingsDialog, TakesTheSpeedOfTheSlider) {
  QSlider& slider = *window.findChild<QSlider*>();
  EXPECT_EQ(nameOf(&slider), u"Speed"_s);
  slider.setValue(slider.maximum());
  EXPECT_EQ(named<QDoubleSpinBox>(u"Speed"_s).value(), 1000);
  EXPECT_TRUE(waitUntil([&] { return settings().speed == 1000; }));
  slider.setValue(slider.minimum());
  window.close();
  EXPECT_EQ(settings().speed, 5) << "not lost with the window";
}

TEST_F(SettingsDialog, KeepsWhatWasChosenLastWhenItGoes) {
  auto other = std::make_unique<SettingsWindow>(store);
  other->showInFront();
  QSlider& slider = *other->findChild<QSlider*>();
  slider.setValue(slider.maximum());
  other.reset();
  EXPECT_EQ(settings().speed, 1000);
}

TEST_F(SettingsDialog, ShowsWhatOthersChange) {
  SettingsStore(store.path(), folder.filePath(u"autostart"_s)).change({{u"speed"_s, {u"33"_s}}});
  EXPECT_TRUE(waitUntil([&] { return named<QDoubleSpinBox>(u"Speed"_s).value() == 33; }));
}

TEST_F(SettingsDialog, OffersThePositionsOfTheDirection) {
  QComboBox& position = named<QComboBox>(u"Position"_s);
  EXPECT_EQ(position.itemData(0), u"top"_s);
  EXPECT_EQ(position.currentData(), u"bottom"_s) << "where nothing is said";
  store.change({{u"position"_s, {u"top"_s}}, {u"direction"_s, {u"vertical"_s}}});
  EXPECT_EQ(position.itemData(0), u"left"_s);
  EXPECT_EQ(position.currentData(), u"right"_s) << "the top is not for it";
  EXPECT_EQ(settings().position, Edge::Top) << "and stays for the other direction";
}

TEST_F(SettingsDialog, ListsTheScreensAndTheMissingOne) {
  QComboBox& screen = named<QComboBox>(u"Screen"_s);
  EXPECT_EQ(screen.currentText(), u"Primary screen"_s);
  EXPECT_EQ(screen.itemText(1), QGuiApplication::primaryScreen()->name());
  store.change({{u"screen"_s, {u"HDMI-7"_s}}});
  EXPECT_EQ(screen.currentText(), u"HDMI-7 (not connected)"_s);
  screen.setCurrentIndex(1);
  EXPECT_EQ(settings().screen, QGuiApplication::primaryScreen()->name());
  screen.setCurrentIndex(0);
  EXPECT_EQ(settings().screen, QString());
}

TEST_F(SettingsDialog, ChoosesColorsInADialog) {
  turnTo(1);
  ColorButton& color = named<ColorButton>(u"Background"_s);
  color.click();
  auto* dialog = color.findChild<QColorDialog*>();
  ASSERT_TRUE(dialog);
  EXPECT_TRUE(dialog->testOption(QColorDialog::ShowAlphaChannel));
  dialog->setCurrentColor(QColor(1, 2, 3, 128));
  dialog->accept();
  EXPECT_EQ(settings().background, QColor(1, 2, 3, 128));
  EXPECT_EQ(nameOf(&color), u"Background color: #80010203"_s);
}

TEST_F(SettingsDialog, FramesColorsInTheColorOfTexts) {
  ColorButton& button = named<ColorButton>(u"Background"_s);
  const auto frame = [&] {
    return button.icon().pixmap(button.iconSize()).toImage().pixelColor(0, 0);
  };
  for (const QColor& text : {QColor(Qt::black), QColor(Qt::white)}) {
    QPalette palette = window.palette();
    palette.setColor(QPalette::ButtonText, text);
    window.setPalette(palette);
    EXPECT_EQ(frame(), text) << "white paper is to be seen on white buttons";
  }
}

TEST_F(SettingsDialog, AddsAndRemovesFeeds) {
  turnTo(2);
  auto& address = named<QLineEdit>(u"Address"_s);
  EXPECT_FALSE(button(u"Add"_s).isEnabled());
  address.setText(u"https://a/"_s);
  press(address, Qt::Key_Return);
  EXPECT_TRUE(window.isVisible());
  address.setText(u" https://b/ "_s);
  button(u"Add"_s).click();
  EXPECT_EQ(settings().feeds.feeds,
            (std::vector<QUrl>{QUrl(u"https://a/"_s), QUrl(u"https://b/"_s)}));
  EXPECT_EQ(address.text(), QString());
  QListWidget& list = named<QListWidget>(u"Feeds"_s);
  EXPECT_EQ(list.currentRow(), 1) << "the new one";
  list.setCurrentRow(0);
  button(u"Remove"_s).click();
  EXPECT_EQ(settings().feeds.feeds, std::vector<QUrl>{QUrl(u"https://b/"_s)});
  button(u"Remove"_s).click();
  EXPECT_TRUE(settings().feeds.feeds.empty());
  EXPECT_FALSE(button(u"Remove"_s).isEnabled());
}

TEST_F(SettingsDialog, SaysWhyAnAddressIsNotAdded) {
  turnTo(2);
  auto& address = named<QLineEdit>(u"Address"_s);
  address.setText(u"feed.xml"_s);
  press(address, Qt::Key_Return);
  EXPECT_EQ(named<QLabel>(u"What came of it"_s).text(),
            u"feed.xml: not an address (write https://..., http://... or file:///...)"_s);
  EXPECT_EQ(address.text(), u"feed.xml"_s) << "to be mended";
  EXPECT_TRUE(settings().feeds.feeds.empty());
}

TEST_F(SettingsDialog, ChecksAFeed) {
  QFile file(folder.filePath(u"feed.xml"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("<rss version=\"2.0\"><channel><title>News</title><item><title>one</title></item>"
             "</channel></rss>");
  file.close();
  turnTo(2);
  QLabel& result = named<QLabel>(u"What came of it"_s);
  const QString url = QUrl::fromLocalFile(file.fileName()).toString();
  named<QLineEdit>(u"Address"_s).setText(url);
  button(u"Check"_s).click();
  EXPECT_FALSE(button(u"Check"_s).isEnabled());
  EXPECT_TRUE(waitUntil([&] { return result.text() == url + u": 1 item, \"News\""_s; }))
      << result.text().toStdString();
  named<QLineEdit>(u"Address"_s).setText(u"file:///nosuch"_s);
  button(u"Check"_s).click();
  EXPECT_TRUE(waitUntil([&] { return result.text().startsWith(u"file:///nosuch: "_s); }))
      << result.text().toStdString();
}

TEST_F(SettingsDialog, GivesBackTheDefaults) {
  store.change({{u"speed"_s, {u"12"_s}}, {u"feeds"_s, {u"https://a/"_s}}});
  button(u"Defaults"_s).click();
  EXPECT_EQ(settings(), Settings());
  EXPECT_EQ(named<QDoubleSpinBox>(u"Speed"_s).value(), 60);
  EXPECT_EQ(named<QListWidget>(u"Feeds"_s).count(), 0);
}

TEST_F(SettingsDialog, TellsWhatCannotBeKept) {
  ASSERT_TRUE(QDir().mkpath(store.path()));
  zq::testing::allowLog(u"cannot read: not a file"_s);
  named<QDoubleSpinBox>(u"Speed"_s).setValue(12);
  QLabel& problem = named<QLabel>(u"Problem"_s);
  EXPECT_TRUE(problem.isVisible());
  EXPECT_EQ(problem.text(), store.path() + u": cannot read: not a file"_s);
  EXPECT_EQ(named<QDoubleSpinBox>(u"Speed"_s).value(), 60) << "shows what holds";
}

TEST_F(SettingsDialog, ClosesWithEscape) {
  press(window, Qt::Key_Escape);
  EXPECT_FALSE(window.isVisible());
  window.showInFront();
  button(u"Close"_s).click();
  EXPECT_FALSE(window.isVisible());
}

TEST_F(SettingsDialog, NamesWhateverTakesTheFocus) {
  // The parts of composite controls are named by these.
  for (int page = 0; page < 3; ++page) {
    turnTo(page);
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
      const bool isPart = qobject_cast<const QAbstractSpinBox*>(widget->parent()) ||
                          qobject_cast<const QComboBox*>(widget->parent());
      if (!widget->isVisible() || isPart || widget->focusPolicy() == Qt::NoFocus ||
          widget->inherits("QTabBar"))
        continue;
      EXPECT_NE(nameOf(widget), QString()) << widget->metaObject()->className() << " on " << page;
    }
  }
}

TEST_F(SettingsDialog, IsReachedWhollyByTheKeyboard) {
  for (int page = 0; page < 3; ++page) {
    turnTo(page);
    std::size_t wanted = 0;
    for (const QWidget* widget : window.findChildren<QWidget*>())
      wanted += widget->isVisibleTo(&window) && widget->isEnabledTo(&window) &&
                (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus && !widget->focusProxy();
    QSet<const QWidget*> reached;
    const QWidget* widget = &window;
    do {
      widget = widget->nextInFocusChain();
      if (widget->isVisibleTo(&window) && widget->isEnabledTo(&window) &&
          (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus && !widget->focusProxy())
        reached.insert(widget);
    } while (widget != &window);
    EXPECT_EQ(std::size_t(reached.size()), wanted);
  }
}

TEST_F(SettingsDialog, HasEachKeyOnceOnAPage) {
  const QString closeKey = u"u"_s; // of the defaults, below every page
  for (const QWidget* page : window.findChildren<SettingsPage*>()) {
    QStringList keys{closeKey};
    const auto take = [&](const QString& text) {
      const qsizetype mark = text.indexOf(u'&');
      if (mark >= 0)
        keys.append(text.mid(mark + 1, 1).toLower());
    };
    for (const QLabel* label : page->findChildren<QLabel*>())
      take(label->text());
    for (const QAbstractButton* each : page->findChildren<QAbstractButton*>())
      take(each->text());
    const QStringList all = keys;
    EXPECT_EQ(keys.removeDuplicates(), 0) << all.join(u' ').toStdString();
  }
}
