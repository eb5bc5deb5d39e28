// Items of known length that write down what happens to them.
#pragma once

#include "app/display/StripItem.h"

#include <memory>
#include <string>
#include <vector>

namespace zq::app::testing {

class FakeItem : public StripItem {
 public:
  FakeItem(std::string itemName, double itemLength, LoopRule itemRule = {})
      : name(std::move(itemName)), length(itemLength), rule(itemRule) {}

  double enter() override {
    ++entered;
    return length;
  }
  double gap(double) const override { return itsGap; }
  void leave() override { ++left; }
  LoopRule loopRule() const override { return rule; }
  void setQueued(bool isQueuedNow) override { isQueued = isQueuedNow; }

  std::string name;
  double length;
  LoopRule rule;
  double itsGap = 0; // of the length
  int entered = 0;
  int left = 0;
  bool isQueued = false;
};

inline std::shared_ptr<FakeItem> fake(std::string name, double length, LoopRule rule = {}) {
  return std::make_shared<FakeItem>(std::move(name), length, rule);
}

inline const std::string& nameOf(const StripItem& item) {
  return static_cast<const FakeItem&>(item).name;
}

} // namespace zq::app::testing
