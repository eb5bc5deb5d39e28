#include "zqticker/platform/controls/ButtonObject.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/archiving/Coder.h"
#include "zqticker/platform/controls/Button_p.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/objects/MainThread.h"

#include <QtWidgets/QApplication>

using namespace Qt::StringLiterals;

namespace zq::platform {

ZQ_REGISTER_CLASS(ButtonObject);

ControlObject::ControlObject() = default;
ControlObject::~ControlObject() = default;

ButtonObject::ButtonObject() = default;
ButtonObject::ButtonObject(Button* button) : ControlObject(button) {}
ButtonObject::~ButtonObject() {
  takeButton().reset();
}

Button* ButtonObject::button() const {
  return static_cast<Button*>(view());
}

std::unique_ptr<Button> ButtonObject::takeButton() {
  if (!owned_ || owned_->parent())
    return nullptr;
  owned_ = nullptr;
  std::unique_ptr<Button> taken(button());
  // None while the object itself is being destroyed.
  taken->private_->ownedObject = std::static_pointer_cast<ButtonObject>(weak_from_this().lock());
  return taken;
}

std::unique_ptr<Button> ButtonObject::makeButton() const {
  return std::make_unique<Button>();
}

void ButtonObject::encodeWithCoder(Coder& coder) {
  if (!button())
    throw InvalidArgumentException(u"the button has gone"_s);
  button()->encodeWithCoder(coder);
}

Ref<Object> ButtonObject::initWithCoder(Coder& coder) {
  if (!qobject_cast<QApplication*>(QCoreApplication::instance()) || !isMainThread())
    throw ArchiveException(u"a button is made on the main thread of a program with windows"_s,
                           coder.keyPath(QString()));
  Button* made = makeButton().release();
  owned_ = made;
  // Before the cell is decoded, which refers back.
  setView(made);
  made->private_->object = std::static_pointer_cast<ButtonObject>(shared_from_this());
  made->initWithCoder(coder);
  return shared_from_this();
}

} // namespace zq::platform
