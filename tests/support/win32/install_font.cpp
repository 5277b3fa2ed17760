#include <windows.h>

#include <filesystem>
#include <fstream>

#include "support/font_builder.h"

namespace kapdf::test {

void InstallFont(const std::string &fileName, const std::string &bytes) {
  std::ofstream(fileName, std::ios::binary) << bytes;
  AddFontResourceExW((std::filesystem::current_path() / fileName).c_str(), FR_PRIVATE, nullptr);
}

}  // namespace kapdf::test
