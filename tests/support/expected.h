// What a command is expected to do, written short.
#pragma once

#include <algorithm>
#include <initializer_list>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/tool_test.h"

namespace recording {

// Success that prints nothing.
inline Outcome done(Calls calls) {
  return {CMD_OK, "", std::move(calls)};
}

inline Outcome printed(std::string out, Calls calls) {
  return {CMD_OK, std::move(out), std::move(calls)};
}

// Refused before anything was printed or called.
inline Outcome refused(CmdStatus status) {
  return {status, "", {}};
}

// Ended by a platform failure; `out` is the error line.
inline Outcome failed(std::string out, Calls calls) {
  return {CMD_EXEC_ERROR, std::move(out), std::move(calls)};
}

inline Calls operator+(Calls first, const Calls& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

// One after the other; the second gives the status.
inline Outcome operator+(const Outcome& first, const Outcome& second) {
  return {second.status, first.out + second.out, first.calls + second.calls};
}

using Numbers = std::vector<unsigned>;

// The call once per number, which stands where `call` has a '%'.
inline Calls perNumber(const std::string& call, const Numbers& numbers) {
  Calls calls;
  for (const unsigned number : numbers)
    calls.push_back(std::string(call).replace(call.find('%'), 1, std::to_string(number)));
  return calls;
}

// What a table header asks about ports whose running rate is valid; a port is written user/ASIC/port.
inline Calls headerQuestions(std::initializer_list<const char*> ports) {
  Calls calls;
  for (const std::string port : ports) {
    calls.push_back("GetPortInfo(" + port + ", 0)");
    calls.push_back("GetPortCfgSpeed(" + port + ")");
    calls.push_back("GetPortSpeed(" + port + ")");
    calls.push_back("GetMediaHwFcXmtrType(" + port + ")");
  }
  return calls;
}

// The same for one port that does not run: its running rate is not asked for.
inline Calls idleHeaderQuestions(const std::string& port) {
  return {"GetPortInfo(" + port + ", 0)", "GetPortCfgSpeed(" + port + ")", "GetMediaHwFcXmtrType(" + port + ")"};
}

// A port without a configured speed and in a state without a running one.
inline void makeIdle(Port& port) {
  port.state = 0;
  port.configuredSpeed = SPEED_AUTO;
}

// A port as its calls write it.
inline std::string idOf(unsigned port) {
  const port_id_t id = platform.ports[port].hwConfig.portId;
  return std::to_string(id.userPort) + "/" + std::to_string(id.asic) + "/" + std::to_string(id.asicPort);
}

// What the head of a table asks about these ports as they are: idle ones, and others that run.
inline Calls headQuestions(const Numbers& ports) {
  Calls calls;
  for (const unsigned p : ports) {
    const Port& port = platform.ports[p];
    const bool idle = port.state != kPortStateRunning && port.configuredSpeed == SPEED_AUTO;
    calls = calls + (idle ? idleHeaderQuestions(idOf(p)) : headerQuestions({idOf(p).c_str()}));
  }
  return calls;
}

// The head of a table of these ports as they are: a column per transmit link. Ports are optical and run at 8G or not.
inline std::string tableHead(const std::string& title, const Numbers& ports) {
  const auto padded = [](std::string text, std::size_t width, bool left) {
    const std::string blanks(text.size() < width ? width - text.size() : 0, ' ');
    return left ? text + blanks : blanks + text;
  };
  std::string rule, numbers, users, links, rates, media;
  for (const unsigned p : ports) {
    const Port& port = platform.ports[p];
    const unsigned user = port.hwConfig.portId.userPort;
    const bool idle = port.state != kPortStateRunning && port.configuredSpeed == SPEED_AUTO;
    for (unsigned link = 0; link < std::min(port.tx.linkCount, 4u); ++link) {
      rule += "==== ";
      numbers += padded(std::to_string(p), 4, false) + " ";
      users += padded(user == kNoUserPort ? "N/A" : std::to_string(user), 4, false) + " ";
      links += padded(std::to_string(link), 4, false) + " ";
      rates += idle ? "  INV" : "   8G";
      media += "  OPT";
    }
  }
  return "\n" + padded(title, 19, true) + " \n=================== " + rule + "\nASIC port           " + numbers +
         "\nuser port           " + users + "\nlink num            " + links + "\nrunning rate       " + rates +
         "\nmedia type         " + media + "\n=================== " + rule + "\n";
}

// A table of these ports: everything is read before the head asks.
inline Outcome table(const std::string& title, const Numbers& ports, const Calls& reads, const std::string& rows) {
  return printed(tableHead(title, ports) + rows, reads + headQuestions(ports));
}

// One of the tables by SerDes type, with columns for `ports`. Its head asks about all that were selected.
inline Outcome typeTable(unsigned type, const Numbers& ports, const std::string& rows, const Numbers& selected) {
  const auto name = platform.typeNames.find(type);
  return printed(tableHead(name == platform.typeNames.end() ? "UNK" : name->second, ports) + rows,
                 headQuestions(selected) + Calls{"ToString(" + std::to_string(type) + ")"});
}

inline Outcome typeTable(unsigned type, const Numbers& ports, const std::string& rows) {
  return typeTable(type, ports, rows, ports);
}

// A command line that is refused without a platform call.
struct Refusal {
  const char* line;
  CmdStatus status;
};

inline void expectRefusals(std::initializer_list<Refusal> refusals) {
  for (const Refusal& refusal : refusals)
    EXPECT_EQ(run(refusal.line), refused(refusal.status)) << refusal.line;
}

}  // namespace recording
