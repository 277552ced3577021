// Planning one port. A model of it goes along with the operations, so that each stands on what those before it made.
#include "serdesctl/plan/port_planning.h"

#include <algorithm>
#include <array>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <utility>

#include "display/name_tables.h"
#include "serdesctl/plan/predicting.h"
#include "serdesctl/plan/serdes_limits.h"
#include "serdesctl/state/saying.h"

namespace serdesctl {
namespace {

constexpr const char* kNoFfe = ffeModeNames[FFE_NONE].name;

std::string words(std::initializer_list<std::string> list) {
  std::string line;
  for (const std::string& word : list)
    line += (line.empty() ? "" : " ") + word;
  return line;
}

std::string text(const std::optional<std::int32_t>& number) {
  return number ? std::to_string(*number) : "-";
}

std::string text(const FfeValues& r) {
  return words({r.ffeMode.value_or("-"), text(r.k), text(r.c0), text(r.c1), text(r.c2), text(r.c3)});
}

std::string text(const LiveSlew& r) {
  return r.slewUnnamed ? kUnnamed : text(r.slewPs);
}

std::string text(const LiveTx& r) {
  return text(static_cast<const FfeValues&>(r)) + " " + text(static_cast<const LiveSlew&>(r));
}

std::string text(const DfeModeValue& r) {
  return r.dfeMode.value_or("-");
}

std::string text(const VgaValues& r) {
  return words({text(r.pole), text(r.peak), text(r.amax)});
}

std::string text(const LiveRx& r) {
  return text(static_cast<const DfeModeValue&>(r)) + " " + text(static_cast<const VgaValues&>(r));
}

std::string rawWords(const std::string& rate, const TxRawValues& r) {
  return words({"setTxParamsRaw asic", rate, text(r.power), text(r.slew), text(r.mode), text(r.p[0]), text(r.p[1]),
                text(r.p[2]), text(r.p[3])});
}

std::string rawWords(const std::string& rate, const RxRawValues& r) {
  return words({"setRxParamsRaw asic", rate, text(r.mode), text(r.p[0]), text(r.p[1]), text(r.p[2]), text(r.p[3])});
}

// What links are and are to be, as a whole or by a part of their settings; links that there are not are left out.
template <typename Link>
struct Goal {
  std::vector<Link> now;
  std::vector<Link> then;

  template <typename Part = Link>
  bool differs() const {
    return !std::equal(now.begin(), now.end(), then.begin(), std::equal_to<Part>());
  }
  template <typename Part = Link>
  bool alike() const {
    return std::adjacent_find(then.begin(), then.end(), std::not_equal_to<Part>()) == then.end();
  }
};

template <typename Link>
Goal<Link> goalOf(const std::vector<Link>& now, const std::vector<Link>& wanted) {
  Goal<Link> goal{now, now};
  for (std::size_t i = 0; i < std::min(now.size(), wanted.size()); ++i)
    overlay(goal.then[i], wanted[i]);
  return goal;
}

// Only 8 bits of a number reach the hardware.
bool areBytes(std::initializer_list<std::optional<std::int32_t>> values) {
  return std::all_of(values.begin(), values.end(), [](const auto& value) { return value >= -128 && value <= 127; });
}

template <typename Part>
bool isKnown(const Part& r) {
  return saysAll(r);
}
bool isKnown(const LiveSlew& r) {
  return r.slewPs || r.slewUnnamed;
}

constexpr const char* kUnknown = "the tool does not show what it is now";
constexpr const char* kEightBits = "the tool passes 8 bits of a number on";

template <std::size_t kCount>
bool isNamed(const std::array<ValueName, kCount>& names, const std::optional<std::string>& name) {
  return std::any_of(names.begin(), names.end(), [&](const ValueName& n) { return name == n.name; });
}

// Why the tool's command would not carry it; empty when it does.
std::string unfit(const FfeValues& r) {
  if (r.ffeMode == kUnnamed) return "the tool has no name for the mode";
  if (!isNamed(ffeModeNames, r.ffeMode)) return "there is no mode " + r.ffeMode.value_or("-");
  return r.k < 0 || r.k > 255 || !areBytes({r.c0, r.c1, r.c2, r.c3}) ? kEightBits : "";
}

std::string unfit(const VgaValues& r) {
  return areBytes({r.pole, r.peak, r.amax}) ? "" : kEightBits;
}

std::string unfit(const LiveSlew& r) {
  if (r.slewUnnamed) return "the tool has no name for the slew";
  const auto& names = slewRateNames;
  const bool known =
      std::any_of(names.begin(), names.end(), [&](const auto& n) { return text(r.slewPs) == n.shortName; });
  return known ? "" : "there is no slew of " + text(r.slewPs) + " ps";
}

std::string unfit(const DfeModeValue& r) {
  if (r.dfeMode == kUnnamed) return "the tool has no name for the mode";
  return isNamed(dfeModeNames, r.dfeMode) ? "" : "there is no mode " + text(r);
}

SettingPlace placeOf(const AsicState& asic, std::uint32_t port) {
  SettingPlace place = {.asic = asic.asic, .port = port};
  if (port < asic.config.ports.size()) place.userPort = asic.config.ports[port].userPort;
  return place;
}

constexpr std::string_view kThroughCacheHint = "; --through-cache sets it by the cache of the running rate";
constexpr const char* kLinksDiffer = "the tool sets all links of a port alike";
constexpr const char* kEthernetLive = "live settings of ethernet ports follow from their caches alone";

class PortPlanner {
 public:
  PortPlanner(const AsicState& asic, const PortState& current, const PortState& wanted, const PlanChoice& choice)
      : place_(placeOf(asic, current.port)),
        sides_(serDesSides(asic, current.port)),
        wanted_(wanted),
        throughCache_(choice.throughCache),
        model_(current) {}

