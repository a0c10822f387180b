#include "simhost/class_object.h"

#include "platform/com_owners.h"
#include "simhost/system_properties.h"
#include "simhost/text.h"

namespace simhost {

namespace {

/// Scopes of BeginEnumeration and flavors of properties, by their documented numbers.
constexpr LONG kAllProperties = 0;
constexpr LONG kSystemOnly = 0x30;
constexpr LONG kNonSystemOnly = 0x40;
constexpr LONG kFlavorLocal = 0;
constexpr LONG kFlavorSystem = 0x40;

/// Answered by the host's own class objects alone, with the object itself and without a reference.
constexpr IID kOwnObjectId = {0x7D0F2B31, 0x5C1E, 0x4D0B, {0x9A, 0x3E, 0x51, 0x60, 0xC2, 0x18, 0x4F, 0x77}};

/// A text of the client's as a view; an empty one for none.
std::wstring_view View(LPCWSTR text) {
  return text == nullptr ? std::wstring_view() : std::wstring_view(text);
}

template <class T>
void TellOptional(T* output, T value) {
  if (output != nullptr) {
    *output = value;
  }
}

bool IsSystemName(std::wstring_view name) {
  return name.starts_with(L"__");
}

} // namespace

IWbemClassObject* MakeClassObject(const std::shared_ptr<Host>& host, CimObject object) {
  return new ClassObject(host, std::move(object));
}

ClassObject* ClassObject::OwnObject(IUnknown* unknown) noexcept {
  void* found = nullptr;
  return unknown != nullptr && SUCCEEDED(unknown->QueryInterface(kOwnObjectId, &found))
             ? static_cast<ClassObject*>(found)
             : nullptr;
}

ObjectRef ClassObject::ObjectBehind(IUnknown* unknown) {
  ClassObject* own = OwnObject(unknown);
  if (own == nullptr) {
    return nullptr;
  }
  const std::scoped_lock lock(own->m_lock);
  return std::make_shared<const CimObject>(own->m_object);
}

ClassRef ClassObject::ClassBehind(IUnknown* unknown) noexcept {
  const ClassObject* own = OwnObject(unknown);
  return own == nullptr ? nullptr : own->m_object.Class();
}

HRESULT ClassObject::QueryInterface(REFIID riid, void** object) {
  if (object != nullptr && IsEqualIID(riid, kOwnObjectId)) {
    *object = this;
    return S_OK;
  }
  return ClassObjectBase::QueryInterface(riid, object);
}

MakeObject ClassObject::Maker() const {
  return [host = TheHost()](const CimObject& object) -> IUnknown* { return MakeClassObject(host, object); };
}

ClassObject::Told ClassObject::OwnProperty(std::size_t index) const {
  return {m_object.Class()->properties[index].name, m_object.ValueAt(index), m_object.TypeAt(index), kFlavorLocal};
}

ClassObject::Told ClassObject::SystemPropertyAt(std::size_t index) const {
  const std::wstring_view name = SystemPropertyNames()[index];
  TypedValue found = *SystemProperty(m_object, name, TheHost()->computer.name.value_or(L"."));
  return {std::wstring(name), std::move(found.value), found.type, kFlavorSystem};
}

std::optional<ClassObject::Told> ClassObject::FindProperty(std::wstring_view name) const {
  const std::optional<std::size_t> index = m_object.Class()->PropertyIndex(name);
  if (index && !m_object.IsMissingAt(*index)) {
    return OwnProperty(*index);
  }
  const std::span<const std::wstring_view> names = SystemPropertyNames();
  for (std::size_t i = 0; IsSystemName(name) && i < names.size(); ++i) {
    if (EqualNames(names[i], name)) {
      return SystemPropertyAt(i);
    }
  }
  return std::nullopt;
}

HRESULT ClassObject::Tell(const Told& property, VARIANT* value, CIMTYPE* type, LONG* flavor) const {
  if (value != nullptr) {
    const HRESULT result = VariantFromValue(property.value, property.type, Maker(), *value);
    if (FAILED(result)) {
      return result;
    }
  }
  TellOptional(type, property.type);
  TellOptional(flavor, property.flavor);
  return WBEM_S_NO_ERROR;
}

HRESULT ClassObject::Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type, LONG* flavor) {
  return Carry(OperationIndex("Get"), LookupName(), View(name), [&]() -> HRESULT {
    if (name == nullptr || flags != 0) {
      return WBEM_E_INVALID_PARAMETER;
    }
    const std::scoped_lock lock(m_lock);
    const std::optional<Told> property = FindProperty(name);
    return property ? Tell(*property, value, type, flavor) : WBEM_E_NOT_FOUND;
  });
}

