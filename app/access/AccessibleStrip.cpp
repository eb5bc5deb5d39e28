#include "app/access/AccessibleStrip.h"

#include "app/access/StripVoice.h"
#include "app/display/SignItem.h"
#include "app/display/StripWidget.h"
#include "app/interaction/SignOpener.h"
#include "app/interaction/sign_spots.h"

#include <QtCore/QStringList>

#include <algorithm>
#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
QAccessibleInterface* makeInterface(const QString& className, QObject* object) {
  if (className != QLatin1StringView(StripWidget::staticMetaObject.className()))
    return nullptr;
  auto* voice = object->findChild<StripVoice*>(QString(), Qt::FindDirectChildrenOnly);
  return voice ? new AccessibleStrip(static_cast<QWidget*>(object), *voice) : nullptr;
}

// What a click on the sign asks for; nothing where it opens nothing.
std::optional<ActionRequest> actionAt(const StripVoice& voice, std::uint64_t run) {
  const std::optional<SignSpot> spot = spotOfRun(voice.display(), run);
  if (!spot)
    return std::nullopt;
  ActionRequest request = actionOf(spot->item());
  return SignOpener::opensSomething(request) ? std::optional(std::move(request)) : std::nullopt;
}
} // namespace

void installAccessibleStrips() {
  static const bool isInstalled = [] {
    QAccessible::installFactory(makeInterface);
    return true;
  }();
  Q_UNUSED(isInstalled);
}

AccessibleStrip::AccessibleStrip(QWidget* strip, StripVoice& voice)
    : QAccessibleWidget(strip, QAccessible::Animation), voice_(&voice) {}

int AccessibleStrip::childCount() const {
  return voice_ ? static_cast<int>(signsInSight(voice_->display()).size()) : 0;
}

QAccessibleInterface* AccessibleStrip::child(int index) const {
  if (!voice_ || index < 0)
    return nullptr;
  const std::vector<SignSpot> spots = signsInSight(voice_->display());
  const auto place = static_cast<std::size_t>(index);
  return place < spots.size() ? voice_->signOf(spots[place].run) : nullptr;
}

int AccessibleStrip::indexOfChild(const QAccessibleInterface* child) const {
  const int count = childCount();
  for (int i = 0; i < count; ++i)
    if (this->child(i) == child)
      return i;
  return -1;
}

QAccessibleInterface* AccessibleStrip::childAt(int x, int y) const {
  if (!voice_)
    return nullptr;
  const std::optional<SignSpot> spot =
      signAt(voice_->display(), voice_->strip().mapFromGlobal(QPoint(x, y)));
  return spot ? voice_->signOf(spot->run) : nullptr;
}

QString AccessibleStrip::text(QAccessible::Text kind) const {
  if (!voice_ || (kind != QAccessible::Value && kind != QAccessible::Description))
    return QAccessibleWidget::text(kind);
  QStringList texts;
  for (const SignSpot& spot : signsInSight(voice_->display()))
    if (const QString text = voice_->textOf(spot.run); !text.isEmpty())
      texts.append(text);
  return texts.join(u'\n');
}

QAccessible::State AccessibleStrip::state() const {
  QAccessible::State state = QAccessibleWidget::state();
  if (voice_) {
    state.marqueed = !voice_->display().isPaged();
    state.animated = voice_->display().isMoving();
  }
  return state;
}

AccessibleSign::AccessibleSign(StripVoice& voice, std::uint64_t run) : voice_(&voice), run_(run) {}

bool AccessibleSign::isValid() const {
  const auto isRun = [this](const Strip::Run& run) { return run.number == run_; };
  if (!voice_)
    return false;
  const auto& runs = voice_->display().strip().runs();
  return std::any_of(runs.begin(), runs.end(), isRun);
}

QWindow* AccessibleSign::window() const {
  return voice_ ? voice_->strip().windowHandle() : nullptr;
}

QAccessibleInterface* AccessibleSign::parent() const {
  return voice_ ? QAccessible::queryAccessibleInterface(&voice_->strip()) : nullptr;
}

QString AccessibleSign::text(QAccessible::Text kind) const {
  return voice_ && kind == QAccessible::Name ? voice_->textOf(run_) : QString();
}

QRect AccessibleSign::rect() const {
  const std::optional<SignSpot> spot = voice_ ? spotOfRun(voice_->display(), run_) : std::nullopt;
  if (!spot)
    return QRect();
  const QRect area = spot->area.toAlignedRect();
  return {voice_->strip().mapToGlobal(area.topLeft()), area.size()};
}

QAccessible::State AccessibleSign::state() const {
  QAccessible::State state;
  state.readOnly = true;
  state.invalid = !isValid();
  state.offscreen = rect().isEmpty();
  return state;
}

void* AccessibleSign::interface_cast(QAccessible::InterfaceType type) {
  return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                              : nullptr;
}

QStringList AccessibleSign::actionNames() const {
  return voice_ && actionAt(*voice_, run_) ? QStringList{pressAction()} : QStringList();
}

void AccessibleSign::doAction(const QString& name) {
  if (!voice_ || name != pressAction())
    return;
  if (const auto request = actionAt(*voice_, run_))
    voice_->opener().perform(*request);
}

} // namespace zq::app