  PortPlan plan() && {
    planCaches();
    planLiveTx();
    planLiveRx();
    planCachesBack();
    planStream();
    return std::move(result_);
  }

 private:
  void add(Phase phase, std::string command, Effect effect, std::function<void(PortState&)> change) {
    change(model_);
    result_.operations.push_back({phase, std::move(command), model_.port, effect, std::move(change)});
  }

  void refuse(const std::string& what, const std::string& wanted, const std::string& reason,
              const std::string& nearest) {
    result_.impossible.push_back({place_, what, wanted, reason, nearest});
  }

  // The speed to be set; nothing when it is as wanted.
  std::optional<std::string> speedToSet() {
    if (!wanted_.configRate || wanted_.configRate == model_.configRate) return std::nullopt;
    if (!model_.configRate) {
      refuse("config_rate", *wanted_.configRate, "the tool does not show the speed of a port without transmit links",
             "the speed stays as it is");
      return std::nullopt;
    }
    if (*wanted_.configRate != rateNames[SPEED_AUTO].name && !isRate(*wanted_.configRate)) {
      refuse("config_rate", *wanted_.configRate, "there is no such speed", "it stays " + *model_.configRate);
      return std::nullopt;
    }
    return wanted_.configRate;
  }

  std::function<void(PortState&)> settingSpeed(const std::string& rate) const {
    return [rate, wanted = wanted_, sides = sides_](PortState& port) {
      const std::string force = rateInForce(port, rate, wanted);
      port.configRate = rate;
      if (isRate(rate) || (port.observed.runningRate && !force.empty())) port.observed.runningRate = force;
      putIntoForce(port, force, sides);
    };
  }

  // The caches as they are to be in the end, on top of what there are.
  template <typename Caches>
  Caches cachesThen(const Caches& now, const Caches& wanted, const char* side) {
    Caches then = now;
    for (const auto& [rate, values] : wanted) {
      const auto found = then.find(rate);
      if (found != then.end()) {
        found->second = values;
      } else {
        refuse(rate + " " + side + " cache", rawWords(rate, values),
               "the tool does not show the port's cache of that rate", "it stays as it is");
      }
    }
    return then;
  }

  template <typename Caches>
  void setCaches(Phase phase, Caches PortState::*caches, const Caches& then) {
    for (const auto& [rate, values] : then) {
      if ((model_.*caches).at(rate) == values) continue;
      add(phase, rawWords(rate, values), Effect::kNothing,
          [caches, rate = rate, values = values](PortState& port) { (port.*caches)[rate] = values; });
    }
  }

  // Caches, and the speed. Where live settings go through a cache, that of the running rate holds them meanwhile, and
  // the speed is set anew.
  void planCaches() {
    txThen_ = cachesThen(model_.txCaches, wanted_.txCaches, "tx");
    rxThen_ = cachesThen(model_.rxCaches, wanted_.rxCaches, "rx");
    const auto speed = speedToSet();
    auto txMeanwhile = txThen_;
    auto rxMeanwhile = rxThen_;
    const bool detour = throughCache_ && model_.configRate && findDetour(speed, txMeanwhile, rxMeanwhile);
    setCaches(Phase::kCaches, &PortState::txCaches, txMeanwhile);
    setCaches(Phase::kCaches, &PortState::rxCaches, rxMeanwhile);
    if (!speed && !detour) return;
    if (detour && isUnknownRate(speed)) {
      add(Phase::kSpeedMeanwhile, "setRate " + *model_.configRate, Effect::kRetrain, settingSpeed(*model_.configRate));
    }
    const std::string rate = speed.value_or(model_.configRate.value_or(""));
    add(Phase::kSpeed, "setRate " + rate, Effect::kRetrain, settingSpeed(rate));
  }

