// The platform's operations and records as this tool uses them.
//
// The classes live in the closed libraries libasicApi.so, libswbApi.so and libswServerApi.so, or in the simulated
// switch that bears the same names. Argument types fix the linker symbols and record layouts are read and written by
// the other side: neither may change here. Every operation returns a negative result on failure.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// The enumerations are 32-bit numbers; a platform may hand back values beyond the ones named here.

enum SerDesType : std::uint32_t {};

enum SerDesLinkType : std::uint32_t {
  SERDES_LINK_RX = 0,
  SERDES_LINK_TX = 1,
};

enum SerDesTxFFEMode : std::uint32_t {
  FFE_NONE = 0,
  FFE_2 = 1,
  FFE_3 = 2,
  FFE_4 = 3,
};

// 24, 30, 36, 50, 60, 75 and 100 ps.
enum SerDesTxSlewRate : std::uint32_t {
  SLEW_24PS = 0,
  SLEW_30PS = 1,
  SLEW_36PS = 2,
  SLEW_50PS = 3,
  SLEW_60PS = 4,
  SLEW_75PS = 5,
  SLEW_100PS = 6,
  SLEW_UNKNOWN = 7,
};

enum SerDesRxDFEMode : std::uint32_t {
  DFE_3 = 0,
  DFE_5 = 1,
  DFE_NONE = 2,
  DFE_1 = 3,
};

// Options 0 to 9; what each does is the platform's.
enum SerDesTestOption : std::uint32_t {};

enum port_speed_type : std::uint32_t {
  SPEED_AUTO = 0,
  SPEED_1G = 1,
  SPEED_2G = 2,
  SPEED_4G = 3,
  SPEED_8G = 4,
  SPEED_10G = 5,
  SPEED_20G = 6,
  SPEED_INVALID = 7,
};

enum port_info_t : std::uint32_t {
  PORT_INFO_STATE = 0,
};

// The port state in which the running speed is valid even without a configured one.
inline constexpr unsigned long kPortStateRunning = 11;

enum MediaHwFcXmtrType : std::uint32_t {
  MEDIA_NONE = 0,
  MEDIA_NOT_APPLICABLE = 1,
  MEDIA_UNKNOWN = 2,
  MEDIA_OPTICAL = 3,
  MEDIA_ELECTRICAL = 4,
  MEDIA_COPPER_PASSIVE = 5,
  MEDIA_COPPER_ACTIVE = 6,
  MEDIA_10G_ETHERNET = 7,
  MEDIA_1G_ETHERNET = 8,
};

// Port types in Port_HW_Config_t::portType.
inline constexpr std::uint32_t kPortTypeGl = 1;
inline constexpr std::uint32_t kPortTypeXg = 2;
inline constexpr std::uint32_t kPortTypeExg = 3;

// The user port number of a port that has none, and of a port that is addressed by ASIC and ASIC port only.
inline constexpr std::uint16_t kNoUserPort = 0xFFFF;

// Room after the known fields of a record whose whole size is the platform's secret: it writes all of its own record.
inline constexpr std::size_t kReservedBytes = 256;

// Names one port in PortControl calls; passed by value.
struct port_id_t {
  std::uint16_t userPort;
  std::uint16_t asic;
  std::uint16_t asicPort;
  std::array<std::uint8_t, 2> unused;
};
static_assert(sizeof(port_id_t) == 8);
static_assert(offsetof(port_id_t, asic) == 2 && offsetof(port_id_t, asicPort) == 4);

struct alignas(8) Switch_HW_Config_t {
  std::int32_t NumSlots;
  std::int32_t NumUserPorts;
  std::int32_t NumAuxPorts;
  std::uint32_t NumASICs;
  std::array<std::uint8_t, kReservedBytes> reserved;
};
static_assert(offsetof(Switch_HW_Config_t, NumASICs) == 12 && offsetof(Switch_HW_Config_t, reserved) == 16);

struct Port_HW_Config_t {
  port_id_t portId;
  std::uint32_t presence;  // not 0: the port has one of the three types
  std::uint32_t portType;  // kPortTypeGl, kPortTypeXg or kPortTypeExg
  std::array<std::uint8_t, 52> rest;
};
static_assert(sizeof(Port_HW_Config_t) == 68);
static_assert(offsetof(Port_HW_Config_t, presence) == 8 && offsetof(Port_HW_Config_t, portType) == 12);

