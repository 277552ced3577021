// Standard output that tells when it can no longer be written.
#pragma once

#include <cstdio>

// Flushes `output`; the first time that anything written to it was lost, says so on standard error.
void flushOutput(std::FILE* output);

// Says so on standard error if anything written to `output` has been lost, once for the whole process. Does not flush.
void reportLostOutput(std::FILE* output);

// True when output has been lost.
bool outputLost();
