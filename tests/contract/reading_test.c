/* Results of the open operations, and the import of small files. */
#include <stdlib.h>
#include <string.h>

#include "host.h"

static const char *const twoPages[] = {"<</Type /Catalog /Pages 2 0 R>>",
                                       "<</Type /Pages /Count 2 /Kids [3 0 R 5 0 R]>>",
                                       "<</Type /Page /Parent 2 0 R /MediaBox [0 0 720 720] /Contents 4 0 R>>",
                                       "<</Length 35>>\nstream\n10 10 m 20 20 l S\n30 30 m 40 30 l S\nendstream",
                                       "<</Type /Page /Parent 2 0 R /MediaBox [0 0 720 720] /Contents 6 0 R>>",
                                       "<</Length 17>>\nstream\n50 50 m 60 60 l S\nendstream"};

static uint32_t NextKind(FilterObject *filter, ElementRecord *record) {
  InitRecord(record, ElemNone);
  return filter->table->ReadElement(filter, record);
}

/* Both ways of opening for reading must agree, and neither may leave a document behind that was refused. */
static void CheckRefused(uint32_t expected, const char *path) {
  FilterObject *filter = readRow->create(NULL);
  char16_t wide[PATH_UNITS];
  FileInfo info;
  InitInfo(&info, 0);
  CheckEqual(expected, filter->table->Identify(filter, Widen(path, wide), &info), path, __FILE__, __LINE__);
  CheckEqual(expected, OpenForReading(filter, path, &info), path, __FILE__, __LINE__);
  ElementRecord record;
  EQUAL(5, NextKind(filter, &record));
  readRow->destroy(filter);
}

void TestResults(void) {
  static const struct {
    uint32_t result;
    const char *name, *bytes;
  } files[] = {
      {5, "short.pdf", "%PD"},
      {12, "text.pdf", "This is a text that is no PDF at all."},
  };
  for (size_t i = 0; i < sizeof files / sizeof files[0]; ++i) {
    WriteFileBytes(files[i].name, files[i].bytes, strlen(files[i].bytes));
    CheckRefused(files[i].result, files[i].name);
  }
  WritePdf("noroot.pdf", twoPages, 6, "");
  CheckRefused(5, "noroot.pdf");
  WritePdf("locked.pdf", twoPages, 6, "/Root 1 0 R /Encrypt 9 0 R");
  CheckRefused(11, "locked.pdf");
  CheckRefused(4, "missing.pdf");
  CheckRefused(4, "");
}

/* The host's own bytes of the information stay; identifying leaves no document open, so that its file can be removed.
 */
static void TestInformation(FilterObject *filter) {
  char16_t wide[PATH_UNITS];
  FileInfo info, before;
  InitInfo(&info, 1);
  before = info;
  EQUAL(0, OpenForReading(filter, "two.pdf", &info));
  const uint8_t *now = (const uint8_t *)&info, *then = (const uint8_t *)&before;
  CHECK(memcmp(now, then, 44) == 0);
  CHECK(memcmp(now + 52, then + 52, 4) == 0);
  CHECK(memcmp(now + 78, then + 78, 2) == 0);
  EQUAL(2, info.pageCount);
  EQUAL(1, info.pageIndex);
  CHECK(SameText(info.formatName, u"Adobe PDF "));
  WritePdf("known.pdf", twoPages, 6, "/Root 1 0 R");
  InitInfo(&info, -77);
  EQUAL(0, filter->table->Identify(filter, Widen("known.pdf", wide), &info));
  EQUAL(2, info.pageCount);
  EQUAL(-77, info.pageIndex);
  CHECK(SameText(info.formatName, u"Adobe PDF "));
  ElementRecord record;
  EQUAL(5, NextKind(filter, &record));
  EQUAL(0, remove("known.pdf"));
}

