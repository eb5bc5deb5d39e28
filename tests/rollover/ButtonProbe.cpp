// Windows with rollover buttons, in a process of its own on a real window system. It reads one
// command from each line of standard input, and writes what happens on standard output.
//
//   window NAME X Y W H [above]     shows a window, active; `above` one that is not managed
//   button NAME WINDOW X Y W H      shows a button: red, green under the pointer, blue when pressed
//   menu NAME                       gives it a menu with the items One and Two
//   set NAME PROPERTY VALUE         sets a property
//   type NAME NUMBER                sets the button type
//   group NAME NAME                 puts two buttons into an exclusive group
//   trackUntilUp NAME               has presses track until the mouse comes up
//   when NAME EVENT COMMAND         performs the command whenever the event of that name happens
//   delete NAME, deleteMenu NAME    destroys a widget, the menu of a button; says "NAME deleted"
//   hide NAME, raise NAME           of windows
//   grab NAME, release NAME         has a widget take the mouse, and give it back
//   theme NAME                      colours the button by the theme table
//   palette COLOR                   sets the application's palette
//   place NAME                      answers "place NAME X Y W H", in pixels of the screen
//   placeOfItem NAME NUMBER         the same for an item of the open menu of a button
//   state NAME                      answers "state NAME" and what is true of it
//   mark                            answers "mark" when all input so far has been dealt with
#include "zqticker/platform/controls/Event.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/SystemColors.h"
#include "zqticker/rollover/ZQRollOverButton.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"
#include "zqticker/rollover/ZQRollOverButtonCell.h"

#include <QtCore/QAbstractNativeEventFilter>
#include <QtCore/QPointer>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>
#include <QtGui/QMouseEvent>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <QtWidgets/QButtonGroup>
#include <QtWidgets/QMenu>

#include <xcb/xcb.h>

#include <cstdio>
#include <functional>
#include <map>
#include <vector>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

void say(const QString& line) {
  std::printf("%s\n", line.toUtf8().constData());
  std::fflush(stdout);
}

// Says that something happened, and performs what was asked for in that case.
std::function<void(const QString& name, const QString& event)> happen;

class ProbeButton : public ZQRollOverButton {
  Q_OBJECT

 public:
  explicit ProbeButton(QWidget* parent)
      : RollOverButtonClass(this), ZQRollOverButton({0, 0, 1, 1}, QStringLiteral("Go"), parent) {}

  static void makeAppearance() {
    const auto look = std::make_shared<ZQRollOverButtonAppearance>();
    const Ref<Color> black = Color::deviceWhite(0);
    look->setBezelStyle(6);
    look->setBordered(true);
    look->setControlColor(Color::deviceRGB(1, 0, 0));
    look->setMouseoverControlColor(Color::deviceRGB(0, 1, 0));
    look->setHighlightedControlColor(Color::deviceRGB(0, 0, 1));
    look->setFrameColor(black);
    look->setMouseoverFrameColor(black);
    look->setHighlightedFrameColor(black);
    look->setTextColor(black);
    look->setMouseoverTextColor(black);
    look->setHighlightedTextColor(black);
    look->setPopUpMenuDelay(1000);
    setAppearance<ProbeButton>(look);
  }

  ZQRollOverButtonCell& rollOverCell() const {
    return dynamic_cast<ZQRollOverButtonCell&>(*cell());
  }
  void menuDidOpen(Menu& menu) override {
    ZQRollOverButton::menuDidOpen(menu);
    happen(objectName(), u"menu-opened"_s);
  }
  void menuDidClose(Menu& menu) override {
    const QPointer<ProbeButton> alive = this;
    ZQRollOverButton::menuDidClose(menu);
    if (alive)
      happen(objectName(), u"menu-closed"_s);
  }

  bool tracksUntilUp = false;

 protected:
  void mouseEntered(const Event& event) override {
    const QPointer<ProbeButton> alive = this;
    ZQRollOverButton::mouseEntered(event);
    if (alive)
      happen(objectName(), u"entered"_s);
  }
  void mouseExited(const Event& event) override {
    ZQRollOverButton::mouseExited(event);
    happen(objectName(), u"exited"_s);
  }
  void mousePressEvent(QMouseEvent* event) override {
    if (!tracksUntilUp)
      return ZQRollOverButton::mousePressEvent(event);
    Event press;
    press.type = EventType::LeftMouseDown;
    press.locationInWindow = convertPointToWindow(event->position());
    const QString name = objectName();
    say(u"%1 tracks"_s.arg(name));
    const bool isClick = cell()->trackMouse(press, bounds(), this, true);
    say(u"%1 tracked %2"_s.arg(name, isClick ? u"yes"_s : u"no"_s));
  }
};

