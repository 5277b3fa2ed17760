#include "writer/write_file.h"

#include <algorithm>

namespace kapdf {

CPDFWriteFile::CPDFWriteFile(std::FILE *stream, std::u16string_view registryPath, std::u16string_view path)
    : CZVFFile(stream, false, registryPath), document_(stream), options_(WriteOptions::Of(registryPath)), path_(path) {}

void CPDFWriteFile::SetPage(int32_t pageIndex, int32_t pageCount) {
  pageIndex_ = std::max(pageIndex, kAddPage);
  pageCount_ = pageCount;
}

void CPDFWriteFile::Override(const WriteSettings &settings) { options_.Override(settings); }

void CPDFWriteFile::EndSection(int32_t section) {
  if (section == KAPDF_SECTION_PAGE) ClosePageDictionary();
  section_ = 0;
}

int32_t CPDFWriteFile::ReserveHere() {
  AppendHere();
  return Reserve();
}

// The object whose number was given out earlier stands here.
TextOut &CPDFWriteFile::BeginReserved(int32_t number) {
  xref_.Set(Offset(), number, 'n');
  return out_.BeginObject(number);
}

void CPDFWriteFile::WriteLength(int32_t number, std::string_view text) {
  BeginReserved(number).Text(text).Text("endobj\r");
}

}  // namespace kapdf
