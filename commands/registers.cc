// Link register commands. What a register means is the platform's business: addresses and values go through as typed.
#include "commands/registers.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

#include "arguments/argument_parsers.h"
#include "arguments/port_lists.h"
#include "commands/platform_walk.h"
#include "display/table_header.h"
#include "topology/serdes_topology.h"

namespace {

using RegisterRow = std::array<unsigned short, kMaxRegisters>;

// The two hexadecimal digits of every byte.
constexpr auto kHexBytes = [] {
  constexpr char kDigits[] = "0123456789abcdef";
  std::array<std::array<char, 2>, 256> bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = {kDigits[i / 16], kDigits[i % 16]};
  return bytes;
}();

const char* sideName(SerDesLinkType side) {
  return side == SERDES_LINK_RX ? "Rx" : "Tx";
}

std::uint32_t registerCount(const CoreConfig& core, SerDesLinkType side) {
  return side == SERDES_LINK_RX ? core.rxRegisterCount : core.txRegisterCount;
}

CmdStatus readRegister(SerDesLinkType side, char* words[], const char* handler) {
  std::array<std::uint32_t, 3> numbers;
  if (const CmdStatus status = parseNumbers(words + 1, numbers); status != CMD_OK) return status;
  const auto [port, link, address] = numbers;
  unsigned short value = 0;
  const int result = AsicControl::ReadSerDesLinkRegister(serdesTopology.asicNum, port, static_cast<int>(link), side,
                                                         static_cast<unsigned char>(address & 0xFFu), &value, 1);
  if (result < 0) return platformFailure(result, handler);
  std::printf("Port %d ", static_cast<int>(port));
  std::printf("(user port %d), ", userPort(port));
  std::printf("link %d ", static_cast<int>(link));
  std::printf("at %s address 0x%02x", sideName(side), address);
  std::printf("= 0x%04x ", value);
  std::printf("\n");
  return CMD_OK;
}

CmdStatus writeRegister(SerDesLinkType side, char* words[], const char* handler) {
  std::array<std::uint32_t, 4> numbers;
  if (const CmdStatus status = parseNumbers(words + 1, numbers); status != CMD_OK) return status;
  const auto [port, link, address, value] = numbers;
  const int result = AsicControl::WriteSerDesLinkRegister(serdesTopology.asicNum, port, static_cast<int>(link), side,
                                                          static_cast<unsigned char>(address & 0xFFu),
                                                          static_cast<unsigned short>(value & 0xFFFFu));
  return result < 0 ? platformFailure(result, handler) : CMD_OK;
}

// Reads all registers of every selected link; what a core does not have stays 0.
CmdStatus readImage(SerDesLinkType side, std::uint32_t portMask, PerLink<RegisterRow>& image, const char* handler) {
  return onEachLink(portMask, side, handler, [&](std::uint32_t port, std::uint32_t link) {
    const CoreConfig& core = serdesTopology.coreConfig[portSide(port, side).coreId];
    const std::uint32_t count = std::min(registerCount(core, side) & 0xFFu, kMaxRegisters);
    return AsicControl::ReadSerDesLinkRegister(serdesTopology.asicNum, port, static_cast<int>(link), side, 0,
                                               image[port][link].data(), static_cast<unsigned char>(count));
  });
}

// The rows of a type's table: the register count of its first core that has any.
std::uint32_t tableRowCount(SerDesType type, SerDesLinkType side) {
  for (std::uint32_t core = 0; core < walkedCoreCount(); ++core) {
    const CoreConfig& config = serdesTopology.coreConfig[core];
    if (config.serDesType == type && registerCount(config, side) != 0) {
      return std::min(registerCount(config, side), kMaxRegisters);
    }
  }
  return 0;
}

// "%04x " for every link's register, put together by hand: a dump has thousands of these cells.
void printRegisterCells(SerDesLinkType side, std::uint32_t ports, const PerLink<RegisterRow>& image,
                        std::uint32_t address) {
  std::array<char, kMaxPorts * kMaxLinks * 5> cells;
  char* cell = cells.data();
  forEachLink(ports, side, [&](std::uint32_t port, std::uint32_t link) {
    const unsigned value = image[port][link][address];
    std::memcpy(cell, kHexBytes[value >> 8].data(), 2);
    std::memcpy(cell + 2, kHexBytes[value & 0xFF].data(), 2);
    cell[4] = ' ';
    cell += 5;
  });
  (void)std::fwrite(cells.data(), 1, static_cast<std::size_t>(cell - cells.data()), stdout);
}

void printTable(SerDesType type, SerDesLinkType side, std::uint32_t portMask, const PerLink<RegisterRow>& image) {
  const std::uint32_t columnPorts = portsOfType(type, side, portMask);
  const std::uint32_t rowCount = tableRowCount(type, side);
  printLinkTableHeader(type, side, portMask);
  for (std::uint32_t address = 0; address < rowCount; ++address) {
    if (address != 0 && address % 4 == 0) printLinkSeparatorRow(type, side, portMask);
    std::printf("%s Register 0x%02x    ", sideName(side), address);
    printRegisterCells(side, columnPorts, image, address);
    std::printf("\n");
  }
  std::printf("\n");
}

CmdStatus showRegisters(SerDesLinkType side, int wordCount, char* words[], const char* handler) {
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parsePorts(wordCount, words, 1, portMask); status != CMD_OK) return status;

  PerLink<RegisterRow> image{};
  if (const CmdStatus status = readImage(side, portMask, image, handler); status != CMD_OK) return status;

  for (std::uint32_t type = 0; type < kSerDesTypeCount; ++type) {
    const auto serDesType = static_cast<SerDesType>(type);
    if (portsOfType(serDesType, side, portMask) != 0) printTable(serDesType, side, portMask, image);
  }
  return CMD_OK;
}

}  // namespace

CmdStatus readRxRegisterCmdHandler(int, char* words[]) {
  return readRegister(SERDES_LINK_RX, words, __func__);
}

CmdStatus readTxRegisterCmdHandler(int, char* words[]) {
  return readRegister(SERDES_LINK_TX, words, __func__);
}

CmdStatus writeRxRegisterCmdHandler(int, char* words[]) {
  return writeRegister(SERDES_LINK_RX, words, __func__);
}

CmdStatus writeTxRegisterCmdHandler(int, char* words[]) {
  return writeRegister(SERDES_LINK_TX, words, __func__);
}

CmdStatus showRxRegistersCmdHandler(int wordCount, char* words[]) {
  return showRegisters(SERDES_LINK_RX, wordCount, words, __func__);
}

CmdStatus showTxRegistersCmdHandler(int wordCount, char* words[]) {
  return showRegisters(SERDES_LINK_TX, wordCount, words, __func__);
}
