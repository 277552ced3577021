// Takes a command's words one after the other. The first failure stands: the words behind it are not looked at, and
// what is taken from there on has no meaning. A handler takes all its words, then asks once whether that failed.
#pragma once

#include <cstdint>

#include "arguments/argument_parsers.h"
#include "arguments/cmd_status.h"

class WordReader {
 public:
  // Word 0, the command word, is not taken.
  WordReader(int wordCount, char* words[]) : words_(words), wordCount_(wordCount) {}

  // The next word as a parser takes it: in.take(parseRate).
  template <typename Value>
  Value take(CmdStatus (*parse)(const char*, Value&)) {
    Value value{};
    if (!failed()) status_ = at_ < wordCount_ ? parse(words_[at_++], value) : CMD_TOO_FEW_ARGS;
    return value;
  }

  // The low bits of a number.
  template <typename Number = std::uint32_t>
  Number number() {
    return static_cast<Number>(take(parseNumber));
  }

  // All words that are left as a list of ports of the current ASIC, which may have to pass a check.
  std::uint32_t ports(CmdStatus (*check)(std::uint32_t portMask) = nullptr);
  // The same as a list of its cores.
  std::uint32_t cores();

  // Fails with `otherwise` unless `holds`.
  void require(bool holds, CmdStatus otherwise);

  bool failed() const {
    return status_ != CMD_OK;
  }
  CmdStatus status() const {
    return status_;
  }

 private:
  char** words_;
  int wordCount_;
  int at_ = 1;
  CmdStatus status_ = CMD_OK;
};
