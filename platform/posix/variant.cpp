#include "platform/com.h"
#include "platform/posix/faults.h"

namespace {

constexpr VARTYPE kByReference = 0x4000;
constexpr VARTYPE kTypeMask = 0x0FFF;
/// Gaps of the enumeration's plain types: 15 and everything from VT_VOID (24) on.
constexpr VARTYPE kUnassignedType = 15;
constexpr VARTYPE kEndOfPlainTypes = 24;

/// Whether `type` is one that a VARIANT may have: a plain type, or an array of or a reference to one with values.
bool IsValidType(VARTYPE type) {
  const auto plain = static_cast<VARTYPE>(type & kTypeMask);
  const auto modifiers = static_cast<VARTYPE>(type & ~kTypeMask);
  if ((modifiers & ~(VT_ARRAY | kByReference)) != 0 || plain >= kEndOfPlainTypes || plain == kUnassignedType) {
    return false;
  }
  return modifiers == 0 || plain > VT_NULL;
}

bool IsInterface(VARTYPE type) {
  return type == VT_UNKNOWN || type == VT_DISPATCH;
}
bool IsOwnedArray(VARTYPE type) {
  return (type & VT_ARRAY) != 0 && (type & kByReference) == 0;
}

/// Makes the contents of `target`, so far those of `source`, its own.
HRESULT OwnContents(VARIANT& target, const VARIANT& source) {
  if (IsOwnedArray(source.vt)) {
    target.parray = nullptr;
    return source.parray == nullptr ? S_OK : SafeArrayCopy(source.parray, &target.parray);
  }
  if (source.vt == VT_BSTR && source.bstrVal != nullptr) {
    target.bstrVal = SysAllocStringLen(source.bstrVal, SysStringLen(source.bstrVal));
    return target.bstrVal == nullptr ? E_OUTOFMEMORY : S_OK;
  }
  if (IsInterface(source.vt) && source.punkVal != nullptr) {
    source.punkVal->AddRef();
  }
  return S_OK;
}

} // namespace

void VariantInit(VARIANT* variant) {
  *variant = VARIANT{};
}

HRESULT VariantClear(VARIANT* variant) {
  if (!IsValidType(variant->vt)) {
    return DISP_E_BADVARTYPE;
  }
  if (IsOwnedArray(variant->vt)) {
    const HRESULT result = SafeArrayDestroy(variant->parray);
    if (FAILED(result)) {
      return result;
    }
  } else if (variant->vt == VT_BSTR) {
    SysFreeString(variant->bstrVal);
  } else if (IsInterface(variant->vt) && variant->punkVal != nullptr) {
    variant->punkVal->Release();
  }
  VariantInit(variant);
  return S_OK;
}

HRESULT VariantCopy(VARIANT* target, const VARIANT* source) {
  if (const auto fault = platform::FaultOf("VariantCopy")) {
    return static_cast<HRESULT>(*fault);
  }
  if (!IsValidType(source->vt)) {
    return DISP_E_BADVARTYPE;
  }
  if (target == source) {
    return S_OK;
  }
  const HRESULT cleared = VariantClear(target);
  if (FAILED(cleared)) {
    return cleared;
  }
  *target = *source;
  const HRESULT owned = OwnContents(*target, *source);
  if (FAILED(owned)) {
    VariantInit(target);
  }
  return owned;
}
