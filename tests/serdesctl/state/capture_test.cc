// Of a state, what the switch has is read.
#include "serdesctl/state/capture.h"

#include <gtest/gtest.h>

namespace serdesctl {
namespace {

TEST(Capture, OfAStateWhatTheSwitchHasIsRead) {
  SwitchState state;
  for (const std::uint32_t number : {1U, 2U}) {
    AsicState& asic = state.asics.emplace_back();
    asic.asic = number;
    asic.ports.resize(2);
    asic.ports[0].port = 3;
    asic.ports[1].port = 9;
  }
  state.asics[1].registers.emplace();
  SwitchText hardware;
  hardware.asics = 2;
  CaptureChoice choice = portsOfState(state, hardware);
  EXPECT_EQ(choice.asics, std::set<std::uint32_t>{1});
  EXPECT_FALSE(choice.registers) << "ASIC 2, which has them, is not there";
  ConfigText config;
  config.asic = 1;
  config.ports.resize(9);
  EXPECT_EQ(choice.ports(config), 1U << 3);
  config.asic = 0;
  EXPECT_EQ(choice.ports(config), 0U);
  hardware.asics = 3;
  choice = portsOfState(state, hardware);
  EXPECT_EQ(choice.asics, (std::set<std::uint32_t>{1, 2}));
  EXPECT_TRUE(choice.registers);
}

}  // namespace
}  // namespace serdesctl
