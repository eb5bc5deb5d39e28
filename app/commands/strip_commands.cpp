#include "app/commands/strip_commands.h"

#include "app/commands/RenderCommand.h"
#include "app/commands/RunCommand.h"
#include "app/commands/SignCommand.h"
#include "app/commands/StripOptions.h"
#include "app/commands/strip_values.h"
#include "app/settings/SettingsStore.h"

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// The options that `run` and `render` share, up to those that differ.
const std::vector<OptionSpec>& stripOptions() {
  static const std::vector<OptionSpec> options{
      {u"text"_s, {u"TEXT"_s}, u"Show a line of text."_s, true},
      {u"image"_s,
       {u"FILE"_s},
       u"Show a picture; one that is larger than the strip is scaled down to it."_s,
       true},
      {u"combo"_s, {u"FILE"_s, u"TEXT"_s}, u"Show a picture followed by a text."_s, true},
      {u"sign"_s,
       {u"FILE"_s},
       u"Show a sign from its archive, with the loop count, the delay and the scrolling that it "
       u"was archived with."_s,
       true},
      {u"clock"_s,
       {u"PATTERN"_s},
       u"Show the time, as it is at each moment; \"%a %e %b %H:%M\" without a pattern."_s,
       false,
       true},
      {u"feed"_s,
       {u"URL"_s},
       u"Show the items of a feed (RSS, Atom or JSON Feed), each with its picture where it has "
       u"one, behind what the other options show. Several feeds take turns."_s,
       true},
      {u"feed-items"_s, {u"COUNT"_s}, u"The most items of each feed; 10 by default."_s},
      {u"feed-interval"_s,
       {u"MINUTES"_s},
       u"How long to wait before a feed is asked again; 30 by default, at least 5 but for servers "
       u"on this machine."_s},
      {u"tail"_s,
       {u"FILE"_s},
       u"Show the last line of a text file and each line that is appended to it, also when the "
       u"file is rotated as logs are. One that is not there is waited for."_s,
       true},
      {u"stdin"_s, {}, u"Show each line of standard input as it arrives."_s},
      {u"direction"_s,
       {u"DIRECTION"_s},
       u"Which way signs scroll."_s,
       false,
       false,
       directionWords()},
      {u"speed"_s, {u"POINTS"_s}, u"Points per second; 60 by default."_s},
      {u"font"_s,
       {u"FONT"_s},
       u"The font of texts, with or without a size in points: \"DejaVu Sans 18\", \"DejaVu "
       u"Sans\". Without a size the text takes four fifths of the strip's height; 16 points in a "
       u"vertical strip."_s},
      {u"color"_s,
       {u"COLOR"_s},
       u"The color of texts; black by default. A name such as navy, or #rrggbb, or #aarrggbb."_s},
      {u"background"_s, {u"COLOR"_s}, u"The color of the strip; white by default."_s},
      {u"autoscale"_s, {}, u"Scale texts to the height of the strip (horizontal strips)."_s},
      {u"fade"_s,
       {u"POINTS"_s},
       u"Let signs fade in and out at the ends of the strip, over so many points; 40 without a "
       u"number, off for none, which is the default."_s,
       false,
       true},
      {u"loop"_s,
       {u"COUNT"_s},
       u"How often each sign is shown: 1 or more, or forever. By default what --text, --image, "
       u"--combo, --clock and --feed show is shown forever, signs from archives as often as they "
       u"say, lines of files and of standard input once, and so is what --watch tells."_s},
      delayOption(),
      continuousOption(),
  };
  return options;
}

const QString StandardInputNote =
    u"Standard input: lines are UTF-8; bytes that are not become U+FFFD, terminal escape sequences "
    u"and control characters are left out, and so are empty lines. A line of more than 1,000,000 "
    u"characters is cut there and ends in an ellipsis. At most 1,000 lines wait, with at most "
    u"16,000,000 characters together: for a new one the line that was shown longest ago goes (with "
    u"--loop), then the oldest waiting one; a line that is on the strip stays."_s;

