// Start-up, the streams of a session, and shut-down. Every session has a process of its own.
#include "shell/session.h"

#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "shell/command_reader.h"
#include "shell/help_and_loop.h"
#include "tests/support/expected.h"
#include "tests/support/fake_waiting.h"
#include "tests/support/own_process.h"
#include "topology/serdes_topology.h"

namespace recording {
namespace {

const std::string kSwitchLines =
    "switchHwConfig.NumSlots:1\n"
    "switchHwConfig.NumUserPorts:24\n"
    "switchHwConfig.NumAuxPorts:2\n"
    "switchHwConfig.NumASICs:2\n";

const std::string kTopologyLines =
    "asicNum:0, coreNum:0, firstPort:0, serDesType:2:\n"
    "pllRegisterCount:3, rxRegisterCount:6, txRegisterCount:5\n"
    "rxParamCount:4, txParamCount:7\n"
    "asicNum:0, coreNum:1, firstPort:4, serDesType:2:\n"
    "pllRegisterCount:3, rxRegisterCount:6, txRegisterCount:5\n"
    "rxParamCount:4, txParamCount:7\n"
    "current asicNum:0, coreCount:2, portCount:3\n";

// All that is printed before the first command of a script.
const std::string kStart = kSwitchLines + kTopologyLines + "\n";

const std::string kEnd = "\n\n";
const std::string kSuccess = "\n\n";
const std::string kNoFile = "Error openning file: No such file or directory\n";
const std::string kReadLine = "Port 2 (user port 102), link 0 at Rx address 0x03= 0x0203 \n";

const Calls kOpening = {"AsicCtlOpen()", "PortCtlOpen()", "GetSwitchConfig()"};
const Calls kDiscovery = {"GetSerDesInfo(0)",           "GetSerDesInfo(0, 0)",     "GetSerDesInfo(0, 1)",
                          "GetPortHwConfig(65535/0/0)", "GetSerDesInfo(0, 0, rx)", "GetSerDesInfo(0, 0, tx)",
                          "GetPortHwConfig(65535/0/1)", "GetSerDesInfo(0, 1, rx)", "GetSerDesInfo(0, 1, tx)",
                          "GetPortHwConfig(65535/0/2)", "GetSerDesInfo(0, 2, rx)", "GetSerDesInfo(0, 2, tx)"};
const Calls kClosing = {"AsicCtlClose()", "PortCtlClose()"};
const Calls kRead = {"ReadSerDesLinkRegister(0, 2, 0, 0, 3, 1)"};

// A switch of 2 cores and 3 ports, and a folder for scripts that goes with the test.
class Session : public ToolTest {
 protected:
  void SetUp() override {
    ToolTest::SetUp();
    resetWaiting();
    serdesTopology = {};
    platform.portCount = 3;
    platform.coreCount = 2;
    std::string pattern = testing::TempDir() + "serdes-session-XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
  }

  void TearDown() override {
    std::filesystem::remove_all(folder_);
  }

  // Writes a script and gives its name.
  std::string script(const std::string& name, const std::string& lines) const {
    const std::string path = folder_ + "/" + name;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path) << lines;
    return path;
  }

  // `path` written longer, with folders that lead nowhere, to the length.
  static std::string lengthened(const std::string& path, std::size_t length) {
    const std::size_t slash = path.rfind('/') + 1;
    std::string filling(length - path.size(), '/');
    for (std::size_t i = 0; i < filling.size(); i += 2)
      filling[i] = i + 1 < filling.size() ? '.' : '/';
    return path.substr(0, slash) + filling + path.substr(slash);
  }

  static std::string commandList() {
    return printedBy([] { EXPECT_EQ(helpCmdHandler(0, nullptr), CMD_OK); });
  }

  static int runWith(std::vector<std::string> names) {
    names.insert(names.begin(), "serdes");
    std::vector<char*> arguments;
    for (std::string& name : names)
      arguments.push_back(name.data());
    arguments.push_back(nullptr);
    return runSession(static_cast<int>(names.size()), arguments.data());
  }

  static ProcessOutcome scripts(const std::vector<std::string>& names) {
    return inOwnProcess([&] { return runWith(names); });
  }

  static ProcessOutcome prompt(const std::string& typed) {
    return inOwnProcess([] { return runWith({}); }, typed);
  }

