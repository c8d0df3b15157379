#include <gtest/gtest.h>

#include <array>
#include <fstream>

#include "config/ini_store.h"
#include "platform/files.h"
#include "test_support.h"

namespace wavetrace::config {
namespace {

using testing::TempFolder;

class IniStoreTest : public ::testing::Test {
 protected:
  std::string Write(const std::string& contents) {
    std::string path = folder.Path() + "/test.cfg.txt";
    std::ofstream(path, std::ios::binary) << contents;
    return path;
  }
  std::string Get(IniStore& store, const std::string& section, const std::string& key, int size = 512) {
    std::string value;
    return store.Get(section, key, value, size) ? value : "<missing>";
  }
  TempFolder folder;
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
    IniStore store;
    ASSERT_EQ(store.Open(Write(file), false), 0);
    EXPECT_EQ(Get(store, section, key), value) << file;
    EXPECT_EQ(store.Raw()->dirty, 0);
  }
}

TEST_F(IniStoreTest, SavingKeepsInsertionOrderAndReopensSections) {
  std::string path = folder.Path() + "/out.cfg.txt";
  {
    IniStore store;
    ASSERT_EQ(store.Open(path, true), 0);
    store.Set("", "orphan", "dropped");
    store.Set("A", "one", "1");
    store.Set("B", "two", "2");
    store.Set("A", "three", "3");  // A is not the last section started: opened again
    store.Set("A", "one", "uno");  // replacing keeps the place
    store.Set("B", "empty", "");
    EXPECT_EQ(store.Raw()->dirty, 1);
  }
  EXPECT_EQ(platform::ReadWholeFile(path).value_or(""),
            "[A]\r\none=uno\r\nthree=3\r\n[B]\r\ntwo=2\r\nempty=\r\n[A]\r\nthree=3\r\n[B]\r\nempty=\r\n");
  IniStore again;
  ASSERT_EQ(again.Open(path, false), 0);
  EXPECT_EQ(Get(again, "A", "one"), "uno");
  EXPECT_EQ(Get(again, "", "orphan"), "<missing>");
}

TEST_F(IniStoreTest, ReadingAnOverlongValueCutsTheStoreToo) {
  IniStore store;
  ASSERT_EQ(store.Open(Write("[S]\nK=abcdefghijklmnopqrst\n"), false), 0);
  EXPECT_EQ(Get(store, "S", "K", 10), "abcdefg");
  EXPECT_EQ(Get(store, "S", "K", 512), "abcdefg");
  EXPECT_EQ(Get(store, "S", "K", 8), "abcdefg");  // fits exactly
  EXPECT_EQ(Get(store, "S", "K", 7), "abcd");
}

TEST_F(IniStoreTest, CompositeKeysAreBoundedAndExactlyMatched) {
  IniStore store;
  ASSERT_EQ(store.Open(folder.Path() + "/x", true), 0);
  std::string section(200, 's');
  EXPECT_EQ(store.Set(section, std::string(54, 'k'), "v"), 0);  // 254 characters: fits
  EXPECT_EQ(store.Set(section, std::string(55, 'k'), "v"), -1);
  EXPECT_EQ(Get(store, section, std::string(54, 'k')), "v");
  EXPECT_EQ(Get(store, section, std::string(55, 'k')), "<missing>");
  // The zero between section and key keeps "ab"+"c" apart from "a"+"bc".
  store.Set("ab", "c", "1");
  EXPECT_EQ(Get(store, "a", "bc"), "<missing>");
}

TEST_F(IniStoreTest, ManyEntriesSpillIntoNewArenaBlocks) {
  std::string path = folder.Path() + "/many.cfg.txt";
  {
    IniStore store;
    ASSERT_EQ(store.Open(path, true), 0);
    for (int i = 0; i < 3000; ++i)
      store.Set("S" + std::to_string(i % 7), "key" + std::to_string(i), std::to_string(i));
  }
  IniStore store;
  ASSERT_EQ(store.Open(path, false), 0);
  for (int i = 0; i < 3000; i += 97)
    EXPECT_EQ(Get(store, "S" + std::to_string(i % 7), "key" + std::to_string(i)), std::to_string(i));
}

TEST_F(IniStoreTest, FileExistsAndUnreadableFiles) {
  EXPECT_EQ(IniFileExists(Write("x").c_str()), 0);
  EXPECT_EQ(IniFileExists((folder.Path() + "/nope").c_str()), 1);
  IniStore store;
  EXPECT_EQ(store.Open(folder.Path() + "/nope", false), 0);  // an empty, usable store
  EXPECT_EQ(Get(store, "S", "K"), "<missing>");
  // A file that cannot be written is a failed save, and the store stays dirty.
  IniStore bad;
  ASSERT_EQ(bad.Open(folder.Path() + "/no/such/folder/x.cfg.txt", true), 0);
  bad.Set("S", "K", "v");
  EXPECT_EQ(IniSave(bad.Raw(), nullptr), -1);
  EXPECT_EQ(bad.Raw()->dirty, 1);
  EXPECT_EQ(bad.Close(), -1);
}

}  // namespace
}  // namespace wavetrace::config
