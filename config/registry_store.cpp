#include "config/registry_store.h"

#include <cstdio>
#include <functional>

#include "config/ini_store.h"
#include "platform/file_lock.h"
#include "platform/files.h"

namespace wavetrace::config {
namespace {

// One read-modify-write of the file under its lock. change gets the store
// (holding the file's contents) and returns whether to write it back.
platform::SysResult Update(const std::string& file, const std::function<bool(IniStore&)>& change) {
  platform::FileLock lock(file);
  if (!lock.Held()) return lock.Failure();
  // A file that is there but cannot be read must not be replaced by an empty one.
  std::string contents;
  if (platform::FileExists(file)) {
    if (platform::SysResult read = platform::ReadWholeFile(file, contents); !read) return read;
  }
  IniStore store;
  if (store.Open(file, false) != 0) return platform::OutOfMemory();
  if (!change(store)) {
    store.Raw()->dirty = 0;
    return {};
  }
  IniSave(store.Raw(), nullptr);
  return store.Raw()->lastSave;
}

// Every name of a section, read through the store's own table.
std::map<std::string, std::string> Values(const IniStore& store, const std::string& section) {
  std::map<std::string, std::string> values;
  store.Raw()->table.ForEach([&](const IniHashTable::Entry& e) {
    if (!e.value || section != e.Key()) return;
    values[e.Key() + section.size() + 1] = e.Value();
  });
  return values;
}

}  // namespace

platform::SysResult RegistryStore::CreateKey(const std::string& keyPath, RegistryKey& key,
                                             bool& created) const {
  created = false;
  key.Close();
  size_t slash = file_.rfind('/');
  if (slash != std::string::npos && slash > 0) {
    if (platform::SysResult folder = platform::MakeFolders(file_.substr(0, slash)); !folder) return folder;
  }
  std::map<std::string, std::string> values;
  // A key lives in the file through its values: one without any counts as
  // new, and its first value creates it.
  platform::SysResult result = Update(file_, [&](IniStore& store) {
    values = Values(store, keyPath);
    created = values.empty();
    return false;
  });
  if (!result) return result;
  key.file_ = file_;
  key.path_ = keyPath;
  key.values_ = std::move(values);
  return {};
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

bool RegistryKey::QueryString(const std::string& name, std::string& value) const {
  auto it = values_.find(name);
  if (!IsOpen() || it == values_.end() || it->second.rfind("sz:", 0) != 0) return false;
  value = it->second.substr(3);
  return true;
}

std::map<std::string, uint32_t> RegistryKey::Dwords() const {
  std::map<std::string, uint32_t> dwords;
  for (const auto& [name, text] : values_) {
    uint32_t value = 0;
    if (QueryDword(name, value)) dwords[name] = value;
  }
  return dwords;
}

bool RegistryKey::SetDword(const std::string& name, uint32_t value) {
  if (!IsOpen()) return false;
  char typed[32];
  std::snprintf(typed, sizeof typed, "dword:%08x", value);
  if (!Update(file_, [&](IniStore& store) { return store.Set(path_, name, typed) == 0; })) return false;
  values_[name] = typed;
  return true;
}

void RegistryKey::Close() {
  file_.clear();
  path_.clear();
  values_.clear();
}

}  // namespace wavetrace::config
