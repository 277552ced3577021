// The parsers of keywords.
#include "arguments/keywords.h"

namespace {

bool isNamed(const ValueName& value, const char* word) {
  return sameWord(word, value.name) || (value.shortName != nullptr && sameWord(word, value.shortName));
}

template <typename Value>
CmdStatus parseKeyword(const char* word, const KeywordSet& keywords, Value& value) {
  std::uint32_t number = keywords.firstValue;
  for (const ValueName& name : keywords.names) {
    if (isNamed(name, word)) {
      value = static_cast<Value>(number);
      return CMD_OK;
    }
    ++number;
  }
  return CMD_BAD_PARAM;
}

}  // namespace

CmdStatus parseRate(const char* word, port_speed_type& rate) {
  return parseKeyword(word, rateKeywords, rate);
}

CmdStatus parseFFEMode(const char* word, SerDesTxFFEMode& mode) {
  return parseKeyword(word, ffeModeKeywords, mode);
}

CmdStatus parseSlewRate(const char* word, SerDesTxSlewRate& slew) {
  return parseKeyword(word, slewRateKeywords, slew);
}

CmdStatus parseDfeMode(const char* word, SerDesRxDFEMode& mode) {
  return parseKeyword(word, dfeModeKeywords, mode);
}

CmdStatus parseInterface(const char* word, CacheInterface& interface) {
  return parseKeyword(word, interfaceKeywords, interface);
}

CmdStatus parsePortKeyword(const char* word, PortKeyword& ports) {
  return parseKeyword(word, portKeywords, ports);
}

CmdStatus parseEnable(const char* word, std::uint8_t& enable) {
  return parseKeyword(word, enableKeywords, enable);
}

CmdStatus parseFwHw(const char* word, std::uint8_t& firmware) {
  return parseKeyword(word, fwHwKeywords, firmware);
}
