/* The exports, the rows, and what the table's operations do without a document. */
#include <string.h>

#include "host.h"

void TestRows(const Module *module) {
  EQUAL(3, module->version());
  FilterInfo info;
  memset(&info, 0xA5, sizeof info);
  EQUAL(0, module->info(&info));
  EQUAL(0x20002, info.version);
  EQUAL(0, info.reserved4);
  CHECK(SameText(info.versionText, u"7.0"));
  CHECK(info.makerName && info.makerName[0]);
  EQUAL(2, info.filterCount);
  readRow = &info.filters[0];
  writeRow = &info.filters[1];
  EQUAL(0x30106, readRow->flags);
  EQUAL(0x10107, writeRow->flags);
  for (int i = 0; i < 2; ++i) {
    const FilterRow *row = &info.filters[i];
    CHECK(SameText(row->name, u"Adobe PDF"));
    CHECK(SameText(row->extension, u"PDF"));
    row->destroy(NULL);
    FilterObject *plain = row->create(NULL), *named = row->create(u"Software\\kaPDF-tests\\contract");
    CHECK(plain != NULL && named != NULL && plain != named);
    CHECK(plain->table == named->table);
    row->destroy(plain);
    row->destroy(named);
  }
  CHECK(readRow->create != writeRow->create);
}

/* The table as a foreign host knows it: fourteen addresses, called by their numbers. */
typedef void (*Slot)(void);
typedef void (*DestroySlot)(FilterObject *, uint32_t);
typedef uint32_t (*IdentifySlot)(FilterObject *, const char16_t *, FileInfo *);
typedef void *(*PreviewSlot)(FilterObject *, const char16_t *, ProgressObject *);
typedef uint32_t (*OpenReadSlot)(FilterObject *, const char16_t *, FileInfo *, ProgressObject *, const char16_t *,
                                 FilterContext *, FilterCreateFunction);
typedef uint32_t (*OpenWriteSlot)(FilterObject *, const char16_t *, FileInfo *, ProgressObject *, const char16_t *);
typedef uint32_t (*PointerSlot)(FilterObject *, void *);
typedef uint32_t (*SectionSlot)(FilterObject *, int32_t, uintptr_t, uintptr_t);
typedef uint32_t (*CloseSlot)(FilterObject *);
typedef uint32_t (*OptionsSlot)(FilterObject *, int32_t, void *, void *);
typedef uint32_t (*ExtendedSlot)(FilterObject *, void *, int32_t, void *);

static void TestSlots(const FilterRow *row) {
  FilterObject *filter = row->create(NULL);
  Slot slots[14];
  memcpy(slots, filter->table, sizeof slots);
  FileInfo info;
  InitInfo(&info, 0);
  ElementRecord record;
  InitRecord(&record, ElemNone);
  const char16_t *missing = u"no-such-folder/no.pdf";
  EQUAL(4, ((IdentifySlot)slots[1])(filter, missing, &info));
  CHECK(((PreviewSlot)slots[2])(filter, missing, NULL) == NULL);
  EQUAL(4, ((OpenReadSlot)slots[3])(filter, missing, &info, NULL, NULL, NULL, NULL));
  EQUAL(5, ((PointerSlot)slots[4])(filter, &record));
  EQUAL(3, ((OpenWriteSlot)slots[5])(filter, missing, &info, NULL, NULL));
  EQUAL(0, ((PointerSlot)slots[6])(filter, NULL));
  EQUAL(0, ((PointerSlot)slots[6])(filter, &record));
  EQUAL(2, ((SectionSlot)slots[7])(filter, 7, 0, 0));
  EQUAL(0, ((SectionSlot)slots[8])(filter, 7, 0, 0));
  EQUAL(5, ((PointerSlot)slots[9])(filter, &record));
  EQUAL(0, ((CloseSlot)slots[11])(filter));
  EQUAL(0, ((CloseSlot)slots[11])(filter));
  EQUAL(2, ((OptionsSlot)slots[12])(filter, 2, NULL, NULL)); /* no such dialog; one that is would wait for a person */
  EQUAL(0xFFFF0001, ((ExtendedSlot)slots[13])(filter, NULL, 0, NULL));
  EQUAL(0xFFFF0001, ((ExtendedSlot)slots[13])(filter, &record, 7, &info));
  ((DestroySlot)slots[0])(filter, 1);
}

/* A failure stays to be seen until a call resets it. */
static void TestWriteBlock(FilterObject *filter) {
  const FilterTable *table = filter->table;
  WriteFileBytes("block.bin", "", 0);
  FILE *reading = fopen("block.bin", "rb"), *writing = fopen("block.bin", "r+b");
  CHECK(reading && writing);
  if (!reading || !writing) return;
  EQUAL(0, table->WriteBlock(filter, "abcd", 2, 2, writing, 0));
  EQUAL(1, table->WriteBlock(filter, "abcd", 2, 2, reading, 0));
  EQUAL(1, table->WriteBlock(filter, "efgh", 2, 2, writing, 0));
  EQUAL(0, table->WriteBlock(filter, "ijkl", 4, 1, writing, 1));
  EQUAL(0, table->WriteBlock(filter, "mn", 1, 2, writing, 0));
  EQUAL(1, table->WriteBlock(filter, "abcd", 2, 2, reading, 1));
  fclose(reading);
  fclose(writing);
  char bytes[20] = "";
  FILE *file = fopen("block.bin", "rb");
  EQUAL(14, file ? fread(bytes, 1, sizeof bytes, file) : 0);
  CHECK(memcmp(bytes, "abcdefghijklmn", 14) == 0);
  if (file) fclose(file);
}

void TestBaseDefaults(void) {
  const FilterRow *rows[2] = {readRow, writeRow};
  for (int i = 0; i < 2; ++i) {
    TestSlots(rows[i]);
    FilterObject *filter = rows[i]->create(NULL);
    TestWriteBlock(filter);
    rows[i]->destroy(filter);
  }
}
