#include "simulator/switch/link_results.h"

#include <cmath>

#include "tests/unit/simulator/switch/switch_bench.h"

namespace simulator {
namespace {

// Offsets of An and mismatches of the taps, the latter in thousandths, of links that are alike: two ASICs of four ports
// of two links, none of which disturbs another.
std::pair<std::vector<long>, std::vector<long>> imperfections() {
  const std::string asic = R"([[asics]]
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
  const SwitchDescription description =
      readDescription("channels.quiet = { fr4_inches = 8, crosstalk_db = -100 }\n" + asic + asic, "");
  SwitchState state;
  state.asics.assign(2, {.ports = std::vector<PortState>(4), .plls = std::vector<RegisterFile>(1)});
  EXPECT_TRUE(fromRecords(description, Switch(description).exportState(), state));
  LinkResults results(description);
  std::pair<std::vector<long>, std::vector<long>> found;
  for (unsigned number = 0; number < 8; ++number) {
    const unsigned which = number / 4;
    const PortView port({which, description.asics[which], state.asics[which]}, number % 4);
    for (unsigned link = 0; link < 2; ++link) {
      const LinkResult& result = results.of(port, link, incomingOf(port, link));
      const double h1Even = result.taps[0], h1Odd = result.taps[1];
      found.first.push_back(std::lround(result.an + result.ap));
      found.second.push_back(std::lround(2000 * (h1Even - h1Odd) / (h1Even + h1Odd)));
    }
  }
  return found;
}

// What GetSerDesRxDFEStats shows of links that are alike differs by these, which may never change.
TEST(LinkImperfections, AreThoseOfTheirPlace) {
  const std::vector<long> kOffsets = {-3, -1, 2, -3, 0, 2, -2, 0, 0, 2, -2, 0, 3, -2, 1, 3};
  const std::vector<long> kMismatches = {-20, -5, 15, -15, 5, 20, -5, 10, 5, 20, -5, 10, -15, 0, 20, -10};
  EXPECT_EQ(imperfections(), std::pair(kOffsets, kMismatches));
}

}  // namespace
}  // namespace simulator
