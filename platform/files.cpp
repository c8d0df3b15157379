#include "platform/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace wavetrace::platform {
namespace {

std::string Env(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

std::string Home() {
  std::string home = Env("HOME");
  return home.empty() ? "/tmp" : home;
}

std::string WithoutTrailingSlash(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

}  // namespace

std::string ConfigFolder() {
  if (std::string own = Env("WAVETRACE_HOME"); !own.empty()) return WithoutTrailingSlash(own);
  if (std::string xdg = Env("XDG_CONFIG_HOME"); !xdg.empty() && xdg[0] == '/') {
    return WithoutTrailingSlash(xdg) + "/wavetrace-pro";
  }
  return Home() + "/.config/wavetrace-pro";
}

std::string DocumentsFolder() {
  if (std::string docs = Env("XDG_DOCUMENTS_DIR"); !docs.empty() && docs[0] == '/') {
    return WithoutTrailingSlash(docs);
  }
  return WithoutTrailingSlash(Home());
}

bool MakeFolders(const std::string& path) {
  if (path.empty()) return false;
  for (size_t pos = 1; pos <= path.size(); ++pos) {
    if (pos != path.size() && path[pos] != '/') continue;
    std::string part = path.substr(0, pos);
    if (mkdir(part.c_str(), 0700) != 0 && errno != EEXIST) return false;
  }
  struct stat info {};
  if (stat(path.c_str(), &info) != 0) return false;
  if (!S_ISDIR(info.st_mode)) {
    errno = ENOTDIR;
    return false;
  }
  return true;
}

bool FileExists(const std::string& path) {
  return access(path.c_str(), F_OK) == 0;
}

std::optional<uint64_t> FileSize(const std::string& path) {
  struct stat info {};
  if (stat(path.c_str(), &info) != 0) return std::nullopt;
  if (S_ISDIR(info.st_mode)) {
    errno = EISDIR;
    return std::nullopt;
  }
  return static_cast<uint64_t>(info.st_size);
}

std::optional<std::string> ReadWholeFile(const std::string& path) {
  int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return std::nullopt;
  std::string contents;
  char chunk[16384];
  for (;;) {
    ssize_t n = read(fd, chunk, sizeof chunk);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      int saved = errno;
      close(fd);
      errno = saved;
      return std::nullopt;
    }
    if (n == 0) break;
    contents.append(chunk, static_cast<size_t>(n));
  }
  close(fd);
  return contents;
}

bool WriteFileAtomically(const std::string& path, const std::string& contents) {
  std::string temp = path + ".tmp-" + std::to_string(getpid());
  int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) return false;
  size_t done = 0;
  while (done < contents.size()) {
    ssize_t n = write(fd, contents.data() + done, contents.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      int saved = n < 0 ? errno : ENOSPC;
      close(fd);
      unlink(temp.c_str());
      errno = saved;
      return false;
    }
    done += static_cast<size_t>(n);
  }
  int syncRc = fsync(fd);
  int saved = errno;
  if (close(fd) != 0 && syncRc == 0) syncRc = -1, saved = errno;
  if (syncRc != 0) {
    unlink(temp.c_str());
    errno = saved;
    return false;
  }
  if (rename(temp.c_str(), path.c_str()) != 0) {
    saved = errno;
    unlink(temp.c_str());
    errno = saved;
    return false;
  }
  return true;
}

}  // namespace wavetrace::platform
