// Port lists as a command's words, and the checks of port types.
#include "arguments/port_lists.h"

#include "arguments/argument_parsers.h"
#include "shell/command_table.h"
#include "tests/support/tool_test.h"
#include "topology/serdes_topology.h"

namespace recording {
namespace {

constexpr std::uint32_t kGl = 0x03F;
constexpr std::uint32_t kXg = 0x0C0;
constexpr std::uint32_t kExg = 0xF00;

struct Parsed {
  CmdStatus status;
  std::uint32_t mask;
};

class PortLists : public TopologyTest {
 protected:
  // Parses as the command does whose name is the first word; its list begins at word `first`.
  static Parsed parse(std::vector<std::string> words, int first) {
    const auto* row = cmdTable.data();
    while (words[0] != row->name)
      ++row;
    currentCommandSets = row->isSetCmd != 0;
    std::vector<char*> pointers;
    for (std::string& word : words)
      pointers.push_back(word.data());
    Parsed parsed{.status = CMD_OK, .mask = 0xDEADBEEF};
    parsed.status = parsePorts(static_cast<int>(pointers.size()), pointers.data(), first, parsed.mask);
    EXPECT_EQ(platform.calls, Calls{});
    return parsed;
  }

  static void expectMask(const std::vector<std::string>& words, int first, std::uint32_t mask) {
    const Parsed parsed = parse(words, first);
    EXPECT_EQ(parsed.status, CMD_OK);
    EXPECT_EQ(parsed.mask, mask);
  }
};

TEST_F(PortLists, ListBeginsBehindTheFixedArguments) {
  expectMask({"showDFE", "0", "2-3"}, 1, 0xD);
  expectMask({"setDFE", "4", "0", "2-3"}, 2, 0xD);
  expectMask({"setVGA", "4", "5", "5", "0"}, 4, 0x1);
}

TEST_F(PortLists, NoWordsLeftIsTooFewArguments) {
  const Parsed none = parse({"showDFE"}, 1);
  EXPECT_EQ(none.status, CMD_TOO_FEW_ARGS);
  EXPECT_EQ(none.mask, 0u);
  EXPECT_EQ(parse({"setDFE", "DFE3"}, 2).status, CMD_TOO_FEW_ARGS);
}

TEST_F(PortLists, ListThatWouldBeginBeyondTheWordsIsTooFewArguments) {
  EXPECT_EQ(parse({"setSlew"}, 2).status, CMD_TOO_FEW_ARGS);
}

TEST_F(PortLists, KeywordsAreTheCurrentAsicsPorts) {
  expectMask({"showDFE", "gl"}, 1, kGl);
  expectMask({"showDFE", "XG"}, 1, kXg);
  expectMask({"showDFE", "Exg"}, 1, kExg);
  expectMask({"showDFE", "all"}, 1, kGl | kXg | kExg);
}

TEST_F(PortLists, KeywordsFollowTheSelectedAsic) {
  platform.portCount = 3;
  platform.ports[0].hwConfig.portType = kPortTypeExg;
  platform.ports[1].hwConfig.presence = 0;
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  platform.calls.clear();
  expectMask({"showDFE", "gl"}, 1, 0x4);
  expectMask({"showDFE", "xg"}, 1, 0x0);
  expectMask({"showDFE", "exg"}, 1, 0x1);
  expectMask({"showDFE", "all"}, 1, 0x5);
  expectMask({"showDFE", "1"}, 1, 0x2);
}

TEST_F(PortLists, ShowCommandMayMixTypes) {
  expectMask({"showDFE", "5-8"}, 1, 0x1E0);
}

TEST_F(PortLists, SetCommandMayNotMixTypes) {
  EXPECT_EQ(parse({"setDFE", "DFE3", "5", "6"}, 2).status, CMD_MIXED_PORT_TYPES);
  EXPECT_EQ(parse({"setDFE", "DFE3", "7-8"}, 2).status, CMD_MIXED_PORT_TYPES);
  EXPECT_EQ(parse({"setDFE", "DFE3", "0", "11"}, 2).status, CMD_MIXED_PORT_TYPES);
  EXPECT_EQ(parse({"setDFE", "DFE3", "all"}, 2).status, CMD_MIXED_PORT_TYPES);
}

TEST_F(PortLists, SetCommandMayTakeOneTypeAndPortsWithout) {
  expectMask({"setDFE", "DFE3", "8-31"}, 2, 0xFFFFFF00);
}

TEST_F(PortLists, FailingWordEndsTheList) {
  EXPECT_EQ(parse({"showDFE", "gl", "3"}, 1).status, CMD_BAD_PARAM);
  EXPECT_EQ(parse({"showDFE", "0", "3x"}, 1).status, CMD_BAD_PARAM);
  EXPECT_EQ(parse({"showDFE", "0-32"}, 1).status, CMD_BAD_PARAM);
}

TEST_F(PortLists, EmptyMaskIsAList) {
  expectMask({"setDFE", "DFE3", "5-2"}, 2, 0);
  expectMask({"showDFE", "32", "63"}, 1, 0);
}

TEST_F(PortLists, FibreChannelRuleRefusesAnyEthernetPort) {
  EXPECT_EQ(requireFibreChannel(0), CMD_OK);
  EXPECT_EQ(requireFibreChannel(0x01), CMD_OK);
  EXPECT_EQ(requireFibreChannel(0x40), CMD_OK);
  EXPECT_EQ(requireFibreChannel(kGl | kXg), CMD_OK);
  EXPECT_EQ(requireFibreChannel(0x100), CMD_FC_ONLY);
  EXPECT_EQ(requireFibreChannel(0x800), CMD_FC_ONLY);
  EXPECT_EQ(requireFibreChannel(0x801), CMD_FC_ONLY);
  EXPECT_EQ(requireFibreChannel(0xFFFFFFFF), CMD_FC_ONLY);
}

TEST_F(PortLists, EthernetRuleRefusesAnyFibreChannelPort) {
  EXPECT_EQ(requireEthernet(0), CMD_OK);
  EXPECT_EQ(requireEthernet(0x100), CMD_OK);
  EXPECT_EQ(requireEthernet(kExg), CMD_OK);
  EXPECT_EQ(requireEthernet(0x01), CMD_ETHERNET_ONLY);
  EXPECT_EQ(requireEthernet(0x80), CMD_ETHERNET_ONLY);
  EXPECT_EQ(requireEthernet(kExg | 0x20), CMD_ETHERNET_ONLY);
  EXPECT_EQ(requireEthernet(kExg | 0x40), CMD_ETHERNET_ONLY);
  EXPECT_EQ(requireEthernet(0xFFFFFFFF), CMD_ETHERNET_ONLY);
}

TEST_F(PortLists, OneTypeRuleRefusesEachPairOfTypes) {
  EXPECT_EQ(requireOnePortType(0), CMD_OK);
  EXPECT_EQ(requireOnePortType(kGl), CMD_OK);
  EXPECT_EQ(requireOnePortType(kXg), CMD_OK);
  EXPECT_EQ(requireOnePortType(kExg), CMD_OK);
  EXPECT_EQ(requireOnePortType(0x060), CMD_MIXED_PORT_TYPES);
  EXPECT_EQ(requireOnePortType(0x120), CMD_MIXED_PORT_TYPES);
  EXPECT_EQ(requireOnePortType(0x180), CMD_MIXED_PORT_TYPES);
  EXPECT_EQ(requireOnePortType(kGl | kXg | kExg), CMD_MIXED_PORT_TYPES);
}

TEST_F(PortLists, PortsWithoutTypeBreakNoRule) {
  constexpr std::uint32_t kUntyped = 0xFFFFF000;
  EXPECT_EQ(requireFibreChannel(kGl | kUntyped), CMD_OK);
  EXPECT_EQ(requireEthernet(kExg | kUntyped), CMD_OK);
  EXPECT_EQ(requireOnePortType(kXg | kUntyped), CMD_OK);
}

}  // namespace
}  // namespace recording
