// Faults and trace around a call.
#include "simulator/calls/platform_call.h"

namespace simulator {
namespace {

std::string lineOf(std::string_view symbol, std::string_view arguments, const std::string& outputs, int code) {
  std::string line = std::string(symbol) + '(' + std::string(arguments) + ')';
  if (!outputs.empty()) line += " -> " + outputs;
  return line + " = " + std::to_string(code);
}

// A fault on opening or closing strikes after the deed would have been done; the deed is left undone.
int faultOf(Switch* theSwitch, Operation operation) {
  const FaultDescription* fault = theSwitch == nullptr ? nullptr : theSwitch->beginCall({.operation = operation});
  return fault == nullptr ? kOk : fault->code;
}

// Runs `deed` and traces it under the operation's name.
template <typename Deed>
int tracedCall(Operation operation, Deed deed) noexcept {
  try {
    Session& session = Session::instance();
    const int code = deed(session);
    if (session.trace().isOn()) session.trace().line(lineOf(operationInfo(operation).symbol, "", "", code));
    return code;
  } catch (...) {
    return kInternalError;
  }
}

}  // namespace

PlatformCall::PlatformCall(Side side, const CallSite& site, const Arguments& arguments)
    : info_(operationInfo(site.operation)), arguments_(arguments.text()), switch_(Session::instance().find(side)) {
  if (switch_ == nullptr) {
    code_ = kNotOpen;
    return;
  }
  fault_ = switch_->beginCall(site);
  if (fault_ != nullptr && !fault_->answer) code_ = fault_->code;
}

int PlatformCall::finish(const Outputs& outputs) {
  if (code_ >= 0 && fault_ != nullptr && fault_->answer) {
    for (const Output& output : outputs) {
      if (output.name() == fault_->answer->output) output.replace(fault_->answer->value);
    }
  }
  // What hands nothing back is a set. It is kept before anybody hears that it succeeded.
  if (code_ >= 0 && info_.outputs.empty()) code_ = Session::instance().keep();
  Trace& trace = Session::instance().trace();
  if (!trace.isOn()) return code_;
  std::string text;
  for (const Output& output : outputs)
    text += (text.empty() ? "" : ", ") + output.text();
  trace.line(lineOf(info_.symbol, arguments_, text, code_));
  return code_;
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
    if (session.trace().isOn()) {
      const std::string shown = name == nullptr ? "null" : '"' + std::string(name) + '"';
      session.trace().line("ToString(" + std::to_string(static_cast<std::uint32_t>(type)) + ") -> " + shown);
    }
    return name;
  } catch (...) {
    return kUnknownType;
  }
}

}  // namespace simulator
