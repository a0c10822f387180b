#include "app/inventory/path_information.h"

#include "app/channel/channel.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "platform/allocation.h"
#include "platform/text.h"
#include "wmi/orb_wmi_class.h"
#include "wmi/orb_wmi_enumerator.h"

#include <algorithm>
#include <iterator>

namespace korvex {

PathInformation* gPathInformation = nullptr;

namespace {

constexpr std::uint32_t kAdapterNameCapacity = 80;

/// Reads one property into an entry; false when the list ends with it.
bool ReadInto(OrbWmiEnumerator& adapter, const wchar_t* name, void* value, std::uint32_t length) {
  const wmiReturn status = adapter.GetProperty(name, value, length);
  return status == kWmiSuccess || status == kWmiNullValue;
}

bool ReadEntry(OrbWmiEnumerator& adapters, std::uint32_t index, PathInformationEntry& entry) {
  char adapterName[kAdapterNameCapacity];
  if (adapters.GetElement(static_cast<std::int32_t>(index)) != kWmiSuccess ||
      !ReadInto(adapters, L"PathId", &entry.PathId, sizeof(entry.PathId)) ||
      !ReadInto(adapters, L"BusNumber", &entry.BusNumber, sizeof(entry.BusNumber)) ||
      !ReadInto(adapters, L"DeviceNumber", &entry.DeviceNumber, sizeof(entry.DeviceNumber)) ||
      !ReadInto(adapters, L"FunctionNumber", &entry.FunctionNumber, sizeof(entry.FunctionNumber)) ||
      !ReadInto(adapters, L"AdapterName", adapterName, kAdapterNameCapacity)) {
    return false;
  }
  adapterName[kAdapterNameCapacity - 1] = '\0';
  wchar_t wideName[kAdapterNameCapacity] = {};
  MultiByteToWideChar(CP_ACP, 0, adapterName, -1, wideName, kAdapterNameCapacity);
  std::copy_n(wideName, std::size(entry.AdapterName) - 1, entry.AdapterName);
  return true;
}

/// Reads the adapters of the instance that `framework` stands on into the table.
void ReadPathList(OrbWmiEnumerator& framework) {
  OrbWmiClass adapterClass;
  OrbWmiEnumerator* adapters = nullptr;
  if (adapterClass.Initialize(gDsmChannel->connection, L"MPIO_ADAPTER_INFORMATION") != kWmiSuccess ||
      framework.InitArrayEnumerator(&adapterClass, L"PathList", &adapters) != kWmiSuccess || adapters == nullptr) {
    PrintError("Unable to initialize enumerator for adapter information - %s!\n", RuntimeErrorText());
    return;
  }
  for (std::uint32_t i = 0; i < gPathInformation->count && ReadEntry(*adapters, i, gPathInformation->Entries()[i]);
       ++i) {
  }
  platform::DeleteObject(adapters);
}

/// Replaces the table by an empty one for `count` paths; false after a message.
bool MakeTable(std::uint32_t count) {
  platform::FreeStore(gPathInformation);
  gPathInformation = static_cast<PathInformation*>(platform::AllocateStore(
      "gPathInformation", sizeof(PathInformation) + std::uint64_t{count} * sizeof(PathInformationEntry)));
  if (gPathInformation == nullptr) {
    PrintError("Unable to malloc memory for Path Information - %s!\n", RuntimeErrorText());
    return false;
  }
  gPathInformation->count = count;
  return true;
}

bool ReadFramework() {
  if (!ConnectChannel()) {
    return false;
  }
  TracePrint("Class init\n");
  wmiReturn status = gDsmChannel->methodsClass.Initialize(gDsmChannel->connection, L"MPIO_PATH_INFORMATION");
  if (status != kWmiSuccess) {
    PrintError("Bus connection failed getting MPIO_PATH_INFORMATION info,wmiReturn=%d \n", static_cast<int>(status));
    return false;
  }
  OrbWmiEnumerator& framework = gDsmChannel->instances;
  status = framework.Initialize(&gDsmChannel->methodsClass);
  if (status != kWmiSuccess) {
    PrintError("failed initializing MPIO_PATH_INFORMATION enumerator,wmiReturn=%d \n", static_cast<int>(status));
    return false;
  }
  std::uint32_t count = 0;
  status = framework.GetProperty(L"NumberPaths", &count, sizeof(count));
  if (status != kWmiSuccess) {
    PrintError("failed retrieving MPIO_PATH_INFORMATION NumberPaths element,wmiReturn=%d \n", static_cast<int>(status));
    return false;
  }
  if (MakeTable(count)) {
    ReadPathList(framework);
  }
  return true;
}

} // namespace

bool ReadPathInformation() {
  const bool isRead = ReadFramework();
  gDsmChannel->connection.CloseConnection();
  return isRead;
}

} // namespace korvex
