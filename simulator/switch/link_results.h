// What the receive links make of what arrives. A result is kept together with all that it depends on and is good until
// one of those differs: so nothing can be forgotten to be marked as changed.
#pragma once

#include <array>
#include <memory>
#include <vector>

#include "simulator/link/eye_scan.h"
#include "simulator/link/model.h"
#include "simulator/switch/incoming.h"

namespace simulator {

// Everything that a link result depends on and that can change.
struct LinkInputs {
  bool isOn = false;
  bool isClocked = false;
  bool arrives = false;
  Transmitter transmitter;
  const Channel* channel = nullptr;
  Receiver receiver;
  double farBaudGbd = 0;
  double baudGbd = 0;
  std::vector<Aggressor> aggressors;

  bool operator==(const LinkInputs&) const = default;
  // Whether there is anything to work out.
  bool isLive() const {
    return isOn && isClocked && arrives;
  }
};

class LinkResults {
 public:
  explicit LinkResults(const SwitchDescription& description);

  // Good until the link is asked for again.
  const LinkResult& of(const PortView& port, unsigned link, const Incoming& incoming);
  // The link's eye, which fills in as it is read.
  EyeScan& eyeOf(const PortView& port, unsigned link, const Incoming& incoming);
  // How many results the link model has worked out so far.
  unsigned evaluations() const {
    return evaluations_;
  }

 private:
  struct Memo {
    bool isValid = false;
    LinkInputs inputs;
    LinkResult result;
    std::unique_ptr<EyeScan> eye;  // null until it is asked for
  };

  Memo& memoOf(const PortView& port, unsigned link, const Incoming& incoming);
  LinkResult evaluate(const LinkInputs& inputs);

  std::vector<std::vector<std::array<Memo, kMaxLinks>>> memos_;  // by ASIC, port and link
  unsigned evaluations_ = 0;
};

}  // namespace simulator
