#pragma once

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "core/app_state.h"
#include "core/front_end.h"

namespace wavetrace::testing {

// A fresh folder under the system's temporary folder, removed afterwards.
class TempFolder {
 public:
  TempFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "wavetrace-test-XXXXXX").string();
    path_ = mkdtemp(pattern.data()) ? pattern : std::string();
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  [[nodiscard]] const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

// A front end that records what it was asked to show.
class RecordingFrontEnd : public core::FrontEnd {
 public:
  struct Box {
    std::u16string title, text;
  };

  void ShowMessageBox(std::u16string_view title, std::u16string_view text, core::BoxIcon) override {
    std::unique_lock lock(mutex_);
    boxes_.push_back({std::u16string(title), std::u16string(text)});
    lock.unlock();
    if (onBox) onBox();
  }
  [[nodiscard]] bool BoxesNeedMainThread() const override { return needsMainThread; }
  [[nodiscard]] bool WindowExists() const override { return windowExists; }
  bool SetClipboardText(std::u16string_view text) override {
    clipboard = text;
    return true;
  }
  void SetWaitCursor(bool) override {}
  [[nodiscard]] int ScreenHeight() const override { return 320; }
  void RenderScreenChanges() override {}
  void ShowAbout(std::u16string_view releaseLine, bool) override { about = releaseLine; }
  void ShowProgramOptions() override {}
  // The screens asked for, in order (main thread only).
  bool ShowReceiveOptions(int page) override { return Screen("receive options " + std::to_string(page)); }
  bool ShowAsciiChart(bool variantB) override { return Screen(variantB ? "chart B" : "chart A"); }
  bool ShowPinouts() override { return Screen("pinouts"); }
  bool OpenManual(const std::string& path, std::string_view) override { return Screen("manual " + path); }

  std::vector<Box> Boxes() {
    std::lock_guard lock(mutex_);
    return boxes_;
  }

  bool needsMainThread = false;
  bool windowExists = true;
  bool screensShown = true;
  std::vector<std::string> screens;
  std::u16string clipboard;
  std::u16string about;
  std::function<void()> onBox;

 private:
  bool Screen(std::string name) {
    screens.push_back(std::move(name));
    return screensShown;
  }

  std::mutex mutex_;
  std::vector<Box> boxes_;
};

inline std::string Narrow(const std::u16string& text) {
  std::string out;
  for (char16_t c : text) out += c < 0x80 ? static_cast<char>(c) : '?';
  return out;
}

}  // namespace wavetrace::testing
