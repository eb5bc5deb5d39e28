// Numbers that cells and controls share with their archives.
#pragma once

#include <cstdint>

namespace zq::platform {

// An enumeration may hold any number: one that is unknown here is kept as it is.

enum class CellState : int { Mixed = -1, Off = 0, On = 1 };

enum class CellType : int { Null = 0, Text = 1, Image = 2 };

enum class ControlSize : int { Regular = 0, Small = 1, Mini = 2 };

// What a click on a button does to its state and its look.
enum class ButtonType : std::uint64_t {
  MomentaryLight = 0,
  PushOnPushOff = 1,
  Toggle = 2,
  Switch = 3,
  Radio = 4,
  MomentaryChange = 5,
  OnOff = 6,
  MomentaryPushIn = 7,
};

// The ways in which a cell shows that it is highlighted, or that its state is on; a set of these.
enum CellMask : unsigned {
  NoCellMask = 0,
  ContentsCellMask = 1,
  PushInCellMask = 2,
  ChangeGrayCellMask = 4,
  ChangeBackgroundCellMask = 8,
};

} // namespace zq::platform
