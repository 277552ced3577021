// The register maps of the seven SerDes types; docs/simulated-switch.md shows them as tables.
#include "simulator/serdes/register_map.h"

namespace simulator {
namespace {

using enum Field;

constexpr Field tap(unsigned index) {
  return tapField(index);
}

// Fields: which, register, lowest bit, bits. Traits: register, value after a reset, and whether it cannot be written;
// registers that show what is worked out never can.

// Type 0: 3G, FFE2 at most, no DFE.
constexpr FieldPlace kTx0[] = {
    {kTxEnable, 0, 0, 1}, {kFfeMode, 0, 1, 1},         {kSlewEnable, 0, 3, 1},
    {kSlew, 0, 4, 3},     {kPower, 1, 0, 8},           {kC1, 2, 0, 8},
    {kC2, 2, 8, 8},       {kPattern, 3, 0, 2},         {kPllLock, 4, 0, 1},
    {kSending, 4, 1, 1},  {kInjectedErrors, 5, 0, 16},
};
constexpr RegisterTrait kTx0Traits[] = {{0, 0x0039}, {1, 0x0073}, {2, 0x003f}};
constexpr FieldPlace kRx0[] = {
    {kRxEnable, 0, 0, 1},    {kLoopback, 0, 1, 1},     {kCheckPattern, 0, 4, 2}, {kPole, 1, 0, 3},
    {kPeak, 1, 3, 3},        {kAmax, 1, 8, 7},         {kSignalDetect, 2, 0, 1}, {kLock, 2, 1, 1},
    {kGainInRange, 2, 2, 1}, {kEyeHeight, 3, 0, 16},   {kAp, 4, 0, 16},          {kAmin, 5, 0, 16},
    {kAn, 6, 0, 16},         {kCheckErrors, 7, 0, 16},
};
constexpr RegisterTrait kRx0Traits[] = {{0, 0x0001}, {1, 0x4026}};
constexpr FieldPlace kPll0[] = {{kPllEnable, 0, 0, 1}, {kPllLock, 1, 0, 1}, {kTemperature, 2, 0, 16}};
constexpr RegisterTrait kPll0Traits[] = {{0, 0x0001}, {3, 0x0014}, {4, 0x0002}};

// Type 1: 6G, FFE3 and DFE3 at most.
constexpr FieldPlace kTx1[] = {
    {kTxEnable, 1, 0, 1}, {kFfeMode, 1, 1, 2}, {kSlew, 2, 0, 3},    {kSlewEnable, 2, 3, 1},
    {kPower, 3, 0, 8},    {kC0, 4, 0, 8},      {kC1, 4, 8, 8},      {kC2, 5, 0, 8},
    {kPattern, 6, 0, 2},  {kPllLock, 7, 0, 1}, {kSending, 7, 1, 1}, {kInjectedErrors, 8, 0, 16},
};
constexpr RegisterTrait kTx1Traits[] = {{0, 0x1061, true}, {1, 0x0001}, {2, 0x000b},
                                        {3, 0x0073},       {4, 0x3f00}, {9, 0x0010}};
constexpr FieldPlace kRx1[] = {
    {kRxEnable, 1, 0, 1},     {kDfeMode, 1, 1, 2},       {kHold, 1, 3, 1},         {kLoopback, 1, 4, 1},
    {kCheckPattern, 1, 8, 2}, {kPole, 2, 0, 3},          {kPeak, 2, 3, 3},         {kAmax, 3, 0, 7},
    {tap(0), 4, 0, 8},        {tap(1), 4, 8, 8},         {tap(2), 5, 0, 8},        {tap(3), 5, 8, 8},
    {tap(4), 6, 0, 8},        {tap(5), 6, 8, 8},         {kSignalDetect, 7, 0, 1}, {kLock, 7, 1, 1},
    {kGainInRange, 7, 2, 1},  {kEyeHeight, 8, 0, 16},    {kAp, 9, 0, 16},          {kAmin, 10, 0, 16},
    {kAn, 11, 0, 16},         {kCheckErrors, 12, 0, 16},
};
constexpr RegisterTrait kRx1Traits[] = {{0, 0x1161, true}, {1, 0x0001},  {2, 0x0026},
                                        {3, 0x0040},       {13, 0x0202}, {14, 0x0008}};
constexpr FieldPlace kPll1[] = {{kPllEnable, 1, 0, 1}, {kPllLock, 2, 0, 1}, {kTemperature, 3, 0, 16}};
constexpr RegisterTrait kPll1Traits[] = {{0, 0x1261, true}, {1, 0x0001}, {4, 0x0028}, {6, 0x0100}};

// Type 2: 11G.
constexpr FieldPlace kTx2[] = {
    {kTxEnable, 1, 0, 1},
    {kFfeMode, 1, 1, 2},
    {kPllLock, 2, 0, 1},
    {kSending, 2, 1, 1},
    {kSlew, 3, 0, 3},
    {kSlewEnable, 3, 3, 1},
    {kPower, 4, 0, 8},
    {kC0, 5, 0, 8},
    {kC1, 6, 0, 8},
    {kC2, 7, 0, 8},
    {kC3, 8, 0, 8},
    {kPattern, 9, 0, 2},
    {kInjectedErrors, 10, 0, 16},
};
constexpr RegisterTrait kTx2Traits[] = {{0, 0x2011, true}, {1, 0x0001},  {3, 0x000a},  {4, 0x0073},
                                        {6, 0x003f},       {11, 0x0420}, {12, 0x0003}, {13, 0x8000}};
constexpr FieldPlace kRx2[] = {
    {kRxEnable, 1, 0, 1},      {kDfeMode, 1, 1, 2},       {kHold, 1, 3, 1},        {kLoopback, 1, 4, 1},
    {kSignalDetect, 2, 0, 1},  {kLock, 2, 1, 1},          {kGainInRange, 2, 2, 1}, {kPole, 3, 0, 3},
    {kPeak, 3, 3, 3},          {kAmax, 4, 0, 7},          {tap(0), 5, 0, 8},       {tap(1), 5, 8, 8},
    {tap(2), 6, 0, 8},         {tap(3), 6, 8, 8},         {tap(4), 7, 0, 8},       {tap(5), 7, 8, 8},
    {tap(6), 8, 0, 8},         {tap(7), 8, 8, 8},         {tap(8), 9, 0, 8},       {tap(9), 9, 8, 8},
    {kCheckPattern, 10, 0, 2}, {kCheckErrors, 11, 0, 16}, {kAp, 12, 0, 16},        {kAmin, 13, 0, 16},
    {kAn, 14, 0, 16},          {kEyeHeight, 15, 0, 16},
};
constexpr RegisterTrait kRx2Traits[] = {{0, 0x2111, true}, {1, 0x0001},  {3, 0x0026},  {4, 0x004e},
                                        {16, 0x0112},      {17, 0x00a0}, {19, 0x1f00}, {22, 0x0005}};
constexpr FieldPlace kPll2[] = {{kPllEnable, 1, 0, 1}, {kPllLock, 2, 0, 1}, {kTemperature, 3, 0, 16}};
constexpr RegisterTrait kPll2Traits[] = {{0, 0x2211, true}, {1, 0x0001}, {4, 0x0041},
                                         {6, 0x0100},       {7, 0x0040}, {11, 0x0003}};

// Type 3: four links a core, five H values.
constexpr FieldPlace kTx3[] = {
    {kTxEnable, 0, 0, 1}, {kFfeMode, 0, 1, 2}, {kSlewEnable, 0, 3, 1}, {kSlew, 0, 4, 3},
    {kPattern, 0, 8, 2},  {kPower, 1, 0, 8},   {kC0, 2, 0, 8},         {kC1, 2, 8, 8},
    {kC2, 3, 0, 8},       {kPllLock, 4, 0, 1}, {kSending, 4, 1, 1},    {kInjectedErrors, 5, 0, 16},
};
constexpr RegisterTrait kTx3Traits[] = {{0, 0x0039}, {1, 0x0073}, {2, 0x3f00}, {6, 0x0018}, {8, 0x0100}};
constexpr FieldPlace kRx3[] = {
    {kRxEnable, 0, 0, 1},      {kDfeMode, 0, 1, 2},      {kHold, 0, 3, 1},   {kLoopback, 0, 4, 1},
    {kCheckPattern, 0, 8, 2},  {kPole, 1, 0, 3},         {kPeak, 1, 3, 3},   {kAmax, 1, 8, 7},
    {tap(0), 2, 0, 8},         {tap(2), 3, 0, 8},        {tap(4), 4, 0, 8},  {tap(6), 5, 0, 8},
    {tap(8), 6, 0, 8},         {kSignalDetect, 7, 0, 1}, {kLock, 7, 1, 1},   {kGainInRange, 7, 2, 1},
    {kEyeHeight, 8, 0, 16},    {kAp, 9, 0, 16},          {kAmin, 10, 0, 16}, {kAn, 11, 0, 16},
    {kCheckErrors, 12, 0, 16},
};
constexpr RegisterTrait kRx3Traits[] = {{0, 0x0001}, {1, 0x4026}, {14, 0x0044}, {17, 0x0001}};
constexpr FieldPlace kPll3[] = {{kPllEnable, 0, 0, 1}, {kPllLock, 1, 0, 1}, {kTemperature, 2, 0, 16}};
constexpr RegisterTrait kPll3Traits[] = {{0, 0x0001}, {3, 0x0019}, {7, 0x0080}};

// Type 4: 10 Gb/s ethernet.
constexpr FieldPlace kTx4[] = {
    {kTxEnable, 0, 0, 1}, {kDriveLevel, 1, 0, 4}, {kPreEmphasis, 1, 4, 4},     {kPattern, 2, 0, 2},
    {kPllLock, 3, 0, 1},  {kSending, 3, 1, 1},    {kInjectedErrors, 4, 0, 16},
};
constexpr RegisterTrait kTx4Traits[] = {{0, 0x0001}, {1, 0x0007}, {6, 0x0300}};
constexpr FieldPlace kRx4[] = {
    {kRxEnable, 0, 0, 1},     {kLoopback, 0, 1, 1},     {kCheckPattern, 0, 4, 2}, {kCdrMode, 1, 0, 2},
    {kEqMode, 1, 4, 3},       {kSignalDetect, 2, 0, 1}, {kLock, 2, 1, 1},         {kGainInRange, 2, 2, 1},
    {kEyeHeight, 3, 0, 16},   {kAp, 4, 0, 16},          {kAmin, 5, 0, 16},        {kAn, 6, 0, 16},
    {kCheckErrors, 7, 0, 16},
};
constexpr RegisterTrait kRx4Traits[] = {{0, 0x0001}, {1, 0x0020}, {8, 0x0401}};
constexpr FieldPlace kPll4[] = {{kPllEnable, 0, 0, 1}, {kPllLock, 1, 0, 1}, {kTemperature, 2, 0, 16}};
constexpr RegisterTrait kPll4Traits[] = {{0, 0x0001}, {3, 0x0042}};

// Type 5: 11G of a later generation, the full 32 receive registers.
constexpr FieldPlace kTx5[] = {
    {kPllLock, 1, 0, 1},
    {kSending, 1, 1, 1},
    {kTxEnable, 2, 0, 1},
    {kPattern, 2, 4, 2},
    {kPower, 4, 0, 8},
    {kFfeMode, 4, 8, 2},
    {kC0, 5, 0, 8},
    {kC1, 5, 8, 8},
    {kC2, 6, 0, 8},
    {kC3, 6, 8, 8},
    {kSlew, 7, 0, 3},
    {kSlewEnable, 7, 7, 1},
    {kInjectedErrors, 8, 0, 16},
};
constexpr RegisterTrait kTx5Traits[] = {{0, 0x5012, true}, {2, 0x0001}, {3, 0x0032},  {4, 0x0073},
                                        {5, 0x3f00},       {7, 0x0082}, {12, 0x0700}, {18, 0x0001}};
constexpr FieldPlace kRx5[] = {
    {kSignalDetect, 1, 0, 1}, {kLock, 1, 1, 1},          {kGainInRange, 1, 2, 1}, {kRxEnable, 2, 0, 1},
    {kLoopback, 2, 1, 1},     {kCheckPattern, 2, 4, 2},  {kDfeMode, 4, 0, 2},     {kHold, 4, 7, 1},
    {kPole, 5, 0, 3},         {kPeak, 5, 4, 3},          {kAmax, 6, 0, 7},        {kEyeHeight, 7, 0, 16},
    {tap(0), 8, 0, 8},        {tap(1), 9, 0, 8},         {tap(2), 10, 0, 8},      {tap(3), 11, 0, 8},
    {tap(4), 12, 0, 8},       {tap(5), 13, 0, 8},        {tap(6), 14, 0, 8},      {tap(7), 15, 0, 8},
    {tap(8), 16, 0, 8},       {tap(9), 17, 0, 8},        {kAp, 18, 0, 16},        {kAmin, 19, 0, 16},
    {kAn, 20, 0, 16},         {kCheckErrors, 21, 0, 16},
};
constexpr RegisterTrait kRx5Traits[] = {{0, 0x5112, true}, {2, 0x0001},  {3, 0x0032},  {5, 0x0046}, {6, 0x004e},
                                        {24, 0x0112},      {25, 0x00c0}, {30, 0x0a5a}, {31, 0x0001}};
constexpr FieldPlace kPll5[] = {{kPllLock, 1, 0, 1}, {kTemperature, 2, 0, 16}, {kPllEnable, 3, 0, 1}};
constexpr RegisterTrait kPll5Traits[] = {{0, 0x5212, true}, {3, 0x0001}, {5, 0x0041}, {8, 0x0100}, {13, 0x0007}};

// Type 6: 1 Gb/s ethernet.
constexpr FieldPlace kTx6[] = {
    {kTxEnable, 0, 0, 1}, {kDriveLevel, 1, 0, 4},      {kPreEmphasis, 1, 4, 4}, {kPllLock, 2, 0, 1},
    {kSending, 2, 1, 1},  {kInjectedErrors, 3, 0, 16}, {kPattern, 4, 0, 2},
};
constexpr RegisterTrait kTx6Traits[] = {{0, 0x0001}, {1, 0x0007}};
constexpr FieldPlace kRx6[] = {
    {kRxEnable, 0, 0, 1}, {kLoopback, 0, 1, 1},     {kCheckPattern, 0, 4, 2}, {kCdrMode, 1, 0, 2},
    {kEqMode, 1, 4, 3},   {kSignalDetect, 2, 0, 1}, {kLock, 2, 1, 1},         {kGainInRange, 2, 2, 1},
    {kAp, 3, 0, 16},      {kEyeHeight, 4, 0, 16},   {kCheckErrors, 5, 0, 16},
};
constexpr RegisterTrait kRx6Traits[] = {{0, 0x0001}, {1, 0x0020}, {6, 0x0009}};
constexpr FieldPlace kPll6[] = {{kPllEnable, 0, 0, 1}, {kPllLock, 1, 0, 1}, {kTemperature, 2, 0, 16}};
constexpr RegisterTrait kPll6Traits[] = {{0, 0x0001}, {3, 0x0005}};

// Modes as masks: FFE none, 2, 3, 4 are bits 0 to 3; DFE3, DFE5, none, DFE1 are bits 0 to 3.
constexpr std::uint8_t kFfeTo2 = 0b0011, kFfeTo3 = 0b0111, kFfeTo4 = 0b1111;
constexpr std::uint8_t kDfeNone = 0b0100, kDfeTo3 = 0b1101, kDfeTo5 = 0b1111;

constexpr SerDesTraits kTypes[kSerDesTypes] = {
    {.name = "SERDES_3G",
     .ffeModes = kFfeTo2,
     .dfeModes = kDfeNone,
     .tx = {.count = 6, .fields = kTx0, .traits = kTx0Traits},
     .rx = {.count = 8, .fields = kRx0, .traits = kRx0Traits},
     .pll = {.count = 5, .fields = kPll0, .traits = kPll0Traits}},
    {.name = "SERDES_6G",
     .hasEvenAndOddTaps = true,
     .ffeModes = kFfeTo3,
     .dfeModes = kDfeTo3,
     .tx = {.count = 10, .fields = kTx1, .traits = kTx1Traits},
     .rx = {.count = 15, .fields = kRx1, .traits = kRx1Traits},
     .pll = {.count = 8, .fields = kPll1, .traits = kPll1Traits}},
    {.name = "SERDES_11G",
     .hasEvenAndOddTaps = true,
     .ffeModes = kFfeTo4,
     .dfeModes = kDfeTo5,
     .tx = {.count = 16, .fields = kTx2, .traits = kTx2Traits},
     .rx = {.count = 24, .fields = kRx2, .traits = kRx2Traits},
     .pll = {.count = 12, .fields = kPll2, .traits = kPll2Traits}},
    {.name = "SERDES_6G_QUAD",
     .ffeModes = kFfeTo3,
     .dfeModes = kDfeTo5,
     .tx = {.count = 12, .fields = kTx3, .traits = kTx3Traits},
     .rx = {.count = 18, .fields = kRx3, .traits = kRx3Traits},
     .pll = {.count = 10, .fields = kPll3, .traits = kPll3Traits}},
    {.name = "SERDES_10GE",
     .isEthernet = true,
     .ffeModes = kFfeTo2,
     .dfeModes = kDfeNone,
     .txParamCount = 2,
     .rxParamCount = 2,
     .tx = {.count = 8, .fields = kTx4, .traits = kTx4Traits},
     .rx = {.count = 10, .fields = kRx4, .traits = kRx4Traits},
     .pll = {.count = 6, .fields = kPll4, .traits = kPll4Traits}},
    {.name = "SERDES_11G_B",
     .hasEvenAndOddTaps = true,
     .ffeModes = kFfeTo4,
     .dfeModes = kDfeTo5,
     .tx = {.count = 20, .fields = kTx5, .traits = kTx5Traits},
     .rx = {.count = 32, .fields = kRx5, .traits = kRx5Traits},
     .pll = {.count = 14, .fields = kPll5, .traits = kPll5Traits}},
    {.name = "SERDES_1GE",
     .isEthernet = true,
     .ffeModes = kFfeTo2,
     .dfeModes = kDfeNone,
     .txParamCount = 2,
     .rxParamCount = 2,
     .tx = {.count = 5, .fields = kTx6, .traits = kTx6Traits},
     .rx = {.count = 7, .fields = kRx6, .traits = kRx6Traits},
     .pll = {.count = 4, .fields = kPll6, .traits = kPll6Traits}},
};

}  // namespace

const SerDesTraits& serDesTraits(unsigned type) {
  return kTypes[type];
}

}  // namespace simulator
