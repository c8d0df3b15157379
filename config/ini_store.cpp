#include "config/ini_store.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
#include <string_view>
#include <vector>

#include "platform/files.h"

namespace wavetrace::config {

// ---------------------------------------------------------------- hash table

struct IniHashTable::Block {
  Block* next;
  uint32_t capacity;
  uint32_t used;
  [[nodiscard]] char* Data() { return reinterpret_cast<char*>(this + 1); }
};

int16_t IniHashTable::Entry::Index() const {
  int16_t index = 0;
  std::memcpy(&index, value.get(), sizeof index);
  return index;
}

IniHashTable::IniHashTable(uint32_t bucketCount, uint32_t chunkSize)
    : bucketCount_(bucketCount),
      mask_(bucketCount - 1),
      chunkSize_(chunkSize),
      buckets_(new Entry*[bucketCount]()) {}

IniHashTable::~IniHashTable() {
  for (uint32_t b = 0; b < bucketCount_; ++b) {
    for (Entry* e = buckets_[b]; e;) {
      Entry* next = e->next;
      e->~Entry();
      e = next;
    }
  }
  while (arena_) {
    Block* next = arena_->next;
    ::operator delete(arena_);
    arena_ = next;
  }
}

uint32_t IniHashTable::Hash(const char* key, size_t length) {
  uint32_t h = 5381;
  for (size_t i = 0; i < length; ++i) h = h * 33 + static_cast<uint32_t>(static_cast<int8_t>(key[i]));
  return h;
}

IniHashTable::Entry* IniHashTable::Find(const char* key, size_t length) const {
  for (Entry* e = buckets_[Hash(key, length) & mask_]; e; e = e->next) {
    if (e->keyLength == length && std::memcmp(e->Key(), key, length) == 0) return e;
  }
  return nullptr;
}

IniHashTable::Entry* IniHashTable::Insert(const char* key, size_t length) {
  // Entries are carved from arena blocks; sizes stay aligned for the header.
  size_t size = (sizeof(Entry) + length + alignof(Entry) - 1) / alignof(Entry) * alignof(Entry);
  if (!arena_ || arena_->capacity - arena_->used < size) {
    if (size > chunkSize_) chunkSize_ = static_cast<uint32_t>(size);
    void* memory = ::operator new(sizeof(Block) + chunkSize_ + 15, std::nothrow);
    if (!memory) return nullptr;
    arena_ = new (memory) Block{arena_, chunkSize_, 0};
  }
  auto* entry = new (arena_->Data() + arena_->used) Entry();
  arena_->used += static_cast<uint32_t>(size);
  std::memcpy(const_cast<char*>(entry->Key()), key, length);
  entry->keyLength = static_cast<uint16_t>(length);
  uint32_t bucket = Hash(key, length) & mask_;
  entry->next = buckets_[bucket];
  buckets_[bucket] = entry;
  return entry;
}

// ---------------------------------------------------------------- the store

namespace {

constexpr size_t kCompositeKeyBuffer = 256;

// Section, zero, key, zero; false when it would not fit the 256-byte buffer.
bool MakeCompositeKey(const char* section, const char* key, char (&out)[kCompositeKeyBuffer],
                      size_t& length) {
  size_t s = std::strlen(section);
  size_t k = std::strlen(key);
  if (s + k + 2 > kCompositeKeyBuffer) return false;
  std::memcpy(out, section, s + 1);
  std::memcpy(out + s + 1, key, k + 1);
  length = s + k + 2;
  return true;
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

}  // namespace

int IniOpen(std::unique_ptr<IniFile>& handle, const char* path, int createEmpty) {
  handle.reset();
  auto ini = std::unique_ptr<IniFile>(new (std::nothrow) IniFile());
  if (!ini) return -1;
  if (createEmpty) {
    IniSetFileName(ini.get(), path);
  } else {
    IniLoad(ini.get(), path);
  }
  handle = std::move(ini);
  return 0;
}

int IniClose(std::unique_ptr<IniFile>& handle, platform::SysResult* saveFailure) {
  int result = 0;
  if (handle && handle->dirty && handle->fileName) result = IniSave(handle.get(), nullptr);
  if (saveFailure && handle) *saveFailure = handle->lastSave;
  handle.reset();
  return result;
}

int IniGetString(IniFile* ini, const char* section, const char* key, char* buffer, int bufferSize) {
  char composite[kCompositeKeyBuffer];
  size_t length = 0;
  IniHashTable::Entry* entry =
      MakeCompositeKey(section, key, composite, length) ? ini->table.Find(composite, length) : nullptr;
  if (!entry || !entry->value) {
    if (buffer && bufferSize > 0) buffer[0] = '\0';
    return -1;
  }
  char* stored = entry->Value();
  int n = static_cast<int>(std::strlen(stored)) + 1;
  if (bufferSize != 0 && n > bufferSize) {
    n = bufferSize - 1;
    // The stored value is cut too: counted from the start of the value block,
    // which begins with the two index bytes.
    entry->value[static_cast<size_t>(std::max(n, 2))] = '\0';
  }
  std::memcpy(buffer, stored, static_cast<size_t>(std::max(n, 0)));
  return 0;
}

int IniSetString(IniFile* ini, const char* section, const char* key, const char* value, int length) {
  char composite[kCompositeKeyBuffer];
  size_t keyLength = 0;
  if (!MakeCompositeKey(section, key, composite, keyLength)) return -1;
  size_t valueLength = length == 0 ? std::strlen(value) : static_cast<size_t>(length);
  int16_t index;
  IniHashTable::Entry* entry = ini->table.Find(composite, keyLength);
  if (entry) {
    index = entry->value ? entry->Index() : static_cast<int16_t>(ini->count);
    entry->value.reset();
  } else {
    entry = ini->table.Insert(composite, keyLength);
    if (!entry) return -1;
    index = static_cast<int16_t>(ini->count++);
  }
  std::unique_ptr<char[]> block(new (std::nothrow) char[valueLength + 3]);
  if (!block) return -1;
  std::memcpy(block.get(), &index, sizeof index);
  std::memcpy(block.get() + 2, value, valueLength);
  block[valueLength + 2] = '\0';
  entry->value = std::move(block);
  ini->dirty = 1;
  return 0;
}

int IniFileExists(const char* path) {
  std::FILE* file = std::fopen(path, "r");
  if (!file) return 1;
  std::fclose(file);
  return 0;
}

void IniSetFileName(IniFile* ini, const char* path) {
  if (!path) return;
  if (ini->fileName && *ini->fileName == path) return;
  ini->fileName = std::make_unique<std::string>(path);
}

int IniLoad(IniFile* ini, const char* path) {
  IniSetFileName(ini, path);
  auto contents = platform::ReadWholeFile(path);
  if (!contents) return -1;
  std::vector<char> buffer(contents->begin(), contents->end());
  buffer.push_back('\0');
  std::string section;
  char* cursor = buffer.data();
  while (cursor && *cursor) {
    char* line = cursor;
    char* lineFeed = std::strchr(line, '\n');
    char* scan = line;
    if (lineFeed) {
      *lineFeed = '\0';
      char* back = lineFeed - 1;
      while (back >= line && (*back == '\r' || IsBlank(*back))) *back-- = '\0';
      scan = back >= line ? back : line;
    }
    // The blank skip looks at the scan position, so leading blanks normally
    // stay part of the line. Where the scan position itself is blank (a last
    // line that starts with a blank) the line start runs to the end of the
    // line instead of forever, and the line is dropped.
    while (IsBlank(*scan) && *line) ++line;
    cursor = lineFeed ? lineFeed + 1 : nullptr;
    if (*line == '\0' || *line == ';') continue;
    if (*line == '[') {
      char* close = std::strchr(line + 1, ']');
      if (close) *close = '\0';
      section = line + 1;
      continue;
    }
    char* value = line + std::strlen(line);
    if (char* equals = std::strchr(line, '=')) {
      value = equals + 1;
      while (IsBlank(*value)) ++value;
      *equals = '\0';
      for (char* back = equals - 1; back >= line && IsBlank(*back); --back) *back = '\0';
    }
    IniSetString(ini, section.c_str(), line, value, 0);
  }
  ini->dirty = 0;
  return 0;
}

int IniSave(IniFile* ini, const char* path) {
  IniSetFileName(ini, path);
  if (!ini->fileName) {
    ini->lastSave = {0, "no file name"};
    return -1;
  }
  std::vector<const IniHashTable::Entry*> entries;
  ini->table.ForEach([&](const IniHashTable::Entry& e) {
    if (e.value) entries.push_back(&e);
  });
  std::sort(entries.begin(), entries.end(), [](auto* a, auto* b) { return a->Index() < b->Index(); });

  std::string text;
  std::string_view current;  // entries of the empty section that come first are never written
  for (size_t i = 0; i < entries.size(); ++i) {
    std::string_view sectionOfI = entries[i]->Key();
    if (sectionOfI == current) continue;
    current = sectionOfI;
    text += "[" + std::string(current) + "]\r\n";
    for (size_t j = i; j < entries.size(); ++j) {
      if (std::string_view(entries[j]->Key()) != current) continue;
      text += entries[j]->Key() + current.size() + 1;
      text += "=";
      text += entries[j]->Value();
      text += "\r\n";
    }
  }
  ini->lastSave = platform::WriteFileAtomically(*ini->fileName, text);
  if (!ini->lastSave) return -1;
  ini->dirty = 0;
  return 0;
}

bool IniStore::Get(const std::string& section, const std::string& key, std::string& value, int bufferSize) {
  if (!ini_) return false;
  bufferSize = std::max(bufferSize, 1);
  std::vector<char> buffer(static_cast<size_t>(bufferSize), '\0');
  if (IniGetString(ini_.get(), section.c_str(), key.c_str(), buffer.data(), bufferSize) != 0) return false;
  value.assign(buffer.data(), strnlen(buffer.data(), buffer.size()));
  return true;
}

int IniStore::Set(const std::string& section, const std::string& key, const std::string& value) {
  if (!ini_) return -1;
  // Length 0 would mean "measure it": an empty value is one zero byte long.
  return IniSetString(ini_.get(), section.c_str(), key.c_str(), value.c_str(), 0);
}

}  // namespace wavetrace::config
