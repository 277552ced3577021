// Fuzzes the simulated switch with its description, a state that it goes on from, and the operations that follow.
//
// Input: the text of a description, a NUL byte, the text of the records of a state, a NUL byte, and operations: a byte
// for each, which says which, and as many bytes of arguments as it has. A missing part is empty, a missing byte is 0.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "simulator/calls/session.h"
#include "simulator/state/text.h"
#include "tests/fuzz/replay.h"

using namespace simulator;
using enum Operation;

namespace {

constexpr int kMostOperations = 60;
constexpr const char* kName = "fuzz.toml";

int description = -1;  // a file in memory, which the session opens by its name
std::set<std::string> reached;

struct Bytes {
  const std::uint8_t* at;
  const std::uint8_t* end;

  bool isEmpty() const {
    return at == end;
  }
  std::uint8_t next() {
    return isEmpty() ? 0 : *at++;
  }
  // Small numbers mostly; above 250 what no switch has.
  unsigned number() {
    const unsigned value = next();
    return value > 250 ? UINT32_MAX - (255 - value) : value;
  }
  int whole() {
    return static_cast<signed char>(next());
  }
  // The text up to the next NUL byte, which is left out.
  std::string text() {
    const std::uint8_t* const nul = std::find(at, end, 0);
    std::string result(at, nul);
    at = nul == end ? end : nul + 1;
    return result;
  }
};

void insist(bool holds, const std::string& what) {
  if (holds) return;
  (void)std::fprintf(stderr, "not so: %s\n", what.c_str());
  std::abort();
}

// "FILE:LINE: what", whatever the text.
void insistOnPlace(const std::string& message) {
  const std::string start = std::string(kName) + ':';
  const std::size_t digits = message.find_first_not_of("0123456789", start.size());
  insist(message.starts_with(start) && digits > start.size() && digits != std::string::npos &&
             message.compare(digits, 2, ": ") == 0 && message.size() > digits + 2,
         message);
}

int callOnLink(Operation operation, unsigned asic, unsigned port, Bytes& in) {
  const int link = in.whole();
  unsigned char k = in.next();
  signed char c[4] = {};
  unsigned short registers[256] = {};
  bool truth = in.next() % 2 != 0;
  SerDesTxFFEMode ffe{};
  SerDesTxSlewRate slew{};
  SerDesRxDFEMode dfe{};
  SerDesRxDFEState state{};
  SerDesRxDFEStats stats;
  int status = 0;
  const auto side = static_cast<SerDesLinkType>(in.next() % 3);
  switch (operation) {
    case kReadSerDesLinkRegister:
      return AsicControl::ReadSerDesLinkRegister(asic, port, link, side, k, registers, in.next());
    case kWriteSerDesLinkRegister:
      return AsicControl::WriteSerDesLinkRegister(asic, port, link, side, k,
                                                  static_cast<unsigned short>(in.next() << 8 | in.next()));
    case kSetSerDesTxFFE:
      for (signed char& tap : c)
        tap = static_cast<signed char>(in.whole());
      return AsicControl::SetSerDesTxFFE(asic, port, link, static_cast<SerDesTxFFEMode>(in.next()), k, c[0], c[1], c[2],
                                         c[3]);
    case kGetSerDesTxFFE:
      return AsicControl::GetSerDesTxFFE(asic, port, link, &ffe, &k, c, c + 1, c + 2, c + 3);
    case kSetSerDesTxSlew:
      return AsicControl::SetSerDesTxSlew(asic, port, link, truth, static_cast<SerDesTxSlewRate>(k));
    case kGetSerDesTxSlew:
      return AsicControl::GetSerDesTxSlew(asic, port, link, &truth, &slew);
    case kSetSerDesRxDFE:
      return AsicControl::SetSerDesRxDFE(asic, port, link, static_cast<SerDesRxDFEMode>(k));
    case kGetSerDesRxDFE:
      return AsicControl::GetSerDesRxDFE(asic, port, link, &dfe);
    case kSetSerDesRxVGA:
      for (signed char& value : c)
        value = static_cast<signed char>(in.whole());
      return AsicControl::SetSerDesRxVGA(asic, port, link, c[0], c[1], c[2]);
    case kGetSerDesRxVGA:
      return AsicControl::GetSerDesRxVGA(asic, port, link, c, c + 1, c + 2);
    case kSetSerDesRxDFEState:
      state.mode = static_cast<SerDesRxDFEMode>(k % 5);
      for (auto& tap : state.h)
        tap = static_cast<std::int16_t>(in.whole());
      return AsicControl::SetSerDesRxDFEState(asic, port, link, truth ? &state : nullptr);
    case kGetSerDesRxDFEStats:
      return AsicControl::GetSerDesRxDFEStats(asic, port, link, &stats);
    case kSetSerDesTestOption:
      return AsicControl::SetSerDesTestOption(asic, port, link, static_cast<SerDesTestOption>(k % 12), in.whole());
    default:
      return AsicControl::GetSerDesTestStatus(asic, port, link, static_cast<SerDesTestOption>(k % 12), &status);
  }
}

int callOnPort(Operation operation, unsigned asic, unsigned port, Bytes& in) {
  const port_id_t id = {.userPort = static_cast<std::uint16_t>(in.next() % 2 == 0 ? kNoUserPort : in.next()),
                        .asic = static_cast<std::uint16_t>(asic),
                        .asicPort = static_cast<std::uint16_t>(port),
                        .unused = {}};
  const unsigned choice = in.number();
  const auto rate = static_cast<port_speed_type>(choice);
  SerDesTxRateParams tx{};
  SerDesRxRateParams rx{};
  Port_HW_Config_t config;
  unsigned long info = 0;
  unsigned speed = 0;
  MediaHwFcXmtrType media{};
  bool truth = false;
  drv_counters_t counters;
  switch (operation) {
    case kSetSerDesTxRateParams:
      for (std::int32_t* field : {&tx.power, &tx.slew, &tx.mode, &tx.p0, &tx.p1, &tx.p2, &tx.p3})
        *field = in.whole();
      return AsicControl::SetSerDesTxRateParams(asic, port, rate, tx);
    case kGetSerDesTxRateParams:
      return AsicControl::GetSerDesTxRateParams(asic, port, rate, &tx);
    case kSetSerDesRxRateParams:
      for (std::int32_t* field : {&rx.mode, &rx.p0, &rx.p1, &rx.p2, &rx.p3})
        *field = in.whole();
      return AsicControl::SetSerDesRxRateParams(asic, port, rate, rx);
    case kGetSerDesRxRateParams:
      return AsicControl::GetSerDesRxRateParams(asic, port, rate, &rx);
    case kGetPortHwConfig:
      return PortControl::GetPortHwConfig(id, &config);
    case kGetPortInfo:
      return PortControl::GetPortInfo(id, static_cast<port_info_t>(choice % 2), &info);
    case kSetPortCfgSpeed:
      return PortControl::SetPortCfgSpeed(id, choice);
    case kGetPortCfgSpeed:
      return PortControl::GetPortCfgSpeed(id, &speed);
    case kGetPortSpeed:
      return PortControl::GetPortSpeed(id, &speed);
    case kGetMediaHwFcXmtrType:
      return PortControl::GetMediaHwFcXmtrType(id, &media);
    case kTxStreamEnable:
      return PortControl::TxStreamEnable(id, choice % 2 != 0);
    case kTxStreamState:
      return PortControl::TxStreamState(id, &truth);
    case kGetFrameStatCntrs:
      return PortControl::GetFrameStatCntrs(id, &counters);
    default:
      return PortControl::ClrFrameStatCntrs(id);
  }
}

int callOnCore(Operation operation, unsigned asic, unsigned core, Bytes& in) {
  unsigned counts[5];
  unsigned short first = 0;
  unsigned short registers[256] = {};
  SerDesType type{};
  const unsigned char address = in.next();
  switch (operation) {
    case kReadSerDesPLLRegister:
      return AsicControl::ReadSerDesPLLRegister(asic, core, address, registers, in.next());
    case kWriteSerDesPLLRegister:
      return AsicControl::WriteSerDesPLLRegister(asic, core, address, static_cast<unsigned short>(in.next()));
    default:
      return AsicControl::GetSerDesInfo(asic, core, &first, &type, counts, counts + 1, counts + 2, counts + 3,
                                        counts + 4);
  }
}

int call(Operation operation, Bytes& in) {
  const Addressed& addressed = operationInfo(operation).addressed;
  const unsigned asic = addressed.asic ? in.number() : 0;
  const unsigned place = addressed.port || addressed.core ? in.number() : 0;
  unsigned counts[2];
  Switch_HW_Config_t config;
  SerDesType type{};
  switch (operation) {
    case kAsicCtlOpen:
      return AsicControl::AsicCtlOpen();
    case kAsicCtlClose:
      return AsicControl::AsicCtlClose();
    case kPortCtlOpen:
      return PortControl::PortCtlOpen();
    case kPortCtlClose:
      return PortControl::PortCtlClose();
    case kGetSwitchConfig:
      return AsicControl::GetSwitchConfig(&config);
    case kToString:
      (void)AsicControl::ToString(static_cast<SerDesType>(in.number()));
      return 0;
    case kGetSerDesInfoOfAsic:
      return AsicControl::GetSerDesInfo(asic, counts, counts + 1);
    case kGetSerDesInfoOfPort:
      return AsicControl::GetSerDesInfo(asic, place, static_cast<SerDesLinkType>(in.next()), counts, &type, counts + 1);
    default:
      if (addressed.link) return callOnLink(operation, asic, place, in);
      return addressed.core ? callOnCore(operation, asic, place, in) : callOnPort(operation, asic, place, in);
  }
}

// Records between a head and an end that are in order. Bad ones are refused and change nothing.
void importRecords(Switch& theSwitch, const StartState& start, const std::string& records) {
  const std::string empty = stateText(start, start.records);
  const std::string body = empty.substr(0, empty.rfind("# whole ")) + records;
  const std::vector<StateRecord> before = theSwitch.exportState();
  try {
    if (theSwitch.importState(readStateText(body + stateEndLine(body), kName, start))) return;
  } catch (const StateError&) {
  }
  insist(theSwitch.exportState() == before, "a refused state changes nothing");
}

void runOperations(Bytes& in) {
  for (int i = 0; i < kMostOperations && !in.isEmpty(); ++i) {
    const Operation operation = allOperations()[in.next() % allOperations().size()].operation;
    insist(call(operation, in) <= 0, "a result above 0");
    reached.insert(std::string(operationInfo(operation).symbol));
  }
}

// What the switch is now comes back from its text.
void checkState(const Switch& theSwitch, const SwitchDescription& described, const StartState& start) {
  const std::vector<StateRecord> now = theSwitch.exportState();
  Switch other(described);
  const bool isTaken = other.importState(readStateText(stateText(start, now), kName, start));
  insist(isTaken && other.exportState() == now, "a state comes back as it was");
}

}  // namespace

