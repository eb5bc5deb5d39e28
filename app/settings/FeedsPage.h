// The settings of the feeds that are shown.
#pragma once

#include "app/settings/SettingsPage.h"

#include <QtCore/QUrl>

#include <memory>
#include <vector>

class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QSpinBox;

namespace zq::app {

class FeedLoad;
struct FeedAnswer;

// A list of addresses, each of which may be tried, and how often and how much of them is read.
class FeedsPage : public SettingsPage {
  Q_OBJECT

 public:
  explicit FeedsPage(QWidget* parent = nullptr);
  ~FeedsPage() override;

 protected:
  void showSettings(const Settings& settings) override;

 private:
  void add();
  void remove();
  void check();
  void tell(const FeedAnswer& answer);
  void updateButtons();
  QStringList addresses() const;
  // The address that is chosen, else the one that is being typed.
  QString currentAddress() const;

  QListWidget* list_;
  QLineEdit* address_;
  QPushButton* add_;
  QPushButton* remove_;
  QPushButton* check_;
  QLabel* result_;
  QSpinBox* items_;
  QDoubleSpinBox* interval_;
  std::unique_ptr<FeedLoad> load_; // while a feed is checked
  QString checked_;
};

} // namespace zq::app