  // Which rate AUTO will find, if any, shows afterwards alone: then the rate that was set until now puts the caches
  // into force, and those of all rates hold the same.
  bool isUnknownRate(const std::optional<std::string>& speed) const {
    return speed && isRate(*model_.configRate) && rateInForce(model_, *speed, wanted_).empty();
  }

  // Puts live settings that have no other way into the caches of the rate that will be in force. A speed that is set
  // anew for them leaves the other live settings as they are.
  bool findDetour(const std::optional<std::string>& speed, std::map<std::string, TxRawValues>& tx,
                  std::map<std::string, RxRawValues>& rx) {
    PortState predicted = model_;
    predicted.txCaches = tx;
    predicted.rxCaches = rx;
    if (speed) settingSpeed (*speed)(predicted);
    if (isUnknownRate(speed)) return takeAll(predicted, tx, rx);
    const std::string rate = rateInForce(predicted, *predicted.configRate, wanted_);
    const bool possible = takeBoth(predicted, rate, tx, rx);
    if (speed || !possible) return possible;
    wanted_.tx = goalOf(model_.tx, wanted_.tx).then;
    wanted_.rx = goalOf(model_.rx, wanted_.rx).then;
    settingSpeed (*model_.configRate)(predicted);
    (void)takeBoth(predicted, rate, tx, rx);
    return true;
  }

  bool takeAll(const PortState& predicted, std::map<std::string, TxRawValues>& tx,
               std::map<std::string, RxRawValues>& rx) const {
    bool possible = false;
    for (const ValueName& rate : rateNames)
      possible = takeBoth(predicted, rate.name, tx, rx) || possible;
    return possible;
  }

  bool takeBoth(const PortState& predicted, const std::string& rate, std::map<std::string, TxRawValues>& tx,
                std::map<std::string, RxRawValues>& rx) const {
    const bool transmit = takeTx(predicted, rate, tx);
    const bool receive = takeRx(predicted, rate, rx);
    return transmit || receive;
  }

  bool takeTx(const PortState& predicted, const std::string& rate, std::map<std::string, TxRawValues>& caches) const {
    const auto goal = goalOf(predicted.tx, wanted_.tx);
    const bool nameless = goal.differs<FfeValues>() && goal.then.front().ffeMode == kNoFfe;
    return (nameless || sides_.tx.isEthernet) && take(goal, sides_.tx, rate, caches);
  }

  bool takeRx(const PortState& predicted, const std::string& rate, std::map<std::string, RxRawValues>& caches) const {
    return take(goalOf(predicted.rx, wanted_.rx), sides_.rx, rate, caches);
  }

  template <typename Link, typename Cache>
  static bool take(const Goal<Link>& goal, const SerDesSide& side, const std::string& rate,
                   std::map<std::string, Cache>& caches) {
    if (!goal.differs() || !goal.alike() || !caches.contains(rate)) return false;
    const auto cache = cacheFor(goal.then.front(), caches.at(rate), side);
    if (cache) caches.at(rate) = *cache;
    return cache.has_value();
  }

  void planCachesBack() {
    setCaches(Phase::kCachesBack, &PortState::txCaches, txThen_);
    setCaches(Phase::kCachesBack, &PortState::rxCaches, rxThen_);
  }

  std::string orThroughCache(const std::string& nearest) const {
    return nearest + (throughCache_ ? "; no cache of a running rate gives it" : std::string(kThroughCacheHint));
  }

  // Says so where links are wanted that there are not.
  template <typename Link>
  void refuseMissingLinks(const std::vector<Link>& now, const std::vector<Link>& wanted, const std::string& side) {
    for (std::size_t i = now.size(); i < wanted.size(); ++i)
      refuse(side + " link " + std::to_string(i), text(wanted[i]), "the port has no such link", "nothing");
  }

  void planLiveTx() {
    refuseMissingLinks(model_.tx, wanted_.tx, "tx");
    const auto goal = goalOf(model_.tx, wanted_.tx);
    if (!goal.differs()) return;
    const LiveTx then = goal.then.front();
    if (sides_.tx.isEthernet)
      return refuse("transmit", text(then), kEthernetLive, orThroughCache("they stay as they are"));
    const bool ffe = goal.differs<FfeValues>() && canSetFfe(goal);
    const bool slew = goal.differs<LiveSlew>() && canSet<LiveSlew>("slew", goal, sides_.tx.traits);
    if (!ffe && !slew) return;
    const std::string command = ffe && slew ? "setTxParams" : ffe ? "setFFE" : "setSlew";
    add(Phase::kLive,
        command + (ffe ? " " + text(static_cast<const FfeValues&>(then)) : "") + (slew ? " " + text(then.slewPs) : ""),
        Effect::kAdapt, [=](PortState& port) {
          for (LiveTx& link : port.tx) {
            if (ffe) static_cast<FfeValues&>(link) = static_cast<const FfeValues&>(then);
            if (slew) static_cast<LiveSlew&>(link) = static_cast<const LiveSlew&>(then);
          }
        });
  }

