// What the subcommands do. Each is thin: it puts together what stands below and prints.
#pragma once

#include "serdesctl/session/conversation.h"
#include "serdesctl/subcommands/options.h"

namespace serdesctl {

int performRun(const Options& options);
int performShow(const Options& options);
int performParse(const Options& options);
int performHealth(const Options& options);
int performJournal(const Options& options);
int performSave(const Options& options);
int performRehearse(const Options& options);
int performTwin(const Options& options);
int performDiff(const Options& options);
int performSettings(const Options& options);
int performPlan(const Options& options);
int performApply(const Options& options);
int performRestore(const Options& options);
int performUndo(const Options& options);
int performHistory(const Options& options);
int performPending(const Options& options);
int performConfirm(const Options& options);

// Says which runs on the target were interrupted, and nobody has taken back. `words` name the target.
void warnOfRunsLeft(const Target& target, const TargetWords& words);

// What is typed for it: "serdesctl -t sim --state lab undo RUN".
std::string commandFor(const TargetWords& words, const std::string& subcommand);

// The target that the command line names, with the lock's patience, to be opened.
Target chosenTarget(const CommonOptions& options);

// Ends the tool; throws ConnectionError when it ends badly.
void closeTool(Conversation& tool, const Target& target);

}  // namespace serdesctl
