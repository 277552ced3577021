// The parts of a description that stand for themselves: switch, clock, settings, channels, faults.
#include <fstream>
#include <sstream>
#include <utility>

#include "simulator/description/fingerprint.h"
#include "simulator/description/words.h"
#include "simulator/serdes/settings.h"

namespace simulator {
namespace {

constexpr std::int64_t kAnyInt32Least = INT32_MIN;
constexpr std::int64_t kAnyInt32Greatest = INT32_MAX;

// Caches keep numbers whole, so settings may hold any; what a SerDes cannot take is judged when it is applied.
template <typename T>
void store32(T& target, TomlTable& table, std::string_view key) {
  store(target, table.integer(key, kAnyInt32Least, kAnyInt32Greatest));
}

void readSlew(TomlTable& table, Settings& settings) {
  const auto slew = table.integer("slew", 0, 100);
  if (!slew) return;
  for (std::size_t i = 0; i < kSlewPs.size(); ++i) {
    if (kSlewPs[i] == *slew) {
      settings.tx.slew = static_cast<std::int32_t>(i);
      return;
    }
  }
  table.fail("slew", "must be 24, 30, 36, 50, 60, 75 or 100");
}

void readFibreChannel(TomlTable& table, Settings& settings) {
  settings = kPlainSettings;
  store32(settings.tx.power, table, "power");
  readSlew(table, settings);
  store(settings.tx.mode, table.choice("ffe", kFfeWords));
  if (const auto taps = table.integers("taps", kAnyInt32Least, kAnyInt32Greatest)) {
    if (taps->size() != 4) table.fail("taps", "must be the four coefficients c0 to c3");
    std::int32_t* const fields[] = {&settings.tx.p0, &settings.tx.p1, &settings.tx.p2, &settings.tx.p3};
    for (std::size_t i = 0; i < taps->size(); ++i)
      *fields[i] = static_cast<std::int32_t>((*taps)[i]);
  }
  store(settings.rx.mode, table.choice("dfe", kDfeWords));
  store32(settings.rx.p0, table, "pole");
  store32(settings.rx.p1, table, "peak");
  store32(settings.rx.p2, table, "amax");
}

void readEthernet(TomlTable& table, Settings& settings) {
  settings = kPlainEthernetSettings;
  store32(settings.tx.power, table, "power");
  store32(settings.tx.p0, table, "pre_emphasis");
  store32(settings.rx.mode, table, "cdr_mode");
  store32(settings.rx.p0, table, "eq_mode");
}

NamedSettings readSettings(TomlTable table) {
  NamedSettings named;
  named.isEthernet = table.has("pre_emphasis") || table.has("cdr_mode") || table.has("eq_mode");
  if (named.isEthernet) {
    readEthernet(table, named.settings);
  } else {
    readFibreChannel(table, named.settings);
  }
  table.finish();
  return named;
}

void readEchoes(TomlTable& table, Channel& channel) {
  for (TomlTable& entry : table.tables("echoes")) {
    Echo echo;
    store(echo.reflection, entry.number("reflection", -1, 1));
    store(echo.delayNs, entry.number("delay_ns", 0, 100));
    entry.finish();
    channel.echoes.push_back(echo);
  }
}

// A channel is the sum of its pieces.
Channel readChannel(TomlTable table) {
  constexpr double kMostLoss = 1000;
  Channel own;
  store(own.a0, table.number("a0", -kMostLoss, kMostLoss));
  store(own.a1, table.number("a1", -kMostLoss, kMostLoss));
  store(own.a2, table.number("a2", -kMostLoss, kMostLoss));
  store(own.a4, table.number("a4", -kMostLoss, kMostLoss));
  store(own.randomJitterUi, table.number("jitter_ui", 0, 0.5));
  store(own.crosstalkDb, table.number("crosstalk_db", -100, 0));
  readEchoes(table, own);
  Channel channel = own;
  if (const auto inches = table.number("fr4_inches", 0, 200)) channel = channel + fr4Trace(*inches);
  if (const auto length = table.number("board_mm", 0, 5000)) channel = channel + boardLine(*length);
  if (const auto metres = table.number("copper_metres", 0, 50)) channel = channel + directAttachCopper(*metres);
  if (const auto inches = table.number("optical_host_inches", 0, 100)) channel = channel + opticalModule(*inches);
  const auto connectors = table.integer("connectors", 0, 10).value_or(0);
  for (std::int64_t i = 0; i < connectors; ++i)
    channel = channel + connector();
  // Each piece brings a crosstalk of its own, of which the greatest would count: the file's word is final.
  channel.crosstalkDb = own.crosstalkDb;
  table.finish();
  return channel;
}

bool isOutputOf(const OperationInfo& info, std::string_view output) {
  for (const std::string_view name : info.outputs) {
    if (name == output) return true;
  }
  return false;
}

FaultAnswer readAnswer(TomlTable table, Operation operation) {
  FaultAnswer answer;
  const auto output = table.text("output");
  if (!output || !isOutputOf(operationInfo(operation), *output)) {
    std::string names;
    for (const std::string_view name : operationInfo(operation).outputs)
      names += ' ' + std::string(name);
    table.fail("output", names.empty() ? "the operation has no outputs" : "must be one of:" + names);
  }
  answer.output = *output;
  if (operation == Operation::kToString) {
    const auto text = table.text("text");
    if (!text) table.fail("text", "is missing");
    answer.text = *text;
  } else {
    const auto value = table.integer("value", INT64_MIN, INT64_MAX);
    if (!value) table.fail("value", "is missing");
    answer.value = *value;
  }
  table.finish();
  return answer;
}

template <typename T>
void storeOptional(std::optional<T>& target, const std::optional<std::int64_t>& value) {
  if (value) target = static_cast<T>(*value);
}

// A fault on something that the operation does not address would never strike.
void readCallSite(TomlTable& table, CallSite& where) {
  storeOptional(where.asic, table.integer("asic", 0, UINT32_MAX));
  storeOptional(where.port, table.integer("port", 0, UINT32_MAX));
  storeOptional(where.link, table.integer("link", INT32_MIN, INT32_MAX));
  storeOptional(where.core, table.integer("core", 0, UINT32_MAX));
  const Addressed addressed = operationInfo(where.operation).addressed;
  const auto check = [&](std::string_view key, bool known) {
    if (table.has(key) && !known) table.fail(key, "the operation names no " + std::string(key));
  };
  check("asic", addressed.asic);
  check("port", addressed.port);
  check("link", addressed.link);
  check("core", addressed.core);
}

FaultDescription readFault(TomlTable& table) {
  FaultDescription fault;
  const auto name = table.text("operation");
  const auto operation = findOperation(name.value_or(""));
  if (!operation) table.fail("operation", name ? "there is no operation \"" + *name + '"' : "is missing");
  fault.where.operation = *operation;
  readCallSite(table, fault.where);
  store(fault.ordinal, table.integer("ordinal", 1, UINT32_MAX));
  store(fault.always, table.boolean("always"));
  if (const auto probability = table.number("probability", 0, 1)) {
    fault.probability = static_cast<std::uint32_t>(*probability * kCertain + 0.5);
  }
  store(fault.code, table.integer("code", INT32_MIN, -1));
  if (table.has("answer")) {
    if (table.has("code")) table.fail("answer", "a fault has either a code or an answer");
    fault.answer = readAnswer(*table.table("answer"), *operation);
  }
  table.finish();
  return fault;
}

ClockDescription readClock(TomlTable& root) {
  ClockDescription clock;
  std::optional<TomlTable> table = root.table("clock");
  if (!table) return clock;
  constexpr auto kKinds = std::to_array<Choice>({{"monotonic", 0}, {"virtual", 1}});
  clock.isVirtual = table->choice("kind", kKinds).value_or(0) == 1;
  store(clock.step, table->integer("step", 1, kMaxClockStep));
  table->finish();
  return clock;
}

void readTypeNames(TomlTable& root, SwitchDescription& description) {
  for (unsigned type = 0; type < kSerDesTypes; ++type)
    description.typeNames[type] = serDesTraits(type).name;
  const auto names = root.texts("type_names");
  if (!names) return;
  if (names->size() != kSerDesTypes) root.fail("type_names", "must be seven names, one for each SerDes type");
  for (unsigned type = 0; type < kSerDesTypes; ++type) {
    const std::string& name = (*names)[type];
    if (name.size() > kMaxTypeName) root.fail("type_names", '"' + name + "\" is longer than 19 characters");
    description.typeNames[type] = name;
  }
}

int countUserPorts(const SwitchDescription& description) {
  int count = 0;
  for (const AsicDescription& asic : description.asics) {
    for (const PortDescription& port : asic.ports)
      count += port.userPort != kNoUserPort ? 1 : 0;
  }
  return count;
}

SwitchDescription readRoot(const toml::table& parsed, const std::string& fileName) {
  TomlTable root(parsed, "", fileName);
  SwitchDescription description;
  Library library;
  if (auto sections = root.table("settings")) {
    for (const std::string& name : sections->keys()) {
      library.settings[name] = readSettings(*sections->table(name));
    }
  }
  if (auto sections = root.table("channels")) {
    for (const std::string& name : sections->keys())
      library.channels[name] = readChannel(*sections->table(name));
  }
  readTypeNames(root, description);
  description.clock = readClock(root);
  store(description.seed, root.integer("seed", 0, UINT32_MAX));
  for (TomlTable& asic : root.tables("asics"))
    description.asics.push_back(readAsic(asic, library));
  if (description.asics.empty() || description.asics.size() > kMaxAsics) {
    root.fail("asics", "there must be one or two");
  }
  for (TomlTable& fault : root.tables("faults"))
    description.faults.push_back(readFault(fault));
  description.userPorts = countUserPorts(description);
  store32(description.slots, root, "slots");
  store32(description.userPorts, root, "user_ports");
  store32(description.auxPorts, root, "aux_ports");
  root.finish();
  return description;
}

}  // namespace

SwitchDescription readDescription(std::string_view text, const std::string& fileName) {
  try {
    const toml::table parsed = toml::parse(text, fileName);
    SwitchDescription description = readRoot(parsed, fileName);
    description.fingerprint = fingerprintOf(text);
    return description;
  } catch (const toml::parse_error& error) {
    throw DescriptionError(fileName + ':' + std::to_string(error.source().begin.line) + ": " +
                           std::string(error.description()));
  }
}

SwitchDescription readDescriptionFile(const std::string& fileName) {
  std::ifstream file(fileName, std::ios::binary);
  std::ostringstream text;
  // An empty file gives nothing to copy, which counts as a failure of the copy alone.
  if (file.peek() != std::ifstream::traits_type::eof()) text << file.rdbuf();
  if (!file.is_open() || file.bad() || !text) throw DescriptionError(fileName + ": cannot be read");
  return readDescription(text.str(), fileName);
}

}  // namespace simulator
