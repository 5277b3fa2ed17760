#include "platform/environment.h"

#include <pwd.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

#include "platform/text.h"

namespace kapdf::platform {

namespace {

// A run of one picture letter.
std::string Padded(int value, size_t width) {
  std::string digits = std::to_string(value);
  return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
}

// Replaces runs of the given letters with the values at the same places; the rest stands as it is.
std::string FillPicture(std::string_view picture, std::string_view letters, const std::array<int, 3> &values) {
  std::string out;
  for (size_t i = 0; i < picture.size();) {
    const size_t letter = letters.find(picture[i]);
    if (letter == std::string_view::npos) {
      out += picture[i++];
      continue;
    }
    const size_t end = std::min(picture.find_first_not_of(picture[i], i), picture.size());
    const size_t width = end - i;
    const bool shortYear = picture[i] == 'y' && width <= 2;
    out += Padded(shortYear ? values[letter] % 100 : values[letter], width);
    i = end;
  }
  return out;
}

}  // namespace

std::string LocalMoment::Date(const char *picture) const { return FillPicture(picture, "yMd", {year_, month_, day_}); }

std::string LocalMoment::Time(const char *picture) const {
  return FillPicture(picture, "Hms", {hour_, minute_, second_});
}

LocalMoment LocalMoment::Now() {
  const time_t now = time(nullptr);
  tm local = {};
  LocalMoment moment;
  if (!localtime_r(&now, &local)) return moment;
  moment.year_ = local.tm_year + 1900;
  moment.month_ = local.tm_mon + 1;
  moment.day_ = local.tm_mday;
  moment.hour_ = local.tm_hour;
  moment.minute_ = local.tm_min;
  moment.second_ = local.tm_sec;
  return moment;
}

std::string UserName() {
  std::array<char, 4096> text;
  passwd user = {};
  passwd *found = nullptr;
  if (getpwuid_r(getuid(), &user, text.data(), text.size(), &found) != 0 || !found || !found->pw_name) return {};
  return ToNarrow(FromUtf8(found->pw_name), kSystemCodePage);
}

void SleepMilliseconds(uint32_t milliseconds) {
  timespec left = {static_cast<time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000) * 1'000'000};
  while (nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
}

}  // namespace kapdf::platform
