#include "tests/unit/simulator/switch/switch_bench.h"

namespace simulator {
namespace {

using LinkRegisters = SwitchTest;
using PllRegisters = SwitchTest;

TEST_F(LinkRegisters, SettingALinkChangesTheRegister) {
  ASSERT_EQ(sw.setTxFfe(0, 0, -1, {.mode = FFE_3, .k = 115, .c = {-4, 55, -25, 0}}), kOk);
  EXPECT_EQ(readTx(0, 1), 0x0005U);  // enabled, FFE3
  EXPECT_EQ(readTx(0, 4), 0x0073U);
  EXPECT_EQ(readTx(0, 5), 0x00fcU);
  EXPECT_EQ(readTx(0, 6), 0x0037U);
  EXPECT_EQ(readTx(0, 7), 0x00e7U);
  ASSERT_EQ(sw.setRxVga(0, 0, -1, {.pole = 7, .peak = 1, .amax = 0x30}), kOk);
  EXPECT_EQ(readRx(0, 3), 0x000fU);
  EXPECT_EQ(readRx(0, 4), 0x0030U);
}

TEST_F(LinkRegisters, WritingARegisterChangesTheLink) {
  ASSERT_EQ(writeTx(0, 7, 0x00e7), kOk);
  EXPECT_EQ(ffeAt(0).c[2], -25);
  ASSERT_EQ(writeTx(0, 3, 0x001c), kOk);
  EXPECT_EQ(slewAt(0), SLEW_60PS);
  ASSERT_EQ(writeRx(0, 3, 0x001d), kOk);
  EXPECT_EQ(vgaAt(0).pole, 5);
  EXPECT_EQ(vgaAt(0).peak, 3);
  EXPECT_EQ(readRx(0, 3), 0x001dU);
  ASSERT_EQ(writeRx(0, 1, 0x0003), kOk);
  EXPECT_EQ(dfeAt(0), DFE_5);
}

TEST_F(LinkRegisters, AWriteReachesWhatTheReceiverShows) {
  const int before = statsOf(1).Amin;
  ASSERT_EQ(writeTx(1, 3, 0x000a), kOk);  // from 100 to 36 ps
  EXPECT_GT(statsOf(1).Amin, before);
}

TEST_F(LinkRegisters, OtherBitsAreStorage) {
  ASSERT_EQ(writeRx(0, 23, 0xa5a5), kOk);
  EXPECT_EQ(readRx(0, 23), 0xa5a5U);
  ASSERT_EQ(writeRx(0, 3, 0xff26), kOk);
  EXPECT_EQ(readRx(0, 3), 0xff26U);
  ASSERT_EQ(sw.setRxVga(0, 0, 0, {.pole = 1, .peak = 0, .amax = 1}), kOk);
  EXPECT_EQ(readRx(0, 3), 0xff01U);
}

TEST_F(LinkRegisters, StatusCannotBeWritten) {
  const unsigned before = readRx(0, 2);
  EXPECT_EQ(writeRx(0, 2, 0), kReadOnlyRegister);
  EXPECT_EQ(readRx(0, 2), before);
  EXPECT_EQ(writeTx(0, 0, 0), kReadOnlyRegister);
}

TEST_F(LinkRegisters, ShowWhatTheStatisticsShow) {
  const SerDesTraits& traits = serDesTraits(2);
  RegisterFile registers{};
  ASSERT_EQ(sw.readLinkRegisters(0, 1, 0, SERDES_LINK_RX, 0, registers.data(), traits.rx.count), kOk);
  const SerDesRxDFEStats stats = statsOf(1);
  EXPECT_EQ(traits.rx.read(registers, Field::kAp), stats.Ap);
  EXPECT_EQ(traits.rx.read(registers, Field::kAmin), stats.Amin);
  EXPECT_EQ(traits.rx.read(registers, Field::kAn), stats.An);
  for (unsigned tap = 0; tap < kTaps; ++tap)
    EXPECT_EQ(traits.rx.read(registers, tapField(tap)), stats.h[tap]) << tap;
}

TEST_F(LinkRegisters, StatusShowsSignalLockAndEye) {
  EXPECT_EQ(readRx(0, 2), 0x0007U);
  EXPECT_GT(readRx(0, 15), 0U);
  EXPECT_EQ(readTx(0, 2), 0x0003U);
  ASSERT_EQ(sw.setStream(id(0), false), kOk);
  EXPECT_EQ(readRx(0, 2), 0x0000U);
  EXPECT_EQ(readTx(0, 2), 0x0001U);
}

TEST_F(LinkRegisters, TapRegistersFollowTheAdaptation) {
  const SerDesRxDFEStats stats = statsOf(1);
  const unsigned h1 = readRx(1, 5);
  EXPECT_EQ(static_cast<std::int8_t>(h1 & 0xff), stats.h[0]);
  EXPECT_EQ(static_cast<std::int8_t>(h1 >> 8), stats.h[1]);
  EXPECT_NE(h1, 0U);
}

TEST_F(LinkRegisters, WritingBesideTheTapsLeavesThemAdapting) {
  for (const unsigned address : {3U, 4U, 23U})
    ASSERT_EQ(writeRx(1, address, readRx(1, address)), kOk);
  EXPECT_EQ(testStatus(1, kTestHoldDfe), 0);
}

TEST_F(LinkRegisters, WritingATapHoldsItAndTheOthersWhereTheyStand) {
  const SerDesRxDFEStats adapted = statsOf(1);
  ASSERT_EQ(writeRx(1, 5, 0x0305), kOk);
  EXPECT_EQ(readRx(1, 5), 0x0305U);
  EXPECT_EQ(readRx(1, 1) & 0x0008U, 0x0008U);
  const SerDesRxDFEStats held = statsOf(1);
  EXPECT_EQ(held.h[0], 5);
  EXPECT_EQ(held.h[1], 3);
  EXPECT_EQ(held.h[2], adapted.h[2]);
  EXPECT_EQ(held.h[4], adapted.h[4]);
  ASSERT_EQ(writeRx(1, 1, 0x0001), kOk);  // let go
  EXPECT_EQ(statsOf(1).h[0], adapted.h[0]);
}

TEST_F(LinkRegisters, WritingTheHoldBitStopsTheAdaptation) {
  const SerDesRxDFEStats adapted = statsOf(1);
  ASSERT_EQ(writeRx(1, 1, 0x0009), kOk);
  ASSERT_EQ(sw.setTxSlew(0, 1, -1, true, SLEW_36PS), kOk);
  EXPECT_EQ(statsOf(1).h, adapted.h);
}

TEST_F(LinkRegisters, AReceiverThatIsOffShowsNothing) {
  ASSERT_EQ(writeRx(0, 1, 0x0000), kOk);
  EXPECT_EQ(readRx(0, 2), 0U);
  EXPECT_EQ(statsOf(0).Ap, 0);
  EXPECT_EQ(statusOf(0), kStatusNoSignal);
}

TEST_F(LinkRegisters, LinkMinusOneWritesAllLinksAndReadsNone) {
  ASSERT_EQ(writeRx(6, 17, 0x1234, -1), kOk);
  for (int link = 0; link < 4; ++link)
    EXPECT_EQ(readRx(6, 17, link), 0x1234U);
  unsigned short value = 0;
  EXPECT_EQ(sw.readLinkRegisters(0, 6, -1, SERDES_LINK_RX, 0, &value, 1), kBadLink);
}

TEST_F(LinkRegisters, OneLinkIsWrittenAlone) {
  ASSERT_EQ(writeTx(6, 1, 0x0055, 2), kOk);
  EXPECT_EQ(ffeAt(6, 2).k, 0x55);
  EXPECT_NE(ffeAt(6, 1).k, 0x55);
}

TEST_F(LinkRegisters, AreReadInRuns) {
  std::array<unsigned short, 24> values{};
  ASSERT_EQ(sw.readLinkRegisters(0, 0, 0, SERDES_LINK_RX, 0, values.data(), 24), kOk);
  EXPECT_EQ(values[0], 0x2111);
  EXPECT_EQ(values[4], 0x004e);
  for (unsigned address = 0; address < 24; ++address)
    EXPECT_EQ(values[address], readRx(0, address)) << address;
  EXPECT_EQ(sw.readLinkRegisters(0, 0, 0, SERDES_LINK_RX, 24, values.data(), 0), kOk);
}

TEST_F(LinkRegisters, EndWhereTheTypeEnds) {
  std::array<unsigned short, 32> values{};
  EXPECT_EQ(sw.readLinkRegisters(0, 0, 0, SERDES_LINK_RX, 24, values.data(), 1), kBadRegister);
  EXPECT_EQ(sw.readLinkRegisters(0, 0, 0, SERDES_LINK_RX, 20, values.data(), 5), kBadRegister);
  EXPECT_EQ(sw.readLinkRegisters(0, 0, 0, SERDES_LINK_TX, 16, values.data(), 1), kBadRegister);
  EXPECT_EQ(sw.readLinkRegisters(0, 4, 0, SERDES_LINK_RX, 31, values.data(), 1), kOk);
  EXPECT_EQ(writeRx(0, 24, 0), kBadRegister);
  EXPECT_EQ(writeTx(0, 255, 0), kBadRegister);
}

TEST_F(LinkRegisters, ReadingSettingsWorksOutNoLink) {
  for (const unsigned address : {1U, 3U})  // what stands between shows the link
    (void)readRx(0, address);
  (void)readTx(0, 2);
  EXPECT_EQ(sw.evaluations(), 0U);
  (void)readRx(0, 2);
  EXPECT_EQ(sw.evaluations(), 1U);
}

class DescribedRegisters : public SwitchTest {
 protected:
  DescribedRegisters()
      : SwitchTest("[[asics.ports]]\nports = 6\ntx_values = [[0x38], [0x38, 5]]\nrx_values = [[], [0x40]]\n") {}
};

TEST_F(DescribedRegisters, AreThoseOfTheirLinkAndOthersAsAfterAReset) {
  for (const int link : {0, 1, 2}) {
    EXPECT_EQ(readTx(6, 0, link) == 0x38U, link < 2) << link;
    EXPECT_EQ(readTx(6, 1, link) == 5U, link == 1) << link;
    EXPECT_EQ(readRx(6, 0, link) == 0x40U, link == 1) << link;
  }
  EXPECT_EQ(readTx(0, 11), serDesTraits(2).tx.resetValues()[11]);
  EXPECT_NE(readTx(0, 11), 0U);
}

class RegisterCounts : public SwitchTest {
 protected:
  RegisterCounts() : SwitchTest("[[asics.cores]]\ncores = 0\nrx_registers = 4\npll_registers = 32\n") {}
};

TEST_F(RegisterCounts, AreWhatTheDescriptionSays) {
  EXPECT_EQ(writeRx(0, 3, 0x001d), kOk);
  EXPECT_EQ(writeRx(0, 4, 0), kBadRegister);
  EXPECT_EQ(sw.writePllRegister(0, 0, 31, 0xbeef), kOk);
  unsigned short value = 0;
  EXPECT_EQ(sw.readPllRegisters(0, 0, 31, &value, 1), kOk);
  EXPECT_EQ(value, 0xbeef);
}

TEST_F(PllRegisters, KeepWhatIsWritten) {
  ASSERT_EQ(sw.writePllRegister(0, 0, 7, 0x00ff), kOk);
  unsigned short value = 0;
  ASSERT_EQ(sw.readPllRegisters(0, 0, 7, &value, 1), kOk);
  EXPECT_EQ(value, 0x00ff);
  EXPECT_EQ(statusOf(0), kPortStateRunning);
}

TEST_F(PllRegisters, APllThatIsOffLosesLockAndItsLinksGoDown) {
  std::array<unsigned short, 12> values{};
  ASSERT_EQ(sw.readPllRegisters(0, 0, 0, values.data(), 12), kOk);
  EXPECT_EQ(values[2], 1);
  ASSERT_EQ(sw.writePllRegister(0, 0, 1, 0), kOk);
  ASSERT_EQ(sw.readPllRegisters(0, 0, 0, values.data(), 12), kOk);
  EXPECT_EQ(values[2], 0);
  EXPECT_EQ(statusOf(0), kStatusNoPll);
  EXPECT_EQ(statusOf(3), kStatusNoPll);
  EXPECT_EQ(readRx(0, 2) & 0x2U, 0U);
  EXPECT_EQ(readTx(0, 2), 0U);
  EXPECT_EQ(statusOf(4), kPortStateRunning);  // another core
  ASSERT_EQ(sw.writePllRegister(0, 0, 1, 1), kOk);
  EXPECT_EQ(statusOf(0), kPortStateRunning);
}

TEST_F(PllRegisters, EitherCoreOfAPortTakesItDown) {
  ASSERT_EQ(statusOf(7), kPortStateRunning);
  ASSERT_EQ(sw.writePllRegister(0, 4, 0, 0), kOk);
  EXPECT_EQ(statusOf(7), kStatusNoPll);
  EXPECT_EQ(readRx(7, 2) & 0x1U, 0U);  // its transmitter is silent
  ASSERT_EQ(sw.writePllRegister(0, 4, 0, 1), kOk);
  ASSERT_EQ(sw.writePllRegister(0, 3, 0, 0), kOk);
  EXPECT_EQ(statusOf(7), kStatusNoPll);
  EXPECT_EQ(readRx(7, 2) & 0x3U, 0x1U);  // a signal that nothing samples
}

TEST_F(PllRegisters, RefuseOtherCoresRegistersAndStatus) {
  std::array<unsigned short, 32> values{};
  EXPECT_EQ(sw.readPllRegisters(0, 5, 0, values.data(), 1), kBadCore);
  EXPECT_EQ(sw.readPllRegisters(1, 0, 0, values.data(), 1), kBadAsic);
  EXPECT_EQ(sw.readPllRegisters(0, 0, 12, values.data(), 1), kBadRegister);
  EXPECT_EQ(sw.readPllRegisters(0, 0, 255, values.data(), 255), kBadRegister);
  EXPECT_EQ(sw.writePllRegister(0, 5, 0, 0), kBadCore);
  EXPECT_EQ(sw.writePllRegister(9, 0, 0, 0), kBadAsic);
  EXPECT_EQ(sw.writePllRegister(0, 0, 12, 0), kBadRegister);
  EXPECT_EQ(sw.writePllRegister(0, 0, 2, 0), kReadOnlyRegister);
}

TEST_F(PllRegisters, ShowATemperatureThatRisesWithWhatTheCoreSends) {
  unsigned short warm = 0;
  unsigned short cold = 0;
  ASSERT_EQ(sw.readPllRegisters(0, 2, 2, &warm, 1), kOk);
  ASSERT_EQ(sw.setStream(id(6), false), kOk);
  ASSERT_EQ(sw.readPllRegisters(0, 2, 2, &cold, 1), kOk);
  EXPECT_EQ(cold, 45);
  EXPECT_EQ(warm, 53);
}

}  // namespace
}  // namespace simulator
