#include "intake/page_copier.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <set>

#include "base/limits.h"
#include "intake/annotations.h"

namespace kapdf {
namespace {

constexpr const char *kAnnotationLayer = "<</Type/OCG/Name(PDF_Annotations)>>";
constexpr const char *kAnnotationKey = "/kaPDF.Annotations";
// More than a content that forgets its `Q` is known to leave open. Each one too many has no effect.
constexpr int kStatesClosed = 128;
constexpr int kTreeDepth = limits::kPageTreeDepth;
constexpr double kLetterWidth = 612, kLetterHeight = 792;  // of pages that tell no size, as other readers take them

// What no page needs to be drawn, and what would lead from it to all others.
bool LeadsAway(const std::string &key) {
  static const std::set<std::string> kKeys = {"/Parent", "/P",      "/PieceInfo", "/Metadata", "/StructParent",
                                              "/Thumb",  "/Annots", "/B",         "/AA",       "/StructParents",
                                              "/Popup",  "/Dest",   "/OPI",       "/AF",       "/LastModified"};
  return kKeys.count(key) > 0;
}

bool IsTable(const std::string &key) {
  return key == "/Font" || key == "/XObject" || key == "/ExtGState" || key == "/Properties" || key == "/Pattern" ||
         key == "/Shading";
}

std::string NumberText(double value) {
  if (!std::isfinite(value)) return "0";
  char text[64];
  const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 6).ptr;
  std::string digits(text, end);
  digits.erase(digits.find_last_not_of('0') + 1);
  if (digits.back() == '.') digits.pop_back();
  return digits;
}

// As it stands when every parser takes it so.
std::string NumberText(QPDFObjectHandle number) {
  std::string text = number.isInteger() ? std::to_string(number.getIntValue()) : number.getRealValue();
  const bool plain = text.find_first_not_of("0123456789.", text[0] == '-' ? 1 : 0) == std::string::npos &&
                     std::count(text.begin(), text.end(), '.') <= 1 && text.size() < limits::kTokenText &&
                     text.find_first_of("0123456789") != std::string::npos;
  return plain ? text : NumberText(number.getNumericValue());
}

}  // namespace

QPDFObjectHandle InheritedFromTree(QPDFObjectHandle page, const std::string &key) {
  std::set<QPDFObjGen> seen;
  for (int depth = 0; depth < kTreeDepth && page.isDictionary(); ++depth) {
    QPDFObjectHandle value = page.getKey(key);
    if (!value.isNull()) return value;
    if (!seen.insert(page.getObjGen()).second) break;
    page = page.getKey("/Parent");
  }
  return QPDFObjectHandle::newNull();
}

namespace {

// Any two opposite corners may be given.
bool ReadRectangle(QPDFObjectHandle value, double (&box)[4]) {
  if (!value.isArray() || value.getArrayNItems() < 4) return false;
  for (int i = 0; i < 4; ++i) {
    QPDFObjectHandle item = value.getArrayItem(i);
    if (!item.isNumber()) return false;
    box[i] = item.getNumericValue();
  }
  if (box[0] > box[2]) std::swap(box[0], box[2]);
  if (box[1] > box[3]) std::swap(box[1], box[3]);
  return box[0] < box[2] && box[1] < box[3];
}

// The crop box within the media box (ISO 32000-1, 14.11.2).
void ShownBox(QPDFObjectHandle page, double (&box)[4]) {
  if (!ReadRectangle(InheritedFromTree(page, "/MediaBox"), box)) {
    box[0] = box[1] = 0;
    box[2] = kLetterWidth;
    box[3] = kLetterHeight;
  }
  double crop[4];
  if (!ReadRectangle(InheritedFromTree(page, "/CropBox"), crop)) return;
  for (int i = 0; i < 4; ++i) crop[i] = i < 2 ? std::max(crop[i], box[i]) : std::min(crop[i], box[i]);
  if (crop[0] < crop[2] && crop[1] < crop[3]) std::copy(crop, crop + 4, box);
}

// Clockwise, to the next quarter turn.
int32_t Rotation(QPDFObjectHandle page) {
  QPDFObjectHandle value = InheritedFromTree(page, "/Rotate");
  const double angle = value.isNumber() ? value.getNumericValue() : 0;
  if (!std::isfinite(angle)) return 0;
  const auto quarters = static_cast<int32_t>(std::fmod(std::round(angle / 90), 4));
  return (quarters + 4) % 4 * 90;
}

double UserUnit(QPDFObjectHandle page) {
  QPDFObjectHandle value = page.getKey("/UserUnit");
  const double unit = value.isNumber() ? value.getNumericValue() : 1;
  return std::isfinite(unit) && unit > 0 ? unit : 1;
}

}  // namespace

