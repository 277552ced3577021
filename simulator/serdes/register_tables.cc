// The register maps of the seven SerDes types; docs/simulated-switch.md shows them as tables.
#include "simulator/serdes/register_map.h"

namespace simulator {
namespace {

using enum Field;

constexpr Field tap(unsigned index) {
  return tapField(index);
}

// Type 0: 3G, FFE2 at most, no DFE.
constexpr FieldPlace kTx0[] = {
    {kTxEnable, 0, 0, 1}, {kFfeMode, 0, 1, 1},  {kSlewEnable, 0, 3, 1},      {kSlew, 0, 4, 3},
    {kPower, 1, 0, 8},    {kC1, 2, 0, 8, true}, {kC2, 2, 8, 8, true},        {kPattern, 3, 0, 2},
    {kPllLock, 4, 0, 1},  {kSending, 4, 1, 1},  {kInjectedErrors, 5, 0, 16},
};
constexpr RegisterTrait kTx0Traits[] = {{0, 0x0039}, {1, 0x0073}, {2, 0x003f}, {4, 0, true}, {5, 0, true}};
constexpr FieldPlace kRx0[] = {
    {kRxEnable, 0, 0, 1},     {kLoopback, 0, 1, 1},
    {kCheckPattern, 0, 4, 2}, {kPole, 1, 0, 3},
    {kPeak, 1, 3, 3},         {kAmax, 1, 8, 7},
    {kSignalDetect, 2, 0, 1}, {kLock, 2, 1, 1},
    {kGainInRange, 2, 2, 1},  {kEyeHeight, 3, 0, 16, true},
    {kAp, 4, 0, 16, true},    {kAmin, 5, 0, 16, true},
    {kAn, 6, 0, 16, true},    {kCheckErrors, 7, 0, 16},
};
constexpr RegisterTrait kRx0Traits[] = {{0, 0x0001},  {1, 0x4026},  {2, 0, true}, {3, 0, true},
                                        {4, 0, true}, {5, 0, true}, {6, 0, true}, {7, 0, true}};
constexpr FieldPlace kPll0[] = {{kPllEnable, 0, 0, 1}, {kPllLock, 1, 0, 1}, {kTemperature, 2, 0, 16, true}};
constexpr RegisterTrait kPll0Traits[] = {{0, 0x0001}, {1, 0, true}, {2, 0, true}, {3, 0x0014}, {4, 0x0002}};

// Type 1: 6G, FFE3 and DFE3 at most.
constexpr FieldPlace kTx1[] = {
    {kTxEnable, 1, 0, 1}, {kFfeMode, 1, 1, 2},  {kSlew, 2, 0, 3},     {kSlewEnable, 2, 3, 1},
    {kPower, 3, 0, 8},    {kC0, 4, 0, 8, true}, {kC1, 4, 8, 8, true}, {kC2, 5, 0, 8, true},
    {kPattern, 6, 0, 2},  {kPllLock, 7, 0, 1},  {kSending, 7, 1, 1},  {kInjectedErrors, 8, 0, 16},
};
constexpr RegisterTrait kTx1Traits[] = {{0, 0x1061, true}, {1, 0x0001},  {2, 0x000b},  {3, 0x0073},
                                        {4, 0x3f00},       {7, 0, true}, {8, 0, true}, {9, 0x0010}};
constexpr FieldPlace kRx1[] = {
    {kRxEnable, 1, 0, 1},      {kDfeMode, 1, 1, 2},      {kHold, 1, 3, 1},
    {kLoopback, 1, 4, 1},      {kCheckPattern, 1, 8, 2}, {kPole, 2, 0, 3},
    {kPeak, 2, 3, 3},          {kAmax, 3, 0, 7},         {tap(0), 4, 0, 8, true},
    {tap(1), 4, 8, 8, true},   {tap(2), 5, 0, 8, true},  {tap(3), 5, 8, 8, true},
    {tap(4), 6, 0, 8, true},   {tap(5), 6, 8, 8, true},  {kSignalDetect, 7, 0, 1},
    {kLock, 7, 1, 1},          {kGainInRange, 7, 2, 1},  {kEyeHeight, 8, 0, 16, true},
    {kAp, 9, 0, 16, true},     {kAmin, 10, 0, 16, true}, {kAn, 11, 0, 16, true},
    {kCheckErrors, 12, 0, 16},
};
constexpr RegisterTrait kRx1Traits[] = {{0, 0x1161, true}, {1, 0x0001},   {2, 0x0026},  {3, 0x0040},
                                        {7, 0, true},      {8, 0, true},  {9, 0, true}, {10, 0, true},
                                        {11, 0, true},     {12, 0, true}, {13, 0x0202}, {14, 0x0008}};
constexpr FieldPlace kPll1[] = {{kPllEnable, 1, 0, 1}, {kPllLock, 2, 0, 1}, {kTemperature, 3, 0, 16, true}};
constexpr RegisterTrait kPll1Traits[] = {{0, 0x1261, true}, {1, 0x0001}, {2, 0, true},
                                         {3, 0, true},      {4, 0x0028}, {6, 0x0100}};

// Type 2: 11G.
constexpr FieldPlace kTx2[] = {
    {kTxEnable, 1, 0, 1},
    {kFfeMode, 1, 1, 2},
    {kPllLock, 2, 0, 1},
    {kSending, 2, 1, 1},
    {kSlew, 3, 0, 3},
    {kSlewEnable, 3, 3, 1},
    {kPower, 4, 0, 8},
    {kC0, 5, 0, 8, true},
    {kC1, 6, 0, 8, true},
    {kC2, 7, 0, 8, true},
    {kC3, 8, 0, 8, true},
    {kPattern, 9, 0, 2},
    {kInjectedErrors, 10, 0, 16},
};
constexpr RegisterTrait kTx2Traits[] = {{0, 0x2011, true}, {1, 0x0001},   {2, 0, true}, {3, 0x000a},  {4, 0x0073},
                                        {6, 0x003f},       {10, 0, true}, {11, 0x0420}, {12, 0x0003}, {13, 0x8000}};
constexpr FieldPlace kRx2[] = {
    {kRxEnable, 1, 0, 1},      {kDfeMode, 1, 1, 2},
    {kHold, 1, 3, 1},          {kLoopback, 1, 4, 1},
    {kSignalDetect, 2, 0, 1},  {kLock, 2, 1, 1},
    {kGainInRange, 2, 2, 1},   {kPole, 3, 0, 3},
    {kPeak, 3, 3, 3},          {kAmax, 4, 0, 7},
    {tap(0), 5, 0, 8, true},   {tap(1), 5, 8, 8, true},
    {tap(2), 6, 0, 8, true},   {tap(3), 6, 8, 8, true},
    {tap(4), 7, 0, 8, true},   {tap(5), 7, 8, 8, true},
    {tap(6), 8, 0, 8, true},   {tap(7), 8, 8, 8, true},
    {tap(8), 9, 0, 8, true},   {tap(9), 9, 8, 8, true},
    {kCheckPattern, 10, 0, 2}, {kCheckErrors, 11, 0, 16},
    {kAp, 12, 0, 16, true},    {kAmin, 13, 0, 16, true},
    {kAn, 14, 0, 16, true},    {kEyeHeight, 15, 0, 16, true},
};
constexpr RegisterTrait kRx2Traits[] = {{0, 0x2111, true}, {1, 0x0001},   {2, 0, true},  {3, 0x0026},   {4, 0x004e},
                                        {11, 0, true},     {12, 0, true}, {13, 0, true}, {14, 0, true}, {15, 0, true},
                                        {16, 0x0112},      {17, 0x00a0},  {19, 0x1f00},  {22, 0x0005}};
constexpr FieldPlace kPll2[] = {{kPllEnable, 1, 0, 1}, {kPllLock, 2, 0, 1}, {kTemperature, 3, 0, 16, true}};
constexpr RegisterTrait kPll2Traits[] = {{0, 0x2211, true}, {1, 0x0001}, {2, 0, true}, {3, 0, true},
                                         {4, 0x0041},       {6, 0x0100}, {7, 0x0040},  {11, 0x0003}};

// Type 3: four links a core, five H values.
constexpr FieldPlace kTx3[] = {
    {kTxEnable, 0, 0, 1}, {kFfeMode, 0, 1, 2}, {kSlewEnable, 0, 3, 1}, {kSlew, 0, 4, 3},
    {kPattern, 0, 8, 2},  {kPower, 1, 0, 8},   {kC0, 2, 0, 8, true},   {kC1, 2, 8, 8, true},
    {kC2, 3, 0, 8, true}, {kPllLock, 4, 0, 1}, {kSending, 4, 1, 1},    {kInjectedErrors, 5, 0, 16},
};
constexpr RegisterTrait kTx3Traits[] = {{0, 0x0039},  {1, 0x0073}, {2, 0x3f00}, {4, 0, true},
                                        {5, 0, true}, {6, 0x0018}, {8, 0x0100}};
constexpr FieldPlace kRx3[] = {
    {kRxEnable, 0, 0, 1},         {kDfeMode, 0, 1, 2},      {kHold, 0, 3, 1},         {kLoopback, 0, 4, 1},
    {kCheckPattern, 0, 8, 2},     {kPole, 1, 0, 3},         {kPeak, 1, 3, 3},         {kAmax, 1, 8, 7},
    {tap(0), 2, 0, 8, true},      {tap(2), 3, 0, 8, true},  {tap(4), 4, 0, 8, true},  {tap(6), 5, 0, 8, true},
    {tap(8), 6, 0, 8, true},      {kSignalDetect, 7, 0, 1}, {kLock, 7, 1, 1},         {kGainInRange, 7, 2, 1},
    {kEyeHeight, 8, 0, 16, true}, {kAp, 9, 0, 16, true},    {kAmin, 10, 0, 16, true}, {kAn, 11, 0, 16, true},
    {kCheckErrors, 12, 0, 16},
};
constexpr RegisterTrait kRx3Traits[] = {{0, 0x0001},   {1, 0x4026},   {7, 0, true},  {8, 0, true}, {9, 0, true},
                                        {10, 0, true}, {11, 0, true}, {12, 0, true}, {14, 0x0044}, {17, 0x0001}};
constexpr FieldPlace kPll3[] = {{kPllEnable, 0, 0, 1}, {kPllLock, 1, 0, 1}, {kTemperature, 2, 0, 16, true}};
constexpr RegisterTrait kPll3Traits[] = {{0, 0x0001}, {1, 0, true}, {2, 0, true}, {3, 0x0019}, {7, 0x0080}};

// Type 4: 10 Gb/s ethernet.
constexpr FieldPlace kTx4[] = {
    {kTxEnable, 0, 0, 1}, {kDriveLevel, 1, 0, 4}, {kPreEmphasis, 1, 4, 4},     {kPattern, 2, 0, 2},
    {kPllLock, 3, 0, 1},  {kSending, 3, 1, 1},    {kInjectedErrors, 4, 0, 16},
};
constexpr RegisterTrait kTx4Traits[] = {{0, 0x0001}, {1, 0x0007}, {3, 0, true}, {4, 0, true}, {6, 0x0300}};
constexpr FieldPlace kRx4[] = {
    {kRxEnable, 0, 0, 1},         {kLoopback, 0, 1, 1},     {kCheckPattern, 0, 4, 2}, {kCdrMode, 1, 0, 2},
    {kEqMode, 1, 4, 3},           {kSignalDetect, 2, 0, 1}, {kLock, 2, 1, 1},         {kGainInRange, 2, 2, 1},
    {kEyeHeight, 3, 0, 16, true}, {kAp, 4, 0, 16, true},    {kAmin, 5, 0, 16, true},  {kAn, 6, 0, 16, true},
    {kCheckErrors, 7, 0, 16},
};
constexpr RegisterTrait kRx4Traits[] = {{0, 0x0001},  {1, 0x0020},  {2, 0, true}, {3, 0, true}, {4, 0, true},
                                        {5, 0, true}, {6, 0, true}, {7, 0, true}, {8, 0x0401}};
constexpr FieldPlace kPll4[] = {{kPllEnable, 0, 0, 1}, {kPllLock, 1, 0, 1}, {kTemperature, 2, 0, 16, true}};
constexpr RegisterTrait kPll4Traits[] = {{0, 0x0001}, {1, 0, true}, {2, 0, true}, {3, 0x0042}};

// Type 5: 11G of a later generation, the full 32 receive registers.
constexpr FieldPlace kTx5[] = {
    {kPllLock, 1, 0, 1},         {kSending, 1, 1, 1},  {kTxEnable, 2, 0, 1}, {kPattern, 2, 4, 2},
    {kPower, 4, 0, 8},           {kFfeMode, 4, 8, 2},  {kC0, 5, 0, 8, true}, {kC1, 5, 8, 8, true},
    {kC2, 6, 0, 8, true},        {kC3, 6, 8, 8, true}, {kSlew, 7, 0, 3},     {kSlewEnable, 7, 7, 1},
    {kInjectedErrors, 8, 0, 16},
};
constexpr RegisterTrait kTx5Traits[] = {{0, 0x5012, true}, {1, 0, true}, {2, 0x0001},  {3, 0x0032},  {4, 0x0073},
                                        {5, 0x3f00},       {7, 0x0082},  {8, 0, true}, {12, 0x0700}, {18, 0x0001}};
constexpr FieldPlace kRx5[] = {
    {kSignalDetect, 1, 0, 1}, {kLock, 1, 1, 1},          {kGainInRange, 1, 2, 1},  {kRxEnable, 2, 0, 1},
    {kLoopback, 2, 1, 1},     {kCheckPattern, 2, 4, 2},  {kDfeMode, 4, 0, 2},      {kHold, 4, 7, 1},
    {kPole, 5, 0, 3},         {kPeak, 5, 4, 3},          {kAmax, 6, 0, 7},         {kEyeHeight, 7, 0, 16, true},
    {tap(0), 8, 0, 8, true},  {tap(1), 9, 0, 8, true},   {tap(2), 10, 0, 8, true}, {tap(3), 11, 0, 8, true},
    {tap(4), 12, 0, 8, true}, {tap(5), 13, 0, 8, true},  {tap(6), 14, 0, 8, true}, {tap(7), 15, 0, 8, true},
    {tap(8), 16, 0, 8, true}, {tap(9), 17, 0, 8, true},  {kAp, 18, 0, 16, true},   {kAmin, 19, 0, 16, true},
    {kAn, 20, 0, 16, true},   {kCheckErrors, 21, 0, 16},
};
constexpr RegisterTrait kRx5Traits[] = {{0, 0x5112, true}, {1, 0, true}, {2, 0x0001},   {3, 0x0032},   {5, 0x0046},
                                        {6, 0x004e},       {7, 0, true}, {18, 0, true}, {19, 0, true}, {20, 0, true},
                                        {21, 0, true},     {24, 0x0112}, {25, 0x00c0},  {30, 0x0a5a},  {31, 0x0001}};
constexpr FieldPlace kPll5[] = {{kPllLock, 1, 0, 1}, {kTemperature, 2, 0, 16, true}, {kPllEnable, 3, 0, 1}};
constexpr RegisterTrait kPll5Traits[] = {{0, 0x5212, true}, {1, 0, true}, {2, 0, true}, {3, 0x0001},
                                         {5, 0x0041},       {8, 0x0100},  {13, 0x0007}};

// Type 6: 1 Gb/s ethernet.
constexpr FieldPlace kTx6[] = {
    {kTxEnable, 0, 0, 1}, {kDriveLevel, 1, 0, 4},      {kPreEmphasis, 1, 4, 4}, {kPllLock, 2, 0, 1},
    {kSending, 2, 1, 1},  {kInjectedErrors, 3, 0, 16}, {kPattern, 4, 0, 2},
};
constexpr RegisterTrait kTx6Traits[] = {{0, 0x0001}, {1, 0x0007}, {2, 0, true}, {3, 0, true}};
constexpr FieldPlace kRx6[] = {
    {kRxEnable, 0, 0, 1},  {kLoopback, 0, 1, 1},         {kCheckPattern, 0, 4, 2}, {kCdrMode, 1, 0, 2},
    {kEqMode, 1, 4, 3},    {kSignalDetect, 2, 0, 1},     {kLock, 2, 1, 1},         {kGainInRange, 2, 2, 1},
    {kAp, 3, 0, 16, true}, {kEyeHeight, 4, 0, 16, true}, {kCheckErrors, 5, 0, 16},
};
constexpr RegisterTrait kRx6Traits[] = {{0, 0x0001},  {1, 0x0020},  {2, 0, true}, {3, 0, true},
                                        {4, 0, true}, {5, 0, true}, {6, 0x0009}};
constexpr FieldPlace kPll6[] = {{kPllEnable, 0, 0, 1}, {kPllLock, 1, 0, 1}, {kTemperature, 2, 0, 16, true}};
constexpr RegisterTrait kPll6Traits[] = {{0, 0x0001}, {1, 0, true}, {2, 0, true}, {3, 0x0005}};

// Modes as masks: FFE none, 2, 3, 4 are bits 0 to 3; DFE3, DFE5, none, DFE1 are bits 0 to 3.
constexpr std::uint8_t kFfeTo2 = 0b0011, kFfeTo3 = 0b0111, kFfeTo4 = 0b1111;
constexpr std::uint8_t kDfeNone = 0b0100, kDfeTo3 = 0b1101, kDfeTo5 = 0b1111;

constexpr SerDesTraits kTraits[kSerDesTypes] = {
    {"SERDES_3G",
     false,
     false,
     kFfeTo2,
     kDfeNone,
     63,
     100,
     7,
     5,
     {6, kTx0, kTx0Traits},
     {8, kRx0, kRx0Traits},
     {5, kPll0, kPll0Traits}},
    {"SERDES_6G",
     false,
     true,
     kFfeTo3,
     kDfeTo3,
     63,
     100,
     7,
     5,
     {10, kTx1, kTx1Traits},
     {15, kRx1, kRx1Traits},
     {8, kPll1, kPll1Traits}},
    {"SERDES_11G",
     false,
     true,
     kFfeTo4,
     kDfeTo5,
     63,
     100,
     7,
     5,
     {16, kTx2, kTx2Traits},
     {24, kRx2, kRx2Traits},
     {12, kPll2, kPll2Traits}},
    {"SERDES_6G_QUAD",
     false,
     false,
     kFfeTo3,
     kDfeTo5,
     63,
     100,
     7,
     5,
     {12, kTx3, kTx3Traits},
     {18, kRx3, kRx3Traits},
     {10, kPll3, kPll3Traits}},
    {"SERDES_10GE",
     true,
     false,
     kFfeTo2,
     kDfeNone,
     0,
     0,
     2,
     2,
     {8, kTx4, kTx4Traits},
     {10, kRx4, kRx4Traits},
     {6, kPll4, kPll4Traits}},
    {"SERDES_11G_B",
     false,
     true,
     kFfeTo4,
     kDfeTo5,
     63,
     100,
     7,
     5,
     {20, kTx5, kTx5Traits},
     {32, kRx5, kRx5Traits},
     {14, kPll5, kPll5Traits}},
    {"SERDES_1GE",
     true,
     false,
     kFfeTo2,
     kDfeNone,
     0,
     0,
     2,
     2,
     {5, kTx6, kTx6Traits},
     {7, kRx6, kRx6Traits},
     {4, kPll6, kPll6Traits}},
};

}  // namespace

const SerDesTraits& serDesTraits(unsigned type) {
  return kTraits[type];
}

}  // namespace simulator
