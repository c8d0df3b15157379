// Feeds arbitrary bytes to the script scanner and runs them as a script on a
// host that does nothing. Checks what the scanner promises: the cursor only
// moves forward, an argument holds no "<", and a script always comes to its
// end. (Tag names in upper case and cut at 31 characters: ScriptScanner.)
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "automation/script_runner.h"
#include "automation/script_scanner.h"
#include "core/code_page.h"

namespace {

using namespace wavetrace::automation;

// Counts the waits; every command is a no-op. Long delays end the run as a
// program that is ending would, so that a case stays quick.
class IdleHost final : public ScriptHost {
 public:
  static constexpr long kMaxWaits = 1000000;
  bool Sleep(int) override { return ++sleeps < kMaxWaits; }
  [[nodiscard]] bool Ending() const override { return sleeps >= kMaxWaits; }
  void WriteToReceiveWindow(std::u16string_view) override {}
  void LoadConfiguration(const std::u16string&) override {}
  void SendText(const std::u16string&) override {}
  void Play() override {}
  void Stop() override {}
  void ExitProgram() override {}
  void ScriptEnded() override {}

  long sleeps = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::u16string text = wavetrace::core::BytesToWide(data, size);
  size_t cursor = 0;
  size_t commands = 0;
  ScriptCommand command;
  while (FindNextCommand(text, cursor, command)) {
    ++commands;
    if (cursor > text.size() + 1) std::abort();
    if (command.Argument.find(u'<') != std::u16string::npos) std::abort();
  }
  // Every command but the last moves the cursor past a "<".
  if (commands > size) std::abort();
  IdleHost host;
  std::atomic<int32_t> state{kScriptRunning};
  ScriptEnd end = RunScript(text, state, true, host);
  if (end == ScriptEnd::kProgramEnding ? host.sleeps < IdleHost::kMaxWaits : state != kScriptEnded)
    std::abort();
  return 0;
}