  bool canSetFfe(const Goal<LiveTx>& goal) {
    const FfeValues& then = goal.then.front();
    if (!canSet<FfeValues>("ffe", goal, sides_.tx.traits)) return false;
    if (then.ffeMode != kNoFfe) return true;
    refuse("ffe", text(then), "the tool has no keyword for FFENone", orThroughCache("FFE2 with c2 = 0 sends the same"));
    return false;
  }

  // Whether one command can set what is wanted; says so where it cannot.
  template <typename Part, typename Link>
  bool canSet(const char* what, const Goal<Link>& goal, const simulator::SerDesTraits* traits) {
    const Part& then = goal.then.front();
    const bool known = std::all_of(goal.now.begin(), goal.now.end(), [](const Part& link) { return isKnown(link); });
    const std::string reason = known ? unfit(then) : kUnknown;
    if (!goal.template alike<Part>()) {
      refuse(what, "links that differ", kLinksDiffer, "all as link 0: " + text(then));
    } else if (!reason.empty()) {
      refuse(what, text(then), reason, "it stays as it is");
    } else if (const auto refusal = traits == nullptr ? std::nullopt : refusalOf(*traits, then)) {
      refuse(what, text(then), refusal->reason, refusal->nearest ? text(*refusal->nearest) : "it stays as it is");
    } else {
      return true;
    }
    return false;
  }

  void planLiveRx() {
    refuseMissingLinks(model_.rx, wanted_.rx, "rx");
    const auto goal = goalOf(model_.rx, wanted_.rx);
    if (!goal.differs()) return;
    const LiveRx then = goal.then.front();
    if (sides_.rx.isEthernet)
      return refuse("receive", text(then), kEthernetLive, orThroughCache("they stay as they are"));
    const bool dfe = goal.differs<DfeModeValue>() && canSet<DfeModeValue>("dfe", goal, sides_.rx.traits);
    const bool vga = goal.differs<VgaValues>() && canSet<VgaValues>("vga", goal, sides_.rx.traits);
    if (!dfe && !vga) return;
    const std::string command = dfe && vga ? "setRxParams" : dfe ? "setDFE" : "setVGA";
    add(Phase::kLive,
        command + (dfe ? " " + *then.dfeMode : "") + (vga ? " " + text(static_cast<const VgaValues&>(then)) : ""),
        Effect::kAdapt, [=](PortState& port) {
          for (LiveRx& link : port.rx) {
            if (dfe) static_cast<DfeModeValue&>(link) = static_cast<const DfeModeValue&>(then);
            if (vga) static_cast<VgaValues&>(link) = static_cast<const VgaValues&>(then);
          }
        });
  }

  void planStream() {
    if (!wanted_.streamEnabled || wanted_.streamEnabled == model_.streamEnabled) return;
    const bool on = *wanted_.streamEnabled;
    if (!model_.streamEnabled) {
      return refuse("stream_enabled", on ? "on" : "off",
                    "the tool does not show the stream of a port without transmit links", "it stays as it is");
    }
    add(Phase::kStreams, on ? "setTxEnable 1" : "setTxEnable 0", on ? Effect::kRetrain : Effect::kDown,
        [on](PortState& port) { port.streamEnabled = on; });
  }

  SettingPlace place_;
  SerDesSides sides_;
  PortState wanted_;
  bool throughCache_;
  PortState model_;
  PortPlan result_;
  std::map<std::string, TxRawValues> txThen_;
  std::map<std::string, RxRawValues> rxThen_;
};

}  // namespace

// The hint stands only where following it helps.
PortPlan planPort(const AsicState& asic, const PortState& current, const PortState& wanted, const PlanChoice& choice) {
  PortPlan plan = PortPlanner(asic, current, wanted, choice).plan();
  const auto isHinted = [](const Impossible& one) { return one.nearest.ends_with(kThroughCacheHint); };
  if (std::none_of(plan.impossible.begin(), plan.impossible.end(), isHinted)) return plan;
  const PortPlan detour = PortPlanner(asic, current, wanted, {.throughCache = true}).plan();
  for (Impossible& one : plan.impossible) {
    const bool remains = std::any_of(detour.impossible.begin(), detour.impossible.end(),
                                     [&](const Impossible& left) { return left.what == one.what; });
    if (isHinted(one) && remains) one.nearest.resize(one.nearest.size() - kThroughCacheHint.size());
  }
  return plan;
}

}  // namespace serdesctl
