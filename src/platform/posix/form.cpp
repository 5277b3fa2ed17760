#include "platform/form.h"

namespace kapdf::platform {

FormAnswer ShowForm(void *, uint32_t, std::span<FormField>) { return FormAnswer::kUnavailable; }

}  // namespace kapdf::platform
