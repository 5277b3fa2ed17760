// fuzz_seeds FOLDER: writes the seeds of every fuzz target.
#include <cstdio>
#include <filesystem>
#include <fstream>

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
<<<<<<< HEAD
  SeedFolder import(argv[1], "import"), objects(argv[1], "objects"), content(argv[1], "content"),
      exports(argv[1], "export"), codecs(argv[1], "codecs"), images(argv[1], "images"), faxes(argv[1], "ccitt"),
      rasters(argv[1], "raster"), cmaps(argv[1], "cmap"), fonts(argv[1], "font"), subsets(argv[1], "subset"),
      curves(argv[1], "recognition"), bombs(argv[1], "bombs");
=======
  SeedFolder import(argv[1], "import"), append(argv[1], "append"), objects(argv[1], "objects"),
      content(argv[1], "content"), exports(argv[1], "export"), codecs(argv[1], "codecs"), images(argv[1], "images"),
      faxes(argv[1], "ccitt"), rasters(argv[1], "raster"), cmaps(argv[1], "cmap"), fonts(argv[1], "font"),
      subsets(argv[1], "subset"), bombs(argv[1], "bombs");
>>>>>>> 16e92bc (Fuzz pages added to any file)
  AddDocuments(import);
  AddDocuments(append);
  AddObjects(objects);
  AddContents(content);
  AddDrawings(exports);
  AddCodecs(codecs);
  AddImages(images);
  AddFaxes(faxes);
  AddRasters(rasters);
  AddCMaps(cmaps);
  AddFonts(fonts);
  AddSubsets(subsets);
  AddCurves(curves);
  AddBombs(bombs);
  return 0;
}
