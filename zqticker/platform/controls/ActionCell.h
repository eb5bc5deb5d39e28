// Cells that send a message when they are clicked.
#pragma once

#include "zqticker/platform/controls/Cell.h"

namespace zq::platform {

// A cell with a target, an action and a tag. The target is not owned.
//
// Thread: main.
class ZQTICKER_EXPORT ActionCell : public Cell {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSActionCell")

 public:
  ActionCell();
  ~ActionCell() override;

  // A number for the use of the program; 0 at first.
  std::int64_t tag() const { return tag_; }
  void setTag(std::int64_t tag) { tag_ = tag; }

  Target target() const override;
  virtual void setTarget(const Target& target);
  Selector action() const override;
  virtual void setAction(const Selector& action);

  Ref<Object> copy() override;
  // The control view and the target are archived as references only, the target where it is a
  // reference object or the view of one; the action where it is a name.
  void encodeWithCoder(Coder& coder) override;
  Ref<Object> initWithCoder(Coder& coder) override;

 protected:
  ActionCell(const ActionCell&) = default;

 private:
  std::int64_t tag_ = 0;
  Target target_;
  Selector action_;
};

} // namespace zq::platform
