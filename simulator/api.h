// What the three platform libraries show each other and the tool; everything else stays inside its library.
#pragma once

#define SIMULATOR_API __attribute__((visibility("default")))

#pragma GCC visibility push(default)
#include "platform/platform.h"
#pragma GCC visibility pop