  // A session in a file system of its own whose root is the folder. Its result is kNoOwnRoot where the system does not
  // grant one. The process comes back before it ends, to where its leaks and counts can be looked at.
  ProcessOutcome scriptsBelowOwnRoot(const std::vector<std::string>& names) const {
    return inOwnProcess([&] {
      const int root = open("/", O_RDONLY), place = open(".", O_RDONLY);
      const bool moved = chroot(folder_.c_str()) == 0 || (unshare(CLONE_NEWUSER) == 0 && chroot(folder_.c_str()) == 0);
      const int result = moved && chdir("/") == 0 ? runWith(names) : kNoOwnRoot;
      const bool back = fchdir(root) == 0 && (!moved || chroot(".") == 0) && fchdir(place) == 0;
      return back ? result : -1000;
    });
  }

  static constexpr int kNoOwnRoot = 1000;

  std::string folder_;
};

TEST_F(Session, StartAndEndMakeExactlyTheseCalls) {
  const ProcessOutcome outcome = scripts({script("empty", "")});
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.out, kStart + kEnd);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.calls, kOpening + kDiscovery + kClosing);
}

TEST_F(Session, PromptFollowsTheCommandList) {
  const ProcessOutcome outcome = prompt("readRx 2 0 3\nexit\nreadRx 2 0 3\n");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.out, kStart + commandList() + "\n\nserdes: " + kReadLine + kSuccess + "serdes: " + kEnd);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.calls, kOpening + kDiscovery + kRead + kClosing);
}

TEST_F(Session, EndOfInputEndsThePrompt) {
  const ProcessOutcome outcome = prompt("");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.out, kStart + commandList() + "\n\nserdes: " + kEnd);
  EXPECT_EQ(outcome.calls, kOpening + kDiscovery + kClosing);
}

TEST_F(Session, NoArgumentsAtAllIsThePrompt) {
  const ProcessOutcome outcome = inOwnProcess([] { return runSession(0, nullptr); }, "san\n");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.out.substr(outcome.out.find("serdes: ")), "serdes: too few command args\n\nserdes: \n\n");
}

TEST_F(Session, LineThatStopsALoopAtThePromptIsNotRun) {
  selectResult = [] { return 1; };
  const ProcessOutcome outcome = prompt("loop readRx 2 0 3\nreadRx 1 0 1\nsan\n");
  EXPECT_EQ(outcome.out.substr(outcome.out.find("serdes: ")),
            "serdes: " + kReadLine + "That is 1 passes. To stop looping, enter <cr>.\n" + kSuccess +
                "serdes: too few command args\n\nserdes: \n\n");
  EXPECT_EQ(outcome.calls, kOpening + kDiscovery + kRead + kClosing);
}

TEST_F(Session, LoopAtThePromptSeesWhatWasTypedAhead) {
  // Nothing of the later lines may have been taken from the descriptor when the loop looks at it.
  selectResult = [] {
    std::string ahead(64, '\0');
    const ssize_t length = pread(STDIN_FILENO, ahead.data(), ahead.size(), lseek(STDIN_FILENO, 0, SEEK_CUR));
    return std::string(ahead, 0, static_cast<std::size_t>(length)) == "\nsan\n" ? 1 : 0;
  };
  const ProcessOutcome outcome = inOwnProcess(
      [] {
        static std::array<char, 256> buffer;
        (void)std::setvbuf(stdin, buffer.data(), _IOFBF, buffer.size());
        return runWith({});
      },
      "loop readRx 2 0 3\n\nsan\n");
  EXPECT_EQ(outcome.out.substr(outcome.out.find("serdes: ")),
            "serdes: " + kReadLine + "That is 1 passes. To stop looping, enter <cr>.\n" + kSuccess +
                "serdes: too few command args\n\nserdes: \n\n");
}

TEST_F(Session, LoopInAScriptDoesNotLookAtStandardInput) {
  selectResult = [] { return 1; };
  const ProcessOutcome outcome = scripts({script("loop", "loop readRx 2 0 3\n")});
  EXPECT_EQ(outcome.calls.size(), kOpening.size() + kDiscovery.size() + 10 + kClosing.size());
  EXPECT_EQ(outcome.out.substr(outcome.out.find("That is 10")), "That is 10 passes.\n" + kSuccess + kEnd);
}

