#include "app/settings/SettingsWindow.h"

#include "app/commands/failures.h"
#include "app/settings/FeedsPage.h"
#include "app/settings/SettingsStore.h"
#include "app/settings/StripPage.h"
#include "app/settings/TextPage.h"

#include <QtGui/QIcon>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QVBoxLayout>

using namespace Qt::StringLiterals;

namespace zq::app {

SettingsWindow::SettingsWindow(SettingsStore& settings, QWidget* parent)
    : QDialog(parent), settings_(settings), problem_(new QLabel) {
  setWindowTitle(tr("Ticker Settings"));
  setWindowIcon(QIcon::fromTheme(u"org.zqticker.Ticker"_s));
  auto* tabs = new QTabWidget;
  tabs->setAccessibleName(tr("Settings"));
  const auto addPage = [&](SettingsPage* page, const QString& title) {
    tabs->addTab(page, title);
    pages_.push_back(page);
    connect(page, &SettingsPage::chosen, this, &SettingsWindow::choose);
  };
  addPage(new StripPage, tr("Strip"));
  addPage(new TextPage, tr("Text"));
  addPage(new FeedsPage, tr("Feeds"));
  problem_->setWordWrap(true);
  problem_->setTextFormat(Qt::PlainText);
  problem_->setAccessibleName(tr("Problem"));
  problem_->hide();
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::RestoreDefaults | QDialogButtonBox::Close);
  QPushButton* defaults = buttons->button(QDialogButtonBox::RestoreDefaults);
  defaults->setText(tr("Defa&ults"));
  defaults->setAccessibleDescription(tr("Gives all settings their defaults"));
  for (QAbstractButton* button : buttons->buttons())
    static_cast<QPushButton*>(button)->setAutoDefault(false);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(tabs);
  layout->addWidget(problem_);
  layout->addWidget(buttons);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
  connect(defaults, &QPushButton::clicked, this, &SettingsWindow::reset);
  connect(&settings_, &SettingsStore::changed, this, &SettingsWindow::load);
  settings_.watch();
  load();
}

SettingsWindow::~SettingsWindow() {
  // While all of it is still there: pages that are hidden tell what was chosen last.
  hide();
}

void SettingsWindow::showInFront() {
  show();
  raise();
  activateWindow();
}

void SettingsWindow::load() {
  for (SettingsPage* page : pages_)
    page->load(settings_.settings());
}

void SettingsWindow::choose(const QString& name, const QStringList& values) {
  try {
    settings_.change({{name, values}});
    problem_->hide();
  } catch (const CommandFailure& failure) {
    problem_->setText(failure.message());
    problem_->show();
    // Back to what holds.
    load();
  }
}

void SettingsWindow::reset() {
  try {
    settings_.reset();
    problem_->hide();
  } catch (const CommandFailure& failure) {
    problem_->setText(failure.message());
    problem_->show();
  }
  load();
}

} // namespace zq::app
