/* A small host in C: host_sample MODULE OUT.pdf [IN.pdf]
 *
 * Writes a drawing to OUT.pdf, then lists what the first page of IN.pdf holds, or that of OUT.pdf when there is no
 * third argument. docs/hosts.md goes through it. */
#include <locale.h>
#include <math.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>

#include "kapdf/kapdf.h"

/* ---- the system ---- */

#ifdef _WIN32
#include <windows.h>
typedef WCHAR Folder[4096];
static int GetFolder(Folder folder) { return GetCurrentDirectoryW(4096, folder) != 0; }
static int SetFolder(Folder folder) { return SetCurrentDirectoryW(folder) != 0; }
static void *OpenModule(const char *path) { return (void *)LoadLibraryA(path); }
static void FindExport(void *module, const char *name, void *function) {
  FARPROC found = GetProcAddress((HMODULE)module, name);
  memcpy(function, &found, sizeof found);
}
static int ToUtf16(const char *text, char16_t *units, int room) {
  return MultiByteToWideChar(CP_ACP, 0, text, -1, (WCHAR *)units, room) > 0;
}
#else
#include <dlfcn.h>
#include <unistd.h>
typedef char Folder[4096];
static int GetFolder(Folder folder) { return getcwd(folder, 4096) != NULL; }
static int SetFolder(Folder folder) { return chdir(folder) == 0; }
static void *OpenModule(const char *path) { return dlopen(path, RTLD_NOW | RTLD_LOCAL); }
static void FindExport(void *module, const char *name, void *function) {
  void *found = dlsym(module, name);
  memcpy(function, &found, sizeof found);
}
static int ToUtf16(const char *text, char16_t *units, int room) {
  mbstate_t state = {0};
  for (const char *at = text; room > 0; ++units, --room) {
    const size_t taken = mbrtoc16(units, at, strlen(at) + 1, &state);
    if (taken == 0) return 1;
    if (taken == (size_t)-1 || taken == (size_t)-2) return 0;
    if (taken != (size_t)-3) at += taken; /* -3: the second half of a pair */
  }
  return 0;
}
#endif

/* Loading makes the module's folder the current one, so a host that was given relative paths goes back. */
static const FilterRow *LoadRows(const char *path) {
  Folder before;
  ZVGetFilterApiVersionFunction version = NULL;
  ZVGetFilterInfoFunction information = NULL;
  static FilterInfo info;
  void *module = GetFolder(before) ? OpenModule(path) : NULL;
  if (!module || !SetFolder(before)) return NULL;
  FindExport(module, "ZVGetFilterApiVersion", &version);
  FindExport(module, "ZVGetFilterInfo", &information);
  if (!version || !information || version() != KAPDF_API_VERSION || information(&info) != 0) return NULL;
  return info.filterCount == 2 ? info.filters : NULL;
}

static const FilterRow *FindRow(const FilterRow *rows, uint32_t bits) {
  for (int i = 0; i < 2; ++i) {
    if ((rows[i].flags & (KAPDF_ROW_READS | KAPDF_ROW_WRITES)) == bits) return &rows[i];
  }
  return NULL;
}

/* ---- progress: Ctrl-C stops ---- */

static volatile sig_atomic_t interrupted = 0;
static void OnInterrupt(int signalNumber) { interrupted = signalNumber; }
static void Unused(ProgressObject *self) { (void)self; }
static void Stop(ProgressObject *self) {
  (void)self;
  interrupted = 1;
}
static uint32_t Report(ProgressObject *self, double fraction) {
  (void)self;
  (void)fraction; /* a host with a window moves its bar here */
  return interrupted != 0;
}
static const ProgressTable progressTable = {Unused, Unused, Report, Unused, Unused, Unused, Stop};
static ProgressObject progress = {&progressTable};

static void InitRecord(ElementRecord *record, uint32_t kind) {
  memset(record, 0, sizeof *record);
  record->kind = kind;
  record->color = KAPDF_COLOR_BY_LAYER;
  record->progress = &progress;
}

/* ---- export ---- */

