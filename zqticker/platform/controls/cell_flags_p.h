// Where in the flag words of an archive each property of a cell lies.
#pragma once

#include <cstdint>

namespace zq::platform {

// A run of bits of a flag word.
struct FlagBits {
  unsigned shift;
  unsigned width = 1;

  constexpr std::uint32_t mask() const { return ((1u << width) - 1) << shift; }
  constexpr std::uint32_t get(std::uint32_t word) const { return (word & mask()) >> shift; }
  constexpr bool isSet(std::uint32_t word) const { return (word & mask()) != 0; }
  constexpr void set(std::uint32_t& word, std::uint32_t value) const {
    word = (word & ~mask()) | ((value << shift) & mask());
  }
};

// NSCellFlags.
namespace cell_flags {
inline constexpr FlagBits On{31};
inline constexpr FlagBits Highlighted{30};
inline constexpr FlagBits Disabled{29};
inline constexpr FlagBits Type{26, 2};
inline constexpr FlagBits Bordered{23};
inline constexpr FlagBits Continuous{19};
// Files of older systems carry ones here, whatever the cell is.
inline constexpr FlagBits Meaningless{9, 8};
} // namespace cell_flags

// NSCellFlags2.
namespace cell_flags2 {
inline constexpr FlagBits Alignment{26, 3};
inline constexpr FlagBits AllowsMixedState{24};
inline constexpr FlagBits Mixed{23};
inline constexpr FlagBits ControlSize{17, 3};
} // namespace cell_flags2

// NSButtonFlags.
namespace button_flags {
inline constexpr FlagBits HighlightsByPushIn{31};
inline constexpr FlagBits ShowsStateByContents{30};
inline constexpr FlagBits ShowsStateByBackground{29};
inline constexpr FlagBits ShowsStateByGray{28};
inline constexpr FlagBits HighlightsByContents{27};
inline constexpr FlagBits HighlightsByBackground{26};
inline constexpr FlagBits HighlightsByGray{25};
inline constexpr FlagBits Bordered{23};
inline constexpr FlagBits Transparent{15};
inline constexpr FlagBits Inset{13, 2};
} // namespace button_flags

// NSButtonFlags2.
namespace button_flags2 {
inline constexpr FlagBits BezelStyleLow{0, 3};
inline constexpr FlagBits BezelStyleHigh{5};
} // namespace button_flags2

} // namespace zq::platform
