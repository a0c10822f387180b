#pragma once

#include "simhost/com_object.h"
#include "simhost/variant_values.h"

#include <optional>

// IWbemClassObject over an object of the repository.

namespace simhost {

/// The part of IWbemClassObject that the host does not carry: every method gives E_NOTIMPL.
class ClassObjectBase : public ComObject<IWbemClassObject> {
public:
  using ComObject::ComObject;

  HRESULT STDMETHODCALLTYPE GetQualifierSet(IWbemQualifierSet** /*set*/) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Delete(LPCWSTR /*name*/) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetNames(LPCWSTR /*qualifier*/, LONG /*flags*/, VARIANT* /*value*/,
                                     SAFEARRAY** /*names*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetPropertyQualifierSet(LPCWSTR /*property*/, IWbemQualifierSet** /*set*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetObjectText(LONG /*flags*/, BSTR* /*text*/) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SpawnDerivedClass(LONG /*flags*/, IWbemClassObject** /*newClass*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CompareTo(LONG /*flags*/, IWbemClassObject* /*other*/) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetPropertyOrigin(LPCWSTR /*name*/, BSTR* /*className*/) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE InheritsFrom(LPCWSTR /*ancestor*/) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE PutMethod(LPCWSTR /*name*/, LONG /*flags*/, IWbemClassObject* /*inSignature*/,
                                      IWbemClassObject* /*outSignature*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DeleteMethod(LPCWSTR /*name*/) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetMethodQualifierSet(LPCWSTR /*method*/, IWbemQualifierSet** /*set*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetMethodOrigin(LPCWSTR /*method*/, BSTR* /*className*/) override { return E_NOTIMPL; }
};

/// A class definition or an instance as the client holds it: a copy of its own, changed by Put alone.
class ClassObject final : public ClassObjectBase {
public:
  ClassObject(std::shared_ptr<Host> host, CimObject object)
      : ClassObjectBase(std::move(host)), m_object(std::move(object)) {}

  /// The object behind an interface that this host handed out, as it stands now; none for any other interface.
  static ObjectRef ObjectBehind(IUnknown* unknown);
  /// The class of that object.
  static ClassRef ClassBehind(IUnknown* unknown) noexcept;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override;
  HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type, LONG* flavor) override;
  HRESULT STDMETHODCALLTYPE Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) override;
  HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG flags) override;
  HRESULT STDMETHODCALLTYPE Next(LONG flags, BSTR* name, VARIANT* value, CIMTYPE* type, LONG* flavor) override;
  HRESULT STDMETHODCALLTYPE EndEnumeration() override;
  HRESULT STDMETHODCALLTYPE Clone(IWbemClassObject** copy) override;
  HRESULT STDMETHODCALLTYPE SpawnInstance(LONG flags, IWbemClassObject** newInstance) override;
  HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** inSignature,
                                      IWbemClassObject** outSignature) override;
  HRESULT STDMETHODCALLTYPE BeginMethodEnumeration(LONG flags) override;
  HRESULT STDMETHODCALLTYPE NextMethod(LONG flags, BSTR* name, IWbemClassObject** inSignature,
                                       IWbemClassObject** outSignature) override;
  HRESULT STDMETHODCALLTYPE EndMethodEnumeration() override;

private:
  /// A property as Get and Next tell it.
  struct Told {
    std::wstring name;
    CimValue value;
    CIMTYPE type;
    LONG flavor;
  };

  ~ClassObject() override = default;

  static ClassObject* OwnObject(IUnknown* unknown) noexcept;

  const std::wstring& LookupName() const { return m_object.Class()->LookupName(); }
  MakeObject Maker() const;
  std::optional<Told> FindProperty(std::wstring_view name) const;
  Told OwnProperty(std::size_t index) const;
  Told SystemPropertyAt(std::size_t index) const;
  std::optional<Told> NextProperty();
  HRESULT Tell(const Told& property, VARIANT* value, CIMTYPE* type, LONG* flavor) const;
  HRESULT TellMethod(const MethodDefinition& method, IWbemClassObject** inSignature,
                     IWbemClassObject** outSignature) const;

  std::mutex m_lock;
  CimObject m_object;
  LONG m_enumeratedScope = 0;                  ///< the flags of BeginEnumeration
  std::optional<std::size_t> m_nextProperty{}; ///< counts system properties first; none without an enumeration
  std::optional<std::size_t> m_nextMethod{};
};

/// Makes the COM object of a repository object; the caller owns the reference.
IWbemClassObject* MakeClassObject(const std::shared_ptr<Host>& host, CimObject object);

} // namespace simhost
