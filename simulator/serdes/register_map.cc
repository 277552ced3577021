// Access to fields by their place in the register file.
#include "simulator/serdes/register_map.h"

#include <algorithm>

namespace simulator {

const FieldPlace* RegisterMap::find(Field field) const {
  const auto place = std::find_if(fields.begin(), fields.end(), [&](const FieldPlace& p) { return p.field == field; });
  return place == fields.end() ? nullptr : &*place;
}

bool RegisterMap::isReadOnly(unsigned address) const {
  return std::any_of(traits.begin(), traits.end(),
                     [&](const RegisterTrait& trait) { return trait.readOnly && trait.address == address; }) ||
         std::any_of(fields.begin(), fields.end(),
                     [&](const FieldPlace& place) { return isComputed(place.field) && place.address == address; });
}

RegisterFile RegisterMap::resetValues() const {
  RegisterFile registers{};
  for (const RegisterTrait& trait : traits)
    registers[trait.address] = trait.reset;
  return registers;
}

int RegisterMap::read(const RegisterFile& registers, Field field) const {
  const FieldPlace* place = find(field);
  if (place == nullptr) return 0;
  const int value = static_cast<int>((registers[place->address] & placeMask(*place)) >> place->shift);
  return isSigned(place->field) && value > greatestValue(*place) ? value - (1 << place->width) : value;
}

void RegisterMap::write(RegisterFile& registers, Field field, int value) const {
  const FieldPlace* place = find(field);
  if (place == nullptr) return;
  const int limited = std::clamp(value, leastValue(*place), greatestValue(*place));
  const unsigned mask = placeMask(*place);
  const unsigned bits = (static_cast<unsigned>(limited) << place->shift) & mask;
  registers[place->address] = static_cast<std::uint16_t>((registers[place->address] & ~mask) | bits);
}

int leastValue(const FieldPlace& place) {
  return isSigned(place.field) ? -(1 << (place.width - 1)) : 0;
}

int greatestValue(const FieldPlace& place) {
  return (1 << (isSigned(place.field) ? place.width - 1 : place.width)) - 1;
}

}  // namespace simulator
