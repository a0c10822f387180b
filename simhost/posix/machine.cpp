#include "simhost/machine.h"

#include "platform/error.h"
#include "simhost/host_files.h"
#include "simhost/services.h"
#include "simhost/statistics.h"
#include "simhost/text.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace simhost {

namespace {

constexpr CONFIGRET kNoSuchDevice = 0x0D;
constexpr CONFIGRET kInvalidDevice = 0x05;
constexpr DEVINST kRootNode = 1;
constexpr std::size_t kNetBiosUnits = 15;

std::wstring NetBiosName(std::wstring name) {
  name.resize(std::min(name.size(), kNetBiosUnits));
  for (wchar_t& unit : name) {
    unit = unit >= L'a' && unit <= L'z' ? static_cast<wchar_t>(unit - L'a' + L'A') : unit;
  }
  return name;
}

class SimulatedMachine : public platform::Machine {
public:
  explicit SimulatedMachine(std::shared_ptr<Host> host) : m_host(std::move(host)) {}

  bool HasFaults() const noexcept override { return !m_host->faults.IsEmpty(); }

  std::optional<std::uint32_t> TakeFault(std::string_view operation, std::string_view target) override {
    return TakeTransferFault(operation, target).code;
  }

  platform::TransferFault TakeTransferFault(std::string_view operation, std::string_view target) override {
    try {
      const Fault fault = m_host->faults.TakePlatform(operation, target);
      if (fault.delay != 0) {
        m_host->clock->Wait(fault.delay);
      }
      return {fault.nothing ? std::optional<std::uint32_t>(ERROR_SUCCESS) : fault.code, fault.count};
    } catch (const std::exception&) {
      return {};
    }
  }

  HRESULT CreateComObject(REFCLSID classId, REFIID riid, void** object) override {
    if (!IsEqualGUID(classId, CLSID_WbemLocator)) {
      return REGDB_E_CLASSNOTREG;
    }
    auto* locator = new (std::nothrow) Locator(m_host);
    if (locator == nullptr) {
      return E_OUTOFMEMORY;
    }
    const HRESULT result = locator->QueryInterface(riid, object);
    locator->Release();
    return result;
  }

  std::optional<std::wstring> ComputerName(COMPUTER_NAME_FORMAT form, DWORD& error) override {
    const simhost::ComputerName& computer = m_host->computer;
    const bool asksDomain = form == ComputerNameDnsDomain;
    const std::optional<std::wstring>& name = asksDomain ? computer.domain : computer.name;
    if (!name) {
      error = ERROR_FILE_NOT_FOUND;
      return std::nullopt;
    }
    return form == ComputerNameNetBIOS ? NetBiosName(*name) : *name;
  }

  std::uint64_t Now() override { return m_host->clock->Now(); }
  void Wait(std::uint32_t milliseconds) override { m_host->clock->Wait(milliseconds); }
  std::uint64_t EnlistThread() override { return m_host->clock->EnlistThread(); }
  void BeginThread(std::uint64_t thread) override { m_host->clock->BeginThread(thread); }
  void EndThread(std::uint64_t thread) override { m_host->clock->EndThread(thread); }

  std::shared_ptr<platform::PhysicalDrivePort> PhysicalDrive(std::uint32_t number) override {
    return m_host->disks.Drive(number);
  }

  CONFIGRET LocateDeviceTreeRoot(DEVINST& node) override {
    if (!m_host->deviceTreeRoot) {
      return kNoSuchDevice;
    }
    node = kRootNode;
    return CR_SUCCESS;
  }

  CONFIGRET ReenumerateDeviceNode(DEVINST node) override {
    if (node != kRootNode || !m_host->deviceTreeRoot) {
      return kInvalidDevice;
    }
    try {
      m_host->state.Update([](StateChange& change) {
        const Json* counted = change.Find("deviceTree/reenumerations");
        const std::uint64_t* count = counted == nullptr ? nullptr : counted->IfUnsigned();
        change.Set("deviceTree/reenumerations", (count == nullptr ? 0 : *count) + 1);
      });
    } catch (const std::exception&) {
      return CR_FAILURE;
    }
    return CR_SUCCESS;
  }

  std::shared_ptr<platform::RegistryKey> LocalMachineKey() override {
    return Registry::OpenRoot({m_host, &m_host->registry});
  }

  void CountCall(std::string_view operation) noexcept override {
    TheStatistics().calls[OperationIndex(operation)].fetch_add(1, std::memory_order_relaxed);
  }

private:
  std::shared_ptr<Host> m_host;
};

std::wstring RealComputerName() {
  char name[256] = {};
  if (gethostname(name, sizeof name - 1) != 0) {
    return L"localhost";
  }
  const std::string_view whole(name);
  return WideFromUtf8(whole.substr(0, whole.find('.')));
}

/// The listing's file and the host whose registry it lists; never destroyed, as they are used at the very end.
struct RegistryListing {
  std::string path;
  std::shared_ptr<Host> host;
};
RegistryListing& TheRegistryListing() {
  static RegistryListing& listing = *new RegistryListing;
  return listing;
}

void WriteRegistryListing() {
  try {
    std::ofstream file(TheRegistryListing().path, std::ios::trunc | std::ios::binary);
    file << TheRegistryListing().host->registry.Listing();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "host.registry: %s\n", error.what());
  }
}

void PrepareRegistryListing(const std::filesystem::path& directory, const std::shared_ptr<Host>& host) {
  const std::filesystem::path path = directory / "host.registry";
  if (std::filesystem::exists(path) && TheRegistryListing().path.empty()) {
    TheRegistryListing() = {path.string(), host};
    std::atexit(WriteRegistryListing);
  }
}

} // namespace

std::unique_ptr<platform::Machine> MakeSimulatedMachine(std::shared_ptr<Host> host) {
  return std::make_unique<SimulatedMachine>(std::move(host));
}

} // namespace simhost

std::unique_ptr<platform::Machine> platform::MakeMachine() {
  try {
    const std::filesystem::path directory = ExecutableDirectory();
    const std::shared_ptr<simhost::Host> host = simhost::HostOfDirectory(directory, simhost::RealComputerName());
    simhost::PrepareAudit(directory);
    simhost::PrepareRegistryListing(directory, host);
    return simhost::MakeSimulatedMachine(host);
  } catch (const std::exception& error) {
    simhost::Refuse(error.what());
  }
}
