// The display of the ticker: owns its signs, lays them out, and moves them over a strip.
#pragma once

#include "app/display/LineSource.h"
#include "app/display/QueuedSign.h"
#include "app/display/ScrollDirection.h"
#include "app/display/SenderCounts.h"
#include "app/display/SignOrigin.h"
#include "app/display/Strip.h"
#include "app/display/StripFrame.h"
#include "app/display/StripTiles.h"
#include "app/display/StyleChanges.h"
#include "app/display/sign_placement.h"
#include "zqticker/platform/text/text_attributes.h"
#include "zqticker/signs/ZQTickerDisplayProtocol.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>
#include <vector>

class ZQTickerSign;

namespace zq::platform {
class AttributedString;
} // namespace zq::platform

namespace zq::app {

// Shows signs one behind the other, in the order in which they were added, each as often as its
// loopCount says; loopDelay counts in seconds. See Strip for the order of rounds.
//
// The priority of a sign's origin decides its place among those that have not been shown yet: the
// higher one goes first, equal ones go as they came; one above 0 also passes those that wait for
// another showing. Lines, and signs without a priority, have 0. Nothing passes what is on the
// strip. There is no fairness beyond that: as long as signs above 0 keep coming, the others wait.
// Whoever takes signs from strangers bounds how many they queue, see signCountOf.
//
// A sign whose origin fades is drawn with an opacity that grows from 0 to 1 while its leading edge
// goes fadeLength from where it entered, and falls to 0 while its trailing edge goes the last
// fadeLength before it leaves: a function of the place alone, so that it stands still with the
// strip and goes back with it.
//
// Nothing that changes the queue moves what is on the strip. Every change takes constant time, or
// logarithmic time in the number of signs, where nothing else is said.
//
// It gives frames for a time of a monotonic clock, in seconds, and knows neither window nor timer.
// Device pixels are whole: what is shown moves by whole pixels and is sharp at every scale.
//
// Thread: main.
class TickerDisplay : public ZQTickerDisplayProtocol {
 public:
  // The most lines that wait, and the most characters (UTF-16 units) in them.
  static constexpr std::size_t MostLines = 1000;
  static constexpr std::size_t MostLineCharacters = 16'000'000;
  // Over what part of the strip's extent a sign fades, and at most over how many points.
  static constexpr double FadeShare = 0.2;
  static constexpr double LongestFade = 200;
  // Of a frame, to either side.
  static constexpr int MostPixels = 1 << 14;

  // Identity of what is queued.
  using Entry = Strip::Entry;

  explicit TickerDisplay(double startTime = 0);
  ~TickerDisplay() override;
  TickerDisplay(const TickerDisplay&) = delete;

  // What signs ask. The text offset puts a line of the default font into the middle of a
  // horizontal strip; in a vertical one it is 0.
  QSizeF size() const override { return size_; }
  int scrollDirection() const override;
  qreal textOffset() const override;
  platform::Ref<platform::Font> defaultFont() const override { return font_; }
  platform::Ref<platform::Color> defaultTextColor() const override { return color_; }
  bool shouldAutoscale() const override { return autoscale_ && isHorizontal(); }

  // Changes mark every sign for layout and let what is shown stay in its order; `time` is that of
  // the change.
  //
  // What stands in the strip keeps its place from the left or the upper end when the size changes.
  // A reversal moves nothing, see Strip. From a horizontal to a vertical strip, and back, all is
  // laid out anew, from the edge at which signs leave.
  void setSize(QSizeF points, double time) { setShape(direction_, points, time); }
  void setDirection(ScrollDirection direction, double time) { setShape(direction, size_, time); }
  void setShape(ScrollDirection direction, QSizeF size, double time);
  // Texts in the very font or colour that was the default before take the new one, those that wait
  // when they are asked for or enter.
  void setDefaultFont(platform::Ref<platform::Font> font);
  void setDefaultTextColor(platform::Ref<platform::Color> color);
  void setShouldAutoscale(bool autoscale);
  // Device pixels per point.
  void setScale(double scale);
  double scale() const { return scale_; }

  ScrollDirection direction() const { return direction_; }
  bool isHorizontal() const { return app::isHorizontal(direction_); }
  StripShape shape() const;

  // Points over which a sign fades in and out.
  double fadeLength() const;

  // Over how many points everything fades towards the background at both ends of the strip, at most
  // to its middle; 0 for no such thing, which is so at first. A page stands and is read from its
  // very end: it does not fade.
  double edgeFade() const { return edgeFade_; }
  void setEdgeFade(double points);

  // Points per second, also of a strip that is paused.
  double speed() const { return isPaused() ? *pausedSpeed_ : strip_.speed(); }
  void setSpeed(double pointsPerSecond, double time);

