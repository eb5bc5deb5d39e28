// Archives of rollover buttons.
#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/Coder.h"
#include "zqticker/platform/controls/ButtonObject.h"
#include "zqticker/rollover/ZQRollOverButton.h"

#include <QtCore/QLoggingCategory>

using namespace zq::platform;

namespace {

// Stands for a rollover button in archives.
class RollOverButtonObject : public ButtonObject {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "ZQRollOverButton")

 public:
  using ButtonObject::ButtonObject;

 protected:
  std::unique_ptr<Button> makeButton() const override {
    return std::make_unique<ZQRollOverButton>();
  }
};

ZQ_REGISTER_CLASS(RollOverButtonObject);

constexpr QLatin1StringView DoesNotTrackMouseInsideKey{"zq_doesNotTrackMouseInside"};

void logMissingKeys() {
  static const QLoggingCategory category("zqticker.rollover");
  qCWarning(category, "will only work with keyed coding");
}

} // namespace

Ref<ButtonObject> ZQRollOverButton::makeViewObject() {
  return std::make_shared<RollOverButtonObject>(this);
}

void ZQRollOverButton::encodeWithCoder(Coder& coder) {
  // The platform's button has no form without keys either.
  if (!coder.allowsKeyedCoding())
    return logMissingKeys();
  Button::encodeWithCoder(coder);
  coder.encodeBool(doesNotTrackMouseInside_, DoesNotTrackMouseInsideKey);
}

void ZQRollOverButton::initWithCoder(Coder& coder) {
  if (!coder.allowsKeyedCoding())
    return logMissingKeys();
  Button::initWithCoder(coder);
  doesNotTrackMouseInside_ = coder.decodeBoolForKey(DoesNotTrackMouseInsideKey);
  setBordered(Button::isBordered());
}

#include "ZQRollOverButtonCoding.moc"