static uint32_t Send(FilterObject *filter, uint32_t kind, const char16_t *style, void *payload, uint32_t bytes) {
  ElementRecord record;
  InitRecord(&record, kind);
  memcpy(record.layerName, u"Outline", sizeof u"Outline");
  for (size_t i = 0; style[i] && i < 255; ++i) record.styleName[i] = style[i];
  record.payload = payload;
  record.payloadBytes = bytes;
  const uint32_t result = filter->table->WriteElement(filter, &record);
  return result == FilterConsumed ? FilterOk : result;
}

static uint32_t WriteDrawing(FilterObject *filter) {
  static char16_t layerName[] = u"Outline", plain[] = u"Continuous", style[] = u"Label", face[] = u"FreeSerif";
  static char16_t words[] = u"Plate 1";
  LayerDefPayload layer = {layerName, plain, KAPDF_COLOR_DIRECT | 0x800000 /* dark blue */, -2, 0, 0, NULL};
  LineTypeDefPayload lineType = {.name = plain};
  FontDefPayload font = {.styleName = style, .faceName = face, .defaultHeight = 3, .defaultWidthFactor = 1};
  LinePayload line = {0.5, 30, 20, 130, 20};
  CirclePayload circle = {0.35, 80, 60, 25};
  TextPayload text = {.x = 65, .y = 8, .height = 5, .widthFactor = 1, .text = words};
  const struct {
    int32_t section;
    uint32_t kind;
    const char16_t *style;
    void *payload;
    uint32_t bytes;
  } steps[] = {{KAPDF_SECTION_TABLES, ElemLayerDef, u"", &layer, sizeof layer},
               {KAPDF_SECTION_TABLES, ElemLineTypeDef, plain, &lineType, sizeof lineType},
               {KAPDF_SECTION_TABLES, ElemFontDef, style, &font, sizeof font},
               /* The end of section 2 closes the page's dictionary: it must not be left out. */
               {KAPDF_SECTION_PAGE, ElemNone, u"", NULL, 0},
               {KAPDF_SECTION_DRAWING, ElemLine, plain, &line, sizeof line},
               {KAPDF_SECTION_DRAWING, ElemCircle, plain, &circle, sizeof circle},
               {KAPDF_SECTION_DRAWING, ElemText, style, &text, sizeof text},
               {KAPDF_SECTION_DRAWING, ElemEndOfPage, u"", NULL, 0}};
  uint32_t result = FilterOk;
  for (size_t i = 0; i < sizeof steps / sizeof steps[0] && result == FilterOk; ++i) {
    filter->table->BeginSection(filter, steps[i].section, 0, 0);
    result = Send(filter, steps[i].kind, steps[i].style, steps[i].payload, steps[i].bytes);
    filter->table->EndSection(filter, steps[i].section, 0, 0);
  }
  return result;
}

static int Export(const FilterRow *row, const char16_t *path) {
  FilterObject *filter = row->create(NULL);
  if (!filter) return 1;
  FileInfo info = {.xmax = 160, .ymax = 100, .pageCount = 1, .pageIndex = -1};
  uint32_t result = filter->table->OpenWrite(filter, path, &info, &progress, u"/frame 2");
  if (result == 0) result = WriteDrawing(filter);
  filter->table->Close(filter);
  row->destroy(filter);
  printf("export: result %u, sheet %.1f x %.1f mm\n", (unsigned)result, info.xmax - info.xmin, info.ymax - info.ymin);
  return result != 0;
}

/* ---- import ---- */

/* Millimetres of stroke; 0 for what is none. Payloads are packed to 4, so they are copied out. */
static double LengthOf(const ElementRecord *record) {
  double length = 0;
  if (record->kind == ElemLine) {
    LinePayload line;
    memcpy(&line, record->payload, sizeof line);
    length = hypot(line.x2 - line.x1, line.y2 - line.y1);
  } else if (record->kind == ElemCircle) {
    CirclePayload circle;
    memcpy(&circle, record->payload, sizeof circle);
    length = 2 * 3.14159265358979 * circle.radius;
  } else if (record->kind == ElemPolyline) {
    PolylinePayload polyline;
    memcpy(&polyline, record->payload, sizeof polyline);
    const size_t step = polyline.extraPerVertex + (size_t)2;
    const double *at = polyline.vertices;
    for (int32_t i = 1; i < polyline.vertexCount; ++i, at += step)
      length += hypot(at[step] - at[0], at[step + 1] - at[1]);
  }
  return length;
}

