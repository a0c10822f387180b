#pragma once

#include "platform/com_owners.h"
#include "simhost/class_object.h"
#include "simhost/services.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// A small host for the tests: two lamps in one class, a spare class derived from it, and what a client holds of them.

namespace simhost {

/// The lamps "A\1" and "B", level 10 and 20; SetLevel changes the level of one and gives the level before.
class LampProvider : public Provider {
public:
  std::uint64_t levels[2] = {10, 20};
  Outcome answer; ///< what every method ends with
  bool throws = false;

  Outcome EnumerateInstances(const ClassRef& definition, std::vector<CimObject>& instances) override {
    const wchar_t* names[] = {L"A\\1", L"B"};
    for (std::size_t i = 0; i < std::size(levels); ++i) {
      CimObject colour(m_repository->RequireClass(L"Colour"));
      colour.Set(L"Red", 200 + i);
      std::vector<CimObject> bulbs(3, CimObject(m_repository->RequireClass(L"Bulb")));
      for (std::size_t bulb = 0; bulb < bulbs.size(); ++bulb) {
        bulbs[bulb].Set(L"Watts", 40 + bulb);
      }
      instances.emplace_back(definition)
          .Set(L"Name", names[i])
          .Set(L"Level", levels[i])
          .Set(L"Colour", CimValue::Embed(colour))
          .Set(L"Bulbs", CimValue::Embed(bulbs))
          .Set(L"Serial", CimValue::Bytes({1, 2, 3}));
    }
    return {};
  }

  Outcome ExecuteMethod(const MethodCall& call, CimObject* output) override {
    if (throws) {
      throw std::runtime_error("broken");
    }
    if (output != nullptr) {
      std::uint64_t& level = levels[call.instance.Value(L"Name").TextOrEmpty() == L"B" ? 1 : 0];
      output->Set(L"Before", level);
      level = call.Input(L"Level").Number(level);
    }
    return answer;
  }

  Outcome PutInstance(const CimObject& instance) override {
    levels[instance.Value(L"Name").TextOrEmpty() == L"B" ? 1 : 0] = instance.Value(L"Level").Number();
    return {};
  }

  explicit LampProvider(Repository& repository) : m_repository(&repository) {}

private:
  Repository* m_repository;
};

struct LampHost {
  std::shared_ptr<Host> host = MakeBareHost(L"box");
  std::shared_ptr<LampProvider> lamps = std::make_shared<LampProvider>(host->repository);

  LampHost() {
    AddClass(L"Colour", {Property(L"Red", CIM_UINT8), Property(L"Mood", CIM_STRING, L"calm")});
    AddClass(L"Bulb", {Property(L"Watts", CIM_UINT16)});
    CimClass lamp;
    lamp.name = L"Lamp";
    lamp.properties = {Key(L"Name"),
                       Property(L"Level", CIM_UINT32),
                       Embedded(L"Colour", L"Colour"),
                       EmbeddedArray(L"Bulbs", L"Bulb"),
                       Property(L"Serial", CIM_UINT8 | CIM_FLAG_ARRAY),
                       Property(L"Note", CIM_STRING)};
    lamp.methods = {{L"SetLevel",
                     {Property(L"Level", CIM_UINT32), Embedded(L"Colour", L"Colour")},
                     {Property(L"Before", CIM_UINT32)}},
                    {L"Blink", {}, {}}};
    host->repository.AddClass(lamp, lamps);
    CimClass spare;
    spare.name = L"SpareLamp";
    spare.superclass = L"Lamp";
    host->repository.AddClass(spare);
  }

  void AddClass(std::wstring name, std::vector<PropertyDefinition> properties) const {
    CimClass definition;
    definition.name = std::move(name);
    definition.properties = std::move(properties);
    host->repository.AddClass(definition);
  }

  void SetFaults(std::string_view rules) const {
    const Json parsed = ParseJson(rules);
    host->faults = FaultRules(Node(parsed, "/faults"));
  }

  void SetOverrides(std::string_view rules) const {
    const Json parsed = ParseJson(rules);
    host->overrides = OverrideRules(Node(parsed, "/overrides"), host->repository);
    host->repository.SetOverride(
        [this](CimObject& object, std::size_t index) { host->overrides.Apply(object, index); });
  }
};

/// A client's connection to the lamps.
struct LampClient : LampHost {
  platform::ComPtr<IWbemServices> services;

  LampClient() {
    const platform::ComPtr<IWbemLocator> locator(new Locator(host));
    const platform::Bstr name(L"root\\wmi");
    EXPECT_EQ(locator->ConnectServer(name.get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr, services.put()),
              WBEM_S_NO_ERROR);
  }

  /// A class definition or an instance; none when it is not found.
  platform::ComPtr<IWbemClassObject> Object(const wchar_t* path) const {
    platform::ComPtr<IWbemClassObject> object;
    services->GetObject(platform::Bstr(path).get(), 0, nullptr, object.put(), nullptr);
    return object;
  }

  platform::ComPtr<IEnumWbemClassObject> Instances(const wchar_t* name, LONG flags = WBEM_FLAG_SHALLOW) const {
    platform::ComPtr<IEnumWbemClassObject> enumerator;
    services->CreateInstanceEnum(platform::Bstr(name).get(), flags, nullptr, enumerator.put());
    return enumerator;
  }

  HRESULT Exec(const wchar_t* path, const wchar_t* method, IWbemClassObject* input,
               platform::ComPtr<IWbemClassObject>& output) const {
    return services->ExecMethod(platform::Bstr(path).get(), platform::Bstr(method).get(), 0, nullptr, input,
                                output.put(), nullptr);
  }

  /// The input object of a method of Lamp.
  platform::ComPtr<IWbemClassObject> Input(const wchar_t* method) const {
    platform::ComPtr<IWbemClassObject> signature;
    platform::ComPtr<IWbemClassObject> input;
    EXPECT_EQ(Object(L"Lamp")->GetMethod(method, 0, signature.put(), nullptr), WBEM_S_NO_ERROR);
    EXPECT_EQ(signature->SpawnInstance(0, input.put()), WBEM_S_NO_ERROR);
    return input;
  }
};

/// A property's text, number or "null" and the like, for comparing.
inline std::wstring Shown(const VARIANT& variant) {
  switch (variant.vt) {
  case VT_NULL:
    return L"null";
  case VT_BSTR:
    return std::wstring(variant.bstrVal, SysStringLen(variant.bstrVal));
  case VT_I4:
    return std::to_wstring(variant.lVal);
  case VT_I2:
    return std::to_wstring(variant.iVal);
  case VT_UI1:
    return std::to_wstring(variant.bVal);
  case VT_BOOL:
    return variant.boolVal == VARIANT_TRUE ? L"true" : L"false";
  default:
    return L"type " + std::to_wstring(variant.vt);
  }
}

inline std::wstring Shown(IWbemClassObject* object, const wchar_t* property) {
  platform::Variant value;
  const HRESULT result = object->Get(property, 0, value.put(), nullptr, nullptr);
  return SUCCEEDED(result) ? Shown(value.get()) : L"not found";
}

} // namespace simhost
