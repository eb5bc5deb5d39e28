#include "app/settings/TextPage.h"

#include "app/commands/failures.h"
#include "app/commands/sign_loading.h"
#include "app/settings/ColorButton.h"
#include "app/settings/page_controls.h"
#include "app/settings/setting_table.h"
#include "zqticker/platform/graphics/Font.h"

#include <QtGui/QFontDatabase>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QFontComboBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLineEdit>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr double LargestSize = 1000; // points
} // namespace

TextPage::TextPage(QWidget* parent)
    : SettingsPage(parent), hasFont_(new QCheckBox(tr("&Font of your own"))),
      family_(new QFontComboBox), size_(makeSideBox()), color_(new ColorButton(tr("Text color"))),
      background_(new ColorButton(tr("Background color"))),
      autoscale_(new QCheckBox(tr("Scale texts to the &height of the strip"))) {
  family_->setFontFilters(QFontComboBox::ScalableFonts);
  family_->setMinimumContentsLength(16);
  size_->setMaximum(LargestSize);
  size_->setDecimals(1);
  size_->setSpecialValueText(tr("As the strip's height"));

  auto* form = new QFormLayout(this);
  form->addRow(hasFont_);
  form->addRow(tr("F&amily:"), family_);
  form->addRow(tr("&Size:"), size_);
  form->addRow(tr("&Text color:"), color_);
  form->addRow(tr("&Background:"), background_);
  form->addRow(autoscale_);

  connect(hasFont_, &QCheckBox::toggled, this, [this](bool isOn) {
    family_->setEnabled(isOn);
    size_->setEnabled(isOn);
    chooseFont();
  });
  connect(family_, &QFontComboBox::currentFontChanged, this, &TextPage::chooseFont);
  connect(size_, &QDoubleSpinBox::valueChanged, this, &TextPage::chooseFont);
  connect(color_, &ColorButton::chosen, this,
          [this](const QColor& color) { choose(u"color"_s, {color.name(QColor::HexArgb)}); });
  connect(background_, &ColorButton::chosen, this,
          [this](const QColor& color) { choose(u"background"_s, {color.name(QColor::HexArgb)}); });
  connect(autoscale_, &QCheckBox::toggled, this,
          [this](bool isOn) { choose(u"autoscale"_s, {switchText(isOn)}); });
}

TextPage::~TextPage() = default;

void TextPage::showSettings(const Settings& settings) {
  hasFont_->setChecked(settings.font.has_value());
  family_->setEnabled(settings.font.has_value());
  size_->setEnabled(settings.font.has_value());
  QString family = QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
  double size = 0;
  if (settings.font) {
    try {
      const FoundFont found = findFont(*settings.font, 1);
      family = found.font->fontName();
      size = found.hasSize ? found.font->pointSize() : 0;
    } catch (const CommandFailure&) {
      // One that is not there is shown by its name.
      family = settings.font->text;
    }
  }
  if (family_->currentText() != family) {
    family_->setCurrentFont(QFont(family));
    family_->setEditText(family);
  }
  size_->setValue(size);
  color_->setColor(settings.color.value_or(Qt::black));
  background_->setColor(settings.background);
  autoscale_->setChecked(settings.autoscale);
}

void TextPage::chooseFont() {
  if (!hasFont_->isChecked()) {
    choose(u"font"_s, {u"automatic"_s});
    return;
  }
  QString font = family_->currentFont().family();
  if (size_->value() > 0)
    font += u' ' + textOfNumber(size_->value());
  choose(u"font"_s, {font});
}

} // namespace zq::app
