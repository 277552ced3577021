// A switch's operations as another house declares them: written for an older compiler, from the operations' names and
// argument types and from where the records keep what, without a look at this tool's own declarations.
#ifndef HAL_H
#define HAL_H

typedef unsigned char u8;
typedef unsigned short u16;
typedef unsigned int u32;
typedef signed char s8;
typedef short s16;
typedef int s32;

enum SerDesType { LANE_NONE, LANE_A, LANE_B, LANE_C, LANE_D, LANE_TYPES };
enum SerDesLinkType { LANE_RECEIVES, LANE_SENDS };
typedef enum { TAPS_OFF, TAPS_2, TAPS_3, TAPS_4 } SerDesTxFFEMode;
typedef enum { EDGE_FASTEST, EDGE_SLOWEST = 6, EDGE_OTHER } SerDesTxSlewRate;
enum SerDesRxDFEMode { FEEDBACK_3, FEEDBACK_5, FEEDBACK_OFF, FEEDBACK_1 };
enum SerDesTestOption { FIRST_OPTION, LAST_OPTION = 9 };
typedef enum { RATE_NEGOTIATED, RATE_8 = 4, RATE_10, RATE_BAD = 7 } port_speed_type;
enum port_info_t { INFO_STATE, INFO_ALARMS };
enum MediaHwFcXmtrType { XMTR_NONE, XMTR_LASER = 3, XMTR_COPPER = 5 };

typedef struct {
  u16 front_panel;
  u16 chip;
  u16 chip_port;
  u16 spare;
} port_id_t;

struct Switch_HW_Config_t {
  s32 slots, front_ports, aux_ports;
  u32 chips;
  u32 blades[13];
  u8 serial[32];
};

typedef struct {
  port_id_t id;
  u32 fitted;
  u32 kind;
  u32 led;
  u8 label[48];
} Port_HW_Config_t;

struct SerDesTxRateParams {
  s32 drive, edge, tap_mode, taps[4];
};

struct SerDesRxRateParams {
  s32 feedback, values[4];
};

struct SerDesRxDFEState {
  u32 revision;
  enum SerDesRxDFEMode feedback;
  s16 weights[10];
};

struct SerDesRxDFEStats {
  u32 revision;
  s16 weights[10];
  s16 mean_one, least_one, mean_zero;
  u16 flags;
};

typedef struct {
  u32 upper, lower;
} counter64;

struct drv_counters_t {
  counter64 frames[11];
  counter64 undecodable;
  counter64 words[2];
  counter64 bad_crc;
  counter64 others[92];
};

class AsicControl {
 public:
  static int AsicCtlOpen();
  static int AsicCtlClose();
  static int GetSwitchConfig(Switch_HW_Config_t*);
  static int GetSerDesInfo(u32 chip, u32* ports, u32* cores);
  static int GetSerDesInfo(u32 chip, u32 core, u16* first, SerDesType*, u32* pll, u32* rx, u32* tx, u32* rxp, u32* txp);
  static int GetSerDesInfo(u32 chip, u32 port, SerDesLinkType, u32* lanes, SerDesType*, u32* core);
  static const char* ToString(SerDesType);

  static int ReadSerDesLinkRegister(u32 chip, u32 port, int lane, SerDesLinkType, u8 first, u16* to, u8 how_many);
  static int WriteSerDesLinkRegister(u32 chip, u32 port, int lane, SerDesLinkType, u8 at, u16 value);
  static int ReadSerDesPLLRegister(u32 chip, u32 core, u8 first, u16* to, u8 how_many);
  static int WriteSerDesPLLRegister(u32 chip, u32 core, u8 at, u16 value);

  static int SetSerDesTxFFE(u32 chip, u32 port, int lane, SerDesTxFFEMode, u8 drive, s8, s8, s8, s8);
  static int GetSerDesTxFFE(u32 chip, u32 port, int lane, SerDesTxFFEMode*, u8* drive, s8*, s8*, s8*, s8*);
  static int SetSerDesTxSlew(u32 chip, u32 port, int lane, bool on, SerDesTxSlewRate);
  static int GetSerDesTxSlew(u32 chip, u32 port, int lane, bool* on, SerDesTxSlewRate*);
  static int SetSerDesTxRateParams(u32 chip, u32 port, port_speed_type, SerDesTxRateParams);
  static int GetSerDesTxRateParams(u32 chip, u32 port, port_speed_type, SerDesTxRateParams*);

  static int SetSerDesRxDFE(u32 chip, u32 port, int lane, SerDesRxDFEMode);
  static int GetSerDesRxDFE(u32 chip, u32 port, int lane, SerDesRxDFEMode*);
  static int SetSerDesRxVGA(u32 chip, u32 port, int lane, s8 pole, s8 peak, s8 amax);
  static int GetSerDesRxVGA(u32 chip, u32 port, int lane, s8* pole, s8* peak, s8* amax);
  static int SetSerDesRxDFEState(u32 chip, u32 port, int lane, SerDesRxDFEState*);
  static int GetSerDesRxDFEStats(u32 chip, u32 port, int lane, SerDesRxDFEStats*);
  static int SetSerDesRxRateParams(u32 chip, u32 port, port_speed_type, SerDesRxRateParams);
  static int GetSerDesRxRateParams(u32 chip, u32 port, port_speed_type, SerDesRxRateParams*);

  static int SetSerDesTestOption(u32 chip, u32 port, int lane, SerDesTestOption, int mode);
  static int GetSerDesTestStatus(u32 chip, u32 port, int lane, SerDesTestOption, int* status);
};

class PortControl {
 public:
  static int PortCtlOpen();
  static int PortCtlClose();
  static int GetPortHwConfig(port_id_t, Port_HW_Config_t*);
  static int GetPortInfo(port_id_t, port_info_t, unsigned long* value);
  static int SetPortCfgSpeed(port_id_t, u32 speed);
  static int GetPortCfgSpeed(port_id_t, u32* speed);
  static int GetPortSpeed(port_id_t, u32* speed);
  static int GetMediaHwFcXmtrType(port_id_t, MediaHwFcXmtrType*);
  static int TxStreamEnable(port_id_t, bool on);
  static int TxStreamState(port_id_t, bool* on);
  static int GetFrameStatCntrs(port_id_t, drv_counters_t*);
  static int ClrFrameStatCntrs(port_id_t);
};

#endif
