// fuzz_seeds FOLDER: writes the seeds of every fuzz target.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <utility>

#include "seeds/seeds.h"

namespace kapdf::fuzz {

SeedFolder::SeedFolder(std::string_view folder, std::string_view target)
    : path_((std::filesystem::path(folder) / target).string()) {
  std::filesystem::remove_all(path_);
  std::filesystem::create_directories(path_);
}

void SeedFolder::Add(std::string_view name, std::string_view bytes) {
  std::ofstream file(std::filesystem::path(path_) / name, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace kapdf::fuzz

int main(int argc, char **argv) {
  using namespace kapdf::fuzz;
  if (argc != 2) {
    std::fprintf(stderr, "usage: fuzz_seeds FOLDER\n");
    return 2;
  }
  constexpr std::pair<const char *, void (*)(SeedFolder &)> kTargets[] = {
      {"import", AddDocuments},   {"append", AddDocuments}, {"objects", AddObjects},   {"content", AddContents},
      {"export", AddDrawings},    {"codecs", AddCodecs},    {"images", AddImages},     {"ccitt", AddFaxes},
      {"raster", AddRasters},     {"cmap", AddCMaps},       {"font", AddFonts},        {"subset", AddSubsets},
      {"recognition", AddCurves}, {"bombs", AddBombs},      {"extended", AddDocuments}};
  for (const auto &[target, add] : kTargets) {
    SeedFolder folder(argv[1], target);
    add(folder);
  }
  return 0;
}
