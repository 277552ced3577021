// A command's words, taken in order.
#include "arguments/word_reader.h"

#include <string>
#include <vector>

#include "arguments/keywords.h"
#include "arguments/port_lists.h"
#include "tests/support/tool_test.h"
#include "topology/serdes_topology.h"

namespace recording {
namespace {

class Words : public TopologyTest {
 protected:
  WordReader readerOf(std::vector<std::string> words) {
    words_ = std::move(words);
    pointers_.clear();
    for (std::string& word : words_)
      pointers_.push_back(word.data());
    return {static_cast<int>(pointers_.size()), pointers_.data()};
  }

 private:
  std::vector<std::string> words_;
  std::vector<char*> pointers_;
};

TEST_F(Words, AreTakenInOrderWithoutTheCommandWord) {
  WordReader in = readerOf({"command", "8G", "-5", "0x1FF", "asic", "0", "2-3"});
  EXPECT_EQ(in.take(parseRate), SPEED_8G);
  EXPECT_EQ(in.number<int>(), -5);
  EXPECT_EQ(in.number<signed char>(), -1);
  EXPECT_EQ(in.take(parseInterface), INTERFACE_ASIC);
  EXPECT_EQ(in.ports(), 0xDu);
  EXPECT_FALSE(in.failed());
  EXPECT_EQ(in.status(), CMD_OK);
}

TEST_F(Words, FirstFailureStandsAndWordsBehindItAreNotLookedAt) {
  WordReader in = readerOf({"command", "12", "x", "7", "0"});
  EXPECT_EQ(in.number(), 12u);
  EXPECT_EQ(in.number(), 0u);
  EXPECT_TRUE(in.failed());
  EXPECT_EQ(in.number(), 0u);
  EXPECT_EQ(in.ports(requireEthernet), 0u);
  EXPECT_EQ(in.cores(), 0u);
  in.require(false, CMD_UNKNOWN);
  EXPECT_EQ(in.status(), CMD_BAD_PARAM);
}

TEST_F(Words, MissingWordIsTooFewArguments) {
  WordReader in = readerOf({"command", "1"});
  EXPECT_EQ(in.number(), 1u);
  EXPECT_FALSE(in.failed());
  EXPECT_EQ(in.number(), 0u);
  EXPECT_EQ(in.status(), CMD_TOO_FEW_ARGS);
}

TEST_F(Words, MissingListIsTooFewArguments) {
  WordReader ports = readerOf({"command"});
  EXPECT_EQ(ports.ports(), 0u);
  EXPECT_EQ(ports.status(), CMD_TOO_FEW_ARGS);
  WordReader cores = readerOf({"command"});
  EXPECT_EQ(cores.cores(), 0u);
  EXPECT_EQ(cores.status(), CMD_TOO_FEW_ARGS);
}

TEST_F(Words, PortsHaveToPassTheCheck) {
  WordReader passing = readerOf({"command", "exg"});
  EXPECT_EQ(passing.ports(requireEthernet), serdesTopology.exgPortList);
  EXPECT_FALSE(passing.failed());
  WordReader failing = readerOf({"command", "exg"});
  (void)failing.ports(requireFibreChannel);
  EXPECT_EQ(failing.status(), CMD_FC_ONLY);
}

TEST_F(Words, CoreListIsOfCores) {
  serdesTopology.exgPortList = 0x10;
  serdesTopology.exgCoreMask = 0x20;
  WordReader in = readerOf({"command", "exg"});
  EXPECT_EQ(in.cores(), 0x20u);
}

TEST_F(Words, RequirementFailsUnlessItHolds) {
  WordReader in = readerOf({"command"});
  in.require(true, CMD_UNKNOWN);
  EXPECT_FALSE(in.failed());
  in.require(false, CMD_TOO_LONG);
  EXPECT_EQ(in.status(), CMD_TOO_LONG);
}

}  // namespace
}  // namespace recording
