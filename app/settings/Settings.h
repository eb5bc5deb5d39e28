// What the user has chosen for every run of the ticker.
#pragma once

#include "app/commands/StripOptions.h"

namespace zq::app {

// Values as the settings file, `zqticker settings` and the settings window know them; see
// settingTable(). As it is made it holds the defaults.
struct Settings {
  ScrollDirection direction = ScrollDirection::Left;
  double speed = 60; // points per second
  std::optional<FontRequest> font;
  std::optional<QColor> color;
  QColor background = Qt::white;
  // One that does not fit the direction counts as Automatic.
  Edge position = Edge::Automatic;
  QString screen; // its name; empty for the primary one
  std::optional<double> height;
  std::optional<double> width;
  bool autoscale = false;
  double fade = 0; // points at the ends of the strip; 0 for none
  bool showsControlBar = true;
  bool pausesOnHover = true;         // while the pointer rests on the strip
  std::optional<bool> reducesMotion; // nothing for as the desktop wishes
  FeedOptions feeds;
  bool startsWithSession = false; // kept by Autostart, not in the file

  bool operator==(const Settings&) const = default;
};

} // namespace zq::app
