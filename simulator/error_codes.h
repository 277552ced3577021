// Results of the simulated platform: 0 on success, one of these when an operation refuses.
#pragma once

namespace simulator {

enum ErrorCode : int {
  kOk = 0,
  kNotOpen = -1,           // AsicCtlOpen or PortCtlOpen has not succeeded
  kBadDescription = -2,    // the switch description, or an environment variable, cannot be used
  kBadAsic = -3,           // no such ASIC
  kBadPort = -4,           // no such port, or another user port than the port's own
  kBadLink = -5,           // no such link, or "all links" where one is asked for
  kBadCore = -6,           // no such core
  kBadRegister = -7,       // no such register, or a run of registers that ends beyond the last one
  kReadOnlyRegister = -8,  // the register reports and cannot be written
  kOutOfRange = -9,        // a value beyond what the hardware takes
  kNotSupported = -10,     // this SerDes, or this port for a speed, does not have what is asked for
  kBadArgument = -11,      // a null pointer
  kInjectedFault = -12,    // a fault of the description that names no code of its own
  kInternalError = -13,    // out of memory, or a mistake of the simulator
  kStateInUse = -14,       // another session has the file that keeps the switch's state
  kBadState = -15,         // that file is damaged, of another switch or format, or cannot be read, locked or written
};

}  // namespace simulator
