// What surrounds every platform operation: time passes, a fault may apply to the call, the call is traced, and nothing
// is thrown out of it.
#pragma once

#include "simulator/api.h"
#include "simulator/calls/session.h"

namespace simulator {

class SIMULATOR_API PlatformCall {
 public:
  // `side` is the class whose operation this is: what it opened is the switch.
  PlatformCall(Side side, const CallSite& site);

  // The code so far: what is negative keeps the operation from being carried out.
  int code() const {
    return code_;
  }
  Switch& theSwitch() const {
    return *switch_;
  }
  // Whether a fault replaces an output.
  bool isAnsweredByFault() const {
    return fault_ != nullptr && fault_->answer;
  }
  void replaceOutput(const Outputs& outputs) const;
  // Takes the operation's code; what it set is kept before anybody hears that it succeeded.
  void finish(int code);

 private:
  const OperationInfo& info_;
  Switch* switch_;
  const FaultDescription* fault_ = nullptr;
  int code_ = kOk;
};

// Opening and closing need no open switch; the rest is the same.
SIMULATOR_API int openCall(Side side, Operation operation) noexcept;
SIMULATOR_API int closeCall(Side side, Operation operation) noexcept;
// The name of a SerDes type; null when a fault applies to the call.
SIMULATOR_API const char* typeNameCall(SerDesType type) noexcept;

// `action` works on the switch and gives a code. `putArguments` words the arguments, and is asked only for a trace;
// `listOutputs` lists what was handed back, and is asked only on success.
template <typename PutArguments, typename Action, typename ListOutputs>
int platformCall(Side side, const CallSite& site, PutArguments putArguments, Action action,
                 ListOutputs listOutputs) noexcept {
  try {
    PlatformCall call(side, site);
    if (call.code() >= 0) call.finish(action(call.theSwitch()));
    const bool succeeded = call.code() >= 0;
    if (succeeded && call.isAnsweredByFault()) call.replaceOutput(listOutputs());
    Trace& trace = Session::instance().trace();
    if (trace.isOn()) {
      CallText text;
      appendCall(text, site.operation, putArguments, succeeded ? listOutputs() : Outputs{}, call.code());
      trace.line(text.text());
    }
    return call.code();
  } catch (...) {
    return kInternalError;
  }
}

template <typename PutArguments, typename Action>
int platformCall(Side side, const CallSite& site, PutArguments putArguments, Action action) noexcept {
  return platformCall(side, site, putArguments, action, [] { return Outputs{}; });
}

}  // namespace simulator
