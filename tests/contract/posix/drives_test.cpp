#include "platform/devices.h"
#include "platform/error.h"
#include "tests/contract/support/test_machine.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

// Physical drives off Windows: which paths open, which requests pass, and what comes back in the caller's buffers.

namespace {

/// Answers any command with four bytes and sense data; its address cannot be had.
class FourBytes : public platform::PhysicalDrivePort {
public:
  DWORD Execute(std::span<const std::uint8_t> command, std::size_t /*room*/, platform::ScsiAnswer& answer) override {
    answer = {{1, 2, 3, 4}, command[0], {0x70, 7, 8, 9}};
    return ERROR_SUCCESS;
  }
  DWORD Address(SCSI_ADDRESS& /*address*/, std::size_t& /*length*/) override { return ERROR_NOT_READY; }
};

class OneDriveMachine : public contract::TestMachine {
public:
  std::shared_ptr<platform::PhysicalDrivePort> PhysicalDrive(std::uint32_t number) override {
    return number == 12 ? std::make_shared<FourBytes>() : nullptr;
  }
};

constexpr DWORD kReadAndWrite = GENERIC_READ | GENERIC_WRITE;

HANDLE Open(const wchar_t* path, DWORD access = kReadAndWrite, DWORD disposition = OPEN_EXISTING) {
  return CreateFileW(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, disposition, FILE_ATTRIBUTE_NORMAL,
                     nullptr);
}

class Drives : public testing::Test {
  std::unique_ptr<platform::Machine> m_before;

protected:
  Drives() : m_before(platform::ReplaceMachine(std::make_unique<OneDriveMachine>())) {}
  ~Drives() override { platform::ReplaceMachine(std::move(m_before)); }

  alignas(16) std::uint8_t data[64] = {};
  alignas(SCSI_PASS_THROUGH_DIRECT) std::uint8_t buffer[128] = {};
  SCSI_PASS_THROUGH_DIRECT request = {sizeof request, 0xFF,  0, 0, 0, 6, 3, SCSI_IOCTL_DATA_IN, sizeof data, 60, data,
                                      sizeof request, {0x12}};
  DWORD returned = 77;

  /// The last error of the request, or 0.
  DWORD Send(HANDLE drive, DWORD code = IOCTL_SCSI_PASS_THROUGH_DIRECT, DWORD size = sizeof buffer) {
    std::memcpy(buffer, &request, sizeof request);
    SetLastError(ERROR_SUCCESS);
    const BOOL isSent = DeviceIoControl(drive, code, buffer, size, buffer, size, &returned, nullptr);
    std::memcpy(&request, buffer, sizeof request);
    return isSent == FALSE ? GetLastError() : ERROR_SUCCESS;
  }
};

TEST_F(Drives, OpenByTheirPathsAlone) {
  struct Row {
    const wchar_t* path;
    DWORD error;
  };
  constexpr Row kRows[] = {{L"\\\\.\\PhysicalDrive12", ERROR_SUCCESS},
                           {L"\\\\.\\PHYSICALDRIVE1", ERROR_FILE_NOT_FOUND},
                           {L"\\\\.\\PHYSICALDRIVE", ERROR_PATH_NOT_FOUND},
                           {L"\\\\.\\PHYSICALDRIVE12x", ERROR_PATH_NOT_FOUND},
                           {L"\\\\.\\PHYSICALDRIVE4294967308", ERROR_PATH_NOT_FOUND}};
  for (const Row& row : kRows) {
    SetLastError(ERROR_SUCCESS);
    HANDLE drive = Open(row.path);
    EXPECT_EQ(GetLastError(), row.error) << row.path;
    EXPECT_EQ(drive == INVALID_HANDLE_VALUE, row.error != ERROR_SUCCESS) << row.path;
    EXPECT_EQ(CloseHandle(drive), drive != INVALID_HANDLE_VALUE);
  }
}

TEST_F(Drives, PutAnswersIntoTheCallersBuffers) {
  HANDLE drive = Open(L"\\\\.\\PHYSICALDRIVE12");
  ASSERT_EQ(Send(drive), ERROR_SUCCESS);
  EXPECT_EQ(request.ScsiStatus, 0x12);
  EXPECT_EQ(request.DataTransferLength, 4U);
  EXPECT_TRUE(std::equal(data, data + 5, std::begin({1, 2, 3, 4, 0})));
  EXPECT_EQ(returned, sizeof request + 3);
  EXPECT_TRUE(std::equal(buffer + sizeof request, buffer + sizeof request + 4, std::begin({0x70, 7, 8, 0})));

  request.DataTransferLength = 2;
  std::ranges::fill(data, std::uint8_t{0});
  ASSERT_EQ(Send(drive), ERROR_SUCCESS);
  EXPECT_TRUE(std::equal(data, data + 3, std::begin({1, 2, 0})));
  CloseHandle(drive);
}

TEST_F(Drives, RefuseRequestsThatNoAdapterTakes) {
  HANDLE drive = Open(L"\\\\.\\PHYSICALDRIVE12");
  struct Row {
    DWORD error;
    void (*spoil)(SCSI_PASS_THROUGH_DIRECT& changed);
  };
  constexpr Row kRows[] = {
      {ERROR_REVISION_MISMATCH, [](auto& changed) { changed.Length = 44; }},
      {ERROR_INVALID_PARAMETER, [](auto& changed) { changed.CdbLength = 17; }},
      {ERROR_INVALID_PARAMETER, [](auto& changed) { changed.CdbLength = 0; }},
      {ERROR_INVALID_PARAMETER, [](auto& changed) { changed.SenseInfoOffset = 55; }},
      {ERROR_INVALID_PARAMETER, [](auto& changed) { changed.SenseInfoOffset = 126; }},
      {ERROR_INVALID_PARAMETER, [](auto& changed) { changed.SenseInfoOffset = 0xFFFFFFFF; }},
      {ERROR_INVALID_PARAMETER, [](auto& changed) { changed.DataBuffer = nullptr; }},
      {ERROR_INVALID_PARAMETER, [](auto& changed) { changed.DataBuffer = static_cast<BYTE*>(changed.DataBuffer) + 1; }},
      {ERROR_INVALID_PARAMETER, [](auto& changed) { changed.TimeOutValue = 0; }},
  };
  const SCSI_PASS_THROUGH_DIRECT good = request;
  for (const Row& row : kRows) {
    request = good;
    row.spoil(request);
    EXPECT_EQ(Send(drive), row.error) << &row - kRows;
  }
  request = good;
  EXPECT_EQ(Send(drive, IOCTL_SCSI_PASS_THROUGH_DIRECT, sizeof request - 1), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(Send(drive, IOCTL_SCSI_GET_ADDRESS, 7), ERROR_INSUFFICIENT_BUFFER);
  EXPECT_EQ(Send(drive, IOCTL_SCSI_GET_ADDRESS), ERROR_NOT_READY);
  EXPECT_EQ(Send(drive, 0x70000), ERROR_INVALID_FUNCTION);
  EXPECT_EQ(returned, 77U) << "a failed request returns nothing";

  HANDLE reader = Open(L"\\\\.\\PHYSICALDRIVE12", GENERIC_READ);
  EXPECT_EQ(Send(reader), ERROR_ACCESS_DENIED);
  EXPECT_TRUE(CloseHandle(drive) != FALSE && CloseHandle(reader) != FALSE);
  EXPECT_EQ(CloseHandle(drive), FALSE);
  EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
  EXPECT_EQ(Send(drive), ERROR_INVALID_HANDLE);
}

} // namespace
