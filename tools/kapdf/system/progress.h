// Progress of a long run: the object that the module reports to, the bar on a terminal, and Ctrl-C.
#pragma once

#include <chrono>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "kapdf/kapdf.h"

namespace kapdf::tool {

// From construction to destruction Ctrl-C and its like ask the run to stop instead of ending the program. A second one
// ends it.
class InterruptGuard {
 public:
  InterruptGuard();
  ~InterruptGuard();
  InterruptGuard(const InterruptGuard &) = delete;
  InterruptGuard &operator=(const InterruptGuard &) = delete;
  static bool Requested();

 private:
  using Handler = void (*)(int);
  std::vector<std::pair<int, Handler>> previous_;
};

// Standard layout ahead of everything else: the module sees a ProgressObject.
class Progress {
 public:
  // Draws to `out` when `visible`, once the work has taken a second.
  Progress(std::ostream &out, bool visible);
  ~Progress() { Clear(); }
  Progress(const Progress &) = delete;
  Progress &operator=(const Progress &) = delete;

  ProgressObject *object() { return &shell_.object; }
  // Part `index` of `count` equal ones is under way; reports count within it.
  void SetPart(int index, int count);
  // True when the run should stop.
  bool Report(double fraction);
  // Takes the bar off the terminal.
  void Clear();

 private:
  // What the module holds is the first member; the way back to the owner stands behind it.
  struct Shell {
    ProgressObject object;
    Progress *owner;
  };
  static uint32_t ReportTo(ProgressObject *self, double fraction);
  static void Ignore(ProgressObject *self);
  static void Stop(ProgressObject *self);
  void Draw(double fraction);

  static const ProgressTable kTable;
  Shell shell_;
  std::ostream &out_;
  bool visible_, drawn_ = false, stopped_ = false;
  int part_ = 0, parts_ = 1;
  unsigned skipped_ = 0;
  std::chrono::steady_clock::time_point start_, next_;
};

}  // namespace kapdf::tool
