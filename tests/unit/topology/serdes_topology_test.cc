// Questions to the model.
#include "topology/serdes_topology.h"

#include <string>
#include <utility>
#include <vector>

#include "tests/support/tool_test.h"

namespace recording {
namespace {

class Topology : public TopologyTest {};

TEST_F(Topology, WalkedCountsEndAtTheCapacity) {
  serdesTopology.portCount = 24;
  serdesTopology.coreCount = 18;
  EXPECT_EQ(walkedPortCount(), 24u);
  EXPECT_EQ(walkedCoreCount(), 18u);
  serdesTopology.portCount = serdesTopology.coreCount = 0xFFFFFFFF;
  EXPECT_EQ(walkedPortCount(), 24u);
  EXPECT_EQ(walkedCoreCount(), 18u);
  serdesTopology.portCount = serdesTopology.coreCount = 0;
  EXPECT_EQ(walkedPortCount(), 0u);
  EXPECT_EQ(walkedCoreCount(), 0u);
}

TEST_F(Topology, WalkedLinksEndAtFour) {
  EXPECT_EQ(walkedLinkCount({.linkCount = 0, .serDesType = 2, .coreId = 0}), 0u);
  EXPECT_EQ(walkedLinkCount({.linkCount = 4, .serDesType = 2, .coreId = 0}), 4u);
  EXPECT_EQ(walkedLinkCount({.linkCount = 9, .serDesType = 2, .coreId = 0}), 4u);
  EXPECT_EQ(walkedLinkCount({.linkCount = 0xFFFFFFFF, .serDesType = 2, .coreId = 0}), 4u);
}

TEST_F(Topology, SidesOfAPort) {
  EXPECT_EQ(portSide(8, SERDES_LINK_RX).coreId, 4u);
  EXPECT_EQ(portSide(8, SERDES_LINK_TX).coreId, 5u);
}

TEST_F(Topology, IdentifierOfAPortIsThePlatformsOwn) {
  const port_id_t id = portId(7);
  EXPECT_EQ(id.userPort, 107u);
  EXPECT_EQ(id.asic, 0u);
  EXPECT_EQ(id.asicPort, 7u);
}

TEST_F(Topology, UserPortOfAnyNumber) {
  EXPECT_EQ(userPort(0), 100u);
  EXPECT_EQ(userPort(3), 65535u);
  EXPECT_EQ(userPort(11), 111u);
  EXPECT_EQ(userPort(12), 65535u);
  EXPECT_EQ(userPort(24), 65535u);
  EXPECT_EQ(userPort(0xFFFFFFFF), 65535u);
}

TEST_F(Topology, PortsOfAType) {
  EXPECT_EQ(portsOfType(static_cast<SerDesType>(2), SERDES_LINK_RX, 0xFFFFFFFF), 0x03Fu);
  EXPECT_EQ(portsOfType(static_cast<SerDesType>(3), SERDES_LINK_TX, 0x040), 0x040u);
  EXPECT_EQ(portsOfType(static_cast<SerDesType>(3), SERDES_LINK_TX, 0x001), 0u);
  EXPECT_EQ(portsOfType(static_cast<SerDesType>(0), SERDES_LINK_TX, 0xFFFFFFFF), 0u);
  serdesTopology.portConfig[0].rx.serDesType = 250;
  EXPECT_EQ(portsOfType(static_cast<SerDesType>(250), SERDES_LINK_RX, 0xFFFFFFFF), 0x001u);
  EXPECT_EQ(portsOfType(static_cast<SerDesType>(250), SERDES_LINK_TX, 0xFFFFFFFF), 0u);
}

TEST_F(Topology, CoresOfAType) {
  EXPECT_EQ(coresOfType(static_cast<SerDesType>(2), 0xFFFFFFFF), 0x03u);
  EXPECT_EQ(coresOfType(static_cast<SerDesType>(4), 0x10), 0x10u);
  EXPECT_EQ(coresOfType(static_cast<SerDesType>(0), 0xFFFFFFFF), 0u);
}

TEST_F(Topology, NameOfATypeIsThePlatforms) {
  EXPECT_STREQ(serDesTypeName(3), "TYPE-3");
  EXPECT_EQ(platform.calls, Calls{"ToString(3)"});
}

TEST_F(Topology, TypeWithoutANameIsUnknown) {
  EXPECT_STREQ(serDesTypeName(250), "UNK");
  EXPECT_EQ(platform.calls, Calls{"ToString(250)"});
}

TEST_F(Topology, EmptyNameOfATypeStaysEmpty) {
  platform.typeNames[1] = "";
  EXPECT_STREQ(serDesTypeName(1), "");
}

TEST_F(Topology, NameOfATypeIsCutAt255Characters) {
  platform.typeNames[1] = std::string(255, 'a');
  EXPECT_EQ(serDesTypeName(1), std::string(255, 'a'));
  platform.typeNames[1] = std::string(255, 'b') + "c";
  EXPECT_EQ(serDesTypeName(1), std::string(255, 'b'));
  platform.typeNames[1] = "short again";
  EXPECT_STREQ(serDesTypeName(1), "short again");
}

std::vector<std::uint32_t> bitsOf(std::uint32_t mask, std::uint32_t count) {
  std::vector<std::uint32_t> bits;
  forEachBit(mask, count, [&](std::uint32_t bit) { bits.push_back(bit); });
  return bits;
}

TEST(ForEachBit, VisitsSetBitsBelowTheCountInAscendingOrder) {
  using Bits = std::vector<std::uint32_t>;
  EXPECT_EQ(bitsOf(0x80000015, 32), (Bits{0, 2, 4, 31}));
  EXPECT_EQ(bitsOf(0x80000015, 31), (Bits{0, 2, 4}));
  EXPECT_EQ(bitsOf(0x15, 4), (Bits{0, 2}));
  EXPECT_EQ(bitsOf(0xFFFFFFFF, 0), Bits{});
  EXPECT_EQ(bitsOf(0, 32), Bits{});
  EXPECT_EQ(bitsOf(0xFFFFFFFF, 40).size(), 32u);
}

using Links = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

Links linksOf(std::uint32_t portMask, SerDesLinkType side) {
  Links links;
  forEachLink(portMask, side, [&](std::uint32_t port, std::uint32_t link) { links.emplace_back(port, link); });
  return links;
}

TEST_F(Topology, LinksOfThePortsInAscendingOrder) {
  serdesTopology.portConfig[6].rx.linkCount = 2;
  serdesTopology.portConfig[7].rx.linkCount = 9;
  serdesTopology.portConfig[8].rx.linkCount = 0;
  EXPECT_EQ(linksOf(0x1E0, SERDES_LINK_RX), (Links{{5, 0}, {6, 0}, {6, 1}, {7, 0}, {7, 1}, {7, 2}, {7, 3}}));
  EXPECT_EQ(linksOf(0x1E0, SERDES_LINK_TX),
            (Links{{5, 0}, {6, 0}, {6, 1}, {6, 2}, {6, 3}, {7, 0}, {7, 1}, {7, 2}, {7, 3}, {8, 0}}));
}

TEST_F(Topology, LinksOfPortsBeyondTheTopologyAreNotVisited) {
  EXPECT_EQ(linksOf(0xFFFFF000, SERDES_LINK_TX), Links{});
}

}  // namespace
}  // namespace recording
