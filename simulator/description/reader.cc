// The whole of a description, and the parts that stand for themselves: clock, type names, channels.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "simulator/description/fingerprint.h"
#include "simulator/description/words.h"
#include "simulator/serdes/settings.h"

namespace simulator {
namespace {

constexpr auto kEchoKeys = std::to_array<Key<Echo>>({
    {"reflection", [](auto& value, auto& echo) { echo.reflection = value.number(-1, 1); }},
    {"delay_ns", [](auto& value, auto& echo) { echo.delayNs = value.number(0, 100); }},
});

constexpr double kMostLoss = 1000;

constexpr auto kChannelKeys = std::to_array<Key<Channel>>({
    {"a0", [](auto& value, auto& channel) { channel.a0 = value.number(-kMostLoss, kMostLoss); }},
    {"a1", [](auto& value, auto& channel) { channel.a1 = value.number(-kMostLoss, kMostLoss); }},
    {"a2", [](auto& value, auto& channel) { channel.a2 = value.number(-kMostLoss, kMostLoss); }},
    {"a4", [](auto& value, auto& channel) { channel.a4 = value.number(-kMostLoss, kMostLoss); }},
    {"jitter_ui", [](auto& value, auto& channel) { channel.randomJitterUi = value.number(0, 0.5); }},
    {"crosstalk_db"},
    {"echoes",
     [](auto& value, auto& channel) {
       for (const TomlTable& table : value.tables())
         table.read(kEchoKeys, channel.echoes.emplace_back());
     }},
    {"fr4_inches",
     [](auto& value, auto& channel) { channel = channel + fr4Trace(value.number(0, 200)); }},
    {"board_mm", [](auto& value, auto& channel) { channel = channel + boardLine(value.number(0, 5000)); }},
    {"copper_metres",
     [](auto& value, auto& channel) { channel = channel + directAttachCopper(value.number(0, 50)); }},
    {"optical_host_inches",
     [](auto& value, auto& channel) { channel = channel + opticalModule(value.number(0, 100)); }},
    {"connectors",
     [](auto& value, auto& channel) {
       for (std::int64_t i = value.integer(0, 10); i > 0; --i)
         channel = channel + connector();
     }},
});

Channel readChannel(const TomlTable& table) {
  Channel channel;
  const double crosstalkOfNone = channel.crosstalkDb;
  table.read(kChannelKeys, channel);
  // Each piece brings a crosstalk of its own, of which the greatest would count: the file's word is final.
  const auto crosstalk = table.find("crosstalk_db");
  channel.crosstalkDb = crosstalk ? crosstalk->number(-100, 0) : crosstalkOfNone;
  return channel;
}

constexpr auto kClockKeys = std::to_array<Key<ClockDescription>>({
    {"kind", [](auto& value, auto& clock) { clock.isVirtual = value.choice(kClockWords) == 1; }},
    {"step", [](auto& value, auto& clock) { value.store(clock.step, 1, kMaxClockStep); }},
});

void setTypeNames(const TomlValue& value, SwitchDescription& description) {
  const std::vector<std::string> names = value.texts();
  if (names.size() != kSerDesTypes) value.fail("must be seven names, one for each SerDes type");
  for (unsigned type = 0; type < kSerDesTypes; ++type) {
    if (names[type].size() > kMaxTypeName) value.fail(quoted(names[type]) + " is longer than 19 characters");
    description.typeNames[type] = names[type];
  }
}

struct Draft {
  SwitchDescription description;
  Library library;
};

void setAsics(const TomlValue& value, Draft& draft) {
  SwitchDescription& description = draft.description;
  UserPorts userPorts;
  for (const TomlTable& table : value.tables()) {
    const auto asic = static_cast<unsigned>(description.asics.size());
    if (asic == kMaxAsics) value.fail("there must be one or two");
    description.asics.push_back(readAsic(table, draft.library, asic, userPorts));
  }
  description.userPorts = static_cast<int>(userPorts.size());
}

// ASICs refer to what stands before them here, and faults to ASICs.
constexpr auto kKeys = std::to_array<Key<Draft>>({
    {"slots", [](auto& value, auto& draft) { value.store(draft.description.slots, INT32_MIN, INT32_MAX); }},
    {"aux_ports", [](auto& value, auto& draft) { value.store(draft.description.auxPorts, INT32_MIN, INT32_MAX); }},
    {"seed", [](auto& value, auto& draft) { value.store(draft.description.seed, 0, UINT32_MAX); }},
    {"type_names", [](auto& value, auto& draft) { setTypeNames(value, draft.description); }},
    {"clock", [](auto& value, auto& draft) { value.table().read(kClockKeys, draft.description.clock); }},
    {"settings",
     [](auto& value, auto& draft) {
       const TomlTable sections = value.table();
       for (const std::string& name : sections.keys())
         draft.library.settings[name] = readSettings(sections.find(name)->table(), name);
     }},
    {"channels",
     [](auto& value, auto& draft) {
       const TomlTable sections = value.table();
       for (const std::string& name : sections.keys())
         draft.library.channels[name] = readChannel(sections.find(name)->table());
     }},
    {"asics", setAsics},
    {"user_ports", [](auto& value, auto& draft) { value.store(draft.description.userPorts, INT32_MIN, INT32_MAX); }},
    {"faults",
     [](auto& value, auto& draft) { draft.description.faults = readFaults(value.tables(), draft.description.asics); }},
});

// No two counters of a switch may share a history: each port has room for 256.
void seedErrors(SwitchDescription& description) {
  const std::uint64_t seed = description.seed == 0 ? 1 : description.seed;
  for (std::size_t asic = 0; asic < description.asics.size(); ++asic) {
    std::vector<PortDescription>& ports = description.asics[asic].ports;
    for (std::size_t port = 0; port < ports.size(); ++port)
      ports[port].errorSeed = seed << 32 | asic << 16 | port << 8;
  }
}

}  // namespace

SwitchDescription readDescription(std::string_view text, const std::string& fileName) {
  const toml::table parsed = parseToml(text, fileName);
  const TomlTable root(parsed, "", fileName);
  Draft draft;
  for (unsigned type = 0; type < kSerDesTypes; ++type)
    draft.description.typeNames[type] = serDesTraits(type).name;
  root.read(kKeys, draft);
  if (draft.description.asics.empty()) root.fail("asics", "there must be one or two");
  seedErrors(draft.description);
  draft.description.fingerprint = fingerprintOf(text);
  return std::move(draft.description);
}

SwitchDescription readDescriptionFile(const std::string& fileName) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(fileName.c_str(), "rbe"), std::fclose);
  std::string text;
  std::array<char, 65536> block;
  while (file != nullptr) {
    const std::size_t count = std::fread(block.data(), 1, block.size(), file.get());
    text.append(block.data(), count);
    if (count < block.size()) break;
  }
  if (file == nullptr || std::ferror(file.get()) != 0) {
    throw DescriptionError(fileName + ": cannot be read: " + std::strerror(errno));
  }
  return readDescription(text, fileName);
}

}  // namespace simulator
