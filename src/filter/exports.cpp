// The two exports, the table of filter rows, and the start and end of the module.
#include <new>

#include "base/catch_all.h"
#include "filter/filter.h"
#include "platform/module.h"
#include "renderer/renderer.h"

namespace {

// One class reads and writes.
FilterObject *Create(const char16_t *registryPath) {
  return kapdf::CatchAll(nullptr, [&] {
    return reinterpret_cast<FilterObject *>(static_cast<kapdf::CZVFilter *>(new kapdf::CPDFFilter(registryPath)));
  });
}

// One each, since hosts may tell the rows by them.
FilterObject *CreateReader(const char16_t *registryPath) { return Create(registryPath); }
FilterObject *CreateWriter(const char16_t *registryPath) { return Create(registryPath); }

void DestroyFilter(FilterObject *filter) {
  if (filter) reinterpret_cast<kapdf::CZVFilter *>(filter)->Destroy(1);
}

constexpr uint32_t kReadFlags = 0x30106, kWriteFlags = 0x10107;
const FilterRow kRows[] = {{kReadFlags, 0, u"Adobe PDF", u"PDF", CreateReader, DestroyFilter},
                           {kWriteFlags, 0, u"Adobe PDF", u"PDF", CreateWriter, DestroyFilter}};

}  // namespace

extern "C" {

uint32_t ZVGetFilterApiVersion(void) { return KAPDF_API_VERSION; }

uint32_t ZVGetFilterInfo(FilterInfo *info) {
  *info = {KAPDF_FILTER_VERSION, 0, u"7.0", u"kaPDF", 2, 0, kRows};
  return 0;
}

}  // extern "C"

namespace kapdf::platform {

// Hosts expect the module's folder to be the current one once it is loaded.
void OnModuleAttach() {
  if (const std::u16string folder = ModuleFolder(); !folder.empty()) SetCurrentFolder(folder);
  LoadRenderer();
}

void OnModuleDetach() { ReleaseRenderer(); }

}  // namespace kapdf::platform
