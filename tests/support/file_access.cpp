#include "support/file_access.h"

#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace tarvex::test {

namespace {

constexpr int kFileAccessCapabilities[] = {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH};

std::string Failure(const char* what) {
  return std::string(what) + ": " + std::strerror(errno);
}

// Clears the capabilities from the effective, permitted and inheritable sets (always allowed:
// a process may give up what it has).
std::string ClearFromProcessSets() {
  __user_cap_header_struct header{};
  header.version = _LINUX_CAPABILITY_VERSION_3;
  header.pid = 0;
  __user_cap_data_struct data[_LINUX_CAPABILITY_U32S_3] = {};
  if (::syscall(SYS_capget, &header, data) != 0) return Failure("capget");
  for (int cap : kFileAccessCapabilities) {
    const std::uint32_t bit = 1u << (cap % 32);
    data[cap / 32].effective &= ~bit;
    data[cap / 32].permitted &= ~bit;
    data[cap / 32].inheritable &= ~bit;
  }
  if (::syscall(SYS_capset, &header, data) != 0) return Failure("capset");
  return {};
}

// Writes all of text to fd.
void WriteAll(int fd, const std::string& text) {
  std::size_t done = 0;
  while (done < text.size()) {
    ssize_t n = ::write(fd, text.data() + done, text.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return;
    done += static_cast<std::size_t>(n);
  }
}

std::string ReadAll(int fd) {
  std::string text;
  char buffer[4096];
  for (;;) {
    ssize_t n = ::read(fd, buffer, sizeof buffer);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return text;
    text.append(buffer, static_cast<std::size_t>(n));
  }
}

}  // namespace

std::string DropFileAccessOverride() {
  // Root gets the bounding set back at every execve: drop them there first (this needs
  // CAP_SETPCAP, which root has). Another user gets nothing back at execve but its ambient
  // set, cleared below.
  if (::geteuid() == 0) {
    for (int cap : kFileAccessCapabilities) {
      if (::prctl(PR_CAPBSET_READ, cap, 0, 0, 0) == 1 &&
          ::prctl(PR_CAPBSET_DROP, cap, 0, 0, 0) != 0) {
        return Failure("prctl(PR_CAPBSET_DROP)");
      }
    }
  }
  if (::prctl(PR_CAP_AMBIENT, PR_CAP_AMBIENT_CLEAR_ALL, 0, 0, 0) != 0 && errno != EINVAL) {
    return Failure("prctl(PR_CAP_AMBIENT_CLEAR_ALL)");
  }
  return ClearFromProcessSets();
}

std::string RunWithoutFileAccessOverride(const std::function<std::string()>& fn) {
  int pipe_fds[2];
  if (::pipe(pipe_fds) != 0) return "child: " + Failure("pipe");
  pid_t pid = ::fork();
  if (pid < 0) return "child: " + Failure("fork");
  if (pid == 0) {
    ::close(pipe_fds[0]);
    std::string dropped = DropFileAccessOverride();
    WriteAll(pipe_fds[1], dropped.empty() ? fn() : "child: " + dropped);
    ::close(pipe_fds[1]);
    ::_exit(0);
  }
  ::close(pipe_fds[1]);
  std::string text = ReadAll(pipe_fds[0]);
  ::close(pipe_fds[0]);
  int status = 0;
  if (::waitpid(pid, &status, 0) != pid || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    return "child: ended abnormally (status " + std::to_string(status) + ") after: " + text;
  }
  return text;
}

}  // namespace tarvex::test
