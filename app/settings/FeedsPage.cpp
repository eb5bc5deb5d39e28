#include "app/settings/FeedsPage.h"

#include "app/commands/failures.h"
#include "app/commands/strip_values.h"
#include "app/services/FeedLoad.h"
#include "app/services/FeedSubscription.h"
#include "app/services/loading_setup.h"
#include "app/settings/page_controls.h"
#include "app/settings/setting_table.h"

#include <QtGui/QAction>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSpinBox>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
QPushButton* makeButton(const QString& text) {
  auto* button = new QPushButton(text);
  // Enter adds what is typed.
  button->setAutoDefault(false);
  return button;
}
} // namespace

FeedsPage::FeedsPage(QWidget* parent)
    : SettingsPage(parent), list_(new QListWidget), address_(new QLineEdit),
      add_(makeButton(tr("&Add"))), remove_(makeButton(tr("&Remove"))),
      check_(makeButton(tr("&Check"))), result_(new QLabel), items_(new QSpinBox),
      interval_(makeSideBox()) {
  // Lists do not tell of their labels.
  list_->setAccessibleName(tr("Feeds"));
  list_->setTextElideMode(Qt::ElideMiddle);
  list_->setAlternatingRowColors(true);
  address_->setPlaceholderText(u"https://example.org/feed.xml"_s);
  address_->setInputMethodHints(Qt::ImhUrlCharactersOnly);
  result_->setWordWrap(true);
  result_->setTextFormat(Qt::PlainText);
  result_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  result_->setAccessibleName(tr("What came of it"));
  items_->setRange(1, static_cast<int>(MostFeedItems));
  items_->setKeyboardTracking(false);
  interval_->setMaximum(LongestInterval);
  interval_->setSuffix(tr(" minutes"));

  auto* heading = new QLabel(tr("&Feeds, shown when nothing else is asked for:"));
  heading->setBuddy(list_);
  heading->setWordWrap(true);
  auto* label = new QLabel(tr("Addr&ess:"));
  label->setBuddy(address_);
  auto* grid = new QGridLayout(this);
  grid->addWidget(heading, 0, 0, 1, 3);
  grid->addWidget(list_, 1, 0, 2, 2);
  grid->addWidget(check_, 1, 2, Qt::AlignTop);
  grid->addWidget(remove_, 2, 2, Qt::AlignTop);
  grid->setRowStretch(2, 1);
  grid->addWidget(label, 3, 0);
  grid->addWidget(address_, 3, 1);
  grid->addWidget(add_, 3, 2);
  grid->addWidget(result_, 4, 0, 1, 3);
  auto* form = new QFormLayout;
  form->addRow(tr("&Items of each feed:"), items_);
  form->addRow(tr("Ask a&new after:"), interval_);
  grid->addLayout(form, 5, 0, 1, 3);
  // In the order in which they are read.
  setTabOrder(list_, check_);
  setTabOrder(check_, remove_);
  setTabOrder(remove_, address_);
  setTabOrder(address_, add_);
  setTabOrder(add_, items_);

  auto* removal = new QAction(list_);
  removal->setShortcut(QKeySequence::Delete);
  removal->setShortcutContext(Qt::WidgetShortcut);
  list_->addAction(removal);
  connect(removal, &QAction::triggered, this, &FeedsPage::remove);
  connect(list_, &QListWidget::currentRowChanged, this, &FeedsPage::updateButtons);
  connect(address_, &QLineEdit::textChanged, this, &FeedsPage::updateButtons);
  connect(address_, &QLineEdit::returnPressed, this, &FeedsPage::add);
  connect(add_, &QPushButton::clicked, this, &FeedsPage::add);
  connect(remove_, &QPushButton::clicked, this, &FeedsPage::remove);
  connect(check_, &QPushButton::clicked, this, &FeedsPage::check);
  connect(items_, &QSpinBox::valueChanged, this,
          [this](int count) { choose(u"feed-items"_s, {QString::number(count)}); });
  connect(interval_, &QDoubleSpinBox::valueChanged, this,
          [this] { choose(u"feed-interval"_s, {sideText(*interval_)}); });
  updateButtons();
}

FeedsPage::~FeedsPage() = default;

void FeedsPage::showSettings(const Settings& settings) {
  const QStringList shown = settingNamed(u"feeds"_s).valuesOf(settings);
  if (addresses() != shown) {
    const int row = list_->currentRow();
    list_->clear();
    list_->addItems(shown);
    list_->setCurrentRow(std::min(row, list_->count() - 1));
  }
  items_->setValue(static_cast<int>(settings.feeds.itemsPerFeed));
  interval_->setValue(settings.feeds.intervalMinutes.value_or(0));
  updateButtons();
}

QStringList FeedsPage::addresses() const {
  QStringList all;
  for (int row = 0; row < list_->count(); ++row)
    all.append(list_->item(row)->text());
  return all;
}

QString FeedsPage::currentAddress() const {
  const QString typed = address_->text().trimmed();
  if (!typed.isEmpty())
    return typed;
  return list_->currentItem() ? list_->currentItem()->text() : QString();
}

void FeedsPage::updateButtons() {
  add_->setEnabled(!address_->text().trimmed().isEmpty());
  remove_->setEnabled(list_->currentItem() != nullptr);
  check_->setEnabled(!load_ && !currentAddress().isEmpty());
}

void FeedsPage::add() {
  const QStringList all = addresses() + QStringList{address_->text().trimmed()};
  try {
    Settings checked;
    setSetting(checked, settingNamed(u"feeds"_s), all);
  } catch (const UsageError& error) {
    // Told without the setting's name.
    result_->setText(error.message().section(u' ', 1));
    return;
  }
  result_->clear();
  address_->clear();
  choose(u"feeds"_s, all);
  list_->setCurrentRow(list_->count() - 1);
}

void FeedsPage::remove() {
  if (!list_->currentItem())
    return;
  QStringList all = addresses();
  all.removeAt(list_->currentRow());
  result_->clear();
  choose(u"feeds"_s, all);
}

void FeedsPage::check() {
  if (load_)
    return;
  checked_ = currentAddress();
  prepareLoading();
  result_->setText(tr("Asking %1…").arg(feedName(QUrl(checked_))));
  load_ = std::make_unique<FeedLoad>(QUrl(checked_));
  connect(load_.get(), &FeedLoad::ended, this, &FeedsPage::tell);
  load_->start();
  updateButtons();
}

void FeedsPage::tell(const FeedAnswer& answer) {
  // It is still in the middle of its signal.
  load_.release()->deleteLater();
  const QString name = feedName(QUrl(checked_));
  if (answer.feed) {
    const std::size_t count = answer.feed->items.size();
    const QString items = count == 1 ? tr("1 item") : tr("%1 items").arg(count);
    result_->setText(tr("%1: %2, \"%3\"").arg(name, items, answer.feed->title));
  } else {
    result_->setText(tr("%1: %2").arg(name, answer.errorText));
  }
  updateButtons();
}

} // namespace zq::app