  // Whether signs change page by page instead of scrolling, see Strip; without fading then.
  bool isPaged() const { return strip_.isPaged(); }
  void setPaged(bool paged, double time);

  // A paused strip stands still, but for steps; delays go on. It comes smoothly to its speed again.
  bool isPaused() const { return pausedSpeed_.has_value(); }
  void setPaused(bool paused, double time);

  // Move by one sign, see Strip; false where there is none to move to.
  bool stepForward(double time) { return strip_.stepForward(time); }
  bool stepBack(double time) { return strip_.stepBack(time); }
  // Move as far as a hand does, see Strip; positive is forward.
  void moveBy(double points, double time) { strip_.moveBy(points, time); }
  void glideBy(double points, double seconds, double time) {
    strip_.glideBy(points, seconds, time);
  }
  void throwBy(double pointsPerSecond, double time) { strip_.throwBy(pointsPerSecond, time); }

  // Adds a sign behind the others of its priority at `time`. It takes the strip's scroll direction
  // and this display, and a text sign renders its buffer for it.
  Entry addSign(platform::Ref<ZQTickerSign> sign, double time, SignOrigin origin = {});
  // The same for a sign that is last among the arranged ones: every round shows these in one order,
  // that of arrangeSigns. It is shown before those that wait for another showing.
  Entry addArrangedSign(platform::Ref<ZQTickerSign> sign, double time, SignOrigin origin = {});
  // Puts the arranged signs of these identifiers into this order among themselves; others keep
  // their turns, unknown identifiers are passed over. Takes time in proportion to `identifiers`
  // where they stand so already, else to the number of arranged signs and its logarithm.
  void arrangeSigns(const QStringList& identifiers, double time);
  // A sign that waits is known by its identifier; of several with the same, the one added last.
  // Lets `sign` take over from the one with its identifier, in its place, whatever its priority,
  // and with the showings it has had. Without an origin it takes over that as well. One that is on
  // the strip goes on to its end. The entry of `sign`; null where none waits.
  Entry replaceSign(platform::Ref<ZQTickerSign> sign, double time,
                    std::optional<SignOrigin> origin = {});
  // Takes the sign out, once it has left where it is on the strip. False where none waits.
  bool removeSign(const QString& identifier, double time);

  // The same for an entry: of addSign, or of a row of queuedSigns. False where it does not wait.
  bool removeEntry(const Entry& entry, double time);
  // Takes a sign out at once: it waits no more, and what is on the strip of it, or of others with
  // its identifier, is empty room from now on, which leaves as the sign would have. Nothing else
  // moves. False where there is nothing of it any more.
  bool eraseEntry(const Entry& entry, double time);
  // As replaceSign, but the identifier may be another one, and the origin stays.
  Entry replaceEntry(const Entry& entry, platform::Ref<ZQTickerSign> sign, double time);
  // Puts an entry that waits directly before another one in the order of showing, whatever their
  // priorities; null is the end, before those whose delays are not over. An arranged sign is
  // arranged no longer. False, and nothing changes, where either does not wait.
  bool moveEntry(const Entry& entry, const Entry& before, double time);

  // What is queued at `time`, in the order of showing: what is on the strip, the oldest first, then
  // what waits, those whose delays are not over last. A sign on the strip that waits for another
  // showing is there once. Takes time in proportion to the number of signs.
  std::vector<QueuedSign> queuedSigns(double time);
  // Another number whenever queuedSigns would give something else, but for changes to a sign behind
  // the display's back; it may be another one for the same, too.
  std::uint64_t queueRevision() const { return strip_.revision() + textRevision_; }
  // The signs of this sender that wait or are on the strip; those without a sender have an empty
  // one. Lines are not counted.
  std::size_t signCountOf(const QString& senderIdentifier) const {
    return senders_.of(senderIdentifier);
  }

  // Lets the text sign of this identifier show `text` in the default font and color, where it waits
  // and where it is on the strip, without moving anything: a text that has become longer than the
  // place of the one before, with its gap, is cut off until it enters again. False where there is
  // none, or not a text sign.
  bool changeText(const QString& identifier, const QString& text, double time);

  // Whether a sign with this identifier waits for its first or another showing at `time`.
  bool hasWaitingSign(const QString& identifier, double time);