const QString FilesNote =
    u"Files: a line counts when its line end is there, and is taken as lines of standard input "
    u"are; what stands after the last line end is shown at the start, and again once it has grown "
    u"to a line. A file that is renamed is read to its end before the one that takes its place, "
    u"which is read from its start, as a file is that has been emptied. More than 64 MiB that come "
    u"at once are passed over, up to the last 64 MiB."_s;

const QString ClockNote =
    u"The clock: %H (00 to 23) or %I (01 to 12) with %p stand for the hour, %M for the minute, %S "
    u"for the second, %F for its thousandths; %d or %e for the day, %A or %a for its name, %j for "
    u"its number in the year; %m for the month, %B or %b for its name; %Y or %y for the year; %z "
    u"or %Z for the time zone; %x and %X for date and time as they are usually written; %% for a "
    u"percent sign. The first of two without anything between shows its letter behind it. Language "
    u"and zone are those of LC_ALL, LC_TIME or LANG, and of TZ. The text changes while it is in "
    u"sight, once a second or a minute, without moving anything; one that has become longer is cut "
    u"off until it comes again."_s;

const QString FeedNote =
    u"Feeds: the first items that a feed lists are shown, for as long as it lists them; a changed "
    u"title changes, a new item comes next. With --loop an item is shown that often and not again, "
    u"whatever the feed does. Feeds are asked again as late as --feed-interval, the feed itself "
    u"and its server ask for, within a day. What cannot be read is told in one line and tried "
    u"again, after half a minute at first, after six hours at last; the items that there are stay. "
    u"A feed that its server calls gone is not asked again. A picture may have 8 MiB and 16 "
    u"million pixels; an item waits three seconds for it. Answers are kept in the cache folder of "
    u"the user, up to 64 MiB."_s;

