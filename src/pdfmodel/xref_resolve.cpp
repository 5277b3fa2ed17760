// From an object number to a position, through object streams where need be.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "base/ascii.h"
#include "base/limits.h"
#include "base/scan.h"
#include "pdfmodel/xref_reader.h"
#include "platform/file.h"

namespace kapdf {
namespace {

constexpr uint32_t kBlockPosition = 1;   // the byte of the block behind its first one
constexpr char kBlockFill = 0x14;        // above the white space, below everything that starts an object
constexpr size_t kBytesBehind = 2;       // that can be read behind a member's text
constexpr size_t kMemberTokenText = 31;  // characters of a number in an object stream's header

// Sets a flag as long as it lives.
class Busy {
 public:
  explicit Busy(bool &flag) : flag_(flag) { flag_ = true; }
  Busy(const Busy &) = delete;
  Busy &operator=(const Busy &) = delete;
  ~Busy() { flag_ = false; }

 private:
  bool &flag_;
};

void DumpObjectStream(int64_t position, std::span<const uint8_t> bytes) {
  const auto path = platform::DiagnosticPath("ObjStm_" + std::to_string(position) + ".txt");
  if (const auto file = platform::CreateNewFile(path)) std::fwrite(bytes.data(), 1, bytes.size(), file.get());
}

}  // namespace

uint32_t XRefReader::Resolve(int32_t objectNumber) {
  const PDFXRefEntry *entry = table_.Find(objectNumber);
  if (!entry) return 0;
  if (entry->type == 'n' || entry->type == 'f') {
    source().LeaveBlock();
    return entry->offset;
  }
  if (entry->type != '2' || entry->offset > INT32_MAX) return 0;
  return ResolveCompressed(static_cast<int32_t>(entry->offset), entry->generation);
}

uint32_t XRefReader::ResolveCompressed(int32_t container, uint32_t index) {
  const ObjectStream *stream = LoadObjectStream(container);
  if (!stream) return 0;
  if (index >= stream->members.size())
    source().ReactivateBlock();  // what was there before is read again
  else if (!ShowMember(*stream, index))
    return 0;
  return kBlockPosition;
}

const XRefReader::ObjectStream *XRefReader::LoadObjectStream(int32_t container) {
  // An object stream that needs another one to be found, or itself, is not followed: neither for its position nor for
  // its length.
  if (loading_) return nullptr;
  if (const auto found = cached_.find(container); found != cached_.end()) {
    cache_.splice(cache_.begin(), cache_, found->second);
    return &cache_.front();
  }
  const PDFXRefEntry *entry = table_.Find(container);
  if (!entry || (entry->type != 'n' && entry->type != 'f') || entry->offset == 0) return nullptr;
  ObjectStream loaded;
  loaded.object = container;
  {
    const Busy busy(loading_);
    if (!ReadObjectStream(*entry, loaded)) return nullptr;
  }

  cachedBytes_ += loaded.MemoryUse();
  cache_.push_front(std::move(loaded));
  cached_[container] = cache_.begin();
  while (cachedBytes_ > limits::kObjectStreamCache && cache_.size() > 1) {
    cachedBytes_ -= cache_.back().MemoryUse();
    cached_.erase(cache_.back().object);
    cache_.pop_back();
  }
  return &cache_.front();
}

bool XRefReader::ReadObjectStream(const PDFXRefEntry &entry, ObjectStream &loaded) {
  source().LeaveBlock();
  if (!source().Seek(entry.offset, SeekOrigin::kStart)) return false;
  CPDFObjectIntro intro(source());
  if (!intro.Parse(255)) return false;
  CPDFStream stream(*this);
  if (!stream.Parse(intro.lastChar)) return false;
  const CPDFDictionary &dictionary = *stream.dictionary();
  const auto *type = dictionary.GetAs<CPDFNameObject>("Type");
  auto bytes = std::make_shared<ByteBuffer>();
  if (!type || type->name != "ObjStm" || !stream.ReadAll(*bytes)) return false;
  if (!source().Charge(static_cast<int64_t>(bytes->size()))) return false;
  if (stream.predictor() != 0) {
    bytes->Resize(UndoRows({bytes->data(), bytes->size()}, stream.predictor(), stream.columns()));
  }
  if (diagnostics_) DumpObjectStream(entry.offset, bytes->span());
  loaded.size = bytes->size();
  bytes->Resize(loaded.size + kBytesBehind);
  std::memset(bytes->data() + loaded.size, kBlockFill, kBytesBehind);
  bytes->ShrinkToFit();
  loaded.bytes = std::move(bytes);
  const auto *count = dictionary.GetAs<CPDFNumeric>("N");
  const auto *first = dictionary.GetAs<CPDFNumeric>("First");
  loaded.announced = count ? static_cast<uint64_t>(std::max(count->intValue, 0)) : 0;
  loaded.first = first ? static_cast<uint64_t>(std::max(first->intValue, 0)) : 0;
  ReadMembers(loaded);
  return true;
}

void XRefReader::ReadMembers(ObjectStream &stream) {
  const auto *text = reinterpret_cast<const char *>(stream.bytes->data());
  const size_t size = std::min<uint64_t>(stream.first, stream.size);
  size_t at = 0;
  const auto token = [&]() -> std::string_view {
    while (at < size && IsSpace(static_cast<uint8_t>(text[at]))) ++at;
    const size_t start = at;
    while (at < size && !IsSpace(static_cast<uint8_t>(text[at]))) ++at;
    return {text + start, at - start};
  };
  while (stream.members.size() < std::min<uint64_t>(stream.announced, limits::kObjectStreamMembers)) {
    const std::string_view number = token();
    const std::string_view offset = token();
    if (offset.empty() || number.size() > kMemberTokenText || offset.size() > kMemberTokenText) break;
    const int32_t value = IntegerFrom(std::string(offset).c_str());
    stream.members.push_back({std::string(number), static_cast<uint64_t>(std::max(value, 0))});
  }
}

// The block is one fill byte, "n 0 obj ", and the object's text where it was decoded, with two bytes more than its
// length. The number is the header's own. False when the document has asked for too much.
bool XRefReader::ShowMember(const ObjectStream &stream, uint32_t index) {
  const ObjectStream::Member &member = stream.members[index];
  const uint64_t size = stream.size;
  const uint64_t start = std::min(member.offset + stream.first, size);
  uint64_t length = size - start;
  if (index + 1 < stream.announced && index + 1 < stream.members.size()) {
    const uint64_t next = stream.members[index + 1].offset;
    if (next > member.offset && next <= size) length = std::min(length, next - member.offset - 1);
  }
  if (!source().Charge(static_cast<int64_t>(length))) return false;
  std::shared_ptr<const uint8_t> text(stream.bytes, stream.bytes->data() + start);
  source().ActivateBlock(kBlockFill + member.number + " 0 obj ", std::move(text), length + kBytesBehind);
  return true;
}

}  // namespace kapdf