// One port's transmit parameters for one rate. Ethernet ports use power and p0 (pre-emphasis) alone.
struct SerDesTxRateParams {
  std::int32_t power;
  std::int32_t slew;  // SerDesTxSlewRate
  std::int32_t mode;  // SerDesTxFFEMode
  std::int32_t p0;    // c0, precursor
  std::int32_t p1;    // c1, main
  std::int32_t p2;    // c2, postcursor
  std::int32_t p3;    // c3, postcursor
};
static_assert(sizeof(SerDesTxRateParams) == 28 && offsetof(SerDesTxRateParams, p0) == 12);

// One port's receive parameters for one rate. Ethernet ports use mode (CDR mode) and p0 (equaliser mode) alone.
struct SerDesRxRateParams {
  std::int32_t mode;  // SerDesRxDFEMode
  std::int32_t p0;    // VGA pole
  std::int32_t p1;    // VGA peak
  std::int32_t p2;    // VGA amax
  std::int32_t p3;
};
static_assert(sizeof(SerDesRxRateParams) == 20 && offsetof(SerDesRxRateParams, p0) == 4);

// H1_Even, H1_Odd, ... H5_Even, H5_Odd.
inline constexpr std::size_t kDfeTapCount = 10;

struct SerDesRxDFEState {
  std::uint32_t leadingWord;
  SerDesRxDFEMode mode;
  std::array<std::int16_t, kDfeTapCount> h;
  std::array<std::uint8_t, kReservedBytes> reserved;
};
static_assert(offsetof(SerDesRxDFEState, mode) == 4 && offsetof(SerDesRxDFEState, h) == 8);
static_assert(offsetof(SerDesRxDFEState, reserved) == 28);

struct SerDesRxDFEStats {
  std::uint32_t leadingWord;
  std::array<std::int16_t, kDfeTapCount> h;
  std::int16_t Ap;
  std::int16_t Amin;
  std::int16_t An;
  std::uint16_t trailingHalfword;
  std::array<std::uint8_t, kReservedBytes> reserved;
};
static_assert(offsetof(SerDesRxDFEStats, h) == 4 && offsetof(SerDesRxDFEStats, Ap) == 24);
static_assert(offsetof(SerDesRxDFEStats, An) == 28 && offsetof(SerDesRxDFEStats, reserved) == 32);

// A 64-bit counter as the platform keeps it: most significant word first, each word in the processor's byte order.
struct WordPairCounter {
  std::uint32_t high;
  std::uint32_t low;
};

// A port's frame statistics.
struct alignas(8) drv_counters_t {
  std::array<std::uint8_t, 88> beforeDecodeErrors;
  WordPairCounter decodeErrors;
  std::array<std::uint8_t, 16> beforeCrcErrors;
  WordPairCounter crcErrors;
  std::array<std::uint8_t, 736> rest;
};
static_assert(sizeof(drv_counters_t) == 856);
static_assert(offsetof(drv_counters_t, decodeErrors) == 88 && offsetof(drv_counters_t, crcErrors) == 112);

// The link number that addresses all links of a port, where an operation allows it.
inline constexpr int kAllLinks = -1;

// Operations on the switch ASIC.
class AsicControl {
 public:
  [[nodiscard]] static int AsicCtlOpen();
  [[nodiscard]] static int AsicCtlClose();
  [[nodiscard]] static int GetSwitchConfig(Switch_HW_Config_t* config);

  // An ASIC: how many ports and SerDes cores it has.
  [[nodiscard]] static int GetSerDesInfo(unsigned int asic, unsigned int* portCount, unsigned int* coreCount);
  // A core: its first port, type, and the number of its registers and parameters.
  [[nodiscard]] static int GetSerDesInfo(unsigned int asic, unsigned int core, unsigned short* firstPort,
                                         SerDesType* type, unsigned int* pllRegisterCount,
                                         unsigned int* rxRegisterCount, unsigned int* txRegisterCount,
                                         unsigned int* rxParamCount, unsigned int* txParamCount);
  // One side of a port: how many links it has, their type, and the core that serves them.
  [[nodiscard]] static int GetSerDesInfo(unsigned int asic, unsigned int port, SerDesLinkType side,
                                         unsigned int* linkCount, SerDesType* type, unsigned int* coreId);
  // The printable name of a type; the text is the platform's.
  [[nodiscard]] static const char* ToString(SerDesType type);

