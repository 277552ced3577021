// Records as JSON and CSV, character by character.
#include "serdesctl/formats/reports.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "serdesctl/base/errors.h"

namespace serdesctl {
namespace {

Link place() {
  Link link;
  link.asic = 0;
  link.port = 4;
  link.link = 1;
  link.serDesType = "a \"b\", c";
  link.runningRate = "8G";
  link.media = "OPT";
  return link;
}

ParsedAnswer answered(Records records) {
  ParsedAnswer answer;
  answer.command = "show";
  answer.asic = 0;
  answer.records = std::move(records);
  return answer;
}

Slew slew() {
  Slew record;
  static_cast<Link&>(record) = place();
  record.slewPs = 36;
  return record;
}

const std::string kPlaceJson =
    R"("asic":0,"port":4,"user_port":null,"link":1,"serdes_type":"a \"b\", c","running_rate":"8G","media":"OPT",)";

TEST(JsonReport, EnvelopeAndRecord) {
  EXPECT_EQ(jsonReport(answered(std::vector{slew()}), {.target = "sim", .time = utcTime(1'000'000'000)}),
            R"({"schema":1,"kind":"slew","command":"show","target":"sim","time":"2001-09-09T01:46:40Z","asic":0,)"
            R"("records":[{)" +
                kPlaceJson + "\"slew_ps\":36}]}\n");
}

TEST(JsonReport, WhatIsNotKnownIsNull) {
  ParsedAnswer answer = answered(std::vector<Slew>{});
  answer.command.clear();
  answer.asic.reset();
  EXPECT_EQ(
      jsonReport(answer, {}),
      "{\"schema\":1,\"kind\":\"slew\",\"command\":null,\"target\":null,\"time\":null,\"asic\":null,\"records\":[]}\n");
}

TEST(JsonReport, CountsAreWholeNumbersWithTheirExactness) {
  DfeStats record;
  static_cast<Link&>(record) = place();
  record.decodeErrors = Count{.number = 9999, .lowest = 9999, .highest = 9999};
  record.crcErrors = Count{.number = 2e19, .lowest = 1, .highest = 2};
  const std::string json = jsonReport(answered(std::vector{record}), {});
  EXPECT_NE(json.find(R"("h5_odd":null,"h1":null,)"), std::string::npos);
  EXPECT_NE(
      json.find(R"("decode_errors":9999,"decode_errors_exact":true,"crc_errors":2e+19,"crc_errors_exact":false})"),
      std::string::npos)
      << json;
  record.crcErrors = Count{.number = 5e17, .lowest = 1, .highest = 2};
  EXPECT_NE(jsonReport(answered(std::vector{record}), {}).find("\"crc_errors\":500000000000000000,"),
            std::string::npos);
}

TEST(JsonReport, NamesThatAreNoTextAreReplaced) {
  Slew record = slew();
  record.serDesType = "\xff\x01";
  EXPECT_NE(jsonReport(answered(std::vector{record}), {}).find("\"serdes_type\":\"\xef\xbf\xbd\\u0001\""),
            std::string::npos);
}

TEST(JsonReport, ARefusalIsAnObjectOfItsOwn) {
  ParsedAnswer answer = answered({});
  answer.status = CMD_EXEC_ERROR;
  answer.complaint = "xCmdHandler: serdes err -5";
  EXPECT_TRUE(isReported(answer));
  EXPECT_EQ(jsonReport(answer, {}),
            R"({"schema":1,"kind":"refused","command":"show","target":null,"time":null,"asic":0,"status":10,)"
            R"("message":"error during command execution","error":"xCmdHandler: serdes err -5","records":[]})"
            "\n");
  answer.records = std::vector{slew()};
  EXPECT_EQ(jsonReport(answer, {}).find("{\"schema\":1,\"kind\":\"slew\""), 0U);
}

TEST(JsonReport, CommandsThatPrintNothingAreNotReported) {
  EXPECT_FALSE(isReported(answered({})));
  EXPECT_EQ(jsonReport(answered({}), {}), "");
}

TEST(CsvReport, NamesThenRecords) {
  RateValues values{.configRate = "AUTO", .streamEnabled = true};
  Rate record;
  static_cast<Link&>(record) = place();
  static_cast<RateValues&>(record) = values;
  const std::vector<ParsedAnswer> answers = {answered(std::vector{record}), answered(std::vector{record})};
  const std::string line = "0,4,,1,\"a \"\"b\"\", c\",8G,OPT,AUTO,true\n";
  EXPECT_EQ(csvReport(answers),
            "asic,port,user_port,link,serdes_type,running_rate,media,config_rate,stream_enabled\n" + line + line);
}

TEST(CsvReport, RegistersAreOneField) {
  PllRegisters record = {.asic = 1, .core = 17, .serDesType = "X", .registers = {0x1e05, 0}};
  EXPECT_EQ(csvReport(std::vector{answered(std::vector{record})}),
            "asic,core,serdes_type,registers\n1,17,X,0x1e05 0x0000\n");
}

TEST(CsvReport, TheSwitchsOwnLinesAreLeftOutBesideOthers) {
  StartText start;
  start.discovery.cores.push_back({.asic = 0, .core = 1, .firstPort = 2});
  const std::vector<ParsedAnswer> answers = {answered(start), answered({}), answered(std::vector{slew()})};
  EXPECT_EQ(csvReport(answers).find("asic,port,user_port"), 0U);
  EXPECT_EQ(csvReport(std::vector{answered(start)}),
            "asic,core,first_port,serdes_type_number,pll_registers,rx_registers,tx_registers,rx_params,tx_params\n"
            "0,1,2,0,0,0,0,0,0\n");
}

TEST(CsvReport, RecordsOfTwoKindsAreRefused) {
  EXPECT_THROW((void)csvReport(std::vector{answered(std::vector{slew()}), answered(std::vector<Rate>{})}), UsageError);
}

TEST(HealthTable, WhatIsNotKnownIsADash) {
  HealthReport report;
  PortHealth port;
  port.reason = "nobody knows";
  report.ports.push_back(port);
  port.place.userPort = 8;
  port.streamEnabled = false;
  port.crcErrors = Count{.number = 2e5, .lowest = 150000, .highest = 250000};
  report.ports.push_back(port);
  EXPECT_EQ(textReport(report),
            "VERDICT  ASIC  PORT  USER  TYPE  RATE  MEDIA  STREAM  AMIN  AP  DECODE      CRC  REASON\n"
            "unknown  0     0     -     -     -     -      -          -   -       -        -  nobody knows\n"
            "unknown  0     0     8     -     -     -      off        -   -       -  ~200000  nobody knows\n");
}

}  // namespace
}  // namespace serdesctl
