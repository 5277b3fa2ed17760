// Reads cross-reference sections of both kinds and resolves object numbers, also into object streams.
#pragma once

#include <list>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/byte_buffer.h"
#include "pdfmodel/locator.h"
#include "pdfmodel/stream.h"
#include "pdfmodel/xref_table.h"

namespace kapdf {

// What a section ended in.
enum class SectionEnd {
  kTrailer = 1,  // a classic table, at the first letter of "trailer"
  kUnreadable = 2,
  kChainEnded = 3,  // the last of a chain of cross-reference streams
  kEncrypted = 4
};

class XRefReader final : public ObjectLocator {
 public:
  // `diagnostics`: write what the streams hold to files of their own.
  XRefReader(CPDFBlockSource &source, bool diagnostics);

  // Reads from the source's position. Cross-reference streams are followed to the end of their chain.
  SectionEnd ReadSection();
  // True the first time that a section's position is asked about, false for a position outside the file.
  bool VisitSection(int64_t position);

  uint32_t Resolve(int32_t objectNumber) override;

  const PDFXRef &table() const { return table_; }
  // `Root` of the newest cross-reference stream that has one, else null.
  const CPDFIndirectObject *streamRoot() const { return streamRoot_.get(); }

 private:
  // One decoded object stream with its list of (object number as text, offset).
  struct ObjectStream {
    struct Member {
      std::string number;
      uint64_t offset;
    };
    int32_t object;
    std::shared_ptr<const ByteBuffer> bytes;  // two bytes of fill behind the decoded ones
    size_t size = 0;                          // of the decoded ones
    uint64_t first = 0;
    uint64_t announced = 0;  // N
    std::vector<Member> members;

    size_t MemoryUse() const { return size + members.size() * sizeof(Member); }
  };

  bool ReadClassicSubsection();
  void ReadClassicEntries(int32_t first, int32_t count);
  SectionEnd ReadStreamChain(int64_t position);
  bool AddStreamEntries(const CPDFDictionary &dictionary, std::span<const uint8_t> bytes, int64_t position);
  void DumpEntries(int64_t position, size_t firstBlock) const;

  uint32_t ResolveCompressed(int32_t container, uint32_t index);
  const ObjectStream *LoadObjectStream(int32_t container);
  bool ReadObjectStream(const PDFXRefEntry &entry, ObjectStream &loaded);
  static void ReadMembers(ObjectStream &stream);
  bool ShowMember(const ObjectStream &stream, uint32_t index);

  // Of `wanted` further entries, how many the table may still take.
  size_t RoomFor(size_t wanted);

  PDFXRef table_;
  size_t entriesLeft_ = limits::kXRefEntries;
  std::unique_ptr<CPDFIndirectObject> streamRoot_;
  std::set<int64_t> visited_;
  bool diagnostics_;
  std::list<ObjectStream> cache_;  // most recently used first
  std::unordered_map<int32_t, std::list<ObjectStream>::iterator> cached_;
  size_t cachedBytes_ = 0;
  bool loading_ = false;  // an object stream is being read
};

}  // namespace kapdf