TEST_F(Session, ScriptsRunInTheirOrder) {
  const ProcessOutcome outcome = scripts({script("first", "san\n"), script("second", "bogus\n")});
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.out, kStart + "too few command args\n\n" + kEnd + "unknown command\n\n" + kEnd);
  EXPECT_EQ(outcome.err, "");
}

TEST_F(Session, MissingScriptIsReportedAndTheNextOneRuns) {
  const ProcessOutcome outcome = scripts({folder_ + "/missing", script("second", "readRx 2 0 3\n")});
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.out, kStart + kReadLine + kSuccess + kEnd);
  EXPECT_EQ(outcome.err, kNoFile);
  EXPECT_EQ(outcome.calls, kOpening + kDiscovery + kRead + kClosing);
}

TEST_F(Session, EveryMissingScriptIsReported) {
  const ProcessOutcome outcome = scripts({folder_ + "/missing", "", folder_ + "/missing too"});
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.out, kStart);
  EXPECT_EQ(outcome.err, kNoFile + kNoFile + kNoFile);
  EXPECT_EQ(outcome.calls, kOpening + kDiscovery + kClosing);
}

TEST_F(Session, ExitInTheMiddleEndsOnlyItsOwnScript) {
  const ProcessOutcome outcome = scripts({script("first", "san\nexit\nreadRx 1 0 1\n"), script("second", "bogus\n")});
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.out, kStart + "too few command args\n\n" + kEnd + "unknown command\n\n" + kEnd);
  EXPECT_EQ(outcome.calls, kOpening + kDiscovery + kClosing);
}

TEST_F(Session, FailedCommandChangesNeitherTheExitStatusNorWhatFollows) {
  platform.fail("ReadSerDesLinkRegister", -5);
  const ProcessOutcome outcome = scripts({script("only", "readRx 2 0 3\nreadRx 2 0 3\n")});
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.out, kStart + "readRxRegisterCmdHandler: serdes err -5\nerror during command execution\n\n" +
                             kReadLine + kSuccess + kEnd);
}

TEST_F(Session, TopologyStaysFromOneScriptToTheNext) {
  const ProcessOutcome outcome = scripts({script("first", "setAsicNum 1\n"), script("second", "readRx 2 0 3\n")});
  ASSERT_GT(outcome.calls.size(), 3u);
  EXPECT_EQ(Calls(outcome.calls.end() - 3, outcome.calls.end()),
            Calls{"ReadSerDesLinkRegister(1, 2, 0, 0, 3, 1)"} + kClosing);
}

TEST_F(Session, ScriptThatIsAFolderEndsAtOnce) {
  const ProcessOutcome outcome = scripts({folder_, script("second", "san\n")});
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.out, kStart + kEnd + "too few command args\n\n" + kEnd);
  EXPECT_EQ(outcome.err, "Error reading commands: Is a directory\n");
}

TEST_F(Session, ScriptNameOf4095CharactersIsTakenWhole) {
  const ProcessOutcome outcome = scripts({lengthened(script("script", "san\n"), 4095)});
  EXPECT_EQ(outcome.out, kStart + "too few command args\n\n" + kEnd);
  EXPECT_EQ(outcome.err, "");
}

TEST_F(Session, LongerScriptNameIsCutAt4095Characters) {
  const std::string name = lengthened(script("script", "san\n"), 4095);
  for (const std::string& rest : {std::string("s"), std::string("/no/such/script"), std::string(5000, 'x')}) {
    const ProcessOutcome outcome = scripts({name + rest});
    EXPECT_EQ(outcome.out, kStart + "too few command args\n\n" + kEnd) << rest;
    EXPECT_EQ(outcome.err, "");
  }
}

TEST_F(Session, LongScriptNameThatDoesNotExistIsReported) {
  const ProcessOutcome outcome = scripts({lengthened(folder_ + "/missing/script", 9000), script("second", "san\n")});
  EXPECT_EQ(outcome.out, kStart + "too few command args\n\n" + kEnd);
  EXPECT_EQ(outcome.err, kNoFile);
}

TEST_F(Session, ScriptIsLookedForInTheImagesFolderToo) {
  script("norvex/conf/images/tune", "san\n");
  script("norvex/conf/images/more/tune", "bogus\n");
  const ProcessOutcome outcome = scriptsBelowOwnRoot({"tune", "more/tune", "/tune", "missing"});
  if (outcome.result == kNoOwnRoot) GTEST_SKIP() << "no file system of one's own here";
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.out, kStart + "too few command args\n\n" + kEnd + "unknown command\n\n" + kEnd +
                             "too few command args\n\n" + kEnd);
  EXPECT_EQ(outcome.err, kNoFile);
}

