// Who and when: local time, the logged-on user, waiting.
#pragma once

#include <cstdint>
#include <string>

namespace kapdf::platform {

// One moment of local time, so that date and time of a document agree.
class LocalMoment {
 public:
  static LocalMoment Now();
  // Picture of y, M, d for dates ("yyyyMMdd", "yyyy-MM-dd") and H, m, s for times ("HHmmss", "HH:mm:ss"), formatted
  // with the user's locale where the system has one for such pictures.
  std::string Date(const char *picture) const;
  std::string Time(const char *picture) const;

 private:
  int year_ = 1970, month_ = 1, day_ = 1, hour_ = 0, minute_ = 0, second_ = 0;
};

// Name of the logged-on user in the system code page; empty when there is none.
std::string UserName();

void SleepMilliseconds(uint32_t milliseconds);

}  // namespace kapdf::platform
