#pragma once

#include "platform/posix/machine.h"
#include "simhost/registry.h"

#include <chrono>
#include <functional>
#include <thread>

namespace contract {

/// The least machine that the platform's calls can run on: a name without a domain, the real clock, a device tree of
/// one node, no COM class and the simulated host's registry, empty. Its faults are what `onFault` says.
class TestMachine : public platform::Machine {
public:
  using FaultRule = std::function<std::optional<std::uint32_t>(std::string_view operation, std::string_view target)>;

  static constexpr DEVINST kRootNode = 1;

  FaultRule onFault;
  std::function<HRESULT(REFCLSID classId, REFIID riid, void** object)> onCreate;

  bool HasFaults() const noexcept override { return onFault != nullptr; }
  std::optional<std::uint32_t> TakeFault(std::string_view operation, std::string_view target) override {
    return onFault(operation, target);
  }
  HRESULT CreateComObject(REFCLSID classId, REFIID riid, void** object) override {
    return onCreate == nullptr ? REGDB_E_CLASSNOTREG : onCreate(classId, riid, object);
  }
  std::optional<std::wstring> ComputerName(COMPUTER_NAME_FORMAT form, DWORD& /*error*/) override {
    return form == ComputerNameDnsDomain ? L"" : L"contract-host";
  }
  std::uint64_t Now() override {
    using Ticks = std::chrono::duration<std::uint64_t, std::ratio<1, 10'000'000>>;
    constexpr std::uint64_t kUnixEpoch = 116444736000000000;
    const auto sinceUnixEpoch = std::chrono::system_clock::now().time_since_epoch();
    return kUnixEpoch + std::chrono::duration_cast<Ticks>(sinceUnixEpoch).count();
  }
  void Wait(std::uint32_t milliseconds) override {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  }
  CONFIGRET LocateDeviceTreeRoot(DEVINST& node) override {
    node = kRootNode;
    return CR_SUCCESS;
  }
  CONFIGRET ReenumerateDeviceNode(DEVINST node) override { return node == kRootNode ? CR_SUCCESS : CR_NO_SUCH_DEVNODE; }
  std::shared_ptr<platform::RegistryKey> LocalMachineKey() override {
    return simhost::Registry::OpenRoot({m_registry, &m_registry->keys});
  }

private:
  struct EmptyRegistry {
    EmptyRegistry() { keys.Start(); }
    simhost::StateLog state{std::string()};
    simhost::Registry keys{state};
  };
  std::shared_ptr<EmptyRegistry> m_registry = std::make_shared<EmptyRegistry>();
};

inline std::unique_ptr<platform::Machine> MakeTestMachine() {
  return std::make_unique<TestMachine>();
}

} // namespace contract
