// How a step of the program ended: an exit status and, when it failed, one sentence for the user.
#pragma once

#include <string>
#include <utility>

namespace kapdf::tool {

inline constexpr int kExitDone = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;
inline constexpr int kExitInterrupted = 130;

struct [[nodiscard]] Outcome {
  int status = kExitDone;
  std::string sentence;
  bool ok() const { return status == kExitDone; }
};

inline Outcome Fail(std::string sentence) { return {kExitFailure, std::move(sentence)}; }
inline Outcome FailUsage(std::string sentence) { return {kExitUsage, std::move(sentence)}; }
inline Outcome Interrupted() { return {kExitInterrupted, "stopped; nothing was kept"}; }

// `page` counts from 1 and is not one of the `pages`.
inline Outcome NoSuchPage(const std::string &name, int page, int pages) {
  if (pages < 1) return Fail(name + " has no pages");
  return Fail(name + " has no page " + std::to_string(page) + "; its pages are 1 to " + std::to_string(pages));
}

}  // namespace kapdf::tool
