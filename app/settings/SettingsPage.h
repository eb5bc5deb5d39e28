// A page of the settings window.
#pragma once

#include "app/settings/Settings.h"

#include <QtCore/QStringList>
#include <QtWidgets/QWidget>

namespace zq::app {

// Shows settings and tells what the user chooses instead.
//
// Thread: main.
class SettingsPage : public QWidget {
  Q_OBJECT

 public:
  using QWidget::QWidget;

  // Shows `settings`, without telling anything. What the user is typing just now stays where it
  // says the same.
  void load(const Settings& settings) {
    isLoading_ = true;
    showSettings(settings);
    isLoading_ = false;
  }

  // A setting's name and its new values, see setSetting().
  Q_SIGNAL void chosen(const QString& name, const QStringList& values);

 protected:
  virtual void showSettings(const Settings& settings) = 0;
  // Tells it, unless that only comes of what is being loaded.
  void choose(const QString& name, const QStringList& values) {
    if (!isLoading_)
      Q_EMIT chosen(name, values);
  }

 private:
  bool isLoading_ = false;
};

} // namespace zq::app
