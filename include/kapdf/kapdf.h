/* The binary contract between kaPDF and a drawing host.
 *
 * One filter object serves one document. A host loads the module, finds the two exports by name,
 * reads the two rows of `FilterInfo`, makes an object through a row's `create` and drives it through
 * the object's table of fourteen operations.
 *
 * - All multi-byte values are little-endian, pointers have 64 bits, text is UTF-16 (`char16_t`, which
 *   has the layout of `wchar_t` on Windows), zero-terminated.
 * - Coordinates and widths are millimetres, angles radians counter-clockwise, colours the colour codes
 *   told at `ElementRecord.color`.
 * - Payload structures are packed to 4: a double or a pointer may stand at an offset that is a multiple of
 *   4 only. Copy such a member out; never take its address as a `double *`.
 * - Whoever fills a record owns what it points to. What a reading filter hands out stays valid until the
 *   next `ReadElement` or `Close` on that filter; header and palette until the next kind 12 or `Close`.
 * - The calling convention is the platform's own for 64 bits. No C++ exception crosses the boundary.
 * - Calls on one filter object come from one thread.
 *
 * The header is plain C11 and C++11 or later.
 */
#ifndef KAPDF_KAPDF_H
#define KAPDF_KAPDF_H

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
#define KAPDF_CHECK(condition, text) static_assert(condition, text)
extern "C" {
#else
#include <uchar.h>
#define KAPDF_CHECK(condition, text) _Static_assert(condition, text)
#endif

/* What `ZVGetFilterApiVersion` answers. */
#define KAPDF_API_VERSION 3u
/* `FilterInfo.version`: 2.2, a half for each number. Host program and packages have the same, read from here. */
#define KAPDF_FILTER_VERSION 0x20002u

/* Bits of `FilterRow.flags` that tell the two rows apart. */
#define KAPDF_ROW_WRITES 0x00001u
#define KAPDF_ROW_READS 0x20000u

/* Kind of an element record. On a read request the host sets 5 or 12 to ask for a raster's row or header;
 * any other value asks for the next element. */
enum ElementKind {
  ElemNone = 0,
  ElemEndOfPage = 1,
  ElemRasterRows = 5,
  ElemLayerDef = 6,
  ElemLineTypeDef = 7,
  ElemFontDef = 8,
  ElemRasterHeader = 12,
  ElemNamedProperty = 14,
  ElemPoint = 17,
  ElemPolyline = 18,
  ElemLine = 19,
  ElemCircle = 20,
  ElemArc = 21,
  ElemSolid = 22,
  ElemText = 23,
  ElemComposite = 24,
  ElemEllipseArc = 27,
  ElemFilledPolygon = 28,
  ElemRasterPlacement = 34
};

/* Results of `ReadElement` and `WriteElement`. */
#define FilterOk 0u
#define FilterPageError 1u
#define FilterNotAvailable 2u
#define FilterNotOpen 5u
#define FilterBadRaster 10u
#define FilterNoRasterOpen 11u
#define FilterNoMoreRows 16u
#define FilterCancelled 17u
#define FilterConsumed 0xFFFF0002u      /* writer: taken into a table or ignored on purpose, nothing drawn */
#define FilterUnsupported 0xFFFF0003u   /* writer: not drawn, send simpler elements instead */
#define FilterEndOfElements 0xFFFF0004u /* reader: no further element on this page */
#define FilterNotExtended 0xFFFF0001u   /* `Extended` is not there */

/* Results of `Identify`, `OpenRead` and `OpenWrite`. */
#define FilterDamaged 2u     /* damaged file, or its page cannot be built */
#define FilterCannotWrite 3u /* the output file cannot be opened */
#define FilterCannotRead 4u  /* the input file cannot be opened */
#define FilterNoRoot 5u      /* the file cannot be read far enough, or has no document root */
#define FilterEncrypted 11u  /* the file is encrypted */
#define FilterNotPdf 12u     /* not a PDF file, no usable cross-reference data, or the renderer failed */
#define FilterBadOption 18u  /* an option string has a bad value */

/* Sections of the element sequence on export: 3 takes the tables, 2, 4, 6 and 8 take drawn elements. */
#define KAPDF_SECTION_PAGE 2
#define KAPDF_SECTION_TABLES 3
#define KAPDF_SECTION_DRAWING 4
#define KAPDF_SECTION_RASTERS 6
#define KAPDF_SECTION_OVERLAY 8

/* Colour codes: bit 31 set is a direct colour with red in the low byte, then green, then blue; 0 to 255 index the
 * palette (7 is black all the same); 256 the layer's colour; 257 the colour in force; 258 white; above, black. */
#define KAPDF_COLOR_DIRECT 0x80000000u
#define KAPDF_COLOR_BLACK 7u
#define KAPDF_COLOR_BY_LAYER 256u
#define KAPDF_COLOR_CURRENT 257u
#define KAPDF_COLOR_WHITE 258u

/* ---- the host's progress object ----------------------------------------------------------------- */

typedef struct ProgressObject ProgressObject;

typedef struct ProgressTable {
  void (*host0)(ProgressObject *self); /* the host's own */
  void (*host1)(ProgressObject *self); /* the host's own */
  /* Takes the finished fraction, 0.0 to 1.0; a non-zero answer asks to stop. */
  uint32_t (*Report)(ProgressObject *self, double fraction);
  void (*host3)(ProgressObject *self);
  void (*host4)(ProgressObject *self);
  void (*host5)(ProgressObject *self);
  /* Asks a running conversion to stop. */
  void (*Stop)(ProgressObject *self);
} ProgressTable;

struct ProgressObject {
  const ProgressTable *table;
};

/* ---- records ------------------------------------------------------------------------------------ */

typedef struct ElementRecord ElementRecord;

struct ElementRecord {
  uint32_t kind;
  uint32_t flags; /* the writer sets 0x40 on a kind 24 record */
  uint32_t reserved8;
  uint32_t padding12;
  uint8_t reserved16[32];
  char16_t layerName[256];
  char16_t styleName[256]; /* line type of geometry, text style of text and fonts, image name of rasters */
  uint32_t color;          /* a colour code; 256 in a fresh record */
  uint32_t padding1076;
  uint64_t reserved1080;
  ProgressObject *progress; /* null if the host has none */
  uint32_t payloadBytes;
  uint32_t padding1100;
  uint64_t imageKey; /* the host's identity of a raster on export */
  void *payload;
  uint32_t reserved2;
  uint32_t padding1124;
  uint64_t reserved1128;
  uint32_t section; /* on import 3 for definitions, 4 for drawn elements */
  uint32_t padding1140;
  ElementRecord *next; /* on import: a further record to take straight after this one, or null */
  uint64_t reserved1152;
};

#pragma pack(push, 4)

/* Passed through the open operations. The host's own bytes are never touched. */
typedef struct FileInfo {
  uint8_t host0[12];
  double xmin, ymin, xmax, ymax; /* page extents, millimetres; only the writer reads and changes them */
  int32_t pageCount;             /* reading: out; writing: pages that the document will get */
  int32_t pageIndex;             /* page to open, from 0. Writing: -1 new document, -2 add a page, 0.. replace */
  uint8_t host52[4];
  char16_t formatName[11]; /* out: "Adobe PDF " */
  uint8_t host78[2];
} FileInfo;

typedef struct LinePayload {
  double width, x1, y1, x2, y2;
} LinePayload;

typedef struct CirclePayload {
  double width, cx, cy, radius;
} CirclePayload;

/* The end angle stands ahead of the start angle. */
typedef struct ArcPayload {
  double width, cx, cy, radius, endAngle, startAngle;
} ArcPayload;

/* Equal start and end angles are the whole ellipse. */
typedef struct EllipseArcPayload {
  double width, cx, cy, majorRadius, minorRadius, rotation, startAngle, endAngle;
} EllipseArcPayload;

/* A disc of diameter |size|: pointStyle 2 an outline, 1 not drawn by the writer, any other filled. */
typedef struct PointPayload {
  double size, x, y;
  uint8_t unused24[8];
  uint32_t pointStyle;
} PointPayload;

/* Four corners in drawing order, filled even-odd. */
typedef struct SolidPayload {
  double x0, y0, x1, y1, x2, y2, x3, y3;
} SolidPayload;

typedef struct PolylinePayload {
  double width;
  uint32_t reserved8;
  int32_t vertexCount;
  uint32_t extraPerVertex; /* doubles behind each x, y pair; 0 on import */
  double *vertices;        /* the doubles are 8-aligned on import */
  double reserved28;
  uint32_t curved; /* the writer takes 0 only */
  uint8_t reserved40[8];
  uint32_t reserved48;
  uint8_t reserved52[16];
} PolylinePayload;

typedef struct FilledPolygonPayload {
  double width;
  int32_t contourCount;
  uint32_t *contourStarts; /* contourCount + 1 first-vertex indices; the last is one past the end */
  int32_t vertexCount;
  double *vertices; /* x, y pairs */
  double opacity;   /* percent, 0 to 100 */
  double reserved40;
  uint32_t reserved48;
  uint32_t strokeToo; /* non-zero: fill and stroke */
  uint8_t reserved56[12];
} FilledPolygonPayload;

typedef struct TextPayload {
  double x, y;
  uint8_t reserved16[16];
  uint32_t reserved32;
  uint32_t reserved36;
  double angle;
  double height;
  double widthFactor;
  uint32_t style;
  char16_t *text;
  char16_t *fontName;
} TextPayload;

typedef struct LayerDefPayload {
  char16_t *name;
  char16_t *lineType;
  uint32_t color;
  double width; /* below zero: each element's own width counts */
  uint32_t layerOff;
  uint32_t flagB;
  void *reserved36;
} LayerDefPayload;

typedef struct LineTypeSegment {
  double length; /* millimetres: a dash above zero, a gap below */
  uint8_t reserved8[52];
} LineTypeSegment;

#define KAPDF_LINE_TYPE_SEGMENTS 16

/* `segmentCount` keeps the true count, also above the 16 that are stored. */
typedef struct LineTypeDefPayload {
  char16_t *name;
  uint32_t segmentCount;
  LineTypeSegment segments[KAPDF_LINE_TYPE_SEGMENTS];
  uint8_t reserved972[8];
} LineTypeDefPayload;

/* A font program, when passed, follows these 64 bytes in the record's payload, whose `payloadBytes` counts both. With
 * KAPDF_FONT_MAPPED in `payloadBytes` (which is to be taken out of the count) KAPDF_FONT_MAPPING_BYTES more follow: the
 * glyph of each UTF-16 unit, 16 bits each. */
#define KAPDF_FONT_MAPPED 0x80000000u
#define KAPDF_FONT_MAPPING_BYTES 131072

typedef struct FontDefPayload {
  char16_t *styleName;
  char16_t *faceName;
  uint64_t reserved16;
  char16_t *fileName;
  uint64_t reserved32;
  double defaultHeight;
  double defaultWidthFactor;
  uint32_t charsetAndCodePage; /* low 16 bits style code, high 16 bits code page, negative: default */
  uint32_t reserved60;
} FontDefPayload;

typedef struct RasterHeaderPayload {
  uint32_t width, height; /* pixels, rows */
  uint32_t reserved8, reserved12;
  uint32_t dpi;
  uint32_t depthHint;
  /* 0 bilevel, 1 grey palette, 2 colour palette, 4 RGB. 5 has four bytes a pixel: to an export they are CMYK, from an
   * import RGB and a byte that is 255 where nothing is painted and 0 elsewhere. */
  uint32_t pixelType;
  /* 1028 bytes: u16, u16 entries, then entries of 4 bytes, red first. From an import the fourth byte 255 means that the
   * entry is not painted. */
  void *palette;
} RasterHeaderPayload;

typedef struct RasterPlacementPayload {
  double x, y; /* lower-left corner */
  double angle;
  double scaleX, scaleY; /* of the image's size at its dpi */
  double opacity;        /* percent */
  uint8_t reserved48[20];
  uint32_t clipMode;
} RasterPlacementPayload;

/* `type` of a named property: 1 integer, 2 floating point, 4 string, 8 pair, 16 triple, 32 binary as hexadecimal. */
typedef struct NamedPropertyPayload {
  char16_t *name;
  uint32_t type;
  char16_t *value;
} NamedPropertyPayload;

#pragma pack(pop)

/* A property of type 4 that extended reading puts ahead of a page's elements when there is something to tell: parts
   divided by "; ", of them "warnings N", "encryption NAME BITS", "permissions N" (the bits of the file; nobody here
   enforces them). */
#define KAPDF_PROPERTY_SOURCE u"PDFSOURCE"

/* Bytes of the value of the property "COORDSYS", which is binary: a `CoordinateSystemBlock`. */
#define KAPDF_COORDSYS_BYTES 1720u
#define KAPDF_COORDSYS_PARAMETERS 10

/* A coordinate system. Codes are those of the EPSG register, -1 for none. Angles among the parameters are radians. */
typedef struct CoordinateSystemBlock {
  uint32_t marker;      /* 768 */
  uint32_t size;        /* 1720 */
  uint32_t systemClass; /* 3 from the import */
  char16_t unitName[102];
  double scale;
  uint64_t reserved224[2];
  int32_t epsgCode; /* of the whole system; the import gives the setting `EPSGCode` */
  uint8_t reserved244[412];
  int32_t methodCode; /* coordinate operation method */
  uint8_t reserved660[200];
  int32_t datumCode;
  char16_t datumName[100];
  int32_t ellipsoidCode;
  uint8_t reserved1068[204];
  double semiMajorAxis, invFlattening, semiMinorAxis;
  int32_t unitCode; /* of angles */
  uint8_t reserved1300[212];
  int32_t paramCount;
  int32_t paramCodes[KAPDF_COORDSYS_PARAMETERS]; /* 0 where a slot is empty; slots may lie apart */
  uint8_t reserved1556[20];
  double paramValues[KAPDF_COORDSYS_PARAMETERS];
  uint8_t reserved1656[36];
  int32_t reserved1692;     /* -1 */
  uint8_t reserved1696[12]; /* 255 each */
  int32_t projectionId;     /* projection of the export; -1 from the import */
  uint32_t reserved1712;    /* 2 */
  uint8_t reserved1716[4];
} CoordinateSystemBlock;

/* ---- the filter object -------------------------------------------------------------------------- */

typedef struct FilterObject FilterObject;

/* What a host may tell about itself to `OpenRead`; null is fine. */
typedef struct FilterContext {
  void *parentWindow; /* native handle (HWND) for messages, or null for none */
} FilterContext;

/* A host's factory of filters for a rendered page: (0, path, registry path, out destroy function). */
typedef void (*FilterDestroyFunction)(FilterObject *filter);
typedef FilterObject *(*FilterCreateFunction)(uint32_t zero, const char16_t *path, const char16_t *registryPath,
                                              FilterDestroyFunction *destroy);

/* Of ShowOptions. */
#define KAPDF_OPTIONS_IMPORT 0
#define KAPDF_OPTIONS_EXPORT 1
#define KAPDF_OPTION_UNITS 512

typedef struct FilterTable {
  /* 0: runs the destructor; bit 0 of the flag frees the object. Hosts call the row's `destroy` instead. */
  void (*Destroy)(FilterObject *self, uint32_t deleteFlag);
  /* 1: pages of a file; leaves no document open. */
  uint32_t (*Identify)(FilterObject *self, const char16_t *path, FileInfo *info);
  /* 2: a small bitmap, owned by the filter until the next one, or null. It begins with the 40 bytes that follow the
   * first 14 of a bitmap file. The page stands behind the path as a blank and "<2>"; without it the first. */
  void *(*GetPreview)(FilterObject *self, const char16_t *path, ProgressObject *progress);
  /* 3: opens page `info->pageIndex` for reading. 0, 2, 4, 5, 11, 12. */
  uint32_t (*OpenRead)(FilterObject *self, const char16_t *path, FileInfo *info, ProgressObject *progress,
                       const char16_t *options, FilterContext *context, FilterCreateFunction create);
  /* 4: the next record, a raster header (kind 12) or a raster row (kind 5). */
  uint32_t (*ReadElement)(FilterObject *self, ElementRecord *record);
  /* 5: makes, extends or overwrites a file. 0, 3, 18. */
  uint32_t (*OpenWrite)(FilterObject *self, const char16_t *path, FileInfo *info, ProgressObject *progress,
                        const char16_t *options);
  /* 6: answers 0. */
  uint32_t (*Reserved6)(FilterObject *self, void *value);
  /* 7, 8: a section of the element sequence starts, ends. `a` and `b` are passed on to a sub-filter only. */
  uint32_t (*BeginSection)(FilterObject *self, int32_t section, uintptr_t a, uintptr_t b);
  uint32_t (*EndSection)(FilterObject *self, int32_t section, uintptr_t a, uintptr_t b);
  /* 9: takes one record. */
  uint32_t (*WriteElement)(FilterObject *self, ElementRecord *record);
  /* 10: plain buffered write to a C stream; 1 once one has failed, until a call with `reset`.
   * The stream must come from the C runtime that the module uses: msvcrt for the cross-built Windows module,
   * the compiler's own elsewhere. The module itself never calls this. */
  uint32_t (*WriteBlock)(FilterObject *self, const void *buffer, uint32_t size, uint32_t count, FILE *stream,
                         uint32_t reset);
  /* 11: ends the document; the object can open another one. */
  uint32_t (*Close)(FilterObject *self);
  /* 12: shows the dialog of KAPDF_OPTIONS_IMPORT or KAPDF_OPTIONS_EXPORT (`which`) in front of the window `parent`,
   * a handle or null, and waits for it. `options` is null or a buffer of KAPDF_OPTION_UNITS UTF-16 units: an option
   * string, or an empty one, that comes above the settings on entry, and the one for OpenRead or OpenWrite on
   * success. What was chosen is kept in the settings, too. 0 done, 17 cancelled (nothing has changed), 2 where there
   * is no user interface. */
  uint32_t (*ShowOptions)(FilterObject *self, int32_t which, void *parent, void *options);
  /* 13: answers 0xFFFF0001. */
  uint32_t (*Extended)(FilterObject *self, void *a, int32_t b, void *c);
} FilterTable;

struct FilterObject {
  const FilterTable *table;
};

typedef struct FilterRow {
  uint32_t flags;
  uint32_t padding4;
  const char16_t *name;
  const char16_t *extension;
  /* Takes the registry path of the settings (null: the module's own); gives null when memory is out. */
  FilterObject *(*create)(const char16_t *registryPath);
  void (*destroy)(FilterObject *filter); /* null is fine */
} FilterRow;

typedef struct FilterInfo {
  uint32_t version;
  uint32_t reserved4;
  const char16_t *versionText;
  const char16_t *makerName;
  uint32_t filterCount;
  uint32_t padding28;
  const FilterRow *filters;
} FilterInfo;

/* The exports, found by name. */
typedef uint32_t (*ZVGetFilterApiVersionFunction)(void);
typedef uint32_t (*ZVGetFilterInfoFunction)(FilterInfo *info);

/* ---- the layout is the contract ----------------------------------------------------------------- */

#define KAPDF_AT(type, member, at) KAPDF_CHECK(offsetof(type, member) == (at), #type "." #member)
#define KAPDF_SIZE(type, bytes) KAPDF_CHECK(sizeof(type) == (bytes), #type)

KAPDF_SIZE(ElementRecord, 1160);
KAPDF_AT(ElementRecord, layerName, 48);
KAPDF_AT(ElementRecord, styleName, 560);
KAPDF_AT(ElementRecord, color, 1072);
KAPDF_AT(ElementRecord, progress, 1088);
KAPDF_AT(ElementRecord, payloadBytes, 1096);
KAPDF_AT(ElementRecord, imageKey, 1104);
KAPDF_AT(ElementRecord, payload, 1112);
KAPDF_AT(ElementRecord, reserved2, 1120);
KAPDF_AT(ElementRecord, section, 1136);
KAPDF_AT(ElementRecord, next, 1144);
KAPDF_AT(ElementRecord, reserved1152, 1152);

KAPDF_AT(FileInfo, xmin, 12);
KAPDF_AT(FileInfo, ymax, 36);
KAPDF_AT(FileInfo, pageCount, 44);
KAPDF_AT(FileInfo, pageIndex, 48);
KAPDF_AT(FileInfo, formatName, 56);

KAPDF_SIZE(LinePayload, 40);
KAPDF_SIZE(CirclePayload, 32);
KAPDF_SIZE(ArcPayload, 48);
KAPDF_AT(ArcPayload, endAngle, 32);
KAPDF_SIZE(EllipseArcPayload, 64);
KAPDF_SIZE(PointPayload, 36);
KAPDF_AT(PointPayload, pointStyle, 32);
KAPDF_SIZE(SolidPayload, 64);
KAPDF_SIZE(PolylinePayload, 68);
KAPDF_AT(PolylinePayload, vertexCount, 12);
KAPDF_AT(PolylinePayload, vertices, 20);
KAPDF_AT(PolylinePayload, curved, 36);
KAPDF_SIZE(FilledPolygonPayload, 68);
KAPDF_AT(FilledPolygonPayload, contourStarts, 12);
KAPDF_AT(FilledPolygonPayload, vertices, 24);
KAPDF_AT(FilledPolygonPayload, opacity, 32);
KAPDF_AT(FilledPolygonPayload, strokeToo, 52);
KAPDF_SIZE(TextPayload, 84);
KAPDF_AT(TextPayload, angle, 40);
KAPDF_AT(TextPayload, style, 64);
KAPDF_AT(TextPayload, text, 68);
KAPDF_AT(TextPayload, fontName, 76);
KAPDF_SIZE(LayerDefPayload, 44);
KAPDF_AT(LayerDefPayload, width, 20);
KAPDF_AT(LayerDefPayload, layerOff, 28);
KAPDF_AT(LayerDefPayload, reserved36, 36);
KAPDF_SIZE(LineTypeSegment, 60);
KAPDF_SIZE(LineTypeDefPayload, 980);
KAPDF_AT(LineTypeDefPayload, segments, 12);
KAPDF_SIZE(FontDefPayload, 64);
KAPDF_AT(FontDefPayload, charsetAndCodePage, 56);
KAPDF_SIZE(RasterHeaderPayload, 36);
KAPDF_AT(RasterHeaderPayload, palette, 28);
KAPDF_SIZE(RasterPlacementPayload, 72);
KAPDF_AT(RasterPlacementPayload, clipMode, 68);
KAPDF_SIZE(NamedPropertyPayload, 20);
KAPDF_SIZE(CoordinateSystemBlock, KAPDF_COORDSYS_BYTES);
KAPDF_AT(CoordinateSystemBlock, unitName, 12);
KAPDF_AT(CoordinateSystemBlock, scale, 216);
KAPDF_AT(CoordinateSystemBlock, epsgCode, 240);
KAPDF_AT(CoordinateSystemBlock, methodCode, 656);
KAPDF_AT(CoordinateSystemBlock, datumCode, 860);
KAPDF_AT(CoordinateSystemBlock, datumName, 864);
KAPDF_AT(CoordinateSystemBlock, ellipsoidCode, 1064);
KAPDF_AT(CoordinateSystemBlock, semiMajorAxis, 1272);
KAPDF_AT(CoordinateSystemBlock, semiMinorAxis, 1288);
KAPDF_AT(CoordinateSystemBlock, unitCode, 1296);
KAPDF_AT(CoordinateSystemBlock, paramCount, 1512);
KAPDF_AT(CoordinateSystemBlock, paramCodes, 1516);
KAPDF_AT(CoordinateSystemBlock, paramValues, 1576);
KAPDF_AT(CoordinateSystemBlock, reserved1692, 1692);
KAPDF_AT(CoordinateSystemBlock, projectionId, 1708);
KAPDF_AT(CoordinateSystemBlock, reserved1712, 1712);

KAPDF_SIZE(FilterTable, 14 * sizeof(void *));
KAPDF_SIZE(FilterRow, 40);
KAPDF_SIZE(FilterInfo, 40);
KAPDF_AT(FilterInfo, filters, 32);
KAPDF_AT(ProgressTable, Report, 2 * sizeof(void *));
KAPDF_AT(ProgressTable, Stop, 6 * sizeof(void *));

#ifdef __cplusplus
}
#endif

#endif
