// The display of the ticker: owns its signs, lays them out, and moves them over a strip.
#pragma once

#include "app/display/Strip.h"
#include "app/display/StripFrame.h"
#include "app/display/StripTiles.h"
#include "app/display/sign_placement.h"
#include "zqticker/signs/ZQTickerDisplayProtocol.h"

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QStringList>

class ZQTickerSign;

namespace zq::platform {
class AttributedString;
} // namespace zq::platform

namespace zq::app {

// Shows signs one behind the other, in the order in which they were added, each as often as its
// loopCount says; loopDelay counts in seconds. See Strip for the order of rounds.
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
  bool shouldAutoscale() const override { return autoscale_ && horizontal_; }

  // Changes mark every sign for layout and let what is shown stay in its order; `time` is that of
  // the change.
  void setSize(QSizeF points, double time);
  void setHorizontal(bool horizontal, double time);
  void setDefaultFont(platform::Ref<platform::Font> font);
  void setDefaultTextColor(platform::Ref<platform::Color> color);
  void setShouldAutoscale(bool autoscale);
  // Device pixels per point.
  void setScale(double scale);
  double scale() const { return scale_; }

  bool isHorizontal() const { return horizontal_; }
  StripShape shape() const;

  // Points per second, also of a strip that is paused.
  double speed() const { return isPaused() ? *pausedSpeed_ : strip_.speed(); }
  void setSpeed(double pointsPerSecond, double time);

  // A paused strip stands still, but for steps; delays go on.
  bool isPaused() const { return pausedSpeed_.has_value(); }
  void setPaused(bool paused, double time);

  // Move by one sign, see Strip; false where there is none to move to.
  bool stepForward(double time) { return strip_.stepForward(time); }
  bool stepBack(double time) { return strip_.stepBack(time); }

  // Adds a sign behind the others at `time`. It takes the strip's scroll direction and this
  // display, and a text sign renders its buffer for it.
  void addSign(platform::Ref<ZQTickerSign> sign, double time);
  // The same for a sign that is last among the arranged ones: every round shows these in one order,
  // that of arrangeSigns. It is shown before those that wait for another showing.
  void addArrangedSign(platform::Ref<ZQTickerSign> sign, double time);
  // Gives the arranged signs the order of `identifiers`, which names all of them; others are passed
  // over. Nothing on the strip moves.
  void arrangeSigns(const QStringList& identifiers, double time);
  // A sign that waits is known by its identifier; of several with the same, the one added last.
  // Lets `sign` take over from the one with its identifier, in its place and with the showings it
  // has had. One that is on the strip goes on to its end. False where none waits.
  bool replaceSign(platform::Ref<ZQTickerSign> sign, double time);
  // Takes the sign out, once it has left where it is on the strip. False where none waits.
  bool removeSign(const QString& identifier, double time);

  // Lets the text sign of this identifier show `text` in the default font and color, where it waits
  // and where it is on the strip, without moving anything: a text that has become longer than the
  // place of the one before, with its gap, is cut off until it enters again. False where there is
  // none, or not a text sign.
  bool changeText(const QString& identifier, const QString& text, double time);

  // Whether a sign with this identifier waits for its first or another showing at `time`.
  bool hasWaitingSign(const QString& identifier, double time);

  // Adds a line of text in the default font and color. Lines are limited as stated above: for a
  // new one the line that was shown longest ago goes, then the oldest waiting one.
  void addLine(const QString& line, double time, const LoopRule& rule = {});
  // `text` in the default font and color.
  platform::Ref<platform::AttributedString> styledText(const QString& text) const;
  // A text sign for `text` in the default font and color, laid out for this display.
  platform::Ref<ZQTickerSign> makeTextSign(const QString& text);

  // Signs and lines that wait, and lines that had to go.
  std::size_t waitingCount() const { return strip_.queue().size(); }
  std::size_t waitingLineCount() const { return strip_.queue().droppableSize(); }
  std::uint64_t droppedLineCount() const { return strip_.queue().dropped(); }

  // Moves on to `time`. Whether the frame is another one than before.
  bool advanceTo(double time);
  // The frame of that time; the same until the next advance.
  const StripFrame& frame() const { return frame_; }

  bool isMoving() const { return strip_.isMoving(); }
  bool isFinished() const { return strip_.isFinished(); }
  double nextEntryTime() { return strip_.nextEntryTime(); }
  const Strip& strip() const { return strip_; }
  const StripTiles& tiles() const { return tiles_; }

 private:
  class TextSignDisplay;

  double extent() const { return horizontal_ ? size_.width() : size_.height(); }
  void catchUp(double time);
  void prepare(ZQTickerSign& sign);
  Strip::Entry waitingEntry(const QString& identifier) const;
  void remember(const ZQTickerSign& sign, const Strip::Entry& entry);
  void markForLayout();
  void drawTile(const StripTiles::Request& request, QImage& picture) const;

  QSizeF size_{0, 0};
  bool horizontal_ = true;
  platform::Ref<platform::Font> font_;
  platform::Ref<platform::Color> color_;
  bool autoscale_ = false;
  double scale_ = 1;
  std::optional<double> pausedSpeed_;
  std::unique_ptr<TextSignDisplay> textSignDisplay_;
  Strip strip_;
  // Entries that wait or are on the strip, and some that have gone.
  QHash<QString, std::weak_ptr<StripQueue::Entry>> named_;
  qsizetype mostNamed_ = 64; // more are looked through for those that have gone
  StripTiles tiles_;
  StripFrame frame_;
  qint64 frameOffset_ = 0;
  bool frameIsStale_ = true;
};

} // namespace zq::app
