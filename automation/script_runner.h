#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>

namespace wavetrace::automation {

// ScriptState: 1 runs the script, 4 ends it, any other value holds it where
// it is until it is 1 again.
inline constexpr int32_t kScriptRunning = 1;
inline constexpr int32_t kScriptEnded = 4;
// Scans that find no further command before the script counts as over.
inline constexpr int kScriptRetries = 10;
inline constexpr int kScriptPollMs = 100;

// What a script does to the program. The program's host goes through the
// main window's message queue; tests record the calls on a hand clock.
class ScriptHost {
 public:
  virtual ~ScriptHost() = default;
  // Waits ms milliseconds; false when the program is ending meanwhile.
  virtual bool Sleep(int ms) = 0;
  [[nodiscard]] virtual bool Ending() const = 0;
  virtual void WriteToReceiveWindow(std::u16string_view text) = 0;
  virtual void LoadConfiguration(const std::u16string& path) = 0;
  // Types the text into the transmit field and presses Enter.
  virtual void SendText(const std::u16string& text) = 0;
  virtual void Play() = 0;
  virtual void Stop() = 0;
  virtual void ExitProgram() = 0;
  // The text is used up and the end banner written (the last command still
  // runs once more after this).
  virtual void ScriptEnded() = 0;
};

// How a script run ended.
enum class ScriptEnd { kEndOfText, kExitProgram, kStopped, kProgramEnding };

// The automation thread's work: carries out the commands of text one after
// another. state is read before each step and within long delays; the
// thread sets it to 4 when the script ends.
ScriptEnd RunScript(std::u16string_view text, std::atomic<int32_t>& state, bool debug, ScriptHost& host);

}  // namespace wavetrace::automation