  // Reads `count` consecutive registers from `address` on.
  [[nodiscard]] static int ReadSerDesLinkRegister(unsigned int asic, unsigned int port, int link, SerDesLinkType side,
                                                  unsigned char address, unsigned short* values, unsigned char count);
  [[nodiscard]] static int WriteSerDesLinkRegister(unsigned int asic, unsigned int port, int link, SerDesLinkType side,
                                                   unsigned char address, unsigned short value);
  [[nodiscard]] static int ReadSerDesPLLRegister(unsigned int asic, unsigned int core, unsigned char address,
                                                 unsigned short* values, unsigned char count);
  [[nodiscard]] static int WriteSerDesPLLRegister(unsigned int asic, unsigned int core, unsigned char address,
                                                  unsigned short value);

  [[nodiscard]] static int SetSerDesTxFFE(unsigned int asic, unsigned int port, int link, SerDesTxFFEMode mode,
                                          unsigned char k, signed char c0, signed char c1, signed char c2,
                                          signed char c3);
  [[nodiscard]] static int GetSerDesTxFFE(unsigned int asic, unsigned int port, int link, SerDesTxFFEMode* mode,
                                          unsigned char* k, signed char* c0, signed char* c1, signed char* c2,
                                          signed char* c3);
  [[nodiscard]] static int SetSerDesTxSlew(unsigned int asic, unsigned int port, int link, bool enable,
                                           SerDesTxSlewRate slew);
  [[nodiscard]] static int GetSerDesTxSlew(unsigned int asic, unsigned int port, int link, bool* enable,
                                           SerDesTxSlewRate* slew);
  [[nodiscard]] static int SetSerDesTxRateParams(unsigned int asic, unsigned int port, port_speed_type rate,
                                                 SerDesTxRateParams params);
  [[nodiscard]] static int GetSerDesTxRateParams(unsigned int asic, unsigned int port, port_speed_type rate,
                                                 SerDesTxRateParams* params);

  [[nodiscard]] static int SetSerDesRxDFE(unsigned int asic, unsigned int port, int link, SerDesRxDFEMode mode);
  [[nodiscard]] static int GetSerDesRxDFE(unsigned int asic, unsigned int port, int link, SerDesRxDFEMode* mode);
  [[nodiscard]] static int SetSerDesRxVGA(unsigned int asic, unsigned int port, int link, signed char pole,
                                          signed char peak, signed char amax);
  [[nodiscard]] static int GetSerDesRxVGA(unsigned int asic, unsigned int port, int link, signed char* pole,
                                          signed char* peak, signed char* amax);
  [[nodiscard]] static int SetSerDesRxDFEState(unsigned int asic, unsigned int port, int link, SerDesRxDFEState* state);
  [[nodiscard]] static int GetSerDesRxDFEStats(unsigned int asic, unsigned int port, int link, SerDesRxDFEStats* stats);
  [[nodiscard]] static int SetSerDesRxRateParams(unsigned int asic, unsigned int port, port_speed_type rate,
                                                 SerDesRxRateParams params);
  [[nodiscard]] static int GetSerDesRxRateParams(unsigned int asic, unsigned int port, port_speed_type rate,
                                                 SerDesRxRateParams* params);

  [[nodiscard]] static int SetSerDesTestOption(unsigned int asic, unsigned int port, int link, SerDesTestOption option,
                                               int mode);
  [[nodiscard]] static int GetSerDesTestStatus(unsigned int asic, unsigned int port, int link, SerDesTestOption option,
                                               int* status);
};

// Operations on ports, each named by its port_id_t.
class PortControl {
 public:
  [[nodiscard]] static int PortCtlOpen();
  [[nodiscard]] static int PortCtlClose();
  [[nodiscard]] static int GetPortHwConfig(port_id_t port, Port_HW_Config_t* config);

  [[nodiscard]] static int GetPortInfo(port_id_t port, port_info_t selector, unsigned long* value);
  // Speeds are port_speed_type values.
  [[nodiscard]] static int SetPortCfgSpeed(port_id_t port, unsigned int speed);
  [[nodiscard]] static int GetPortCfgSpeed(port_id_t port, unsigned int* speed);
  [[nodiscard]] static int GetPortSpeed(port_id_t port, unsigned int* speed);
  [[nodiscard]] static int GetMediaHwFcXmtrType(port_id_t port, MediaHwFcXmtrType* type);

  [[nodiscard]] static int TxStreamEnable(port_id_t port, bool enable);
  [[nodiscard]] static int TxStreamState(port_id_t port, bool* enabled);

  [[nodiscard]] static int GetFrameStatCntrs(port_id_t port, drv_counters_t* counters);
  [[nodiscard]] static int ClrFrameStatCntrs(port_id_t port);
};
