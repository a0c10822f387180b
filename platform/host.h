#pragma once

#include "platform/types.h"

// The machine's name, its clock, the texts of date and time, and waiting.

#ifndef _WIN32
struct SYSTEMTIME {
  WORD wYear;
  WORD wMonth;
  WORD wDayOfWeek; ///< 0 is Sunday
  WORD wDay;
  WORD wHour;
  WORD wMinute;
  WORD wSecond;
  WORD wMilliseconds;
};

/// 100-nanosecond units since 1601-01-01 00:00:00 UTC.
struct FILETIME {
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
};

enum COMPUTER_NAME_FORMAT : int {
  ComputerNameNetBIOS = 0,
  ComputerNameDnsHostname = 1,
  ComputerNameDnsDomain = 2,
};

inline constexpr LCID LOCALE_SYSTEM_DEFAULT = 0x0800;
inline constexpr DWORD TIME_FORCE24HOURFORMAT = 0x00000008;

/// The machine's name into `buffer`; `*size` is its capacity in wide characters on entry, on success the length without
/// the terminator, with the last error 234 the capacity needed.
BOOL GetComputerNameExW(COMPUTER_NAME_FORMAT nameType, LPWSTR buffer, DWORD* size);

/// The machine's current date and time in UTC.
void GetSystemTime(SYSTEMTIME* now);

/// `time` (none: now) by a picture of H, HH, h, hh, m, mm, s, ss, t, tt and quoted text. Gives the characters written,
/// the terminator included (`capacity` 0 only measures), or 0 with the last error 87 or 122.
int GetTimeFormatW(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCWSTR picture, LPWSTR text, int capacity);

/// The same for a date picture of d, dd, ddd, dddd, M, MM, MMM, MMMM, y, yy, yyyy and quoted text; English names.
int GetDateFormatW(LCID locale, DWORD flags, const SYSTEMTIME* date, LPCWSTR picture, LPWSTR text, int capacity);

/// Fails with the last error 87 for a file time above 0x7FFFFFFFFFFFFFFF.
BOOL FileTimeToSystemTime(const FILETIME* fileTime, SYSTEMTIME* systemTime);

void Sleep(DWORD milliseconds);
#endif