void addReached(std::set<std::string>& operations) {
  operations.insert(reached.begin(), reached.end());
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  description = memfd_create("description", 0);
  const std::string path = "/proc/self/fd/" + std::to_string(description);
  (void)unsetenv("SERDES_SIMULATOR_STATE");
  (void)unsetenv("SERDES_SIMULATOR_TRACE");
  (void)setenv("SERDES_SIMULATOR_CLOCK", "virtual:100000", 1);  // the same again, whatever the description says
  return description < 0 || setenv("SERDES_SIMULATOR_SWITCH", path.c_str(), 1) != 0 ? 1 : 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Bytes in = {data, data + size};
  const std::string text = in.text();
  const std::string records = in.text();
  SwitchDescription described;
  try {
    described = readDescription(text, kName);
  } catch (const DescriptionError& error) {
    insistOnPlace(error.what());
    return 0;
  }
  const StartState start(Switch(described).exportState(), described.fingerprint);
  insist(ftruncate(description, 0) == 0 &&
             pwrite(description, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size()),
         "the description is written");
  (void)AsicControl::AsicCtlOpen();
  (void)PortControl::PortCtlOpen();
  Session& session = Session::instance();
  if (session.any() != nullptr) importRecords(*session.any(), start, records);
  runOperations(in);
  if (session.any() != nullptr) checkState(*session.any(), described, start);
  session = {};  // faults may have left it open
  return 0;
}
