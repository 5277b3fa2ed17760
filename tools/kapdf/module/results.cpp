#include "module/results.h"

#include <cstdio>
#include <span>

#include "kapdf/kapdf.h"

namespace kapdf::tool {
namespace {

struct Words {
  uint32_t result;
  const char *words;
};

constexpr Words kOpenWords[] = {
    {FilterDamaged, "the file is damaged, or its page cannot be built"},
    {FilterCannotWrite, "the file cannot be opened for writing"},
    {FilterCannotRead, "the file cannot be opened for reading"},
    {FilterNoRoot, "the file breaks off early or has no document root"},
    {FilterEncrypted, "the file is encrypted"},
    {FilterNotPdf, "it is not a PDF file, its cross-reference data is of no use, or the renderer failed"},
    {FilterBadOption, "a value in the option string is wrong"},
};
constexpr Words kElementWords[] = {
    {FilterPageError, "an image or a page could not be looked up"},
    {FilterNotAvailable, "it is not available"},
    {FilterNotOpen, "no document is open"},
    {FilterBadRaster, "a raster of this type cannot be written"},
    {FilterNoRasterOpen, "rows came without a raster header"},
    {FilterNoMoreRows, "there are no more rows"},
    {FilterCancelled, "it was stopped"},
    {FilterConsumed, "it was taken, but nothing is drawn"},
    {FilterUnsupported, "it is not supported"},
    {FilterEndOfElements, "there are no more elements"},
};

std::string Tell(std::span<const Words> table, uint32_t result) {
  char number[16];
  std::snprintf(number, sizeof number, result > 0xFFFF ? "0x%08X" : "%u", static_cast<unsigned>(result));
  const char *words = "the module gave an unknown answer";
  for (const Words &row : table) {
    if (row.result == result) words = row.words;
  }
  return std::string(words) + " (result " + number + ")";
}

}  // namespace

std::string OpenResult(uint32_t result) { return Tell(kOpenWords, result); }
std::string ElementResult(uint32_t result) { return Tell(kElementWords, result); }

}  // namespace kapdf::tool
