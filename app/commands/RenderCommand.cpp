#include "app/commands/RenderCommand.h"

#include "app/commands/failures.h"
#include "app/commands/file_following.h"
#include "app/commands/frame_files.h"
#include "app/commands/interrupts.h"
#include "app/commands/strip_setup.h"
#include "app/intake/LineReader.h"

#include <QtCore/QFileInfo>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr QSizeF UsualSize(800, 24);
// Pixels of a frame.
constexpr double LargestFrame = 1 << 26;

bool isPictureFile(const QString& output) {
  return output.endsWith(".png"_L1, Qt::CaseInsensitive) && !QFileInfo(output).isDir();
}

void takeLines(TickerDisplay& display, const LoopRule& rule, double patienceSeconds) {
  readLines(
      STDIN_FILENO, [&](const QString& line) { display.addLine(line, 0, rule); },
      [&] { return display.waitingLineCount() >= TickerDisplay::MostLines; }, patienceSeconds);
}
} // namespace

void render(const RenderOptions& options, const RenderPatience& patience, Interrupts& interrupts) {
  TickerDisplay display;
  const QString argument = u"--output "_s + quotedForMessage(options.output);
  const StripLook look = lookOf(options.strip, UsualSize);
  const QSizeF pixels = look.size * options.scale;
  if (pixels.width() * pixels.height() > LargestFrame)
    throw RunTimeError(
        u"--size, --scale: frames of %1 x %2 pixels are too large"_s.arg(pixels.width(), 0, 'f', 0)
            .arg(pixels.height(), 0, 'f', 0));
  const bool isSheet = isPictureFile(options.output);
  display.setScale(options.scale);
  fillDisplay(display, options.strip, look, 0);
  takeLastLines(display, options.strip,
                patience.feedFailure == FeedFailure::Ends ? MissingFiles::Fail
                                                          : MissingFiles::AreAwaited);
  if (options.strip.readsStandardInput)
    takeLines(display, lineRuleOf(options.strip), patience.forLines);
  loadFeeds(display, options.strip, look, options.scale, patience.forFeeds, patience.feedFailure,
            interrupts);

  FrameSeries series{options.frames, options.framesPerSecond, 0, options.strip.background};
  const double extent = options.strip.isHorizontal() ? look.size.width() : look.size.height();
  if (options.start)
    series.start = *options.start;
  else if (options.frames == 1)
    series.start = extent / options.strip.speed;
  if (isSheet)
    writeFrameSheet(display, series, argument, options.output);
  else
    writeFrameFolder(display, series, argument, options.output);
}

int renderCommand(const QStringList& arguments) {
  Interrupts interrupts;
  render(readRenderOptions(arguments), RenderPatience(), interrupts);
  return Success;
}

} // namespace zq::app
