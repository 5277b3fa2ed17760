#include "io/codec_jbig2.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <span>
#include <vector>

#include "base/limits.h"

#define inline inline  // jbig2.h defines it as nothing unless it is a macro
#include <jbig2.h>
#undef inline

namespace kapdf {
namespace {

constexpr size_t kPieceBytes = 4096;
constexpr size_t kEarnedPerByte = 1024;  // allocated bytes for each coded byte, beside the allowance
constexpr size_t kMostAllocated = size_t{1} << 30;
constexpr uint64_t kComposed = uint64_t{16} << 30;  // bytes of symbols and patterns that are put on regions

constexpr uint64_t kInstances = 1'000'000;  // of symbols in one region, beside an eighth of a bit for each

using Bytes = std::span<const uint8_t>;

// What the library allocates, all in all, stands for its work as well: it decodes into what it allocated before.
struct Allocator : Jbig2Allocator {
  size_t left;
  size_t largestImage = 0;  // bytes, of those made while `watching`
  bool watching = false;
  bool imageNext = false;  // the library allocates the structure of an image and then its rows

  explicit Allocator(size_t allowance) : Jbig2Allocator{}, left(allowance) {
    alloc = [](Jbig2Allocator *self, size_t size) { return static_cast<Allocator *>(self)->Renew(nullptr, size); };
    realloc = [](Jbig2Allocator *self, void *old, size_t size) {
      return static_cast<Allocator *>(self)->Renew(old, size);
    };
    free = [](Jbig2Allocator *, void *old) {
      if (old) std::free(static_cast<uint8_t *>(old) - kHead);
    };
  }

 private:
  static constexpr size_t kHead = alignof(std::max_align_t);  // holds the size of what follows

  void *Renew(void *old, size_t size) {
    uint8_t *block = old ? static_cast<uint8_t *>(old) - kHead : nullptr;
    size_t before = 0;
    if (block) std::memcpy(&before, block, sizeof before);
    const size_t more = size > before ? size - before : 0;
    if (more > left) return nullptr;
    block = static_cast<uint8_t *>(std::realloc(block, kHead + size));
    if (!block) return nullptr;
    left -= more;
    std::memcpy(block, &size, sizeof size);
    if (watching && imageNext) largestImage = std::max(largestImage, size);
    imageNext = !old && size == sizeof(Jbig2Image);
    return block + kHead;
  }
};

uint32_t Word(Bytes bytes, size_t at) {
  uint32_t value = 0;
  for (size_t i = 0; i < 4; ++i) value = value << 8 | (at + i < bytes.size() ? bytes[at + i] : 0);
  return value;
}

// The header of one segment.
struct Segment {
  size_t headBytes = 0;
  uint8_t type = 0;
  uint32_t dataBytes = 0;

  // False when the bytes do not hold a whole header.
  bool Read(Bytes bytes) {
    if (bytes.size() < 11) return false;
    const uint32_t number = Word(bytes, 0);
    type = bytes[4] & 63;
    uint64_t references = bytes[5] >> 5, at = 6;
    if (references == 7) {
      references = Word(bytes, 5) & 0x1FFFFFFF;
      at = 9 + (references + 1) / 8;
    }
    at += references * (number <= 256 ? 1 : number <= 65536 ? 2 : 4) + ((bytes[4] & 0x40) != 0 ? 4 : 1);
    if (at + 4 > bytes.size()) return false;
    dataBytes = Word(bytes, static_cast<size_t>(at));
    headBytes = static_cast<size_t>(at) + 4;
    return true;
  }
  // Generic regions may leave it to a marker to tell where their data end; four bytes follow it.
  void FindLength(Bytes data) {
    if (dataBytes != UINT32_MAX || type != 38 || data.size() < 18) return;
    const uint8_t arithmetic[2] = {0xFF, 0xAC}, fax[2] = {0, 0};
    const uint8_t *marker = (data[17] & 1) != 0 ? fax : arithmetic;
    const auto end = std::search(data.begin() + 18, data.end(), marker, marker + 2);
    if (data.end() - end >= 6) dataBytes = static_cast<uint32_t>(end - data.begin()) + 6;
  }
  bool IsText() const { return type == 4 || type == 6 || type == 7; }
  bool IsDictionary() const { return type == 0 || type == 16; }
  // How many symbols or patterns a region says that it is made of.
  uint64_t Instances(Bytes data) const {
    if (type == 20 || type == 22 || type == 23) {
      const uint64_t columns = Word(data, 18), rows = Word(data, 22);
      return rows != 0 && columns > kComposed / rows ? kComposed : columns * rows;
    }
    if (!IsText() || data.size() < 19) return 0;
    const bool huffman = data[18] & 1, refined = data[18] & 2, smallTemplate = data[17] & 0x80;
    return Word(data, size_t{19} + (huffman ? 2 : 0) + (refined && !smallTemplate ? 4 : 0));
  }
};

// Feeds the library segment by segment, so that each is judged by what the ones before have made.
struct Feeder {
  Allocator &allocator;
  uint64_t composed = 0;

