// What surrounds every platform operation: time passes, a fault may befall the call, the call is traced, and nothing is
// thrown out of it.
#pragma once

#include <string>

#include "platform/call_text.h"
#include "simulator/api.h"
#include "simulator/calls/session.h"

namespace simulator {

class SIMULATOR_API PlatformCall {
 public:
  // `side` is the class whose operation this is: what it opened is the switch.
  PlatformCall(Side side, const CallSite& site, const Arguments& arguments);

  // Whether the operation is to be carried out; if not, the code says why.
  bool proceeds() const {
    return code_ == kOk;
  }
  Switch& theSwitch() const {
    return *switch_;
  }
  void setCode(int code) {
    code_ = code;
  }
  int code() const {
    return code_;
  }
  // Replaces what a fault replaces, traces the call and gives its code.
  int finish(const Outputs& outputs);

 private:
  const OperationInfo& info_;
  std::string arguments_;
  Switch* switch_;
  const FaultDescription* fault_ = nullptr;
  int code_ = kOk;
};

// Opening and closing need no open switch; the rest is the same.
SIMULATOR_API int openCall(Side side, Operation operation) noexcept;
SIMULATOR_API int closeCall(Side side, Operation operation) noexcept;
// The name of a SerDes type; null when a fault befalls the call.
SIMULATOR_API const char* typeNameCall(SerDesType type) noexcept;

// `action` works on the switch and gives a code; `outputs` lists what it handed back, and is asked only on success.
template <typename Action, typename List>
int platformCall(Side side, const CallSite& site, const Arguments& arguments, Action action, List outputs) noexcept {
  try {
    PlatformCall call(side, site, arguments);
    if (call.proceeds()) call.setCode(action(call.theSwitch()));
    return call.finish(call.code() < 0 ? Outputs{} : outputs());
  } catch (...) {
    return kInternalError;
  }
}

template <typename Action>
int platformCall(Side side, const CallSite& site, const Arguments& arguments, Action action) noexcept {
  return platformCall(side, site, arguments, action, [] { return Outputs{}; });
}

}  // namespace simulator
