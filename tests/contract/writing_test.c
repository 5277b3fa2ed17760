/* Export: results, sections, and what is not drawn. */
#include <string.h>

#include "host.h"

static LinePayload line = {0.5, 10, 10, 90, 60};

static uint32_t SendLine(FilterObject *filter) { return Send(filter, ElemLine, &line, sizeof line); }

static void Begin(FilterObject *filter, int32_t section, uint32_t expected) {
  EQUAL(expected, filter->table->BeginSection(filter, section, 0, 0));
}

static void End(FilterObject *filter, int32_t section) { EQUAL(0, filter->table->EndSection(filter, section, 0, 0)); }

static void TestOpenResults(FilterObject *filter) {
  static const struct {
    uint32_t result;
    const char *path;
    const char16_t *options;
  } opens[] = {
      {0, "out.pdf", NULL},
      {3, "no-such-folder/out.pdf", NULL},
      {3, ".", NULL},
      {18, "out.pdf", u"/col X"},
      {18, "out.pdf", u"/q 50 /bw 1"},
      {18, "out.pdf", NULL}, /* the options of the last call that gave some stay */
      {0, "out.pdf", u"/col D /bw 4"},
      {0, "out.pdf", u""},
  };
  for (size_t i = 0; i < sizeof opens / sizeof opens[0]; ++i) {
    FileInfo info;
    InitInfo(&info, -1);
    const FileInfo before = info;
    EQUAL(opens[i].result, OpenForWriting(filter, opens[i].path, &info, opens[i].options));
    CHECK(memcmp(&info, &before, 12) == 0);
    CHECK(memcmp(info.host52, before.host52, 4) == 0);
    EQUAL(1, info.pageCount);
    EQUAL(opens[i].result == 0 ? 0 : 5, Send(filter, ElemNone, NULL, 0));
    EQUAL(0, filter->table->Close(filter));
  }
  /* A file that is not there yet is a new document, whatever page was asked for. */
  remove("new.pdf");
  FileInfo info;
  InitInfo(&info, 3);
  EQUAL(0, OpenForWriting(filter, "new.pdf", &info, NULL));
  EQUAL(-1, info.pageIndex);
  EQUAL(0, filter->table->Close(filter));
}

static void TestRefusedElements(FilterObject *filter) {
  EQUAL(0, SendLine(filter));
  EQUAL(11, Send(filter, ElemRasterRows, NULL, 0));
  EQUAL(FilterUnsupported, Send(filter, 0xFFFFFFFF, &line, sizeof line));
  /* Elements with a pattern are the host's own work. Texts name their style in the same place. */
  static const char16_t *const styles[] = {u"Plain", u"Dashed", u"Unknown"};
  for (int i = 0; i < 6; ++i) {
    ElementRecord record;
    InitRecord(&record, i % 2 ? ElemText : ElemLine);
    record.layerName[0] = u'A';
    for (size_t k = 0; styles[i / 2][k]; ++k) record.styleName[k] = styles[i / 2][k];
    record.payload = i % 2 ? NULL : &line;
    record.payloadBytes = i % 2 ? 0 : sizeof line;
    EQUAL(i / 2 == 1 ? FilterUnsupported : 0, filter->table->WriteElement(filter, &record));
  }
  static char16_t name[] = u"coordsys", value[] = u"00FF";
  NamedPropertyPayload property = {name, 32, value};
  EQUAL(FilterConsumed, Send(filter, ElemNamedProperty, &property, sizeof property));
  property.name = value;
  EQUAL(FilterUnsupported, Send(filter, ElemNamedProperty, &property, sizeof property));
}

/* What a composite element does tells the section in which the filter takes it to be. */
static void CheckSection(FilterObject *filter, uint32_t expected) {
  ElementRecord record;
  InitRecord(&record, ElemComposite);
  EQUAL(expected, filter->table->WriteElement(filter, &record));
  EQUAL(expected == FilterUnsupported ? 0x40 : 0, record.flags);
}

static void TestNestedSections(FilterObject *filter) {
  static const struct {
    int32_t section;
    uint32_t result, element;
  } sections[] = {{2, 0, FilterUnsupported},
                  {3, 0, FilterConsumed},
                  {4, 0, FilterUnsupported},
                  {5, 0, 0},
                  {6, 0, FilterUnsupported},
                  {7, 2, 0},
                  {8, 0, FilterUnsupported},
                  {9, 2, 0},
                  {1, 2, 0},
                  {-1, 2, 0}};
  enum { kCount = sizeof sections / sizeof sections[0] };
  CheckSection(filter, 0);
  for (int i = 0; i < kCount; ++i) {
    Begin(filter, sections[i].section, sections[i].result);
    CheckSection(filter, sections[i].element);
  }
  /* Each end brings back the one before, also behind numbers that were refused. */
  for (int i = kCount - 1; i >= 0; --i) {
    CheckSection(filter, sections[i].element);
    End(filter, sections[i].section);
  }
  CheckSection(filter, 0);
  /* More ends than beginnings. */
  for (int i = 0; i < 3; ++i) End(filter, 4);
  CheckSection(filter, 0);
  Begin(filter, 4, 0);
  CheckSection(filter, FilterUnsupported);
  End(filter, 7);
  CheckSection(filter, 0);
}

void TestWriting(void) {
  FilterObject *filter = writeRow->create(NULL);
  Begin(filter, 4, 0); /* also without a document */
  End(filter, 4);
  End(filter, 4);
  TestOpenResults(filter);
  FileInfo info;
  InitInfo(&info, -1);
  EQUAL(0, OpenForWriting(filter, "out.pdf", &info, NULL));
  SendTables(filter);
  TestNestedSections(filter);
  Begin(filter, 4, 0);
  TestRefusedElements(filter);
  End(filter, 4);
  EQUAL(0, Send(filter, ElemEndOfPage, NULL, 0));
  EQUAL(0, filter->table->Close(filter));
  EQUAL(5, SendLine(filter));

  /* Neither a document that was not closed nor one without elements is a reason to stumble. */
  EQUAL(0, OpenForWriting(filter, "half.pdf", &info, NULL));
  SendTables(filter);
  Begin(filter, 4, 0);
  EQUAL(0, SendLine(filter));
  writeRow->destroy(filter);
}
