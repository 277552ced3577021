// Judging commands by the tool's own code.
#include "serdesctl/rehearsal/rehearsal.h"

#include <gtest/gtest.h>

#include <cstring>

#include "serdesctl/rehearsal/rehearsal_platform.h"

namespace serdesctl {
namespace {

// A switch with four ports of each type in ASIC 0: GL, XG with four links, EXG.
LearntSwitch smallSwitch() {
  LearntAsic asic;
  asic.config.portCount = 12;
  asic.config.coreCount = 3;
  asic.config.types.resize(kSerDesTypeCount);
  asic.config.types[2].name = "A";
  asic.config.types[3].name = "B";
  asic.config.types[4].name = "C";
  const char* const names[] = {"A", "B", "C"};
  for (std::uint32_t port = 0; port < 12; ++port) {
    const std::uint32_t core = port / 4;
    const ConfigSide side = {.links = core == 1 ? 4U : 1U, .serDesType = names[core], .core = core};
    asic.config.ports.push_back({.port = port, .rx = side, .tx = side, .userPort = port + 10});
  }
  asic.config.glPorts = 0xF;
  asic.config.xgPorts = 0xF0;
  asic.config.exgPorts = 0xF00;
  LearntSwitch learnt;
  learnt.hardware.asics = 2;
  learnt.asics[0] = asic;
  return learnt;
}

Forecast judged(const std::string& line) {
  Rehearsal rehearsal(smallSwitch());
  return rehearsal.judge(splitWords(line));
}

// Words that the command takes, up to its list.
std::string beforeList(const CmdTableEntry& row) {
  const std::string name = row.name;
  if (name == "setTxEnable") return name + " 1";
  if (name == "setVGA") return name + " 1 1 1";
  if (name == "setSlew") return name + " 36";
  if (name == "setRate") return name + " 8G";
  if (name == "setDFE") return name + " DFE3";
  if (name == "setFFE" || name == "setTxParams") return name + " FFE3 1 1 1 1 1" + (name == "setTxParams" ? " 36" : "");
  if (name == "setRxParams") return name + " DFE3 1 1 1";
  if (name == "setTxParamsCache") return name + " 8G FFE3 1 1 1 1 1 36";
  if (name == "setRxParamsCache") return name + " 8G DFE3 1 1 1";
  if (name == "setTxParamsRaw") return name + " asic 8G 0 2 1 1 1 1 1";
  if (name == "setRxParamsRaw") return name + " asic 8G 1 1 1 1 1";
  if (name.starts_with("eset")) return name + " 10G 1 1";
  if (name.ends_with("Raw")) return name + " asic 8G";
  if (name.ends_with("Cache")) return name + " 8G";
  return name;
}

// Where a list begins is worked out from the table: it must be where the command's handler begins to read it.
TEST(Rehearsal, PortsThatDoNotExistAreFoundInEveryList) {
  unsigned lists = 0;
  for (const CmdTableEntry* row = cmdTable.data(); row->name != nullptr; ++row) {
    if (strcasestr(row->argHelp, "list]") == nullptr) continue;
    ++lists;
    const bool cores = std::strcmp(row->name, "showPLL") == 0;
    const std::string good = beforeList(*row) + (row->name[0] == 'e' ? " 8 9" : " 0 1");
    Forecast forecast = judged(good);
    EXPECT_EQ(forecast.status, CMD_OK) << good;
    EXPECT_EQ(forecast.missing, "") << good;
    EXPECT_EQ(forecast.changes, row->isSetCmd != 0 || std::strcmp(row->name, "clearErrors") == 0) << good;
    ASSERT_FALSE(rehearsedCalls.empty()) << good;
    forecast = judged(good + " 12");
    if (cores) continue;  // refused by the tool
    EXPECT_EQ(forecast.missing, "port 12 of ASIC 0") << good;
  }
  EXPECT_EQ(lists, 32U);
}

TEST(Rehearsal, LinksAndCoresThatDoNotExistAreFound) {
  EXPECT_EQ(judged("readRx 4 3 0").missing, "");
  EXPECT_EQ(judged("readRx 4 4 0").missing, "link 4 of port 4");
  EXPECT_EQ(judged("writeTx 12 0 0 0").missing, "port 12 of ASIC 0");
  EXPECT_EQ(judged("runTest 0 -1 0 0").missing, "");
  EXPECT_EQ(judged("runTest 0 0 100 0").missing, "") << "what it resets is not what was typed";
  EXPECT_EQ(judged("getTest 0 -2 0").missing, "link -2 of port 0");
}

TEST(Rehearsal, CommandsThatChangeTheHardwareAreKnown) {
  for (const char* line : {"writePLL 0 1 2", "writeTx 0 0 1 2", "runTest 0 0 0 1", "runTest 0 0 101 0", "clearErrors 0",
                           "setDFEState 0 0 DFE3 0 0 0 0 0 0 0 0 0 0", "loop setRate 8G 0"}) {
    EXPECT_TRUE(judged(line).changes) << line;
  }
  for (const char* line : {"setAsicNum 1", "setRate ?", "showRx all", "getTest 0 0 0", "help", "setRate 8G 0 4"}) {
    EXPECT_FALSE(judged(line).changes) << line;
  }
}

TEST(Rehearsal, StatusesAreTheTools) {
  EXPECT_EQ(judged("bogus").status, CMD_UNKNOWN);
  EXPECT_EQ(judged("setRate 8G all").status, CMD_MIXED_PORT_TYPES);
  EXPECT_EQ(judged("est 10G 1 1 gl").status, CMD_ETHERNET_ONLY);
  EXPECT_EQ(judged("showTxParamsCache 8G exg").status, CMD_FC_ONLY);
  EXPECT_EQ(judged("setAsicNum 2").status, CMD_BAD_PARAM);
  EXPECT_EQ(judged("showRate 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0").status, CMD_TOO_MANY_ARGS);
  EXPECT_EQ(judged("quit now").status, CMD_EXIT);
  EXPECT_EQ(judged("loop exit").status, CMD_EXIT);
}

TEST(Rehearsal, OfALoopTheSecondPassCounts) {
  EXPECT_EQ(judged("loop loop showRate all").status, CMD_OK);
  EXPECT_EQ(judged("loop ?").status, CMD_OK);
  EXPECT_EQ(judged("showRate ?").status, CMD_OK);
  EXPECT_EQ(judged("loop showRate ?").status, CMD_BAD_PARAM);
  EXPECT_EQ(judged("loop").status, CMD_TOO_FEW_ARGS);
}

TEST(Rehearsal, NothingReachesStandardOutput) {
  testing::internal::CaptureStdout();
  (void)judged("showRx all");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(Rehearsal, AnUnknownAsicRefusesOnlyWhatNoAsicHas) {
  Rehearsal rehearsal;
  EXPECT_EQ(rehearsal.judge(splitWords("setRate 8G 0 4 8")).status, CMD_OK);
  EXPECT_EQ(rehearsal.judge(splitWords("showRate exg")).missing, "");
  EXPECT_EQ(rehearsal.judge(splitWords("showRate 24")).missing, "port 24 of ASIC 0");
  EXPECT_EQ(rehearsal.judge(splitWords("readRx 0 4 0")).missing, "link 4 of port 0");
}

TEST(Rehearsal, ThePlatformHasNothingBeyondItsBounds) {
  const Rehearsal rehearsal(smallSwitch());
  unsigned number = 0;
  unsigned short port = 0;
  SerDesType type{};
  EXPECT_NE(AsicControl::GetSerDesInfo(kMostAsics, &number, &number), 0);
  EXPECT_EQ(AsicControl::GetSerDesInfo(0, &number, &number), 0);
  for (const auto& [asic, place] :
       {std::pair(unsigned{kMostAsics}, 0U), std::pair(0U, unsigned{kMaxCores}), std::pair(0U, unsigned{kMaxPorts})}) {
    const bool isCore = asic == 0 && place < kMaxCores;
    EXPECT_EQ(AsicControl::GetSerDesInfo(asic, place, &port, &type, &number, &number, &number, &number, &number) == 0,
              isCore);
    if (asic != 0 || place >= kMaxPorts) {
      EXPECT_NE(AsicControl::GetSerDesInfo(asic, place, SERDES_LINK_RX, &number, &type, &number), 0);
      Port_HW_Config_t config{};
      EXPECT_NE(PortControl::GetPortHwConfig({.userPort = 0,
                                              .asic = static_cast<unsigned char>(asic),
                                              .asicPort = static_cast<unsigned char>(place),
                                              .unused = {}},
                                             &config),
                0);
    }
  }
  EXPECT_EQ(AsicControl::ToString(static_cast<SerDesType>(kSerDesTypeCount)), nullptr);
}

TEST(Rehearsal, WhatIsMissingOnAnotherAsicIsFound) {
  Rehearsal rehearsal(smallSwitch());
  EXPECT_EQ(rehearsal.judge(splitWords("san 1")).status, CMD_OK);
  EXPECT_EQ(rehearsal.judge(splitWords("showRate 24")).missing, "port 24 of ASIC 1");
  EXPECT_EQ(rehearsal.judge(splitWords("setAsicNum")).status, CMD_TOO_FEW_ARGS);
}

TEST(SelectedAsic, IsFoundInLoopsToo) {
  EXPECT_EQ(selectedAsic(splitWords("setAsicNum")), std::nullopt);
  EXPECT_EQ(selectedAsic(splitWords("loop san 1")), 1U);
  EXPECT_EQ(selectedAsic(splitWords("showRate 1")), std::nullopt);
  EXPECT_EQ(selectedAsic(splitWords("setAsicNum one")), std::nullopt);
}

}  // namespace
}  // namespace serdesctl
