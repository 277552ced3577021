// What the receivers' equalisers have adapted to, beside the error counts.
#pragma once

#include <cstdint>

#include "arguments/cmd_status.h"

CmdStatus showDFEStatsCmdHandler(int wordCount, char* words[]);

// Prints a count as a five-character cell: up to 9999 as it is, above as mantissa and exponent ("2e04 ").
void printCompactCount(std::uint64_t value);
