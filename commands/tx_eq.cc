// Commands that set and show the live FFE and slew of the transmit links.
#include "commands/tx_eq.h"

#include <optional>
#include <span>

#include "arguments/argument_parsers.h"
#include "arguments/port_lists.h"
#include "commands/platform_walk.h"
#include "display/table_header.h"

namespace {

// One link's settings as the platform holds them.
struct TxFFELinkValues {
  SerDesTxFFEMode mode;
  std::uint8_t k;
  signed char c0;
  signed char c1;
  signed char c2;
  signed char c3;
  bool slewEnable;  // written by the platform, never read
  SerDesTxSlewRate slew;
};

SerDesTxRateParams tableColumn(const TxFFELinkValues& values) {
  return {.power = values.k,
          .slew = static_cast<std::int32_t>(values.slew),
          .mode = static_cast<std::int32_t>(values.mode),
          .p0 = values.c0,
          .p1 = values.c1,
          .p2 = values.c2,
          .p3 = values.c3};
}

// Only the low 8 bits of each number reach the platform, which judges them.
int setFFE(std::uint32_t port, const FFEArguments& ffe) {
  const auto [k, c0, c1, c2, c3] = ffe.numbers;
  return AsicControl::SetSerDesTxFFE(serdesTopology.asicNum, port, kAllLinks, ffe.mode, static_cast<unsigned char>(k),
                                     static_cast<signed char>(c0), static_cast<signed char>(c1),
                                     static_cast<signed char>(c2), static_cast<signed char>(c3));
}

int setSlew(std::uint32_t port, SerDesTxSlewRate slew) {
  return AsicControl::SetSerDesTxSlew(serdesTopology.asicNum, port, kAllLinks, true, slew);
}

int getFFE(std::uint32_t port, std::uint32_t link, TxFFELinkValues& values) {
  return AsicControl::GetSerDesTxFFE(serdesTopology.asicNum, port, static_cast<int>(link), &values.mode, &values.k,
                                     &values.c0, &values.c1, &values.c2, &values.c3);
}

int getSlew(std::uint32_t port, std::uint32_t link, TxFFELinkValues& values) {
  return AsicControl::GetSerDesTxSlew(serdesTopology.asicNum, port, static_cast<int>(link), &values.slewEnable,
                                      &values.slew);
}

}  // namespace

CmdStatus parseFFEMode(const char* word, SerDesTxFFEMode& mode) {
  const int index = findKeyword(word, std::span(ffeModeNames).subspan(1));
  if (index < 0) return CMD_BAD_PARAM;
  mode = static_cast<SerDesTxFFEMode>(index + 1);
  return CMD_OK;
}

CmdStatus parseSlewRate(const char* word, SerDesTxSlewRate& slew) {
  return parseKeyword(word, std::span(slewRateNames).first(SLEW_UNKNOWN),
                      std::span(slewRateShortNames).first(SLEW_UNKNOWN), slew);
}

CmdStatus parseFFEArguments(char* const* words, FFEArguments& arguments) {
  if (const CmdStatus status = parseFFEMode(words[0], arguments.mode); status != CMD_OK) return status;
  return parseNumbers(words + 1, arguments.numbers);
}

CmdStatus showFFECmdHandler(int wordCount, char* words[]) {
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parsePorts(wordCount, words, 1, portMask); status != CMD_OK) return status;

  PerLink<TxFFELinkValues> values{};
  const CmdStatus read = onEachLink(portMask, SERDES_LINK_TX, __func__, [&](std::uint32_t port, std::uint32_t link) {
    return getFFE(port, link, values[port][link]);
  });
  if (read != CMD_OK) return read;

  printPortTableHeader("show FFE", portMask);
  printFFERows(portMask,
               [&](std::uint32_t port, std::uint32_t link) { return std::optional(tableColumn(values[port][link])); });
  std::printf("\n");
  return CMD_OK;
}

CmdStatus setFFECmdHandler(int wordCount, char* words[]) {
  FFEArguments ffe{};
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseFFEArguments(words + 1, ffe); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 7, portMask); status != CMD_OK) return status;

  return onEachPort(portMask, __func__, [&](std::uint32_t port) { return setFFE(port, ffe); });
}

CmdStatus showSlewCmdHandler(int wordCount, char* words[]) {
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parsePorts(wordCount, words, 1, portMask); status != CMD_OK) return status;

  PerLink<TxFFELinkValues> values{};
  const CmdStatus read = onEachLink(portMask, SERDES_LINK_TX, __func__, [&](std::uint32_t port, std::uint32_t link) {
    return getSlew(port, link, values[port][link]);
  });
  if (read != CMD_OK) return read;

  // The row's own newline leaves a line empty under the header, unlike in the FFE table.
  printPortTableHeader("show slew", portMask);
  printSlewRow(portMask,
               [&](std::uint32_t port, std::uint32_t link) { return std::optional(tableColumn(values[port][link])); });
  std::printf("\n");
  return CMD_OK;
}

CmdStatus setSlewCmdHandler(int wordCount, char* words[]) {
  // The command table admits the command word alone.
  if (wordCount < 2) return CMD_TOO_FEW_ARGS;
  SerDesTxSlewRate slew{};
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseSlewRate(words[1], slew); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 2, portMask); status != CMD_OK) return status;

  return onEachPort(portMask, __func__, [&](std::uint32_t port) { return setSlew(port, slew); });
}

CmdStatus showTxParamsCmdHandler(int wordCount, char* words[]) {
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parsePorts(wordCount, words, 1, portMask); status != CMD_OK) return status;

  PerLink<TxFFELinkValues> values{};
  const CmdStatus read = onEachLink(portMask, SERDES_LINK_TX, __func__, [&](std::uint32_t port, std::uint32_t link) {
    const int result = getFFE(port, link, values[port][link]);
    return result < 0 ? result : getSlew(port, link, values[port][link]);
  });
  if (read != CMD_OK) return read;

  printPortTableHeader("show tx params", portMask);
  // The columns of ports that do not run stay blank.
  const auto valuesOf = [&](std::uint32_t port, std::uint32_t link) -> std::optional<SerDesTxRateParams> {
    if (portRunning[port] == 0) return std::nullopt;
    return tableColumn(values[port][link]);
  };
  printFFERows(portMask, valuesOf);
  printSlewRow(portMask, valuesOf);
  std::printf("\n");
  return CMD_OK;
}

CmdStatus setTxParamsCmdHandler(int wordCount, char* words[]) {
  FFEArguments ffe{};
  SerDesTxSlewRate slew{};
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseFFEArguments(words + 1, ffe); status != CMD_OK) return status;
  if (const CmdStatus status = parseSlewRate(words[7], slew); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 8, portMask); status != CMD_OK) return status;

  return onEachPort(portMask, __func__, [&](std::uint32_t port) {
    const int result = setFFE(port, ffe);
    return result < 0 ? result : setSlew(port, slew);
  });
}
