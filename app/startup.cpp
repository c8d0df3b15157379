#include "app/startup.h"

#include "app/main_window.h"
#include "app/tray_notification.h"
#include "automation/script.h"
#include "config/program_options.h"
#include "core/allocation.h"
#include "core/code_page.h"
#include "core/messages.h"
#include "core/reporting.h"
#include "core/version.h"
#include "log/log_names.h"
#include "log/recorder.h"
#include "platform/display_control.h"
#include "platform/files.h"
#include "platform/instance_lock.h"
#include "rx/log_cache.h"

namespace wavetrace::app {
namespace {

constexpr int kMaxInstanceNumber = 32;

}  // namespace

bool IsSupportedPlatform(const platform::OsInfo& os) {
  return os.Valid && os.SystemName == "Linux";
}

int CheckVersionInRegistry(core::AppState& state) {
  return config::IsRegisteredVersionCurrent(state);
}

std::u16string VersionMismatchText(const core::AppState& state) {
  std::u16string numbers =
      config::FormatVersion(state.ProgramOptions.MajorVersion, state.ProgramOptions.MinorVersion);
  return u"Expected: " + std::u16string(core::kRelease) + u" \r\nReceived: Rel. \"" + numbers +
         u"\" \r\nSome features may not function properly.  You have been warned.  :)";
}

std::vector<std::u16string> InstanceTitleCandidates(const std::u16string& plainTitle) {
  std::vector<std::u16string> candidates{plainTitle};
  // The counter runs to 31; the title with #31 is formed but never tried.
  for (int counter = 2; counter < kMaxInstanceNumber - 1; ++counter) {
    candidates.push_back(plainTitle + u"#" + core::Utf8ToWide(std::to_string(counter)));
  }
  return candidates;
}

int InitInstance(core::AppState& state) {
  std::u16string plain = state.AutomationMode ? core::kProgramTitleAuto : core::kProgramTitle;
  state.WindowTitle = plain;
  if (!state.Instance) return -1;
  auto& instance = *state.Instance;
  if (state.ProgramOptions.MULTIinst != 1) {
    std::string title = core::WideToUtf8(plain);
    if (instance.IsTitleInUse(title)) {
      instance.RequestActivation(title);
      return 1;
    }
    if (!instance.Acquire(title)) {
      // Lost the race to an instance starting at the same moment.
      if (instance.IsTitleInUse(title)) {
        instance.RequestActivation(title);
        return 1;
      }
      return -1;
    }
  } else {
    std::u16string chosen = plain;
    for (const auto& candidate : InstanceTitleCandidates(plain)) {
      if (instance.Acquire(core::WideToUtf8(candidate))) {
        chosen = candidate;
        break;
      }
    }
    // With all thirty titles in use the newcomer keeps the plain title, unlocked.
    state.WindowTitle = chosen;
  }
  state.Screen.SetTitle(state.WindowTitle);
  return 0;
}

std::vector<std::u16string> WelcomeTextPieces(bool automationMode, const std::u16string& scriptPath) {
  std::vector<std::u16string> pieces;
  pieces.emplace_back(automationMode ? u" Welcome to Wavetrace Pro(Auto)\r\n    "
                                     : u"    Welcome to Wavetrace Pro\r\n    ");
  if (automationMode) pieces.emplace_back(u"    AUTOMATION MODE\r\n    ");
  for (const char16_t* piece : {u"Rel. ", core::kRelease, u".", core::kBuild, u" ", core::kReleaseDate}) {
    pieces.emplace_back(piece);
  }
  if (automationMode) {
    pieces.push_back(u"\r\n\r\n[Running script:] \r\n" + scriptPath + u"\r\n\r\n");
  } else {
    pieces.emplace_back(
        u"\r\n\r\n Please tap the PLAY button\r\n below to open a communications\r\n port. After which you "
        u"may "
        u"then\r\n begin receiving serial data\r\n into your Pocket PC.");
  }
  return pieces;
}

void BeginDataOnNewLine(core::AppState& state) {
  auto& screen = state.Screen;
  const std::u16string tail = WelcomeTextPieces(false, {}).back();
  const std::u16string text = screen.RxText();
  auto [from, to] = screen.RxSelection();
  bool caretAtEnd = from == to && to == static_cast<int32_t>(text.size());
  if (caretAtEnd && text.size() >= tail.size() &&
      text.compare(text.size() - tail.size(), tail.size(), tail) == 0)
    screen.RxInsertAtCaret(u"\r\n");
}

void OnFirstPaint(core::AppState& state, bool welcome) {
  if (state.FirstPaintState != 2) return;
  state.FirstPaintState = 1;
  // A display the program cannot switch off has no "ScreenOff".
  if (!state.Display || !state.Display->CanSwitchOff())
    state.Screen.GreyMenuItem(core::cmd::kScreenOff, true);
  if (welcome) {
    for (const auto& piece : WelcomeTextPieces(state.AutomationMode != 0, state.Switches.ScriptPath)) {
      state.Screen.RxInsertAtCaret(piece);
    }
  }
  if (state.AutomationMode) {
    for (int item : {core::cmd::kConfigLoad, core::cmd::kConfigSave, core::cmd::kConfigSaveAs,
                     core::cmd::kConfigSetDefault}) {
      state.Screen.GreyMenuItem(item, true);
    }
    if (!state.ScriptText.empty()) automation::StartScriptThread(state, std::move(state.ScriptText));
    state.ScriptText.clear();
  }
}

std::u16string AboutReleaseLine() {
  return u"Rel. " + std::u16string(core::kRelease) + u"." + core::kBuild + u"  " + core::kReleaseDate;
}

int StartUp(core::AppState& state, const platform::OsInfo& os) {
  using core::BoxIcon;
  // 1. Run-time fields start empty.
  state.RxThread.reset();
  state.TxThread.reset();
  state.RxWndUpdate.reset();
  state.LogIntervalThread.reset();
  state.DisplayPower = {};
  state.ShuttingDown = false;
  state.AutomationMode = 0;
  state.Queue.BindMainThread();
  state.MemLock.SetMainThread(std::this_thread::get_id());
  state.MemLock.SetMainThreadWaitHook([&state] { state.Queue.DispatchPendingSends(); });

  // 2. The platform.
  if (!IsSupportedPlatform(os)) {
    core::ShowMessageBox(state, u"O/S not supported",
                         u"This program requires the Pocket PC 2003 or later Operating System.",
                         BoxIcon::kNone);
    return -1;
  }

  // 3. The screen.
  state.ScreenHeight = state.View ? state.View->ScreenHeight() : 0;

  // 4. The release recorded in the registry, then the program options. A
  // store without any release gets this one, as an installer would record it,
  // so the warning comes once; a different release warns on every start.
  if (state.ConfigFolder.empty()) state.ConfigFolder = core::Utf8ToWide(platform::ConfigFolder());
  std::string folder = core::WideToUtf8(state.ConfigFolder);
  if (state.RegistryFile.empty()) state.RegistryFile = folder + "/" + config::kRegistryFileName;
  if (CheckVersionInRegistry(state) != 0) {
    core::ShowMessageBox(state, u"Warning: Version mismatch", VersionMismatchText(state), BoxIcon::kWarning);
  }
  // A key that could not be opened has been reported once; the options keep
  // their defaults, as a failed load would leave them.
  if (state.ProgramOptions.LastResult == 0) {
    config::RecordReleaseWhenMissing(state);
    config::LoadProgramOptions(state);
  }

  // 5. Wait cursor.
  if (state.View) state.View->SetWaitCursor(true);
  auto normalCursor = [&state] {
    if (state.View) state.View->SetWaitCursor(false);
  };

  // 6. Automation mode comes from the command line.
  if (!state.Switches.ScriptPath.empty()) state.AutomationMode = 1;
  if (state.AutomationMode) {
    // The script must be readable and hold something to run; its thread
    // starts after the welcome text.
    platform::SysResult failure;
    if (automation::LoadScript(state.Switches.ScriptPath, state.ScriptText, failure) != 0) {
      core::ShowMessageBox(state, u"Script file automation", u"init failed... aborting.", BoxIcon::kStop);
      state.AutomationMode = 0;
    }
  }

  // 7, 8. The shared buffers.
  if (core::AllocWideBuffer(state, state.g_RxWindowBuf, core::kRxWindowBufChars) != 0) {
    normalCursor();
    core::ShowErrorBox(state, u"Error allocating memory for g_RxWindowBuf.", platform::OutOfMemory());
    return -1;
  }
  state.Screen.SetShownCount(0);
  if (rx::AllocLogCache(state) != 0) {
    normalCursor();
    core::ShowErrorBox(state, u"Error allocating memory for DataLog Cache.", platform::OutOfMemory());
    return -1;
  }
  log::InitLogSettings(state.Log);
  log::InstallRecorder(state);

  // 10. The single-instance rule.
  if (!state.Instance) state.Instance = std::make_unique<platform::InstanceLock>(folder + "/instances");
  if (int instance = InitInstance(state); instance != 0) {
    normalCursor();
    if (instance == 1 && state.View) state.View->AnotherInstanceRuns();
    return -1;
  }

  // 11. The main window; its create handler starts the threads.
  if (CreateMainWindow(state) != 0) {
    normalCursor();
    return -1;
  }
  state.Instance->Listen([&state] { state.Queue.Post(core::MakeMessage(core::kWmActivateInstance)); });

  // 16, 19. Start-bar notification and tray icon.
  if (state.ProgramOptions.DisableIcon == 1) state.NotificationEnabled = false;
  ShellNotification(state, kNotifyAdd);

  // 18, 20.
  normalCursor();
  state.Screen.ShowWindow(state.Switches.NoGui == 0);
  return 0;
}

int AfterMessageLoop(core::AppState& state) {
  state.Screen.SetTrayState(0);
  if (state.Instance) state.Instance->Release();
  return state.Queue.QuitCode();
}

}  // namespace wavetrace::app
