// The strip for assistive technology.
#pragma once

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QTimer>
#include <QtGui/QAccessible>

#include <cstdint>
#include <functional>

namespace zq::app {

class SignOpener;
class StripWidget;
class TickerDisplay;

// Gives a strip an accessible object, see AccessibleStrip, and tells assistive technology of each
// sign that enters: once, when it enters for the first time, however often it is shown. It is told
// as a notification that shows itself, which screen readers speak without leaving what they are at;
// at most one every RestMilliseconds, the newest where more have come meanwhile: the others are
// found on the strip.
//
// While no assistive technology runs, it hears nothing of frames.
//
// Thread: main.
class StripVoice : public QObject, private QAccessible::ActivationObserver {
  Q_OBJECT

 public:
  static constexpr int RestMilliseconds = 500;
  // Of what a sign says, in UTF-16 units; more of it ends in an ellipsis.
  static constexpr qsizetype LongestText = 2000;

  // Hands an event to the platform.
  using Tell = std::function<void(QAccessibleEvent* event)>;

  // A child of `strip`. The display and the opener must outlive the strip's frames.
  StripVoice(StripWidget& strip, const TickerDisplay& display, const SignOpener& opener,
             Tell tell = &QAccessible::updateAccessibility);
  ~StripVoice() override;

  StripWidget& strip() const { return strip_; }
  const TickerDisplay& display() const { return display_; }
  const SignOpener& opener() const { return opener_; }

  // The accessible object of a showing; null where it is not on the strip.
  QAccessibleInterface* signOf(std::uint64_t run);
  // What the showing says; empty where it is not on the strip.
  QString textOf(std::uint64_t run) const;

 private:
  void accessibilityActiveChanged(bool active) override;
  void listen(bool listens);
  void look();
  void tell();
  void forgetAll();

  StripWidget& strip_;
  const TickerDisplay& display_;
  const SignOpener& opener_;
  Tell tell_;
  QMetaObject::Connection frames_;
  QTimer rest_;
  std::uint64_t lastRun_ = 0; // that was looked at
  std::uint64_t next_ = 0;    // to be told; 0 for none
  QHash<std::uint64_t, QAccessible::Id> signs_;
};

} // namespace zq::app