OptionTable makeRunTable() {
  OptionTable table;
  table.command = u"run"_s;
  table.brief = u"scroll signs over the screen; meant where no command is named"_s;
  table.summary = u"Scrolls signs over a strip at the edge of the screen. The order of the options "
                  u"is the order on the strip."_s;
  table.options = stripOptions();
  table.options.push_back(
      {u"watch"_s,
       {u"PATH"_s},
       u"Tell what happens to a file or folder: its name, and written to, attributes changed, "
       u"renamed, deleted, replaced or appeared; of a folder that its contents changed. What is "
       u"about to be told already is not told twice. The path must exist when the program starts, "
       u"and may be deleted and made again later."_s,
       true});
  table.options.push_back(
      {u"height"_s,
       {u"POINTS"_s},
       u"Height of the strip. By default 24, more where --font is larger; the screen's height for "
       u"a vertical strip, a third of it for one that floats."_s});
  table.options.push_back(
      {u"width"_s,
       {u"POINTS"_s},
       u"Width of the strip. By default the screen's width, a third of it for one "
       u"that floats; 240 for a vertical strip."_s});
  table.options.push_back(
      {u"position"_s, {u"EDGE"_s}, u"Where the strip stands."_s, false, false, edgeWords()});
  table.options.push_back({u"screen"_s,
                           {u"NAME"_s},
                           u"The screen by its name, or primary (the default). While it is not "
                           u"there the strip stands on the primary one."_s});
  table.options.push_back(
      {u"no-autoscale"_s, {}, u"Do not scale texts, where the settings say so."_s});
  table.options.push_back(
      {u"control-bar"_s, {}, u"Show the control bar, where the settings say otherwise."_s});
  table.options.push_back(
      {u"no-control-bar"_s,
       {},
       u"Show no buttons for back, pause, forward and the menu while the pointer rests on the "
       u"strip. The menu under the right mouse button has them all."_s});
  table.options.push_back({u"pause-on-hover"_s,
                           {u"SWITCH"_s},
                           u"Whether the strip stands still while the pointer rests on it."_s,
                           false,
                           false,
                           {{u"on"_s, u"the default"_s}, {u"off"_s, {}}}});
  table.options.push_back({u"reduced-motion"_s,
                           {u"SWITCH"_s},
                           u"Whether signs change page by page instead of scrolling. By default as "
                           u"the desktop's settings wish."_s,
                           false,
                           false,
                           {{u"on"_s, {}}, {u"off"_s, {}}}});
  table.options.push_back(
      {u"separate"_s,
       {},
       u"Open a strip of its own, which other programs do not reach, where a ticker runs "
       u"already."_s});
  table.options.push_back({u"no-window"_s,
                           {},
                           u"Open no window where there is nothing to show, neither here nor in "
                           u"the settings; the queue window opens otherwise."_s});
  table.options.push_back(
      {u"trace"_s,
       {u"FILE"_s},
       u"Write the time and the offset of every frame to a file, for zqticker trace check. It is "
       u"there once the program has ended."_s});
  table.options.push_back({u"help"_s, {}, u"Print this text."_s});
  table.notes = {
      StandardInputNote,
      FilesNote,
      FeedNote,
      ClockNote,
      u"The control bar appears where signs enter while the pointer rests on the strip, or with a "
      u"click or a tap. Forward goes to the start of the next sign. Back goes to the start of the "
      u"one that is leaving, or, where that has just begun to, of the one before; at most 50 signs "
      u"back, less where they are long lines, and not beyond the last change of the strip's size. "
      u"Its look is \"ControlBarButton.button\", see zqticker appearance --help."_s,
      u"The menu under the right mouse button has all that the keys do, and the directions. The "
      u"keys work while the strip has the keyboard, see zqticker focus --help; the sign that they "
      u"are about has an outline: the one chosen by Tab, else the first one in sight whose start "
      u"has not left the strip. The menu's sign is the one under the pointer. A speed or direction "
      u"that is chosen there becomes that of the settings, unless the command line has named "
      u"one."_s,
      u"A strip at an edge keeps other windows from lying under it where the window manager can do "
      u"that, and stands beside panels and other strips that were there before. One that floats is "
      u"moved with the left button of the mouse while Alt or Meta (the key with the logo) is held, "
      u"keeps its place for the next time, and covers what lies under it. No strip is larger than "
      u"the free part of its screen."_s,
      u"With reduced motion the strip stands still and shows what fits, each page for as long as "
      u"it would take to pass at --speed, and for at least three seconds. Without the option the "
      u"desktop's settings portal decides, else whether the desktop's animations are switched off; "
      u"where the desktop asks for high contrast, colors that neither options nor settings name "
      u"are those of its palette, at a contrast of at least 7:1."_s,
      u"One ticker runs in a session. Where one runs already, the program hands over what it is to "
      u"show, with its standard input, and ends at once; size, place and look stay those of the "
      u"first one. Without anything to show it waits for what other programs send, see zqticker "
      u"post --help. Where there is no session bus, every run is a ticker of its own."_s,
      u"The program ends when all signs have been shown as often as they ask for and standard "
      u"input, where it is read, has ended; on Ctrl+C; and by Quit in the menu of the control bar "
      u"and under the right mouse button. With --feed, --tail or --watch it does not end by "
      u"itself. Everything but feeds is read and checked before the window opens. Without a "
      u"display (neither DISPLAY nor WAYLAND_DISPLAY, or none that answers) the first ten seconds "
      u"are rendered as pictures into a new temporary folder, whose name is printed; of standard "
      u"input what comes until it ends, until 1,000 lines wait or until nothing has come for five "
      u"seconds is shown, of feeds what has come after five seconds, and of --tail the last lines."_s};
  table.keys = {
      {u"Space"_s, u"Pause the strip, or let it go on."_s},
      {u"Right, Left"_s,
       u"Go forward or back by one sign, where signs move to the left. In each direction the arrow "
       u"that points to where signs come from goes forward."_s},
      {u"+, -, 0"_s, u"A quarter faster, a fifth slower, the usual speed."_s},
      {u"Tab, Shift+Tab"_s, u"Choose the next sign in sight, or the one before."_s},
      {u"Return"_s, u"Open what the sign leads to."_s},
      {u"Ctrl+C"_s, u"Copy the sign's text."_s},
      {u"Delete"_s, u"Take the sign out, without moving the others."_s},
      {u"Menu, Shift+F10"_s, u"Open the menu at the sign."_s},
      {u"H"_s, u"Hide the strip, until zqticker show."_s},
      {u"Escape"_s, u"Give the keyboard back to the window that had it."_s},
      {u"Ctrl+Q"_s, u"Quit."_s}};
  table.environment = {
      {u"DISPLAY, WAYLAND_DISPLAY"_s, u"Where the strip is shown."_s},
      {u"LC_ALL, LC_TIME, LANG, TZ"_s, u"Language and time zone of the clock."_s},
      {u"http_proxy, https_proxy, all_proxy, no_proxy"_s,
       u"Proxies by which addresses are loaded."_s},
      {u"SSL_CERT_FILE"_s, u"Certificates that are trusted instead of the system's."_s}};
  table.files = {{u"$XDG_CONFIG_HOME/zqticker/settings.json"_s,
                  u"The settings; ~/.config where the variable is not set."_s},
                 {u"$XDG_CONFIG_HOME/zqticker/windows.ini"_s,
                  u"Where a floating strip and the other windows stood."_s}};
  table.exitStatus =
      u"0 when all went well, 1 for what cannot be read or done, 2 for a wrong command line."_s;
  table.examples = {
      u"zqticker --text \"Hello\" --image photo.png"_s,
      u"A text and a picture, in turn, at the bottom of the screen."_s,
      u"make 2>&1 | zqticker --stdin --speed 120"_s,
      u"What a program writes, as it is written."_s,
      u"zqticker --tail /var/log/syslog --watch /etc/hosts"_s,
      u"Every new line of a log, and each change of a file."_s,
      u"zqticker --clock \"%H:%M:%S\" --continuous"_s,
      u"The time, second by second."_s,
      u"zqticker --feed https://example.org/news.xml --feed https://example.net/atom --continuous"_s,
      u"The newest items of two feeds by turns, kept up to date."_s,
      u"zqticker run --combo sun.png \"Sunny, 24°\" --font \"DejaVu Sans 18\" --color navy "
      u"--background lightyellow"_s,
      u"A picture and a text in a font and colors of your own."_s,
      u"zqticker run --direction up --text one --text two --loop 2"_s,
      u"Two lines that scroll up at the right of the screen, twice."_s};
  return table;
}

