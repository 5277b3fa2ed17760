#include "platform/file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/text.h"

namespace kapdf::platform {
namespace {

struct OpenMode {
  bool read = false, write = false, create = false, truncate = false, append = false;
};

bool ParseMode(std::string_view mode, OpenMode &out) {
  if (mode.empty()) return false;
  const bool update = mode.find('+') != std::string_view::npos;
  switch (mode[0]) {
    case 'r':
      out = {.read = true, .write = update};
      return true;
    case 'w':
      out = {.read = update, .write = true, .create = true, .truncate = true};
      return true;
    case 'a':
      out = {.read = update, .write = true, .create = true, .append = true};
      return true;
    default:
      return false;
  }
}

// Whoever keeps others from writing while writing itself keeps other readers with the same wish away, too.
bool Lock(int file, Share share, const OpenMode &mode) {
  if (share == Share::kAll) return true;
  const int kind = share == Share::kExclusive || mode.write ? LOCK_EX : LOCK_SH;
  // A file system without locks is no reason to refuse a file.
  return flock(file, kind | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

FileHandle Adopt(int file, const char *mode) {
  std::FILE *stream = fdopen(file, mode);
  if (!stream) close(file);
  return FileHandle(stream);
}

}  // namespace

FileHandle OpenFile(std::u16string_view path, const char *mode, Share share) {
  OpenMode wish;
  if (!ParseMode(mode, wish)) return nullptr;
  const int access = wish.read && wish.write ? O_RDWR : wish.write ? O_WRONLY : O_RDONLY;
  // Without blocking, so that a pipe without a partner does not hold up the host. Truncated below, once it is ours.
  const int file = open(
      ToUtf8(path).c_str(),
      access | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | (wish.create ? O_CREAT : 0) | (wish.append ? O_APPEND : 0), 0666);
  if (file < 0) return nullptr;
  struct stat status = {};
  const bool regular = fstat(file, &status) == 0 && S_ISREG(status.st_mode);
  // Devices may be written ("/dev/null"); what is read has a length and a position.
  const bool usable = regular || (!wish.read && S_ISCHR(status.st_mode));
  if (!usable || (regular && !Lock(file, share, wish)) || (regular && wish.truncate && ftruncate(file, 0) != 0)) {
    close(file);
    return nullptr;
  }
  fcntl(file, F_SETFL, fcntl(file, F_GETFL) & ~O_NONBLOCK);
  return Adopt(file, mode);
}

FileHandle CreateNewFile(std::u16string_view path) {
  // Readable by nobody else: these files hold parts of the user's documents.
  const int file = open(ToUtf8(path).c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  return file < 0 ? nullptr : Adopt(file, "w+b");
}

FileHandle OpenTemporaryFile() { return FileHandle(std::tmpfile()); }

bool SeekFile(std::FILE *file, int64_t offset, int origin) { return fseeko(file, offset, origin) == 0; }
int64_t TellFile(std::FILE *file) { return ftello(file); }

bool FileExists(std::u16string_view path) {
  struct stat status = {};
  return stat(ToUtf8(path).c_str(), &status) == 0;
}

bool IsFolder(std::u16string_view path) {
  struct stat status = {};
  return stat(ToUtf8(path).c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool RemoveFile(std::u16string_view path) { return unlink(ToUtf8(path).c_str()) == 0; }

}  // namespace kapdf::platform
