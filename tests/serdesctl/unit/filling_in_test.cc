// What could not be read is as predicted, and what could be as it was read.
#include "serdesctl/apply/filling_in.h"

#include <gtest/gtest.h>

namespace serdesctl {
namespace {

PortState portOf(std::uint32_t number) {
  PortState port;
  port.port = number;
  port.configRate = "8G";
  port.streamEnabled = true;
  port.tx.resize(2);
  port.rx.resize(2);
  for (LiveTx& link : port.tx) {
    static_cast<FfeValues&>(link) = {"FFE3", 115, -4, 55, -25, 0};
    link.slewUnnamed = true;
  }
  for (LiveRx& link : port.rx) {
    link.dfeMode = "DFE5";
    static_cast<VgaValues&>(link) = {6, 4, 0x4e};
  }
  port.txCaches["8G"].power = 9;
  return port;
}

SwitchState switchOf(const std::vector<PortState>& ports) {
  SwitchState state;
  state.asics.emplace_back().ports = ports;
  return state;
}

void expectSame(const PortState& port, const PortState& expected) {
  EXPECT_EQ(port.configRate, expected.configRate);
  EXPECT_EQ(port.streamEnabled, expected.streamEnabled);
  EXPECT_EQ(port.tx, expected.tx);
  EXPECT_EQ(port.rx, expected.rx);
  EXPECT_EQ(port.txCaches, expected.txCaches);
}

TEST(FillingIn, WhatIsMissingIsAsPredicted) {
  const SwitchState predicted = switchOf({portOf(0), portOf(1)});
  SwitchState nothing;
  fillIn(nothing, predicted);
  ASSERT_EQ(nothing.asics.size(), 1U);
  SwitchState known = switchOf({PortState{}});
  fillIn(known, predicted);
  for (const SwitchState& filled : {nothing, known}) {
    ASSERT_EQ(filled.asics[0].ports.size(), 2U);
    for (std::size_t port = 0; port < 2; ++port)
      expectSame(filled.asics[0].ports[port], predicted.asics[0].ports[port]);
  }
}

TEST(FillingIn, WhatWasReadStays) {
  PortState read = portOf(0);
  read.streamEnabled = false;
  read.tx[0].k = 1;
  read.tx[1] = {};
  read.tx[1].slewPs = 36;
  read.rx[1] = {};
  read.rx[0].peak = 2;
  read.txCaches["8G"].power = 3;
  SwitchState known = switchOf({read});
  fillIn(known, switchOf({portOf(0)}));
  PortState expected = portOf(0);
  expected.streamEnabled = false;
  expected.tx[0].k = 1;
  expected.tx[1].slewPs = 36;
  expected.tx[1].slewUnnamed = false;
  expected.rx[0].peak = 2;
  expected.txCaches["8G"].power = 3;
  expectSame(known.asics[0].ports[0], expected);
}

}  // namespace
}  // namespace serdesctl
