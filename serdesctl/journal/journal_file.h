// The journal's files: lines that many processes append, on the disk when told so, and never half a line for long.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "serdesctl/base/files.h"
#include "serdesctl/base/waiting.h"

namespace serdesctl {

// What readers and writers say about a journal that is not as it should be.
using Notice = std::function<void(const std::string& text)>;

// How large a journal may become: a file of this size makes room by a new one, and as many old ones are kept. And how
// long others may have it locked.
struct JournalBounds {
  std::size_t mostBytes = 2U << 20;
  unsigned oldFiles = 7;
  Seconds othersMayTake{30};  // many of them, on a slow disk
};

class JournalFile {
 public:
  // Without a folder nothing can be appended.
  JournalFile(std::string folder, Notice notice, JournalBounds bounds = {});

  // Appends whole lines; `onDisk` waits until the disk has them. A half line that a killed writer left is cut off
  // first. On failure nothing is appended, and WriteError is thrown.
  void append(std::string_view lines, bool onDisk);

 private:
  std::size_t openLocked();
  bool isCurrent() const;
  std::size_t cutTornLine(std::size_t size);
  void rotate();
  [[noreturn]] void fail(const std::string& what) const;

  std::string folder_;
  std::string name_;
  Notice notice_;
  JournalBounds bounds_;
  Fd file_;
};

// The lines of a folder's journal, oldest first. A torn last one is left out, with a notice; no journal is no line. A
// file that cannot be read is told to `unreadable`.
std::vector<std::string> readJournal(const std::string& folder, const Notice& notice, const Notice& unreadable);

// Where this process writes its journal; made if need be. Empty when there is no place.
std::string journalFolder();

// All the folders in which this user's entries may be.
std::vector<std::string> journalFolders();

}  // namespace serdesctl
