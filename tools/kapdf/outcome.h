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

}  // namespace kapdf::tool
