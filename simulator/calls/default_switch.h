// The built-in switch description: the text of switches/default.toml, compiled in.
#pragma once

extern const char kDefaultSwitchToml[];
