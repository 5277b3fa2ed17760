// The seeds of the fuzz targets, made here byte by byte.
#pragma once

#include <string>
#include <string_view>

namespace kapdf::fuzz {

// Where the seeds of one target go, one file each.
class SeedFolder {
 public:
  // Makes the folder `folder`/`target` anew.
  SeedFolder(std::string_view folder, std::string_view target);
  void Add(std::string_view name, std::string_view bytes);

 private:
  std::string path_;
};

void AddDocuments(SeedFolder &folder);
// Small files that ask for as much time or memory as they can. Too slow to mutate; they are only replayed.
void AddBombs(SeedFolder &folder);
void AddObjects(SeedFolder &folder);
void AddCurves(SeedFolder &folder);
void AddContents(SeedFolder &folder);
void AddDrawings(SeedFolder &folder);
void AddCodecs(SeedFolder &folder);
void AddImages(SeedFolder &folder);
void AddFaxes(SeedFolder &folder);
void AddRasters(SeedFolder &folder);
void AddCMaps(SeedFolder &folder);
void AddFonts(SeedFolder &folder);
void AddSubsets(SeedFolder &folder);

// Statements of every group of operators.
std::string_view SampleContent();

}  // namespace kapdf::fuzz
