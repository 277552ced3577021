// What the receivers' equalisers have adapted to, beside the error counts.
#pragma once

#include <array>
#include <cstdint>

#include "arguments/cmd_status.h"

CmdStatus showDFEStatsCmdHandler(int wordCount, char* words[]);

// The rows of the taps: of types whose taps come in pairs, and of those with single ones.
inline constexpr std::array<const char*, 10> evenOddTapNames = {"H1_Even", "H1_Odd",  "H2_Even", "H2_Odd",  "H3_Even",
                                                                "H3_Odd",  "H4_Even", "H4_Odd",  "H5_Even", "H5_Odd"};
inline constexpr std::array<const char*, 5> tapNames = {"H1", "H2", "H3", "H4", "H5"};

// Prints a count as a five-character cell: up to 9999 as it is, above as mantissa and exponent ("2e04 ").
void printCompactCount(std::uint64_t value);