OptionTable makeRenderTable() {
  OptionTable table;
  table.command = u"render"_s;
  table.brief = u"render the same into pictures, without a display"_s;
  table.summary =
      u"Renders the strip that `run` would show into pictures, without a display. The "
      u"same arguments give the same bytes, as long as feeds and the time do not change."_s;
  table.options = stripOptions();
  table.options.push_back(
      {u"size"_s, {u"WIDTHxHEIGHT"_s}, u"Size of the strip in points; 800x24 by default."_s});
  table.options.push_back({u"height"_s, {u"POINTS"_s}, u"Height alone."_s});
  table.options.push_back({u"width"_s, {u"POINTS"_s}, u"Width alone."_s});
  table.options.push_back({u"frames"_s, {u"COUNT"_s}, u"Number of frames; 1 by default."_s});
  table.options.push_back({u"fps"_s, {u"RATE"_s}, u"Frames per second; 30 by default."_s});
  table.options.push_back(
      {u"scale"_s, {u"FACTOR"_s}, u"Device pixels per point, such as 1.5 or 2; 1 by default."_s});
  table.options.push_back(
      {u"start"_s,
       {u"SECONDS"_s},
       u"Time of the first frame. By default 0, when the first sign stands before the edge; for a "
       u"single frame the moment at which it has reached the far edge."_s});
  table.options.push_back(
      {u"output"_s,
       {u"PATH"_s},
       u"A folder (made where missing), which receives frame-000001.png and so on, or a file whose "
       u"name ends in .png, in which the frames stand one below the other."_s});
  table.options.push_back({u"help"_s, {}, u"Print this text."_s});
  table.notes = {
      StandardInputNote,
      FeedNote,
      ClockNote,
      u"The time is that of the start in all pictures."_s,
      u"Of each --tail FILE, which must be there, the last line is shown."_s,
      u"Feeds are read once, before the first frame; one that cannot be read, or has not answered "
      u"after a minute, is an error."_s,
      u"With --stdin all lines are taken before the first frame: up to the end of standard input, "
      u"or until 1,000 lines wait. Each file is complete or not there: it is written under another "
      u"name first. The first frame shows the strip at --start, the others follow at --fps."_s};
  table.examples = {
      u"zqticker render --text \"Hello\" --size 400x24 --output hello.png"_s,
      u"One picture of the text."_s,
      u"zqticker render --text \"Hello\" --size 400x24 --scale 2 --frames 90 --fps 30 --output "
      u"frames"_s,
      u"Three seconds for a sharp screen, as frames/frame-000001.png to frame-000090.png."_s};
  return table;
}

