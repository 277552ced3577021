// Replays inputs through the fuzz target without a fuzzer: each argument is a file, or a folder of files, which
// together have to reach every operation of the platform.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "platform/operations.h"
#include "tests/fuzz/replay.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

unsigned replayed = 0;
std::set<std::string> reached;
bool isThrough = false;

void replay(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  (void)LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  ++replayed;
  addReached(reached);
}

// exit(0) somewhere in the tool would pass for a whole replay.
void failWhenCutShort() {
  if (isThrough) return;
  (void)std::fputs("The replay ended before its inputs did.\n", stderr);
  _exit(3);
}

}  // namespace

int main(int argc, char* argv[]) {
  if (std::atexit(failWhenCutShort) != 0 || LLVMFuzzerInitialize(&argc, &argv) != 0) return 1;
  bool isWhole = false;
  for (int i = 1; i < argc; ++i) {
    if (!std::filesystem::is_directory(argv[i])) {
      replay(argv[i]);
      continue;
    }
    isWhole = true;
    for (const auto& entry : std::filesystem::directory_iterator(argv[i]))
      replay(entry.path());
  }
  isThrough = true;
  std::set<std::string_view> symbols;
  for (const operations::OperationInfo& info : operations::allOperations())
    symbols.insert(info.symbol);
  std::fprintf(stderr, "%zu of %zu operations reached\n", reached.size(), symbols.size());
  std::fprintf(stderr, "%u inputs replayed\n", replayed);
  return replayed == 0 || (isWhole && reached.size() < symbols.size()) ? 1 : 0;
}
