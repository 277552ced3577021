// Faults and trace around a call.
#include "simulator/calls/platform_call.h"

#include <string>

namespace simulator {
namespace {

// A fault on opening or closing strikes after the operation would have been carried out; it is left undone.
int faultOf(Switch* theSwitch, Operation operation) {
  const FaultDescription* fault = theSwitch == nullptr ? nullptr : theSwitch->beginCall({.operation = operation});
  return fault == nullptr ? kOk : fault->code;
}

// Opens or closes by `action` and traces it under the operation's name.
template <typename Action>
int tracedCall(Operation operation, Action action) noexcept {
  try {
    Session& session = Session::instance();
    const int code = action(session);
    if (Trace& trace = session.trace(); trace.isOn()) {
      CallText text;
      appendCall(text, operation, arguments(), {}, code);
      trace.line(text.text());
    }
    return code;
  } catch (...) {
    return kInternalError;
  }
}

}  // namespace

PlatformCall::PlatformCall(Side side, const CallSite& site)
    : info_(operationInfo(site.operation)), switch_(Session::instance().find(side)) {
  if (switch_ == nullptr) {
    code_ = kNotOpen;
    return;
  }
  fault_ = switch_->beginCall(site);
  if (fault_ != nullptr && !fault_->answer) code_ = fault_->code;
}

void PlatformCall::replaceOutput(const Outputs& outputs) const {
  for (std::size_t i = 0; i < outputs.count; ++i) {
    if (info_.outputs[i] == fault_->answer->output) outputs.places[i].replace(fault_->answer->value);
  }
}

void PlatformCall::finish(int code) {
  code_ = code;
  // What hands nothing back is a set.
  if (code_ >= 0 && info_.outputs.empty()) code_ = Session::instance().keep();
}

int openCall(Side side, Operation operation) noexcept {
  return tracedCall(operation, [&](Session& session) {
    const bool wasOpen = session.find(side) != nullptr;
    if (const int code = session.open(side); code != kOk) return code;
    const int code = faultOf(session.any(), operation);
    // The switch stays even if nobody has it open now: a fault that strikes once must not strike again.
    if (code != kOk && !wasOpen) session.takeBack(side);
    if (code != kOk) (void)session.keep();
    return code;
  });
}

int closeCall(Side side, Operation operation) noexcept {
  return tracedCall(operation, [&](Session& session) {
    const int code = faultOf(session.find(side), operation);
    if (code == kOk) return session.close(side);
    (void)session.keep();
    return code;
  });
}

const char* typeNameCall(SerDesType type) noexcept {
  try {
    Session& session = Session::instance();
    Switch* const theSwitch = session.any();
    const FaultDescription* fault =
        theSwitch == nullptr ? nullptr : theSwitch->beginCall({.operation = Operation::kToString});
    const char* name = theSwitch == nullptr ? kUnknownType : theSwitch->typeName(type);
    if (fault != nullptr) name = fault->answer ? fault->answer->text.c_str() : nullptr;
    if (Trace& trace = session.trace(); trace.isOn()) {
      const std::string shown = name == nullptr ? "null" : '"' + std::string(name) + '"';
      trace.line("ToString(" + std::to_string(static_cast<std::uint32_t>(type)) + ") -> " + shown);
    }
    return name;
  } catch (...) {
    return kUnknownType;
  }
}

}  // namespace simulator
