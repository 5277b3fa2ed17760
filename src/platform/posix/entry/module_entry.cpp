#include "platform/module.h"

namespace {

__attribute__((constructor)) void Attach() { kapdf::platform::OnModuleAttach(); }
__attribute__((destructor)) void Detach() { kapdf::platform::OnModuleDetach(); }

}  // namespace
