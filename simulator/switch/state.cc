// The mutable state as a list of records, written and read by one walk so that both agree on names and order.
#include "simulator/switch/state.h"

#include <utility>

namespace simulator {
namespace {

// Whole numbers as 64 bits, negative ones as their two's complement, and back if they fit.
class Writer {
 public:
  void begin(std::string name) {
    records.push_back({std::move(name), {}});
  }
  template <typename T>
  void value(T& place, std::uint64_t) {
    records.back().values.push_back(static_cast<std::uint64_t>(place));
  }
  void signedValue(std::int32_t& place) {
    records.back().values.push_back(static_cast<std::uint64_t>(std::int64_t{place}));
  }

  std::vector<StateRecord> records;
};

class Reader {
 public:
  explicit Reader(const std::vector<StateRecord>& records) : records_(records) {}
  void begin(const std::string& name) {
    finishRecord();
    current_ = next_ < records_.size() ? &records_[next_++] : nullptr;
    if (current_ == nullptr || current_->name != name) fits_ = false;
    taken_ = 0;
  }
  template <typename T>
  void value(T& place, std::uint64_t greatest) {
    const std::uint64_t value = take();
    if (value > greatest) fits_ = false;
    if (fits_) place = static_cast<T>(value);
  }
  void signedValue(std::int32_t& place) {
    const auto value = static_cast<std::int64_t>(take());
    if (value < INT32_MIN || value > INT32_MAX) fits_ = false;
    if (fits_) place = static_cast<std::int32_t>(value);
  }
  // Every record was of the wanted shape, and none is left.
  bool fits() {
    finishRecord();
    return fits_ && next_ == records_.size();
  }

 private:
  std::uint64_t take() {
    if (current_ == nullptr || taken_ >= current_->values.size()) {
      fits_ = false;
      return 0;
    }
    return current_->values[taken_++];
  }
  void finishRecord() {
    if (current_ != nullptr && taken_ != current_->values.size()) fits_ = false;
  }

  const std::vector<StateRecord>& records_;
  std::size_t next_ = 0;
  const StateRecord* current_ = nullptr;
  std::size_t taken_ = 0;
  bool fits_ = true;
};

constexpr std::uint64_t kAny = UINT64_MAX;

template <typename Archive>
void walkRegisters(Archive& archive, const std::string& name, RegisterFile& registers) {
  archive.begin(name);
  for (std::uint16_t& value : registers)
    archive.value(value, UINT16_MAX);
}

template <typename Archive>
void walkCounter(Archive& archive, ErrorCounter& counter) {
  archive.value(counter.count, kAny);
  archive.value(counter.exposure, kAny);
  archive.value(counter.carry, ErrorCounter::kCarryUnit - 1);
}

template <typename Archive>
void walkCache(Archive& archive, const std::string& name, Settings& cache) {
  archive.begin(name);
  SerDesTxRateParams& tx = cache.tx;
  SerDesRxRateParams& rx = cache.rx;
  for (std::int32_t* place :
       {&tx.power, &tx.slew, &tx.mode, &tx.p0, &tx.p1, &tx.p2, &tx.p3, &rx.mode, &rx.p0, &rx.p1, &rx.p2, &rx.p3}) {
    archive.signedValue(*place);
  }
}

template <typename Archive>
void walkPort(Archive& archive, const std::string& name, const PortDescription& described, std::uint64_t now,
              PortState& port) {
  archive.begin(name);
  archive.value(port.configuredSpeed, kSpeeds - 1);
  archive.value(port.operatingSpeed, kSpeeds - 1);
  archive.value(port.sends, 1);
  walkCounter(archive, port.decodeErrors);
  walkCounter(archive, port.crcErrors);
  archive.value(port.settledAt, now);
  for (unsigned speed = SPEED_1G; speed < kSpeeds; ++speed) {
    walkCache(archive, name + ".cache" + std::to_string(speed), port.caches[speed]);
  }
  for (unsigned link = 0; link < described.txLinks; ++link) {
    TxLinkState& tx = port.tx[link];
    walkRegisters(archive, name + ".tx" + std::to_string(link), tx.registers);
    archive.value(tx.injectedErrors, UINT32_MAX);
  }
  for (unsigned link = 0; link < described.rxLinks; ++link) {
    RxLinkState& rx = port.rx[link];
    walkRegisters(archive, name + ".rx" + std::to_string(link), rx.registers);
    walkCounter(archive, rx.checkErrors);
    archive.value(rx.marginShown, kMaxMarginMode);
    archive.value(rx.sensor, 1);
  }
}

template <typename Archive>
void walkAll(Archive& archive, const SwitchDescription& description, SwitchState& state) {
  archive.begin("switch");
  archive.value(state.now, kAny);
  archive.value(state.random, UINT32_MAX);
  for (FaultState& fault : state.faults) {
    archive.value(fault.matches, UINT32_MAX);
    archive.value(fault.fired, UINT32_MAX);
  }
  for (std::size_t a = 0; a < state.asics.size(); ++a) {
    const std::string asicName = "asic" + std::to_string(a);
    AsicState& asic = state.asics[a];
    for (std::size_t c = 0; c < asic.plls.size(); ++c)
      walkRegisters(archive, asicName + ".pll" + std::to_string(c), asic.plls[c]);
    for (std::size_t p = 0; p < asic.ports.size(); ++p) {
      walkPort(archive, asicName + ".port" + std::to_string(p), description.asics[a].ports[p], state.now,
               asic.ports[p]);
    }
  }
}

}  // namespace

std::vector<StateRecord> toRecords(const SwitchDescription& description, SwitchState state) {
  Writer writer;
  walkAll(writer, description, state);
  return std::move(writer.records);
}

bool fromRecords(const SwitchDescription& description, const std::vector<StateRecord>& records, SwitchState& state) {
  Reader reader(records);
  walkAll(reader, description, state);
  return reader.fits() && state.random != 0;
}

}  // namespace simulator
