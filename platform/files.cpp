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
  std::string home = WithoutTrailingSlash(Home());
  struct stat info {};
  if (stat((home + "/Documents").c_str(), &info) == 0 && S_ISDIR(info.st_mode)) return home + "/Documents";
  return home;
}

std::string ExecutableFolder() {
  std::string path(4096, '\0');
  ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
  if (length <= 0 || static_cast<size_t>(length) >= path.size()) return {};
  path.resize(static_cast<size_t>(length));
  size_t slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash == 0 ? 1 : slash);
}

SysResult MakeFolders(const std::string& path) {
  if (path.empty()) return {0, "mkdir"};
  for (size_t pos = 1; pos <= path.size(); ++pos) {
    if (pos != path.size() && path[pos] != '/') continue;
    std::string part = path.substr(0, pos);
    if (mkdir(part.c_str(), 0700) != 0 && errno != EEXIST) return FailedCall("mkdir");
  }
  // Something that is not a folder may stand in the way: opening it as one
  // says so (ENOTDIR).
  int fd = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return FailedCall("open");
  close(fd);
  return {};
}

bool FileExists(const std::string& path) {
  return access(path.c_str(), F_OK) == 0;
}

std::string ExecutablePath() {
  char path[4096];
  ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
  return length > 0 ? std::string(path, static_cast<size_t>(length)) : std::string();
}

SysResult FileSize(const std::string& path, uint64_t& size) {
  struct stat info {};
  if (stat(path.c_str(), &info) != 0) return FailedCall("stat");
  if (S_ISDIR(info.st_mode)) return {0, "not a file"};
  size = static_cast<uint64_t>(info.st_size);
  return {};
}

SysResult ReadWholeFile(const std::string& path, std::string& contents) {
  contents.clear();
  int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return FailedCall("open");
  char chunk[16384];
  for (;;) {
    ssize_t n = read(fd, chunk, sizeof chunk);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      SysResult failed = FailedCall("read");
      close(fd);
      return failed;
    }
    if (n == 0) break;
    contents.append(chunk, static_cast<size_t>(n));
  }
  close(fd);
  return {};
}

std::optional<std::string> ReadWholeFile(const std::string& path) {
  std::string contents;
  if (!ReadWholeFile(path, contents)) return std::nullopt;
  return contents;
}

SysResult WriteFileAtomically(const std::string& path, const std::string& contents) {
  std::string temp = path + ".tmp-" + std::to_string(getpid());
  int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) return FailedCall("open");
  SysResult result;
  size_t done = 0;
  while (done < contents.size() && result) {
    ssize_t n = write(fd, contents.data() + done, contents.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) result = FailedCall("write");
    if (n == 0) result = {0, "write"};
    if (n > 0) done += static_cast<size_t>(n);
  }
  if (result && fsync(fd) != 0) result = FailedCall("fsync");
  if (close(fd) != 0 && result) result = FailedCall("close");
  if (result && rename(temp.c_str(), path.c_str()) != 0) result = FailedCall("rename");
  if (!result) unlink(temp.c_str());
  return result;
}

}  // namespace wavetrace::platform