TEST_F(Session, ScriptAsNamedGoesBeforeTheImagesFolder) {
  script("norvex/conf/images/tune", "san\n");
  script("tune", "bogus\n");
  const ProcessOutcome outcome = scriptsBelowOwnRoot({"tune"});
  if (outcome.result == kNoOwnRoot) GTEST_SKIP() << "no file system of one's own here";
  EXPECT_EQ(outcome.out, kStart + "unknown command\n\n" + kEnd);
  EXPECT_EQ(outcome.err, "");
}

TEST_F(Session, PathInTheImagesFolderIsCutAt4095Characters) {
  script("norvex/conf/images/tune", "san\n");
  const std::string path = lengthened("/norvex/conf/images/tune", 4095);
  const std::string name = path.substr(std::string("/norvex/conf/images/").size());
  const ProcessOutcome outcome = scriptsBelowOwnRoot({name, name + "x"});
  if (outcome.result == kNoOwnRoot) GTEST_SKIP() << "no file system of one's own here";
  EXPECT_EQ(outcome.out, kStart + "too few command args\n\n" + kEnd + "too few command args\n\n" + kEnd);
  EXPECT_EQ(outcome.err, "");
}

TEST_F(Session, FailedStartIsReportedAndTheSessionRuns) {
  const std::string opening = "openSerdes: serdes err -5\n";
  const struct {
    const char* operation;
    std::string out;
    Calls calls;
  } rows[] = {
      {"AsicCtlOpen", opening, {"AsicCtlOpen()"}},
      {"PortCtlOpen", opening, {"AsicCtlOpen()", "PortCtlOpen()"}},
      {"GetSwitchConfig", opening, kOpening},
      {"GetSerDesInfo", kSwitchLines + "setAsicNumCmdHandler: serdes err -5\n", kOpening + Calls{"GetSerDesInfo(0)"}}};
  for (const auto& row : rows) {
    platform.faults.clear();
    platform.fail(row.operation, -5);
    const ProcessOutcome outcome = scripts({script("only", "bogus\n")});
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.out, row.out + "\nunknown command\n\n" + kEnd);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.calls, row.calls + kClosing);
  }
}

TEST_F(Session, FailedSwitchConfigurationLeavesNoAsicToSelect) {
  platform.fail("GetSwitchConfig", -7);
  const ProcessOutcome outcome = scripts({script("only", "setAsicNum 0\n")});
  EXPECT_EQ(outcome.out, "openSerdes: serdes err -7\n\ninvalid command parameter\n\n" + kEnd);
  EXPECT_EQ(outcome.calls, kOpening + kClosing);
}

TEST_F(Session, FailedStartRunsThePromptToo) {
  platform.fail("AsicCtlOpen", -5);
  const ProcessOutcome outcome = prompt("san\n");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.out,
            "openSerdes: serdes err -5\n\n" + commandList() + "\n\nserdes: too few command args\n\nserdes: " + kEnd);
}

TEST_F(Session, SwitchWithoutAsicsStartsWithoutATopology) {
  platform.switchConfig.NumASICs = 0;
  const ProcessOutcome outcome = scripts({script("only", "")});
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.out,
            "switchHwConfig.NumSlots:1\nswitchHwConfig.NumUserPorts:24\nswitchHwConfig.NumAuxPorts:2\n"
            "switchHwConfig.NumASICs:0\n\n" +
                kEnd);
  EXPECT_EQ(outcome.calls, kOpening + kClosing);
}

TEST_F(Session, FailedAsicCloseStillClosesThePortsAndGivesTheExitStatus) {
  platform.fail("AsicCtlClose", -9);
  const ProcessOutcome outcome = scripts({script("only", "")});
  EXPECT_EQ(outcome.result, -1);
  EXPECT_EQ(outcome.out, kStart + kEnd + "main()->closeSerdes(): serdes err -9\n");
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.calls, kOpening + kDiscovery + kClosing);
}

TEST_F(Session, PositiveResultOfClosingIsNoFailure) {
  platform.fail("AsicCtlClose", 9);
  const ProcessOutcome outcome = scripts({script("only", "")});
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.out, kStart + kEnd);
  EXPECT_EQ(outcome.calls, kOpening + kDiscovery + kClosing);
}

