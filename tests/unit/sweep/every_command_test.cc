// What holds for every command of the table, tried on its example lines.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <sstream>

#include "tests/unit/sweep/examples.h"

namespace recording {
namespace {

std::vector<std::string> wordsOf(const std::string& line) {
  std::istringstream stream(line);
  return {std::istream_iterator<std::string>(stream), {}};
}

std::string joined(const std::vector<std::string>& words, std::size_t count) {
  std::string line;
  for (std::size_t i = 0; i < count; ++i)
    line += (i == 0 ? "" : " ") + words[i];
  return line;
}

bool showsTable(const Outcome& outcome) {
  return outcome.out.find("\nASIC port ") != std::string::npos;
}

// Tables by SerDes type ask for the types' names.
bool showsTypeTables(const Outcome& outcome) {
  return std::find_if(outcome.calls.begin(), outcome.calls.end(),
                      [](const std::string& call) { return call.starts_with("ToString"); }) != outcome.calls.end();
}

// A table's lines without their cells. A line of cells that end in a blank has a label of 20 characters; cells that
// begin with one stand behind a label of 19.
std::string labelsOf(const std::string& table) {
  std::istringstream lines(table);
  std::string labels;
  for (std::string line; std::getline(lines, line);) {
    const bool isTitle = labels.size() == 1;
    labels += (line.empty() || isTitle ? line : line.substr(0, line.back() == ' ' ? 20 : 19)) + "\n";
  }
  return labels;
}

// What the command does where no port is selected: a set command nothing, a dump by types nothing, a table its labels.
Outcome withoutPorts(const Outcome& faultless) {
  return printed(showsTypeTables(faultless) ? "" : labelsOf(faultless.out), {});
}

TEST(Examples, EveryCommandHasOne) {
  for (std::size_t i = 0; cmdTable[i].name != nullptr; ++i) {
    const std::string name = cmdTable[i].name;
    const auto* example = std::find_if(std::begin(kExamples), std::end(kExamples),
                                       [&](const Example& candidate) { return candidate.name == name; });
    ASSERT_NE(example, std::end(kExamples)) << name << " has no example line: add one to tests/unit/sweep/examples.h";
    EXPECT_EQ(takesPorts(*example), std::string(cmdTable[i].argHelp).ends_with("ist]"))
        << name << " takes a list if its argument help ends in one";
  }
}

class EveryCommand : public TopologyTest, public testing::WithParamInterface<Example> {
 protected:
  static Outcome runExample() {
    return run(lineOf(GetParam()));
  }
};

INSTANTIATE_TEST_SUITE_P(, EveryCommand, testing::ValuesIn(kExamples), exampleName);

TEST_P(EveryCommand, AnswersToItsNameAndShortcutInAnyCase) {
  const Outcome expected = runExample();
  EXPECT_NE(expected.status, CMD_UNKNOWN);
  for (std::string word : {rowOf(GetParam().name).name, rowOf(GetParam().name).shortcut}) {
    for (int (*changed)(int) : {static_cast<int (*)(int)>(std::tolower), static_cast<int (*)(int)>(std::toupper)}) {
      std::transform(word.begin(), word.end(), word.begin(),
                     [&](char letter) { return static_cast<char>(changed(static_cast<unsigned char>(letter))); });
      Example named = GetParam();
      named.name = word.c_str();
      SetUp();
      EXPECT_EQ(run(lineOf(named)), expected) << word;
    }
  }
}

TEST_P(EveryCommand, WantsAllItsWords) {
  const std::vector<std::string> words = wordsOf(lineWith(GetParam(), ""));
  const std::size_t wanted = words.size() + (takesPorts(GetParam()) ? 1 : 0);
  for (std::size_t count = 1; count < wanted; ++count)
    EXPECT_EQ(run(joined(words, count)), refused(CMD_TOO_FEW_ARGS)) << joined(words, count);
}

TEST_P(EveryCommand, AddressesTheCurrentAsic) {
  Outcome expected = runExample();
  for (std::string& call : expected.calls) {
    if (call.find('/') == std::string::npos && !call.starts_with("ToString")) {
      if (const std::size_t asic = call.find("(0"); asic != std::string::npos) call[asic + 1] = '1';
    }
  }
  if (const std::size_t asic = expected.out.find("asicNum:0"); asic != std::string::npos) expected.out[asic + 8] = '1';
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(runExample(), expected);
}

// A loop hands its words to the command that they name.
TEST_P(EveryCommand, JudgesItsArgumentsInFrontOfItsPorts) {
  const std::vector<std::string> good = wordsOf(GetParam().arguments);
  if (std::string(GetParam().name) == "loop") return;
  for (std::size_t bad = 0; bad < good.size(); ++bad) {
    std::vector<std::string> words = good;
    words[bad] = "x";
    const std::string arguments = joined(words, words.size());
    EXPECT_EQ(run(lineWith(GetParam(), arguments, GetParam().ports)), refused(CMD_BAD_PARAM)) << arguments;
    if (!takesPorts(GetParam())) continue;
    for (const char* ports : {"all", "x"})
      EXPECT_EQ(run(lineWith(GetParam(), arguments, ports)), refused(CMD_BAD_PARAM)) << arguments << " " << ports;
    const bool tooFew = static_cast<int>(words.size()) + 1 < rowOf(GetParam().name).minArgs;
    EXPECT_EQ(run(lineWith(GetParam(), arguments, "")), refused(tooFew ? CMD_TOO_FEW_ARGS : CMD_BAD_PARAM))
        << arguments;
  }
}

class EveryCommandOnPorts : public EveryCommand {
 protected:
  static Outcome runOn(const std::string& ports) {
    return run(lineWith(GetParam(), ports));
  }
};

std::vector<Example> examplesOnPorts() {
  std::vector<Example> examples;
  std::copy_if(std::begin(kExamples), std::end(kExamples), std::back_inserter(examples), takesPorts);
  return examples;
}

INSTANTIATE_TEST_SUITE_P(, EveryCommandOnPorts, testing::ValuesIn(examplesOnPorts()), exampleName);

TEST_P(EveryCommandOnPorts, RefusesWhatIsNoList) {
  for (const char* ports : {"ports", "0 1a", "gl 3", "3 all", "0-32", "-1", "0x", "1-"})
    EXPECT_EQ(runOn(ports), refused(CMD_BAD_PARAM)) << ports;
}

TEST_P(EveryCommandOnPorts, RefusesMixedTypesOnlyIfItSets) {
  for (const char* ports : {"0 6", "0 8", "7-8", "all"}) {
    const Outcome outcome = runOn(ports);
    if (rowOf(GetParam().name).isSetCmd != 0) {
      EXPECT_EQ(outcome, refused(CMD_MIXED_PORT_TYPES)) << ports;
    } else {
      EXPECT_NE(outcome.status, CMD_MIXED_PORT_TYPES) << ports;
    }
  }
}

TEST_P(EveryCommandOnPorts, DoesNothingToAnEmptySelection) {
  const Outcome expected = withoutPorts(runExample());
  for (const char* ports : {"5-2", "32 63", "40"})
    EXPECT_EQ(runOn(ports), expected) << ports;
}

TEST_P(EveryCommandOnPorts, HasNothingToDoOnAnAsicWithoutPorts) {
  const Outcome expected = withoutPorts(runExample());
  platform.portCount = 0;
  discover();
  for (const char* ports : {"all", "gl", "xg", "exg"})
    EXPECT_EQ(runOn(ports), expected) << ports;
}

// The head of a table asks about every port that a record could exist for.
TEST_P(EveryCommandOnPorts, IgnoresPortsBeyondThePortCount) {
  const Outcome faultless = runExample();
  Outcome expected = withoutPorts(faultless);
  for (unsigned port = 12; port < 24 && showsTable(faultless) && !showsTypeTables(faultless); ++port)
    expected.calls = expected.calls + headerQuestions({"0/0/0"});
  EXPECT_EQ(runOn("12-31"), expected);
}

TEST_P(EveryCommandOnPorts, WalksPortsInAscendingOrderAndOnce) {
  const bool onlyEthernet = runOn("0").status == CMD_ETHERNET_ONLY;
  const std::string first = onlyEthernet ? "8" : "0", second = onlyEthernet ? "10" : "2";
  const Outcome expected = runOn(first + " " + second);
  EXPECT_NE(expected, runOn(first));
  EXPECT_EQ(runOn(second + " " + first + " " + second), expected);
}

TEST_P(EveryCommandOnPorts, WalksNoMoreThanFourLinksOfAPort) {
  const auto runWithLinks = [&](unsigned linkCount) {
    for (Port& port : platform.ports)
      port.rx.linkCount = port.tx.linkCount = linkCount;
    discover();
    return runExample();
  };
  const Outcome expected = runWithLinks(4);
  EXPECT_EQ(runWithLinks(9), expected);
  EXPECT_EQ(runWithLinks(0xFFFFFFFF), expected);
}

TEST_P(EveryCommandOnPorts, SetsPortsWithoutLinksAndShowsLabelsAlone) {
  const Outcome linked = runExample();
  for (Port& port : platform.ports)
    port.rx.linkCount = port.tx.linkCount = 0;
  discover();
  const Outcome outcome = runExample();
  if (!showsTable(linked)) {
    EXPECT_EQ(outcome, linked);
  } else if (!showsTypeTables(linked)) {
    EXPECT_EQ(outcome.status, CMD_OK);
    EXPECT_EQ(outcome.out, labelsOf(linked.out));
  }
}

TEST_P(EveryCommandOnPorts, WalksNoPortBeyondTheTwentyFourth) {
  const unsigned kind = runOn("0").status == CMD_ETHERNET_ONLY ? 8 : 0;
  for (const unsigned portCount : {40u, 0xFFFFFFFFu}) {
    SetUp();
    for (unsigned port = 22; port < kPorts; ++port) {
      platform.ports[port].hwConfig.portType = platform.ports[kind].hwConfig.portType;
      platform.ports[port].rx.type = platform.ports[port].tx.type = 2;
    }
    platform.portCount = portCount;
    platform.coreCount = kCores;
    discover();
    const Outcome last = runOn("23");
    EXPECT_EQ(last.calls.empty(), std::string(GetParam().name) == "showPLL");  // there are 18 cores
    EXPECT_EQ(runOn("23-31"), last);
  }
}

}  // namespace
}  // namespace recording
