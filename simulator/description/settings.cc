// The [settings] of a description. Whether a SerDes takes a value is asked of the functions that set live ones.
#include "simulator/serdes/settings.h"

#include <algorithm>

#include "simulator/description/words.h"
#include "simulator/error_codes.h"

namespace simulator {

using Tx = SerDesTxRateParams;
using Rx = SerDesRxRateParams;

// A key and the setting that it stands for; taps stand for four.
struct SettingsKey {
  std::string_view name;
  // What a SerDes says to the settings of the group that the key belongs to; nothing says anything to "raw".
  int (*judge)(const SerDesTraits&, RegisterFile&, const Settings&) = nullptr;
  std::int32_t Tx::*tx = nullptr;
  std::int32_t Rx::*rx = nullptr;
  std::span<const Choice> words = {};  // for the numbers

  std::int32_t& in(Settings& settings) const {
    return tx != nullptr ? settings.tx.*tx : settings.rx.*rx;
  }
  bool isTaps() const {
    return tx == nullptr && rx == nullptr;
  }
};

namespace {

constexpr auto kFfeWords =
    std::to_array<Choice>({{"FFENone", FFE_NONE}, {"FFE2", FFE_2}, {"FFE3", FFE_3}, {"FFE4", FFE_4}});
constexpr auto kDfeWords =
    std::to_array<Choice>({{"DFE3", DFE_3}, {"DFE5", DFE_5}, {"NONE", DFE_NONE}, {"DFE1", DFE_1}});
constexpr auto kSlewWords = std::to_array<Choice>({{"24", SLEW_24PS},
                                                   {"30", SLEW_30PS},
                                                   {"36", SLEW_36PS},
                                                   {"50", SLEW_50PS},
                                                   {"60", SLEW_60PS},
                                                   {"75", SLEW_75PS},
                                                   {"100", SLEW_100PS}});

// Each sets a group of settings as a switch does.
int judgeFfe(const SerDesTraits& traits, RegisterFile& registers, const Settings& s) {
  const FfeSettings ffe = {
      .mode = static_cast<std::uint32_t>(s.tx.mode), .k = s.tx.power, .c = {s.tx.p0, s.tx.p1, s.tx.p2, s.tx.p3}};
  return setFfe(traits, registers, ffe);
}
int judgeSlew(const SerDesTraits& traits, RegisterFile& registers, const Settings& s) {
  return setSlew(traits, registers, true, static_cast<std::uint32_t>(s.tx.slew));
}
int judgeDfe(const SerDesTraits& traits, RegisterFile& registers, const Settings& s) {
  return setDfe(traits, registers, static_cast<std::uint32_t>(s.rx.mode));
}
int judgeVga(const SerDesTraits& traits, RegisterFile& registers, const Settings& s) {
  return setVga(traits, registers, {.pole = s.rx.p0, .peak = s.rx.p1, .amax = s.rx.p2});
}
int judgeDrive(const SerDesTraits& traits, RegisterFile& registers, const Settings& s) {
  return setDriveLevel(traits, registers, s.tx.power, s.tx.p0);
}
int judgeEqualiser(const SerDesTraits& traits, RegisterFile& registers, const Settings& s) {
  return setEqualiser(traits, registers, s.rx.mode, s.rx.p0);
}

constexpr auto kFibreChannelKeys = std::to_array<SettingsKey>({
    {.name = "power", .judge = judgeFfe, .tx = &Tx::power},
    {.name = "ffe", .judge = judgeFfe, .tx = &Tx::mode, .words = kFfeWords},
    {.name = "taps", .judge = judgeFfe},
    {.name = "slew", .judge = judgeSlew, .tx = &Tx::slew, .words = kSlewWords},
    {.name = "dfe", .judge = judgeDfe, .rx = &Rx::mode, .words = kDfeWords},
    {.name = "pole", .judge = judgeVga, .rx = &Rx::p0},
    {.name = "peak", .judge = judgeVga, .rx = &Rx::p1},
    {.name = "amax", .judge = judgeVga, .rx = &Rx::p2},
    {.name = "raw"},
});
constexpr auto kEthernetKeys = std::to_array<SettingsKey>({
    {.name = "power", .judge = judgeDrive, .tx = &Tx::power},
    {.name = "pre_emphasis", .judge = judgeDrive, .tx = &Tx::p0},
    {.name = "cdr_mode", .judge = judgeEqualiser, .rx = &Rx::mode},
    {.name = "eq_mode", .judge = judgeEqualiser, .rx = &Rx::p0},
    {.name = "raw"},
});
using Keys = std::span<const SettingsKey>;

// The first key of the table that is one of `keys` and none of `others`; null when there is none.
const SettingsKey* findOnly(const TomlTable& table, Keys keys, Keys others) {
  const auto isOther = [&](const SettingsKey& key) {
    return std::any_of(others.begin(), others.end(), [&](const SettingsKey& other) { return other.name == key.name; });
  };
  const auto found = std::find_if(keys.begin(), keys.end(),
                                  [&](const SettingsKey& key) { return table.has(key.name) && !isOther(key); });
  return found == keys.end() ? nullptr : &*found;
}

// What a SerDes says to one key alone.
int judge(const SettingsKey& key, const SerDesTraits& traits, Settings settings) {
  Settings alone{};
  if (key.isTaps()) {
    alone.tx = settings.tx;
    alone.tx.power = alone.tx.mode = 0;
  } else {
    key.in(alone) = key.in(settings);
  }
  RegisterFile unseen{};
  return key.judge(traits, unseen, alone);
}

// What a SerDes takes for a key.
std::string takenFor(const SettingsKey& key, const SerDesTraits& traits) {
  if (key.isTaps()) {
    std::string text = "coefficients from " + std::to_string(-traits.maxTap) + " to " + std::to_string(traits.maxTap) +
                       ", in sum at most " + std::to_string(traits.maxTapSum);
    for (unsigned i = 0; i < 4; ++i) {
      const auto field = static_cast<Field>(static_cast<unsigned>(Field::kC0) + i);
      if (!traits.tx.has(field)) text += ", no c" + std::to_string(i);
    }
    return text;
  }
  Settings settings{};
  const auto takes = [&](std::uint32_t number) {
    key.in(settings) = static_cast<std::int32_t>(number);
    return judge(key, traits, settings) == kOk;
  };
  std::vector<Choice> words;
  std::copy_if(key.words.begin(), key.words.end(), std::back_inserter(words),
               [&](const Choice& word) { return takes(word.value); });
  if (!key.words.empty()) return words.empty() ? "none" : listOf(words);
  std::uint32_t beyond = 0;
  while (takes(beyond))
    ++beyond;
  return "0 to " + std::to_string(beyond - 1);
}

void readKey(const SettingsKey& key, const TomlValue& value, Settings& settings) {
  if (!key.isTaps()) {
    if (key.words.empty()) return value.store(key.in(settings), INT32_MIN, INT32_MAX);
    key.in(settings) = static_cast<std::int32_t>(value.choice(key.words));
    return;
  }
  const std::vector<std::int64_t> taps = value.integers(INT32_MIN, INT32_MAX);
  if (taps.size() != 4) value.fail("must be the four coefficients c0 to c3");
  std::int32_t* const fields[] = {&settings.tx.p0, &settings.tx.p1, &settings.tx.p2, &settings.tx.p3};
  for (std::size_t i = 0; i < taps.size(); ++i)
    *fields[i] = static_cast<std::int32_t>(taps[i]);
}

// In the platform's numbers, in the order of its records.
template <typename Record, typename... Fields>
void storeNumbers(const TomlValue& value, Record& record, Fields... fields) {
  const std::vector<std::int64_t> numbers = value.integers(INT32_MIN, INT32_MAX);
  if (numbers.size() != sizeof...(fields)) value.fail("must be " + std::to_string(sizeof...(fields)) + " numbers");
  auto number = numbers.begin();
  ((record.*fields = static_cast<std::int32_t>(*number++)), ...);
}

constexpr auto kNumberKeys = std::to_array<Key<Settings>>({
    {"tx",
     [](auto& value, auto& settings) {
       storeNumbers(value, settings.tx, &Tx::power, &Tx::slew, &Tx::mode, &Tx::p0, &Tx::p1, &Tx::p2, &Tx::p3);
     }},
    {"rx", [](auto& value,
              auto& settings) { storeNumbers(value, settings.rx, &Rx::mode, &Rx::p0, &Rx::p1, &Rx::p2, &Rx::p3); }},
});

// What no SerDes of its kind takes is a mistake in itself.
void judgeForAll(const SettingsKey& key, const NamedSettings& named, const TomlValue& value) {
  const SerDesTraits* last = nullptr;
  for (unsigned type = 0; type < kSerDesTypes; ++type) {
    const SerDesTraits& traits = serDesTraits(type);
    if (traits.isEthernet != named.isEthernet) continue;
    if (judge(key, traits, named.settings) == kOk) return;
    last = &traits;
  }
  value.fail("no SerDes takes that, but " + takenFor(key, *last) + "; for caches, raw = true keeps any number");
}

}  // namespace

NamedSettings readSettings(const TomlTable& table, const std::string& name) {
  NamedSettings named{.name = name, .settings = kPlainSettings};
  if (table.has("tx") || table.has("rx")) {
    table.read(kNumberKeys, named.settings);
    (void)table.need("tx", "goes with rx");
    (void)table.need("rx", "goes with tx");
    named.isForAll = true;
    return named;
  }
  Keys keys = kFibreChannelKeys;
  if (const SettingsKey* ethernet = findOnly(table, kEthernetKeys, kFibreChannelKeys)) {
    named.isEthernet = true;
    named.settings = kPlainEthernetSettings;
    keys = kEthernetKeys;
    if (const SettingsKey* other = findOnly(table, kFibreChannelKeys, kEthernetKeys)) {
      table.fail(other->name, "ethernet settings take no " + std::string(other->name) + ", and " +
                                  std::string(ethernet->name) + " makes these ethernet settings");
    }
  }
  table.allow(keys);
  const auto raw = table.find("raw");
  const bool isRaw = raw && raw->boolean();
  for (const SettingsKey& key : keys) {
    const auto value = table.find(key.name);
    if (!value || key.judge == nullptr) continue;
    readKey(key, *value, named.settings);
    if (isRaw) continue;
    judgeForAll(key, named, *value);
    named.written.push_back(&key);
  }
  return named;
}

void judgeSettings(const NamedSettings& named, SerDesLinkType side, unsigned serDesType, const TomlValue& use) {
  const SerDesTraits& traits = serDesTraits(serDesType);
  for (const SettingsKey* key : named.written) {
    if ((key->rx != nullptr) != (side == SERDES_LINK_RX) || judge(*key, traits, named.settings) == kOk) continue;
    use.fail("of " + quoted(named.name) + ", SerDes type " + std::to_string(serDesType) + " does not take the " +
             std::string(key->name) + ", but " + takenFor(*key, traits));
  }
}

}  // namespace simulator
