#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <optional>

#include "config/ini_store.h"
#include "platform/files.h"
#include "test_support.h"

namespace wavetrace::config {
namespace {

class IniStoreTest : public ::testing::Test {
 protected:
  // A store over a file of these contents, or (none) only its path, for saving.
  void Open(const std::optional<std::string>& contents, const std::string& name = "test.cfg.txt") {
    path = folder.Path() + "/" + name;
    if (contents) std::ofstream(path, std::ios::binary) << *contents;
    Reopen(!contents);
  }
  void Reopen(bool createEmpty = false) {
    store = std::make_unique<IniStore>();
    EXPECT_EQ(store->Open(path, createEmpty), 0);
  }
  std::string Get(const std::string& section, const std::string& key, int size = 512) {
    std::string value;
    return store->Get(section, key, value, size) ? value : "<missing>";
  }
  testing::TempFolder folder;
  std::string path;
  std::unique_ptr<IniStore> store;
};

TEST_F(IniStoreTest, LoadingTrimsAndSplitsLines) {
  // File, section, key, value found. A last line is not trimmed, and one that starts blank is dropped.
  using Case = std::array<std::string, 4>;
  for (const auto& [file, section, key, value] :
       {Case{"[S]\nKey = Value  \n", "S", "Key", "Value"}, Case{"[S]\r\nKey=Value\r\n", "S", "Key", "Value"},
        Case{"[S]\nFlag\n", "S", "Flag", ""}, Case{"[S]\n  Key=1\n", "S", "  Key", "1"},
        Case{"[S]\nKey=\t x y \t\n", "S", "Key", "x y"}, Case{"[S]\nKey=a=b\n", "S", "Key", "a=b"},
        Case{"[ S ]\nK=v\n", " S ", "K", "v"}, Case{"[S] trailing\nK=v\n", "S", "K", "v"},
        Case{"[S\nK=v\n", "S", "K", "v"}, Case{"top=1\n[S]\nK=v\n", "", "top", "1"},
        Case{"[S]\nK=first\nK=second\n", "S", "K", "second"}, Case{"[s]\nk=v\n", "S", "k", "<missing>"},
        Case{"[S]\n; note=1\nK=v\n", "S", "; note", "<missing>"},
        Case{"[S]\nKey=Value  \r", "S", "Key", "Value  \r"}, Case{"[S]\n \tK=v", "S", " \tK", "<missing>"}}) {
    Open(file);
    EXPECT_EQ(Get(section, key), value) << file;
    EXPECT_EQ(store->Raw()->dirty, 0);
  }
}

TEST_F(IniStoreTest, SavingKeepsInsertionOrderAndReopensSections) {
  Open(std::nullopt, "out.cfg.txt");
  store->Set("", "orphan", "dropped");
  store->Set("A", "one", "1");
  store->Set("B", "two", "2");
  store->Set("A", "three", "3");  // A is not the last section started: opened again
  store->Set("A", "one", "uno");  // replacing keeps the place
  store->Set("B", "empty", "");
  EXPECT_EQ(store->Raw()->dirty, 1);
  store.reset();
  EXPECT_EQ(platform::ReadWholeFile(path).value_or(""),
            "[A]\r\none=uno\r\nthree=3\r\n[B]\r\ntwo=2\r\nempty=\r\n[A]\r\nthree=3\r\n[B]\r\nempty=\r\n");
  Reopen();
  EXPECT_EQ(Get("A", "one"), "uno");
  EXPECT_EQ(Get("", "orphan"), "<missing>");
}

TEST_F(IniStoreTest, OverlongValuesAreCutInTheStoreAndCompositeKeysAreBounded) {
  Open("[S]\nK=abcdefghijklmnopqrst\n");
  EXPECT_EQ(Get("S", "K", 10), "abcdefg");
  EXPECT_EQ(Get("S", "K", 8), "abcdefg");  // fits exactly
  EXPECT_EQ(Get("S", "K", 7), "abcd");
  std::string section(200, 's');
  EXPECT_EQ(store->Set(section, std::string(54, 'k'), "v"), 0);  // 254 characters: fits
  EXPECT_EQ(store->Set(section, std::string(55, 'k'), "v"), -1);
  EXPECT_EQ(Get(section, std::string(54, 'k')), "v");
  EXPECT_EQ(Get(section, std::string(55, 'k')), "<missing>");
  // The zero between section and key keeps "ab"+"c" apart from "a"+"bc".
  store->Set("ab", "c", "1");
  EXPECT_EQ(Get("a", "bc"), "<missing>");
}

TEST_F(IniStoreTest, ManyEntriesSpillIntoNewArenaBlocks) {
  Open(std::nullopt, "many.cfg.txt");
  for (int i = 0; i < 3000; ++i)
    store->Set("S" + std::to_string(i % 7), "key" + std::to_string(i), std::to_string(i));
  store.reset();
  Reopen();
  for (int i = 0; i < 3000; i += 97)
    EXPECT_EQ(Get("S" + std::to_string(i % 7), "key" + std::to_string(i)), std::to_string(i));
}

TEST_F(IniStoreTest, FileExistsAndUnreadableFiles) {
  Open("x");
  EXPECT_EQ(IniFileExists(path.c_str()), 0);
  path = folder.Path() + "/nope";
  EXPECT_EQ(IniFileExists(path.c_str()), 1);
  Reopen();  // an empty, usable store
  EXPECT_EQ(Get("S", "K"), "<missing>");
  // A file that cannot be written is a failed save, and the store stays dirty.
  Open(std::nullopt, "no/such/folder/x.cfg.txt");
  store->Set("S", "K", "v");
  EXPECT_EQ(IniSave(store->Raw(), nullptr), -1);
  EXPECT_EQ(store->Raw()->dirty, 1);
  EXPECT_EQ(store->Close(), -1);
}

}  // namespace
}  // namespace wavetrace::config
