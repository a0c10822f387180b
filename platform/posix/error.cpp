#include "platform/error.h"

#include "platform/posix/system_messages.h"

#include <cwchar>
#include <string_view>

namespace {

thread_local DWORD gLastError = ERROR_SUCCESS;

constexpr std::wstring_view kLineEnd = L"\r\n";

/// The error behind a message id: HRESULTs that wrap an error have its text.
DWORD UnwrapError(DWORD messageId) {
  constexpr DWORD kWrappedError = 0x80070000;
  return (messageId & 0xFFFF0000U) == kWrappedError ? messageId & 0xFFFFU : messageId;
}

DWORD Fail(DWORD code) {
  SetLastError(code);
  return 0;
}

} // namespace

DWORD GetLastError() {
  return gLastError;
}

void SetLastError(DWORD code) {
  gLastError = code;
}

DWORD FormatMessageW(DWORD flags, const void* source, DWORD messageId, DWORD languageId, LPWSTR buffer, DWORD size,
                     void* /*arguments*/) {
  if ((flags & ~FORMAT_MESSAGE_IGNORE_INSERTS) != FORMAT_MESSAGE_FROM_SYSTEM || source != nullptr || languageId != 0 ||
      buffer == nullptr) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  const std::wstring_view message = platform::SystemMessage(UnwrapError(messageId));
  if (message.empty()) {
    return Fail(ERROR_MR_MID_NOT_FOUND);
  }
  const std::size_t length = message.size() + kLineEnd.size();
  if (length >= size) {
    return Fail(ERROR_INSUFFICIENT_BUFFER);
  }
  std::wmemcpy(buffer, message.data(), message.size());
  std::wmemcpy(buffer + message.size(), kLineEnd.data(), kLineEnd.size());
  buffer[length] = L'\0';
  return static_cast<DWORD>(length);
}
