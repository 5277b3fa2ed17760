// Bounds for hostile and damaged input. They change nothing for a sane file.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kapdf::limits {

inline constexpr int kObjectNesting = 256;                       // arrays and dictionaries; deeper does not parse
inline constexpr int64_t kObjectItems = 2'000'000;               // in one object; a further one does not parse
inline constexpr size_t kXRefEntries = size_t{1} << 23;          // of all sections together; further ones are dropped
inline constexpr size_t kObjectStreamMembers = size_t{1} << 20;  // of one object stream; further ones are not found
// Bytes that are parsed, decoded as object streams or found in them, in one document: so many, and so many more
// for each byte of the file. Beyond them no object is found. Objects may overlap, so that the size of a file alone does
// not bound the work that it asks for.
inline constexpr int64_t kObjectWork = int64_t{128} << 20;
inline constexpr int64_t kObjectWorkPerByte = 64;
inline constexpr int kPageTreeDepth = 256;                      // the walk ends as for a damaged node
inline constexpr size_t kPages = 1'000'000;                     // leaves of the page tree
inline constexpr int kFormDepth = 500;                          // forms inside forms
inline constexpr uint32_t kFormsPerPage = 1'000'000;            // forms entered on one page
inline constexpr size_t kFormContent = size_t{2} << 30;         // content bytes of all forms entered on one page
inline constexpr int kStripeDepth = 8;                          // containers of stripes
inline constexpr uint32_t kStripes = 16'384;                    // of one container and those in it; more fail it
inline constexpr uint64_t kStripesSeen = 100'000'000;           // by all that is drawn of containers on one page
inline constexpr size_t kDecodedStream = size_t{512} << 20;     // bytes of one decoded stream
inline constexpr size_t kPageContent = size_t{1} << 30;         // decoded bytes of all content streams of one page
inline constexpr uint32_t kImageSide = 1'000'000;               // pixels
inline constexpr int kCurvePoints = 10'000;                     // a longer curve gives longer steps
inline constexpr size_t kPageCurvePoints = 256'000'000;         // of all curves of a page; then end points only
inline constexpr size_t kPathPoints = 16'000'000;               // further points are dropped
inline constexpr size_t kSavedStates = 65'536;                  // copies kept by q; deeper ones are only counted
inline constexpr size_t kTokenText = 127;                       // characters of a number or a name
inline constexpr int64_t kDictionarySearch = int64_t{1} << 20;  // bytes passed over in search of "<<"
inline constexpr int64_t kRubbish = int64_t{64} << 20;          // bytes passed over in search of brackets, per document
inline constexpr int kJoinedStreams = 64;                       // streams that one statement may span
inline constexpr size_t kOperandText = size_t{16} << 20;        // of one statement; longer ones lose their operands
inline constexpr size_t kMarkedContent = 65'536;                // levels; what lies deeper ends with them
inline constexpr size_t kObjectStreamCache = size_t{64} << 20;  // bytes of decoded object streams kept
inline constexpr size_t kIntakeDocument = size_t{640} << 20;    // bytes of one page taken out of its document
inline constexpr int kIntakeNesting = 64;                       // containers in one object of it; deeper is null
inline constexpr size_t kIntakeValues = 4'000'000;              // in its objects, shared ones repeated; then null
inline constexpr int64_t kTrailerless = int64_t{512} << 20;     // bytes of a file without a trailer that is read
inline constexpr size_t kFilters = 8;                           // of one stream of it; with more it is null
inline constexpr size_t kDecodedFloor = size_t{32} << 20;       // bytes that any stream of it may decode to,
inline constexpr size_t kDecodedPerByte = 1'100;                // and so many more for each coded byte
inline constexpr size_t kAnnotations = 100'000;                 // of one page; further ones are not drawn
inline constexpr size_t kPaletteEntries = 256;
inline constexpr size_t kCMapText = size_t{16} << 20;      // bytes of a CMap that are read
inline constexpr size_t kCodeSpaces = 256;                 // of a font; further ones are dropped
inline constexpr size_t kFontProgram = size_t{128} << 20;  // bytes of a program that FreeType is given
inline constexpr int64_t kFontWidths = int64_t{1} << 20;   // widths that one font sets, the same code again included
inline constexpr size_t kFontMemory = size_t{512} << 20;   // of the fonts in use at a time; further ones are not found
inline constexpr size_t kFontCache = size_t{128} << 20;    // from here on, fonts that nobody uses are forgotten
// Decoded bytes of all streams that a document's fonts read, and so many more for each byte of the file. Further
// streams count as missing.
inline constexpr int64_t kFontStreams = int64_t{256} << 20;
inline constexpr int64_t kFontStreamsPerByte = 64;

}  // namespace kapdf::limits
