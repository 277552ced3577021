// The command list, and repeating a command.
#include "shell/help_and_loop.h"

#include <sys/select.h>
#include <unistd.h>

#include <cstdio>

#include "shell/command_reader.h"
#include "shell/command_table.h"
#include "shell/output.h"

namespace {

constexpr unsigned kPauseSeconds = 2;
constexpr unsigned kScriptPasses = 10;

// Waits for the pause or until standard input is readable; true when it is. Standard input is unbuffered at the
// prompt, so a line that was typed ahead is seen here too.
bool inputArrivesInPause() {
  fd_set readable;
  FD_ZERO(&readable);
  FD_SET(STDIN_FILENO, &readable);
  timeval pause = {.tv_sec = kPauseSeconds, .tv_usec = 0};
  return select(STDIN_FILENO + 1, &readable, nullptr, nullptr, &pause) > 0;
}

// Discards standard input up to a newline or a NUL. The end of input does not end the discarding: a terminal may go on
// after it, and until then there is nothing to do but to sleep.
void discardLine() {
  for (int c = std::getchar(); c != '\n' && c != '\0'; c = std::getchar()) {
    if (c != EOF) continue;
    std::clearerr(stdin);
    sleep(1);
  }
}

}  // namespace

CmdStatus helpCmdHandler(int, char*[]) {
  std::printf("%-20s %-50s %s\n", "command             ", "command arguments  ", "shortcut/alt command");
  std::printf("%-20s %-50s %s\n",
              "====================", "==================================================", "====================");
  for (const CmdTableEntry* row = cmdTable.data(); row->name != nullptr; ++row) {
    std::printf("%-20s %-50s %s \n", row->name, row->argHelp, row->shortcut);
  }
  std::printf("\nNOTES:\n");
  std::printf(" *If [portList] is empty, the command will be rejected\n");
  std::printf(" *Detailed command help can be displayed by entering <cmd> help or <cmd> ?\n");
  std::printf(" *When addressing links, -1 can be used to broadcast to all links per port\n");
  std::printf(" *Set/Write commands are rejected if more than one port type is selected (GL,XG,EXG)\n");
  std::printf(" *Commands beginning with 'e' are specific to ethernet ports (e.g. eset...)\n");
  return CMD_OK;
}

CmdStatus loopCmdHandler(int wordCount, char* words[]) {
  for (unsigned pass = 1;; ++pass) {
    const CmdStatus status = dispatchCommand(wordCount - 1, words + 1);
    if (status != CMD_OK) return status;
    if (interactive) {
      std::printf("That is %u passes. To stop looping, enter <cr>.\n", pass);
      flushOutput(stdout);
      if (inputArrivesInPause()) {
        discardLine();
        return status;
      }
    } else {
      std::printf("That is %u passes.\n", pass);
      if (pass >= kScriptPasses) return status;
      flushOutput(stdout);
      sleep(kPauseSeconds);
    }
    std::printf("\n");
  }
}
