#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/system_error.h"

namespace wavetrace::config {

// The store behind configuration files: sections of key=value lines in an
// 8-bit text file. Case-sensitive, values kept as byte strings, entries
// written back in the order they were first created.
class IniHashTable {
 public:
  struct Entry;

  IniHashTable(uint32_t bucketCount, uint32_t chunkSize);
  ~IniHashTable();
  IniHashTable(const IniHashTable&) = delete;
  IniHashTable& operator=(const IniHashTable&) = delete;

  // The djb2 hash over the bytes (zeros included), each taken as signed.
  static uint32_t Hash(const char* key, size_t length);
  Entry* Find(const char* key, size_t length) const;
  // Only after Find failed; null when no memory could be had.
  Entry* Insert(const char* key, size_t length);
  template <typename Visit>
  void ForEach(Visit visit) const;

 private:
  struct Block;
  uint32_t bucketCount_;
  uint32_t mask_;
  uint32_t chunkSize_;
  Block* arena_ = nullptr;
  std::unique_ptr<Entry*[]> buckets_;
};

struct IniHashTable::Entry {
  Entry* next = nullptr;
  // Value block: the 16-bit insertion index, the value's bytes, a zero.
  std::unique_ptr<char[]> value;
  // Wider than a byte: a composite key may be 256 bytes long.
  uint16_t keyLength = 0;
  // The composite key: section, zero, key, zero.
  [[nodiscard]] const char* Key() const { return reinterpret_cast<const char*>(this + 1); }
  [[nodiscard]] int16_t Index() const;
  [[nodiscard]] char* Value() const { return value.get() + 2; }
};

template <typename Visit>
void IniHashTable::ForEach(Visit visit) const {
  for (uint32_t b = 0; b < bucketCount_; ++b) {
    for (Entry* e = buckets_[b]; e; e = e->next) visit(*e);
  }
}

struct IniFile {
  IniHashTable table{1024, 16384};
  uint8_t dirty = 0;
  int32_t count = 0;
  std::unique_ptr<std::string> fileName;
  platform::SysResult lastSave;  // how the last save went
};

// All return 0 for success and -1 for failure unless said otherwise.
// Opens a store; with createEmpty only records the path, else loads it. An
// unreadable file gives an empty store and still succeeds.
int IniOpen(std::unique_ptr<IniFile>& handle, const char* path, int createEmpty);
// Saves when dirty, then frees the store. 0, or -1 when the save failed.
int IniClose(std::unique_ptr<IniFile>& handle, platform::SysResult* saveFailure = nullptr);
// Copies the value into buffer; -1 (and an empty buffer) when not found. A
// value longer than bufferSize allows is cut to bufferSize - 3 characters, in
// the result and in the store.
int IniGetString(IniFile* ini, const char* section, const char* key, char* buffer, int bufferSize);
// length 0: the value's strlen. -1 when the composite key would exceed 254
// characters or no memory could be had.
int IniSetString(IniFile* ini, const char* section, const char* key, const char* value, int length);
// 0 when the file exists (can be opened), 1 when it does not.
int IniFileExists(const char* path);
int IniLoad(IniFile* ini, const char* path);
// Writes the file (atomically: a failed write leaves the old file).
int IniSave(IniFile* ini, const char* path);
void IniSetFileName(IniFile* ini, const char* path);

// The small object the configuration file works with.
class IniStore {
 public:
  IniStore() = default;
  ~IniStore() { Close(); }
  IniStore(const IniStore&) = delete;
  IniStore& operator=(const IniStore&) = delete;

  int Open(const std::string& path, bool createEmpty) {
    return IniOpen(ini_, path.c_str(), createEmpty ? 1 : 0);
  }
  int Close() { return ini_ ? IniClose(ini_) : 0; }
  // The same, with why a save that failed failed.
  int Close(platform::SysResult& failure) {
    failure = {};
    return ini_ ? IniClose(ini_, &failure) : 0;
  }
  // False when missing; the value is read through a buffer of bufferSize bytes.
  bool Get(const std::string& section, const std::string& key, std::string& value, int bufferSize = 512);
  int Set(const std::string& section, const std::string& key, const std::string& value);
  static bool Exists(const std::string& path) { return IniFileExists(path.c_str()) == 0; }
  [[nodiscard]] IniFile* Raw() const { return ini_.get(); }

 private:
  std::unique_ptr<IniFile> ini_;
};

}  // namespace wavetrace::config
