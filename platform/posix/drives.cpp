#include "platform/devices.h"
#include "platform/error.h"
#include "platform/posix/errno_guard.h"
#include "platform/posix/faults.h"
#include "platform/posix/handle_table.h"
#include "platform/posix/handles.h"
#include "platform/posix/machine.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

// Handles, rights and requests of physical drives; what they answer is the machine's.

namespace {

constexpr std::wstring_view kDrivePrefix = L"\\\\.\\PHYSICALDRIVE";
constexpr std::size_t kMostDigits = 5;

/// A drive as one handle has it.
struct OpenDrive {
  std::shared_ptr<platform::PhysicalDrivePort> drive;
  std::wstring path;
  DWORD access = 0;
};

/// Of static life without an end, as the machine's.
platform::HandleTable<OpenDrive>& OpenDrives() {
  static auto& drives = *new platform::HandleTable<OpenDrive>;
  return drives;
}

HANDLE FailToOpen(DWORD code) {
  SetLastError(code);
  return INVALID_HANDLE_VALUE;
}

wchar_t UpperLetter(wchar_t unit) {
  return unit >= L'a' && unit <= L'z' ? static_cast<wchar_t>(unit - L'a' + L'A') : unit;
}

/// The number in the path of a physical drive.
std::optional<std::uint32_t> DriveNumber(std::wstring_view path) {
  const bool isDrive = path.size() > kDrivePrefix.size() && path.size() <= kDrivePrefix.size() + kMostDigits &&
                       std::equal(kDrivePrefix.begin(), kDrivePrefix.end(), path.begin(),
                                  [](wchar_t left, wchar_t right) { return left == UpperLetter(right); });
  if (!isDrive) {
    return std::nullopt;
  }
  std::uint32_t number = 0;
  for (const wchar_t digit : path.substr(kDrivePrefix.size())) {
    if (digit < L'0' || digit > L'9') {
      return std::nullopt;
    }
    number = number * 10 + static_cast<std::uint32_t>(digit - L'0');
  }
  return number;
}

HANDLE OpenDriveOf(LPCWSTR path, DWORD access, DWORD disposition) {
  const auto number = DriveNumber(path);
  if (!number || disposition != OPEN_EXISTING) {
    return FailToOpen(number ? ERROR_INVALID_PARAMETER : ERROR_PATH_NOT_FOUND);
  }
  const platform::MachineCode inside;
  std::shared_ptr<platform::PhysicalDrivePort> drive = platform::TheMachine().PhysicalDrive(*number);
  if (drive == nullptr) {
    return FailToOpen(ERROR_FILE_NOT_FOUND);
  }
  return reinterpret_cast<HANDLE>(OpenDrives().Add({std::move(drive), path, access})); // NOLINT
}

/// The request in the buffer; none when it is not one that an adapter takes.
std::optional<SCSI_PASS_THROUGH_DIRECT> ReadRequest(const void* buffer, DWORD inputSize, DWORD outputSize,
                                                    DWORD& error) {
  constexpr std::uintptr_t kAlignment = 16; // what adapters commonly ask for
  SCSI_PASS_THROUGH_DIRECT request;
  error = ERROR_INVALID_PARAMETER;
  if (buffer == nullptr || inputSize < sizeof request || outputSize < sizeof request) {
    return std::nullopt;
  }
  std::memcpy(&request, buffer, sizeof request);
  if (request.Length != sizeof request) {
    error = ERROR_REVISION_MISMATCH;
    return std::nullopt;
  }
  const bool hasRoomForSense = request.SenseInfoLength == 0 ||
                               (request.SenseInfoOffset >= sizeof request && request.SenseInfoOffset <= outputSize &&
                                request.SenseInfoLength <= outputSize - request.SenseInfoOffset);
  if (!hasRoomForSense || request.CdbLength == 0 || request.CdbLength > sizeof request.Cdb ||
      request.DataIn != SCSI_IOCTL_DATA_IN || request.TimeOutValue == 0 ||
      (request.DataBuffer == nullptr && request.DataTransferLength != 0) ||
      reinterpret_cast<std::uintptr_t>(request.DataBuffer) % kAlignment != 0) {
    return std::nullopt;
  }
  return request;
}

DWORD PassThrough(const OpenDrive& open, void* buffer, DWORD inputSize, DWORD outputSize, DWORD& returned) {
  constexpr DWORD kReadAndWrite = GENERIC_READ | GENERIC_WRITE;
  if ((open.access & kReadAndWrite) != kReadAndWrite) {
    return ERROR_ACCESS_DENIED;
  }
  DWORD error = ERROR_SUCCESS;
  auto request = ReadRequest(buffer, inputSize, outputSize, error);
  if (!request) {
    return error;
  }
  platform::ScsiAnswer answer;
  const std::span<const std::uint8_t> command(request->Cdb, request->CdbLength);
  const DWORD result = open.drive->Execute(command, request->DataTransferLength, answer);
  if (result != ERROR_SUCCESS) {
    return result;
  }
  const std::size_t length = std::min<std::size_t>(answer.data.size(), request->DataTransferLength);
  std::copy_n(answer.data.begin(), length, static_cast<std::uint8_t*>(request->DataBuffer));
  request->DataTransferLength = static_cast<ULONG>(length);
  request->ScsiStatus = answer.status;
  const std::size_t senseLength = std::min<std::size_t>(answer.sense.size(), request->SenseInfoLength);
  request->SenseInfoLength = static_cast<BYTE>(senseLength);
  auto* bytes = static_cast<std::uint8_t*>(buffer);
  std::copy_n(answer.sense.begin(), senseLength, bytes + request->SenseInfoOffset);
  std::memcpy(bytes, &*request, sizeof *request);
  returned = static_cast<DWORD>(sizeof *request + senseLength);
  return ERROR_SUCCESS;
}

DWORD TellAddress(const OpenDrive& open, void* output, DWORD outputSize, DWORD& returned) {
  if (output == nullptr || outputSize < sizeof(SCSI_ADDRESS)) {
    return ERROR_INSUFFICIENT_BUFFER;
  }
  SCSI_ADDRESS address = {};
  std::size_t length = sizeof address;
  const DWORD result = open.drive->Address(address, length);
  if (result == ERROR_SUCCESS) {
    std::memcpy(output, &address, std::min(length, sizeof address));
    returned = static_cast<DWORD>(length);
  }
  return result;
}

} // namespace

