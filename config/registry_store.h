#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "platform/system_error.h"

namespace wavetrace::config {

// The registry of a Linux install: one INI file in the configuration folder,
// a section per key path and a typed value per line, as a registry export
// writes them:
//
//   [HKEY_LOCAL_MACHINE\SOFTWARE\Tarnwell\Wavetrace Pro]
//   MULTIinst=dword:00000001
//
// Every write re-reads the file and replaces it atomically under an exclusive
// lock, so several instances can share it.
class RegistryKey {
 public:
  RegistryKey() = default;
  [[nodiscard]] bool IsOpen() const { return !file_.empty(); }
  // False when the value is missing or is not a dword.
  bool QueryDword(const std::string& name, uint32_t& value) const;
  // A text value (written "sz:" and the text); false when missing or not text.
  bool QueryString(const std::string& name, std::string& value) const;
  // Every dword value of the key, by name.
  [[nodiscard]] std::map<std::string, uint32_t> Dwords() const;
  // False when the file could not be written.
  bool SetDword(const std::string& name, uint32_t value);
  void Close();

 private:
  friend class RegistryStore;
  std::string file_;
  std::string path_;
  std::map<std::string, std::string> values_;  // name -> typed text, as read at open
};

class RegistryStore {
 public:
  explicit RegistryStore(std::string file) : file_(std::move(file)) {}
  [[nodiscard]] const std::string& File() const { return file_; }

  // Opens keyPath; created tells whether it was missing (it comes into being
  // with its first value). Fails when the file cannot be used.
  platform::SysResult CreateKey(const std::string& keyPath, RegistryKey& key, bool& created) const;

 private:
  std::string file_;
};

}  // namespace wavetrace::config
