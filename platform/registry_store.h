#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace wavetrace::platform {

// The registry of a Linux install: one text file in the configuration folder.
// Each key path is a section; each value a typed line, as a registry export
// writes it:
//
//   [HKEY_LOCAL_MACHINE\SOFTWARE\Tarnwell\Wavetrace Pro]
//   "MULTIinst"=dword:00000001
//
// Every write re-reads the file and replaces it atomically under an exclusive
// lock, so several instances can share it.
class RegistryKey {
 public:
  RegistryKey() = default;
  [[nodiscard]] bool IsOpen() const { return !file_.empty(); }
  // False when the value is missing or is not a dword.
  bool QueryDword(const std::string& name, uint32_t& value) const;
  // False when the file could not be written.
  bool SetDword(const std::string& name, uint32_t value);
  void Close();

 private:
  friend class RegistryStore;
  std::string file_;
  std::string path_;
  std::map<std::string, std::string> values_;  // name -> typed text
};

class RegistryStore {
 public:
  explicit RegistryStore(std::string file) : file_(std::move(file)) {}
  [[nodiscard]] const std::string& File() const { return file_; }

  // Opens keyPath, creating it (and the file) when missing. created is set to
  // true when the key did not exist before. False when the file cannot be
  // read or written.
  bool CreateKey(const std::string& keyPath, RegistryKey& key, bool& created) const;

 private:
  std::string file_;
};

}  // namespace wavetrace::platform
