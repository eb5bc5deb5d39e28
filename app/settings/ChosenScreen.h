// The screen that the strip stands on.
#pragma once

#include "app/OncePerTurn.h"

#include <QtCore/QObject>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

class QScreen;

namespace zq::app {

// The names of the screens that are there, the primary one first.
QStringList screenNames();

// The screen of a name while it is there, else the primary one.
//
// Thread: main. Needs a QGuiApplication.
class ChosenScreen : public QObject {
  Q_OBJECT

 public:
  // Without a name always the primary screen.
  explicit ChosenScreen(const QString& name = {}, QObject* parent = nullptr);
  ~ChosenScreen() override;

  const QString& name() const { return name_; }
  // Says nothing of the change.
  void setName(const QString& name) { name_ = name; }

  // Null where the display has no screen.
  QScreen* screen() const;
  // A screen has come or gone, another one is the primary one, or the size of one or of its free
  // room has changed; at most once a turn of the event loop.
  Q_SIGNAL void changed();

 private:
  void observe(QScreen* screen);
  void tellSoon();

  QString name_;
  QTimer settling_; // after the last news of screens
  OncePerTurn telling_;
};

} // namespace zq::app