static void PrintText(const char16_t *text) {
  for (; *text; ++text) putchar(*text < 128 ? (char)*text : '?');
}

static void PrintElement(const ElementRecord *record) {
  printf("kind %2u, layer \"", (unsigned)record->kind);
  PrintText(record->layerName);
  printf("\", length %.2f", LengthOf(record));
  if (record->kind == ElemText) {
    TextPayload text;
    memcpy(&text, record->payload, sizeof text);
    printf(", text \"");
    PrintText(text.text);
    printf("\"");
  }
  printf("\n");
}

/* The image of a placement: its header, then its rows until there are no more. */
static void ReadRaster(FilterObject *filter, const ElementRecord *placement) {
  ElementRecord record;
  InitRecord(&record, ElemRasterHeader);
  memcpy(record.styleName, placement->styleName, sizeof record.styleName);
  if (filter->table->ReadElement(filter, &record) != FilterOk) return; /* it cannot be read; the page goes on */
  RasterHeaderPayload header;
  memcpy(&header, record.payload, sizeof header);
  unsigned rows = 0;
  for (;; ++rows) {
    InitRecord(&record, ElemRasterRows);
    if (filter->table->ReadElement(filter, &record) != FilterOk) break;
  }
  printf("  %u x %u pixels of type %u, %u rows\n", (unsigned)header.width, (unsigned)header.height,
         (unsigned)header.pixelType, rows);
}

static uint32_t ReadPage(FilterObject *filter) {
  unsigned elements = 0;
  for (;;) {
    ElementRecord record;
    InitRecord(&record, ElemNone);
    const uint32_t result = filter->table->ReadElement(filter, &record);
    if (result == FilterEndOfElements) printf("%u elements\n", elements);
    if (result != FilterOk) return result == FilterEndOfElements ? FilterOk : result;
    for (const ElementRecord *item = &record; item; item = item->next, ++elements) {
      PrintElement(item);
      if (item->kind == ElemRasterPlacement) ReadRaster(filter, item);
    }
  }
}

static int Import(const FilterRow *row, const char16_t *path) {
  FilterObject *filter = row->create(NULL);
  if (!filter) return 1;
  FileInfo info = {.pageIndex = 0};
  uint32_t result = filter->table->Identify(filter, path, &info);
  if (result == 0) printf("import: %d pages\n", (int)info.pageCount);
  if (result == 0) result = filter->table->OpenRead(filter, path, &info, &progress, NULL, NULL, NULL);
  if (result == 0) result = ReadPage(filter);
  filter->table->Close(filter);
  row->destroy(filter);
  printf("import: result %u\n", (unsigned)result);
  return result != 0;
}

int main(int argc, char **argv) {
  char16_t out[4096], in[4096];
  setlocale(LC_CTYPE, "C.UTF-8");
  signal(SIGINT, OnInterrupt);
  if (argc < 3 || !ToUtf16(argv[2], out, 4096) || !ToUtf16(argv[argc > 3 ? 3 : 2], in, 4096)) {
    printf("usage: host_sample MODULE OUT.pdf [IN.pdf]\n");
    return 2;
  }
  const FilterRow *rows = LoadRows(argv[1]);
  const FilterRow *reader = rows ? FindRow(rows, KAPDF_ROW_READS) : NULL;
  const FilterRow *writer = rows ? FindRow(rows, KAPDF_ROW_WRITES) : NULL;
  if (!reader || !writer) {
    printf("%s is not a module of version %u\n", argv[1], (unsigned)KAPDF_API_VERSION);
    return 2;
  }
  return Export(writer, out) || Import(reader, in);
}