/* A page that does not exist is refused once the number of pages is known. */
static void TestPageNumbers(FilterObject *filter) {
  static const struct {
    int32_t index;
    uint32_t result;
  } pages[] = {{0, 0}, {1, 0}, {2, 2}, {-1, 2}};
  for (size_t i = 0; i < sizeof pages / sizeof pages[0]; ++i) {
    FileInfo info;
    InitInfo(&info, pages[i].index);
    EQUAL(pages[i].result, OpenForReading(filter, "two.pdf", &info));
    EQUAL(2, info.pageCount);
    ElementRecord record;
    EQUAL(pages[i].result == 0 ? 0 : 5, NextKind(filter, &record));
    EQUAL(0, filter->table->Close(filter));
  }
}

/* The definitions come first, chained; then the page's elements; then the end, as often as asked. */
static void TestElements(FilterObject *filter) {
  FileInfo info;
  ElementRecord record;
  InitInfo(&info, 0);
  EQUAL(0, OpenForReading(filter, "two.pdf", &info));
  EQUAL(0, NextKind(filter, &record));
  EQUAL(ElemLineTypeDef, record.kind);
  EQUAL(980, record.payloadBytes);
  EQUAL(3, record.section);
  CHECK(record.next != NULL);
  if (record.next) {
    EQUAL(ElemLayerDef, record.next->kind);
    EQUAL(44, record.next->payloadBytes);
    EQUAL(3, record.next->section);
    CHECK(record.next->next == NULL);
    LayerDefPayload layer;
    memcpy(&layer, record.next->payload, sizeof layer);
    CHECK(SameText(layer.name, u"PDF"));
    CHECK(SameText(layer.lineType, u"Continuous"));
    CHECK(layer.width == -2.0);
  }
  static const double starts[] = {10, 30};
  for (int i = 0; i < 2; ++i) {
    EQUAL(0, NextKind(filter, &record));
    EQUAL(ElemLine, record.kind);
    EQUAL(4, record.section);
    EQUAL(40, record.payloadBytes);
    CHECK(record.next == NULL);
    CHECK(SameText(record.layerName, u"PDF"));
    CHECK(SameText(record.styleName, u"Continuous"));
    LinePayload line;
    memcpy(&line, record.payload, sizeof line);
    NEAR(starts[i] / 72 * 25.4, line.x1, 1e-9);
    NEAR(starts[i] / 72 * 25.4, line.y1, 1e-9);
  }
  for (int i = 0; i < 3; ++i) EQUAL(0xFFFF0004, NextKind(filter, &record));
  /* Rows and headers that nothing announced. */
  InitRecord(&record, ElemRasterHeader);
  EQUAL(2, filter->table->ReadElement(filter, &record));
  InitRecord(&record, ElemRasterRows);
  EQUAL(2, filter->table->ReadElement(filter, &record));

  /* Another page without Close in between. */
  InitInfo(&info, 1);
  EQUAL(0, OpenForReading(filter, "two.pdf", &info));
  EQUAL(0, NextKind(filter, &record));
  EQUAL(0, NextKind(filter, &record));
  EQUAL(ElemLine, record.kind);
  LinePayload line;
  memcpy(&line, record.payload, sizeof line);
  NEAR(50 / 72.0 * 25.4, line.x1, 1e-9);
  EQUAL(0xFFFF0004, NextKind(filter, &record));
}

static void TestStop(FilterObject *filter) {
  for (int stopAt = 1; stopAt <= 3; ++stopAt) {
    FileInfo info;
    InitInfo(&info, 0);
    EQUAL(0, OpenForReading(filter, "two.pdf", &info));
    Sink sink;
    InitSink(&sink, stopAt);
    for (int call = 1; call <= stopAt; ++call) {
      ElementRecord record;
      InitRecord(&record, ElemNone);
      record.progress = &sink.object;
      EQUAL(call == stopAt ? 17 : 0, filter->table->ReadElement(filter, &record));
    }
    EQUAL(stopAt, sink.calls);
    CHECK(sink.inRange);
    EQUAL(0, filter->table->Close(filter));
    ElementRecord record;
    EQUAL(5, NextKind(filter, &record));
  }
}

void TestReading(void) {
  WritePdf("two.pdf", twoPages, 6, "/Root 1 0 R");
  FilterObject *filter = readRow->create(NULL);
  TestInformation(filter);
  TestPageNumbers(filter);
  TestElements(filter);
  TestStop(filter);
  TestElements(filter);
  readRow->destroy(filter); /* with a document still open */
}
