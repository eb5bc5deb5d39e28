#include "app/settings/ChosenScreen.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>

#include <chrono>

namespace zq::app {

namespace {
constexpr std::chrono::milliseconds SettlingTime = std::chrono::seconds(1);
} // namespace

QStringList screenNames() {
  QStringList names;
  for (const QScreen* screen : QGuiApplication::screens())
    if (screen == QGuiApplication::primaryScreen())
      names.prepend(screen->name());
    else
      names.append(screen->name());
  return names;
}

ChosenScreen::ChosenScreen(const QString& name, QObject* parent)
    : QObject(parent), name_(name), telling_([this] { Q_EMIT changed(); }) {
  for (QScreen* screen : QGuiApplication::screens())
    observe(screen);
  settling_.setSingleShot(true);
  connect(&settling_, &QTimer::timeout, this, &ChosenScreen::changed);
  connect(qApp, &QGuiApplication::screenAdded, this, [this](QScreen* screen) {
    observe(screen);
    tellSoon();
  });
  connect(qApp, &QGuiApplication::screenRemoved, this, &ChosenScreen::tellSoon);
  connect(qApp, &QGuiApplication::primaryScreenChanged, this, &ChosenScreen::tellSoon);
}

ChosenScreen::~ChosenScreen() = default;

QScreen* ChosenScreen::screen() const {
  if (!name_.isEmpty())
    for (QScreen* screen : QGuiApplication::screens())
      if (screen->name() == name_)
        return screen;
  return QGuiApplication::primaryScreen();
}

void ChosenScreen::observe(QScreen* screen) {
  connect(screen, &QScreen::geometryChanged, this, &ChosenScreen::tellSoon);
  connect(screen, &QScreen::availableGeometryChanged, this, &ChosenScreen::tellSoon);
}

// The window system tells of one change in several steps, between which windows have no place; some
// window managers move windows by themselves a moment later.
void ChosenScreen::tellSoon() {
  settling_.start(SettlingTime);
  telling_.request();
}

} // namespace zq::app
