// The register tables of docs/simulated-switch.md are those of the code: every field, its address and bits, every
// reset value, and what cannot be written.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>

#include "simulator/serdes/register_map.h"

namespace simulator {
namespace {

using enum Field;

const std::map<Field, std::string> kNames = {
    {kTxEnable, "transmit enable"},
    {kFfeMode, "FFE mode"},
    {kPower, "k"},
    {kC0, "c0"},
    {kC1, "c1"},
    {kC2, "c2"},
    {kC3, "c3"},
    {kSlewEnable, "slew enable"},
    {kSlew, "slew"},
    {kDriveLevel, "power"},
    {kPreEmphasis, "pre-emphasis"},
    {kPattern, "pattern sent"},
    {kRxEnable, "receive enable"},
    {kLoopback, "loopback"},
    {kCheckPattern, "pattern checked"},
    {kDfeMode, "DFE mode"},
    {kHold, "DFE hold"},
    {kPole, "pole"},
    {kPeak, "peak"},
    {kAmax, "amax"},
    {kCdrMode, "CDR mode"},
    {kEqMode, "EQ mode"},
    {kPllEnable, "PLL enable"},
    {kPllLock, "PLL lock"},
    {kSending, "sending"},
    {kSignalDetect, "signal detect"},
    {kLock, "lock"},
    {kGainInRange, "gain in range"},
    {kEyeHeight, "eye height"},
    {kAp, "Ap"},
    {kAmin, "Amin"},
    {kAn, "An"},
    {kCheckErrors, "check errors"},
    {kInjectedErrors, "injected errors"},
    {kTemperature, "temperature"},
};

std::string nameOf(Field field, bool hasEvenAndOddTaps) {
  if (!isTap(field)) return kNames.at(field);
  const unsigned tap = static_cast<unsigned>(field) - static_cast<unsigned>(kTap0);
  const std::string name = "H" + std::to_string(tap / 2 + 1);
  return hasEvenAndOddTaps ? name + (tap % 2 == 0 ? " even" : " odd") : name;
}

std::string hex(unsigned value, int digits) {
  char text[8];
  (void)std::snprintf(text, sizeof text, "0x%0*x", digits, value);
  return text;
}

// A register's bits, meaning and reset value as the page has them.
std::string rowOf(const RegisterMap& map, unsigned address, bool hasEvenAndOddTaps) {
  std::vector<FieldPlace> places;
  for (const FieldPlace& place : map.fields) {
    if (place.address == address) places.push_back(place);
  }
  std::sort(places.begin(), places.end(), [](const FieldPlace& a, const FieldPlace& b) { return a.shift < b.shift; });
  std::string bits, meaning;
  bool isShown = false;
  for (const FieldPlace& place : places) {
    const std::string separator = bits.empty() ? "" : ", ";
    const unsigned last = place.shift + place.width - 1U;
    bits += separator + (last > place.shift ? std::to_string(last) + ':' : "") + std::to_string(place.shift);
    meaning += separator + nameOf(place.field, hasEvenAndOddTaps);
    isShown = isShown || isComputed(place.field);
  }
  if (places.empty()) meaning = map.isReadOnly(address) ? "identification, read-only" : "storage";
  if (!places.empty() && map.isReadOnly(address)) meaning += "; read-only";
  const unsigned reset = map.resetValues()[address];
  const std::string shownReset = isShown ? "" : reset == 0 ? "0" : hex(reset, 4);
  return (bits.empty() ? " | " : ' ' + bits + " | ") + meaning + " | " + shownReset + " |";
}

// Rows of the page from a heading up to the next blank line, after the two of the table's head. Runs of registers that
// are alike share a row there, and are spread out here.
std::vector<std::string> pageTable(const std::string& heading, const std::string& side) {
  std::ifstream page(SERDES_SOURCE_FOLDER "/docs/simulated-switch.md");
  std::vector<std::string> rows;
  std::string line;
  const auto skipTo = [&](const std::string& wanted) {
    while (std::getline(page, line) && line != wanted) {
    }
  };
  skipTo(heading);
  skipTo("| " + side + " | bits | meaning | reset |");
  std::getline(page, line);
  while (std::getline(page, line) && !line.empty()) {
    unsigned first = 0, last = 0;
    const int count = std::sscanf(line.c_str(), "| 0x%x-0x%x |", &first, &last);
    const std::string rest = line.substr(line.find('|', 1) + 1);
    for (unsigned address = first; address <= (count == 2 ? last : first); ++address)
      rows.push_back("| " + hex(address, 2) + " |" + rest);
  }
  return rows;
}

TEST(RegisterPage, ShowsEveryRegisterOfEveryTypeAsItIs) {
  for (unsigned type = 0; type < kSerDesTypes; ++type) {
    const SerDesTraits& traits = serDesTraits(type);
    const std::string heading = "### Type " + std::to_string(type) + ": " + traits.name;
    const std::pair<const char*, const RegisterMap*> sides[] = {
        {"Tx", &traits.tx}, {"Rx", &traits.rx}, {"PLL", &traits.pll}};
    for (const auto& [side, map] : sides) {
      SCOPED_TRACE(heading + ' ' + side);
      std::vector<std::string> rows;
      for (unsigned address = 0; address < map->count; ++address)
        rows.push_back("| " + hex(address, 2) + " |" + rowOf(*map, address, traits.hasEvenAndOddTaps));
      EXPECT_EQ(pageTable(heading, side), rows);
    }
  }
}

}  // namespace
}  // namespace simulator
