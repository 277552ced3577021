// Port lists as a command's words, and the checks of port types.
#include "arguments/port_lists.h"

#include "arguments/argument_parsers.h"
#include "tests/support/tool_test.h"

namespace recording {
namespace {

constexpr std::uint32_t kGl = 0x03F;
constexpr std::uint32_t kXg = 0x0C0;
constexpr std::uint32_t kExg = 0xF00;
constexpr std::uint32_t kUntyped = 0xFFFFF000;

class PortLists : public TopologyTest {
 protected:
  // Parses the words of a command that sets or does not; its list begins at word `first`.
  static CmdStatus parse(bool sets, std::vector<std::string> words, int first, std::uint32_t& mask) {
    currentCommandSets = sets;
    std::vector<char*> pointers;
    for (std::string& word : words)
      pointers.push_back(word.data());
    mask = 0xDEADBEEF;
    const CmdStatus status = parsePorts(static_cast<int>(pointers.size()), pointers.data(), first, mask);
    EXPECT_EQ(platform.calls, Calls{});
    return status;
  }

  static void expectMask(const std::vector<std::string>& words, int first, std::uint32_t expected) {
    std::uint32_t mask = 0;
    EXPECT_EQ(parse(false, words, first, mask), CMD_OK);
    EXPECT_EQ(mask, expected);
  }
};

TEST_F(PortLists, ListBeginsBehindTheFixedArguments) {
  expectMask({"show", "0", "2-3"}, 1, 0xD);
  expectMask({"set", "4", "5", "5", "0"}, 4, 0x1);
  std::uint32_t mask = 0;
  EXPECT_EQ(parse(false, {"show"}, 1, mask), CMD_TOO_FEW_ARGS);
  EXPECT_EQ(mask, 0u);
  EXPECT_EQ(parse(true, {"set"}, 2, mask), CMD_TOO_FEW_ARGS);
}

TEST_F(PortLists, KeywordsAreTheSelectedAsicsPorts) {
  expectMask({"show", "gl"}, 1, kGl);
  expectMask({"show", "XG"}, 1, kXg);
  expectMask({"show", "Exg"}, 1, kExg);
  expectMask({"show", "all"}, 1, kGl | kXg | kExg);
  platform.portCount = 3;
  platform.ports[0].hwConfig.portType = kPortTypeExg;
  platform.ports[1].hwConfig.presence = 0;
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  platform.calls.clear();
  expectMask({"show", "gl"}, 1, 0x4);
  expectMask({"show", "xg"}, 1, 0x0);
  expectMask({"show", "exg"}, 1, 0x1);
  expectMask({"show", "all"}, 1, 0x5);
  expectMask({"show", "1"}, 1, 0x2);
}

TEST_F(PortLists, SetCommandMayMixPortsOfOneTypeWithOnesWithout) {
  std::uint32_t mask = 0;
  EXPECT_EQ(parse(true, {"set", "8-31"}, 1, mask), CMD_OK);
  EXPECT_EQ(mask, 0xFFFFFF00);
  for (const char* ports : {"5-6", "7-8", "all"})
    EXPECT_EQ(parse(true, {"set", ports}, 1, mask), CMD_MIXED_PORT_TYPES) << ports;
}

TEST_F(PortLists, EachTypeRuleRefusesWhatItDoesNotAllow) {
  const struct {
    std::uint32_t mask;
    bool isFibreChannel, isEthernet, isOneType;
  } rows[] = {{0, true, true, true},
              {kGl, true, false, true},
              {kXg, true, false, true},
              {kExg, false, true, true},
              {0x001, true, false, true},
              {0x040, true, false, true},
              {0x080, true, false, true},
              {0x100, false, true, true},
              {0x800, false, true, true},
              {kGl | kXg, true, false, false},
              {0x060, true, false, false},
              {0x120, false, false, false},
              {0x180, false, false, false},
              {0x801, false, false, false},
              {kExg | 0x40, false, false, false},
              {kGl | kXg | kExg, false, false, false},
              {kGl | kUntyped, true, false, true},
              {kXg | kUntyped, true, false, true},
              {kExg | kUntyped, false, true, true},
              {kUntyped, true, true, true}};
  for (const auto& row : rows) {
    EXPECT_EQ(requireFibreChannel(row.mask), row.isFibreChannel ? CMD_OK : CMD_FC_ONLY) << row.mask;
    EXPECT_EQ(requireEthernet(row.mask), row.isEthernet ? CMD_OK : CMD_ETHERNET_ONLY) << row.mask;
    EXPECT_EQ(requireOnePortType(row.mask), row.isOneType ? CMD_OK : CMD_MIXED_PORT_TYPES) << row.mask;
  }
}

}  // namespace
}  // namespace recording