  // Adds a line of text, in the default font and color where its source has none. Lines are limited
  // as stated above: for a new one the line that was shown longest ago goes, then the oldest
  // waiting one.
  void addLine(const QString& line, double time, const LoopRule& rule = {},
               std::shared_ptr<const LineSource> source = {});
  // `text` in the default font and color, or in those of `source`.
  platform::Ref<platform::AttributedString> styledText(const QString& text,
                                                       const LineSource* source = nullptr) const;
  // A text sign for `text` in the default font and color, or in those of `source`, laid out for
  // this display.
  platform::Ref<ZQTickerSign> makeTextSign(const QString& text, const LineSource* source = nullptr);

  // Signs and lines that wait, and lines that had to go.
  std::size_t waitingCount() const { return strip_.queue().size(); }
  std::size_t waitingLineCount() const { return strip_.queue().droppableSize(); }
  std::uint64_t droppedLineCount() const { return strip_.queue().dropped(); }

  // A display that is moved by a clock holds signs up that it would have to lay out for longer than
  // a frame when their turn comes; they are prepared in between, bit by bit. Otherwise what happens
  // depends on the times alone, and they are laid out when they enter.
  bool holdsUnprepared() const { return holdsUnprepared_; }
  void setHoldsUnprepared(bool holds) { holdsUnprepared_ = holds; }
  // Whether all that comes next can enter at once.
  bool isPrepared();
  // Prepares what comes next, for a short while at least, and until `deadline`. Whether it is
  // prepared then.
  bool prepareUntil(const QDeadlineTimer& deadline);

  // Moves on to `time`. Whether the frame is another one than before.
  bool advanceTo(double time);
  // Draws ahead what comes into sight next, so that its frame need not; little, or nothing. To be
  // called when a frame has been shown and there is time until the next one.
  void prepareAhead() { tiles_.prepare(frame_, strip_.runs()); }
  // The frame of that time; the same until the next advance.
  const StripFrame& frame() const { return frame_; }
  // The travel in the frame, in whole device pixels as shown: it grows when the strip goes forward,
  // in every direction.
  qint64 frameTravel() const;

  bool isMoving() const { return strip_.isMoving(); }
  bool isFinished() const { return strip_.isFinished(); }
  double nextEntryTime() { return strip_.nextEntryTime(); }
  const Strip& strip() const { return strip_; }
  const StyleChanges& styleChanges() const { return styleChanges_; }
  // Points from the strip's left or upper end to that of what the run shows, and its length.
  double placeOf(const Strip::Run& run) const;
  double shownLengthOf(const Strip::Run& run) const;
  const StripTiles& tiles() const { return tiles_; }

 private:
  class TextSignDisplay;
  friend class SignItem;

  // Of a size that is none, 0.
  double extent() const;
  void catchUp(double time);
  void prepare(ZQTickerSign& sign);
  Entry waitingEntry(const QString& identifier) const;
  void remember(const ZQTickerSign& sign, const Entry& entry);
  void forget(const Entry& entry);
  void erase(const Entry& entry);
  Entry replaceWaiting(const Entry& entry, platform::Ref<ZQTickerSign> sign, SignOrigin origin);
  void countSign(const QString& sender, bool isQueued);
  const platform::Attributes& attributesFor(const LineSource* source) const;
  // Changes lengths; what stands `place` points from the edge at which signs leave stays.
  void markForLayout(double place);
  void markForLayout() { markForLayout(isPaged() ? 0 : extent() / 2); }
  void restyle(const QString& attribute, const platform::Ref<platform::Object>& before,
               const platform::Ref<platform::Object>& after);
  void fitEdgeFade();
  void drawTile(const StripTiles::Request& request, QImage& picture) const;

  QSizeF size_{0, 0};
  ScrollDirection direction_ = ScrollDirection::Left;
  platform::Ref<platform::Font> font_;
  platform::Ref<platform::Color> color_;
  // Of the texts that were styled last: the texts share them.
  mutable platform::Attributes attributes_;
  mutable platform::Ref<platform::Font> attributesFont_;
  mutable platform::Ref<platform::Color> attributesColor_;
  bool autoscale_ = false;
  double scale_ = 1;
  double edgeFade_ = 0;
  bool holdsUnprepared_ = false;
  std::optional<double> pausedSpeed_;
  std::unique_ptr<TextSignDisplay> textSignDisplay_;
  StyleChanges styleChanges_;
  SenderCounts senders_;
  Strip strip_;
  // Entries that wait or are on the strip, and some that have gone.
  QHash<QString, std::weak_ptr<StripQueue::Entry>> named_;
  qsizetype mostNamed_ = 64;       // more are looked through for those that have gone
  std::uint64_t textRevision_ = 0; // texts changed or erased in their places
  StripTiles tiles_;
  StripFrame frame_;
  qint64 frameOffset_ = 0;
  std::uint64_t frameRun_ = 0; // the last one
  bool frameIsStale_ = true;
};

} // namespace zq::app
