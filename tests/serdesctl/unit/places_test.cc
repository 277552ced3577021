// Settings by place: those that there are, and places that a state does not have.
#include "serdesctl/plan/places.h"

#include <gtest/gtest.h>

namespace serdesctl {
namespace {

SwitchState oneLink() {
  SwitchState state;
  PortState& port = state.asics.emplace_back().ports.emplace_back();
  port.tx.emplace_back();
  port.txCaches["8G"].power = 9;
  return state;
}

constexpr const char* kTx = "tx";

TEST(Places, WhatIsAssignedStandsThere) {
  const SettingPlace link = {.asic = 0, .port = 0, .side = kTx, .link = 0};
  const SettingPlace cache = {.asic = 0, .port = 0, .side = kTx, .rate = "8G"};
  for (const Difference& d : std::vector<Difference>{{link, "ffe_mode", {}, "FFE3"},
                                                     {link, "slew_ps", {}, std::int64_t{50}},
                                                     {link, "slew_ps", {}, kUnnamed},
                                                     {cache, "power", std::int64_t{9}, std::int64_t{10}},
                                                     {{.asic = 0, .port = 0}, "stream_enabled", {}, true}}) {
    SwitchState state = oneLink();
    EXPECT_EQ(valueAt(state, d), d.before);
    assign(state, d, d.after);
    EXPECT_EQ(valueAt(state, d), d.after);
  }
}

TEST(Places, WhatThereIsNotIsNothingAndStaysSo) {
  const SettingPlace port = {.asic = 0, .port = 0};
  for (const Difference& d :
       std::vector<Difference>{{{.port = 0}, "stream_enabled", {}, true},
                               {{.asic = 1, .port = 0}, "stream_enabled", {}, true},
                               {{.asic = 0}, "stream_enabled", {}, true},
                               {{.asic = 0, .port = 1}, "stream_enabled", {}, true},
                               {{.asic = 0, .port = 0, .side = kTx, .link = 1}, "k", {}, std::int64_t{1}},
                               {{.asic = 0, .port = 0, .side = kTx, .rate = "4G"}, "power", {}, std::int64_t{1}},
                               {port, "voltage", {}, std::int64_t{1}},
                               {port, "stream_enabled", {}, std::int64_t{1}},
                               {{.asic = 0, .port = 0, .side = kTx, .link = 0}, "k", {}, "much"}}) {
    SwitchState state = oneLink();
    EXPECT_EQ(valueAt(state, d), SettingValue());
    assign(state, d, d.after);
    EXPECT_EQ(valueAt(state, d), SettingValue());
    EXPECT_TRUE(compare(oneLink(), state).settings.empty());
  }
}

}  // namespace
}  // namespace serdesctl
