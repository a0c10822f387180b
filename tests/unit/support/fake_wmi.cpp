#include "tests/unit/support/fake_wmi.h"

#include "tests/unit/support/fake_locator.h"

#include <algorithm>
#include <string>
#include <utility>

namespace korvex {
namespace {

/// A result as an unsigned number for the log.
std::wstring Decimal(DWORD number) {
  return std::to_wstring(static_cast<std::uint32_t>(number));
}

/// Gives a reference to `object`, or none.
template <class Interface>
HRESULT Give(Interface* object, Interface** out) {
  if (object != nullptr) {
    object->AddRef();
  }
  if (out != nullptr) {
    *out = object;
  }
  return S_OK;
}

/// Explicit credentials as "user@domain:password"; lengths decide, not terminators.
std::wstring IdentityText(const void* identity) {
  if (identity == nullptr) {
    return L"-";
  }
  const auto* block = static_cast<const SEC_WINNT_AUTH_IDENTITY_W*>(identity);
  const auto part = [](const auto* text, ULONG length) {
    const auto* wide = static_cast<const wchar_t*>(static_cast<const void*>(text));
    return wide == nullptr ? std::wstring(L"(none)") : std::wstring(wide, static_cast<std::size_t>(length));
  };
  return part(block->User, block->UserLength) + L"@" + part(block->Domain, block->DomainLength) + L":" +
         part(block->Password, block->PasswordLength) + L" flags " + Decimal(block->Flags);
}

/// The security of every proxy of the service.
class FakeSecurity final : public FakeObject<IClientSecurity> {
public:
  explicit FakeSecurity(FakeWmi& wmi) : FakeObject(wmi, IID_IClientSecurity) {}

  HRESULT STDMETHODCALLTYPE QueryBlanket(IUnknown*, DWORD* authnService, DWORD* authzService, OLECHAR**,
                                         DWORD* authnLevel, DWORD* impLevel, void**, DWORD* capabilities) override {
    if (const auto result = m_wmi.Take("QueryBlanket")) {
      return *result;
    }
    *authnService = RPC_C_AUTHN_WINNT;
    *authzService = RPC_C_AUTHZ_NONE;
    *authnLevel = 6;
    *impLevel = 4;
    *capabilities = EOAC_NONE;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown*, DWORD authnService, DWORD authzService, OLECHAR*, DWORD authnLevel,
                                       DWORD impLevel, void* identity, DWORD capabilities) override {
    if (const auto result = m_wmi.Take("SetBlanket")) {
      return *result;
    }
    m_wmi.log.push_back(L"SetBlanket " + Decimal(authnService) + L" " + Decimal(authzService) + L" " +
                        Decimal(authnLevel) + L" " + Decimal(impLevel) + L" " + Decimal(capabilities) + L" " +
                        IdentityText(identity));
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE CopyProxy(IUnknown*, IUnknown**) override { return E_NOTIMPL; }
};

class FakeEnumerator final : public FakeObject<EnumeratorStub> {
public:
  FakeEnumerator(FakeWmi& wmi, std::vector<FakeClassObject*> objects, std::size_t next = 0)
      : FakeObject(wmi, IID_IEnumWbemClassObject), m_objects(std::move(objects)), m_next(next) {}

  HRESULT STDMETHODCALLTYPE Reset() override {
    if (const auto result = m_wmi.Take("EnumReset")) {
      return *result;
    }
    m_next = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Next(LONG, ULONG, IWbemClassObject** object, ULONG* returned) override {
    *object = nullptr;
    *returned = 0;
    if (const auto result = m_wmi.Take("EnumNext")) {
      return *result;
    }
    if (m_next == m_objects.size()) {
      return platform::WbemResult(WBEM_S_FALSE);
    }
    *returned = 1;
    return Give<IWbemClassObject>(m_objects[m_next++], object);
  }
  HRESULT STDMETHODCALLTYPE Clone(IEnumWbemClassObject** copy) override {
    *copy = nullptr;
    if (const auto result = m_wmi.Take("EnumClone")) {
      return *result;
    }
    *copy = new FakeEnumerator(m_wmi, m_objects, m_next);
    return S_OK;
  }

private:
  std::vector<FakeClassObject*> m_objects;
  std::size_t m_next;
};

class FakeServices final : public FakeObject<ServicesStub> {
public:
  explicit FakeServices(FakeWmi& wmi) : FakeObject(wmi, IID_IWbemServices) {}