std::optional<std::uint32_t> platform::CloseDriveHandle(std::uintptr_t handle) {
  const auto open = OpenDrives().Find(handle);
  return open ? std::optional(CloseIn(OpenDrives(), handle, open->path.c_str())) : std::nullopt;
}

HANDLE CreateFileW(LPCWSTR path, DWORD access, DWORD /*sharing*/, void* /*security*/, DWORD disposition,
                   DWORD /*attributes*/, HANDLE /*model*/) {
  const platform::ErrnoGuard guard;
  if (path == nullptr) {
    return FailToOpen(ERROR_INVALID_PARAMETER);
  }
  if (const auto fault = platform::FaultOf("CreateFileW", path)) {
    return FailToOpen(*fault);
  }
  try {
    return OpenDriveOf(path, access, disposition);
  } catch (const std::bad_alloc&) {
    return FailToOpen(ERROR_NOT_ENOUGH_MEMORY);
  }
}

BOOL DeviceIoControl(HANDLE device, DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize,
                     DWORD* returned, void* overlapped) {
  const platform::ErrnoGuard guard;
  DWORD result = ERROR_INVALID_HANDLE;
  DWORD length = 0;
  try {
    const auto open = OpenDrives().Find(reinterpret_cast<std::uintptr_t>(device));
    if (open) {
      const auto fault = platform::FaultOf("DeviceIoControl", open->path.c_str());
      const platform::MachineCode inside;
      if (fault) {
        result = *fault;
      } else if (returned == nullptr || overlapped != nullptr) {
        result = ERROR_INVALID_PARAMETER;
      } else if (code == IOCTL_SCSI_PASS_THROUGH_DIRECT) {
        result = input == output ? PassThrough(*open, input, inputSize, outputSize, length) : ERROR_INVALID_PARAMETER;
      } else {
        result =
            code == IOCTL_SCSI_GET_ADDRESS ? TellAddress(*open, output, outputSize, length) : ERROR_INVALID_FUNCTION;
      }
    }
  } catch (const std::bad_alloc&) {
    result = ERROR_NOT_ENOUGH_MEMORY;
  }
  if (result != ERROR_SUCCESS) {
    SetLastError(result);
    return FALSE;
  }
  *returned = length;
  return TRUE;
}
