// Settings changes on the main thread while blocks flow through the receive
// pipeline and the transmit preparation on a worker: every block must come
// out exactly as one of the settings the main thread went through would make
// it, never a mix of two. Run under the thread sanitizer this also proves the
// settings are handed over without a data race. Every step ends in a publish:
// after each, the published records match the settings.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "app/comm_properties.h"
#include "app/main_window.h"
#include "app/receive_options.h"
#include "app/transmit_options.h"
#include "config/config_file.h"
#include "core/allocation.h"
#include "core/code_page.h"
#include "core/messages.h"
#include "rx/dispatcher.h"
#include "rx/receive_pipeline.h"
#include "rx/receive_window.h"
#include "serial/tx_thread.h"
#include "test_support.h"

namespace wavetrace {
namespace {

using namespace core::cmd;

// A few line ends and every byte value twice: each stage changes them visibly.
std::string BlockBytes() {
  std::string bytes = "abc\nb\rab";
  for (int value = 0; value < 512; ++value) bytes += static_cast<char>(value);
  return bytes;
}

// What a block of the text becomes under the published settings: received
// (the pipeline, then the dispatcher, under one settings record for the whole
// block, as the receive thread does) or prepared for sending.
std::string Outcome(core::AppState& state, const std::string& text, bool receive) {
  core::DataBlock block;
  if (core::AllocCharBuffer(state, block.Buffer, static_cast<int64_t>(text.size()) + 4) != 0) return {};
  std::copy(text.begin(), text.end(), block.Buffer.Data());
  block.Length = static_cast<uint32_t>(text.size());
  if (receive) {
    const auto settings = state.PublishedRx.Load();
    rx::ProcessReceivedData(state, *settings, block);
    rx::DispatchReceivedData(state, *settings, block.Buffer.Data(), block.Length);
  } else {
    block.Length = serial::PrepareTxData(state, *state.PublishedTx.Load(), block, block.Length);
  }
  std::string out(block.Buffer.Data(), block.Buffer.Data() + block.Length);
  core::FreeBuffer(state, block.Buffer);
  return out;
}

void Command(core::AppState& state, int command) {
  app::MainWindowProc(state, core::MakeMessage(core::kWmCommand, command));
}

// The receive options sheet with every page ready: Apply with the postamble
// field and rule 1 on show (a check box stores at once). Each publishes once.
void ApplySheet(core::AppState& state, app::ReceiveOptionsSheet& sheet, std::u16string postamble,
                std::u16string search, std::u16string replace) {
  state.Data.SnRCurrentRule = 1;
  sheet.Apply(postamble, {std::move(search), std::move(replace), 1, 0, 0});
}

void ApplyTransmitPage(core::AppState& state, std::u16string postamble) {
  app::TransmitOptionValues values = app::TransmitOptionsOf(state);
  values.PostambleKeysTX = std::move(postamble);
  app::ApplyTransmitOptions(state, values);
}

TEST(SettingsHandOverTest, EveryChangePublishesAndBlocksSeeOneWholeSetting) {
  testing::TempFolder folder;
  core::AppState state;
  ASSERT_EQ(core::AllocWideBuffer(state, state.g_RxWindowBuf, core::kRxWindowBufChars), 0);
  state.PortOpen = true;

  // A configuration that differs from every other step in many keys at once.
  const std::u16string configPath = core::BytesToWide(folder.Path() + "/Race.cfg.txt");
  app::ReceiveOptionsSheet sheet(state);
  for (int page = 0; page < app::kRxOptionsPageCount; ++page)
    sheet.SetPageReady(static_cast<app::RxOptionsPage>(page));
  using app::RxSwitch;
  Command(state, kBinaryButton);
  Command(state, kBinary);
  for (RxSwitch which : {RxSwitch::kFilterNP, RxSwitch::kNonChars, RxSwitch::kBinBrackets})
    sheet.StoreSwitch(which, true);
  ApplySheet(state, sheet, u"<[0D]>", u"b", u"[41]Z");
  ApplyTransmitPage(state, u"[0D][0A]");
  ASSERT_EQ(config::ConfigSave(state, configPath), 0);

  const std::vector<std::function<void()>> steps = {
      [&] { Command(state, kAsciiButton); },
      [&] { sheet.StoreSwitch(RxSwitch::kFilterNP, false); },
      [&] { sheet.StoreSwitch(RxSwitch::kNonChars, false); },
      [&] { ApplySheet(state, sheet, u"", u"", u""); },
      [&] { ApplyTransmitPage(state, u""); },
      [&] { Command(state, kHex); },
      [&] { Command(state, kBinaryButton); },
      [&] { Command(state, kDecimal); },
      [&] { ApplySheet(state, sheet, u"", u"ab", u"QQQ"); },
      [&] { sheet.StoreSwitch(RxSwitch::kFilterNP, true); },
      [&] { ApplySheet(state, sheet, u"[0A]", u"ab", u"QQQ"); },
      [&] { Command(state, kOctal); },
      [&] { ApplyTransmitPage(state, u"!"); },
      [&] { Command(state, kBinary); },
      [&] { sheet.StoreSwitch(RxSwitch::kBinBrackets, false); },
      [&] { sheet.StoreSwitch(RxSwitch::kNonChars, true); },
      // Back to what the last Apply left, the transmit page's change included.
      [&] { sheet.Cancel(); },
      [&] { ApplySheet(state, sheet, u"[0A]", u"[00]", u"-"); },
      [&] { Command(state, kPauseRxDisplay); },
      [&] { Command(state, kHex); },
      [&] { Command(state, kPauseRxDisplay); },
      [&] { Command(state, kAsciiButton); },
      [&] { ASSERT_EQ(config::ConfigLoad(state, configPath), 0); },
      [&] { Command(state, kBacklightOnReceive); },
      [&] {
        core::PortSettings edited = state.Port;
        edited.SelectedBaud = edited.SelectedBaud == 57600 ? 9600 : 57600;
        app::ApplyPortPages(state, edited);
      },
  };
  const std::string received = BlockBytes();
  const std::string sent = "send[41]";

  // The same steps without a worker: what each published setting makes of
  // the blocks (every step publishes exactly once).
  std::set<std::string> receiveOutputs{Outcome(state, received, true)};
  std::set<std::string> transmitOutputs{Outcome(state, sent, false)};
  for (size_t i = 0; i < steps.size(); ++i) {
    const core::RxSettings rxBefore = *state.PublishedRx.Load();
    const core::TxSettings txBefore = *state.PublishedTx.Load();
    steps[i]();
    EXPECT_TRUE(core::SettingsArePublished(state)) << "step " << i;
    EXPECT_FALSE(*state.PublishedRx.Load() == rxBefore && *state.PublishedTx.Load() == txBefore)
        << "step " << i << " changed nothing a worker reads";
    receiveOutputs.insert(Outcome(state, received, true));
    transmitOutputs.insert(Outcome(state, sent, false));
  }
  ASSERT_GE(receiveOutputs.size(), 8u);
  ASSERT_GE(transmitOutputs.size(), 3u);

  std::atomic<bool> done{false};
  std::atomic<int> blocks{0};
  std::vector<std::string> stray;  // the worker's alone until it is joined
  std::thread worker([&] {
    int countdown = rx::kRefreshCountdown;
    while (!done) {
      std::string out = Outcome(state, received, true);
      std::string tx = Outcome(state, sent, false);
      rx::RxWndUpdateCycle(state, countdown);
      if (!receiveOutputs.contains(out)) stray.push_back("received " + out.substr(0, 120));
      if (!transmitOutputs.contains(tx)) stray.push_back("sent " + tx);
      ++blocks;
    }
  });
  // Enough rounds that blocks run through every change several times.
  for (int round = 0; round < 4; ++round) {
    for (const auto& step : steps) {
      step();
      std::this_thread::yield();
    }
  }
  while (blocks < 20) std::this_thread::yield();
  done = true;
  worker.join();

  EXPECT_TRUE(stray.empty()) << stray.size() << " blocks mixed two settings, e.g. "
                             << (stray.empty() ? "" : stray.front());
  // A plain store without a publish is what the check is there to catch.
  state.Data.NonChars = state.Data.NonChars ? 0 : 1;
  EXPECT_FALSE(core::SettingsArePublished(state));
}

}  // namespace
}  // namespace wavetrace
