#include "platform/instance_lock.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <functional>

#include "platform/files.h"

namespace wavetrace::platform {
namespace {

// Titles may hold blanks and '#': file and socket names use hex.
std::string Encode(const std::string& text) {
  static constexpr char kHex[] = "0123456789abcdef";
  std::string out;
  for (unsigned char c : text) {
    out += kHex[c >> 4];
    out += kHex[c & 15];
  }
  return out;
}

bool FillAddress(const std::string& name, sockaddr_un& address, socklen_t& length) {
  std::memset(&address, 0, sizeof address);
  address.sun_family = AF_UNIX;
  // Abstract name: a leading zero byte, no file, gone with the process.
  if (name.size() + 1 > sizeof address.sun_path) return false;
  std::memcpy(address.sun_path + 1, name.data(), name.size());
  length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
  return true;
}

}  // namespace

InstanceLock::~InstanceLock() {
  Release();
}

std::string InstanceLock::LockFile(const std::string& title) const {
  return folder_ + "/instance-" + Encode(title) + ".lock";
}

std::string InstanceLock::SocketName(const std::string& title) const {
  return "wavetrace-pro/" + std::to_string(std::hash<std::string>{}(folder_)) + "/" + Encode(title);
}

bool InstanceLock::IsTitleInUse(const std::string& title) const {
  int fd = open(LockFile(title).c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  bool held = flock(fd, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  close(fd);
  return held;
}

bool InstanceLock::Acquire(const std::string& title) {
  Release();
  if (!MakeFolders(folder_)) return false;
  int fd = open(LockFile(title).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (fd < 0) return false;
  if (flock(fd, LOCK_EX | LOCK_NB) != 0) {
    close(fd);
    return false;
  }
  lockFd_ = fd;
  title_ = title;
  return true;
}

bool InstanceLock::RequestActivation(const std::string& title) const {
  sockaddr_un address{};
  socklen_t length = 0;
  if (!FillAddress(SocketName(title), address, length)) return false;
  int fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (fd < 0) return false;
  static constexpr char kRequest[] = "ACTIVATE";
  bool sent = sendto(fd, kRequest, sizeof kRequest - 1, MSG_DONTWAIT, reinterpret_cast<sockaddr*>(&address),
                     length) >= 0;
  close(fd);
  return sent;
}

void InstanceLock::Listen(std::function<void()> onActivate) {
  if (lockFd_ < 0 || listener_.joinable()) return;
  sockaddr_un address{};
  socklen_t length = 0;
  if (!FillAddress(SocketName(title_), address, length)) return;
  int fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (fd < 0) return;
  if (bind(fd, reinterpret_cast<sockaddr*>(&address), length) != 0) {
    close(fd);
    return;
  }
  socketFd_ = fd;
  stop_.Clear();
  listener_ = std::thread([this, onActivate = std::move(onActivate)] {
    for (;;) {
      pollfd fds[2] = {{socketFd_, POLLIN, 0}, {stop_.Fd(), POLLIN, 0}};
      if (poll(fds, 2, -1) < 0 && errno != EINTR) return;
      if (fds[1].revents) return;
      if (!(fds[0].revents & POLLIN)) continue;
      char buffer[64];
      while (recv(socketFd_, buffer, sizeof buffer, 0) > 0) {
        if (onActivate) onActivate();
      }
    }
  });
}

void InstanceLock::Release() {
  if (listener_.joinable()) {
    stop_.Signal();
    listener_.join();
  }
  if (socketFd_ >= 0) close(socketFd_);
  socketFd_ = -1;
  if (lockFd_ >= 0) {
    // The file stays: removing it could race a newcomer that opened it.
    close(lockFd_);
  }
  lockFd_ = -1;
  title_.clear();
}

}  // namespace wavetrace::platform
