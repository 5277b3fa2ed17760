// The outside renderer: two libraries that may stand beside the module. The table of their functions and the
// conversion under way belong to the whole process, since the renderer handles one conversion at a time.
#pragma once

#include <string>

#include "kapdf/kapdf.h"
#include "renderer/functions.h"

namespace kapdf {

// At the start of the module. With a library missing the table stays empty; what else is missing stays null.
void LoadRenderer();
// At its end.
void ReleaseRenderer();

RendererFunctions &Renderer();

// Calls a function of the table if it is there; its answer does not matter.
template <class Function, class... Arguments>
void CallIfThere(Function *function, Arguments... arguments) {
  if (function) function(arguments...);
}

// Makes a host's progress object that of the conversion under way, as long as this lives. It is the renderer's lock,
// too: a conversion without one does not keep others away.
class RendererConversion {
 public:
  explicit RendererConversion(ProgressObject *progress);
  RendererConversion(const RendererConversion &) = delete;
  RendererConversion &operator=(const RendererConversion &) = delete;
  ~RendererConversion();
};

bool RendererIsBusy();
// Asks another conversion to stop and waits for that, up to ten seconds. False when it still runs.
bool StopRenderer();
// Handed to the renderer: asks the current progress object.
int RendererProgress(int percent, void *a, void *b, void *c);

// A file in the system's folder for such files, as the renderer names the output of a page (from 1).
std::string RendererOutputName(const std::string &target, int page);

}  // namespace kapdf