TEST_F(Session, FailedPortCloseGivesTheExitStatus) {
  platform.fail("PortCtlClose", -10);
  const ProcessOutcome outcome = prompt("exit\n");
  EXPECT_EQ(outcome.result, -1);
  EXPECT_EQ(outcome.out.substr(outcome.out.find("serdes: ")), "serdes: \n\nmain()->closeSerdes(): serdes err -10\n");
}

TEST_F(Session, LostOutputDoesNotKeepScriptsFromRunning) {
  const std::string only = script("only", "readRx 2 0 3\n");
  const ProcessOutcome outcome = inOwnProcess([&] {
    std::FILE* const full = std::fopen("/dev/full", "w");
    dup2(fileno(full), STDOUT_FILENO);
    return runWith({folder_ + "/missing", only});
  });
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.err, "Error writing output: No space left on device\n" + kNoFile);
  EXPECT_EQ(outcome.calls, kOpening + kDiscovery + kRead + kClosing);
}

// What opening and closing return, without a session around them.
class OpenAndClose : public ToolTest {
 protected:
  void SetUp() override {
    ToolTest::SetUp();
    serdesTopology = {};
    platform.portCount = platform.coreCount = 0;
  }

  static Outcome open() {
    Outcome outcome;
    platform.calls.clear();
    outcome.out = printedBy([&] { outcome.status = openSerdes(0, nullptr); });
    outcome.calls = platform.calls;
    return outcome;
  }
};

TEST_F(OpenAndClose, OpeningPrintsTheSwitchAndSelectsAsic0) {
  EXPECT_EQ(open(), printed(kSwitchLines + "current asicNum:0, coreCount:0, portCount:0\n",
                            kOpening + Calls{"GetSerDesInfo(0)"}));
  EXPECT_EQ(serdesTopology.switchHwConfig.NumASICs, 2u);
}

TEST_F(OpenAndClose, FieldsOfTheSwitchArePrintedAsSignedNumbers) {
  platform.switchConfig.NumSlots = -1;
  platform.switchConfig.NumUserPorts = 2147483647;
  platform.switchConfig.NumAuxPorts = 0;
  platform.switchConfig.NumASICs = 0xFFFFFFFF;
  EXPECT_EQ(open().out,
            "switchHwConfig.NumSlots:-1\nswitchHwConfig.NumUserPorts:2147483647\nswitchHwConfig.NumAuxPorts:0\n"
            "switchHwConfig.NumASICs:-1\ncurrent asicNum:0, coreCount:0, portCount:0\n");
}

TEST_F(OpenAndClose, StatusOfTheTopologyIsTheStatusOfOpening) {
  platform.fail("GetSerDesInfo", -4);
  EXPECT_EQ(open().status, CMD_EXEC_ERROR);
  platform.switchConfig.NumASICs = 0;
  EXPECT_EQ(open().status, CMD_BAD_PARAM);
}

TEST_F(OpenAndClose, OpeningDoesNotCountAsACommand) {
  currentCommandIndex = 17;
  EXPECT_EQ(open().status, CMD_OK);
  EXPECT_EQ(currentCommandIndex, 17u);
}

TEST_F(OpenAndClose, ClosingClosesBothAndGivesTheFirstResultThatIsNotZero) {
  const struct {
    int asic, port, result;
  } rows[] = {{0, 0, 0}, {-1, -2, -1}, {0, -2, -2}, {5, -2, 5}, {INT_MIN, 0, INT_MIN}, {0, 7, 7}};
  for (const auto& row : rows) {
    SetUp();
    platform.fail("AsicCtlClose", row.asic);
    platform.fail("PortCtlClose", row.port);
    EXPECT_EQ(closeSerdes(), row.result);
    EXPECT_EQ(platform.calls, kClosing);
  }
}

TEST_F(OpenAndClose, ExitIgnoresItsArgument) {
  EXPECT_EQ(run("exit"), refused(CMD_EXIT));
  EXPECT_EQ(run("quit"), refused(CMD_EXIT));
  EXPECT_EQ(run("exit 5"), refused(CMD_EXIT));
  EXPECT_EQ(exitCmdHandler(0, nullptr), CMD_EXIT);
}

}  // namespace
}  // namespace recording
