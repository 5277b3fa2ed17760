// Where nothing may be thrown any further: at the module's boundary, and in what others call back.
#pragma once

#include <type_traits>

namespace kapdf {

// What `call` gives, or `failure` when something was thrown, which is memory that ran out.
template <class Call>
std::invoke_result_t<Call> CatchAll(std::type_identity_t<std::invoke_result_t<Call>> failure, Call call) noexcept {
  try {
    return call();
  } catch (...) {
    return failure;
  }
}

}  // namespace kapdf
