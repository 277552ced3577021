// Runs on the disk.
#include "serdesctl/store/run_store.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <utility>

#include "serdesctl/base/errors.h"
#include "serdesctl/plan/plan_json.h"
#include "serdesctl/state/json_place.h"

namespace serdesctl {
namespace {

constexpr std::size_t kMostBytes = 64U << 20;
constexpr int kSchemaVersion = 1;
constexpr const char* kRunFile = "/run.json";
constexpr const char* kLockFile = "/lock";
constexpr const char* kConfirmedFile = "/confirmed";

constexpr std::array<const char*, 8> kStateNames = {"running",     "waiting", "done",        "differs",
                                                    "rolled back", "failed",  "interrupted", "kept"};

// The texts of a record, by their names in the file.
template <typename Record, typename Visit>
void eachText(Record& r, Visit&& visit) {
  visit("run", r.run);
  visit("time", r.time);
  visit("user", r.user);
  visit("from", r.from);
  visit("host", r.host);
  visit("target", r.target);
  visit("what", r.what);
  visit("reason", r.reason);
  visit("confirm_by", r.confirmBy);
  visit("undoes", r.undoes);
  visit("undone_by", r.undoneBy);
}

void writeRecord(const std::string& folder, const RunRecord& record) {
  Json json = {{"schema", kSchemaVersion}, {"kind", "run"}};
  eachText(record, [&](const char* name, const std::string& text) { json[name] = text; });
  json["state"] = runStateName(record.state);
  json["steps"] = record.steps;
  json["sent"] = record.sent;
  writeFileWhole(folder + kRunFile, jsonLine(json));
}

RunState stateAt(const JsonPlace& place) {
  const std::string text = place.text();
  for (std::size_t i = 0; i < kStateNames.size(); ++i) {
    if (text == kStateNames[i]) return static_cast<RunState>(i);
  }
  place.fail("no state of a run");
}

RunRecord readRecord(const std::string& file) {
  const Json json = parseJson(readFile(file, kMostBytes), file);
  const JsonPlace place(file, json);
  RunRecord record;
  eachText(record, [&](const char* name, std::string& text) { text = place.at(name).text(); });
  record.state = stateAt(place.at("state"));
  record.steps = static_cast<std::size_t>(place.at("steps").count());
  record.sent = static_cast<std::size_t>(place.at("sent").count());
  return record;
}

bool isThere(const std::string& file) {
  return ::access(file.c_str(), F_OK) == 0;
}

// Whether the process that does the run lives.
bool isAlive(const std::string& folder) {
  const Fd file(::open((folder + kLockFile).c_str(), O_RDONLY | O_CLOEXEC));
  return file.isOpen() && ::flock(file.get(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

bool isUnderWay(RunState state) {
  return state == RunState::kRunning || state == RunState::kWaiting;
}

std::string runsFolder(const std::string& journalFolder) {
  return journalFolder + "/runs";
}

// A word for file names, and a number that tells targets apart whose words are the same: a simulated switch is the one
// that its state file keeps.
std::string folderOf(const std::string& journalFolder, const Target& target) {
  std::string name = target.name.substr(0, 80);
  const auto unfit = [](unsigned char c) { return std::isalnum(c) == 0 && c != '.' && c != '-'; };
  std::replace_if(name.begin(), name.end(), unfit, '_');
  const std::string who = target.name + "\n" + (target.name.starts_with("sim") ? target.lockFile : "");
  std::array<char, 20> number;
  std::snprintf(number.data(), number.size(), "-%016llx", static_cast<unsigned long long>(hashOf(who)));
  return runsFolder(journalFolder) + "/" + name + number.data();
}

std::vector<std::string> foldersIn(const std::string& folder) {
  std::vector<std::string> found;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    if (entry->is_directory(error)) found.push_back(entry->path().string());
  }
  std::sort(found.begin(), found.end());
  return found;
}

// A process that is gone has left its run as it was. It may have ended it well between two looks.
FoundRun findRun(const std::string& folder) {
  FoundRun found = {.record = readRecord(folder + kRunFile), .folder = folder};
  if (!isUnderWay(found.record.state) || isAlive(folder)) return found;
  found.record = readRecord(folder + kRunFile);
  if (isUnderWay(found.record.state)) found.record.state = RunState::kInterrupted;
  return found;
}

std::vector<FoundRun> runsIn(const std::string& folder, const StoreNotice& notice) {
  std::vector<FoundRun> runs;
  for (const std::string& run : foldersIn(folder)) {
    if (!isThere(run + kRunFile)) continue;  // ended before it could send anything
    try {
      runs.push_back(findRun(run));
    } catch (const Error& error) {
      notice(error.what());
    }
  }
  return runs;
}

// Without its record it is no run any more, however far the rest comes.
void removeRun(const std::string& folder) {
  std::error_code error;
  (void)std::filesystem::remove(folder + kRunFile, error);
  (void)std::filesystem::remove_all(folder, error);
}

// What was never a run, and the oldest of too many ended ones, go.
void makeRoom(const std::string& folder, std::size_t most) {
  for (const std::string& run : foldersIn(folder)) {
    if (!isThere(run + kRunFile) && isThere(run + kLockFile) && !isAlive(run)) removeRun(run);
  }
  const std::vector<FoundRun> runs = runsIn(folder, [](const std::string&) {});
  std::size_t tooMany = runs.size() >= most ? runs.size() - most + 1 : 0;
  for (const FoundRun& run : runs) {
    if (tooMany == 0) break;
    if (isUnderWay(run.record.state) || run.isLeft()) continue;
    removeRun(run.folder);
    --tooMany;
  }
}

void makeFolder(const std::string& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) throw WriteError(folder + ": " + error.message());
}

}  // namespace

const char* runStateName(RunState state) {
  return kStateNames[static_cast<std::size_t>(state)];
}

bool FoundRun::canBeUndone() const {
  return !isUnderWay(record.state) && record.state != RunState::kRolledBack && record.undoneBy.empty();
}

SwitchState FoundRun::before() const {
  return readSave(folder + "/before.json").state;
}

std::optional<SwitchState> FoundRun::after() const {
  const std::string file = folder + "/after.json";
  return isThere(file) ? std::optional(readSave(file).state) : std::nullopt;
}

std::vector<PlannedStep> FoundRun::steps() const {
  const std::string file = folder + "/steps.json";
  const Json json = parseJson(readFile(file, kMostBytes), file);
  return readSteps(JsonPlace(file, json).at("steps"));
}

void FoundRun::requireWritable() const {
  serdesctl::requireWritable(folder + kRunFile);
}

void FoundRun::rewrite() const {
  writeRecord(folder, record);
}

FoundRun FoundRun::again() const {
  return findRun(folder);
}

void FoundRun::confirm() const {
  writeFileWhole(folder + kConfirmedFile, "");
}

std::vector<FoundRun> findRuns(const std::string& journalFolder, const Target& target, const StoreNotice& notice) {
  return runsIn(folderOf(journalFolder, target), notice);
}

std::vector<FoundRun> findRuns(const std::string& journalFolder, const StoreNotice& notice) {
  std::vector<FoundRun> all;
  for (const std::string& folder : foldersIn(runsFolder(journalFolder))) {
    std::vector<FoundRun> runs = runsIn(folder, notice);
    std::move(runs.begin(), runs.end(), std::back_inserter(all));
  }
  return all;
}

OpenRun::OpenRun(const std::string& journalFolder, const Target& target, RunRecord record, const Save& before,
                 std::size_t most)
    : record_(std::move(record)) {
  const std::string folder = folderOf(journalFolder, target);
  makeFolder(folder);
  makeRoom(folder, most);
  folder_ = folder + "/" + record_.run;
  makeFolder(folder_);
  lock_.reset(::open((folder_ + kLockFile).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644));
  if (!lock_.isOpen() || ::flock(lock_.get(), LOCK_EX) != 0) throw WriteError(folder_ + kLockFile + ": " + errorText());
  writeFileWhole(folder_ + "/before.json", saveText(before));
  syncFolder(folder);
}

void OpenRun::add(const std::vector<PlannedStep>& steps, const std::vector<std::string>& wayBack) {
  steps_.insert(steps_.end(), steps.begin(), steps.end());
  writeFileWhole(folder_ + "/steps.json", jsonLine({{"schema", kSchemaVersion}, {"steps", stepsJson(steps_)}}));
  std::string script;
  for (const std::string& line : wayBack)
    script += line + "\n";
  writeFileWhole(folder_ + "/way_back", script);
  record_.steps = steps_.size();
  write();
}

void OpenRun::sendNext() {
  ++record_.sent;
  try {
    write();
  } catch (const WriteError&) {
    --record_.sent;
    throw;
  }
}

void OpenRun::waitForConfirmation(const std::string& until) {
  record_.state = RunState::kWaiting;
  record_.confirmBy = until;
  write();
}

bool OpenRun::isConfirmed() const {
  return isThere(folder_ + kConfirmedFile);
}

void OpenRun::stopWaiting() {
  if (record_.state != RunState::kWaiting) return;
  record_.state = RunState::kRunning;
  write();
}

void OpenRun::discard() {
  removeRun(folder_);
}

void OpenRun::end(RunState state, const std::string& reason, const Save* after) {
  if (after != nullptr) writeFileWhole(folder_ + "/after.json", saveText(*after));
  record_.state = state;
  record_.reason = reason;
  write();
}

void OpenRun::write() const {
  writeRecord(folder_, record_);
}

}  // namespace serdesctl
