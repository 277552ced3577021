// Finds what belongs to a port.
#include "simulator/switch/port.h"

namespace simulator {
namespace {

PortSide sideOf(const AsicView& asic, SerDesLinkType which, unsigned links, unsigned coreId) {
  const CoreDescription& core = asic.description.cores[coreId];
  const SerDesTraits& traits = serDesTraits(core.type);
  const bool isRx = which == SERDES_LINK_RX;
  return {.links = links,
          .coreId = coreId,
          .core = core,
          .pll = asic.state.plls[coreId],
          .traits = traits,
          .map = isRx ? traits.rx : traits.tx,
          .registers = isRx ? core.rxRegisters : core.txRegisters};
}

}  // namespace

bool pllLocked(const CoreDescription& core, const RegisterFile& pll) {
  return serDesTraits(core.type).pll.read(pll, Field::kPllEnable) != 0;
}

PortView::PortView(AsicView itsAsic, unsigned itsNumber)
    : asic(itsAsic),
      number(itsNumber),
      description(asic.description.ports[number]),
      state(asic.state.ports[number]),
      rx(sideOf(asic, SERDES_LINK_RX, description.rxLinks, description.rxCore)),
      tx(sideOf(asic, SERDES_LINK_TX, description.txLinks, description.txCore)) {}

Port::Port(Asic itsAsic, unsigned itsNumber)
    : PortView(itsAsic, itsNumber), asic(itsAsic), state(asic.state.ports[itsNumber]) {}

std::optional<PortView> PortView::cabled() const {
  if (description.farEnd != FarEnd::kPort) return std::nullopt;
  return PortView(asic, description.farPort);
}

std::optional<Port> Port::cabled() const {
  if (description.farEnd != FarEnd::kPort) return std::nullopt;
  return Port(asic, description.farPort);
}

}  // namespace simulator
