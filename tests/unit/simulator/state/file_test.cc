// The file of a state: locks, whole writes, refusals; and the sessions that keep one.
#include "simulator/state/file.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "simulator/calls/session.h"
#include "tests/unit/simulator/switch/switch_bench.h"

namespace simulator {
namespace {

namespace fs = std::filesystem;

std::string textOf(const fs::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

class StateFiles : public SwitchTest {
 protected:
  explicit StateFiles(const std::string& more = "")
      : SwitchTest(more), folder(fs::temp_directory_path() / ("state_file_test." + std::to_string(getpid()))) {
    fs::remove_all(folder);
    fs::create_directories(folder);
  }
  ~StateFiles() override {
    fs::remove_all(folder);
  }

  std::string path(const char* name = "state") const {
    return folder / name;
  }
  std::string errorOf(const std::string& name, int code) {
    try {
      StateFile file(name);
      file.load(sw);
    } catch (const StateError& error) {
      EXPECT_EQ(error.code(), code) << error.what();
      return error.what();
    }
    return "no error";
  }
  // What the folder holds besides the lock.
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
      if (entry.path().extension() != ".lock") names.push_back(entry.path().filename());
    }
    return names;
  }
  void keepNow(const std::string& name) {
    Switch other(readDescription(kBenchSwitch, "bench.toml"));
    StateFile file(name);
    file.load(other);
    file.save(sw);
  }

  fs::path folder;
};

TEST_F(StateFiles, KeepASwitch) {
  ASSERT_EQ(sw.setRxDfe(0, 0, -1, DFE_1), kOk);
  keepNow(path());
  Switch other(readDescription(kBenchSwitch, "bench.toml"));
  StateFile file(path());
  file.load(other);
  EXPECT_EQ(other.exportState(), sw.exportState());
  EXPECT_EQ(files(), std::vector<std::string>{"state"});
}

TEST_F(StateFiles, ThatAreNotThereLeaveASwitchAsItStarts) {
  const std::vector<StateRecord> before = sw.exportState();
  StateFile file(path());
  file.load(sw);
  EXPECT_EQ(sw.exportState(), before);
  EXPECT_EQ(files(), std::vector<std::string>{});
}

TEST_F(StateFiles, AreForOneSessionAtATime) {
  {
    const StateFile first(path());
    EXPECT_EQ(errorOf(path(), kStateInUse), path() + ": another session uses it");
  }
  EXPECT_EQ(errorOf(path(), kStateInUse), "no error");
}

TEST_F(StateFiles, StayLockedWhenTheyAreReplaced) {
  StateFile first(path());
  first.load(sw);
  first.save(sw);
  EXPECT_EQ(errorOf(path(), kStateInUse), path() + ": another session uses it");
  first.save(sw);
  EXPECT_EQ(errorOf(path(), kStateInUse), path() + ": another session uses it");
}

TEST_F(StateFiles, HaveOneLockForAllTheirNames) {
  keepNow(path());
  fs::create_symlink(path(), path("link"));
  const StateFile first(path());
  EXPECT_EQ(errorOf(path("link"), kStateInUse), path("link") + ": another session uses it");
}

TEST_F(StateFiles, BehindASymbolicLinkAreReplacedAndTheLinkStays) {
  keepNow(path());
  fs::create_symlink("state", path("link"));
  ASSERT_EQ(sw.setRxDfe(0, 0, -1, DFE_1), kOk);
  const std::string before = textOf(path());
  keepNow(path("link"));
  EXPECT_TRUE(fs::is_symlink(path("link")));
  EXPECT_NE(textOf(path()), before);
}

TEST_F(StateFiles, AreMadeWithThePermissionsThatTheUserLeaves) {
  const ::mode_t before = ::umask(0);
  keepNow(path());
  (void)::umask(before);
  EXPECT_EQ(fs::status(path()).permissions(), fs::perms(0666));
}

TEST_F(StateFiles, KeepTheirPermissions) {
  keepNow(path());
  ASSERT_EQ(::chmod(path().c_str(), 0640), 0);
  keepNow(path());
  EXPECT_EQ(fs::status(path()).permissions(), fs::perms(0640));
}

TEST_F(StateFiles, ReplaceWhatAKilledSessionLeft) {
  std::ofstream(path("state.new")) << "half a sta";
  keepNow(path());
  EXPECT_EQ(files(), std::vector<std::string>{"state"});
  EXPECT_EQ(errorOf(path(), kBadState), "no error");
}

TEST_F(StateFiles, ThatAreDamagedAreLeftAlone) {
  keepNow(path());
  const std::string damaged = textOf(path()).substr(10);
  std::ofstream(path(), std::ios::binary | std::ios::trunc) << damaged;
  const std::vector<StateRecord> before = sw.exportState();
  EXPECT_EQ(errorOf(path(), kBadState), path() + ": is damaged");
  EXPECT_EQ(textOf(path()), damaged);
  EXPECT_EQ(sw.exportState(), before);
}

TEST_F(StateFiles, ThatAreEmptyAreRefused) {
  std::ofstream(path()).flush();
  EXPECT_EQ(errorOf(path(), kBadState), path() + ": is cut off, or no state of a simulated switch");
}

TEST_F(StateFiles, WithAValueOutOfRangeAreRefused) {
  keepNow(path());
  std::string text = textOf(path());
  text.resize(text.rfind("# whole "));
  text += "\"asic0.port0\" = [9, 0, 1, 0, 0, 0, 0, 0, 0, 0]\n";
  std::ofstream(path(), std::ios::binary | std::ios::trunc) << text << stateEndLine(text);
  EXPECT_EQ(errorOf(path(), kBadState), path() + ": has a value that the switch cannot have");
}

TEST_F(StateFiles, ThatAreNoFilesAreRefused) {
  fs::create_directory(path("folder"));
  fs::create_directory_symlink("folder", path("link"));
  for (const char* name : {"folder", "link"})
    EXPECT_EQ(errorOf(path(name), kBadState), path(name) + ": is not a file");
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0666), 0);
  EXPECT_EQ(errorOf(path("pipe"), kBadState), path("pipe") + ": is not a file");
}

