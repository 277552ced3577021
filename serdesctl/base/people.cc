// Who runs this program, where, and when.
#include "serdesctl/base/people.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <ctime>

#include "serdesctl/base/files.h"

namespace serdesctl {
namespace {

std::string effectiveUser() {
  const uid_t user = ::geteuid();
  const passwd* const entry = ::getpwuid(user);
  return entry != nullptr ? entry->pw_name : std::to_string(user);
}

}  // namespace

UtcTime utcNow() {
  return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
}

std::string utcText(UtcTime time) {
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(time - day);
  std::array<char, 80> text;
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%06ldZ", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()), static_cast<long>(clock.subseconds().count()));
  return text.data();
}

std::string userName() {
  const std::string user = effectiveUser();
  const auto behindSudo = environmentVariable("SUDO_USER");
  return behindSudo && *behindSudo != user ? *behindSudo + " as " + user : user;
}

std::string hostName() {
  std::array<char, 256> name{};
  if (::gethostname(name.data(), name.size() - 1) != 0) return "unknown";
  return name.data();
}

std::string origin() {
  if (const auto client = environmentVariable("SSH_CLIENT")) return client->substr(0, client->find(' '));
  const char* const terminal = ::ttyname(STDIN_FILENO);
  return terminal != nullptr ? terminal : "";
}

}  // namespace serdesctl
