// Link register commands. What a register means is the platform's business: addresses and values go through as typed.
#include "commands/registers.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "arguments/word_reader.h"
#include "commands/platform_walk.h"
#include "display/row.h"
#include "display/table_header.h"
#include "topology/serdes_topology.h"

namespace {

using RegisterRow = std::array<unsigned short, kMaxRegisters>;

const char* sideName(SerDesLinkType side) {
  return side == SERDES_LINK_RX ? "Rx" : "Tx";
}

std::uint32_t registerCount(const CoreConfig& core, SerDesLinkType side) {
  return side == SERDES_LINK_RX ? core.rxRegisterCount : core.txRegisterCount;
}

CmdStatus readRegister(SerDesLinkType side, int wordCount, char* words[], const char* handler) {
  WordReader in(wordCount, words);
  const std::uint32_t port = in.number();
  const int link = in.number<int>();
  const std::uint32_t address = in.number();
  if (in.failed()) return in.status();

  unsigned short value = 0;
  const int result = AsicControl::ReadSerDesLinkRegister(serdesTopology.asicNum, port, link, side,
                                                         static_cast<unsigned char>(address), &value, 1);
  if (result < 0) return platformFailure(result, handler);
  std::printf("Port %d ", static_cast<int>(port));
  std::printf("(user port %d), ", userPort(port));
  std::printf("link %d ", link);
  std::printf("at %s address 0x%02x", sideName(side), address);
  std::printf("= 0x%04x ", value);
  std::printf("\n");
  return CMD_OK;
}

CmdStatus writeRegister(SerDesLinkType side, int wordCount, char* words[], const char* handler) {
  WordReader in(wordCount, words);
  const std::uint32_t port = in.number();
  const int link = in.number<int>();
  const auto address = in.number<unsigned char>();
  const auto value = in.number<unsigned short>();
  if (in.failed()) return in.status();

  const int result = AsicControl::WriteSerDesLinkRegister(serdesTopology.asicNum, port, link, side, address, value);
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

void printRegisterRow(SerDesLinkType side, std::uint32_t ports, const PerLink<RegisterRow>& image,
                      std::uint32_t address) {
  Row row;
  row.text(sideName(side));
  row.text(" Register 0x");
  row.hexByte(static_cast<std::uint8_t>(address));
  row.text("    ");
  forEachLink(ports, side, [&](std::uint32_t port, std::uint32_t link) { row.hexWord(image[port][link][address]); });
  row.write();
}

void printTable(SerDesType type, SerDesLinkType side, std::uint32_t portMask, const PerLink<RegisterRow>& image) {
  const std::uint32_t ports = portsOfType(type, side, portMask);
  const std::uint32_t rowCount = tableRowCount(type, side);
  printLinkTableHeader(type, side, portMask);
  for (std::uint32_t address = 0; address < rowCount; ++address) {
    if (address != 0 && address % 4 == 0) printLinkSeparatorRow(type, side, portMask);
    printRegisterRow(side, ports, image, address);
  }
  std::printf("\n");
}

CmdStatus showRegisters(SerDesLinkType side, int wordCount, char* words[], const char* handler) {
  WordReader in(wordCount, words);
  const std::uint32_t ports = in.ports();
  if (in.failed()) return in.status();

  PerLink<RegisterRow> image{};
  if (const CmdStatus status = readImage(side, ports, image, handler); status != CMD_OK) return status;

  for (std::uint32_t type = 0; type < kSerDesTypeCount; ++type) {
    const auto serDesType = static_cast<SerDesType>(type);
    if (portsOfType(serDesType, side, ports) != 0) printTable(serDesType, side, ports, image);
  }
  return CMD_OK;
}

}  // namespace

CmdStatus readRxRegisterCmdHandler(int wordCount, char* words[]) {
  return readRegister(SERDES_LINK_RX, wordCount, words, __func__);
}

CmdStatus readTxRegisterCmdHandler(int wordCount, char* words[]) {
  return readRegister(SERDES_LINK_TX, wordCount, words, __func__);
}

CmdStatus writeRxRegisterCmdHandler(int wordCount, char* words[]) {
  return writeRegister(SERDES_LINK_RX, wordCount, words, __func__);
}

CmdStatus writeTxRegisterCmdHandler(int wordCount, char* words[]) {
  return writeRegister(SERDES_LINK_TX, wordCount, words, __func__);
}

CmdStatus showRxRegistersCmdHandler(int wordCount, char* words[]) {
  return showRegisters(SERDES_LINK_RX, wordCount, words, __func__);
}

CmdStatus showTxRegistersCmdHandler(int wordCount, char* words[]) {
  return showRegisters(SERDES_LINK_TX, wordCount, words, __func__);
}
