#include "simhost/operations.h"

#include "platform/devices.h"
#include "platform/error.h"
#include "platform/wbem.h"

#include <cerrno>

namespace simhost {

namespace {

constexpr std::uint64_t Code(HRESULT result) {
  return static_cast<std::uint32_t>(result);
}

constexpr CodeName kWmiWords[] = {
    {"failed", Code(WBEM_E_FAILED)},
    {"not found", Code(WBEM_E_NOT_FOUND)},
    {"access denied", Code(WBEM_E_ACCESS_DENIED)},
    {"provider failure", Code(WBEM_E_PROVIDER_FAILURE)},
    {"type mismatch", Code(WBEM_E_TYPE_MISMATCH)},
    {"out of memory", Code(WBEM_E_OUT_OF_MEMORY)},
    {"invalid parameter", Code(WBEM_E_INVALID_PARAMETER)},
    {"not supported", Code(WBEM_E_NOT_SUPPORTED)},
    {"invalid namespace", Code(WBEM_E_INVALID_NAMESPACE)},
    {"invalid class", Code(WBEM_E_INVALID_CLASS)},
    {"transport failure", Code(WBEM_E_TRANSPORT_FAILURE)},
    {"invalid operation", Code(WBEM_E_INVALID_OPERATION)},
    {"unexpected", Code(WBEM_E_UNEXPECTED)},
    {"no more data", Code(WBEM_S_NO_MORE_DATA)},
    {"end", Code(WBEM_S_FALSE)},
};

constexpr CodeName kComWords[] = {
    {"failed", Code(E_FAIL)},
    {"access denied", Code(E_ACCESSDENIED)},
    {"out of memory", Code(E_OUTOFMEMORY)},
    {"invalid argument", Code(E_INVALIDARG)},
    {"no interface", Code(E_NOINTERFACE)},
    {"unexpected", Code(E_UNEXPECTED)},
    {"class not registered", Code(REGDB_E_CLASSNOTREG)},
    {"not initialized", Code(CO_E_NOTINITIALIZED)},
    {"too late", Code(RPC_E_TOO_LATE)},
    {"already started", Code(S_FALSE)},
    {"bad index", Code(DISP_E_BADINDEX)},
    {"locked", Code(DISP_E_ARRAYISLOCKED)},
};

constexpr CodeName kWin32Words[] = {
    {"invalid function", ERROR_INVALID_FUNCTION},
    {"file not found", ERROR_FILE_NOT_FOUND},
    {"path not found", ERROR_PATH_NOT_FOUND},
    {"access denied", ERROR_ACCESS_DENIED},
    {"invalid handle", ERROR_INVALID_HANDLE},
    {"out of memory", ERROR_NOT_ENOUGH_MEMORY},
    {"not ready", ERROR_NOT_READY},
    {"device error", ERROR_IO_DEVICE},
    {"invalid parameter", ERROR_INVALID_PARAMETER},
    {"insufficient buffer", ERROR_INSUFFICIENT_BUFFER},
    {"more data", ERROR_MORE_DATA},
    {"no more files", ERROR_NO_MORE_FILES},
    {"disk full", ERROR_DISK_FULL},
    {"no more items", ERROR_NO_MORE_ITEMS},
    {"key deleted", ERROR_KEY_DELETED},
    {"sharing violation", ERROR_SHARING_VIOLATION},
};

constexpr CodeName kConfigurationWords[] = {
    {"out of memory", 0x02},
    {"no such device", 0x0D},
    {"failed", CR_FAILURE},
    {"access denied", 0x33},
};

constexpr CodeName kRuntimeWords[] = {
    {"file not found", ENOENT},
    {"access denied", EACCES},
    {"out of memory", ENOMEM},
    {"too many open files", EMFILE},
};

constexpr CodeName kAllocationWords[] = {{"out of memory", Code(E_OUTOFMEMORY)}};

} // namespace

std::span<const CodeName> CodeWords(CodeFamily family) {
  switch (family) {
  case CodeFamily::kWmi:
    return kWmiWords;
  case CodeFamily::kCom:
    return kComWords;
  case CodeFamily::kWin32:
    return kWin32Words;
  case CodeFamily::kConfiguration:
    return kConfigurationWords;
  case CodeFamily::kRuntime:
    return kRuntimeWords;
  case CodeFamily::kAllocation:
    break;
  }
  return kAllocationWords;
}

} // namespace simhost
