// Saves come back exactly, and what is no save is refused with its place.
#include "serdesctl/state/state_json.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "serdesctl/base/errors.h"
#include "serdesctl/formats/json_object.h"
#include "serdesctl/state/compare.h"
#include "tests/serdesctl/state/random_state.h"

namespace serdesctl {
namespace {

constexpr int kSaves = 50;

std::string refusal(const std::string& text) {
  try {
    (void)parseSave(text, "lab.json");
  } catch (const UsageError& error) {
    return error.what();
  }
  return "taken";
}

bool isEmpty(const Comparison& comparison) {
  return comparison.hardware.empty() && comparison.settings.empty() && comparison.registers.empty() &&
         comparison.observations.empty() && comparison.notInFirst.empty() && comparison.notInSecond.empty();
}

// One port with one link each way.
Save smallSave() {
  Random random(7);
  Save save;
  AsicState& asic = save.state.asics.emplace_back();
  ConfigPort& config = asic.config.ports.emplace_back();
  config.rx.links = config.tx.links = 1;
  PortState& port = asic.ports.emplace_back();
  port.configRate = "8G";
  port.streamEnabled = true;
  port.tx = {randomTx(random)};
  port.tx[0].k = 115;
  port.rx = {randomRx(random)};
  port.txCaches["8G"] = {.power = 100, .slew = 2, .mode = 2, .p = {-2, 58, -10, 0}};
  port.rxCaches["8G"] = {.mode = 1, .p = {6, 4, 78, 0}};
  return save;
}

std::string replaced(std::string text, const std::string& old, const std::string& now) {
  const std::size_t at = text.find(old);
  EXPECT_NE(at, std::string::npos) << old;
  return text.replace(at, old.size(), now);
}

TEST(StateJson, ComesBackExactly) {
  for (std::uint32_t seed = 0; seed < kSaves; ++seed) {
    Random random(seed);
    const Save save = randomSave(random);
    const std::string text = saveText(save);
    const Save again = parseSave(text, "lab.json");
    ASSERT_EQ(saveText(again), text) << seed;
    ASSERT_TRUE(isEmpty(compare(save.state, again.state))) << seed;
    ASSERT_TRUE(isEmpty(compare(again.state, save.state))) << seed;
    ASSERT_EQ(save.state.unread, again.state.unread) << seed;
  }
}

TEST(StateJson, ObservationsStandApart) {
  Save save = smallSave();
  const std::string before = saveText(save);
  save.origin = {.target = "sim", .time = "2025-11-21T21:13:05Z"};
  save.state.asics[0].ports[0].observed.media = "OPT";
  const std::string after = saveText(save);
  EXPECT_NE(before, after);
  const std::size_t at = before.find("\"observations\"");
  EXPECT_EQ(before.substr(0, at), after.substr(0, at));
}

TEST(StateJson, ALinkAndACacheAreALineEach) {
  const std::string text = saveText(smallSave());
  EXPECT_NE(text.find("\n            \"8G\": {\"mode\": 1, \"p0\": 6, \"p1\": 4, \"p2\": 78, \"p3\": 0}\n"),
            std::string::npos);
  EXPECT_NE(text.find("\n            {\"link\": 0, \"dfe_mode\": "), std::string::npos);
}

TEST(StateJson, RefusesValuesWithTheirPlace) {
  const std::string text = saveText(smallSave());
  const std::vector<std::tuple<std::string, std::string, std::string>> cases = {
      {"\"k\": 115", "\"k\": 256", "/asics/0/ports/0/tx/0/k: not a number from 0 to 255"},
      {"\"k\": 115", "\"k\": \"115\"", "/asics/0/ports/0/tx/0/k: not a number from 0 to 255"},
      {"\"k\": 115", "\"k\": 115.5", "/asics/0/ports/0/tx/0/k: not a number from 0 to 255"},
      {"\"k\": 115", "\"k\": 18446744073709551615", "/asics/0/ports/0/tx/0/k: not a number from 0 to 255"},
      {"\"k\": 115", "\"K\": 115", "/asics/0/ports/0/tx/0/K: unknown: none of link, ffe_mode, k, "},
      {"\"k\": 115, ", "", "/asics/0/ports/0/tx/0: has no 'k'"},
      {"\"power\": 100", "\"power\": 2147483648", "/tx_caches/8G/power: not a number from -2147483648 to 2147483647"},
      {"\"8G\": {\"power\"", "\"9G\": {\"power\"", "/asics/0/ports/0/tx_caches/9G: no rate of the tool's"},
      {"\"config_rate\": \"8G\"", "\"config_rate\": 8, \"x\": 1", "/asics/0/ports/0/x: unknown"},
      {"\"config_rate\": \"8G\"", "\"config_rate\": 8", "config_rate: none of AUTO, 1G, 2G, 4G, 8G, 10G, 20G, INV"},
      {"\"stream_enabled\": true", "\"stream_enabled\": 1", "/stream_enabled: neither true nor false"},
      {"\"tx\": [", "\"tx\": {}, \"_\": [", "/asics/0/ports/0/_: unknown"},
      {"\"schema\": 1", "\"schema\": 2", "/schema: this program knows schema 1 and not 2"},
      {"\"kind\": \"save\"", "\"kind\": \"rate\"", "/kind: not \"save\": this is no save of a switch"},
      {"\"tx_links\": 1", "\"tx_links\": 2", "/asics/0/ports/0/tx: not of the port's 2 links"},
      {"\"tx_links\": 1", "\"tx_links\": -5", "/asics/0/topology/ports/0/tx_links: not a number from 0 to 4294967295"},
      {"\"unread\": []", "\"unread\": [{}]", "/unread/0: has no 'asic'"},
      {"\"unread\": []", "\"unread\": 3", "/unread: not a list"},
      {"\"port_type\": null", "\"port_type\": \"fc\"", "/asics/0/topology/ports/0/port_type: none of gl, xg, exg"},
      {"\"registers\": null",
       "\"registers\": {\"pll\": [{\"core\": 0, \"registers\": [65536]}], \"tx\": [], \"rx\": []}",
       "/asics/0/registers/pll/0/registers/0: not a number from 0 to 65535"},
      {"\"links\": []", "\"links\": [{}]", "/observations/asics/0/ports/0/links/0: has no 'link'"},
  };
  for (const auto& [old, now, message] : cases) {
    const std::string said = refusal(replaced(text, old, now));
    EXPECT_NE(said.find(message), std::string::npos) << now << ": " << said;
    EXPECT_EQ(said.find("lab.json: /"), 0U) << said;
  }
}

// A save with another value somewhere.
std::string edited(const Save& save, const std::string& place, const Json& value) {
  Json json = Json::parse(saveText(save));
  json[Json::json_pointer(place)] = value;
  return json.dump();
}

TEST(StateJson, RefusesWhatCannotBe) {
  Save save = smallSave();
  save.state.asics[0].ports[0].observed.links.emplace_back().decodeErrors =
      Count{.number = 3, .lowest = 3, .highest = 3};
  const std::string port = "/asics/0/ports/0", link = "/observations/asics/0/ports/0/links/0";
  const Json ports = Json::parse(saveText(save)).at(Json::json_pointer("/asics/0/topology/ports"));
  Json tooMany = Json::array();
  while (tooMany.size() <= kMaxPorts) {
    tooMany.push_back(ports[0]);
    tooMany.back()["port"] = tooMany.size() - 1;
  }
  const std::vector<std::tuple<std::string, Json, std::string>> cases = {
      {port + "/tx/0/slew_ps", 31, port + R"(/tx/0/slew_ps: none of 24, 30, 36, 50, 60, 75, 100, "UNK")"},
      {port + "/tx/0/slew_ps", "36", port + R"(/tx/0/slew_ps: none of 24, 30, 36, 50, 60, 75, 100, "UNK")"},
      {port + "/tx/0/link", 1, port + "/tx/0/link: not 0"},
      {port + "/tx/0/link", -1, port + "/tx/0/link: not 0"},
      {port + "/tx_caches", Json::array(), port + "/tx_caches: not an object"},
      {link + "/decode_errors", "3", link + "/decode_errors: not a count"},
      {link + "/decode_errors", -3, link + "/decode_errors: not a count"},
      {link + "/decode_errors_min", -3, link + "/decode_errors_min: not a count"},
      {"/observations/time", 5, "/observations/time: not a text"},
      {"/observations/asics", Json::array(), "/observations/asics: not of the same ASICs as the settings"},
      {"/observations/asics/0/ports", Json::array(),
       "/observations/asics/0/ports: not of the same ports as the settings"},
      {"/asics/0/topology/ports", Json::array(), port + ": the topology has no ports"},
      {"/asics/0/topology/ports", tooMany, "/asics/0/topology/ports/24: more ports than an ASIC can have"},
      {"/asics/0/topology/ports/0/tx_links", 5, "taken"},
      {"/asics/0/topology/ports/0/tx_links", 2, port + "/tx: not of the port's 2 links"},
  };
  for (const auto& [place, value, message] : cases) {
    const std::string expected = message == "taken" ? message : "lab.json: " + message;
    EXPECT_EQ(refusal(edited(save, place, value)), expected) << place;
  }
}

// No port has more links than there can be, whatever it says of itself.
TEST(StateJson, RefusesLinksBeyondAllPorts) {
  Save save = smallSave();
  AsicState& asic = save.state.asics[0];
  asic.config.ports[0].tx.links = 6;
  for (const std::size_t links : {0, 1, 4, 5}) {
    asic.ports[0].tx.resize(links);
    EXPECT_EQ(refusal(saveText(save)),
              links < 5 ? "taken" : "lab.json: /asics/0/ports/0/tx: not of the port's 6 links");
  }
}

TEST(StateJson, RefusesWhatIsNotInOrder) {
  Save save = smallSave();
  save.state.asics.push_back(save.state.asics[0]);
  EXPECT_EQ(refusal(saveText(save)), "lab.json: /asics/1/asic: not in order");
  save.state.asics.pop_back();
  save.state.asics[0].ports.push_back(save.state.asics[0].ports[0]);
  EXPECT_EQ(refusal(saveText(save)), "lab.json: /asics/0/ports/1/port: not in order");
}

TEST(StateJson, RefusesTexts) {
  EXPECT_NE(refusal("").find("lab.json: parse error at line 1, column 1"), std::string::npos) << refusal("");
  EXPECT_NE(refusal("{\"schema\": 1,\n x").find("at line 2"), std::string::npos);
  EXPECT_EQ(refusal("[]"), "lab.json: /: not an object");
  EXPECT_EQ(refusal("{}"), "lab.json: /: has no 'kind'");
  EXPECT_EQ(refusal("{\"a\": 1, \"a\": 2}"), "lab.json: 'a' stands twice in an object");
  EXPECT_EQ(refusal(std::string(200000, '[')), "lab.json: nested deeper than 32 levels");
}

TEST(StateJson, TakesNoPartOfASave) {
  const std::string text = saveText(smallSave());
  for (std::size_t length = 0; length + 2 < text.size(); length += 7)
    EXPECT_NE(refusal(text.substr(0, length)), "taken") << length;
}

}  // namespace
}  // namespace serdesctl
