// Gathers the inputs of the link model and asks it when they have changed.
#include "simulator/switch/link_results.h"

#include <utility>

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
  receiver.signalDetectMv = port.description.signalDetectMv;
  return {.isOn = port.rxField(link, Field::kRxEnable) != 0,
          .isClocked = port.rx.pllLocked(),
          .arrives = incoming.arrives,
          .transmitter = incoming.transmitter,
          .channel = incoming.channel,
          .receiver = receiver,
          .farBaudGbd = incoming.baudGbd,
          .baudGbd = linkBaud(port, port.rx),
          .aggressors = aggressorsOf(port, link)};
}

}  // namespace

LinkResults::LinkResults(const SwitchDescription& description) {
  for (const AsicDescription& asic : description.asics)
    memos_.emplace_back(asic.ports.size());
}

LinkResult LinkResults::evaluate(const LinkInputs& inputs) {
  if (!inputs.isOn) return {};
  if (!inputs.isLive()) {
    LinkResult result = silentLink(inputs.receiver);
    result.signalDetected = inputs.arrives;
    return result;
  }
  ++evaluations_;
  return evaluateLink(inputs.transmitter, *inputs.channel, inputs.receiver, inputs.baudGbd, inputs.farBaudGbd,
                      inputs.aggressors);
}

LinkResults::Memo& LinkResults::memoOf(const PortView& port, unsigned link, const Incoming& incoming) {
  Memo& memo = memos_[port.asic.number][port.number][link];
  LinkInputs inputs = inputsOf(port, link, incoming);
  if (memo.isValid && memo.inputs == inputs) return memo;
  const LinkResult result = evaluate(inputs);
  memo = {.isValid = true, .inputs = std::move(inputs), .result = result, .eye = nullptr};
  return memo;
}

const LinkResult& LinkResults::of(const PortView& port, unsigned link, const Incoming& incoming) {
  return memoOf(port, link, incoming).result;
}

EyeScan& LinkResults::eyeOf(const PortView& port, unsigned link, const Incoming& incoming) {
  Memo& memo = memoOf(port, link, incoming);
  if (!memo.eye) {
    const LinkInputs& inputs = memo.inputs;
    const double baudGbd = inputs.isLive() ? inputs.baudGbd : 0;  // no eye at a baud of 0
    memo.eye = std::make_unique<EyeScan>(inputs.transmitter, *inputs.channel, inputs.receiver, baudGbd,
                                         inputs.farBaudGbd, inputs.aggressors);
  }
  return *memo.eye;
}

}  // namespace simulator
