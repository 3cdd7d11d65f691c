// SPDX-License-Identifier: MIT
#include "pager.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>

#include "messages.h"

namespace unwml {
namespace {

constexpr const char *kDefaultPager = "less";

// Whether the first word of a command is a program, as far as that can be told without a shell.
bool IsInstalled(const std::string &command) {
  const std::string program = command.substr(0, command.find(' '));
  if (program.find_first_of("|&;<>()$`\\\"'*?[#~=%/") != std::string::npos) return true;
  const char *const path = std::getenv("PATH");
  for (std::string_view rest = path == nullptr ? "" : path; !rest.empty();) {
    const std::size_t end = std::min(rest.find(':'), rest.size());
    const std::string file = std::string(rest.substr(0, end)) + '/' + program;
    if (access(file.c_str(), X_OK) == 0) return true;
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return false;
}

class SpawnSettings {
 public:
  SpawnSettings() {
    posix_spawn_file_actions_init(&actions_);
    posix_spawnattr_init(&attributes_);
    // Signals are to it what they are to other programs.
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes_, &none);
    sigset_t standard;
    sigemptyset(&standard);
    sigaddset(&standard, SIGPIPE);
    sigaddset(&standard, SIGXFSZ);
    posix_spawnattr_setsigdefault(&attributes_, &standard);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  ~SpawnSettings() {
    posix_spawnattr_destroy(&attributes_);
    posix_spawn_file_actions_destroy(&actions_);
  }
  SpawnSettings(const SpawnSettings &) = delete;
  SpawnSettings &operator=(const SpawnSettings &) = delete;

  pid_t Start(const std::string &command, int input) {
    posix_spawn_file_actions_adddup2(&actions_, input, STDIN_FILENO);
    std::string shell = "sh";
    std::string option = "-c";
    std::string text = command;
    std::array<char *, 4> arguments = {shell.data(), option.data(), text.data(), nullptr};
    pid_t process = -1;
    const int error =
        posix_spawn(&process, "/bin/sh", &actions_, &attributes_, arguments.data(), environ);
    if (error != 0) throw std::system_error(error, std::generic_category(), command);
    return process;
  }

 private:
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

Descriptor CopyOf(int stream) {
  return Descriptor(fcntl(stream, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

}  // namespace

std::optional<std::string> PagerCommand() {
  for (const char *variable : {"UNWML_PAGER", "PAGER"}) {
    const char *const value = std::getenv(variable);
    if (value == nullptr) continue;
    const std::string command = value;
    if (command.empty() || command == "cat") return std::nullopt;
    if (IsInstalled(command)) return command;
    Tell(variable, "there is no program \"" + command + "\"");
    return std::nullopt;
  }
  if (!IsInstalled(kDefaultPager)) return std::nullopt;
  return kDefaultPager;
}

bool ExceedsScreen(std::string_view text) {
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_row == 0 || size.ws_col == 0) {
    return false;
  }
  std::size_t rows = 0;
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    rows += 1 + end / (size.ws_col + std::size_t{1});
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return rows >= size.ws_row;
}

Pager::Pager(const std::string &command) {
  // Less shows colours, and leaves the text on the screen.
  setenv("LESS", "FRX", 0);
  setenv("LV", "-c", 0);
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) ThrowSystem(command);
  const Descriptor input(ends[0]);
  const Descriptor writer(ends[1]);
  SpawnSettings settings;
  const auto held = HoldSignals();
  process_ = settings.Start(command, input.Get());
  output_ = CopyOf(STDOUT_FILENO);
  dup2(writer.Get(), STDOUT_FILENO);
  if (isatty(STDERR_FILENO) != 0) {
    errors_ = CopyOf(STDERR_FILENO);
    dup2(writer.Get(), STDERR_FILENO);
  }
  Begin(held);
}

Pager::~Pager() {
  const auto held = HoldSignals();
  dup2(output_.Get(), STDOUT_FILENO);
  if (errors_.Get() >= 0) dup2(errors_.Get(), STDERR_FILENO);
  Wait();
  End(held);
}

// The terminal is the pager's until it ends.
void Pager::Undo() noexcept {
  const Descriptor nowhere(open("/dev/null", O_WRONLY | O_CLOEXEC));
  dup2(nowhere.Get(), STDOUT_FILENO);
  if (errors_.Get() >= 0) dup2(nowhere.Get(), STDERR_FILENO);
  Wait();
}

void Pager::Wait() const {
  while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) continue;
}

}  // namespace unwml
