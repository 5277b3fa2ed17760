// Copies one page with all that it draws into a document of its own.
#pragma once

#include <deque>
#include <map>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <set>
#include <string>
#include <vector>

#include "intake/document_writer.h"

namespace kapdf {

class PageCopier {
 public:
  PageCopier(QPDF &pdf, int64_t fileBytes) : pdf_(pdf), fileBytes_(fileBytes) {}

  // False when the object is no page. Throws what the library throws.
  bool Copy(QPDFObjectHandle page, bool annotations, ByteBuffer &document);

 private:
  // What the readers expect in a dictionary: some of its values direct, or none of them.
  enum class Place { kAny, kResources, kTable };

  // What goes round the page's own content.
  struct Surroundings {
    std::string before, behind;
    std::map<std::string, QPDFObjectHandle> forms;  // annotations by the names that `behind` draws them with
  };

  void WritePage(int number, QPDFObjectHandle page, const Surroundings &around, double unit, int32_t rotate);
  void WriteContents(QPDFObjectHandle contents);
  void WriteResources(QPDFObjectHandle resources, const Surroundings &around);
  void WritePending();

  void WriteValue(QPDFObjectHandle value, int depth);
  void WriteArray(QPDFObjectHandle array, int depth);
  void WriteDictionary(QPDFObjectHandle dictionary, Place place, int depth);
  void WriteEntry(const std::string &key, QPDFObjectHandle value, Place place, int depth);
  void WriteEntries(QPDFObjectHandle dictionary, Place place, int depth);
  void WriteByReference(QPDFObjectHandle value, int depth);
  void WriteStream(QPDFObjectHandle stream);
  size_t MostData(QPDFObjectHandle dictionary) const;
  void PipeData(QPDFObjectHandle stream, qpdf_stream_decode_level_e level);
  void PipeAheadOfCodec(QPDFObjectHandle stream, const std::vector<std::string> &filters,
                        const std::vector<QPDFObjectHandle> &parameters);
  int NumberOf(QPDFObjectHandle object);

  QPDF &pdf_;
  int64_t fileBytes_;
  size_t values_ = 0;  // written so far
  DocumentWriter out_;
  std::map<QPDFObjGen, int> numbers_;
  std::deque<std::pair<int, QPDFObjectHandle>> pending_;
  std::set<QPDFObjGen> plain_;  // streams whose readers know no filter
};

// Inherited from the nodes of the tree above, if not the page's own; null when none has it. Broken chains end.
QPDFObjectHandle InheritedFromTree(QPDFObjectHandle page, const std::string &key);

}  // namespace kapdf