  bool Allow(const Segment &segment, Bytes data) {
    const uint64_t region = (uint64_t{Word(data, 0)} + 7) / 8 * Word(data, 4);
    const uint64_t each = 64 + std::min<uint64_t>(allocator.largestImage, region);
    const uint64_t instances = segment.Instances(data);
    if (segment.IsText() && instances > kInstances + 64 * uint64_t{data.size()}) return false;
    if (instances > (kComposed - composed) / each) return false;
    composed += instances * each;
    return true;
  }
  void Feed(Jbig2Ctx &context, Bytes bytes) {
    Segment segment;
    while (!bytes.empty()) {
      size_t whole = bytes.size();
      if (segment.Read(bytes)) {
        const Bytes data = bytes.subspan(segment.headBytes);
        if (!Allow(segment, data)) return;
        segment.FindLength(data);
        if (segment.dataBytes <= data.size()) whole = segment.headBytes + segment.dataBytes;
      }
      allocator.watching = segment.IsDictionary();
      // In one piece: the library searches for an end that is marked from the beginning again with each piece.
      if (jbig2_data_in(&context, bytes.data(), whole) < 0) return;
      bytes = bytes.subspan(whole);
    }
  }
};

std::vector<uint8_t> ReadAll(CZVBaseIO &io, uint32_t length) {
  const size_t most = length != 0 ? length : limits::kDecodedStream;
  std::vector<uint8_t> all;
  for (size_t size = 0; size < most;) {
    const size_t wanted = std::min(most - size, kPieceBytes);
    all.resize(size + wanted);
    const size_t got = io.Read(all.data() + size, wanted);
    size += got;
    all.resize(size);
    if (got < wanted) break;
  }
  return all;
}

struct FreeContext {
  void operator()(Jbig2Ctx *context) const { jbig2_ctx_free(context); }
};
using Context = std::unique_ptr<Jbig2Ctx, FreeContext>;

Context NewContext(Allocator &allocator, Jbig2Ctx *globals) {
  const auto silent = [](void *, const char *, Jbig2Severity, uint32_t) {};
  Jbig2GlobalCtx *shared = globals ? jbig2_make_global_ctx(globals) : nullptr;
  return Context(jbig2_ctx_new(&allocator, JBIG2_OPTIONS_EMBEDDED, shared, silent, nullptr));
}

}  // namespace

struct CZVJBig2::Page {
  Allocator allocator;
  Feeder feeder{allocator};
  Context globals, context;  // the page's goes first
  Jbig2Image *image = nullptr;

  explicit Page(size_t allowance) : allocator(allowance) {}
  ~Page() {
    if (image) jbig2_release_page(context.get(), image);
  }
  Page(const Page &) = delete;
  Page &operator=(const Page &) = delete;

  void Decode(Bytes shared, Bytes coded) {
    if (!shared.empty()) {
      globals = NewContext(allocator, nullptr);
      if (globals) feeder.Feed(*globals, shared);
    }
    context = NewContext(allocator, globals.get());
    if (!context) return;
    feeder.Feed(*context, coded);
    image = jbig2_page_out(context.get());
    if (!image && jbig2_complete_page(context.get()) == 0) image = jbig2_page_out(context.get());
  }
  bool Usable() const {
    return image && image->width <= limits::kImageSide && image->height <= limits::kImageSide &&
           size_t{image->stride} * image->height <= limits::kDecodedStream;
  }
};

CZVJBig2::CZVJBig2(CZVBaseIO &io, uint32_t length) : CCompressionClass(io, length) {}
CZVJBig2::~CZVJBig2() = default;

void CZVJBig2::SetGlobals(int64_t position, uint32_t length) {
  globalsPosition_ = position;
  globalsLength_ = length;
}

uint32_t CZVJBig2::width() const { return page_ && page_->Usable() ? page_->image->width : 0; }
uint32_t CZVJBig2::height() const { return page_ && page_->Usable() ? page_->image->height : 0; }

void CZVJBig2::reset() {
  CCompressionClass::reset();
  used_ = 0;
}

bool CZVJBig2::Open() {
  if (!page_) {
    std::vector<uint8_t> shared;
    if (globalsLength_ > 0) {
      const int64_t position = io_.Tell();
      if (io_.Seek(globalsPosition_, SeekOrigin::kStart)) shared = ReadAll(io_, globalsLength_);
      io_.Seek(position, SeekOrigin::kStart);
    }
    const std::vector<uint8_t> coded = ReadAll(io_, length_);
    const size_t bytes = std::min(shared.size() + coded.size(), kMostAllocated / kEarnedPerByte);
    page_ = std::make_unique<Page>(std::min(kMostAllocated, allowance_ + bytes * kEarnedPerByte));
    page_->Decode(shared, coded);
  }
  if (page_->Usable()) return true;
  state_ = kCodecDamaged;
  return false;
}

size_t CZVJBig2::decompress(uint8_t *buffer, size_t count) {
  if (!Open()) return 0;
  const Jbig2Image &image = *page_->image;
  const size_t part = std::min(count, size_t{image.stride} * image.height - used_);
  std::memcpy(buffer, image.data + used_, part);
  used_ += part;
  if (part < count) state_ = kCodecFinished;
  return part;
}

}  // namespace kapdf
