#include "system/progress.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>

#include "system/os.h"
#include "system/outcome.h"

namespace kapdf::tool {
namespace {

volatile std::sig_atomic_t interrupted = 0;

void OnInterrupt(int signal) {
  if (interrupted != 0) {
    SettingsForRun::RemoveInHaste();
    std::_Exit(kExitInterrupted);
  }
  interrupted = 1;
  // Some systems fall back to the default after one signal.
  std::signal(signal, OnInterrupt);
}

}  // namespace

InterruptGuard::InterruptGuard() {
  interrupted = 0;
  for (const int signal : StopSignals()) previous_.emplace_back(signal, std::signal(signal, OnInterrupt));
}

InterruptGuard::~InterruptGuard() {
  for (const auto &[signal, handler] : previous_) std::signal(signal, handler);
}

bool InterruptGuard::Requested() { return interrupted != 0; }

const ProgressTable Progress::kTable = {Ignore, Ignore, ReportTo, Ignore, Ignore, Ignore, Stop};

Progress::Progress(std::ostream &out, bool visible)
    : shell_{{&kTable}, this}, out_(out), visible_(visible), start_(std::chrono::steady_clock::now()) {
  next_ = start_ + std::chrono::seconds(1);
}

void Progress::SetPart(int index, int count) {
  part_ = index;
  parts_ = std::max(1, count);
}

bool Progress::Report(double fraction) {
  // The clock is asked rarely: reports come with every element.
  if (visible_ && ++skipped_ >= 64) {
    skipped_ = 0;
    if (const auto now = std::chrono::steady_clock::now(); now >= next_) {
      next_ = now + std::chrono::milliseconds(100);
      Draw((part_ + std::clamp(fraction, 0.0, 1.0)) / parts_);
    }
  }
  return stopped_ || InterruptGuard::Requested();
}

void Progress::Draw(double fraction) {
  constexpr int kCells = 40;
  const int done = static_cast<int>(fraction * kCells);
  std::string bar =
      "\r[" + std::string(static_cast<size_t>(done), '=') + std::string(static_cast<size_t>(kCells - done), ' ');
  bar += "] " + std::to_string(static_cast<int>(fraction * 100)) + " % ";
  out_ << bar << std::flush;
  drawn_ = true;
}

void Progress::Clear() {
  if (!drawn_) return;
  out_ << '\r' << std::string(52, ' ') << '\r' << std::flush;
  drawn_ = false;
}

uint32_t Progress::ReportTo(ProgressObject *self, double fraction) {
  return reinterpret_cast<Shell *>(self)->owner->Report(fraction) ? 1 : 0;
}

void Progress::Ignore(ProgressObject *) {}

void Progress::Stop(ProgressObject *self) { reinterpret_cast<Shell *>(self)->owner->stopped_ = true; }

}  // namespace kapdf::tool
