#include "simulator/state/text.h"

#include "simulator/error_codes.h"
#include "tests/unit/simulator/switch/switch_bench.h"

namespace simulator {
namespace {

class StateText : public SwitchTest {
 protected:
  StateText() : start(sw.exportState(), sw.fingerprint()) {}

  std::string textNow() const {
    return stateText(start, sw.exportState());
  }
  std::string errorOf(const std::string& text) const {
    try {
      (void)readStateText(text, "some.state", start);
    } catch (const StateError& error) {
      EXPECT_EQ(error.code(), kBadState);
      return error.what();
    }
    return "no error";
  }
  // The text with another end, so that only what a test changed is wrong with it.
  static std::string ended(const std::string& text) {
    const std::string body = text.substr(0, text.rfind("# whole "));
    return body + stateEndLine(body);
  }
  static std::string replaced(std::string text, const std::string& what, const std::string& by) {
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return ended(text.replace(at, what.size(), by));
  }

  StartState start;
};

// The fingerprints are those of anybody's FNV-1a with 64 bits.
TEST(StateEndLine, IsTheFingerprintOfTheTextBeforeIt) {
  EXPECT_EQ(stateEndLine(""), "# whole cbf29ce484222325\n");
  EXPECT_EQ(stateEndLine("a"), "# whole af63dc4c8601ec8c\n");
}

TEST_F(StateText, OfASwitchAsItStartsHasNoRecords) {
  const std::string text = textNow();
  EXPECT_NE(text.find("\n[records]\n# whole "), std::string::npos) << text;
  EXPECT_EQ(readStateText(text, "some.state", start), start.records);
}

TEST_F(StateText, HoldsWhatDiffersAndNothingElse) {
  ASSERT_EQ(sw.writePllRegister(0, 4, 3, 0x1234), kOk);
  ASSERT_EQ(sw.setTxRateParams(0, 0, SPEED_2G, {300, 2, 1, -4, 55, -25, INT32_MIN}), kOk);
  const std::string text = textNow();
  const std::string records = text.substr(text.find("[records]\n"));
  EXPECT_EQ(records.substr(0, records.find("# whole ")),
            "[records]\n"
            "\"asic0.pll4\" = [0x0001, 0x0000, 0x0000, 0x1234, 0x0000, 0x0000, 0x0000, 0x0000, 0x0000, 0x0000, 0x0000, "
            "0x0000, 0x0000, 0x0000, 0x0000, 0x0000, 0x0000, 0x0000, 0x0000, 0x0000, 0x0000, 0x0000, 0x0000, 0x0000, "
            "0x0000, 0x0000, 0x0000, 0x0000, 0x0000, 0x0000, 0x0000, 0x0000]\n"
            "\"asic0.port0.cache2\" = [300, 2, 1, -4, 55, -25, -2147483648, 0, 6, 4, 78, 0]\n");
  EXPECT_EQ(readStateText(text, "some.state", start), sw.exportState());
}

TEST_F(StateText, HasRegistersInHexadecimalAndTheRestInDecimal) {
  ASSERT_EQ(sw.setTestOption(0, 0, 0, kTestInjectErrors, 7), kOk);
  ASSERT_EQ(sw.setTestOption(0, 0, 0, kTestMargin, 1), kOk);
  const std::string text = textNow();
  for (const std::string side : {"tx", "rx"})
    EXPECT_NE(text.find("\"asic0.port0." + side + "0\" = [0x"), std::string::npos) << text;
  EXPECT_NE(text.find(", 7]\n"), std::string::npos) << text;
  EXPECT_NE(text.find(", 0, 0, 0, 1, 0]\n"), std::string::npos) << text;
}

TEST_F(StateText, ComesBackAsItWasWrittenWhateverTheValues) {
  std::vector<StateRecord> records = start.records;
  const std::vector<std::uint64_t> extremes = {0, 1, UINT16_MAX, INT64_MAX, std::uint64_t{1} << 63, UINT64_MAX};
  std::size_t next = 0;
  for (StateRecord& record : records) {
    const bool isPort = record.name.find("tx") == std::string::npos && record.name.find("rx") == std::string::npos &&
                        record.name.find("pll") == std::string::npos;
    for (std::uint64_t& value : record.values)
      value = isPort ? extremes[next++ % extremes.size()] : next++ % 0x10000;
  }
  EXPECT_EQ(readStateText(stateText(start, records), "some.state", start), records);
}

TEST_F(StateText, CutOffAnywhereIsRefused) {
  passSeconds(3);
  const std::string text = textNow();
  for (std::size_t length = 0; length < text.size(); ++length) {
    EXPECT_EQ(errorOf(text.substr(0, length)), "some.state: is cut off, or no state of a simulated switch") << length;
  }
  EXPECT_EQ(errorOf(text + "\n"), "some.state: is cut off, or no state of a simulated switch");
  EXPECT_EQ(errorOf(text), "no error");
}

TEST_F(StateText, WithAnyByteChangedIsRefused) {
  passSeconds(3);
  const std::string text = textNow();
  for (std::size_t at = 0; at < text.size(); ++at) {
    for (const int bit : {1, 128}) {
      std::string changed = text;
      changed[at] = static_cast<char>(changed[at] ^ bit);
      EXPECT_NE(errorOf(changed), "no error") << "byte " << at << " of\n" << text;
    }
  }
  std::string changed = text;
  changed[2] = 'X';
  EXPECT_EQ(errorOf(changed), "some.state: is damaged");
}

TEST_F(StateText, OfAnotherFormatIsRefused) {
  EXPECT_EQ(errorOf(replaced(textNow(), "format = 2", "format = 3")),
            "some.state: is of format 3, and this is format 2");
  EXPECT_EQ(errorOf(replaced(textNow(), "format = 2\n", "")), "some.state:1: format: is missing");
  EXPECT_EQ(errorOf(replaced(textNow(), "switch = ", "# ")), "some.state:1: switch: is missing");
}

TEST_F(StateText, OfAnotherDescriptionIsRefused) {
  Switch other(readDescription(kBenchSwitch + "# a remark\n", "bench.toml"));
  const StartState otherStart(other.exportState(), other.fingerprint());
  EXPECT_EQ(errorOf(stateText(otherStart, other.exportState())),
            "some.state: is of another switch, or its description has changed since");
}

TEST_F(StateText, OfTheSameDescriptionWithOtherResetValuesIsRefused) {
  std::vector<StateRecord> records = start.records;
  records[1].values[5] += 1;
  const StartState otherStart(records, sw.fingerprint());
  EXPECT_EQ(errorOf(stateText(otherStart, records)),
            "some.state: is of another switch, or its description has changed since");
}

TEST_F(StateText, WithOtherRecordsIsRefused) {
  const std::string text = textNow();
  const auto with = [&](const std::string& records) { return replaced(text, "[records]\n", "[records]\n" + records); };
  EXPECT_EQ(errorOf(with("\"asic9.port0\" = [1]\n")),
            "some.state: has a record asic9.port0 that the switch does not have");
  EXPECT_EQ(errorOf(with("switch = [1]\n")), "some.state: has a record switch that the switch does not have");
  EXPECT_EQ(errorOf(with("switch = [1, \"2\"]\n")),
            "some.state:11: records.switch: must be a list, each a whole number from -9223372036854775808 to "
            "9223372036854775807");
  EXPECT_EQ(errorOf(with("switch = [5, 6]\n")), "no error");
}

TEST_F(StateText, ThatIsNotTomlOrHasOtherKeysIsRefused) {
  EXPECT_EQ(errorOf(replaced(textNow(), "format = 2", "format = = 1")).substr(0, 14), "some.state:7: ");
  EXPECT_EQ(errorOf(replaced(textNow(), "format = 2", "format = 2\ncolour = 2")),
            "some.state:8: colour: unknown key; there are format, switch, records");
  // The library asserts that no text is so.
  EXPECT_EQ(errorOf(replaced(textNow(), "[records]", "[[=x]]")),
            "some.state:10: a key or a value is missing, or is not one");
  EXPECT_EQ(errorOf(replaced(textNow(), "[records]", "[\u00e9]")),
            "some.state:10: a character beyond ASCII outside of quotes");
}

}  // namespace
}  // namespace simulator
