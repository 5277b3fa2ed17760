#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "support/font_builder.h"

namespace kapdf::test {

void InstallFont(const std::string &fileName, const std::string &bytes) {
  const auto folder = std::filesystem::current_path();
  std::ofstream(fileName, std::ios::binary) << bytes;
  std::ofstream("fonts.conf") << "<fontconfig><include ignore_missing=\"yes\">/etc/fonts/fonts.conf</include><dir>"
                              << folder.string() << "</dir></fontconfig>\n";
  setenv("FONTCONFIG_FILE", (folder / "fonts.conf").c_str(), 1);
}

}  // namespace kapdf::test