OptionTable makeSignTable() {
  OptionTable table;
  table.command = u"sign"_s;
  table.brief = u"write a sign's archive"_s;
  table.summary = u"Writes a sign as a keyed archive, to be shown by `run --sign`: a text sign, an "
                  u"image sign, or from both a combo sign."_s;
  table.options = {
      {u"text"_s, {u"TEXT"_s}, u"The text."_s},
      {u"image"_s, {u"FILE"_s}, u"The picture."_s},
      {u"font"_s,
       {u"FONT"_s},
       u"The text's font, such as \"DejaVu Sans 18\"; 13 points where the size is missing."_s},
      {u"color"_s, {u"COLOR"_s}, u"The text's color."_s},
      {u"loop"_s, {u"COUNT"_s}, u"How often the sign is shown: 1 or more, or forever."_s},
      {u"delay"_s, {u"SECONDS"_s}, u"Seconds between two rounds."_s},
      {u"continuous"_s, {}, u"Let the next round follow directly."_s},
      {u"identifier"_s, {u"NAME"_s}, u"A name by which the sign can be replaced or removed."_s},
      {u"action"_s, {u"URL"_s}, u"The location that a click opens."_s},
      {u"output"_s, {u"FILE"_s}, u"The archive to write."_s},
      {u"help"_s, {}, u"Print this text."_s},
  };
  table.notes = {
      u"A text sign without --font and --color is shown in 12-point Helvetica and black, a combo "
      u"sign in the strip's font and color. The file is complete or not there."_s};
  table.examples = {u"zqticker sign --text \"Back at noon\" --font \"DejaVu Sans Bold 16\" --loop "
                    u"3 --output noon.sign"_s,
                    u"A text sign that is shown three times."_s, u"zqticker run --sign noon.sign"_s,
                    u"Shows it."_s};
  return table;
}

} // namespace

const OptionTable& runTable() {
  static const OptionTable table = makeRunTable();
  return table;
}

const OptionTable& renderTable() {
  static const OptionTable table = makeRenderTable();
  return table;
}

const OptionTable& signTable() {
  static const OptionTable table = makeSignTable();
  return table;
}

const std::vector<Command>& stripCommands() {
  static const std::vector<Command> commands{
      {&runTable(), CommandGroup::Screen, Application::Display, runCommand,
       // A wrong command line is wrong everywhere, with a display or without.
       [](const QStringList& arguments) -> std::optional<int> {
         readRunOptionsOver(SettingsStore::peek(), arguments);
         return std::nullopt;
       },
       runWithoutDisplay},
      {&renderTable(), CommandGroup::Screen, Application::OffscreenGui, renderCommand},
      {&signTable(), CommandGroup::Signs, Application::OffscreenGui, signCommand}};
  return commands;
}

} // namespace zq::app
