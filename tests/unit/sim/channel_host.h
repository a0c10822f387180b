#pragma once

#include "app/channel/channel.h"
#include "app/cli/console/run_state.h"
#include "app/cli/console/trace.h"
#include "platform/allocation.h"
#include "platform/posix/machine.h"
#include "simhost/host.h"
#include "simhost/machine.h"
#include "simhost/statistics.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace korvex {

/// A class's one instance and its methods, as a test describes them.
class ScriptedProvider : public simhost::Provider {
public:
  using Fill = std::function<void(simhost::CimObject& instance)>;
  using Method = std::function<HRESULT(const simhost::MethodCall& call, simhost::CimObject* output)>;

  explicit ScriptedProvider(Fill fill, Method method = {}) : m_fill(std::move(fill)), m_method(std::move(method)) {}

  simhost::Outcome EnumerateInstances(const simhost::ClassRef& definition,
                                      std::vector<simhost::CimObject>& instances) override {
    simhost::CimObject instance(definition);
    instance.Set(L"InstanceName", L"ROOT\\DSM\\0000_0");
    m_fill(instance);
    instances.push_back(std::move(instance));
    return {};
  }
  simhost::Outcome ExecuteMethod(const simhost::MethodCall& call, simhost::CimObject* output) override {
    return {m_method ? m_method(call, output) : WBEM_S_NO_ERROR};
  }

private:
  Fill m_fill;
  Method m_method;
};

/// A machine with a DSM named TESTDSM that each test describes, taken away again at its end: whatever the channel left
/// behind then counts as a leak.
class ChannelHost : public testing::Test {
protected:
  /// Puts a new machine in place. `faults` is the description's list of faults.
  void Begin(const std::string& faults = "[]") {
    End();
    m_host = simhost::ReadHost(R"({"clock": {"kind": "virtual"}, "faults": )" + faults + "}", "");
    platform::ReplaceMachine(simhost::MakeSimulatedMachine(m_host));
    ResetRunState();
    gCommandLineDsm = {true, "testdsm"};
  }

  /// Takes the machine and the channel away.
  void End() {
    platform::DeleteObject(std::exchange(gDsmChannel, nullptr));
    platform::FreeStore(std::exchange(gDsmVersion, nullptr));
    CoUninitialize();
    m_host.reset();
    platform::ReplaceMachine(nullptr);
    for (const auto kind : {simhost::InterfaceKind::kLocator, simhost::InterfaceKind::kServices,
                            simhost::InterfaceKind::kClassObject, simhost::InterfaceKind::kEnumerator}) {
      EXPECT_EQ(simhost::LiveCount(kind), 0U) << "interfaces of kind " << static_cast<int>(kind);
    }
    const platform::LiveObjects live = platform::CountLiveObjects();
    EXPECT_EQ(live.bstrs, 0U);
    EXPECT_EQ(live.safeArrays, 0U);
  }

  void TearDown() override {
    End();
    ResetRunState();
  }

  simhost::Repository& Classes() { return m_host->repository; }
  simhost::Clock& HostClock() { return *m_host->clock; }

  void AddClass(simhost::CimClass definition, ScriptedProvider::Fill fill, ScriptedProvider::Method method = {}) {
    definition.properties.insert(definition.properties.begin(), simhost::Key(L"InstanceName"));
    Classes().AddClass(std::move(definition), std::make_shared<ScriptedProvider>(std::move(fill), std::move(method)));
  }

  /// The version class with a MofFileVersion of this type and value.
  void AddVersion(CIMTYPE type, const simhost::CimValue& value) {
    simhost::CimClass version;
    version.name = L"VRXDSM_MOF";
    version.properties = {simhost::Property(L"MofFileVersion", type)};
    AddClass(std::move(version), [value](simhost::CimObject& instance) { instance.Set(L"MofFileVersion", value); });
  }
  void AddVersion(const wchar_t* text) { AddVersion(CIM_STRING, text); }

  /// The methods class of generation 2 with these methods.
  void AddMethods(std::vector<simhost::MethodDefinition> methods, ScriptedProvider::Method method) {
    simhost::CimClass definition;
    definition.name = L"TESTDSM_WMI_METHODS_V2";
    definition.properties = {simhost::Property(L"DsmContext", CIM_UINT64)};
    definition.methods = std::move(methods);
    AddClass(
        std::move(definition),
        [](simhost::CimObject& instance) { instance.Set(L"DsmContext", std::uint64_t{0x123456789ABCDEF0}); },
        std::move(method));
  }

private:
  std::shared_ptr<simhost::Host> m_host;
};

} // namespace korvex
