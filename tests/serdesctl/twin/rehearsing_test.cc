// What a rehearsal says, in words.
#include "serdesctl/twin/rehearsing.h"

#include <gtest/gtest.h>

namespace serdesctl {
namespace {

TEST(Rehearsing, NothingToSayIsSaid) {
  EXPECT_EQ(textReport({}, false), "no setting would change\nno port would be worse\n");
}

TEST(Rehearsing, RefusalsAndPortsAreLines) {
  RehearsalResult result;
  result.refused = {{"lab.toml", "", "ASIC 0 port 30: there is no such port"},
                    {"script:2", "setRate 20G 3", "refused"}};
  PortHealth was;
  was.place.port = 3;
  was.verdict = Verdict::kGood;
  was.amin = 20;
  PortHealth is = was;
  is.amin = 8;
  is.reason = "Amin is low";
  result.ports = {{.before = was, .after = is, .worse = true, .how = ""}};
  is.verdict = Verdict::kDown;
  is.amin.reset();
  result.ports.push_back({.before = is, .after = was, .worse = false, .how = ""});
  EXPECT_EQ(textReport(result, false),
            "no setting would change\n"
            "refused: lab.toml: ASIC 0 port 30: there is no such port\n"
            "refused: script:2: setRate 20G 3: refused\n"
            "worse: ASIC 0 port 3: good, Amin 20 -> 8: Amin is low\n"
            "better: ASIC 0 port 3: down -> good, Amin - -> 20: \n");
}

}  // namespace
}  // namespace serdesctl
