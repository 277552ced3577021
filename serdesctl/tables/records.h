// What the tool prints, as records: the field's terms, the unit in the name where there is one. Nothing stands for what
// was printed blank, or not at all. eachField() calls visit(name, value) for every field of a record, in order: JSON,
// CSV and whatever else is made of records stands on it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/platform.h"
#include "serdesctl/tables/config_text.h"

namespace serdesctl {

// Who a record of a table by port is about, and how that port runs.
struct Link {
  std::optional<std::uint32_t> asic;
  std::uint32_t port = 0;
  std::optional<std::uint32_t> userPort;
  std::uint32_t link = 0;
  std::optional<std::string> serDesType;   // its name
  std::optional<std::string> runningRate;  // nothing where the table's head does not show the port
  std::optional<std::string> media;
};

// A record of a table by port: its place, and groups of values.
template <typename... Groups>
struct LinkRecord : Link, Groups... {};

struct RateValues {
  std::string configRate;
  bool streamEnabled = false;
};

struct FfeValues {
  std::optional<std::string> ffeMode;
  std::optional<std::int32_t> k;
  std::optional<std::int32_t> c0;
  std::optional<std::int32_t> c1;
  std::optional<std::int32_t> c2;
  std::optional<std::int32_t> c3;

  bool operator==(const FfeValues&) const = default;
};

struct SlewValue {
  std::optional<std::int32_t> slewPs;  // nothing also for an unknown slew rate

  bool operator==(const SlewValue&) const = default;
};

// The rate that a cache is for.
struct CacheRate {
  std::string rate;
};

struct CacheInterfaceAndRate {
  std::string interface;
  std::string rate;
};

struct TxRawValues {
  std::int32_t power = 0;
  std::int32_t slew = 0;
  std::int32_t mode = 0;
  std::array<std::int32_t, 4> p{};

  bool operator==(const TxRawValues&) const = default;
};

struct EthernetTxValues {
  std::int32_t k = 0;
  std::int32_t preEmphasis = 0;
};

struct DfeModeValue {
  std::optional<std::string> dfeMode;

  bool operator==(const DfeModeValue&) const = default;
};

struct VgaValues {
  std::optional<std::int32_t> pole;
  std::optional<std::int32_t> peak;
  std::optional<std::int32_t> amax;

  bool operator==(const VgaValues&) const = default;
};

struct RxRawValues {
  std::int32_t mode = 0;
  std::array<std::int32_t, 4> p{};

  bool operator==(const RxRawValues&) const = default;
};

struct EthernetRxValues {
  std::int32_t cdrMode = 0;
  std::int32_t eqMode = 0;
};

// A counter. The tool shortens large ones to a digit and a power of ten: between the bounds lies what was counted.
struct Count {
  double number = 0;  // as printed
  std::uint64_t lowest = 0;
  std::uint64_t highest = 0;