TEST_F(StateFiles, ThatAreFarTooLargeAreRefused) {
  std::ofstream(path()) << 'x';
  fs::resize_file(path(), std::uintmax_t{17} << 20);
  EXPECT_EQ(errorOf(path(), kBadState), path() + ": is too large for a state of a simulated switch");
}

TEST_F(StateFiles, InNoFolderCannotBeLocked) {
  EXPECT_EQ(errorOf(path("no/state"), kBadState), path("no/state") + ": cannot be locked: No such file or directory");
}

TEST_F(StateFiles, ThatCannotBeWrittenSaySoAndStayAsTheyAre) {
  keepNow(path());
  const std::string before = textOf(path());
  Switch other(readDescription(kBenchSwitch, "bench.toml"));
  StateFile file(path());
  file.load(other);
  // A folder in the way of the new file stops even a superuser.
  fs::create_directories(path("state.new"));
  try {
    file.save(sw);
    FAIL();
  } catch (const StateError& error) {
    EXPECT_EQ(error.code(), kBadState);
    EXPECT_EQ(std::string(error.what()).substr(0, path().size() + 20), path() + ": cannot be written:");
  }
  EXPECT_EQ(textOf(path()), before);
}

TEST_F(StateFiles, NamedByLinksInARingCannotBeRead) {
  fs::create_symlink("state", path());
  EXPECT_EQ(errorOf(path(), kBadState), path() + ": cannot be read: Too many levels of symbolic links");
}

TEST_F(StateFiles, MayHaveNamesWithoutAFolder) {
  const fs::path before = fs::current_path();
  fs::current_path(folder);
  keepNow("state");
  EXPECT_EQ(files(), std::vector<std::string>{"state"});
  EXPECT_EQ(errorOf("state", kBadState), "no error");
  fs::current_path(before);
}

// What hinders a save after the file was loaded.
class HinderedSaves : public StateFiles {
 protected:
  HinderedSaves() : file(path()) {
    file.load(sw);
  }
  std::string errorOfSave() const {
    try {
      file.save(sw);
    } catch (const StateError& error) {
      EXPECT_EQ(error.code(), kBadState);
      return error.what();
    }
    return "no error";
  }

  StateFile file;
};

TEST_F(HinderedSaves, AFolderThatHasTakenTheName) {
  fs::create_directory(path());
  EXPECT_EQ(errorOfSave(), path() + ": cannot be written: Is a directory");
  EXPECT_EQ(files(), std::vector<std::string>{"state"});
}

TEST_F(HinderedSaves, AFolderThatIsGone) {
  fs::remove_all(folder);
  EXPECT_EQ(errorOfSave(), path() + ": cannot be written: No such file or directory");
}

TEST_F(HinderedSaves, ADiskThatIsFullLeavesNothingHalfWritten) {
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
  const rlimit small = {.rlim_cur = 10, .rlim_max = limit.rlim_max};
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  const std::string error = errorOfSave();
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
  (void)std::signal(SIGXFSZ, handler);
  EXPECT_EQ(error, path() + ": cannot be written: File too large");
  EXPECT_EQ(files(), std::vector<std::string>{});
}

