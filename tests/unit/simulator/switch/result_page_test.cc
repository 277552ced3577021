// The results that docs/simulated-switch.md names are those of the code.
#include <gtest/gtest.h>

#include <fstream>

#include "simulator/error_codes.h"

namespace simulator {
namespace {

TEST(ResultPage, NamesEveryResult) {
  const std::pair<ErrorCode, const char*> kResults[] = {{kNotOpen, "kNotOpen"},
                                                        {kBadDescription, "kBadDescription"},
                                                        {kBadAsic, "kBadAsic"},
                                                        {kBadPort, "kBadPort"},
                                                        {kBadLink, "kBadLink"},
                                                        {kBadCore, "kBadCore"},
                                                        {kBadRegister, "kBadRegister"},
                                                        {kReadOnlyRegister, "kReadOnlyRegister"},
                                                        {kOutOfRange, "kOutOfRange"},
                                                        {kNotSupported, "kNotSupported"},
                                                        {kBadArgument, "kBadArgument"},
                                                        {kInjectedFault, "kInjectedFault"},
                                                        {kInternalError, "kInternalError"},
                                                        {kStateInUse, "kStateInUse"},
                                                        {kBadState, "kBadState"}};
  std::vector<std::string> wanted;
  for (const auto& [code, name] : kResults)
    wanted.push_back("| " + std::to_string(code) + " | " + name);
  std::vector<std::string> rows;
  std::ifstream page(SERDES_SOURCE_FOLDER "/docs/simulated-switch.md");
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("| -")) rows.push_back(line.substr(0, line.rfind(" | ")));
  }
  EXPECT_EQ(rows, wanted);
}

}  // namespace
}  // namespace simulator
