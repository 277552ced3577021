// What the three platform libraries show each other and the tool; everything else stays inside its library.
#pragma once

#define SIMULATOR_API __attribute__((visibility("default")))

#pragma GCC visibility push(default)
#include "platform/call_text.h"
#include "platform/operations.h"
#include "platform/platform.h"
#pragma GCC visibility pop

namespace simulator {
using namespace operations;
}
