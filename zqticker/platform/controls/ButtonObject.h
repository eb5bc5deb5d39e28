// Buttons among reference objects.
#pragma once

#include "zqticker/platform/controls/ViewObject.h"

#include <QtCore/QPointer>

#include <memory>

namespace zq::platform {

class Button;

// Stands for a control in archives.
class ZQTICKER_EXPORT ControlObject : public ViewObject {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSControl")

 public:
  using ViewObject::ViewObject;
  ControlObject();
  ~ControlObject() override;
};

// Stands for a button: `KeyedArchiver::archivedDataWithRootObject(button->viewObject())` archives
// it. Decoding makes a button, which the object owns until it is taken.
//
// A subclass of Button with an archive name of its own has a subclass of this that states the name,
// makes such a button, and is registered; the button's makeViewObject makes one.
//
// Thread: main.
class ZQTICKER_EXPORT ButtonObject : public ControlObject {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSButton")

 public:
  ButtonObject();
  // Stands for `button`, which it does not own.
  explicit ButtonObject(Button* button);
  ~ButtonObject() override;

  // Null once the button has gone.
  Button* button() const;
  // Hands over the decoded button, which has no parent; null where it was handed over before, has
  // got a parent, or was never decoded.
  std::unique_ptr<Button> takeButton();

  // Raises InvalidArgumentException when the button has gone.
  void encodeWithCoder(Coder& coder) override;
  Ref<Object> initWithCoder(Coder& coder) override;

 protected:
  // The button that decoding fills.
  virtual std::unique_ptr<Button> makeButton() const;

 private:
  // The decoded button; a parent may have taken it without a word.
  QPointer<QWidget> owned_;
};

} // namespace zq::platform