// Tells when the server has passed on all that came before. Input before it is dealt with then, but
// for what waits its turn in the event loop.
class Mark : public QAbstractNativeEventFilter {
 public:
  Mark() {
    window_.create();
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    connection_ = x11 ? x11->connection() : nullptr;
    qGuiApp->installNativeEventFilter(this);
  }

  void set() {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, xcb_window_t(window_.winId()),
                        XCB_ATOM_CUT_BUFFER0, XCB_ATOM_STRING, 8, 4, "mark");
    xcb_flush(connection_);
  }

  bool nativeEventFilter(const QByteArray&, void* message, qintptr*) override {
    const auto* event = static_cast<xcb_property_notify_event_t*>(message);
    if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY &&
        event->window == xcb_window_t(window_.winId()) && event->atom == XCB_ATOM_CUT_BUFFER0)
      afterTurns(4);
    return false;
  }

 private:
  static void afterTurns(int turns) {
    if (turns == 0)
      return say(u"mark"_s);
    QTimer::singleShot(0, qApp, [=] { afterTurns(turns - 1); });
  }

  QWindow window_;
  xcb_connection_t* connection_ = nullptr;
};

class Probe : public QObject {
 public:
  Probe() : input_(STDIN_FILENO, QSocketNotifier::Read) {
    connect(&input_, &QSocketNotifier::activated, this, [this] { read(); });
    qApp->installEventFilter(this);
    happen = [this](const QString& name, const QString& event) {
      const QString what = name + u' ' + event;
      say(what);
      const auto [first, last] = reactions_.equal_range(what);
      QStringList commands;
      for (auto each = first; each != last; ++each)
        commands.append(each->second);
      for (const QString& command : commands)
        perform(command);
    };
  }

  ~Probe() override {
    for (const QPointer<QWidget>& window : windows_)
      delete window;
  }

  // What the window system tells the windows, as comments.
  bool eventFilter(QObject* receiver, QEvent* event) override {
    if (receiver->isWindowType() && event->type() == QEvent::MouseButtonPress)
      say(u"# press"_s);
    if (receiver->isWindowType() && event->type() == QEvent::MouseButtonRelease)
      say(u"# release"_s);
    if (receiver->isWidgetType() && static_cast<QWidget*>(receiver)->isWindow() &&
        (event->type() == QEvent::WindowActivate || event->type() == QEvent::WindowDeactivate))
      say(u"# %1 %2"_s.arg(receiver->objectName(),
                           event->type() == QEvent::WindowActivate ? u"active"_s : u"inactive"_s));
    return false;
  }

