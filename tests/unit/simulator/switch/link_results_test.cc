#include "simulator/switch/link_results.h"

#include <cmath>

#include "tests/unit/simulator/switch/switch_bench.h"

namespace simulator {
namespace {

// An ASIC of ports that are alike; none disturbs another.
const std::string kAlike = R"([[asics]]
[[asics.cores]]
cores = 0
type = 2
[[asics.ports]]
ports = "0-3"
kind = "GL"
links = 2
far_end = "loop"
speed = "8G"
channel = "quiet"
)";
const std::string kTwo = "channels.quiet = { fr4_inches = 8, crosstalk_db = -100 }\n" + kAlike + kAlike;

// What GetSerDesRxDFEStats shows of links that are alike differs by these, which may never change.
TEST(LinkImperfections, AreThoseOfTheirPlace) {
  const SwitchDescription description = readDescription(kTwo, "");
  SwitchState state;
  state.asics.assign(2, {.ports = std::vector<PortState>(4), .plls = std::vector<RegisterFile>(1)});
  ASSERT_TRUE(fromRecords(description, Switch(description).exportState(), state));
  LinkResults results(description);
  std::vector<long> offsets, mismatches;
  for (unsigned asic = 0; asic < 2; ++asic) {
    for (unsigned number = 0; number < 4; ++number) {
      const PortView port({asic, description.asics[asic], state.asics[asic]}, number);
      for (unsigned link = 0; link < 2; ++link) {
        const LinkResult& result = results.of(port, link, incomingOf(port, link));
        const double h1Even = result.taps[0], h1Odd = result.taps[1];
        offsets.push_back(std::lround(result.an + result.ap));
        mismatches.push_back(std::lround(2000 * (h1Even - h1Odd) / (h1Even + h1Odd)));
      }
    }
  }
  EXPECT_EQ(offsets, (std::vector<long>{-3, -1, 2, -3, 0, 2, -2, 0, 0, 2, -2, 0, 3, -2, 1, 3}));
  EXPECT_EQ(mismatches,
            (std::vector<long>{-20, -5, 15, -15, 5, 20, -5, 10, 5, 20, -5, 10, -15, 0, 20, -10}));  // thousandths
}

}  // namespace
}  // namespace simulator
