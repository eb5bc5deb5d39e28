// The running ticker: a strip on the screen, what is queued for it, and what brings more.
#pragma once

#include "app/OncePerTurn.h"
#include "app/commands/StripOptions.h"
#include "app/commands/strip_setup.h"
#include "app/display/SignOrigin.h"
#include "app/display/StripWidget.h"
#include "app/display/TickerDisplay.h"
#include "app/settings/ChosenScreen.h"

#include <QtCore/QObject>
#include <QtDBus/QDBusUnixFileDescriptor>

#include <memory>
#include <vector>

namespace zq::app {

class ClockService;
class DesktopWishes;
class QueueWindow;
class StripInteraction;
class ControlBar;
class SettingsStore;
class SettingsWindow;
class SourceSet;
class StripPlace;
class TickerQueue;

// The one place through which a running program changes what is shown: the command line, other
// programs' messages, windows and settings all act on it.
//
// The strip's window is hidden at first, and again while there is nothing to show and no source
// that might bring something.
//
// Thread: main.
class Ticker : public QObject {
  Q_OBJECT

 public:
  // The strip on the screen that the options name, while that is there, else on the primary one;
  // without anything to show and not to be seen yet. Raises RunTimeError for an unknown font, and
  // where there is no screen at all.
  explicit Ticker(const RunOptions& options);
  ~Ticker() override;

  TickerDisplay& display() { return display_; }
  StripWidget& widget() { return *widget_; }
  // Seconds on the strip's own clock.
  double time() const { return widget_->time(); }

  // Does what a further program was asked for by `arguments`, those of `run`: adds their sources,
  // or, where they name none and do not say otherwise, opens the queue window. Relative
  // paths begin in `folder`. Raises CommandFailure, and changes nothing then.
  void run(const QStringList& arguments, const QString& folder,
           const QDBusUnixFileDescriptor& standardInput = {});
  // Adds the sources of a command line, with lines from `standardInput` where the options ask for
  // them and it is valid. Its font and colour style its own texts; the strip keeps its look. Raises
  // RunTimeError for what cannot be shown, and adds nothing then.
  void add(const StripOptions& sources, const QDBusUnixFileDescriptor& standardInput = {});

  // Takes from the settings, now and whenever they change, what the command line has not said.
  // Their feeds are shown where it named nothing to show, and the ticker then goes on when all has
  // been shown, since new ones may come. `settings` must outlive the ticker.
  void follow(SettingsStore& settings);
  // Heeds, now and whenever they change, the desktop's wishes, where neither the command line nor
  // the settings decide: signs change page by page where less motion is wished for, and where more
  // contrast is, colours that were not chosen are those of contrastingColors(). White as the
  // background in the settings counts as none chosen. `wishes` must outlive the ticker.
  void heed(const DesktopWishes& wishes);
  // Opens the window that shows what is queued. While it or that of the settings is open, the
  // ticker does not finish.
  void showQueue();
  // Opens the window of the settings that are followed; nothing happens where there are none.
  void showSettings();

  // The menu's speeds and directions act at once. Where the command line has not said them, they
  // become those of the settings that are followed. Usual is the speed of the command line, else
  // that of the settings, whatever the menu has made of it since, else 60.

  // As Pause of the menu says.
  void setPaused(bool paused);
  // Takes the strip off the screen until showStrip(), and the keyboard from it: its clock stands,
  // nothing is lost, and what comes meanwhile is queued and does not bring it back.
  void hideStrip();
  // Brings it back where it stood, with what it showed.
  void showStrip();
  bool isStripHidden() const { return isStripHidden_; }
  // Gives the strip, also a hidden one, the keyboard focus, see StripFocus. False where there is
  // none, since there is nothing to show.
  bool focusStrip();

  // Shows a sign behind the others. One whose identifier waits already takes over from that one;
  // one without an identifier gets a new one. Its identifier.
  QString show(const platform::Ref<ZQTickerSign>& sign, const SignOrigin& origin = {},
               bool arranged = false);
  // Takes the sign with this identifier out; false where there is none that waits.
  bool remove(const QString& identifier);
  // See TickerDisplay::arrangeSigns.
  void arrange(const QStringList& identifiers);

  // Whether so many lines wait that more of them drop others.
  bool isFullOfLines() const;
  // The font and colour for texts of `sources`: their own where they ask for others than the
  // strip's, which are the very objects else.
  StripLook lookFor(const StripOptions& sources) const;
  // The most that pictures of feeds take, in pixels.
  QSize pictureRoom() const;

  // Tells that the display was changed. Several calls within a turn of the event loop are one.
  void displayChanged() { updating_.request(); }
  // What is queued or shown has changed.
  Q_SIGNAL void changed();
  // Everything has been shown, nothing more can come, and nothing is waited for.
  Q_SIGNAL void finished();

 private:
  bool hasWindowOpen() const;
  void connectMenu();
  void chooseSpeed(double pointsPerSecond);
  void chooseDirection(ScrollDirection direction);
  void keepInSettings(const QString& name, const QString& value);
  void runClockOf(const StripOptions& options);
  void adopt(const Settings& settings);
  void updateLook();
  RunOptions shownOptions() const;
  void updateControlBar();
  void showFeedsOfSettings();
  void update();
  void finishWhenDone();

  RunOptions options_;
  // What the strip had before the user turned it.
  const bool wasHorizontal_;
  ChosenScreen screen_;
  TickerDisplay display_;
  OncePerTurn updating_; // what is shown to the display
  std::unique_ptr<StripWidget> widget_;
  std::unique_ptr<StripInteraction> interaction_;
  std::unique_ptr<StripPlace> place_;
  std::unique_ptr<ControlBar> controlBar_; // null where there is none
  bool triedControlBar_ = false;           // whether one was to be made
  std::vector<std::unique_ptr<SourceSet>> sources_;
  const DesktopWishes* wishes_ = nullptr;          // that are heeded
  SettingsStore* settings_ = nullptr;              // that are followed
  std::unique_ptr<TickerQueue> queue_;             // once its window has been asked for
  std::unique_ptr<QueueWindow> queueWindow_;       // the same
  std::unique_ptr<SettingsWindow> settingsWindow_; // once it has been asked for
  SourceSet* feedsOfSettings_ = nullptr;           // among the sources
  std::unique_ptr<ClockService> clock_;            // one: there is one sign for it
  bool isStripHidden_ = false;                     // on request
};

} // namespace zq::app
