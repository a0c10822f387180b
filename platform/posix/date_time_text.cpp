#include "platform/error.h"
#include "platform/host.h"
#include "platform/posix/calendar.h"
#include "platform/posix/errno_guard.h"
#include "platform/posix/faults.h"

#include <array>
#include <cwchar>
#include <string>
#include <string_view>

// Date and time by a picture: runs of one letter stand for a value, quoted text and every other character for itself.

namespace {

constexpr std::array<std::wstring_view, 7> kDays = {L"Sunday",   L"Monday", L"Tuesday", L"Wednesday",
                                                    L"Thursday", L"Friday", L"Saturday"};
constexpr std::array<std::wstring_view, 12> kMonths = {L"January",   L"February", L"March",    L"April",
                                                       L"May",       L"June",     L"July",     L"August",
                                                       L"September", L"October",  L"November", L"December"};
constexpr std::size_t kShortName = 3;

constexpr wchar_t kQuote = L'\'';

int Fail(DWORD code) {
  SetLastError(code);
  return 0;
}

/// `value` in decimal, with at least `digits` digits.
std::wstring Digits(unsigned value, std::size_t digits) {
  std::wstring text = std::to_wstring(value);
  return text.size() < digits ? std::wstring(digits - text.size(), L'0') + text : text;
}

/// One digit or two, as the picture has one letter or more.
std::wstring OneOrTwoDigits(unsigned value, std::size_t letters) {
  return Digits(value, letters == 1 ? 1 : 2);
}

std::wstring Name(std::wstring_view name, std::size_t letters) {
  return std::wstring(letters == kShortName ? name.substr(0, kShortName) : name);
}

/// The value of a run of `letters` times `letter` in a time picture; false for a letter that stands for itself.
bool TimeField(const SYSTEMTIME& time, bool force24Hours, wchar_t letter, std::size_t letters, std::wstring& value) {
  const unsigned hour = time.wHour;
  switch (letter) {
  case L'H':
    value = OneOrTwoDigits(hour, letters);
    return true;
  case L'h':
    value = OneOrTwoDigits(force24Hours ? hour : (hour + 11) % 12 + 1, letters);
    return true;
  case L'm':
    value = OneOrTwoDigits(time.wMinute, letters);
    return true;
  case L's':
    value = OneOrTwoDigits(time.wSecond, letters);
    return true;
  case L't':
    value = std::wstring(hour < 12 ? L"AM" : L"PM", letters == 1 ? 1 : 2);
    return true;
  default:
    return false;
  }
}

/// The same in a date picture.
bool DateField(const SYSTEMTIME& date, wchar_t letter, std::size_t letters, std::wstring& value) {
  switch (letter) {
  case L'd':
    value = letters < kShortName ? OneOrTwoDigits(date.wDay, letters) : Name(kDays[platform::DayOfWeek(date)], letters);
    return true;
  case L'M':
    value = letters < kShortName ? OneOrTwoDigits(date.wMonth, letters) : Name(kMonths[date.wMonth - 1U], letters);
    return true;
  case L'y':
    value = letters < kShortName ? OneOrTwoDigits(date.wYear % 100U, letters) : Digits(date.wYear, 4);
    return true;
  default:
    return false;
  }
}

/// Appends the quoted text that begins at `picture[at]` and gives the place after it. Two quotes in it are one that
/// shows.
std::size_t AppendQuoted(std::wstring_view picture, std::size_t at, std::wstring& text) {
  for (++at; at < picture.size(); ++at) {
    if (picture[at] == kQuote) {
      const bool shows = at + 1 < picture.size() && picture[at + 1] == kQuote;
      if (!shows) {
        return at + 1;
      }
      ++at;
    }
    text += picture[at];
  }
  return at;
}

template <class Field>
std::wstring Render(std::wstring_view picture, const Field& fieldOf) {
  std::wstring text;
  std::size_t at = 0;
  while (at < picture.size()) {
    const wchar_t letter = picture[at];
    if (letter == kQuote) {
      at = AppendQuoted(picture, at, text);
      continue;
    }
    const std::size_t end = std::min(picture.find_first_not_of(letter, at), picture.size());
    std::wstring value;
    text += fieldOf(letter, end - at, value) ? value : std::wstring(end - at, letter);
    at = end;
  }
  return text;
}

/// The finished text into the caller's buffer, as both functions do it.
int Deliver(const std::wstring& text, LPWSTR buffer, int capacity) {
  const std::size_t needed = text.size() + 1;
  if (capacity != 0) {
    if (needed > static_cast<std::size_t>(capacity)) {
      return Fail(ERROR_INSUFFICIENT_BUFFER);
    }
    std::wmemcpy(buffer, text.c_str(), needed);
  }
  return static_cast<int>(needed);
}

bool AreGoodArguments(LPCWSTR picture, LPCWSTR buffer, int capacity) {
  return picture != nullptr && capacity >= 0 && (buffer != nullptr || capacity == 0);
}

SYSTEMTIME GivenOrNow(const SYSTEMTIME* given) {
  if (given != nullptr) {
    return *given;
  }
  SYSTEMTIME now = {};
  GetSystemTime(&now);
  return now;
}

} // namespace

int GetTimeFormatW(LCID /*locale*/, DWORD flags, const SYSTEMTIME* time, LPCWSTR picture, LPWSTR text, int capacity) {
  const platform::ErrnoGuard guard;
  if (!AreGoodArguments(picture, text, capacity)) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  if (const auto fault = platform::FaultOf("GetTimeFormatW", picture)) {
    return Fail(*fault);
  }
  if ((flags & ~TIME_FORCE24HOURFORMAT) != 0) {
    return Fail(ERROR_INVALID_FLAGS);
  }
  const SYSTEMTIME shown = GivenOrNow(time);
  if (shown.wHour > 23 || shown.wMinute > 59 || shown.wSecond > 59) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  const auto field = [&shown, flags](wchar_t letter, std::size_t letters, std::wstring& value) {
    return TimeField(shown, (flags & TIME_FORCE24HOURFORMAT) != 0, letter, letters, value);
  };
  return Deliver(Render(picture, field), text, capacity);
}

int GetDateFormatW(LCID /*locale*/, DWORD flags, const SYSTEMTIME* date, LPCWSTR picture, LPWSTR text, int capacity) {
  const platform::ErrnoGuard guard;
  if (!AreGoodArguments(picture, text, capacity)) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  if (const auto fault = platform::FaultOf("GetDateFormatW", picture)) {
    return Fail(*fault);
  }
  if (flags != 0) {
    return Fail(ERROR_INVALID_FLAGS);
  }
  const SYSTEMTIME shown = GivenOrNow(date);
  if (!platform::IsCalendarDate(shown)) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  const auto field = [&shown](wchar_t letter, std::size_t letters, std::wstring& value) {
    return DateField(shown, letter, letters, value);
  };
  return Deliver(Render(picture, field), text, capacity);
}