HRESULT ClassObject::Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) {
  return Carry(OperationIndex("Put"), LookupName(), View(name), [&]() -> HRESULT {
    if (name == nullptr || flags != 0 || IsSystemName(name)) {
      return WBEM_E_INVALID_PARAMETER;
    }
    if (m_object.IsDefinition()) {
      return WBEM_E_NOT_SUPPORTED;
    }
    const std::optional<std::size_t> index = m_object.Class()->PropertyIndex(name);
    if (!index) {
      return WBEM_E_NOT_FOUND;
    }
    const PropertyDefinition& property = m_object.Class()->properties[*index];
    if (type != 0 && type != property.type) {
      return WBEM_E_TYPE_MISMATCH;
    }
    // Read before this object is locked: the value may be this object itself.
    PutValue put = value == nullptr ? PutValue{} : ValueFromVariant(*value, property, ObjectBehind);
    if (FAILED(put.result)) {
      return put.result;
    }
    const std::scoped_lock lock(m_lock);
    if (m_object.IsMissingAt(*index)) {
      return WBEM_E_NOT_FOUND;
    }
    if (put.isCoerced) {
      TheStatistics().coercions.fetch_add(1, std::memory_order_relaxed);
    }
    m_object.Force(*index, std::move(put.value), property.type);
    return WBEM_S_NO_ERROR;
  });
}

HRESULT ClassObject::BeginEnumeration(LONG flags) {
  return Carry(OperationIndex("BeginEnumeration"), LookupName(), {}, [&]() -> HRESULT {
    if (flags != kAllProperties && flags != kSystemOnly && flags != kNonSystemOnly) {
      return WBEM_E_INVALID_PARAMETER;
    }
    const std::scoped_lock lock(m_lock);
    const bool wasOpen = m_nextProperty.has_value();
    m_enumeratedScope = flags;
    m_nextProperty = 0;
    return wasOpen ? WBEM_E_UNEXPECTED : WBEM_S_NO_ERROR;
  });
}

std::optional<ClassObject::Told> ClassObject::NextProperty() {
  const std::size_t systemCount = SystemPropertyNames().size();
  while (*m_nextProperty < systemCount + m_object.Count()) {
    const std::size_t index = (*m_nextProperty)++;
    if (index < systemCount) {
      if (m_enumeratedScope != kNonSystemOnly) {
        return SystemPropertyAt(index);
      }
    } else if (m_enumeratedScope != kSystemOnly && !m_object.IsMissingAt(index - systemCount)) {
      return OwnProperty(index - systemCount);
    }
  }
  return std::nullopt;
}

HRESULT ClassObject::Next(LONG flags, BSTR* name, VARIANT* value, CIMTYPE* type, LONG* flavor) {
  TellOptional(name, BSTR{});
  return Carry(OperationIndex("NextProperty"), LookupName(), {}, [&]() -> HRESULT {
    if (flags != 0) {
      return WBEM_E_INVALID_PARAMETER;
    }
    const std::scoped_lock lock(m_lock);
    if (!m_nextProperty) {
      return WBEM_E_UNEXPECTED;
    }
    const std::optional<Told> property = NextProperty();
    if (!property) {
      return WBEM_S_NO_MORE_DATA;
    }
    platform::Bstr told;
    told.reset(SysAllocStringLen(property->name.data(), static_cast<UINT>(property->name.size())));
    if (!told) {
      return WBEM_E_OUT_OF_MEMORY;
    }
    const HRESULT result = Tell(*property, value, type, flavor);
    if (SUCCEEDED(result) && name != nullptr) {
      *name = told.detach();
    }
    return result;
  });
}

HRESULT ClassObject::EndEnumeration() {
  return Carry(OperationIndex("EndEnumeration"), LookupName(), {}, [&] {
    const std::scoped_lock lock(m_lock);
    m_nextProperty.reset();
    return WBEM_S_NO_ERROR;
  });
}

HRESULT ClassObject::Clone(IWbemClassObject** copy) {
  TellOptional(copy, static_cast<IWbemClassObject*>(nullptr));
  return Carry(OperationIndex("Clone"), LookupName(), {}, [&]() -> HRESULT {
    if (copy == nullptr) {
      return WBEM_E_INVALID_PARAMETER;
    }
    const std::scoped_lock lock(m_lock);
    *copy = MakeClassObject(TheHost(), m_object);
    return WBEM_S_NO_ERROR;
  });
}

