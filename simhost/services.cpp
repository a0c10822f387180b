#include "simhost/services.h"

#include "simhost/class_object.h"
#include "simhost/object_enumerator.h"
#include "simhost/text.h"

namespace simhost {

namespace {

/// Flags of the WMI calls by their documented numbers.
constexpr LONG kReturnImmediately = 0x10;
constexpr LONG kUseAmendedQualifiers = 0x20000;

/// Whether there is no flag beside those.
bool OnlyFlags(LONG flags, LONG allowed) {
  return (flags & ~allowed) == 0;
}

std::wstring_view View(const OLECHAR* text) {
  return text == nullptr ? std::wstring_view() : std::wstring_view(text);
}

/// The class that a path begins with.
std::wstring_view ClassOfPath(std::wstring_view path) {
  return path.substr(0, path.find_first_of(L".="));
}

template <class T>
void Empty(T** output) {
  if (output != nullptr) {
    *output = nullptr;
  }
}

} // namespace

HRESULT Services::GetObject(const BSTR path, LONG flags, IWbemContext* /*context*/, IWbemClassObject** object,
                            IWbemCallResult** result) {
  Empty(object);
  return Carry(OperationIndex("GetObject"), ClassOfPath(View(path)), {}, [&]() -> HRESULT {
    if (path == nullptr || object == nullptr || result != nullptr || !OnlyFlags(flags, kUseAmendedQualifiers)) {
      return WBEM_E_INVALID_PARAMETER;
    }
    std::optional<CimObject> found;
    const HRESULT outcome = TheHost()->Finish(TheHost()->repository.GetObject(path, found));
    if (SUCCEEDED(outcome)) {
      *object = MakeClassObject(TheHost(), *std::move(found));
    }
    return outcome;
  });
}

HRESULT Services::HandOut(std::wstring name, const Outcome& outcome, std::vector<CimObject> objects, LONG flags,
                          IEnumWbemClassObject** enumerator) const {
  const HRESULT result = TheHost()->Finish(outcome);
  if (SUCCEEDED(result)) {
    ResultSet results{std::move(name), std::move(objects), (flags & WBEM_FLAG_FORWARD_ONLY) != 0};
    *enumerator = new ObjectEnumerator(TheHost(), std::make_shared<const ResultSet>(std::move(results)));
  }
  return result;
}

HRESULT Services::CreateInstanceEnum(const BSTR className, LONG flags, IWbemContext* /*context*/,
                                     IEnumWbemClassObject** enumerator) {
  Empty(enumerator);
  return Carry(OperationIndex("CreateInstanceEnum"), View(className), {}, [&]() -> HRESULT {
    if (className == nullptr || enumerator == nullptr ||
        !OnlyFlags(flags, WBEM_FLAG_SHALLOW | WBEM_FLAG_FORWARD_ONLY | kReturnImmediately | kUseAmendedQualifiers)) {
      return WBEM_E_INVALID_PARAMETER;
    }
    std::vector<CimObject> instances;
    const bool deep = (flags & WBEM_FLAG_SHALLOW) == 0;
    const Outcome outcome = TheHost()->repository.EnumerateInstances(className, deep, instances);
    return HandOut(className, outcome, std::move(instances), flags, enumerator);
  });
}

HRESULT Services::ExecQuery(const BSTR language, const BSTR query, LONG flags, IWbemContext* /*context*/,
                            IEnumWbemClassObject** enumerator) {
  Empty(enumerator);
  return Carry(OperationIndex("ExecQuery"), View(query), {}, [&]() -> HRESULT {
    if (language == nullptr || query == nullptr || enumerator == nullptr ||
        !OnlyFlags(flags, WBEM_FLAG_FORWARD_ONLY | kReturnImmediately | kUseAmendedQualifiers)) {
      return WBEM_E_INVALID_PARAMETER;
    }
    if (!EqualNames(language, L"WQL")) {
      return WBEM_E_INVALID_QUERY_TYPE;
    }
    std::vector<CimObject> results;
    const Outcome outcome = TheHost()->repository.Query(query, results);
    return HandOut(L"Meta_Class", outcome, std::move(results), flags, enumerator);
  });
}

HRESULT Services::ExecMethod(const BSTR path, const BSTR method, LONG flags, IWbemContext* /*context*/,
                             IWbemClassObject* inParameters, IWbemClassObject** outParameters,
                             IWbemCallResult** result) {
  Empty(outParameters);
  return Carry(OperationIndex("ExecMethod"), ClassOfPath(View(path)), View(method), [&]() -> HRESULT {
    if (path == nullptr || method == nullptr || result != nullptr || flags != 0) {
      return WBEM_E_INVALID_PARAMETER;
    }
    const ObjectRef input = ClassObject::ObjectBehind(inParameters);
    if (inParameters != nullptr && input == nullptr) {
      return WBEM_E_INVALID_OBJECT;
    }
    std::optional<CimObject> output;
    const HRESULT outcome = TheHost()->Finish(TheHost()->repository.ExecuteMethod(path, method, input.get(), output));
    if (SUCCEEDED(outcome) && output && outParameters != nullptr) {
      *outParameters = MakeClassObject(TheHost(), *std::move(output));
    }
    return outcome;
  });
}

HRESULT Services::PutInstance(IWbemClassObject* instance, LONG flags, IWbemContext* /*context*/,
                              IWbemCallResult** result) {
  const ClassRef definition = ClassObject::ClassBehind(instance);
  const std::wstring_view name = definition == nullptr ? std::wstring_view() : definition->name;
  return Carry(OperationIndex("PutInstance"), name, {}, [&]() -> HRESULT {
    if (instance == nullptr || result != nullptr || !OnlyFlags(flags, kUseAmendedQualifiers)) {
      return WBEM_E_INVALID_PARAMETER;
    }
    const ObjectRef object = ClassObject::ObjectBehind(instance);
    return object == nullptr ? WBEM_E_INVALID_OBJECT : TheHost()->Finish(TheHost()->repository.PutInstance(*object));
  });
}

HRESULT Locator::ConnectServer(const BSTR networkResource, const BSTR /*user*/, const BSTR /*password*/,
                               const BSTR /*locale*/, LONG /*securityFlags*/, const BSTR /*authority*/,
                               IWbemContext* /*context*/, IWbemServices** services) {
  Empty(services);
  return Carry(OperationIndex("ConnectServer"), View(networkResource), {}, [&]() -> HRESULT {
    if (networkResource == nullptr || services == nullptr) {
      return WBEM_E_INVALID_PARAMETER;
    }
    if (!IsServedNamespace(networkResource)) {
      return WBEM_E_INVALID_NAMESPACE;
    }
    *services = new Services(TheHost());
    return WBEM_S_NO_ERROR;
  });
}

} // namespace simhost