bool PageCopier::Copy(QPDFObjectHandle page, bool annotations, ByteBuffer &document) {
  if (!page.isDictionary()) return false;
  const int32_t rotate = Rotation(page);
  const double unit = UserUnit(page);
  Surroundings around;
  if (unit != 1) around.before = NumberText(unit) + " 0 0 " + NumberText(unit) + " 0 0 cm\n";
  if (annotations) {
    for (Appearance &shown : ShownAnnotations(pdf_, page, rotate)) {
      around.forms["/" + shown.name] = shown.form;
      plain_.insert(shown.form.getObjGen());  // one that was made here is a filter of its own on its data
      around.behind += shown.content;
    }
  }
  if (!around.behind.empty()) {
    around.before += "q\n";
    std::string close = "\nET\n";
    for (int i = 0; i < kStatesClosed; ++i) close += "Q\n";
    around.behind = close + "/OC " + kAnnotationKey + " BDC\n" + around.behind + "EMC\n";
  }
  const int catalogue = out_.NewNumber(), pages = out_.NewNumber(), number = out_.NewNumber();
  out_.BeginObject(catalogue);
  out_.Put("<</Type/Catalog/Pages 2 0 R>>");
  out_.EndObject();
  out_.BeginObject(pages);
  out_.Put("<</Type/Pages/Count 1/Kids[3 0 R]>>");
  out_.EndObject();
  WritePage(number, page, around, unit, rotate);
  WritePending();
  document = out_.Finish();
  return true;
}

void PageCopier::WritePage(int number, QPDFObjectHandle page, const Surroundings &around, double unit, int32_t rotate) {
  double box[4];
  ShownBox(page, box);
  std::vector<std::pair<int, const std::string *>> texts;
  const auto text = [&](const std::string &content) {
    if (content.empty()) return;
    texts.emplace_back(out_.NewNumber(), &content);
    out_.PutReference(texts.back().first);
    out_.Put(" ");
  };
  out_.BeginObject(number);
  out_.Put("<</Type/Page/Parent 2 0 R/MediaBox[");
  for (const double edge : box) out_.Put(NumberText(edge * unit) + " ");
  out_.Put("]");
  if (rotate != 0) out_.Put("/Rotate " + std::to_string(rotate));
  for (const char *key : {"/LGIDict", "/VP", "/Group"}) {
    QPDFObjectHandle value = page.getKey(key);
    if (value.isNull()) continue;
    out_.Put(key);
    out_.Put(" ");
    if (value.isDictionary() && !value.isStream())
      WriteDictionary(value, Place::kAny, 0);
    else
      WriteValue(value, 0);
  }
  out_.Put("/Contents[");
  text(around.before);
  WriteContents(page.getKey("/Contents"));
  text(around.behind);
  out_.Put("]/Resources");
  WriteResources(InheritedFromTree(page, "/Resources"), around);
  out_.Put(">>");
  out_.EndObject();
  for (const auto &[own, content] : texts) {
    out_.BeginObject(own);
    out_.Put("<<");
    out_.BeginData(limits::kDecodedStream);
    out_.Put(*content);
    out_.EndData();
    out_.EndObject();
  }
}

// Streams by reference. What is no stream, or an empty one, would end the page for its reader.
void PageCopier::WriteContents(QPDFObjectHandle contents) {
  const auto put = [&](QPDFObjectHandle stream) {
    if (!stream.isStream()) return;
    QPDFObjectHandle length = stream.getDict().getKey("/Length");
    if (length.isInteger() && length.getIntValue() == 0) return;
    out_.PutReference(NumberOf(stream));
    out_.Put(" ");
  };
  if (!contents.isArray()) return put(contents);
  for (QPDFObjectHandle item : contents.aitems()) {
    if (!item.isArray()) {
      put(item);
      continue;
    }
    for (QPDFObjectHandle inner : item.aitems()) put(inner);
  }
}

