#include "platform/settings.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <mutex>

#include "platform/ini_file.h"
#include "platform/setting_text.h"
#include "platform/text.h"

namespace kapdf::platform {
namespace {

constexpr off_t kLargestFile = 16 << 20;
constexpr int64_t kMillisecond = 1'000'000;  // in nanoseconds

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(const Descriptor &) = delete;
  Descriptor &operator=(const Descriptor &) = delete;
  int Number() const { return number_; }
  explicit operator bool() const { return number_ >= 0; }

 private:
  int number_;
};

std::string Variable(const char *name) {
  const char *value = std::getenv(name);
  return value ? value : "";
}

// Empty when there is neither variable nor home.
std::string SettingsFile() {
  if (std::string named = Variable("KAPDF_SETTINGS"); !named.empty()) return named;
  std::string folder = Variable("XDG_CONFIG_HOME");
  if (folder.empty()) {
    std::string home = Variable("HOME");
    if (home.empty()) {
      const passwd *user = getpwuid(getuid());
      if (user && user->pw_dir) home = user->pw_dir;
    }
    if (home.empty()) return {};
    folder = home + "/.config";
  }
  return folder + "/kaPDF/settings.ini";
}

int64_t Nanoseconds(const timespec &time) { return int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec; }

struct Stamp {
  std::string path;
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = -1;
  int64_t modified = 0;
  bool operator==(const Stamp &) const = default;
};

std::string ReadAll(int file, off_t size) {
  std::string text(static_cast<size_t>(size), '\0');
  size_t got = 0;
  while (got < text.size()) {
    const ssize_t count = read(file, text.data() + got, text.size() - got);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    got += static_cast<size_t>(count);
  }
  text.resize(got);
  return text;
}

// The parsed file; empty when there is none. A document asks for some twenty values, so the last one is kept while the
// file stays as it was.
std::shared_ptr<const IniFile> Load(const std::string &path) {
  static std::mutex mutex;
  static Stamp known;
  static std::shared_ptr<const IniFile> kept;
  static const auto nothing = std::make_shared<const IniFile>();

  struct stat status = {};
  if (path.empty() || stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > kLargestFile) {
    return nothing;
  }
  const Stamp stamp{path, status.st_dev, status.st_ino, status.st_size, Nanoseconds(status.st_mtim)};
  const std::lock_guard lock(mutex);
  if (kept && stamp == known) return kept;

  timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file) return nothing;
  auto parsed = std::make_shared<const IniFile>(IniFile::Parse(ReadAll(file.Number(), status.st_size)));
  // The clock of files ticks in milliseconds: a file this young may change again without showing it.
  const bool settled = Nanoseconds(now) - stamp.modified > 50 * kMillisecond;
  known = settled ? stamp : Stamp();
  kept = settled ? parsed : nullptr;
  return parsed;
}

std::optional<std::string> Find(const std::u16string &path, std::u16string_view name) {
  const auto file = Load(SettingsFile());
  const auto value = file->Find(ToUtf8(path), ToUtf8(name));
  if (!value) return std::nullopt;
  return std::string(*value);
}

// Creates the missing folders above a file.
void MakeFolders(const std::string &path) {
  for (size_t slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1)) {
    mkdir(path.substr(0, slash).c_str(), 0755);
  }
}

// A file that is a link stays one: what it points to is changed.
std::string Target(const std::string &path) {
  std::array<char, PATH_MAX> real;
  return realpath(path.c_str(), real.data()) ? real.data() : path;
}

bool WriteAll(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(file, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    text.remove_prefix(static_cast<size_t>(count));
  }
  return true;
}

// Puts a whole new file in the place of the old one, so that no reader meets half of it.
bool Replace(const std::string &path, const std::string &text) {
  struct stat old = {};
  const mode_t rights = stat(path.c_str(), &old) == 0 ? old.st_mode & 0777 : 0644;
  std::string fresh = path + ".XXXXXX";
  const Descriptor file(mkostemp(fresh.data(), O_CLOEXEC));
  if (!file) return false;
  if (WriteAll(file.Number(), text) && fchmod(file.Number(), rights) == 0 && rename(fresh.c_str(), path.c_str()) == 0) {
    return true;
  }
  unlink(fresh.c_str());
  return false;
}

// Reads, changes and replaces the file while other writers wait; the lock is on the folder, so that no further file is
// needed. Whoever holds it for two seconds is not waited for any longer.
template <class Change>
bool Edit(Change change) {
  const std::string named = SettingsFile();
  if (named.empty()) return false;
  MakeFolders(named);
  const std::string path = Target(named);
  const size_t slash = path.rfind('/');
  const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  const Descriptor lock(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!lock) return false;
  for (int tries = 0; flock(lock.Number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK && tries < 200; ++tries) {
    usleep(10'000);
  }
  IniFile file = *Load(path);
  return change(file) && Replace(path, file.Text());
}

bool Store(const std::u16string &path, std::u16string_view name, const std::string &value) {
  return Edit([&](IniFile &file) { return file.Set(ToUtf8(path), ToUtf8(name), value); });
}

}  // namespace

int32_t Settings::ReadInteger(std::u16string_view name, int32_t fallback) const {
  const auto text = Find(path_, name);
  return text ? ScanInteger(*text).value_or(fallback) : fallback;
}

double Settings::ReadReal(std::u16string_view name, double fallback) const {
  const auto text = Find(path_, name);
  return text ? ScanReal(*text).value_or(fallback) : fallback;
}

std::u16string Settings::ReadString(std::u16string_view name, std::u16string_view fallback) const {
  const auto text = Find(path_, name);
  return text ? FromUtf8(*text) : std::u16string(fallback);
}

bool Settings::WriteInteger(std::u16string_view name, int32_t value) const {
  return Store(path_, name, std::to_string(value));
}

bool Settings::WriteReal(std::u16string_view name, double value) const {
  return std::isfinite(value) && Store(path_, name, FormatReal(value));
}

bool Settings::WriteString(std::u16string_view name, std::u16string_view value) const {
  return Store(path_, name, ToUtf8(value));
}

void Settings::CreateKey() const {}

bool Settings::RemoveKey() const {
  struct stat status = {};
  const std::string path = SettingsFile();
  if (path.empty() || stat(path.c_str(), &status) != 0) return true;
  return Edit([&](IniFile &file) {
    file.RemoveTree(ToUtf8(path_));
    return true;
  });
}

}  // namespace kapdf::platform
