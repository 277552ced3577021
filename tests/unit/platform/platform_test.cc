// The platform's records and the signatures of its operations: both sides of the seam rely on them.
#include "platform/platform.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <type_traits>

namespace {

// The operations of start-up, the topology and the table header with the argument types that fix their symbols.
static_assert(std::is_same_v<decltype(&AsicControl::AsicCtlOpen), int (*)()>);
static_assert(std::is_same_v<decltype(&AsicControl::AsicCtlClose), int (*)()>);
static_assert(std::is_same_v<decltype(&AsicControl::GetSwitchConfig), int (*)(Switch_HW_Config_t*)>);
static_assert(std::is_same_v<decltype(&AsicControl::ToString), const char* (*)(SerDesType)>);
static_assert(std::is_same_v<decltype(&PortControl::PortCtlOpen), int (*)()>);
static_assert(std::is_same_v<decltype(&PortControl::PortCtlClose), int (*)()>);
static_assert(std::is_same_v<decltype(&PortControl::GetPortHwConfig), int (*)(port_id_t, Port_HW_Config_t*)>);
static_assert(std::is_same_v<decltype(&PortControl::GetPortInfo), int (*)(port_id_t, port_info_t, unsigned long*)>);
static_assert(std::is_same_v<decltype(&PortControl::GetPortCfgSpeed), int (*)(port_id_t, unsigned int*)>);
static_assert(std::is_same_v<decltype(&PortControl::GetPortSpeed), int (*)(port_id_t, unsigned int*)>);
static_assert(std::is_same_v<decltype(&PortControl::GetMediaHwFcXmtrType), int (*)(port_id_t, MediaHwFcXmtrType*)>);

using AsicInfo = int (*)(unsigned int, unsigned int*, unsigned int*);
using CoreInfo = int (*)(unsigned int, unsigned int, unsigned short*, SerDesType*, unsigned int*, unsigned int*,
                         unsigned int*, unsigned int*, unsigned int*);
using SideInfo = int (*)(unsigned int, unsigned int, SerDesLinkType, unsigned int*, SerDesType*, unsigned int*);
[[maybe_unused]] constexpr AsicInfo kAsicInfo = &AsicControl::GetSerDesInfo;
[[maybe_unused]] constexpr CoreInfo kCoreInfo = &AsicControl::GetSerDesInfo;
[[maybe_unused]] constexpr SideInfo kSideInfo = &AsicControl::GetSerDesInfo;

// The platform passes and stores enumerations as 32-bit numbers.
static_assert(sizeof(SerDesType) == 4 && sizeof(SerDesLinkType) == 4 && sizeof(port_info_t) == 4);
static_assert(sizeof(MediaHwFcXmtrType) == 4 && sizeof(port_speed_type) == 4);

// A record as the platform lays it out: bytes filled in from 16-bit and 32-bit fields.
template <typename Record>
class Layout {
 public:
  template <typename Field>
  Layout& at(std::size_t offset, Field value) {
    std::memcpy(bytes_.data() + offset, &value, sizeof value);
    return *this;
  }

  Record record() const {
    Record record;
    std::memcpy(&record, bytes_.data(), sizeof record);
    return record;
  }

 private:
  std::array<unsigned char, sizeof(Record)> bytes_{};
};

TEST(PlatformRecords, SwitchConfigurationBeginsWithFourWords) {
  const auto config = Layout<Switch_HW_Config_t>().at(0, 11u).at(4, 12u).at(8, 13u).at(12, 14u).record();
  EXPECT_EQ(config.NumSlots, 11);
  EXPECT_EQ(config.NumUserPorts, 12);
  EXPECT_EQ(config.NumAuxPorts, 13);
  EXPECT_EQ(config.NumASICs, 14u);
}

TEST(PlatformRecords, PortIdentifierIsThreeHalfwordsAndTwoBytes) {
  EXPECT_EQ(sizeof(port_id_t), 8u);
  const auto id = Layout<port_id_t>().at(0, std::uint16_t{1}).at(2, std::uint16_t{2}).at(4, std::uint16_t{3}).record();
  EXPECT_EQ(id.userPort, 1);
  EXPECT_EQ(id.asic, 2);
  EXPECT_EQ(id.asicPort, 3);
}

TEST(PlatformRecords, PortRecordHasItsIdentifierPresenceAndType) {
  EXPECT_EQ(sizeof(Port_HW_Config_t), 68u);
  const auto port = Layout<Port_HW_Config_t>().at(0, std::uint16_t{9}).at(8, 0x10000u).at(12, 3u).record();
  EXPECT_EQ(port.portId.userPort, 9);
  EXPECT_EQ(port.presence, 0x10000u);
  EXPECT_EQ(port.portType, kPortTypeExg);
}

TEST(PlatformRecords, NumbersOfTheirFields) {
  EXPECT_EQ(kPortTypeGl, 1u);
  EXPECT_EQ(kPortTypeXg, 2u);
  EXPECT_EQ(kPortTypeExg, 3u);
  EXPECT_EQ(kNoUserPort, 0xFFFFu);
  EXPECT_EQ(static_cast<unsigned>(SERDES_LINK_RX), 0u);
  EXPECT_EQ(static_cast<unsigned>(SERDES_LINK_TX), 1u);
  EXPECT_EQ(static_cast<unsigned>(PORT_INFO_STATE), 0u);
  EXPECT_EQ(kPortStateRunning, 11u);
}

}  // namespace