// Sessions as the tool has them.
class StateSessions : public StateFiles {
 protected:
  explicit StateSessions(const std::string& more = "") {
    std::ofstream(path("bench.toml")) << kBenchSwitch << more;
    (void)setenv("SERDES_SIMULATOR_SWITCH", path("bench.toml").c_str(), 1);
    (void)setenv("SERDES_SIMULATOR_STATE", path().c_str(), 1);
    (void)unsetenv("SERDES_SIMULATOR_CLOCK");
    (void)unsetenv("SERDES_SIMULATOR_TRACE");
  }
  ~StateSessions() override {
    Session::instance() = {};  // faults may have left it open
    (void)unsetenv("SERDES_SIMULATOR_STATE");
    (void)unsetenv("SERDES_SIMULATOR_SWITCH");
  }
  static void open() {
    ASSERT_EQ(AsicControl::AsicCtlOpen(), kOk);
    ASSERT_EQ(PortControl::PortCtlOpen(), kOk);
  }
  static void close() {
    (void)AsicControl::AsicCtlClose();
    (void)PortControl::PortCtlClose();
  }
  static SerDesRxDFEMode dfe() {
    SerDesRxDFEMode mode{};
    EXPECT_EQ(AsicControl::GetSerDesRxDFE(0, 0, 0, &mode), kOk);
    return mode;
  }
  static std::uint64_t errorsOf(unsigned port) {
    drv_counters_t counters;
    EXPECT_EQ(PortControl::GetFrameStatCntrs(id(port), &counters), kOk);
    return whole(counters.decodeErrors);
  }
};

TEST_F(StateSessions, GoOnWhereTheLastEnded) {
  open();
  ASSERT_EQ(AsicControl::SetSerDesRxDFE(0, 0, -1, DFE_1), kOk);
  close();
  open();
  EXPECT_EQ(dfe(), DFE_1);
}

TEST_F(StateSessions, CountOnWithoutTheTimeInBetween) {
  open();
  const std::uint64_t first = errorsOf(1);
  EXPECT_GT(first, 1000U);
  close();
  open();
  const std::uint64_t second = errorsOf(1);
  // First two opening calls and the reading, then two closing calls and the same again: no other time passed.
  EXPECT_NEAR(static_cast<double>(second - first), 5.0 / 3.0 * static_cast<double>(first),
              0.2 * static_cast<double>(first));
}

TEST_F(StateSessions, WriteBeforeASetIsHeardOfAndNotOnReads) {
  open();
  EXPECT_EQ(files(), std::vector<std::string>{"bench.toml"});
  EXPECT_EQ(dfe(), DFE_3);
  (void)errorsOf(1);
  EXPECT_EQ(files(), std::vector<std::string>{"bench.toml"});
  ASSERT_EQ(AsicControl::SetSerDesRxDFE(0, 0, -1, DFE_1), kOk);
  const std::string kept = textOf(path());
  EXPECT_NE(kept.find("asic0.port0.rx0"), std::string::npos);
  (void)errorsOf(1);
  EXPECT_EQ(AsicControl::SetSerDesRxDFE(0, 99, -1, DFE_1), kBadPort);
  EXPECT_EQ(textOf(path()), kept);
}

TEST_F(StateSessions, WriteAfterEverySet) {
  open();
  std::string before = textOf(path());
  const auto writes = [&](int code) {
    EXPECT_EQ(code, kOk);
    const std::string now = textOf(path());
    const bool differs = now != before;
    before = now;
    return differs;
  };
  SerDesRxDFEState state{};
  EXPECT_TRUE(writes(AsicControl::WriteSerDesLinkRegister(0, 0, 0, SERDES_LINK_RX, 20, 1)));
  EXPECT_TRUE(writes(AsicControl::WriteSerDesPLLRegister(0, 0, 5, 1)));
  EXPECT_TRUE(writes(AsicControl::SetSerDesTxFFE(0, 0, -1, FFE_2, 1, 0, 2, 3, 0)));
  EXPECT_TRUE(writes(AsicControl::SetSerDesTxSlew(0, 0, -1, true, SLEW_60PS)));
  EXPECT_TRUE(writes(AsicControl::SetSerDesTxRateParams(0, 0, SPEED_1G, {})));
  EXPECT_TRUE(writes(AsicControl::SetSerDesRxDFE(0, 0, -1, DFE_1)));
  EXPECT_TRUE(writes(AsicControl::SetSerDesRxVGA(0, 0, -1, 1, 2, 3)));
  EXPECT_TRUE(writes(AsicControl::SetSerDesRxDFEState(0, 0, -1, &state)));
  EXPECT_TRUE(writes(AsicControl::SetSerDesRxRateParams(0, 0, SPEED_1G, {})));
  EXPECT_TRUE(writes(AsicControl::SetSerDesTestOption(0, 0, 0, static_cast<SerDesTestOption>(kTestMargin), 1)));
  EXPECT_TRUE(writes(PortControl::SetPortCfgSpeed(id(0), SPEED_4G)));
  EXPECT_TRUE(writes(PortControl::TxStreamEnable(id(0), false)));
  EXPECT_TRUE(writes(PortControl::ClrFrameStatCntrs(id(0))));
}

