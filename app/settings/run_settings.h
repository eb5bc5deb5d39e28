// Settings under the options of a command line.
#pragma once

#include "app/settings/Settings.h"

namespace zq::app {

// Gives `options` what the settings say, but for what the command line has said. Feeds are taken
// where it names nothing to show. Called again with other settings, these take the place of the
// first.
void adoptSettings(RunOptions& options, const Settings& settings);

// Leaves out a font of the settings that is not there, with a line of the category
// zqticker.settings. Needs a QGuiApplication.
void leaveOutUnknownFont(RunOptions& options);

// RunTimeError where the command line names a screen that is not there. Needs a QGuiApplication.
void requireScreen(const RunOptions& options);

} // namespace zq::app
