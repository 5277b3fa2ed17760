#include "pdfmodel/pdf_file.h"

#include <algorithm>
#include <string>

#include "base/ascii.h"
#include "base/bytes.h"
#include "base/scan.h"
#include "platform/settings.h"

namespace kapdf {
namespace {

constexpr int64_t kTailBytes = 1024;
constexpr std::string_view kStartWord = "startxref";
constexpr size_t kStartSearch = 13;  // the word and at least four bytes behind it
constexpr size_t kTrailerLetters = 256;

}  // namespace

void SetFormatName(FileInfo &info) {
  static constexpr char16_t kName[11] = u"Adobe PDF ";
  std::memcpy(reinterpret_cast<char *>(&info) + offsetof(FileInfo, formatName), kName, sizeof kName);
}

CPDFFile::CPDFFile(std::FILE *stream, std::u16string_view registryPath) : CPDFFile(registryPath) { Attach(stream); }

CPDFFile::CPDFFile(ByteBuffer bytes, std::u16string_view registryPath) : CPDFFile(registryPath) {
  Attach(std::move(bytes));
}

CPDFFile::CPDFFile(std::u16string_view registryPath) : CPDFBlockSource(registryPath) {
  const platform::SettingsAt<SettingKey::kPdf> settings(registryPath);
  xref_ = std::make_unique<XRefReader>(*this, settings.Switch("WriteToTxt"));
  pageTree_ = std::make_unique<PDFPageTree>(*xref_);
}

CPDFFile::~CPDFFile() = default;

uint32_t CPDFFile::FindStartXRef(int32_t &position) {
  const int64_t tail = std::min(length() - 4, kTailBytes);
  if (tail < 0) return FilterNoRoot;
  char head[4];
  Seek(0, SeekOrigin::kStart);
  if (Read(head, sizeof head) != sizeof head || std::string_view(head, 4) != "%PDF") return FilterNotPdf;
  if (!Seek(-tail, SeekOrigin::kEnd) || Tell() < 1) return FilterDamaged;
  std::string text(static_cast<size_t>(tail), '\0');
  if (Read(text.data(), text.size()) != text.size()) return FilterNoRoot;
  if (text.size() < kStartSearch) return FilterNotPdf;
  const size_t found = text.rfind(kStartWord, text.size() - kStartSearch);
  if (found == std::string::npos) return FilterNotPdf;
  position = IntegerFrom(text.c_str() + found + kStartWord.size());
  return 0;
}

uint32_t CPDFFile::Open(FileInfo &info) {
  int32_t startXref = 0;
  if (const uint32_t result = FindStartXRef(startXref)) return result;
  if (!Seek(startXref, SeekOrigin::kStart)) return FilterNotPdf;
  xref_->VisitSection(startXref);
  if (const uint32_t result = ReadSections()) return result;
  if (!root_) return FilterNoRoot;
  if (const uint32_t result = ReadRoot()) return result;
  pageTree_->Walk(pagesRoot_->objectNumber);
  LeaveBlock();
  info.pageCount = static_cast<int32_t>(pageTree_->pageObjects().size());
  SetFormatName(info);
  return 0;
}

uint32_t CPDFFile::ReadSections() {
  for (;;) {
    switch (xref_->ReadSection()) {
      case SectionEnd::kEncrypted:
        return FilterEncrypted;
      case SectionEnd::kUnreadable:
        return FilterNotPdf;
      case SectionEnd::kChainEnded:
        if (const auto *root = xref_->streamRoot(); root && !root_) root_ = root->Copy();
        return 0;
      case SectionEnd::kTrailer:
        break;
    }
    // The "t" is gone already; the first byte that is no letter is the dictionary's.
    std::string word;
    uint8_t c = GetByte();
    for (; IsLetter(c) && word.size() < kTrailerLetters; c = GetByte()) word += static_cast<char>(c);
    if (word != "railer") return FilterNotPdf;
    Seek(AtEnd() ? 0 : -1, SeekOrigin::kCurrent);
    int64_t previous = 0;
    if (const uint32_t result = ReadTrailer(previous)) return result;
    if (previous == 0 || !Seek(previous, SeekOrigin::kStart)) return 0;
  }
}

uint32_t CPDFFile::ReadTrailer(int64_t &previous) {
  CPDFDictionary trailer(*this);
  if (!trailer.Parse(255)) return 0;  // the chain ends here
  // A dictionary in place of the reference is not looked at: the file is read as if it were clear.
  if (trailer.GetAs<CPDFIndirectObject>("Encrypt")) return FilterEncrypted;
  if (const auto *root = trailer.GetAs<CPDFIndirectObject>("Root"); root && !root_) root_ = root->Copy();
  if (!trailer.GetAs<CPDFNumeric>("Size")) return FilterNotPdf;
  const auto *link = trailer.GetAs<CPDFNumeric>("Prev");
  if (link && xref_->VisitSection(link->intValue)) previous = link->intValue;
  return 0;
}

uint32_t CPDFFile::ReadRoot() {
  const uint32_t position = xref_->Resolve(root_->objectNumber);
  if (position > INT32_MAX) return FilterNotPdf;
  uint8_t firstChar;
  CPDFDictionary catalog(*this);
  if (!OpenAt(*xref_, position, firstChar) || !catalog.Parse(firstChar)) return FilterNotPdf;
  if (const auto *pages = catalog.GetAs<CPDFIndirectObject>("Pages")) pagesRoot_ = pages->Copy();
  if (!pagesRoot_ || xref_->Resolve(pagesRoot_->objectNumber) == 0) return FilterNotPdf;
  return 0;
}

bool CPDFFile::GetPage(int32_t index, PagePosition &page) const {
  const auto &pages = pageTree_->pageObjects();
  if (index < 0 || static_cast<size_t>(index) >= pages.size()) return false;
  page.objectNumber = static_cast<int32_t>(pages[static_cast<size_t>(index)]);
  page.rotate = pageTree_->rotate();
  page.box = pageTree_->box();
  return true;
}

}  // namespace kapdf
