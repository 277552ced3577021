// Fuzzes the tool with the bytes of a script and the platform's answers together.
//
// Input: a byte of flags (bit 0: at the prompt), a byte that gives the length of the answers in units of 4 bytes, the
// answers, and the script. Every platform call takes one answer byte: below 16 it fails, below 128 the values that it
// hands back are made of the bytes that follow, else it answers well; when the bytes are used up it answers well.
#include <setjmp.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "arguments/argument_parsers.h"
#include "display/table_header.h"
#include "shell/command_reader.h"
#include "shell/session.h"
#include "tests/fuzz/replay.h"
#include "tests/support/fake_waiting.h"
#include "tests/support/recording_platform.h"
#include "topology/serdes_topology.h"

namespace {

using recording::platform;

constexpr int kMostWaits = 40;

struct Answers {
  const std::uint8_t* at = nullptr;
  const std::uint8_t* end = nullptr;

  std::uint8_t next(std::uint8_t otherwise) {
    return at == end ? otherwise : *at++;
  }
};

Answers answers;
jmp_buf tooManyWaits;

void corrupt(std::span<std::byte> value) {
  if (answers.next(255) >= 128) return;
  for (std::byte& byte : value)
    byte = std::byte{answers.next(0)};
}

// A loop of loops waits for hours; that is what was typed, and nothing to wait for here.
void countWait() {
  if (recording::waits.size() > kMostWaits) longjmp(tooManyWaits, 1);
}

}  // namespace

void addReached(std::set<std::string>& operations) {
  for (const std::string& call : platform.calls)
    operations.insert(call.substr(0, call.find('(')));
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  return std::freopen("/dev/null", "w", stdout) == nullptr || std::freopen("/dev/null", "r", stdin) == nullptr;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::uint8_t flags = data[0];
  const std::size_t answerCount = std::min<std::size_t>(data[1] * std::size_t{4}, size - 2);
  answers = {data + 2, data + 2 + answerCount};
  const std::uint8_t* script = answers.end;
  const auto scriptSize = static_cast<std::size_t>(data + size - script);

  recording::resetPlatform();
  recording::resetWaiting();
  recording::onSleep = countWait;
  recording::selectResult = [] {
    countWait();
    return recording::waits.size() % 4 == 0 ? 1 : 0;
  };
  serdesTopology = {};
  portRunning = {};
  currentCommandIndex = 0;
  currentCommandSets = false;
  interactive = (flags & 1) != 0;
  platform.corrupt = corrupt;
  platform.failing = [] { return answers.next(255) < 16 ? -static_cast<int>(answers.next(1)) : 0; };

  if (setjmp(tooManyWaits) == 0) {
    (void)openSerdes(0, nullptr);
    if (scriptSize > 0) {
      std::FILE* input = fmemopen(const_cast<std::uint8_t*>(script), scriptSize, "r");
      (void)runCommandStream(input, stdout);
      std::fclose(input);
    }
    (void)closeSerdes();
  }
  return 0;
}
