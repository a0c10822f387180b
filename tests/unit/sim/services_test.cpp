#include "tests/unit/sim/lamp_host.h"

#include <cerrno>

namespace simhost {
namespace {

TEST(ServicesTest, ConnectsToItsNamespaceOnly) {
  const LampHost lamps;
  const platform::ComPtr<IWbemLocator> locator(new Locator(lamps.host));
  const std::pair<const wchar_t*, HRESULT> rows[] = {
      {L"root\\WMI", WBEM_S_NO_ERROR}, {L"ROOT\\wmi", WBEM_S_NO_ERROR},     {L"\\\\.\\root\\wmi", WBEM_S_NO_ERROR},
      {L"root/wmi", WBEM_S_NO_ERROR},  {L"root", WBEM_E_INVALID_NAMESPACE}, {L"root\\cimv2", WBEM_E_INVALID_NAMESPACE},
      {L"", WBEM_E_INVALID_NAMESPACE}, {nullptr, WBEM_E_INVALID_PARAMETER},
  };
  for (const auto& [name, result] : rows) {
    platform::ComPtr<IWbemServices> services;
    const platform::Bstr text(name);
    EXPECT_EQ(locator->ConnectServer(text.get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr, services.put()),
              result)
        << testing::PrintToString(std::wstring(name == nullptr ? L"none" : name));
    EXPECT_EQ(static_cast<bool>(services), SUCCEEDED(result));
  }
}

TEST(ServicesTest, FindsClassesAndInstances) {
  const LampClient client;
  const std::pair<const wchar_t*, HRESULT> rows[] = {
      {L"LAMP", WBEM_S_NO_ERROR},
      {L"Lamp.Name=\"a\\\\1\"", WBEM_S_NO_ERROR},
      {L"Lamp.Name=\"C\"", WBEM_E_NOT_FOUND},
      {L"NoSuch", WBEM_E_NOT_FOUND},
      {L"NoSuch.Name=\"C\"", WBEM_E_NOT_FOUND},
      {L"Colour.Red=1", WBEM_E_NOT_FOUND},
      {L"Lamp.Name", WBEM_E_INVALID_OBJECT_PATH},
      {L"", WBEM_E_INVALID_OBJECT_PATH},
      {nullptr, WBEM_E_INVALID_PARAMETER},
  };
  for (const auto& [path, result] : rows) {
    platform::ComPtr<IWbemClassObject> object;
    const platform::Bstr text(path);
    EXPECT_EQ(client.services->GetObject(text.get(), 0, nullptr, object.put(), nullptr), result)
        << testing::PrintToString(std::wstring(path == nullptr ? L"none" : path));
  }
  const platform::Bstr name(L"Lamp");
  EXPECT_EQ(client.services->GetObject(name.get(), 0, nullptr, nullptr, nullptr), WBEM_E_INVALID_PARAMETER);
}

/// How many objects are left, taken two at a time.
std::size_t CountLeft(IEnumWbemClassObject* enumerator) {
  std::size_t count = 0;
  HRESULT result = WBEM_S_NO_ERROR;
  while (result == WBEM_S_NO_ERROR) {
    IWbemClassObject* objects[2] = {};
    ULONG returned = 0;
    result = enumerator->Next(WBEM_INFINITE, 2, objects, &returned);
    for (ULONG i = 0; i < returned; ++i) {
      objects[i]->Release();
    }
    count += returned;
  }
  EXPECT_EQ(result, WBEM_S_FALSE);
  return count;
}

TEST(ServicesTest, EnumeratesInstances) {
  const LampClient client;
  const auto lamps = client.Instances(L"lamp");
  platform::ComPtr<IWbemClassObject> first;
  ULONG returned = 0;
  EXPECT_EQ(lamps->Next(WBEM_INFINITE, 1, first.put(), &returned), WBEM_S_NO_ERROR);
  EXPECT_EQ(Shown(first.get(), L"Name"), L"A\\1");
  platform::ComPtr<IEnumWbemClassObject> clone;
  ASSERT_EQ(lamps->Clone(clone.put()), WBEM_S_NO_ERROR);
  EXPECT_EQ(CountLeft(lamps.get()), 1U);
  EXPECT_EQ(CountLeft(clone.get()), 1U) << "the clone kept the position";
  EXPECT_EQ(lamps->Reset(), WBEM_S_NO_ERROR);
  EXPECT_EQ(CountLeft(lamps.get()), 2U);
  EXPECT_EQ(clone->Reset(), WBEM_S_NO_ERROR);
  EXPECT_EQ(clone->Skip(WBEM_INFINITE, 1), WBEM_S_NO_ERROR);
  EXPECT_EQ(clone->Skip(WBEM_INFINITE, 2), WBEM_S_FALSE);
  EXPECT_EQ(clone->Next(WBEM_INFINITE, 0, first.put(), &returned), WBEM_E_INVALID_PARAMETER);
  EXPECT_EQ(clone->Next(WBEM_INFINITE, 1, nullptr, &returned), WBEM_E_INVALID_PARAMETER);

  const auto colours = client.Instances(L"Colour");
  ASSERT_TRUE(colours) << "a class of embedded objects enumerates as empty";
  EXPECT_EQ(colours->Clone(clone.put()), WBEM_S_NO_ERROR);
  EXPECT_EQ(CountLeft(clone.get()), 0U);

  const auto forward = client.Instances(L"Lamp", WBEM_FLAG_FORWARD_ONLY);
  EXPECT_EQ(forward->Reset(), WBEM_E_INVALID_OPERATION);
  EXPECT_EQ(forward->Clone(clone.put()), WBEM_E_INVALID_OPERATION);
  EXPECT_FALSE(clone);
  EXPECT_EQ(CountLeft(forward.get()), 2U);

  platform::ComPtr<IEnumWbemClassObject> none;
  EXPECT_EQ(client.services->CreateInstanceEnum(platform::Bstr(L"NoSuch").get(), 0, nullptr, none.put()),
            WBEM_E_INVALID_CLASS);
  EXPECT_EQ(client.services->CreateInstanceEnum(platform::Bstr(L"Lamp").get(), 0x1000, nullptr, none.put()),
            WBEM_E_INVALID_PARAMETER);
}

TEST(ServicesTest, DeepEnumerationsIncludeDerivedClasses) {
  LampClient client;
  client.host->repository.RemoveClass(L"SpareLamp");
  CimClass spare;
  spare.name = L"SpareLamp";
  spare.superclass = L"Lamp";
  client.host->repository.AddClass(spare, client.lamps);
  EXPECT_EQ(CountLeft(client.Instances(L"Lamp").get()), 2U);
  EXPECT_EQ(CountLeft(client.Instances(L"Lamp", 0).get()), 4U);
}

TEST(ServicesTest, ListsTopLevelClasses) {
  const LampClient client;
  const platform::Bstr query(L"Select * From Meta_Class Where __SUPERCLASS = \"\"");
  const platform::Bstr language(L"wql");
  platform::ComPtr<IEnumWbemClassObject> classes;
  ASSERT_EQ(client.services->ExecQuery(language.get(), query.get(), WBEM_FLAG_FORWARD_ONLY, nullptr, classes.put()),
            WBEM_S_NO_ERROR);
  for (const wchar_t* name : {L"__SystemClass", L"__PARAMETERS", L"Colour", L"Bulb", L"Lamp"}) {
    platform::ComPtr<IWbemClassObject> definition;
    ULONG returned = 0;
    ASSERT_EQ(classes->Next(WBEM_INFINITE, 1, definition.put(), &returned), WBEM_S_NO_ERROR);
    EXPECT_EQ(Shown(definition.get(), L"__CLASS"), name);
  }
  EXPECT_EQ(CountLeft(classes.get()), 0U);
  EXPECT_EQ(client.services->ExecQuery(query.get(), query.get(), 0, nullptr, classes.put()), WBEM_E_INVALID_QUERY_TYPE);
  EXPECT_EQ(client.services->ExecQuery(language.get(), language.get(), 0, nullptr, classes.put()),
            WBEM_E_INVALID_QUERY);
}

TEST(ServicesTest, ExecutesMethodsOfExistingInstancesOnly) {
  const LampClient client;
  const auto input = client.Input(L"SetLevel");
  platform::Variant level;
  level.get().vt = VT_I4;
  level.get().lVal = 55;
  ASSERT_EQ(input->Put(L"Level", 0, &level.get(), 0), WBEM_S_NO_ERROR);
  platform::ComPtr<IWbemClassObject> output;
  EXPECT_EQ(client.Exec(L"lamp.NAME=\"b\"", L"SETLEVEL", input.get(), output), WBEM_S_NO_ERROR);
  EXPECT_EQ(Shown(output.get(), L"Before"), L"20");
  EXPECT_EQ(client.lamps->levels[1], 55U);
  EXPECT_EQ(client.Exec(L"Lamp=\"B\"", L"SetLevel", nullptr, output), WBEM_S_NO_ERROR) << "no input object";
  EXPECT_EQ(client.Exec(L"Lamp=\"B\"", L"Blink", input.get(), output), WBEM_S_NO_ERROR) << "an input object too many";
  EXPECT_FALSE(output) << "a method without outputs gives no object";

  const auto lamp = client.Object(L"Lamp=\"B\"");
  const struct {
    const wchar_t* path;
    const wchar_t* method;
    IWbemClassObject* input;
    HRESULT result;
  } rows[] = {
      {L"Lamp=\"C\"", L"SetLevel", nullptr, WBEM_E_NOT_FOUND},
      {L"NoSuch=\"C\"", L"SetLevel", nullptr, WBEM_E_NOT_FOUND},
      {L"Lamp", L"SetLevel", nullptr, WBEM_E_INVALID_OBJECT_PATH},
      {L"", L"SetLevel", nullptr, WBEM_E_INVALID_OBJECT_PATH},
      {L"Lamp=\"B\"", L"NoSuch", nullptr, WBEM_E_INVALID_METHOD},
      {L"Lamp=\"B\"", L"SetLevel", lamp.get(), WBEM_E_INVALID_METHOD_PARAMETERS},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(client.Exec(row.path, row.method, row.input, output), row.result)
        << testing::PrintToString(std::wstring(row.path));
    EXPECT_FALSE(output);
  }
  EXPECT_EQ(client.services->ExecMethod(nullptr, nullptr, 0, nullptr, nullptr, nullptr, nullptr),
            WBEM_E_INVALID_PARAMETER);
}

TEST(ServicesTest, SavesInstancesThatExist) {
  const LampClient client;
  const auto lamp = client.Object(L"Lamp=\"B\"");
  platform::Variant level;
  level.get().vt = VT_I4;
  level.get().lVal = 99;
  ASSERT_EQ(lamp->Put(L"Level", 0, &level.get(), 0), WBEM_S_NO_ERROR);
  EXPECT_EQ(client.services->PutInstance(lamp.get(), 0, nullptr, nullptr), WBEM_S_NO_ERROR);
  EXPECT_EQ(client.lamps->levels[1], 99U);
  EXPECT_EQ(client.services->PutInstance(nullptr, 0, nullptr, nullptr), WBEM_E_INVALID_PARAMETER);
  EXPECT_EQ(client.services->PutInstance(client.Object(L"Lamp").get(), 0, nullptr, nullptr), WBEM_E_INVALID_OBJECT);
  platform::ComPtr<IWbemClassObject> fresh;
  ASSERT_EQ(client.Object(L"Lamp")->SpawnInstance(0, fresh.put()), WBEM_S_NO_ERROR);
  EXPECT_EQ(client.services->PutInstance(fresh.get(), 0, nullptr, nullptr), WBEM_E_INVALID_OBJECT) << "without a key";
  platform::Variant name;
  name.get().vt = VT_BSTR;
  name.get().bstrVal = SysAllocString(L"C");
  ASSERT_EQ(fresh->Put(L"Name", 0, &name.get(), 0), WBEM_S_NO_ERROR);
  EXPECT_EQ(client.services->PutInstance(fresh.get(), 0, nullptr, nullptr), WBEM_E_NOT_FOUND);
}

TEST(ServicesTest, EveryObjectHasOneIdentityAndClientSecurity) {
  const LampClient client;
  const platform::ComPtr<IWbemLocator> locator(new Locator(client.host));
  const auto lamp = client.Object(L"Lamp");
  const auto lamps = client.Instances(L"Lamp");
  const std::pair<IUnknown*, IID> rows[] = {{locator.get(), IID_IWbemLocator},
                                            {client.services.get(), IID_IWbemServices},
                                            {lamp.get(), IID_IWbemClassObject},
                                            {lamps.get(), IID_IEnumWbemClassObject}};
  for (const auto& [object, id] : rows) {
    platform::ComPtr<IClientSecurity> security;
    platform::ComPtr<IUnknown> identity;
    platform::ComPtr<IUnknown> own;
    platform::ComPtr<IUnknown> other;
    ASSERT_EQ(object->QueryInterface(IID_IClientSecurity, security.putVoid()), S_OK);
    ASSERT_EQ(object->QueryInterface(IID_IUnknown, identity.putVoid()), S_OK);
    ASSERT_EQ(security->QueryInterface(IID_IUnknown, other.putVoid()), S_OK);
    EXPECT_EQ(identity.get(), other.get());
    EXPECT_EQ(security->QueryInterface(id, own.putVoid()), S_OK);
    const IID unknown = {1, 2, 3, {}};
    EXPECT_EQ(object->QueryInterface(unknown, other.putVoid()), E_NOINTERFACE);
    EXPECT_FALSE(other);
    EXPECT_EQ(object->QueryInterface(IID_IUnknown, nullptr), E_POINTER);

    EXPECT_EQ(security->SetBlanket(object, RPC_C_AUTHN_DEFAULT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_NONE,
                                   RPC_C_IMP_LEVEL_IDENTIFY, nullptr, EOAC_NONE),
              S_OK);
    DWORD service = 0;
    DWORD level = 0;
    DWORD impersonation = 0;
    EXPECT_EQ(security->QueryBlanket(object, &service, nullptr, nullptr, &level, &impersonation, nullptr, nullptr),
              S_OK);
    EXPECT_EQ(service, RPC_C_AUTHN_WINNT);
    EXPECT_EQ(level, RPC_C_AUTHN_LEVEL_NONE);
    EXPECT_EQ(impersonation, RPC_C_IMP_LEVEL_IDENTIFY);
    EXPECT_EQ(security->QueryBlanket(nullptr, &service, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
              E_INVALIDARG);
  }
}

TEST(ServicesTest, CountsObjectsCallsAndLeavesErrnoAlone) {
  const std::uint64_t services = LiveCount(InterfaceKind::kServices);
  const std::uint64_t objects = LiveCount(InterfaceKind::kClassObject);
  const std::uint64_t calls = CallCount("GetObject");
  {
    const LampClient client;
    const auto lamp = client.Object(L"Lamp");
    EXPECT_EQ(lamp->AddRef(), 2U);
    EXPECT_EQ(lamp->Release(), 1U);
    EXPECT_EQ(LiveCount(InterfaceKind::kServices), services + 1);
    EXPECT_EQ(LiveCount(InterfaceKind::kClassObject), objects + 1);
    errno = 4711;
    client.Object(L"NoSuch");
    EXPECT_EQ(errno, 4711);
  }
  EXPECT_EQ(LiveCount(InterfaceKind::kServices), services);
  EXPECT_EQ(LiveCount(InterfaceKind::kClassObject), objects);
  EXPECT_EQ(CallCount("GetObject"), calls + 2);
  EXPECT_EQ(*AuditReport().Find("calls")->Find("GetObject"), Json(calls + 2));
}

} // namespace
} // namespace simhost
