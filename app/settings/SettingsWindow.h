// The window in which settings are changed.
#pragma once

#include <QtWidgets/QDialog>

#include <vector>

class QLabel;

namespace zq::app {

class SettingsPage;
class SettingsStore;

// What is chosen is kept, and so applied, at once; what others change is shown at once. Escape and
// the window's own button close it.
//
// Thread: main.
class SettingsWindow : public QDialog {
  Q_OBJECT

 public:
  // `settings` must outlive the window, which makes it follow its file.
  explicit SettingsWindow(SettingsStore& settings, QWidget* parent = nullptr);
  ~SettingsWindow() override;

  // Shows the window before all others.
  void showInFront();

 private:
  void choose(const QString& name, const QStringList& values);
  void reset();
  void load();

  SettingsStore& settings_;
  std::vector<SettingsPage*> pages_;
  QLabel* problem_; // with the last change; hidden where there is none
};

} // namespace zq::app
