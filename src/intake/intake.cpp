#include "intake/intake.h"

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFExc.hh>
#include <qpdf/QUtil.hh>

#include "base/limits.h"
#include "intake/page_copier.h"
#include "intake/page_list.h"
#include "kapdf/kapdf.h"
#include "platform/file.h"

namespace kapdf {

struct Intake::Document {
  std::string bytes;  // where the file could not be read as it is; outlives what reads it
  QPDF pdf;
  std::vector<QPDFObjectHandle> pages;
  int64_t fileBytes = 0;
};

namespace {

// Opens by what `process` does: the file with one spelling of the password, or bytes in memory.
template <class Process>
uint32_t OpenWith(QPDF &pdf, Process process) {
  pdf.setSuppressWarnings(true);
  pdf.setAttemptRecovery(true);
  try {
    process();
    return FilterOk;
  } catch (const QPDFExc &problem) {
    const bool locked = problem.getErrorCode() == qpdf_e_password || problem.getErrorCode() == qpdf_e_unsupported;
    return locked ? FilterEncrypted : FilterNotPdf;
  } catch (const std::logic_error &) {
    return FilterNotPdf;
  } catch (const std::runtime_error &) {
    return FilterNotPdf;
  }
}

// The number in front of the " obj" that ends before the position; 0 for none.
int NumberOfObjectBefore(const std::string &bytes, size_t position) {
  constexpr size_t kLookedAt = 1024, kDigits = 9;
  const size_t from = position - std::min(position, kLookedAt);
  const size_t word = bytes.substr(from, position - from).rfind(" obj");
  if (word == std::string::npos) return 0;
  size_t at = from + word;
  const auto isDigit = [&](size_t i) { return bytes[i] >= '0' && bytes[i] <= '9'; };
  while (at > 0 && isDigit(at - 1)) --at;
  while (at > 0 && bytes[at - 1] == ' ') --at;
  const size_t end = at;
  while (at > 0 && end - at < kDigits && isDigit(at - 1)) --at;
  return at == end ? 0 : std::stoi(bytes.substr(at, end - at));
}

// A file that was cut off has lost its trailer, without which the library recovers nothing: it gets one behind its end.
// False when it is no PDF file or too large to be taken into memory.
bool GiveTrailer(std::FILE *stream, int64_t length, std::string &bytes) {
  if (length < 1 || length > limits::kTrailerless || !platform::SeekFile(stream, 0, SEEK_SET)) return false;
  bytes.resize(static_cast<size_t>(length));
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), stream));
  if (bytes.substr(0, 1024).find("%PDF-") == std::string::npos) return false;
  const size_t catalogue = bytes.rfind("/Catalog");
  const int root = catalogue == std::string::npos ? 0 : NumberOfObjectBefore(bytes, catalogue);
  bytes += "\ntrailer\n<</Size 1";
  if (root > 0) bytes += "/Root " + std::to_string(root) + " 0 R";
  bytes += ">>\n";
  return true;
}

}  // namespace

Intake::Intake() = default;
Intake::~Intake() = default;

// Older encryption takes the password in an encoding that nobody tells, so that those which people use are tried.
uint32_t Intake::Open(std::FILE *stream, std::string_view password) {
  std::vector<std::string> spellings{std::string(password)};
  if (!password.empty()) {
    for (std::string &other : QUtil::possible_repaired_encodings(spellings.front())) {
      if (other != spellings.front()) spellings.push_back(std::move(other));
    }
  }
  uint32_t result = FilterEncrypted;
  for (size_t i = 0; i < spellings.size() && result == FilterEncrypted; ++i) {
    document_ = std::make_unique<Document>();
    QPDF &pdf = document_->pdf;
    result = OpenWith(pdf, [&] { pdf.processFile("document", stream, false, spellings[i].c_str()); });
  }
  const int64_t length = platform::SeekFile(stream, 0, SEEK_END) ? platform::TellFile(stream) : 0;
  std::string bytes;
  if (result == FilterNotPdf && GiveTrailer(stream, length, bytes)) {
    document_ = std::make_unique<Document>();
    document_->bytes = std::move(bytes);
    QPDF &pdf = document_->pdf;
    const std::string &whole = document_->bytes;
    result = OpenWith(pdf, [&] { pdf.processMemoryFile("document", whole.data(), whole.size()); });
  }
  if (result == FilterOk) {
    document_->fileBytes = length;
    document_->pages = ListPages(document_->pdf);
    if (document_->pages.empty()) result = FilterDamaged;
  }
  if (result != FilterOk) document_.reset();
  return result;
}

int32_t Intake::pageCount() const { return document_ ? static_cast<int32_t>(document_->pages.size()) : 0; }

bool Intake::TakePage(int32_t index, bool annotations, ByteBuffer &document) {
  if (index < 0 || index >= pageCount()) return false;
  try {
    PageCopier copier(document_->pdf, document_->fileBytes);
    return copier.Copy(document_->pages[static_cast<size_t>(index)], annotations, document);
  } catch (const std::bad_alloc &) {
    throw;
  } catch (const std::exception &) {  // what the library cannot take at all
    return false;
  }
}

IntakeFacts Intake::facts() const {
  IntakeFacts facts;
  if (!document_) return facts;
  QPDF &pdf = document_->pdf;
  facts.warnings = static_cast<uint32_t>(pdf.numWarnings());
  int revision = 0, permissions = 0, version = 0;
  QPDF::encryption_method_e streams, strings, files;
  if (!pdf.isEncrypted(revision, permissions, version, streams, strings, files)) return facts;
  facts.permissions = permissions;
  const std::string bits = std::to_string(pdf.getEncryptionKey().size() * 8);
  facts.encryption = (streams == QPDF::e_aes || streams == QPDF::e_aesv3 ? "AES " : "RC4 ") + bits;
  return facts;
}

}  // namespace kapdf
