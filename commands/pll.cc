// PLL register commands. They address cores, not ports: a core list has the syntax of a port list.
#include "commands/pll.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "arguments/word_reader.h"
#include "topology/serdes_topology.h"

namespace {

using PllImage = std::array<std::array<unsigned short, kMaxRegisters>, kMaxCores>;

CmdStatus readImage(std::uint32_t coreMask, PllImage& image, const char* handler) {
  for (std::uint32_t core = 0; core < walkedCoreCount(); ++core) {
    if ((coreMask >> core & 1) == 0) continue;
    const std::uint32_t count = std::min(serdesTopology.coreConfig[core].pllRegisterCount & 0xFFu, kMaxRegisters);
    const int result = AsicControl::ReadSerDesPLLRegister(serdesTopology.asicNum, core, 0, image[core].data(),
                                                          static_cast<unsigned char>(count));
    if (result < 0) return platformFailure(result, handler);
  }
  return CMD_OK;
}

void printCoreHeader(SerDesType type, std::uint32_t cores) {
  std::printf("%-19s ", "");
  forEachBit(cores, kMaxCores, [](std::uint32_t) { std::printf("core "); });
  std::printf("\n%-19s ", serDesTypeName(type));
  forEachBit(cores, kMaxCores, [](std::uint32_t core) { std::printf("%-4d ", static_cast<int>(core)); });
  std::printf("\n%-19s ", "===================");
  forEachBit(cores, kMaxCores, [](std::uint32_t) { std::printf("%-4s ", "===="); });
  std::printf("\n");
}

// The first core of the type gives the number of rows, whether it is selected or not.
void printTable(SerDesType type, std::uint32_t cores, const PllImage& image) {
  const auto firstCore = static_cast<std::uint32_t>(std::countr_zero(coresOfType(type, ~std::uint32_t{0})));
  const std::uint32_t rowCount = std::min(serdesTopology.coreConfig[firstCore].pllRegisterCount, kMaxRegisters);
  printCoreHeader(type, cores);
  for (std::uint32_t address = 0; address < rowCount; ++address) {
    std::printf("PLL register 0x%02x   ", address);
    forEachBit(cores, kMaxCores, [&](std::uint32_t core) { std::printf("%04x ", image[core][address]); });
    std::printf("\n");
  }
  std::printf("\n");
}

}  // namespace

CmdStatus showPLLRegistersCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const std::uint32_t coreMask = in.cores();
  if (in.failed()) return in.status();

  PllImage image{};
  if (const CmdStatus status = readImage(coreMask, image, __func__); status != CMD_OK) return status;

  for (std::uint32_t type = 0; type < kSerDesTypeCount; ++type) {
    const auto serDesType = static_cast<SerDesType>(type);
    if (const std::uint32_t cores = coresOfType(serDesType, coreMask); cores != 0) {
      printTable(serDesType, cores, image);
    }
  }
  return CMD_OK;
}

// The platform judges the core number, unlike in readPLL.
CmdStatus writePLLRegisterCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const std::uint32_t core = in.number();
  const auto address = in.number<unsigned char>();
  const auto value = in.number<unsigned short>();
  if (in.failed()) return in.status();

  const int result = AsicControl::WriteSerDesPLLRegister(serdesTopology.asicNum, core, address, value);
  return result < 0 ? platformFailure(result, __func__) : CMD_OK;
}

CmdStatus readPLLRegisterCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const std::uint32_t core = in.number();
  const std::uint32_t address = in.number();
  in.require(core < serdesTopology.coreCount, CMD_BAD_PARAM);
  if (in.failed()) return in.status();

  unsigned short value = 0;
  const int result =
      AsicControl::ReadSerDesPLLRegister(serdesTopology.asicNum, core, static_cast<unsigned char>(address), &value, 1);
  if (result < 0) return platformFailure(result, __func__);
  std::printf("Core ID %d ", static_cast<int>(core));
  std::printf("at PLL address 0x%02x", address);
  std::printf("= 0x%04x ", value);
  std::printf("\n");
  return CMD_OK;
}
