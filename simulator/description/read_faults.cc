// The [[faults]] of a description. A fault that can never strike is a mistake.
#include <algorithm>

#include "simulator/description/words.h"

namespace simulator {
namespace {

// A fault while it is read, and the switch that it is for.
struct FaultDraft {
  const std::vector<AsicDescription>& asics;
  FaultDescription fault = {};

  const CallSite& where() const {
    return fault.where;
  }
};

std::string namesOf(Addressed addressed) {
  std::string names;
  for (const auto& [isNamed, name] : {std::pair{addressed.asic, " asic"}, std::pair{addressed.port, " port"},
                                      std::pair{addressed.link, " link"}, std::pair{addressed.core, " core"}}) {
    if (isNamed) names += (names.empty() ? "" : " and") + std::string(name);
  }
  return names.empty() ? ", nor anything else" : ", but" + names;
}

// A number from `least` up to below the greatest of the counts that `countOf` gives for the ASICs that the fault is
// for.
template <typename T, typename CountOf>
void storePlace(const TomlValue& value, bool Addressed::*kind, const char* name, int least, CountOf countOf,
                const FaultDraft& draft, std::optional<T>& target) {
  const Addressed addressed = operationInfo(draft.where().operation).addressed;
  if (!(addressed.*kind)) value.fail("the operation names no " + std::string(name) + namesOf(addressed));
  std::size_t count = 0;
  for (std::size_t asic = 0; asic < draft.asics.size(); ++asic) {
    if (draft.where().asic.value_or(asic) == asic) count = std::max<std::size_t>(count, countOf(draft.asics[asic]));
  }
  const auto greatest = static_cast<std::int64_t>(count) - 1;
  if (greatest < least) value.fail("there is no " + std::string(name));
  value.store(target.emplace(), least, greatest);
}

unsigned mostLinks(const AsicDescription& asic, std::optional<unsigned> port) {
  unsigned most = 0;
  for (unsigned i = 0; i < asic.ports.size(); ++i) {
    if (port.value_or(i) == i) most = std::max({most, asic.ports[i].rxLinks, asic.ports[i].txLinks});
  }
  return most;
}

constexpr auto kAnswerKeys = std::to_array<Key<FaultDraft>>({{"output"}, {"value"}, {"text"}});

void setAnswer(const TomlValue& value, FaultDraft& draft) {
  const TomlTable table = value.table();
  table.allow(kAnswerKeys);
  const OperationInfo& info = operationInfo(draft.where().operation);
  std::string names;
  for (const std::string_view name : info.outputs)
    names += ' ' + std::string(name);
  FaultAnswer& answer = draft.fault.answer.emplace();
  const std::string what = names.empty() ? "the operation has no outputs" : "must be one of:" + names;
  const TomlValue output = table.need("output", what);
  answer.output = output.text();
  if (std::find(info.outputs.begin(), info.outputs.end(), answer.output) == info.outputs.end()) output.fail(what);
  const bool isText = info.operation == Operation::kToString;
  if (const char* other = isText ? "value" : "text"; table.has(other)) {
    table.fail(other, "this output is a " + std::string(isText ? "text" : "value"));
  }
  const TomlValue by = table.need(isText ? "text" : "value", "is missing");
  if (isText) {
    answer.text = by.text();
  } else {
    by.store(answer.value, INT64_MIN, INT64_MAX);
  }
}

// The operation stands first: what it addresses decides on the rest.
constexpr auto kFaultKeys = std::to_array<Key<FaultDraft>>({
    {"operation",
     [](auto& value, auto& draft) {
       const std::string name = value.text();
       const auto operation = findOperation(name);
       if (!operation) value.fail("there is no operation \"" + name + '"');
       draft.fault.where.operation = *operation;
     }},
    {"asic",
     [](auto& value, auto& draft) {
       const auto all = [&](auto&) { return draft.asics.size(); };
       storePlace(value, &Addressed::asic, "asic", 0, all, draft, draft.fault.where.asic);
     }},
    {"port",
     [](auto& value, auto& draft) {
       const auto ports = [](auto& asic) { return asic.ports.size(); };
       storePlace(value, &Addressed::port, "port", 0, ports, draft, draft.fault.where.port);
     }},
    {"link",
     [](auto& value, auto& draft) {
       // Sets name -1 for all links.
       const auto links = [&](auto& asic) { return mostLinks(asic, draft.where().port); };
       storePlace(value, &Addressed::link, "link", -1, links, draft, draft.fault.where.link);
     }},
    {"core",
     [](auto& value, auto& draft) {
       const auto cores = [](auto& asic) { return asic.cores.size(); };
       storePlace(value, &Addressed::core, "core", 0, cores, draft, draft.fault.where.core);
     }},
    {"ordinal", [](auto& value, auto& draft) { value.store(draft.fault.ordinal, 1, UINT32_MAX); }},
    {"always", [](auto& value, auto& draft) { draft.fault.always = value.boolean(); }},
    {"probability",
     [](auto& value, auto& draft) {
       draft.fault.probability = static_cast<std::uint32_t>(value.number(1.0 / kCertain, 1) * kCertain + 0.5);
     }},
    {"code", [](auto& value, auto& draft) { value.store(draft.fault.code, INT32_MIN, -1); }},
    {"answer", setAnswer},
});

template <typename T>
bool covers(const std::optional<T>& wider, const std::optional<T>& narrower) {
  return !wider || wider == narrower;
}

// Whether `earlier` takes every call that `later` could strike.
bool hides(const FaultDescription& earlier, const FaultDescription& later) {
  const CallSite &wider = earlier.where, &narrower = later.where;
  return earlier.always && earlier.probability == kCertain && earlier.ordinal <= later.ordinal &&
         wider.operation == narrower.operation && covers(wider.asic, narrower.asic) &&
         covers(wider.port, narrower.port) && covers(wider.link, narrower.link) && covers(wider.core, narrower.core);
}

}  // namespace

std::vector<FaultDescription> readFaults(const std::vector<TomlTable>& tables,
                                         const std::vector<AsicDescription>& asics) {
  std::vector<FaultDescription> faults;
  for (const TomlTable& table : tables) {
    table.allow(kFaultKeys);
    const TomlValue operation = table.need("operation", "is missing");
    if (table.has("code") && table.has("answer")) table.fail("answer", "a fault has either a code or an answer");
    FaultDraft draft{.asics = asics};
    table.read(kFaultKeys, draft);
    const auto hiding =
        std::find_if(faults.begin(), faults.end(), [&](auto& earlier) { return hides(earlier, draft.fault); });
    if (hiding != faults.end()) {
      operation.fail("never strikes: faults[" + std::to_string(hiding - faults.begin()) + "] takes all these calls");
    }
    faults.push_back(draft.fault);
  }
  return faults;
}

}  // namespace simulator
