// The lists that end a command's words.
#include "arguments/word_reader.h"

#include "arguments/port_lists.h"
#include "topology/serdes_topology.h"

std::uint32_t WordReader::ports(CmdStatus (*check)(std::uint32_t)) {
  std::uint32_t mask = 0;
  if (!failed()) status_ = parsePorts(wordCount_, words_, at_, mask);
  if (!failed() && check != nullptr) status_ = check(mask);
  return mask;
}

std::uint32_t WordReader::cores() {
  std::uint32_t mask = 0;
  if (!failed()) {
    status_ = parsePortList(wordCount_ - at_, words_ + at_, mask, serdesTopology.glCoreMask, serdesTopology.xgCoreMask,
                            serdesTopology.exgCoreMask);
  }
  return mask;
}

void WordReader::require(bool holds, CmdStatus otherwise) {
  if (!failed() && !holds) status_ = otherwise;
}
