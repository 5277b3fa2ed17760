#include "host.h"

#include <math.h>
#include <stdlib.h>
#include <string.h>

static int failures = 0;
static const int kToldFailures = 50;

const FilterRow *readRow, *writeRow;

static int Fail(const char *text, const char *file, int line) {
  if (++failures > kToldFailures) return 0;
  printf("%s:%d: %s", file, line, text);
  return 1;
}

void CheckEqual(uint64_t expected, uint64_t actual, const char *text, const char *file, int line) {
  if (expected == actual || !Fail(text, file, line)) return;
  printf(" is 0x%lx, not 0x%lx\n", (unsigned long)actual, (unsigned long)expected);
}

void CheckNear(double expected, double actual, double tolerance, const char *text, const char *file, int line) {
  if (fabs(expected - actual) <= tolerance || !Fail(text, file, line)) return;
  printf(" is %.9f, not %.9f\n", actual, expected);
}

int FailureCount(void) { return failures; }

char16_t *Widen(const char *text, char16_t to[PATH_UNITS]) {
  size_t i = 0;
  for (; text[i] && i + 1 < PATH_UNITS; ++i) to[i] = (unsigned char)text[i];
  to[i] = 0;
  return to;
}

int SameText(const char16_t *text, const char16_t *expected) {
  if (!text) return 0;
  while (*text && *text == *expected) {
    ++text;
    ++expected;
  }
  return *text == *expected;
}

void WriteFileBytes(const char *path, const char *bytes, size_t size) {
  FILE *file = fopen(path, "wb");
  if (!file || fwrite(bytes, 1, size, file) != size || fclose(file) != 0) {
    printf("cannot write %s\n", path);
    exit(2);
  }
}

void WritePdf(const char *path, const char *const *objects, int count, const char *trailerEntries) {
  char text[4096], table[1024];
  int n = sprintf(text, "%%PDF-1.4\n"), t = sprintf(table, "xref\n0 %d\n0000000000 65535 f \n", count + 1);
  for (int i = 0; i < count; ++i) {
    t += sprintf(table + t, "%010d 00000 n \n", n);
    n += sprintf(text + n, "%d 0 obj\n%s\nendobj\n", i + 1, objects[i]);
  }
  const int at = n;
  n += sprintf(text + n, "%strailer\n<</Size %d %s>>\nstartxref\n%d\n%%%%EOF\n", table, count + 1, trailerEntries, at);
  WriteFileBytes(path, text, (size_t)n);
}

static uint32_t Report(ProgressObject *self, double fraction) {
  Sink *sink = (Sink *)(void *)self;
  sink->last = fraction;
  if (!(fraction >= 0.0 && fraction <= 1.0)) sink->inRange = 0;
  return ++sink->calls == sink->stopAt;
}

/* The module has no business with these. */
static void Foreign(ProgressObject *self) {
  (void)self;
  CHECK(!"an operation of the host's own was called");
}

static const ProgressTable sinkTable = {Foreign, Foreign, Report, Foreign, Foreign, Foreign, Foreign};

void InitSink(Sink *sink, int stopAt) {
  memset(sink, 0, sizeof *sink);
  sink->object.table = &sinkTable;
  sink->stopAt = stopAt;
  sink->inRange = 1;
}

void InitRecord(ElementRecord *record, uint32_t kind) {
  memset(record, 0, sizeof *record);
  record->kind = kind;
  record->color = KAPDF_COLOR_BY_LAYER;
}

void InitInfo(FileInfo *info, int32_t pageIndex) {
  memset(info, 0xA5, sizeof *info);
  info->pageCount = 1;
  info->pageIndex = pageIndex;
}

uint32_t OpenForReading(FilterObject *filter, const char *path, FileInfo *info) {
  char16_t wide[PATH_UNITS];
  return filter->table->OpenRead(filter, Widen(path, wide), info, NULL, NULL, NULL, NULL);
}

uint32_t OpenForWriting(FilterObject *filter, const char *path, FileInfo *info, const char16_t *options) {
  char16_t wide[PATH_UNITS];
  info->xmin = info->ymin = 0;
  info->xmax = 200;
  info->ymax = 150;
  return filter->table->OpenWrite(filter, Widen(path, wide), info, NULL, options);
}

uint32_t Send(FilterObject *filter, uint32_t kind, void *payload, uint32_t bytes) {
  ElementRecord record;
  InitRecord(&record, kind);
  record.layerName[0] = u'A';
  record.color = KAPDF_COLOR_BLACK;
  record.payload = payload;
  record.payloadBytes = bytes;
  return filter->table->WriteElement(filter, &record);
}

void SendTables(FilterObject *filter) {
  static char16_t names[2][2] = {{u'A', 0}, {u'B', 0}}, plain[] = u"Plain", dashed[] = u"Dashed";
  EQUAL(0, filter->table->BeginSection(filter, KAPDF_SECTION_TABLES, 0, 0));
  for (int i = 0; i < 2; ++i) {
    LayerDefPayload layer = {names[i], plain, KAPDF_COLOR_BLACK, -2.0, 0, 0, NULL};
    EQUAL(FilterConsumed, Send(filter, ElemLayerDef, &layer, sizeof layer));
  }
  for (uint32_t segments = 1; segments <= 2; ++segments) {
    LineTypeDefPayload type;
    memset(&type, 0, sizeof type);
    type.name = segments == 1 ? plain : dashed;
    type.segmentCount = segments;
    type.segments[0].length = 3;
    type.segments[1].length = -2;
    EQUAL(FilterConsumed, Send(filter, ElemLineTypeDef, &type, sizeof type));
  }
  EQUAL(0, filter->table->EndSection(filter, KAPDF_SECTION_TABLES, 0, 0));
}
