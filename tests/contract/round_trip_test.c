/* A drawing goes out and comes in again. */
#include <string.h>

#include "host.h"

/* The page's factor is written with three decimals: 2.835 units a millimetre, read back at 25.4 / 72. */
static const double kFactor = 2.835 * 25.4 / 72;
static const double kTolerance = 0.001; /* millimetres */

static double corners[] = {20.125, 30.5, 120.75, 31.25, 121, 99.999, 60.0625, 140.5};
static double area[] = {40, 40, 100, 40, 100, 100, 40, 100, 50, 50, 50, 60, 60, 60, 60, 50};
static uint32_t starts[] = {0, 4, 8};
static LinePayload line = {0.35, 10.123, 20.456, 190.789, 130.987};

static void Export(const char *path) {
  FilterObject *filter = writeRow->create(NULL);
  FileInfo info;
  InitInfo(&info, -1);
  EQUAL(0, OpenForWriting(filter, path, &info, u"/frame 2"));
  NEAR(-2, info.xmin, 1e-9);
  NEAR(202, info.xmax, 1e-9);
  NEAR(152, info.ymax, 1e-9);
  SendTables(filter);
  EQUAL(0, filter->table->BeginSection(filter, 2, 0, 0));
  EQUAL(0, filter->table->EndSection(filter, 2, 0, 0));
  EQUAL(0, filter->table->BeginSection(filter, 4, 0, 0));
  EQUAL(0, Send(filter, ElemLine, &line, sizeof line));
  PolylinePayload polyline;
  memset(&polyline, 0, sizeof polyline);
  polyline.width = 0.7;
  polyline.vertexCount = 4;
  polyline.vertices = corners;
  EQUAL(0, Send(filter, ElemPolyline, &polyline, sizeof polyline));
  FilledPolygonPayload polygon;
  memset(&polygon, 0, sizeof polygon);
  polygon.contourCount = 2;
  polygon.contourStarts = starts;
  polygon.vertexCount = 8;
  polygon.vertices = area;
  polygon.opacity = 50;
  EQUAL(0, Send(filter, ElemFilledPolygon, &polygon, sizeof polygon));
  EQUAL(0, filter->table->EndSection(filter, 4, 0, 0));
  EQUAL(0, Send(filter, ElemEndOfPage, NULL, 0));
  EQUAL(0, filter->table->Close(filter));
  writeRow->destroy(filter);
}

static int Next(FilterObject *filter, ElementRecord *record, uint32_t kind) {
  InitRecord(record, ElemNone);
  EQUAL(0, filter->table->ReadElement(filter, record));
  EQUAL(kind, record->kind);
  return record->kind == kind && record->payload;
}

static void CheckVertices(const double *expected, const double *actual, int vertices) {
  for (int i = 0; i < 2 * vertices; ++i) NEAR(expected[i] * kFactor, actual[i], kTolerance);
}

/* A payload is one block: what the pointers lead to lies within `payloadBytes`. */
static int WithinPayload(const ElementRecord *record, const void *at, size_t bytes) {
  const char *first = record->payload, *wanted = at;
  return wanted >= first && wanted + bytes <= first + record->payloadBytes;
}

static void ImportLineAndPolyline(FilterObject *filter) {
  ElementRecord record;
  if (Next(filter, &record, ElemLine)) {
    LinePayload in;
    memcpy(&in, record.payload, sizeof in);
    NEAR(line.width, in.width, kTolerance);
    const double points[] = {in.x1, in.y1, in.x2, in.y2};
    const double sent[] = {line.x1, line.y1, line.x2, line.y2};
    CheckVertices(sent, points, 2);
    EQUAL(KAPDF_COLOR_BLACK, record.color);
  }
  if (Next(filter, &record, ElemPolyline)) {
    PolylinePayload in;
    memcpy(&in, record.payload, sizeof in);
    EQUAL(68 + 16 * 4, record.payloadBytes);
    EQUAL(4, in.vertexCount);
    EQUAL(0, in.extraPerVertex);
    EQUAL(0, in.curved);
    NEAR(0.7, in.width, kTolerance);
    CHECK(WithinPayload(&record, in.vertices, 64));
    if (in.vertexCount == 4) CheckVertices(corners, in.vertices, 4);
  }
}

/* Contours come back closed, so each has its first vertex once more. */
static void ImportPolygon(FilterObject *filter) {
  ElementRecord record;
  if (!Next(filter, &record, ElemFilledPolygon)) return;
  FilledPolygonPayload in;
  memcpy(&in, record.payload, sizeof in);
  EQUAL(2, in.contourCount);
  EQUAL(10, in.vertexCount);
  EQUAL(68 + 16 * 10 + 4 * 3, record.payloadBytes);
  if (in.contourCount != 2 || in.vertexCount != 10) return;
  CHECK(WithinPayload(&record, in.vertices, 160));
  CHECK(WithinPayload(&record, in.contourStarts, 12));
  NEAR(50, in.opacity, 0.01);
  uint32_t bounds[3];
  memcpy(bounds, in.contourStarts, sizeof bounds);
  EQUAL(0, bounds[0]);
  EQUAL(5, bounds[1]);
  EQUAL(10, bounds[2]);
  for (int contour = 0; contour < 2; ++contour) {
    CheckVertices(area + 8 * contour, in.vertices + 10 * contour, 4);
    CheckVertices(area + 8 * contour, in.vertices + 10 * contour + 8, 1);
  }
}

void TestRoundTrip(void) {
  Export("trip.pdf");
  FilterObject *filter = readRow->create(NULL);
  FileInfo info;
  InitInfo(&info, 0);
  EQUAL(0, OpenForReading(filter, "trip.pdf", &info));
  EQUAL(1, info.pageCount);
  ElementRecord record;
  Next(filter, &record, ElemLineTypeDef);
  Next(filter, &record, ElemLayerDef);
  ImportLineAndPolyline(filter);
  ImportPolygon(filter);
  EQUAL(FilterEndOfElements, filter->table->ReadElement(filter, &record));
  EQUAL(0, filter->table->Close(filter));
  readRow->destroy(filter);
}
