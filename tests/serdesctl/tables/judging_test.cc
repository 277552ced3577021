// Verdicts on ports.
#include "serdesctl/health/judging.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "serdesctl/formats/reports.h"

namespace serdesctl {
namespace {

Count exactly(std::uint64_t number) {
  return {.number = static_cast<double>(number), .lowest = number, .highest = number};
}

Count about(std::uint64_t lowest, std::uint64_t highest) {
  return {.number = static_cast<double>(lowest + highest) / 2, .lowest = lowest, .highest = highest};
}

DfeStats link(std::int32_t amin, std::int32_t ap, Count decode = exactly(0), Count crc = exactly(0)) {
  DfeStats record;
  record.amin = amin;
  record.ap = ap;
  record.decodeErrors = decode;
  record.crcErrors = crc;
  return record;
}

PortLook running(std::vector<DfeStats> links, double atS = 0) {
  PortLook look;
  look.atS = atS;
  look.rate = RateValues{.configRate = "8G", .streamEnabled = true};
  look.runningRate = "8G";
  look.media = "OPT";
  for (std::size_t i = 0; i < links.size(); ++i)
    links[i].link = static_cast<std::uint32_t>(i);
  look.links = std::move(links);
  return look;
}

std::string verdictOn(const PortLook& now, const PortLook* before = nullptr) {
  const PortHealth port = judge({.asic = 0, .port = 4, .userPort = {}, .portType = {}, .serDesType = "X"}, now, before);
  return std::string(verdictName(port.verdict)) + ": " + port.reason;
}

// Two looks, two seconds apart.
std::string verdictOnTwo(const DfeStats& first, const DfeStats& second) {
  const PortLook before = running({first}, 10);
  return verdictOn(running({second}, 12), &before);
}

TEST(Judging, AnOpenEyeMakesALinkGood) {
  EXPECT_EQ(verdictOn(running({link(55, 78)})), "good: Amin 55 of Ap 78, no errors");
  EXPECT_EQ(verdictOn(running({link(19, 78)})), "good: Amin 19 of Ap 78, no errors");
  EXPECT_EQ(verdictOn(running({link(18, 78)})), "marginal: the eye is nearly closed: Amin 18 of Ap 78");
}

TEST(Judging, NoErrorsMakeNoneGood) {
  EXPECT_EQ(verdictOn(running({link(0, 64)})),
            "dead: no lock: the eye is closed (Amin 0 of Ap 64) and nothing is counted");
  EXPECT_EQ(verdictOn(running({link(50, 4)})), "dead: no signal: Ap 4");
  EXPECT_EQ(verdictOn(running({link(0, -4)})), "dead: no signal: Ap -4");
  EXPECT_EQ(verdictOn(running({DfeStats{}})), "unknown: the tool has no statistics of SerDes type 'X'");
  EXPECT_EQ(verdictOn(running({})), "unknown: it has no receive links");
}

TEST(Judging, ErrorsCountedByOneLook) {
  EXPECT_EQ(verdictOn(running({link(-15, 78, exactly(7), exactly(1))})),
            "bad: the eye is closed (Amin -15 of Ap 78), 7 decode and 1 CRC errors");
  EXPECT_EQ(verdictOn(running({link(50, 78, about(15000, 25000))})),
            "marginal: about 20000 decode and 0 CRC errors since they were cleared, Amin 50 of Ap 78");
}

TEST(Judging, ManyErrorsAndNoFrameAreALinkWithoutLock) {
  const Count many = about(350'000'000, 450'000'000);
  EXPECT_EQ(
      verdictOn(running({link(-102, 41, many)})),
      "dead: no lock: the eye is closed (Amin -102 of Ap 41) and no frame comes, about 400000000 decode and 0 CRC "
      "errors");
  EXPECT_EQ(verdictOn(running({link(-102, 41, many, exactly(1))})),
            "bad: the eye is closed (Amin -102 of Ap 41), about 400000000 decode and 1 CRC errors");
  EXPECT_EQ(verdictOn(running({link(0, 41, exactly(9999))})),
            "bad: the eye is closed (Amin 0 of Ap 41), 9999 decode and 0 CRC errors");
  EXPECT_EQ(verdictOn(running({link(50, 78, many)})),
            "marginal: about 400000000 decode and 0 CRC errors since they were cleared, Amin 50 of Ap 78");
  EXPECT_EQ(
      verdictOnTwo(link(-9, 41, exactly(2), exactly(9)), link(-9, 41, many, exactly(9))),
      "dead: no lock: the eye is closed (Amin -9 of Ap 41) and no frame comes, at least 174999999 decode errors/s");
  EXPECT_EQ(verdictOnTwo(link(-9, 41, exactly(2), exactly(9)), link(-9, 41, many, exactly(10))),
            "bad: the eye is closed (Amin -9 of Ap 41), at least 174999999 decode errors/s");
}

TEST(Judging, TwoLooksTellWhetherErrorsGoOn) {
  EXPECT_EQ(verdictOnTwo(link(50, 78, exactly(7)), link(50, 78, exactly(7))), "good: Amin 50 of Ap 78, no new errors");
  EXPECT_EQ(verdictOnTwo(link(50, 78, exactly(7)), link(50, 78, exactly(10))),
            "bad: 1.5 decode errors/s, Amin 50 of Ap 78");
  EXPECT_EQ(verdictOnTwo(link(50, 78), link(50, 78, exactly(0), exactly(10))), "bad: 5 CRC errors/s, Amin 50 of Ap 78");
  EXPECT_EQ(verdictOnTwo(link(50, 78, about(15000, 25000)), link(50, 78, about(35000, 45000))),
            "bad: at least 5000 decode errors/s, Amin 50 of Ap 78");
  EXPECT_EQ(verdictOnTwo(link(50, 78, about(15000, 25000)), link(50, 78, about(15000, 25000))),
            "marginal: about 20000 decode and 0 CRC errors, too many to tell if they go on");
  EXPECT_EQ(verdictOnTwo(link(50, 78, exactly(70)), link(50, 78, exactly(10))),
            "marginal: 10 decode and 0 CRC errors, the counters were cleared meanwhile");
  EXPECT_EQ(verdictOnTwo(link(50, 78, exactly(7), exactly(9)), link(50, 78, exactly(7), exactly(2))),
            "marginal: 7 decode and 2 CRC errors, the counters were cleared meanwhile");
  EXPECT_EQ(verdictOnTwo(link(-5, 78, exactly(7)), link(-5, 78, exactly(7))),
            "dead: no lock: the eye is closed (Amin -5 of Ap 78) and nothing is counted");
}

TEST(Judging, AFirstLookThatToldNothingIsNone) {
  const DfeStats now = link(50, 78, exactly(7));
  for (const PortLook& before : {running({}, 10), running({DfeStats{}}, 10)}) {
    const PortLook second = running({now}, 12);
    EXPECT_EQ(verdictOn(second, &before),
              "marginal: 7 decode and 0 CRC errors since they were cleared, Amin 50 of Ap 78");
    EXPECT_FALSE(judge({}, second, &before).decodeErrorRate);
  }
}

TEST(Judging, RatesHaveBounds) {
  const PortLook before = running({link(50, 78, about(10, 30))}, 1);
  const PortHealth port = judge({}, running({link(50, 78, exactly(40))}, 3), &before);
  ASSERT_TRUE(port.decodeErrorRate);
  EXPECT_EQ(port.decodeErrorRate->lowest, 5);
  EXPECT_EQ(port.decodeErrorRate->highest, 15);
  EXPECT_EQ(port.crcErrorRate->highest, 0);
}

TEST(Judging, PortsThatDoNotRunAreDown) {
  PortLook look = running({link(-50, 78, exactly(9))});
  look.rate->streamEnabled = false;
  EXPECT_EQ(verdictOn(look), "down: its transmit stream is off");
  look.rate->streamEnabled = true;
  look.runningRate = "INV";
  EXPECT_EQ(verdictOn(look), "down: no running rate");
  look.media = "NONE";
  EXPECT_EQ(verdictOn(look), "down: no medium");
}

TEST(Judging, WhatCannotBeReadIsUnknown) {
  PortLook look = running({link(50, 78)});
  look.complaint = "showRate 4: error";
  EXPECT_EQ(verdictOn(look), "unknown: showRate 4: error");
  look = running({link(50, 78)});
  look.rate.reset();
  EXPECT_EQ(verdictOn(look), "unknown: it has no transmit links, so the tool does not show its rate");
}

TEST(Judging, TheWorstLinkDecides) {
  EXPECT_EQ(verdictOn(running({link(50, 78), link(10, 78), link(9, 78), link(52, 78)})),
            "marginal: link 2: the eye is nearly closed: Amin 9 of Ap 78");
  const PortHealth port = judge({}, running({link(50, 78), link(-10, 60)}), nullptr);
  EXPECT_EQ(port.link, 1U);
  EXPECT_EQ(port.amin, -10);
  EXPECT_EQ(port.ap, 60);
}

TEST(Judging, TheWorstPortComesFirst) {
  HealthReport report;
  for (const std::int32_t amin : {55, -3, 10, 0}) {
    PortHealth port = judge({.asic = 0,
                             .port = static_cast<std::uint32_t>(10 - amin / 10),
                             .userPort = 8,
                             .portType = "gl",
                             .serDesType = "X"},
                            running({link(amin, 78, exactly(amin < 0 ? 5 : 0))}), nullptr);
    report.ports.push_back(port);
  }
  sortWorstFirst(report.ports);
  EXPECT_EQ(
      textReport(report),
      "VERDICT   ASIC  PORT  USER  TYPE  RATE  MEDIA  STREAM  AMIN  AP  DECODE  CRC  REASON\n"
      "dead      0     10    8     gl    8G    OPT    on         0  78       0    0  no lock: the eye is closed "
      "(Amin 0 of Ap 78) and nothing is counted\n"
      "bad       0     10    8     gl    8G    OPT    on        -3  78       5    0  the eye is closed (Amin -3 of "
      "Ap 78), 5 decode and 0 CRC errors\n"
      "marginal  0     9     8     gl    8G    OPT    on        10  78       0    0  the eye is nearly closed: Amin "
      "10 of Ap 78\n"
      "good      0     5     8     gl    8G    OPT    on        55  78       0    0  Amin 55 of Ap 78, no errors\n");
  EXPECT_TRUE(report.ports[0].failing());
  EXPECT_TRUE(report.ports[1].failing());
  EXPECT_FALSE(report.ports[2].failing());
}

}  // namespace
}  // namespace serdesctl
