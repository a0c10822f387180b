#include "platform/posix/system_messages.h"

#include <algorithm>
#include <iterator>

namespace platform {

namespace {

struct Message {
  DWORD code;
  std::wstring_view text;
};

/// In ascending order of the codes. No text has inserts.
constexpr Message kMessages[] = {
    {0, L"The operation completed successfully."},
    {1, L"Incorrect function."},
    {2, L"The system cannot find the file specified."},
    {3, L"The system cannot find the path specified."},
    {4, L"The system cannot open the file."},
    {5, L"Access is denied."},
    {6, L"The handle is invalid."},
    {7, L"The storage control blocks were destroyed."},
    {8, L"Not enough storage is available to process this command."},
    {9, L"The storage control block address is invalid."},
    {10, L"The environment is incorrect."},
    {11, L"An attempt was made to load a program with an incorrect format."},
    {12, L"The access code is invalid."},
    {13, L"The data is invalid."},
    {14, L"Not enough storage is available to complete this operation."},
    {15, L"The system cannot find the drive specified."},
    {16, L"The directory cannot be removed."},
    {17, L"The system cannot move the file to a different disk drive."},
    {18, L"There are no more files."},
    {19, L"The media is write protected."},
    {20, L"The system cannot find the device specified."},
    {21, L"The device is not ready."},
    {22, L"The device does not recognize the command."},
    {23, L"Data error (cyclic redundancy check)."},
    {24, L"The program issued a command but the command length is incorrect."},
    {25, L"The drive cannot locate a specific area or track on the disk."},
    {26, L"The specified disk or diskette cannot be accessed."},
    {27, L"The drive cannot find the sector requested."},
    {29, L"The system cannot write to the specified device."},
    {30, L"The system cannot read from the specified device."},
    {31, L"A device attached to the system is not functioning."},
    {32, L"The process cannot access the file because it is being used by another process."},
    {33, L"The process cannot access the file because another process has locked a portion of the file."},
    {36, L"Too many files opened for sharing."},
    {38, L"Reached the end of the file."},
    {39, L"The disk is full."},
    {50, L"The request is not supported."},
    {53, L"The network path was not found."},
    {55, L"The specified network resource or device is no longer available."},
    {80, L"The file exists."},
    {82, L"The directory or file cannot be created."},
    {87, L"The parameter is incorrect."},
    {109, L"The pipe has been ended."},
    {110, L"The system cannot open the device or file specified."},
    {111, L"The file name is too long."},
    {112, L"There is not enough space on the disk."},
    {120, L"This function is not supported on this system."},
    {121, L"The semaphore timeout period has expired."},
    {122, L"The data area passed to a system call is too small."},
    {123, L"The filename, directory name, or volume label syntax is incorrect."},
    {126, L"The specified module could not be found."},
    {127, L"The specified procedure could not be found."},
    {131, L"An attempt was made to move the file pointer before the beginning of the file."},
    {145, L"The directory is not empty."},
    {161, L"The specified path is invalid."},
    {170, L"The requested resource is in use."},
    {183, L"Cannot create a file when that file already exists."},
    {206, L"The filename or extension is too long."},
    {234, L"More data is available."},
    {258, L"The wait operation timed out."},
    {259, L"No more data is available."},
    {267, L"The directory name is invalid."},
    {487, L"Attempt to access invalid address."},
    {995, L"The I/O operation has been aborted because of either a thread exit or an application request."},
    {996, L"Overlapped I/O event is not in a signaled state."},
    {997, L"Overlapped I/O operation is in progress."},
    {998, L"Invalid access to memory location."},
    {1004, L"Invalid flags."},
    {1008, L"An attempt was made to reference a token that does not exist."},
    {1009, L"The configuration registry database is corrupt."},
    {1010, L"The configuration registry key is invalid."},
    {1011, L"The configuration registry key could not be opened."},
    {1012, L"The configuration registry key could not be read."},
    {1013, L"The configuration registry key could not be written."},
    {1018, L"Illegal operation attempted on a registry key that has been marked for deletion."},
    {1053, L"The service did not respond to the start or control request in a timely fashion."},
    {1060, L"The specified service does not exist as an installed service."},
    {1062, L"The service has not been started."},
    {1113, L"No mapping for the Unicode character exists in the target multi-byte code page."},
    {1117, L"The request could not be performed because of an I/O device error."},
    {1167, L"The device is not connected."},
    {1168, L"Element not found."},
    {1314, L"A required privilege is not held by the client."},
    {1450, L"Insufficient system resources exist to complete the requested service."},
    {1455, L"The paging file is too small for this operation to complete."},
    {1460, L"This operation returned because the timeout period expired."},
    {1784, L"The supplied user buffer is not valid for the requested operation."},
};

static_assert(std::is_sorted(std::begin(kMessages), std::end(kMessages),
                             [](const Message& left, const Message& right) { return left.code < right.code; }));

} // namespace

std::wstring_view SystemMessage(DWORD code) noexcept {
  const auto* const found =
      std::lower_bound(std::begin(kMessages), std::end(kMessages), code,
                       [](const Message& message, DWORD wanted) { return message.code < wanted; });
  return found != std::end(kMessages) && found->code == code ? found->text : std::wstring_view();
}

} // namespace platform
