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
  CimValue wrongAnswer; ///< what SetLevel gives instead of the level before

  Outcome EnumerateInstances(const ClassRef& definition, std::vector<CimObject>& instances) override {
    instances.emplace_back(definition).Set(L"Name", L"A\\1").Set(L"Level", levels[0]);
    instances.emplace_back(definition).Set(L"Name", L"B").Set(L"Level", levels[1]);
    return {};
  }

  Outcome ExecuteMethod(const MethodCall& call, CimObject* output) override {
    if (output != nullptr) {
      std::uint64_t& level = LevelOf(call.instance);
      output->Set(L"Before", wrongAnswer.IsNull() ? level : wrongAnswer);
      level = call.Input(L"Level").Number(level);
    }
    return {};
  }

  Outcome PutInstance(const CimObject& instance) override {
    LevelOf(instance) = instance.Value(L"Level").Number();
    return {};
  }

private:
  std::uint64_t& LevelOf(const CimObject& lamp) { return levels[lamp.Value(L"Name").TextOrEmpty() == L"B" ? 1 : 0]; }
};

struct LampHost {
  std::shared_ptr<Host> host = MakeBareHost(L"box");
  std::shared_ptr<LampProvider> lamps = std::make_shared<LampProvider>();

  LampHost() {
    CimClass colour;
    CimClass lamp;
    CimClass spare;
    colour.name = L"Colour";
    colour.properties = {Property(L"Red", CIM_UINT8), Property(L"Mood", CIM_STRING, L"calm")};
    lamp.name = L"Lamp";
    lamp.properties = {Key(L"Name"), Property(L"Level", CIM_UINT32), Embedded(L"Colour", L"Colour"),
                       Property(L"Note", CIM_STRING)};
    lamp.methods = {{L"SetLevel", {Property(L"Level", CIM_UINT32)}, {Property(L"Before", CIM_UINT32)}},
                    {L"Blink", {}, {}}};
    spare.name = L"SpareLamp";
    spare.superclass = L"Lamp";
    host->repository.AddClass(colour);
    host->repository.AddClass(lamp, lamps);
    host->repository.AddClass(spare, lamps);
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

  /// A new instance of a class.
  platform::ComPtr<IWbemClassObject> Spawn(const wchar_t* name) const {
    platform::ComPtr<IWbemClassObject> instance;
    EXPECT_EQ(Object(name)->SpawnInstance(0, instance.put()), WBEM_S_NO_ERROR);
    return instance;
  }
};

/// A value's text or number; "null" or "type 8200" and the like for others.
inline std::wstring Shown(const VARIANT& variant) {
  switch (variant.vt) {
  case VT_NULL:
    return L"null";
  case VT_BSTR:
    return {variant.bstrVal, SysStringLen(variant.bstrVal)};
  case VT_I4:
    return std::to_wstring(variant.lVal);
  case VT_I2:
  case VT_BOOL:
    return std::to_wstring(variant.iVal);
  case VT_UI1:
    return std::to_wstring(variant.bVal);
  default:
    return L"type " + std::to_wstring(variant.vt);
  }
}

/// The same of a property; "no object" and "not found" where there is none.
inline std::wstring Shown(const platform::ComPtr<IWbemClassObject>& object, const wchar_t* property) {
  platform::Variant value;
  if (!object) {
    return L"no object";
  }
  return SUCCEEDED(object->Get(property, 0, value.put(), nullptr, nullptr)) ? Shown(value.get()) : L"not found";
}

} // namespace simhost
