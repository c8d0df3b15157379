#include "platform/registry_store.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <functional>
#include <vector>

#include "platform/files.h"

namespace wavetrace::platform {
namespace {

struct Section {
  std::string path;
  std::vector<std::pair<std::string, std::string>> values;  // in file order
};

// Holds an exclusive lock beside the file for one read-modify-write.
class FileLock {
 public:
  explicit FileLock(const std::string& file) {
    fd_ = open((file + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (fd_ >= 0) flock(fd_, LOCK_EX);
  }
  ~FileLock() {
    if (fd_ >= 0) close(fd_);
  }
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  [[nodiscard]] bool Held() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

std::string Trim(const std::string& text) {
  size_t b = text.find_first_not_of(" \t\r");
  if (b == std::string::npos) return {};
  size_t e = text.find_last_not_of(" \t\r");
  return text.substr(b, e - b + 1);
}

std::vector<Section> Parse(const std::string& text) {
  std::vector<Section> sections;
  size_t pos = 0;
  while (pos < text.size()) {
    size_t end = text.find('\n', pos);
    if (end == std::string::npos) end = text.size();
    std::string line = Trim(text.substr(pos, end - pos));
    pos = end + 1;
    if (line.size() >= 2 && line.front() == '[' && line.back() == ']') {
      sections.push_back(Section{line.substr(1, line.size() - 2), {}});
      continue;
    }
    if (sections.empty() || line.empty() || line[0] != '"') continue;
    size_t close = line.find("\"=", 1);
    if (close == std::string::npos) continue;
    sections.back().values.emplace_back(line.substr(1, close - 1), line.substr(close + 2));
  }
  return sections;
}

std::string Format(const std::vector<Section>& sections) {
  std::string text =
      "; Wavetrace Pro registry: program options that apply before any configuration is loaded\n";
  for (const auto& section : sections) {
    text += "\n[" + section.path + "]\n";
    for (const auto& [name, value] : section.values) text += "\"" + name + "\"=" + value + "\n";
  }
  return text;
}

// The file's sections; false when it exists but cannot be read.
bool Load(const std::string& file, std::vector<Section>& sections) {
  auto text = ReadWholeFile(file);
  if (!text) {
    if (errno != ENOENT) return false;
    sections.clear();
    return true;
  }
  sections = Parse(*text);
  return true;
}

Section* Find(std::vector<Section>& sections, const std::string& path) {
  for (auto& section : sections) {
    if (section.path == path) return &section;
  }
  return nullptr;
}

// One read-modify-write of the section keyPath (added when missing) under the
// file's lock. change returns whether the file must be written.
bool UpdateSection(const std::string& file, const std::string& keyPath,
                   const std::function<bool(Section&, bool isNew)>& change) {
  FileLock lock(file);
  if (!lock.Held()) return false;
  std::vector<Section> sections;
  if (!Load(file, sections)) return false;
  Section* section = Find(sections, keyPath);
  bool isNew = section == nullptr;
  if (isNew) section = &sections.emplace_back(Section{keyPath, {}});
  return !change(*section, isNew) || WriteFileAtomically(file, Format(sections));
}

}  // namespace

bool RegistryStore::CreateKey(const std::string& keyPath, RegistryKey& key, bool& created) const {
  created = false;
  key.Close();
  size_t slash = file_.rfind('/');
  if (slash != std::string::npos && slash > 0 && !MakeFolders(file_.substr(0, slash))) return false;
  std::map<std::string, std::string> values;
  bool ok = UpdateSection(file_, keyPath, [&](Section& section, bool isNew) {
    created = isNew;
    for (const auto& [name, value] : section.values) values[name] = value;
    return isNew;
  });
  if (!ok) return false;
  key.file_ = file_;
  key.path_ = keyPath;
  key.values_ = std::move(values);
  return true;
}

bool RegistryKey::QueryDword(const std::string& name, uint32_t& value) const {
  auto it = values_.find(name);
  if (!IsOpen() || it == values_.end()) return false;
  const std::string& text = it->second;
  constexpr std::string_view kPrefix = "dword:";
  if (text.size() != kPrefix.size() + 8 || text.compare(0, kPrefix.size(), kPrefix) != 0) return false;
  uint32_t result = 0;
  for (size_t i = kPrefix.size(); i < text.size(); ++i) {
    char c = text[i];
    int digit = (c >= '0' && c <= '9')   ? c - '0'
                : (c >= 'a' && c <= 'f') ? c - 'a' + 10
                : (c >= 'A' && c <= 'F') ? c - 'A' + 10
                                         : -1;
    if (digit < 0) return false;
    result = result << 4 | static_cast<uint32_t>(digit);
  }
  value = result;
  return true;
}

bool RegistryKey::SetDword(const std::string& name, uint32_t value) {
  if (!IsOpen()) return false;
  char typed[32];
  std::snprintf(typed, sizeof typed, "dword:%08x", value);
  bool ok = UpdateSection(file_, path_, [&](Section& section, bool) {
    bool replaced = false;
    for (auto& [existing, text] : section.values) {
      if (existing == name) text = typed, replaced = true;
    }
    if (!replaced) section.values.emplace_back(name, typed);
    return true;
  });
  if (!ok) return false;
  values_[name] = typed;
  return true;
}

void RegistryKey::Close() {
  file_.clear();
  path_.clear();
  values_.clear();
}

}  // namespace wavetrace::platform