void PageCopier::WriteResources(QPDFObjectHandle resources, const Surroundings &around) {
  out_.Put("<<");
  std::set<std::string> keys{"/XObject", "/Properties"};
  if (resources.isDictionary()) keys.merge(resources.getKeys());
  for (const std::string &key : keys) {
    QPDFObjectHandle table = resources.isDictionary() ? resources.getKey(key) : QPDFObjectHandle::newNull();
    out_.PutName(key.substr(1));
    out_.Put("<<");
    if (table.isDictionary()) WriteEntries(table, IsTable(key) ? Place::kTable : Place::kAny, 1);
    if (key == "/XObject") {
      for (const auto &[name, form] : around.forms) {
        out_.PutName(name.substr(1));
        WriteByReference(form, 1);
      }
    }
    if (key == "/Properties" && !around.forms.empty()) {
      out_.Put(kAnnotationKey);
      WriteByReference(QPDFObjectHandle::parse(kAnnotationLayer), 1);
    }
    out_.Put(">>");
  }
  out_.Put(">>");
}

int PageCopier::NumberOf(QPDFObjectHandle object) {
  if (!object.isIndirect()) {
    pending_.emplace_back(out_.NewNumber(), object);
    return pending_.back().first;
  }
  const auto [place, isNew] = numbers_.try_emplace(object.getObjGen());
  if (isNew) {
    place->second = out_.NewNumber();
    pending_.emplace_back(place->second, object);
  }
  return place->second;
}

void PageCopier::WritePending() {
  while (!pending_.empty()) {
    auto [number, object] = pending_.front();
    pending_.pop_front();
    out_.BeginObject(number);
    if (object.isStream())
      WriteStream(object);
    else if (object.isDictionary())
      WriteDictionary(object, Place::kAny, 0);
    else
      WriteValue(object, 0);
    out_.EndObject();
  }
}

// Containers are inlined but for dictionaries that have a number, which may be shared by many.
void PageCopier::WriteValue(QPDFObjectHandle value, int depth) {
  if (depth > limits::kIntakeNesting || ++values_ > limits::kIntakeValues) return out_.Put(" null");
  if (value.isStream() || (value.isDictionary() && value.isIndirect())) {
    out_.Put(" ");
    return out_.PutReference(NumberOf(value));
  }
  if (value.isDictionary()) return WriteDictionary(value, Place::kAny, depth);
  if (value.isArray()) return WriteArray(value, depth);
  if (value.isName()) return out_.PutName(value.getName().substr(1));
  if (value.isString()) return out_.PutString(value.getStringValue());
  if (value.isBool()) return out_.Put(value.getBoolValue() ? " true" : " false");
  if (value.isNumber()) return out_.Put(" " + NumberText(value));
  out_.Put(" null");
}

void PageCopier::WriteArray(QPDFObjectHandle array, int depth) {
  out_.Put("[");
  for (QPDFObjectHandle item : array.aitems()) {
    if (values_ > limits::kIntakeValues) break;
    WriteValue(item, depth + 1);
  }
  out_.Put("]");
}

void PageCopier::WriteDictionary(QPDFObjectHandle dictionary, Place place, int depth) {
  out_.Put("<<");
  WriteEntries(dictionary, place, depth);
  out_.Put(">>");
}

void PageCopier::WriteEntries(QPDFObjectHandle dictionary, Place place, int depth) {
  if (depth > limits::kIntakeNesting) return;
  for (auto &[key, value] : dictionary.ditems()) WriteEntry(key, value, place, depth);
}

void PageCopier::WriteEntry(const std::string &key, QPDFObjectHandle value, Place place, int depth) {
  if (value.isNull() || LeadsAway(key)) return;
  out_.PutName(key.substr(1));
  const bool inner = value.isDictionary() && !value.isStream();
  if (place == Place::kTable)
    WriteByReference(value, depth + 1);
  else if (key == "/Resources" && inner)
    WriteDictionary(value, Place::kResources, depth + 1);
  else if (place == Place::kResources && inner)
    WriteDictionary(value, IsTable(key) ? Place::kTable : Place::kAny, depth + 1);
  else
    WriteValue(value, depth + 1);
}

// The readers of a table look at its references only.
void PageCopier::WriteByReference(QPDFObjectHandle value, int depth) {
  if (!value.isStream() && !value.isDictionary()) return WriteValue(value, depth);
  out_.Put(" ");
  out_.PutReference(NumberOf(value));
}

}  // namespace kapdf
