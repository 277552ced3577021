// Text of arguments and outputs.
#include "platform/call_text.h"

#include <algorithm>
#include <cstdio>

namespace operations {

void CallText::append(std::string_view text) {
  const std::size_t count = std::min(text.size(), text_.size() - length_);
  std::copy_n(text.begin(), count, text_.begin() + length_);
  length_ += count;
}

void CallText::append(std::int64_t number) {
  std::array<char, 24> digits;
  std::snprintf(digits.data(), digits.size(), "%lld", static_cast<long long>(number));
  append(digits.data());
}

void CallText::append(Hex number) {
  std::array<char, 16> digits;
  std::snprintf(digits.data(), digits.size(), "0x%0*x", number.digits, number.value);
  append(digits.data());
}

template <typename... Numbers>
void CallText::appendRecord(Numbers... numbers) {
  append("{");
  appendList(*this, numbers...);
  append("}");
}

void CallText::append(port_id_t port) {
  appendRecord(port.userPort, port.asic, port.asicPort);
}

void CallText::append(const SerDesTxRateParams& params) {
  appendRecord(params.power, params.slew, params.mode, params.p0, params.p1, params.p2, params.p3);
}

void CallText::append(const SerDesRxRateParams& params) {
  appendRecord(params.mode, params.p0, params.p1, params.p2, params.p3);
}

void CallText::append(const SerDesRxDFEState* state) {
  if (state == nullptr) return append("null");
  const auto& h = state->h;
  appendRecord(static_cast<std::int32_t>(state->leadingWord), static_cast<std::int32_t>(state->mode), h[0], h[1], h[2],
               h[3], h[4], h[5], h[6], h[7], h[8], h[9]);
}

void Output::replace(std::int64_t value) const {
  if (store_ != nullptr) return store_(place_, value);
  for (unsigned i = 0; i < count_; ++i)
    static_cast<unsigned short*>(place_)[i] = static_cast<unsigned short>(value);
}

void Output::appendTo(CallText& text) const {
  if (append_ != nullptr) return append_(text, place_);
  for (unsigned i = 0; i < count_; ++i) {
    if (i > 0) text.append(", ");
    text.append(Hex{.value = static_cast<const unsigned short*>(place_)[i], .digits = 4});
  }
}

Outputs outputs(Switch_HW_Config_t* config) {
  return outputs(&config->NumSlots, &config->NumUserPorts, &config->NumAuxPorts, &config->NumASICs);
}

Outputs outputs(Port_HW_Config_t* config) {
  return outputs(&config->portId.userPort, &config->portId.asic, &config->portId.asicPort, &config->presence,
                 &config->portType);
}

Outputs outputs(SerDesTxRateParams* params) {
  return outputs(&params->power, &params->slew, &params->mode, &params->p0, &params->p1, &params->p2, &params->p3);
}

Outputs outputs(SerDesRxRateParams* params) {
  return outputs(&params->mode, &params->p0, &params->p1, &params->p2, &params->p3);
}

Outputs outputs(SerDesRxDFEStats* stats) {
  auto& h = stats->h;
  return outputs(&stats->leadingWord, &h[0], &h[1], &h[2], &h[3], &h[4], &h[5], &h[6], &h[7], &h[8], &h[9], &stats->Ap,
                 &stats->Amin, &stats->An);
}

Outputs outputs(drv_counters_t* counters) {
  return outputs(&counters->decodeErrors, &counters->crcErrors);
}

}  // namespace operations
