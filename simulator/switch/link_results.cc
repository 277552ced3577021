// Gathers the inputs of the link model and asks it when they have changed.
#include "simulator/switch/link_results.h"

#include "simulator/switch/speed.h"

namespace simulator {
namespace {

// A small fixed imperfection of each link: no two need be alike, and none may change.
double mismatchOf(const PortView& port, unsigned link) {
  return 0.005 * (static_cast<int>((port.asic.number * 5 + port.number * 7 + link * 3) % 9) - 4);
}
double offsetOf(const PortView& port, unsigned link) {
  return static_cast<int>((port.asic.number * 3 + port.number * 5 + link * 2) % 7) - 3;
}

LinkInputs inputsOf(const PortView& port, unsigned link, const Incoming& incoming) {
  Receiver receiver = receiverOf(port.rx.traits, port.state.rx[link].registers);
  receiver.evenOddMismatch = port.rx.traits.hasEvenAndOddTaps ? mismatchOf(port, link) : 0;
  receiver.offsetLsb = offsetOf(port, link);
  return {.isOn = port.rxField(link, Field::kRxEnable) != 0,
          .isClocked = port.rx.pllLocked(),
          .arrives = incoming.arrives,
          .transmitter = incoming.transmitter,
          .channel = incoming.channel,
          .receiver = receiver,
          .farBaudGbd = incoming.baudGbd,
          .baudGbd = linkBaud(port, port.rx)};
}

}  // namespace

LinkResults::LinkResults(const SwitchDescription& description) {
  for (const AsicDescription& asic : description.asics)
    memos_.emplace_back(asic.ports.size());
}

LinkResult LinkResults::evaluate(const LinkInputs& inputs) {
  if (!inputs.isOn) return {};
  if (!inputs.arrives || !inputs.isClocked) {
    LinkResult result = silentLink(inputs.receiver);
    result.signalDetected = inputs.arrives;
    return result;
  }
  ++evaluations_;
  return evaluateLink(inputs.transmitter, *inputs.channel, inputs.receiver, inputs.baudGbd, inputs.farBaudGbd);
}

const LinkResult& LinkResults::of(const PortView& port, unsigned link, const Incoming& incoming) {
  Memo& memo = memos_[port.asic.number][port.number][link];
  const LinkInputs inputs = inputsOf(port, link, incoming);
  if (!memo.isValid || memo.inputs != inputs) memo = {.isValid = true, .inputs = inputs, .result = evaluate(inputs)};
  return memo.result;
}

}  // namespace simulator