  bool exact() const {
    return lowest == highest;
  }
};

// H1_Even, H1_Odd, ... of types 2 and 5, H1 to H5 of type 3; no values for the layout that a type does not have, and
// none at all for a type that the tool cannot lay out.
struct DfeStatsValues {
  std::array<std::optional<std::int32_t>, kDfeTapCount> evenOddTaps;
  std::array<std::optional<std::int32_t>, kDfeTapCount / 2> taps;
  std::optional<std::int32_t> ap;
  std::optional<std::int32_t> amin;
  std::optional<std::int32_t> an;
  std::optional<Count> decodeErrors;  // the port's, the same for each of its links
  std::optional<Count> crcErrors;
};

// By address, from 0 on.
template <SerDesLinkType kSide>
struct RegisterValues {
  std::vector<std::uint16_t> registers;
};

using Rate = LinkRecord<RateValues>;
using Ffe = LinkRecord<FfeValues>;
using Slew = LinkRecord<SlewValue>;
using TxParams = LinkRecord<FfeValues, SlewValue>;
using TxCache = LinkRecord<CacheRate, FfeValues, SlewValue>;
using TxCacheRaw = LinkRecord<CacheInterfaceAndRate, TxRawValues>;
using EthernetTxCache = LinkRecord<CacheRate, EthernetTxValues>;
using Dfe = LinkRecord<DfeModeValue>;
using Vga = LinkRecord<VgaValues>;
using RxParams = LinkRecord<DfeModeValue, VgaValues>;
using RxCache = LinkRecord<CacheRate, DfeModeValue, VgaValues>;
using RxCacheRaw = LinkRecord<CacheInterfaceAndRate, RxRawValues>;
using EthernetRxCache = LinkRecord<CacheRate, EthernetRxValues>;
using DfeStats = LinkRecord<DfeStatsValues>;
using TxRegisters = LinkRecord<RegisterValues<SERDES_LINK_TX>>;
using RxRegisters = LinkRecord<RegisterValues<SERDES_LINK_RX>>;

struct PllRegisters {
  std::optional<std::uint32_t> asic;
  std::uint32_t core = 0;
  std::string serDesType;
  std::vector<std::uint16_t> registers;
};

// One register of a link. Port, link and address are the numbers that were typed.
template <SerDesLinkType kSide>
struct RegisterValue {
  std::optional<std::uint32_t> asic;
  std::int32_t port = 0;
  std::optional<std::uint32_t> userPort;
  std::int32_t link = 0;
  std::uint32_t address = 0;
  std::uint16_t value = 0;
};
using TxRegister = RegisterValue<SERDES_LINK_TX>;
using RxRegister = RegisterValue<SERDES_LINK_RX>;

struct PllRegister {
  std::optional<std::uint32_t> asic;
  std::int32_t core = 0;
  std::uint32_t address = 0;
  std::uint16_t value = 0;
};

// Port, link and option are known where the command is.
struct TestStatus {
  std::optional<std::uint32_t> asic;
  std::optional<std::int32_t> port;
  std::optional<std::int32_t> link;
  std::optional<std::int32_t> option;
  std::int32_t status = 0;
};

// A row of the command list.
struct CommandRow {
  std::string name;
  std::string arguments;
  std::string shortcut;
};

// A command's own help.
struct CommandHelp {
  std::string name;
  std::string arguments;
  std::string shortcut;
  std::string description;
  std::string example;
  std::string note;
};

// The records of one answer; monostate for a command that prints none.
using Records =
    std::variant<std::monostate, std::vector<Rate>, std::vector<Ffe>, std::vector<Slew>, std::vector<TxParams>,
                 std::vector<TxCache>, std::vector<TxCacheRaw>, std::vector<EthernetTxCache>, std::vector<Dfe>,
                 std::vector<Vga>, std::vector<RxParams>, std::vector<RxCache>, std::vector<RxCacheRaw>,
                 std::vector<EthernetRxCache>, std::vector<DfeStats>, std::vector<TxRegisters>,
                 std::vector<RxRegisters>, std::vector<PllRegisters>, std::vector<TxRegister>, std::vector<RxRegister>,
                 std::vector<PllRegister>, std::vector<TestStatus>, std::vector<CommandRow>, std::vector<CommandHelp>,
                 ConfigText, DiscoveryText, StartText>;

// What records of each kind are called, in the order of the variant.
inline constexpr std::array<const char*, std::variant_size_v<Records>> kKindNames = {
    "none",         "rate",
    "ffe",          "slew",
    "tx_params",    "tx_cache",
    "tx_cache_raw", "ethernet_tx_cache",
    "dfe",          "vga",
    "rx_params",    "rx_cache",
    "rx_cache_raw", "ethernet_rx_cache",
    "dfe_stats",    "tx_registers",
    "rx_registers", "pll_registers",
    "tx_register",  "rx_register",
    "pll_register", "test_status",
    "commands",     "command_help",
    "config",       "cores",
    "start"};

inline const char* kindName(const Records& records) {
  return kKindNames[records.index()];
}

template <typename Visit>
void eachField(const Link& r, Visit&& visit) {
  visit("asic", r.asic);
  visit("port", r.port);
  visit("user_port", r.userPort);
  visit("link", r.link);
  visit("serdes_type", r.serDesType);
  visit("running_rate", r.runningRate);
  visit("media", r.media);
}

template <typename Visit>
void eachField(const RateValues& r, Visit&& visit) {
  visit("config_rate", r.configRate);
  visit("stream_enabled", r.streamEnabled);
}

template <typename Visit>
void eachField(const FfeValues& r, Visit&& visit) {
  visit("ffe_mode", r.ffeMode);
  visit("k", r.k);
  visit("c0", r.c0);
  visit("c1", r.c1);
  visit("c2", r.c2);
  visit("c3", r.c3);
}

template <typename Visit>
void eachField(const SlewValue& r, Visit&& visit) {
  visit("slew_ps", r.slewPs);
}

template <typename Visit>
void eachField(const CacheRate& r, Visit&& visit) {
  visit("rate", r.rate);
}

template <typename Visit>
void eachField(const CacheInterfaceAndRate& r, Visit&& visit) {
  visit("interface", r.interface);
  visit("rate", r.rate);
}

template <typename Visit>
void eachField(const TxRawValues& r, Visit&& visit) {
  visit("power", r.power);
  visit("slew", r.slew);
  visit("mode", r.mode);
  visit("p0", r.p[0]);
  visit("p1", r.p[1]);
  visit("p2", r.p[2]);
  visit("p3", r.p[3]);
}

template <typename Visit>
void eachField(const EthernetTxValues& r, Visit&& visit) {
  visit("k", r.k);
  visit("pre_emphasis", r.preEmphasis);
}

template <typename Visit>
void eachField(const DfeModeValue& r, Visit&& visit) {
  visit("dfe_mode", r.dfeMode);
}

template <typename Visit>
void eachField(const VgaValues& r, Visit&& visit) {
  visit("pole", r.pole);
  visit("peak", r.peak);
  visit("amax", r.amax);
}

template <typename Visit>
void eachField(const RxRawValues& r, Visit&& visit) {
  visit("mode", r.mode);
  visit("p0", r.p[0]);
  visit("p1", r.p[1]);
  visit("p2", r.p[2]);
  visit("p3", r.p[3]);
}

template <typename Visit>
void eachField(const EthernetRxValues& r, Visit&& visit) {
  visit("cdr_mode", r.cdrMode);
  visit("eq_mode", r.eqMode);
}

template <typename Visit>
void eachCountField(const char* name, const char* exactName, const std::optional<Count>& count, Visit&& visit) {
  visit(name, count ? std::optional(count->number) : std::nullopt);
  visit(exactName, count ? std::optional(count->exact()) : std::nullopt);
}

template <typename Visit>
void eachField(const DfeStatsValues& r, Visit&& visit) {
  constexpr std::array<const char*, kDfeTapCount> kEvenOddNames = {
      "h1_even", "h1_odd", "h2_even", "h2_odd", "h3_even", "h3_odd", "h4_even", "h4_odd", "h5_even", "h5_odd"};
  constexpr std::array<const char*, kDfeTapCount / 2> kNames = {"h1", "h2", "h3", "h4", "h5"};
  for (std::size_t i = 0; i < kEvenOddNames.size(); ++i)
    visit(kEvenOddNames[i], r.evenOddTaps[i]);
  for (std::size_t i = 0; i < kNames.size(); ++i)
    visit(kNames[i], r.taps[i]);
  visit("ap", r.ap);
  visit("amin", r.amin);
  visit("an", r.an);
  eachCountField("decode_errors", "decode_errors_exact", r.decodeErrors, visit);
  eachCountField("crc_errors", "crc_errors_exact", r.crcErrors, visit);
}

template <SerDesLinkType kSide, typename Visit>
void eachField(const RegisterValues<kSide>& r, Visit&& visit) {
  visit("registers", r.registers);
}

template <typename Visit, typename... Groups>
void eachField(const LinkRecord<Groups...>& r, Visit&& visit) {
  eachField(static_cast<const Link&>(r), visit);
  (eachField(static_cast<const Groups&>(r), visit), ...);
}

template <typename Visit>
void eachField(const PllRegisters& r, Visit&& visit) {
  visit("asic", r.asic);
  visit("core", r.core);
  visit("serdes_type", r.serDesType);
  visit("registers", r.registers);
}

template <SerDesLinkType kSide, typename Visit>
void eachField(const RegisterValue<kSide>& r, Visit&& visit) {
  visit("asic", r.asic);
  visit("port", r.port);
  visit("user_port", r.userPort);
  visit("link", r.link);
  visit("address", r.address);
  visit("value", r.value);
}

template <typename Visit>
void eachField(const PllRegister& r, Visit&& visit) {
  visit("asic", r.asic);
  visit("core", r.core);
  visit("address", r.address);
  visit("value", r.value);
}

template <typename Visit>
void eachField(const TestStatus& r, Visit&& visit) {
  visit("asic", r.asic);
  visit("port", r.port);
  visit("link", r.link);
  visit("option", r.option);
  visit("status", r.status);
}

template <typename Visit>
void eachField(const CommandRow& r, Visit&& visit) {
  visit("name", r.name);
  visit("arguments", r.arguments);
  visit("shortcut", r.shortcut);
}

template <typename Visit>
void eachField(const CommandHelp& r, Visit&& visit) {
  visit("name", r.name);
  visit("arguments", r.arguments);
  visit("shortcut", r.shortcut);
  visit("description", r.description);
  visit("example", r.example);
  visit("note", r.note);
}

}  // namespace serdesctl
