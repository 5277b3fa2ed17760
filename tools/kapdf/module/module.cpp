#include "module/module.h"

namespace kapdf::tool {

std::string VersionText(uint32_t version) {
  return std::to_string(version >> 16) + "." + std::to_string(version & 0xFFFF);
}

Outcome Module::Load(const std::string &path) {
  std::string reason;
  library_ = Library::Open(path, reason);
  if (!library_) return Fail("cannot load the module " + path + ": " + reason);
  const auto version = reinterpret_cast<ZVGetFilterApiVersionFunction>(library_.Find("ZVGetFilterApiVersion"));
  const auto information = reinterpret_cast<ZVGetFilterInfoFunction>(library_.Find("ZVGetFilterInfo"));
  if (version == nullptr || information == nullptr) {
    return Fail(path + " is not a filter module: its two exports are missing");
  }
  if (version() != KAPDF_API_VERSION || information(&info_) != 0 || info_.filters == nullptr) {
    return Fail("the module " + path + " speaks another version of the contract");
  }
  path_ = path;
  return {};
}

const FilterRow *Module::FindRow(uint32_t mask, uint32_t bits) const {
  for (uint32_t i = 0; i < info_.filterCount; ++i) {
    if ((info_.filters[i].flags & mask) == bits) return &info_.filters[i];
  }
  return nullptr;
}

Outcome Filter::Create(const FilterRow *row, const char16_t *registryPath) {
  if (row == nullptr) return Fail("the module has no filter for this direction");
  object_ = std::unique_ptr<FilterObject, DestroyFilter>(row->create(registryPath), DestroyFilter{row->destroy});
  return object_ != nullptr ? Outcome{} : Fail("the module could not make a filter object");
}

}  // namespace kapdf::tool
