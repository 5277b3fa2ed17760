// Files as C streams, with sharing modes, 64-bit positions and UTF-16 paths.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace kapdf::platform {

struct FileCloser {
  void operator()(std::FILE *file) const { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

enum class Share {
  kAll,       // others may read and write
  kRead,      // others may read
  kExclusive  // nobody else; the open fails while another holds the file
};

// `mode` as for fopen ("rb", "w+b", "r+b", "wb"). Null on failure.
FileHandle OpenFile(std::u16string_view path, const char *mode, Share share);
// Creates a file that must not exist yet, for writing. Null on failure.
FileHandle CreateNewFile(std::u16string_view path);

// A file for reading and writing that nobody else sees and that is gone when it is closed. Null on failure.
FileHandle OpenTemporaryFile();

// origin: SEEK_SET, SEEK_CUR, SEEK_END. Seek gives false on failure, Tell -1.
bool SeekFile(std::FILE *file, int64_t offset, int origin);
int64_t TellFile(std::FILE *file);

// True when the path's attributes can be read; a folder counts.
bool FileExists(std::u16string_view path);
bool IsFolder(std::u16string_view path);
bool RemoveFile(std::u16string_view path);

// The part behind the last separator (backslash on Windows, slash elsewhere).
std::u16string FileNameOf(std::u16string_view path);
// The part up to and with the last separator; empty when there is none.
std::u16string FolderOf(std::u16string_view path);

// A file of the diagnostics: "c:\tmp\" or "/tmp/" in front of the name.
std::u16string DiagnosticPath(std::string_view name);

}  // namespace kapdf::platform
