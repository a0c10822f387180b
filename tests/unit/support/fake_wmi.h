#pragma once

#include "platform/com_owners.h"
#include "platform/wbem.h"
#include "tests/unit/support/variant_values.h"
#include "tests/unit/support/wmi_stubs.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

// A WMI service of a few objects, whose calls end as a test says. It stands behind the WMI locator while it lives.

namespace korvex {

class FakeWmi;

/// The objects of all services that are alive, and the service that made them.
inline int gFakeObjectsAlive = 0;

/// A COM object of the service, counting its references.
template <class Interface>
class FakeObject : public Interface {
public:
  FakeObject(FakeWmi& wmi, REFIID id) : m_wmi(wmi), m_id(id) { ++gFakeObjectsAlive; }
  FakeObject(const FakeObject&) = delete;
  FakeObject& operator=(const FakeObject&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --m_references;
    if (left == 0) {
      delete this;
    }
    return left;
  }

protected:
  virtual ~FakeObject() { --gFakeObjectsAlive; }

  FakeWmi& m_wmi;

private:
  IID m_id;
  ULONG m_references = 1;
};

/// A class definition or an instance.
class FakeClassObject final : public FakeObject<ClassObjectStub> {
public:
  struct Property {
    std::wstring name;
    CIMTYPE type;
    Value value;
  };
  /// Signatures are none where the method has none.
  struct Method {
    std::wstring name;
    FakeClassObject* in;
    FakeClassObject* out;
  };

  FakeClassObject(FakeWmi& wmi, std::vector<Property> properties, std::vector<Method> methods);

  HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type, LONG* flavor) override;
  HRESULT STDMETHODCALLTYPE Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) override;
  HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG flags) override;
  HRESULT STDMETHODCALLTYPE Next(LONG flags, BSTR* name, VARIANT* value, CIMTYPE* type, LONG* flavor) override;
  HRESULT STDMETHODCALLTYPE SpawnInstance(LONG flags, IWbemClassObject** newInstance) override;
  HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** in, IWbemClassObject** out) override;
  HRESULT STDMETHODCALLTYPE BeginMethodEnumeration(LONG flags) override;
  HRESULT STDMETHODCALLTYPE NextMethod(LONG flags, BSTR* name, IWbemClassObject** in, IWbemClassObject** out) override;

private:
  Property* Find(const wchar_t* name);

  std::vector<Property> m_properties;
  std::vector<Method> m_methods;
  std::size_t m_nextProperty = 0;
  std::size_t m_nextMethod = 0;
};

/// The service: its classes, what its calls give, and what they were given.
class FakeWmi {
public:
  FakeWmi();
  FakeWmi(const FakeWmi&) = delete;
  FakeWmi& operator=(const FakeWmi&) = delete;
  ~FakeWmi();

  /// The `occurrence`-th `call` from now on, counted from 1, gives `result` and leaves its outputs none. Calls bear the
  /// names of the interfaces' methods; an enumerator's Next is "EnumNext", its Clone "EnumClone".
  void End(const std::string& call, HRESULT result, unsigned occurrence = 1);
  /// Asked by each call: what it gives instead of being carried out, if anything.
  std::optional<HRESULT> Take(const std::string& call);

  /// An object that lives as long as the service.
  FakeClassObject* NewObject(std::vector<FakeClassObject::Property> properties,
                             std::vector<FakeClassObject::Method> methods = {});

  struct Class {
    FakeClassObject* definition;
    std::vector<FakeClassObject*> instances;
  };
  std::map<std::wstring, Class> classes;
  /// What a query gives.
  std::vector<FakeClassObject*> queryResults;
  /// What a method gives; none allowed.
  FakeClassObject* methodOutput = nullptr;
  /// What was written, called and secured, in order.
  std::vector<std::wstring> log;

private:
  struct Ending {
    std::string call;
    HRESULT result;
    unsigned occurrence;
  };
  std::vector<Ending> m_endings;
  std::vector<platform::ComPtr<FakeClassObject>> m_objects;
};

} // namespace korvex
