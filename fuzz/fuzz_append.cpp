// The input is a whole file, which gets a page more and then another in place of its first.
#include <cstdio>
#include <string>

#include "platform/file.h"
#include "support/host.h"
#include "writer/write_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  using namespace kapdf;
  const auto stream = platform::OpenTemporaryFile();
  fuzz::Require(stream && std::fwrite(data, 1, size, stream.get()) == size, "a temporary file can be written");
  std::string before(reinterpret_cast<const char *>(data), size);
  for (const int32_t page : {kAddPage, 0}) {
    CPDFWriteFile writer(stream.get(), fuzz::kSettingsPath, u"old.pdf");
    FileInfo info{};
    info.xmax = info.ymax = 100;
    info.pageIndex = page;
    fuzz::Require(writer.Start(info) == FilterOk, "a page can be added to anything");
    writer.EndSection(KAPDF_SECTION_PAGE);
    writer.Finish();
    std::string after(static_cast<size_t>(writer.Tell()), '\0');
    platform::SeekFile(stream.get(), 0, SEEK_SET);
    fuzz::Require(std::fread(after.data(), 1, after.size(), stream.get()) == after.size(), "all of it is there");
    fuzz::Require(after.starts_with(before), "the old bytes are as they were");
    before = std::move(after);
  }
  return 0;
}
