#include "platform/environment.h"

#include <lmcons.h>
#include <windows.h>

#include <array>

namespace kapdf::platform {
namespace {

SYSTEMTIME SystemTime(int year, int month, int day, int hour, int minute, int second) {
  SYSTEMTIME time = {};
  time.wYear = static_cast<WORD>(year);
  time.wMonth = static_cast<WORD>(month);
  time.wDay = static_cast<WORD>(day);
  time.wHour = static_cast<WORD>(hour);
  time.wMinute = static_cast<WORD>(minute);
  time.wSecond = static_cast<WORD>(second);
  return time;
}

}  // namespace

LocalMoment LocalMoment::Now() {
  SYSTEMTIME now = {};
  GetLocalTime(&now);
  LocalMoment moment;
  moment.year_ = now.wYear;
  moment.month_ = now.wMonth;
  moment.day_ = now.wDay;
  moment.hour_ = now.wHour;
  moment.minute_ = now.wMinute;
  moment.second_ = now.wSecond;
  return moment;
}

std::string LocalMoment::Date(const char *picture) const {
  const SYSTEMTIME time = SystemTime(year_, month_, day_, hour_, minute_, second_);
  std::array<char, 128> text{};
  return GetDateFormatA(LOCALE_USER_DEFAULT, 0, &time, picture, text.data(), text.size()) > 0 ? text.data() : "";
}

std::string LocalMoment::Time(const char *picture) const {
  const SYSTEMTIME time = SystemTime(year_, month_, day_, hour_, minute_, second_);
  std::array<char, 128> text{};
  return GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &time, picture, text.data(), text.size()) > 0 ? text.data() : "";
}

std::string UserName() {
  std::array<char, UNLEN * 2 + 1> text{};
  DWORD size = text.size();
  return GetUserNameA(text.data(), &size) ? text.data() : "";
}

void SleepMilliseconds(uint32_t milliseconds) { Sleep(milliseconds); }

}  // namespace kapdf::platform
