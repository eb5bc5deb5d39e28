// The base of every sign: settings, archive, copy, and the abstract drawing operation.
#pragma once

#include "zqticker/platform/objects/AtomicProperty.h"
#include "zqticker/platform/objects/Object.h"
#include "zqticker/signs/ZQTickerDisplayProtocol.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QPointF>
#include <QtCore/QSizeF>
#include <QtCore/QString>

#include <cstdint>
#include <optional>

// The loop count of a sign that is repeated without end: all bits set. The display compares
// against it, the library does not.
ZQTICKER_EXPORT extern const std::int32_t ZQEndlessLoopCount;

// One item that a ticker shows. Signs are value objects: they are copied, kept in keyed archives,
// and travel by value to another process.
//
// A fresh sign has every number zero, every flag false and every string nothing. Accessors are
// plain stores and loads. Thread: main, except for needsLayout, which any thread may use.
class ZQTICKER_EXPORT ZQTickerSign : public zq::platform::Object {
  Q_GADGET
  ZQ_OBJECT

 public:
  ZQTickerSign();
  ~ZQTickerSign() override;

  // Chosen by whoever made the sign, for example to replace or remove it later.
  const std::optional<QString>& identifier() const { return identifier_; }
  void setIdentifier(std::optional<QString> identifier) { identifier_ = std::move(identifier); }

  // The display on which the sign is laid out and drawn, not owned; null once it has gone.
  ZQTickerDisplayProtocol* display() const { return display_.get(); }
  void setDisplay(ZQTickerDisplayProtocol* display) { display_ = display; }

  // 1 is horizontal, every other value vertical.
  std::int32_t scrollDirection() const { return scrollDirection_; }
  void setScrollDirection(std::int32_t direction) { scrollDirection_ = direction; }

  // Whether the next round follows without an empty strip between.
  bool continuousScrolling() const { return continuousScrolling_; }
  void setContinuousScrolling(bool continuous) { continuousScrolling_ = continuous; }

  // How many times the sign is shown; ZQEndlessLoopCount means without end.
  std::int64_t loopCount() const { return loopCount_; }
  void setLoopCount(std::int64_t count) { loopCount_ = count; }

  // Time between two rounds; its unit is the display's.
  double loopDelay() const { return loopDelay_; }
  void setLoopDelay(double delay) { loopDelay_ = delay; }

  // The sign's extent in points. Concrete signs compute it.
  virtual QSizeF size() const;
  void setSize(QSizeF size) { size_ = size; }

  // Does a part of what the next size() takes, a short one at least, and more until `deadline`: for
  // a sign whose text is so long that laying it out would take longer than a frame. Whether size()
  // takes next to no time now. By default it does.
  virtual bool measureUntil(const QDeadlineTimer& deadline) const;

  // What a click does; the display's own numbers.
  std::int32_t actionType() const { return actionType_; }
  void setActionType(std::int32_t type) { actionType_ = type; }

  // The argument of the action, for example a location to open.
  const std::optional<QString>& actionString() const { return actionString_; }
  void setActionString(std::optional<QString> string) { actionString_ = std::move(string); }

  // Whether the layout must be computed again before the size is used.
  bool needsLayout() const { return needsLayout_.load(); }
  void setNeedsLayout(bool needsLayout) { needsLayout_.store(needsLayout); }

  // Draws the sign with its lower-left corner at `point`, in the user space of the current
  // graphics context. Every concrete sign overrides it; the base fails an assertion.
  virtual void drawAtPoint(QPointF point);

  // A sign of the same class with every field of this one; strings, objects and the display are
  // shared. Subclasses extend it.
  // Operation: copyWithZone:
  zq::platform::Ref<zq::platform::Object> copy() override;

  // Keyed archiving; a coder without keys fails the assertion "keyed coding support is required".
  // The display and needsLayout are not archived; loopCount is cut to 32 bits and loopDelay to
  // single precision, as the format has it.
  void encodeWithCoder(zq::platform::Coder& coder) override;
  zq::platform::Ref<zq::platform::Object> initWithCoder(zq::platform::Coder& coder) override;

  // The sign itself in a message by copy, else a proxy.
  zq::platform::Ref<zq::platform::Object>
  replacementObjectForPortCoder(zq::platform::PortCoder& coder) override;

 protected:
  ZQTickerSign(const ZQTickerSign&);

  // A new object of the receiver's own class, made by its copy constructor. Every class that can
  // be copied overrides it.
  virtual zq::platform::Ref<ZQTickerSign> memberwiseCopy() const;

 private:
  std::optional<QString> identifier_;
  zq::platform::Weak<ZQTickerDisplayProtocol> display_;
  std::int32_t scrollDirection_ = 0;
  bool continuousScrolling_ = false;
  std::int64_t loopCount_ = 0;
  double loopDelay_ = 0;
  QSizeF size_{0, 0};
  std::int32_t actionType_ = 0;
  std::optional<QString> actionString_;
  zq::platform::AtomicProperty<bool> needsLayout_;
};
