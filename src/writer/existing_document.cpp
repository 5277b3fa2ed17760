#include "writer/existing_document.h"

#include <algorithm>

#include "pdfmodel/pdf_file.h"

namespace kapdf {
namespace {

constexpr int32_t kHighestNumber = 0x7FF00000;  // room for the numbers of one page more

bool LeavesRoom(const PDFXRef &table) {
  const auto sane = [](const PDFXRefBlock &block) { return block.firstObject >= 0 && block.count >= 0; };
  return table.HighestObject() < kHighestNumber && std::ranges::all_of(table.blocks(), sane);
}

}  // namespace

std::optional<ExistingDocument> ReadExistingDocument(std::FILE *stream, std::u16string_view registryPath) {
  CPDFFile file(stream, registryPath);
  FileInfo info{};  // the host's own keeps its page count
  if (file.Open(info) != FilterOk || !LeavesRoom(file.xrefTable())) return std::nullopt;
  ExistingDocument document;
  document.table.CopyFrom(file.xrefTable());
  document.pages = file.pageObjects();
  return document;
}

}  // namespace kapdf
