// Registers and settings are one state seen twice: a register file holds the bits, and this map says for each SerDes
// type which bits are which setting. Bits that no field names are plain storage.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace simulator {

inline constexpr unsigned kMaxRegisters = 32;
inline constexpr unsigned kSerDesTypes = 7;
inline constexpr unsigned kTaps = 10;

using RegisterFile = std::array<std::uint16_t, kMaxRegisters>;

// What a run of bits means. From kPllLock on the value is not stored but worked out when it is read.
enum class Field : std::uint8_t {
  // Transmit side.
  kTxEnable,
  kFfeMode,
  kPower,
  kC0,
  kC1,
  kC2,
  kC3,
  kSlewEnable,
  kSlew,
  kDriveLevel,   // ethernet: transmit power, 0 to 15
  kPreEmphasis,  // ethernet: 0 to 15
  kPattern,      // 0 frames, 1 to 3 a test pattern
  // Receive side.
  kRxEnable,
  kLoopback,
  kCheckPattern,
  kDfeMode,
  kHold,  // the DFE stands at the tap registers
  kPole,
  kPeak,
  kAmax,
  kCdrMode,
  kEqMode,
  kTap0,  // H1 even, H1 odd, ... H5 odd; the ten follow one another
  kTap9 = kTap0 + kTaps - 1,
  // Common PLL.
  kPllEnable,
  // Computed.
  kPllLock,
  kSending,
  kSignalDetect,
  kLock,
  kGainInRange,
  kEyeHeight,
  kAp,
  kAmin,
  kAn,
  kCheckErrors,
  kInjectedErrors,
  kTemperature,
};

constexpr bool isComputed(Field field) {
  return field >= Field::kPllLock;
}
constexpr bool isTap(Field field) {
  return field >= Field::kTap0 && field <= Field::kTap9;
}
// Two's complement; the others are whole numbers from 0 on.
constexpr bool isSigned(Field field) {
  using enum Field;
  return isTap(field) || (field >= kC0 && field <= kC3) || (field >= kEyeHeight && field <= kAn) ||
         field == kTemperature;
}
// The field of tap `index`, 0 to 9.
constexpr Field tapField(unsigned index) {
  return static_cast<Field>(static_cast<unsigned>(Field::kTap0) + index);
}

struct FieldPlace {
  Field field;
  std::uint8_t address;
  std::uint8_t shift;
  std::uint8_t width;
};

// A register that does not start at 0, or that tells what it belongs to and cannot be written.
struct RegisterTrait {
  std::uint8_t address;
  std::uint16_t reset;
  bool readOnly = false;
};

// The registers of one side of a SerDes, or of its PLL.
struct RegisterMap {
  std::uint8_t count;  // how many registers there are unless the switch description says otherwise
  std::span<const FieldPlace> fields;
  std::span<const RegisterTrait> traits;

  // The place of a field; null when this SerDes does not have it.
  [[nodiscard]] const FieldPlace* find(Field field) const;
  [[nodiscard]] bool has(Field field) const {
    return find(field) != nullptr;
  }
  [[nodiscard]] bool isReadOnly(unsigned address) const;
  [[nodiscard]] RegisterFile resetValues() const;

  // A field's value; 0 when this SerDes does not have it.
  [[nodiscard]] int read(const RegisterFile& registers, Field field) const;
  // Writes a field as far as its bits reach; without effect when this SerDes does not have it.
  void write(RegisterFile& registers, Field field, int value) const;
};

// The least and the greatest value that a place can hold.
int leastValue(const FieldPlace& place);
int greatestValue(const FieldPlace& place);
// The bits of a register at which the place lies.
constexpr unsigned placeMask(const FieldPlace& place) {
  return ((1U << place.width) - 1U) << place.shift;
}

// What a SerDes of one type can do.
struct SerDesTraits {
  const char* name;         // unless the description gives another
  bool isEthernet = false;  // power and pre-emphasis in place of FFE taps, equaliser mode in place of DFE and VGA
  bool hasEvenAndOddTaps = false;  // statistics show ten H values, and the DFE state can be loaded; otherwise five
  std::uint8_t ffeModes;           // bit n: SerDesTxFFEMode n
  std::uint8_t dfeModes;           // bit n: SerDesRxDFEMode n
  int maxTap = 63;                 // greatest |c|; not of ethernet
  int maxTapSum = 100;             // peak power: greatest sum |c|; not of ethernet
  std::uint8_t txParamCount = 7;
  std::uint8_t rxParamCount = 5;
  RegisterMap tx;
  RegisterMap rx;
  RegisterMap pll;
};

// `type` below kSerDesTypes.
const SerDesTraits& serDesTraits(unsigned type);

}  // namespace simulator
