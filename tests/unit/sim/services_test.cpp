#include "tests/unit/sim/lamp_host.h"
#include "tests/unit/support/variant_values.h"

#include <algorithm>
#include <cerrno>

// The namespace as its clients see it: finding, enumerating, executing, saving.

namespace simhost {
namespace {

using korvex::NumberValue;
using platform::Bstr;
using platform::ComPtr;

TEST(ServicesTest, FindsClassesAndInstancesInItsNamespaceOnly) {
  const LampClient client;
  const std::pair<const wchar_t*, HRESULT> rows[] = {
      {L"LAMP", WBEM_S_NO_ERROR},
      {L"Lamp.Name=\"a\\\\1\"", WBEM_S_NO_ERROR},
      {L"Lamp.Name=\"C\"", WBEM_E_NOT_FOUND},
      {L"NoSuch", WBEM_E_NOT_FOUND},
      {L"Lamp.Name", WBEM_E_INVALID_OBJECT_PATH},
      {L"", WBEM_E_INVALID_OBJECT_PATH},
      {nullptr, WBEM_E_INVALID_PARAMETER},
  };
  const std::uint64_t living = LiveCount(InterfaceKind::kClassObject);
  errno = 4711;
  for (const auto& [path, result] : rows) {
    ComPtr<IWbemClassObject> object;
    EXPECT_EQ(client.services->GetObject(Bstr(path).get(), 0, nullptr, object.put(), nullptr), result)
        << testing::PrintToString(std::wstring(path == nullptr ? L"none" : path));
    EXPECT_EQ(LiveCount(InterfaceKind::kClassObject), living + (SUCCEEDED(result) ? 1 : 0));
  }
  EXPECT_EQ(errno, 4711);
  const ComPtr<IWbemLocator> locator(new Locator(client.host));
  for (const wchar_t* name : {L"root\\cimv2", L"root", L""}) {
    ComPtr<IWbemServices> other;
    EXPECT_EQ(locator->ConnectServer(Bstr(name).get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr, other.put()),
              WBEM_E_INVALID_NAMESPACE);
  }
}

/// How many objects are left, of at most eight.
std::size_t CountLeft(IEnumWbemClassObject* enumerator) {
  IWbemClassObject* objects[8] = {};
  ULONG returned = 0;
  EXPECT_EQ(enumerator->Next(WBEM_INFINITE, 8, objects, &returned), WBEM_S_FALSE);
  std::for_each(objects, objects + returned, [](IWbemClassObject* object) { object->Release(); });
  return returned;
}

ComPtr<IEnumWbemClassObject> Instances(const LampClient& client, const wchar_t* name, LONG flags) {
  ComPtr<IEnumWbemClassObject> enumerator;
  EXPECT_EQ(client.services->CreateInstanceEnum(Bstr(name).get(), flags, nullptr, enumerator.put()), WBEM_S_NO_ERROR);
  return enumerator;
}

TEST(ServicesTest, EnumeratesInstances) {
  const LampClient client;
  const auto lamps = Instances(client, L"lamp", WBEM_FLAG_SHALLOW);
  ComPtr<IWbemClassObject> first;
  ULONG returned = 0;
  EXPECT_EQ(lamps->Next(WBEM_INFINITE, 1, first.put(), &returned), WBEM_S_NO_ERROR);
  EXPECT_EQ(Shown(first, L"Name"), L"A\\1");
  ComPtr<IEnumWbemClassObject> clone;
  ASSERT_EQ(lamps->Clone(clone.put()), WBEM_S_NO_ERROR);
  EXPECT_EQ(CountLeft(lamps.get()), 1U);
  EXPECT_EQ(CountLeft(clone.get()), 1U) << "the clone kept the position";
  EXPECT_EQ(lamps->Reset(), WBEM_S_NO_ERROR);
  EXPECT_EQ(CountLeft(lamps.get()), 2U);
  EXPECT_EQ(CountLeft(Instances(client, L"Lamp", 0).get()), 4U) << "with those of the derived class";
  const auto colours = Instances(client, L"Colour", WBEM_FLAG_SHALLOW);
  EXPECT_EQ(colours->Clone(clone.put()), WBEM_S_NO_ERROR) << "a class of embedded objects enumerates as empty";
  EXPECT_EQ(CountLeft(clone.get()), 0U);
  const auto forward = Instances(client, L"Lamp", WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_SHALLOW);
  EXPECT_EQ(forward->Reset(), WBEM_E_INVALID_OPERATION);
  EXPECT_EQ(forward->Clone(clone.put()), WBEM_E_INVALID_OPERATION);
  EXPECT_FALSE(clone);
  EXPECT_EQ(CountLeft(forward.get()), 2U);
  EXPECT_EQ(client.services->CreateInstanceEnum(Bstr(L"NoSuch").get(), 0, nullptr, clone.put()), WBEM_E_INVALID_CLASS);
}

TEST(ServicesTest, ExecutesMethodsOfExistingInstancesOnly) {
  const LampClient client;
  ComPtr<IWbemClassObject> signature;
  ComPtr<IWbemClassObject> input;
  ASSERT_EQ(client.Object(L"Lamp")->GetMethod(L"SetLevel", 0, signature.put(), nullptr), WBEM_S_NO_ERROR);
  ASSERT_EQ(signature->SpawnInstance(0, input.put()), WBEM_S_NO_ERROR);
  ASSERT_EQ(input->Put(L"Level", 0, &NumberValue(55)->get(), 0), WBEM_S_NO_ERROR);
  const auto lamp = client.Object(L"Lamp=\"B\"");
  const struct {
    const wchar_t* path;
    const wchar_t* method;
    IWbemClassObject* input;
    HRESULT result;
    const wchar_t* before;
  } rows[] = {
      {L"lamp.NAME=\"b\"", L"SETLEVEL", input.get(), WBEM_S_NO_ERROR, L"20"},
      {L"Lamp=\"B\"", L"SetLevel", nullptr, WBEM_S_NO_ERROR, L"55"},
      {L"Lamp=\"B\"", L"Blink", input.get(), WBEM_S_NO_ERROR, L"no object"},
      {L"Lamp=\"C\"", L"SetLevel", nullptr, WBEM_E_NOT_FOUND, L"no object"},
      {L"Lamp", L"SetLevel", nullptr, WBEM_E_INVALID_OBJECT_PATH, L"no object"},
      {L"Lamp=\"B\"", L"NoSuch", nullptr, WBEM_E_INVALID_METHOD, L"no object"},
      {L"Lamp=\"B\"", L"SetLevel", lamp.get(), WBEM_E_INVALID_METHOD_PARAMETERS, L"no object"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(row.path) + L" " + row.method));
    ComPtr<IWbemClassObject> output;
    EXPECT_EQ(client.services->ExecMethod(Bstr(row.path).get(), Bstr(row.method).get(), 0, nullptr, row.input,
                                          output.put(), nullptr),
              row.result);
    EXPECT_EQ(Shown(output, L"Before"), row.before);
  }
}

TEST(ServicesTest, SavesInstancesThatExist) {
  const LampClient client;
  const auto save = [&](const ComPtr<IWbemClassObject>& object) {
    return client.services->PutInstance(object.get(), 0, nullptr, nullptr);
  };
  const auto lamp = client.Object(L"Lamp=\"B\"");
  ASSERT_EQ(lamp->Put(L"Level", 0, &NumberValue(99)->get(), 0), WBEM_S_NO_ERROR);
  EXPECT_EQ(save(lamp), WBEM_S_NO_ERROR);
  EXPECT_EQ(client.lamps->levels[1], 99U);
  EXPECT_EQ(save(client.Object(L"Lamp")), WBEM_E_INVALID_OBJECT);
  const auto fresh = client.Spawn(L"Lamp");
  EXPECT_EQ(save(fresh), WBEM_E_INVALID_OBJECT) << "without a key";
  ASSERT_EQ(fresh->Put(L"Name", 0, &korvex::TextValue(L"C")->get(), 0), WBEM_S_NO_ERROR);
  EXPECT_EQ(save(fresh), WBEM_E_NOT_FOUND);
}

TEST(ServicesTest, EveryObjectHasOneIdentityAndClientSecurity) {
  const LampClient client;
  const ComPtr<IWbemLocator> locator(new Locator(client.host));
  const auto lamp = client.Object(L"Lamp");
  const auto lamps = Instances(client, L"Lamp", WBEM_FLAG_SHALLOW);
  const std::pair<IUnknown*, IID> rows[] = {{locator.get(), IID_IWbemLocator},
                                            {client.services.get(), IID_IWbemServices},
                                            {lamp.get(), IID_IWbemClassObject},
                                            {lamps.get(), IID_IEnumWbemClassObject}};
  for (const auto& [object, id] : rows) {
    ComPtr<IClientSecurity> security;
    ComPtr<IUnknown> identity;
    ComPtr<IUnknown> other;
    ASSERT_EQ(object->QueryInterface(IID_IClientSecurity, security.putVoid()), S_OK);
    EXPECT_EQ(object->QueryInterface(IID_IUnknown, identity.putVoid()), S_OK);
    EXPECT_EQ(security->QueryInterface(IID_IUnknown, other.putVoid()), S_OK);
    EXPECT_EQ(identity.get(), other.get());
    EXPECT_EQ(security->QueryInterface(id, other.putVoid()), S_OK);
    EXPECT_EQ(object->QueryInterface(IID{1, 2, 3, {}}, other.putVoid()), E_NOINTERFACE);
    EXPECT_FALSE(other);
  }
}

} // namespace
} // namespace simhost
