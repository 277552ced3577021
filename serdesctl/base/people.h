// Who runs this program, where, and when: for locks and journals.
#pragma once

#include <chrono>
#include <string>

namespace serdesctl {

using UtcTime = std::chrono::sys_time<std::chrono::microseconds>;

UtcTime utcNow();

// "2025-11-21T21:13:04.123456Z"
std::string utcText(UtcTime time);

// The user's name; who came through sudo is named by both: "alice as root".
std::string userName();

std::string hostName();

// Where the user's session comes from: the address of an ssh client, else the terminal, else nothing.
std::string origin();

}  // namespace serdesctl
