// A sign as an item of a strip.
#pragma once

#include "app/display/LineSource.h"
#include "app/display/StripItem.h"
#include "app/display/sign_placement.h"
#include "zqticker/platform/objects/Object.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QString>

#include <cstdint>
#include <memory>
#include <optional>

class ZQTickerSign;

namespace zq::app {

class TickerDisplay;

// Holds a sign, or a line of text from which a sign is made only while it is on the strip, so that
// a long queue of lines takes no more than their characters.
class SignItem : public StripItem {
 public:
  SignItem(TickerDisplay& display, platform::Ref<ZQTickerSign> sign, SignOrigin origin = {});
  SignItem(TickerDisplay& display, QString line, LoopRule rule,
           std::shared_ptr<const LineSource> source);
  ~SignItem() override;

  // Whether the text is measured, where that takes long.
  bool isReady() override;
  double enter() override;
  double gap(double length) const override;
  void leave() override;
  LoopRule loopRule() const override;
  void setQueued(bool isQueued) override;

  bool isPrepared();
  // Measures a long text bit by bit, until `deadline`; that of a line is made into a sign for it.
  // Whether it is prepared then.
  bool prepareUntil(const QDeadlineTimer& deadline);

  // Lets a text sign show `text`, also where it is on the strip; its length there stays. False for
  // another sign and for a line.
  bool changeText(const QString& text);

  // Lets the sign show and say nothing from now on, wherever it is.
  void blank();
  bool isBlank() const override { return isBlank_; }

  // Lets the sign's text follow the defaults of the display, where they have changed.
  void followStyle();

  // Null for a line that is not on the strip.
  const platform::Ref<ZQTickerSign>& sign() const { return sign_; }
  const SignPlacement& placement() const { return placement_; }
  const SignOrigin& origin() const;
  // The line, or what the sign says; empty where it says nothing, and for a blank one.
  QString text() const;

 private:
  void makeSign();
  double place();

  TickerDisplay& display_;
  platform::Ref<ZQTickerSign> sign_;
  std::unique_ptr<const SignOrigin> origin_; // null where it is empty
  QString line_;
  LoopRule lineRule_;
  std::shared_ptr<const LineSource> lineSource_; // null for none
  bool isLine_ = false;
  bool isBlank_ = false;
  SignPlacement placement_;
  std::optional<bool> isPrepared_; // nothing before it is looked at
  std::uint64_t knownStyles_;      // the style changes that the text has taken on
};

} // namespace zq::app
