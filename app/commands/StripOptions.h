// What a strip shows and how it looks, as asked for on the command line.
#pragma once

#include "app/commands/OptionTable.h"
#include "app/display/ScrollDirection.h"
#include "app/services/FeedOptions.h"
#include "app/services/FileOptions.h"

#include <QtCore/QSet>
#include <QtCore/QSizeF>
#include <QtCore/QString>
#include <QtGui/QColor>

#include <cstdint>
#include <optional>
#include <vector>

namespace zq::app {

// One --text, --image, --combo, --sign or --clock.
struct SignSource {
  enum class Kind { Text, Image, Combo, Sign, Clock };
  Kind kind;
  QString file;     // of a picture or an archive
  QString text;     // of a clock its pattern
  QString argument; // as the user wrote it, for messages
};

struct Settings;

// A font as written: "DejaVu Sans 18" or, without a size, "DejaVu Sans".
struct FontRequest {
  QString text;
  QString option = QStringLiteral("--font"); // what it was written for, in messages

  bool operator==(const FontRequest&) const = default;
};

// The options that `run` and `render` share.
struct StripOptions {
  std::vector<SignSource> sources; // in the order in which they are shown
  FeedOptions feeds;
  FileOptions files;
  bool readsStandardInput = false;
  ScrollDirection direction = ScrollDirection::Left;
  double speed = 60; // points per second
  std::optional<double> width;
  std::optional<double> height;
  std::optional<FontRequest> font;
  std::optional<QColor> color;
  QColor background = Qt::white;
  bool autoscale = false;
  double fade = 0;                       // points at the ends of the strip; 0 for none
  std::optional<std::int64_t> loopCount; // as asked for, else by the kind of sign
  std::optional<double> loopDelay;
  bool continuous = false;

  bool isHorizontal() const { return app::isHorizontal(direction); }
};

// Where the window stands: at an edge of the screen, or wherever it was moved to.
enum class Edge { Automatic, Top, Bottom, Left, Right, Floating };

// Whether a strip of this direction can stand there.
bool fitsDirection(Edge edge, bool isHorizontal);

struct RunOptions {
  StripOptions strip;
  Edge edge = Edge::Automatic;
  QString screen; // its name; empty for the primary one
  bool showsControlBar = true;
  bool pausesOnHover = true; // while the pointer rests on the strip
  // Whether signs change page by page instead of scrolling; nothing for as the desktop wishes.
  std::optional<bool> reducesMotion;
  bool isSeparate = false; // it is not the session's ticker, and hands nothing over to that
  bool opensWindow = true; // the queue window, where there is nothing to show
  QString trace;           // the file for it; empty for none
  // The names of the options that were given. The others follow the settings.
  QSet<QString> given;

  // Whether the command line names something to show.
  bool showsOwn() const;
  // Whether the command line or the settings name something to show.
  bool showsAnything() const { return showsOwn() || !strip.feeds.feeds.empty(); }
};

struct RenderOptions {
  StripOptions strip;
  int frames = 1;
  double framesPerSecond = 30;
  double scale = 1;
  std::optional<double> start; // seconds
  QString output;
};

struct SignOptions {
  std::optional<SignSource> text;
  std::optional<SignSource> image;
  std::optional<FontRequest> font;
  std::optional<QColor> color;
  std::optional<std::int64_t> loopCount;
  std::optional<double> loopDelay;
  bool continuous = false;
  QString identifier;
  QString action;
  QString output;
};

// Adds the value of an option or an operand. UsageError for what is no address that can be loaded,
// an empty name, and one that was given before.
void addFeed(FeedOptions& feeds, const ParsedOption& option);
void addFile(QStringList& files, const ParsedOption& option);

// Whether `option` is one that all strips have; reads it then. UsageError for a wrong value.
bool readStripOption(StripOptions& options, const ParsedOption& option);

// The count that a "--loop" asks for: a number that the user gave, from 1 to the largest of 32
// bits with a sign, or ZQEndlessLoopCount for the word "forever". UsageError for anything else,
// naming the option.
std::int64_t loopCountOf(const ParsedOption& option);
// The commands' options. UsageError for what is wrong in itself; files and fonts come later.
RunOptions readRunOptions(const QStringList& arguments);
// The same over settings, which say what the command line does not.
RunOptions readRunOptionsOver(const Settings& settings, const QStringList& arguments);
RenderOptions readRenderOptions(const QStringList& arguments);
SignOptions readSignOptions(const QStringList& arguments);

// UsageError where the options of `command` name no source at all. `run` may go without, as long as
// something can be sent to it.
void requireSomethingToShow(const StripOptions& options, const QString& command);

} // namespace zq::app
