#include "fonts/code_spaces.h"

#include "base/limits.h"

namespace kapdf {

void CodeSpaces::Add(const CodeSpace &space) {
  if (list_.size() < limits::kCodeSpaces) list_.push_back(space);
}

void CodeSpaces::Append(const CodeSpaces &other) {
  if (room_ == 0) room_ = other.room_;
  for (const CodeSpace &space : other.list_) Add(space);
}

}  // namespace kapdf
