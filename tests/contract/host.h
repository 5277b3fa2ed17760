/* What the contract test shares: a foreign host in plain C. It knows the module by the header of the contract alone. */
#ifndef KAPDF_TESTS_CONTRACT_HOST_H
#define KAPDF_TESTS_CONTRACT_HOST_H

#include "kapdf/kapdf.h"

/* ---- checks ---- */

/* Counts, and tells the first failures with their place; the program's exit status follows from the count. */
void CheckEqual(uint64_t expected, uint64_t actual, const char *text, const char *file, int line);
void CheckNear(double expected, double actual, double tolerance, const char *text, const char *file, int line);
#define CHECK(condition) CheckEqual(1, (condition) != 0, #condition, __FILE__, __LINE__)
#define EQUAL(expected, actual) CheckEqual((uint64_t)(expected), (uint64_t)(actual), #actual, __FILE__, __LINE__)
#define NEAR(expected, actual, tolerance) CheckNear(expected, actual, tolerance, #actual, __FILE__, __LINE__)
int FailureCount(void);

/* ---- the system ---- */

typedef struct Module {
  ZVGetFilterApiVersionFunction version;
  ZVGetFilterInfoFunction info;
} Module;

/* The module stays loaded to the end of the process. The current folder is put back; `movedToModule` tells whether the
 * loading had made the module's folder the current one. */
int LoadFilterModule(const char *path, Module *module, int *movedToModule);

/* ---- files and texts ---- */

#define PATH_UNITS 64
/* ASCII to UTF-16. Gives `to`. */
char16_t *Widen(const char *text, char16_t to[PATH_UNITS]);
int SameText(const char16_t *text, const char16_t *expected);
void WriteFileBytes(const char *path, const char *bytes, size_t size);

/* A PDF of these objects, numbered from 1 on. */
void WritePdf(const char *path, const char *const *objects, int count, const char *trailerEntries);

/* ---- the host's objects ---- */

/* Both rows, in the order of `FilterInfo`. */
extern const FilterRow *readRow, *writeRow;

/* A progress sink that asks to stop with its call number `stopAt`, counted from 1; 0 never does. */
typedef struct Sink {
  ProgressObject object;
  int calls;
  int stopAt;
  double last;
  int inRange; /* no fraction was outside 0 to 1 */
} Sink;
void InitSink(Sink *sink, int stopAt);

void InitRecord(ElementRecord *record, uint32_t kind);
void InitInfo(FileInfo *info, int32_t pageIndex);

uint32_t OpenForReading(FilterObject *filter, const char *path, FileInfo *info);
uint32_t OpenForWriting(FilterObject *filter, const char *path, FileInfo *info, const char16_t *options);
/* Sends one record, drawn on layer "A" with colour 7. */
uint32_t Send(FilterObject *filter, uint32_t kind, void *payload, uint32_t bytes);
/* The tables of a drawing: layers "A" and "B", the line types "Plain" (one segment) and "Dashed" (two). */
void SendTables(FilterObject *filter);

/* ---- the tests ---- */

void TestRows(const Module *module);
void TestBaseDefaults(void);
void TestResults(void);
void TestReading(void);
void TestWriting(void);
void TestRoundTrip(void);

#endif
