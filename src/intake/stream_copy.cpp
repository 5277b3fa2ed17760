// Streams of a page: decoded, but for the codecs of images.
#include <algorithm>
#include <array>
#include <memory>
#include <qpdf/Buffer.hh>

#include "base/limits.h"
#include "intake/page_copier.h"

namespace kapdf {
namespace {

struct Coding {
  std::vector<std::string> filters;  // in the order in which they are undone, by their full names
  std::vector<QPDFObjectHandle> parameters;

  bool Is(const char *name) const { return filters.size() == 1 && filters.front() == name; }
};

std::string FullName(const std::string &name) {
  static constexpr std::array<std::pair<const char *, const char *>, 7> kShort = {{{"/AHx", "/ASCIIHexDecode"},
                                                                                   {"/A85", "/ASCII85Decode"},
                                                                                   {"/LZW", "/LZWDecode"},
                                                                                   {"/Fl", "/FlateDecode"},
                                                                                   {"/RL", "/RunLengthDecode"},
                                                                                   {"/CCF", "/CCITTFaxDecode"},
                                                                                   {"/DCT", "/DCTDecode"}}};
  for (const auto &[abbreviation, full] : kShort) {
    if (name == abbreviation) return full;
  }
  return name;
}

bool IsImageCodec(const std::string &name) {
  return name == "/DCTDecode" || name == "/JPXDecode" || name == "/JBIG2Decode" || name == "/CCITTFaxDecode";
}

// "Crypt" is undone with the encryption.
Coding ReadCoding(QPDFObjectHandle dictionary) {
  Coding coding;
  QPDFObjectHandle filters = dictionary.getKey("/Filter"), parameters = dictionary.getKey("/DecodeParms");
  if (parameters.isNull()) parameters = dictionary.getKey("/DP");
  const auto take = [&](QPDFObjectHandle filter, QPDFObjectHandle own) {
    if (!filter.isName() || filter.getName() == "/Crypt") return;
    coding.filters.push_back(FullName(filter.getName()));
    coding.parameters.push_back(own.isDictionary() ? own : QPDFObjectHandle::newNull());
  };
  if (!filters.isArray()) {
    take(filters, parameters.isArray() && parameters.getArrayNItems() > 0 ? parameters.getArrayItem(0) : parameters);
    return coding;
  }
  for (int i = 0; i < filters.getArrayNItems(); ++i) {
    const bool listed = parameters.isArray() && i < parameters.getArrayNItems();
    const bool alone = filters.getArrayNItems() == 1 && !parameters.isArray();
    take(filters.getArrayItem(i), listed  ? parameters.getArrayItem(i)
                                  : alone ? parameters
                                          : QPDFObjectHandle::newNull());
  }
  return coding;
}

bool HasPredictor(QPDFObjectHandle parameters) {
  if (!parameters.isDictionary()) return false;
  QPDFObjectHandle predictor = parameters.getKey("/Predictor");
  return predictor.isInteger() && predictor.getIntValue() > 1;
}

}  // namespace

// Chains of filters can make anything of nothing: what a stream decodes to is bounded by what it is in the file.
size_t PageCopier::MostData(QPDFObjectHandle dictionary) const {
  QPDFObjectHandle length = dictionary.getKey("/Length");
  const int64_t told = length.isInteger() ? length.getIntValue() : 0;
  const auto coded = static_cast<size_t>(std::clamp<int64_t>(told, 0, fileBytes_));
  return std::min(limits::kDecodedStream, std::max(limits::kDecodedFloor, coded * limits::kDecodedPerByte));
}

// Data that end in an error keep what was decoded before it.
void PageCopier::PipeData(QPDFObjectHandle stream, qpdf_stream_decode_level_e level) {
  bool attempted = false;
  stream.pipeStreamData(&out_, &attempted, 0, level, true, false);
  out_.CheckMemory();
}

// The filters ahead of an image codec are undone by giving their data to a stream that has no others.
void PageCopier::PipeAheadOfCodec(QPDFObjectHandle stream, const std::vector<std::string> &filters,
                                  const std::vector<QPDFObjectHandle> &parameters) {
  QPDFObjectHandle names = QPDFObjectHandle::newArray(), values = QPDFObjectHandle::newArray();
  for (size_t i = 0; i + 1 < filters.size(); ++i) {
    names.appendItem(QPDFObjectHandle::newName(filters[i]));
    values.appendItem(parameters[i]);
  }
  QPDFObjectHandle ahead = QPDFObjectHandle::newStream(&pdf_);
  ahead.replaceStreamData(stream.getRawStreamData(), names, values);
  PipeData(ahead, qpdf_dl_specialized);
}

void PageCopier::WriteStream(QPDFObjectHandle stream) {
  QPDFObjectHandle dictionary = stream.getDict();
  const Coding coding = ReadCoding(dictionary);
  if (coding.filters.size() > limits::kFilters) return out_.Put("null");
  const bool wantedPlain = plain_.count(stream.getObjGen()) > 0;
  const bool image = dictionary.getKey("/Subtype").isNameAndEquals("/Image");
  const bool ownCodec = !coding.filters.empty() && IsImageCodec(coding.filters.back());
  // A lone Flate is read by our own rooms as fast as the data come.
  const bool flate = !wantedPlain && coding.Is("/FlateDecode") && (image || !HasPredictor(coding.parameters.front()));
  out_.Put("<<");
  for (auto &[key, entry] : dictionary.ditems()) {
    if (key == "/Length" || key == "/Filter" || key == "/DecodeParms" || key == "/DP" || key == "/DL") continue;
    WriteEntry(key, entry, Place::kAny, 0);
  }
  if (flate || ownCodec) {
    out_.Put("/Filter");
    out_.Put(coding.filters.back());
    if (QPDFObjectHandle own = coding.parameters.back(); own.isDictionary()) {
      QPDFObjectHandle globals = own.getKey("/JBIG2Globals");
      if (globals.isStream()) plain_.insert(globals.getObjGen());
      out_.Put("/DecodeParms");
      WriteDictionary(own, Place::kAny, 1);
    }
  }
  out_.BeginData(MostData(dictionary));
  if (flate || (ownCodec && coding.filters.size() == 1))
    PipeData(stream, qpdf_dl_none);
  else if (ownCodec)
    PipeAheadOfCodec(stream, coding.filters, coding.parameters);
  else
    PipeData(stream, qpdf_dl_specialized);
  out_.EndData();
}

}  // namespace kapdf