TEST_F(StateSessions, FailAnOpeningWhenTheFileIsInUse) {
  const StateFile other(path());
  testing::internal::CaptureStderr();
  EXPECT_EQ(AsicControl::AsicCtlOpen(), kStateInUse);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "simulated switch: " + path() + ": another session uses it\n");
  Switch_HW_Config_t config;
  EXPECT_EQ(AsicControl::GetSwitchConfig(&config), kNotOpen);
}

TEST_F(StateSessions, FailAnOpeningWhenTheFileIsDamagedAndLetGoOfIt) {
  std::ofstream(path()) << "anything";
  testing::internal::CaptureStderr();
  EXPECT_EQ(PortControl::PortCtlOpen(), kBadState);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "simulated switch: " + path() + ": is cut off, or no state of a simulated switch\n");
  EXPECT_EQ(textOf(path()), "anything");
  fs::remove(path());
  EXPECT_NO_THROW(StateFile{path()});
}

TEST_F(StateSessions, FailASetThatCannotBeKept) {
  open();
  fs::create_directories(path("state.new"));
  testing::internal::CaptureStderr();
  EXPECT_EQ(AsicControl::SetSerDesRxDFE(0, 0, -1, DFE_1), kBadState);
  EXPECT_EQ(AsicControl::AsicCtlClose(), kBadState);
  EXPECT_EQ(PortControl::PortCtlClose(), kBadState);
  const std::string complaints = testing::internal::GetCapturedStderr();
  EXPECT_EQ(complaints.find("simulated switch: " + path() + ": cannot be written: "), 0U) << complaints;
  EXPECT_EQ(PortControl::PortCtlClose(), kNotOpen);
}

TEST_F(StateSessions, LetGoOfTheFileWithTheLastClass) {
  open();
  ASSERT_EQ(AsicControl::AsicCtlClose(), kOk);
  EXPECT_EQ(errorOf(path(), kStateInUse), path() + ": another session uses it");
  ASSERT_EQ(PortControl::PortCtlClose(), kOk);
  EXPECT_NO_THROW(StateFile{path()});
}

class FaultySessions : public StateSessions {
 protected:
  FaultySessions()
      : StateSessions(R"(
[[faults]]
operation = "AsicCtlOpen"
code = -41
[[faults]]
operation = "AsicCtlClose"
code = -42
[[faults]]
operation = "GetSerDesRxDFE"
ordinal = 2
code = -43
)") {}
};

TEST_F(FaultySessions, KeepHowOftenFaultsHaveStruck) {
  EXPECT_EQ(AsicControl::AsicCtlOpen(), -41);
  EXPECT_EQ(PortControl::PortCtlOpen(), kOk);
  EXPECT_EQ(PortControl::PortCtlClose(), kOk);
  open();
  EXPECT_EQ(dfe(), DFE_3);
  EXPECT_EQ(AsicControl::AsicCtlClose(), -42);
  close();
  open();
  SerDesRxDFEMode mode{};
  EXPECT_EQ(AsicControl::GetSerDesRxDFE(0, 0, 0, &mode), -43);
  EXPECT_EQ(AsicControl::AsicCtlClose(), kOk);
}

TEST_F(FaultySessions, KeepThatOneStruckOnClosingEvenIfTheProcessEndsThere) {
  EXPECT_EQ(AsicControl::AsicCtlOpen(), -41);
  open();
  const std::string before = textOf(path());
  EXPECT_EQ(AsicControl::AsicCtlClose(), -42);
  EXPECT_NE(textOf(path()), before);
}

TEST_F(FaultySessions, KeepThatOneStruckOnOpeningEvenIfNothingOpened) {
  EXPECT_EQ(AsicControl::AsicCtlOpen(), -41);
  EXPECT_NE(textOf(path()).find(", 1, 1, 0, 0, 0, 0]\n"), std::string::npos) << textOf(path());
  open();
}

}  // namespace
}  // namespace simulator
