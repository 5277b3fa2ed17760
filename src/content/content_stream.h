// The content context: one decoded content at a time, cut into statements, with the resources that its operators name.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "base/byte_buffer.h"
#include "content/resources.h"
#include "pdfmodel/locator.h"
#include "pdfmodel/page_tree.h"

namespace kapdf {

// How a statement is read.
enum class ScanMode { kGraphics = 0, kText = 1, kInlineImage = 2 };

// A statement of numbers and one operator, taken from the content where it stands.
struct PlainStatement {
  static constexpr int kOperands = 6;
  std::array<double, kOperands> values;
  int count = 0;
  uint8_t number = 0;  // of the operator
};

// One per page content and per form. The content of a page is read stream by stream, each decoded whole.
class CPDFContentStream {
 public:
  static constexpr size_t kStatementBytes = 8192;  // with the zero
  using StatementBuffer = std::array<char, kStatementBytes>;

  // Of a page. `owner`: its dictionary; `diagnostics`: write each decoded stream to a file of its own.
  CPDFContentStream(ObjectLocator &objects, std::unique_ptr<CPDFDictionary> owner, const ResourceSettings &settings,
                    bool diagnostics);
  // Of a form with its decoded content. `owner`: the form's dictionary; `page`: a content of the same page, with which
  // it shares the place for statements.
  CPDFContentStream(ObjectLocator &objects, std::unique_ptr<CPDFDictionary> owner, ByteBuffer content,
                    int32_t objectNumber, const CPDFContentStream &page);

  // The next statement: usually one line, zero-terminated, valid until the next call. Null at the end of all content.
  char *ReadStatement(ScanMode mode);
  // The next statement when it is a run of plain numbers before an operator that takes nothing else, and ends on this
  // line; false, with nothing consumed, for any other one. What both readers give is the same.
  bool ReadPlain(PlainStatement &statement);
  // Joins a statement that had no operator with the line behind it: line ends at the position become blanks and the
  // position goes back over the statement, which is the end of the text read last. `mode`: in which it will be read
  // again. Nothing changes without a line end.
  void RejoinLine(const char *statement, size_t length, ScanMode mode);
  // So many characters of the statement are those of the one that was joined: they were looked at before.
  size_t keptLength() const { return keptLength_; }

  // Reading on in the decoded bytes, for data that are not statements.
  int NextByte() { return position_ < length_ ? bytes()[position_++] : -1; }
  int PeekByte(size_t ahead) const { return position_ + ahead < length_ ? bytes()[position_ + ahead] : -1; }
  size_t position() const { return position_; }
  std::span<const uint8_t> content() const { return {buffer_.data(), length_}; }
  // Reading goes on there; nothing is kept of what was read before.
  void SetPosition(size_t position);
  // Where a character of the text read last stands in the content; for one of a stream before this one, its start.
  size_t PositionOf(const char *at) const;
  // The end of the text read last is kept beside the place for statements, which other contents use meanwhile, and is
  // put back to where it was. Null when there is none.
  void KeepRest(const char *rest);
  char *TakeRest();

  ObjectLocator &objects() const { return objects_; }
  // Of a form: whether it, or the form of one of the contexts around it, is that object; and how many are around it.
  bool IsActive(int32_t objectNumber) const;
  int Depth() const;

  // Finished part of the content, 0 to 1.
  double Fraction() const;

  CPDFContentStream *parent = nullptr;  // of a form: the context that draws it
  double opacity = 1.0;                 // product of the alphas of the drawing contexts
  PageBox clipBox;                      // points, after the matrix
  PageResources resources;
  LineStyles lineStyles;
  // No "EI" ends data that start there or further on: as they stand, and with backslashes.
  size_t noImageEnd[2] = {SIZE_MAX, SIZE_MAX};

 private:
  static constexpr size_t kNoLine = SIZE_MAX;

  const uint8_t *bytes() const { return buffer_.data(); }
  uint8_t *bytes() { return buffer_.data(); }
  bool FillBuffer();
  bool LoadNextStream();
  bool LoadLoneStream(const CPDFIndirectObject &reference);
  bool LoadArrayInPlace(int32_t objectNumber);
  // `index`: for the name of the diagnostic file.
  bool ReadStreamBytes(int32_t objectNumber, uint32_t index);
  // Reads up to the end of a statement or of the stream; true when the statement is whole.
  bool ScanStatement(ScanMode mode, size_t first, size_t most, size_t &count);
  bool CutAtLastOperator(size_t most, size_t &count);
  char *EndStatement(size_t count, bool withoutFirst);
  void SkipWhiteSpace();
  void MoveBack(size_t count) { position_ -= count < position_ ? count : position_; }

  ObjectLocator &objects_;
  std::unique_ptr<CPDFDictionary> owner_;
  int32_t objectNumber_ = -1;               // of a form
  std::unique_ptr<CPDFArray> ownContents_;  // the list of streams when it came through a reference
  const CPDFArray *contents_ = nullptr;
  ByteBuffer buffer_;  // the decoded stream and one zero
  size_t length_ = 0;
  size_t contentBytes_ = 0;  // decoded on this page so far
  size_t position_ = 0;
  size_t lineStart_ = kNoLine;           // of the line, as long as only plain statements were taken from it
  size_t noPlainBefore_ = 0;             // no plain statement starts ahead of this position
  ScanMode mode_ = ScanMode::kGraphics;  // of the text read last
  size_t textStart_ = 0;                 // position of its first character in this stream,
  size_t joinedAt_ = 0;                  // which follows so many of the stream before
  bool followsBytes_ = false;            // the text read last is that of the bytes before the position, less zeros
  size_t kept_ = 0;                      // characters of a statement that goes on behind the position
  size_t keptLength_ = 0;                // of them, those that are in the text read last
  size_t keptBlanks_ = 0;                // that stand for the line ends behind it
  uint32_t nextStream_ = 0;              // counts from 1 for the stream just loaded
  uint32_t streamCount_ = 0;
  bool loneStreamDone_ = false;
  bool ended_ = false;
  bool diagnostics_ = false;
  std::shared_ptr<StatementBuffer> statement_;
  std::string rest_;
  size_t restAt_ = 0;  // in the place for statements
};

}  // namespace kapdf