HRESULT ClassObject::SpawnInstance(LONG flags, IWbemClassObject** newInstance) {
  TellOptional(newInstance, static_cast<IWbemClassObject*>(nullptr));
  return Carry(OperationIndex("SpawnInstance"), LookupName(), {}, [&]() -> HRESULT {
    if (newInstance == nullptr || flags != 0) {
      return WBEM_E_INVALID_PARAMETER;
    }
    if (!m_object.IsDefinition()) {
      return WBEM_E_INVALID_OPERATION;
    }
    *newInstance = MakeClassObject(TheHost(), CimObject(m_object.Class()));
    return WBEM_S_NO_ERROR;
  });
}

HRESULT ClassObject::TellMethod(const MethodDefinition& method, IWbemClassObject** inSignature,
                                IWbemClassObject** outSignature) const {
  platform::ComPtr<IWbemClassObject> input;
  platform::ComPtr<IWbemClassObject> output;
  if (inSignature != nullptr && method.inputClass != nullptr) {
    input.reset(MakeClassObject(TheHost(), CimObject(method.inputClass, true)));
  }
  if (outSignature != nullptr && method.outputClass != nullptr) {
    output.reset(MakeClassObject(TheHost(), CimObject(method.outputClass, true)));
  }
  TellOptional(inSignature, input.detach());
  TellOptional(outSignature, output.detach());
  return WBEM_S_NO_ERROR;
}

HRESULT ClassObject::GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** inSignature,
                               IWbemClassObject** outSignature) {
  TellOptional(inSignature, static_cast<IWbemClassObject*>(nullptr));
  TellOptional(outSignature, static_cast<IWbemClassObject*>(nullptr));
  return Carry(OperationIndex("GetMethod"), LookupName(), View(name), [&]() -> HRESULT {
    if (name == nullptr || flags != 0) {
      return WBEM_E_INVALID_PARAMETER;
    }
    const MethodDefinition* method = m_object.Class()->FindMethod(name);
    return method == nullptr ? WBEM_E_NOT_FOUND : TellMethod(*method, inSignature, outSignature);
  });
}

HRESULT ClassObject::BeginMethodEnumeration(LONG flags) {
  return Carry(OperationIndex("BeginMethodEnumeration"), LookupName(), {}, [&]() -> HRESULT {
    if (flags != 0) {
      return WBEM_E_INVALID_PARAMETER;
    }
    const std::scoped_lock lock(m_lock);
    const bool wasOpen = m_nextMethod.has_value();
    m_nextMethod = 0;
    return wasOpen ? WBEM_E_UNEXPECTED : WBEM_S_NO_ERROR;
  });
}

HRESULT ClassObject::NextMethod(LONG flags, BSTR* name, IWbemClassObject** inSignature,
                                IWbemClassObject** outSignature) {
  TellOptional(name, BSTR{});
  TellOptional(inSignature, static_cast<IWbemClassObject*>(nullptr));
  TellOptional(outSignature, static_cast<IWbemClassObject*>(nullptr));
  return Carry(OperationIndex("NextMethod"), LookupName(), {}, [&]() -> HRESULT {
    if (name == nullptr || flags != 0) {
      return WBEM_E_INVALID_PARAMETER;
    }
    const std::scoped_lock lock(m_lock);
    if (!m_nextMethod) {
      return WBEM_E_UNEXPECTED;
    }
    const std::vector<MethodDefinition>& methods = m_object.Class()->methods;
    if (*m_nextMethod == methods.size()) {
      return WBEM_S_NO_MORE_DATA;
    }
    const MethodDefinition& method = methods[(*m_nextMethod)++];
    platform::Bstr told;
    told.reset(SysAllocStringLen(method.name.data(), static_cast<UINT>(method.name.size())));
    if (!told) {
      return WBEM_E_OUT_OF_MEMORY;
    }
    TellMethod(method, inSignature, outSignature);
    *name = told.detach();
    return WBEM_S_NO_ERROR;
  });
}

HRESULT ClassObject::EndMethodEnumeration() {
  return Carry(OperationIndex("EndMethodEnumeration"), LookupName(), {}, [&] {
    const std::scoped_lock lock(m_lock);
    m_nextMethod.reset();
    return WBEM_S_NO_ERROR;
  });
}

} // namespace simhost