  HRESULT STDMETHODCALLTYPE GetObject(const BSTR path, LONG, IWbemContext*, IWbemClassObject** object,
                                      IWbemCallResult**) override {
    if (const auto result = m_wmi.Take("GetObject")) {
      return *result;
    }
    const auto found = m_wmi.classes.find(path);
    return found == m_wmi.classes.end() ? platform::WbemResult(WBEM_E_NOT_FOUND)
                                        : Give<IWbemClassObject>(found->second.definition, object);
  }
  HRESULT STDMETHODCALLTYPE CreateInstanceEnum(const BSTR className, LONG flags, IWbemContext*,
                                               IEnumWbemClassObject** enumerator) override {
    if (const auto result = m_wmi.Take("CreateInstanceEnum")) {
      return *result;
    }
    m_wmi.log.push_back(std::wstring(L"CreateInstanceEnum ") + className + L" " + std::to_wstring(flags));
    *enumerator = new FakeEnumerator(m_wmi, m_wmi.classes.at(className).instances);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject*, LONG, IWbemContext*, IWbemCallResult**) override {
    if (const auto result = m_wmi.Take("PutInstance")) {
      return *result;
    }
    m_wmi.log.emplace_back(L"PutInstance");
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR query, LONG flags, IWbemContext*,
                                      IEnumWbemClassObject** enumerator) override {
    if (const auto result = m_wmi.Take("ExecQuery")) {
      return *result;
    }
    m_wmi.log.push_back(std::wstring(language) + L" " + query + L" " + std::to_wstring(flags));
    *enumerator = new FakeEnumerator(m_wmi, m_wmi.queryResults);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR path, const BSTR method, LONG, IWbemContext*,
                                       IWbemClassObject* inParameters, IWbemClassObject** outParameters,
                                       IWbemCallResult**) override {
    if (const auto result = m_wmi.Take("ExecMethod")) {
      return *result;
    }
    m_wmi.log.push_back(std::wstring(L"ExecMethod ") + (path == nullptr ? L"(none)" : path) + L" " + method +
                        (inParameters == nullptr ? L" without inputs" : L" with inputs"));
    return Give<IWbemClassObject>(m_wmi.methodOutput, outParameters);
  }
};

class FakeLocator final : public FakeObject<IWbemLocator> {
public:
  explicit FakeLocator(FakeWmi& wmi) : FakeObject(wmi, IID_IWbemLocator) {}

  HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR networkResource, const BSTR user, const BSTR password, const BSTR,
                                          LONG, const BSTR authority, IWbemContext*,
                                          IWbemServices** services) override {
    if (const auto result = m_wmi.Take("ConnectServer")) {
      return *result;
    }
    const bool isPlain = user == nullptr && password == nullptr && authority == nullptr;
    m_wmi.log.push_back(std::wstring(L"ConnectServer ") + networkResource + (isPlain ? L"" : L" as somebody"));
    *services = new FakeServices(m_wmi);
    return S_OK;
  }
};

HRESULT CreateFakeLocator(REFIID riid, void** object, void* context) {
  auto& wmi = *static_cast<FakeWmi*>(context);
  *object = nullptr;
  if (const auto result = wmi.Take("CreateLocator")) {
    return *result;
  }
  const platform::ComPtr<FakeLocator> locator(new FakeLocator(wmi));
  return locator->QueryInterface(riid, object);
}

} // namespace

template <class Interface>
HRESULT STDMETHODCALLTYPE FakeObject<Interface>::QueryInterface(REFIID riid, void** object) {
  *object = nullptr;
  if (const auto result = m_wmi.Take("QueryInterface")) {
    return *result;
  }
  if (IsEqualIID(riid, IID_IClientSecurity)) {
    *object = new FakeSecurity(m_wmi);
    return S_OK;
  }
  if (!IsEqualIID(riid, IID_IUnknown) && !IsEqualIID(riid, m_id)) {
    return E_NOINTERFACE;
  }
  AddRef();
  *object = static_cast<Interface*>(this);
  return S_OK;
}

FakeClassObject::FakeClassObject(FakeWmi& wmi, std::vector<Property> properties, std::vector<Method> methods)
    : FakeObject(wmi, IID_IWbemClassObject), m_properties(std::move(properties)), m_methods(std::move(methods)) {}

FakeClassObject::Property* FakeClassObject::Find(const wchar_t* name) {
  const auto found = std::find_if(m_properties.begin(), m_properties.end(),
                                  [name](const Property& property) { return property.name == name; });
  return found == m_properties.end() ? nullptr : &*found;
}

HRESULT FakeClassObject::Get(LPCWSTR name, LONG, VARIANT* value, CIMTYPE* type, LONG*) {
  if (const auto result = m_wmi.Take("Get")) {
    return *result;
  }
  const Property* property = Find(name);
  if (property == nullptr) {
    return platform::WbemResult(WBEM_E_NOT_FOUND);
  }
  if (type != nullptr) {
    *type = property->type;
  }
  return VariantCopy(value, &property->value->get());
}

HRESULT FakeClassObject::Put(LPCWSTR name, LONG, VARIANT* value, CIMTYPE type) {
  if (const auto result = m_wmi.Take("Put")) {
    return *result;
  }
  Property* property = Find(name);
  if (property == nullptr) {
    return platform::WbemResult(WBEM_E_NOT_FOUND);
  }
  m_wmi.log.push_back(std::wstring(L"Put ") + name + L" vt " + std::to_wstring(value->vt) + L" type " +
                      std::to_wstring(type));
  property->value = EmptyValue();
  return VariantCopy(&property->value->get(), value);
}

HRESULT FakeClassObject::BeginEnumeration(LONG) {
  m_nextProperty = 0;
  return m_wmi.Take("BeginEnumeration").value_or(S_OK);
}

HRESULT FakeClassObject::Next(LONG, BSTR* name, VARIANT*, CIMTYPE*, LONG*) {
  if (const auto result = m_wmi.Take("Next")) {
    return *result;
  }
  if (m_nextProperty == m_properties.size()) {
    return platform::WbemResult(WBEM_S_NO_MORE_DATA);
  }
  *name = SysAllocString(m_properties[m_nextProperty++].name.c_str());
  return S_OK;
}

HRESULT FakeClassObject::SpawnInstance(LONG, IWbemClassObject** newInstance) {
  if (const auto result = m_wmi.Take("SpawnInstance")) {
    return *result;
  }
  *newInstance = new FakeClassObject(m_wmi, m_properties, {});
  return S_OK;
}

HRESULT FakeClassObject::GetMethod(LPCWSTR name, LONG, IWbemClassObject** in, IWbemClassObject** out) {
  if (const auto result = m_wmi.Take("GetMethod")) {
    return *result;
  }
  for (const Method& method : m_methods) {
    if (method.name == name) {
      Give<IWbemClassObject>(method.in, in);
      return Give<IWbemClassObject>(method.out, out);
    }
  }
  return platform::WbemResult(WBEM_E_NOT_FOUND);
}

HRESULT FakeClassObject::BeginMethodEnumeration(LONG) {
  m_nextMethod = 0;
  return m_wmi.Take("BeginMethodEnumeration").value_or(S_OK);
}

HRESULT FakeClassObject::NextMethod(LONG, BSTR* name, IWbemClassObject** in, IWbemClassObject** out) {
  if (const auto result = m_wmi.Take("NextMethod")) {
    return *result;
  }
  if (m_nextMethod == m_methods.size()) {
    return platform::WbemResult(WBEM_S_NO_MORE_DATA);
  }
  const Method& method = m_methods[m_nextMethod++];
  *name = SysAllocString(method.name.c_str());
  Give<IWbemClassObject>(method.in, in);
  return Give<IWbemClassObject>(method.out, out);
}

FakeWmi::FakeWmi() {
  SetLocatorMaker(&CreateFakeLocator, this);
}

FakeWmi::~FakeWmi() {
  SetLocatorMaker(nullptr, nullptr);
}

void FakeWmi::End(const std::string& call, HRESULT result, unsigned occurrence) {
  m_endings.push_back({call, result, occurrence});
}

std::optional<HRESULT> FakeWmi::Take(const std::string& call) {
  for (auto ending = m_endings.begin(); ending != m_endings.end(); ++ending) {
    if (ending->call == call && --ending->occurrence == 0) {
      const HRESULT result = ending->result;
      m_endings.erase(ending);
      return result;
    }
  }
  return std::nullopt;
}

FakeClassObject* FakeWmi::NewObject(std::vector<FakeClassObject::Property> properties,
                                    std::vector<FakeClassObject::Method> methods) {
  m_objects.emplace_back(new FakeClassObject(*this, std::move(properties), std::move(methods)));
  return m_objects.back().get();
}

} // namespace korvex
