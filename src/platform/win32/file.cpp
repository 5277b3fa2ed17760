#include "platform/file.h"

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>
#include <windows.h>

#include "platform/win32/wide.h"

namespace kapdf::platform {
namespace {

int ShareFlag(Share share) {
  switch (share) {
    case Share::kAll:
      return _SH_DENYNO;
    case Share::kRead:
      return _SH_DENYWR;
    case Share::kExclusive:
      break;
  }
  return _SH_DENYRW;
}

bool OnDisk(std::FILE *file) {
  return GetFileType(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)))) == FILE_TYPE_DISK;
}

}  // namespace

FileHandle OpenFile(std::u16string_view path, const char *mode, Share share) {
  const std::string_view letters(mode);
  // Anything else would end in the C library's handler for invalid parameters.
  if (letters.empty() || std::string_view("rwa").find(letters[0]) == std::string_view::npos) return nullptr;
  FileHandle file(_wfsopen(Wide(path).c_str(), std::wstring(letters.begin(), letters.end()).c_str(), ShareFlag(share)));
  // What is read has a length and a position: no consoles, no pipes.
  const bool reads = letters[0] == 'r' || letters.find('+') != std::string_view::npos;
  if (file && reads && !OnDisk(file.get())) return nullptr;
  return file;
}

FileHandle CreateNewFile(std::u16string_view path) {
  int file = -1;
  if (_wsopen_s(&file, Wide(path).c_str(), _O_RDWR | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT, _SH_DENYNO,
                _S_IREAD | _S_IWRITE) != 0) {
    return nullptr;
  }
  std::FILE *stream = _fdopen(file, "w+b");
  if (!stream) _close(file);
  return FileHandle(stream);
}

FileHandle OpenTemporaryFile() {
  wchar_t folder[MAX_PATH + 1], path[MAX_PATH + 1];
  if (GetTempPathW(MAX_PATH + 1, folder) == 0 || GetTempFileNameW(folder, L"kap", 0, path) == 0) return nullptr;
  FileHandle file(_wfopen(path, L"w+bTD"));  // T keeps it in memory where there is room, D deletes it when it is closed
  if (!file) DeleteFileW(path);
  return file;
}

bool SeekFile(std::FILE *file, int64_t offset, int origin) { return _fseeki64(file, offset, origin) == 0; }
int64_t TellFile(std::FILE *file) { return _ftelli64(file); }

bool FileExists(std::u16string_view path) { return GetFileAttributesW(Wide(path).c_str()) != INVALID_FILE_ATTRIBUTES; }

bool IsFolder(std::u16string_view path) {
  const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool RemoveFile(std::u16string_view path) { return DeleteFileW(Wide(path).c_str()) != 0; }

}  // namespace kapdf::platform