 private:
  void read() {
    char bytes[4096];
    const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes);
    if (count <= 0)
      return QCoreApplication::quit();
    pending_.append(bytes, count);
    for (qsizetype end = pending_.indexOf('\n'); end >= 0; end = pending_.indexOf('\n')) {
      const QString line = QString::fromUtf8(pending_.left(end));
      pending_.remove(0, end + 1);
      perform(line);
    }
  }

  template <class Widget = QWidget>
  static Widget* named(const QString& name) {
    for (QWidget* widget : QApplication::allWidgets())
      if (auto* found = dynamic_cast<Widget*>(widget); found && widget->objectName() == name)
        return found;
    qFatal("there is no %s", qPrintable(name));
  }

  static QRect rect(const QStringList& words, int first) {
    return {words[first].toInt(), words[first + 1].toInt(), words[first + 2].toInt(),
            words[first + 3].toInt()};
  }

  void perform(const QString& line) {
    const QStringList words = line.split(u' ');
    const QString verb = words.value(0);
    const QString name = words.value(1);
    if (verb == "window"_L1)
      makeWindow(name, rect(words, 2), words.value(6) == "above"_L1);
    else if (verb == "button"_L1)
      makeButton(name, named(words.value(2)), rect(words, 3));
    else if (verb == "menu"_L1)
      giveMenu(named<ProbeButton>(name));
    else if (verb == "set"_L1)
      named(name)->setProperty(words.value(2).toUtf8().constData(), words.value(3));
    else if (verb == "type"_L1)
      named<ProbeButton>(name)->setButtonType(ButtonType(words.value(2).toULongLong()));
    else if (verb == "group"_L1)
      group(named<ProbeButton>(name), named<ProbeButton>(words.value(2)));
    else if (verb == "trackUntilUp"_L1)
      named<ProbeButton>(name)->tracksUntilUp = true;
    else if (verb == "when"_L1)
      reactions_.emplace(name + u' ' + words.value(2), words.mid(3).join(u' '));
    else if (verb == "delete"_L1)
      destroy(named(name), name);
    else if (verb == "deleteMenu"_L1)
      destroy(named<ProbeButton>(name)->cell()->menu()->menu(), name);
    else if (verb == "hide"_L1)
      named(name)->hide();
    else if (verb == "raise"_L1)
      named(name)->activateWindow();
    else if (verb == "grab"_L1)
      named(name)->grabMouse();
    else if (verb == "release"_L1)
      named(name)->releaseMouse();
    else if (verb == "theme"_L1)
      colorByTheme(named<ProbeButton>(name));
    else if (verb == "palette"_L1)
      QApplication::setPalette(QPalette(QColor(name)));
    else if (verb == "place"_L1)
      sayPlace(name, *named(name), named(name)->rect());
    else if (verb == "placeOfItem"_L1)
      sayPlaceOfItem(name, words.value(2).toInt());
    else if (verb == "state"_L1)
      sayState(named<ProbeButton>(name));
    else if (verb == "mark"_L1)
      mark_.set();
    else
      qFatal("%s is no command", qPrintable(line));
  }

  void makeWindow(const QString& name, const QRect& geometry, bool isAbove) {
    auto* window =
        new QWidget(nullptr, isAbove ? Qt::Window | Qt::X11BypassWindowManagerHint : Qt::Window);
    windows_.emplace_back(window);
    window->setObjectName(name);
    window->setGeometry(geometry);
    window->setPalette(QPalette(Qt::white));
    window->show();
    window->raise();
    window->activateWindow();
  }

  static void makeButton(const QString& name, QWidget* window, const QRect& geometry) {
    auto* button = new ProbeButton(window);
    button->setObjectName(name);
    button->setGeometry(geometry);
    connect(button, &QAbstractButton::pressed, button, [=] { happen(name, u"pressed"_s); });
    connect(button, &QAbstractButton::released, button, [=] { happen(name, u"released"_s); });
    connect(button, &QAbstractButton::clicked, button, [=] { happen(name, u"clicked"_s); });
    connect(button, &QAbstractButton::toggled, button,
            [=](bool isOn) { happen(name, isOn ? u"on"_s : u"off"_s); });
    button->show();
  }

  static void giveMenu(ProbeButton* button) {
    auto menu = std::make_unique<QMenu>();
    for (const QString& item : {u"One"_s, u"Two"_s})
      connect(menu->addAction(item), &QAction::triggered, button,
              [name = button->objectName(), item] { happen(name, u"chose-"_s + item); });
    button->cell()->setMenu(Menu::make(std::move(menu)));
  }

  void group(ProbeButton* first, ProbeButton* second) {
    auto* made = new QButtonGroup(this);
    made->addButton(first);
    made->addButton(second);
  }

  static void colorByTheme(ProbeButton* button) {
    button->setControlColor(SystemColors::colorNamed(u"controlColor"_s));
  }

  static void sayPlace(const QString& name, const QWidget& widget, const QRectF& rect) {
    const double scale = widget.devicePixelRatioF();
    const QPointF origin = widget.mapToGlobal(rect.topLeft()) * scale;
    say(u"place %1 %2 %3 %4 %5"_s.arg(name)
            .arg(origin.x())
            .arg(origin.y())
            .arg(rect.width() * scale)
            .arg(rect.height() * scale));
  }

  static void sayPlaceOfItem(const QString& name, int number) {
    const QMenu& menu = *named<ProbeButton>(name)->cell()->menu()->menu();
    sayPlace(name, menu, menu.actionGeometry(menu.actions().at(number)));
  }

  static void destroy(QObject* object, const QString& name) {
    delete object;
    say(name + u" deleted"_s);
  }

  static void sayState(ProbeButton* button) {
    QStringList words{u"state"_s, button->objectName()};
    const auto add = [&](bool holds, const QString& word) {
      if (holds)
        words.append(word);
    };
    add(button->rollOverCell().mouseOver(), u"over"_s);
    add(button->cell()->isHighlighted(), u"highlighted"_s);
    add(button->isDown(), u"down"_s);
    add(button->state() == CellState::On, u"on"_s);
    say(words.join(u' '));
  }

  QSocketNotifier input_;
  QByteArray pending_;
  Mark mark_;
  std::multimap<QString, QString> reactions_;
  std::vector<QPointer<QWidget>> windows_;
};

} // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  ProbeButton::makeAppearance();
  const Probe probe;
  say(u"ready"_s);
  return QApplication::exec();
}

#include "ButtonProbe.moc"
