// Values that say how a strip looks and what feeds it, read in one way for the options of the
// command line and for settings. UsageError naming the option for what cannot be read.
#pragma once

#include "app/commands/OptionTable.h"
#include "app/commands/StripOptions.h"

#include <QtCore/QUrl>

#include <vector>

namespace zq::app {

// Sides of a strip in points.
inline constexpr double ShortestSide = 1;
inline constexpr double LongestSide = 16'384;
// Points per second.
inline constexpr double SlowestSpeed = 0.1;
inline constexpr double FastestSpeed = 100'000;
// Points of an end of a strip that fades, where nothing else is said.
inline constexpr double UsualFade = 40;
inline constexpr qint64 MostFeedItems = 1000;
// Minutes.
inline constexpr double ShortestInterval = 0.001;
inline constexpr double LongestInterval = 10'080;

// The options --delay and --continuous, which mean the same wherever signs are shown again.
const OptionSpec& delayOption();
const OptionSpec& continuousOption();

// The words that stand for directions and edges.
const std::vector<AllowedWord>& directionWords();
const std::vector<AllowedWord>& edgeWords();

// The word that is written for a direction.
QString wordOf(ScrollDirection direction);

ScrollDirection directionOf(const ParsedOption& option);
bool isOnOf(const ParsedOption& option);
double speedOf(const ParsedOption& option);
double sideOf(const ParsedOption& option);
// Points over which the ends of a strip fade; 0 for "off" and for 0.
double fadeOf(const ParsedOption& option);
// The word or the number that is written for it.
QString textOfFade(double points);
// A font as written; whether there is such a font is for findFont.
FontRequest fontOf(const ParsedOption& option);
Edge edgeOf(const ParsedOption& option);
// The name of a screen as the window system tells it; empty for "primary". Whether it is there
// is seen when the strip takes its place.
QString screenOf(const ParsedOption& option);
// An address that can be loaded, and is not among `before`.
QUrl feedOf(const ParsedOption& option, const std::vector<QUrl>& before);
std::size_t feedItemsOf(const ParsedOption& option);
double feedIntervalOf(const ParsedOption& option);

} // namespace zq::app
