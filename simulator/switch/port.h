// A port as operations see it: found once when an operation begins, with everything at hand that is asked of it.
#pragma once

#include <optional>

#include "simulator/switch/state.h"

namespace simulator {

bool pllLocked(const CoreDescription& core, const RegisterFile& pll);

// An ASIC to look at, and one to change.
struct AsicView {
  unsigned number;
  const AsicDescription& description;
  const AsicState& state;
};
struct Asic {
  unsigned number;
  const AsicDescription& description;
  AsicState& state;

  operator AsicView() const {
    return {number, description, state};
  }
};

// The receive or the transmit side of a port.
struct PortSide {
  unsigned links;
  unsigned coreId;
  const CoreDescription& core;
  const RegisterFile& pll;
  const SerDesTraits& traits;
  const RegisterMap& map;  // of a link's registers
  unsigned registers;      // how many a link has

  bool pllLocked() const {
    return simulator::pllLocked(core, pll);
  }
};

// A port to look at.
struct PortView {
  PortView(AsicView asic, unsigned number);

  AsicView asic;
  unsigned number;
  const PortDescription& description;
  const PortState& state;
  PortSide rx;
  PortSide tx;

  const PortSide& side(SerDesLinkType which) const {
    return which == SERDES_LINK_RX ? rx : tx;
  }
  const RegisterFile& registers(SerDesLinkType which, unsigned link) const {
    return which == SERDES_LINK_RX ? state.rx[link].registers : state.tx[link].registers;
  }
  int rxField(unsigned link, Field field) const {
    return rx.map.read(state.rx[link].registers, field);
  }
  int txField(unsigned link, Field field) const {
    return tx.map.read(state.tx[link].registers, field);
  }
  // The port at the other end of the cable, if it ends at one; the port itself for a loop-back plug.
  std::optional<PortView> cabled() const;
};

// A port to change: the same, with a state that can be written.
struct Port : PortView {
  Port(Asic asic, unsigned number);

  Asic asic;
  PortState& state;

  RegisterFile& registers(SerDesLinkType which, unsigned link) const {
    return which == SERDES_LINK_RX ? state.rx[link].registers : state.tx[link].registers;
  }
  void setRxField(unsigned link, Field field, int value) const {
    rx.map.write(state.rx[link].registers, field, value);
  }
  void setTxField(unsigned link, Field field, int value) const {
    tx.map.write(state.tx[link].registers, field, value);
  }
  std::optional<Port> cabled() const;
};

}  // namespace simulator
