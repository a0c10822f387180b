#include "platform/allocation.h"
#include "platform/com.h"
#include "platform/posix/errno_guard.h"
#include "platform/posix/faults.h"
#include "platform/posix/machine_access.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <span>

namespace {

constexpr ULONG kMostLocks = 0xFFFF;

/// Every array of this file's making: the descriptor, and the type of its elements behind it.
struct TypedSafeArray : SAFEARRAY {
  VARTYPE elementType;
};

VARTYPE ElementType(const SAFEARRAY* array) {
  return static_cast<const TypedSafeArray*>(array)->elementType;
}

/// Bytes of one element; 0 for a type that an array cannot have here.
ULONG ElementBytes(VARTYPE type) {
  switch (type) {
  case VT_I1:
  case VT_UI1:
    return 1;
  case VT_I2:
  case VT_UI2:
  case VT_BOOL:
    return 2;
  case VT_I4:
  case VT_UI4:
  case VT_R4:
    return 4;
  case VT_R8:
    return 8;
  case VT_BSTR:
  case VT_UNKNOWN:
    return sizeof(void*);
  default:
    return 0;
  }
}

USHORT FeaturesOf(VARTYPE type) {
  switch (type) {
  case VT_BSTR:
    return FADF_HAVEVARTYPE | FADF_BSTR;
  case VT_UNKNOWN:
    return FADF_HAVEVARTYPE | FADF_UNKNOWN;
  default:
    return FADF_HAVEVARTYPE;
  }
}

std::span<BSTR> Texts(SAFEARRAY* array) {
  return {static_cast<BSTR*>(array->pvData), array->rgsabound[0].cElements};
}
std::span<IUnknown*> Interfaces(SAFEARRAY* array) {
  return {static_cast<IUnknown**>(array->pvData), array->rgsabound[0].cElements};
}

/// Stores `element` in `slot` in place of the text there.
HRESULT ReplaceText(BSTR& slot, BSTR element) {
  BSTR copy = nullptr;
  if (element != nullptr) {
    copy = SysAllocStringLen(element, SysStringLen(element));
    if (copy == nullptr) {
      return E_OUTOFMEMORY;
    }
  }
  SysFreeString(slot);
  slot = copy;
  return S_OK;
}

void ReplaceInterface(IUnknown*& slot, IUnknown* element) {
  if (element != nullptr) {
    element->AddRef();
  }
  if (slot != nullptr) {
    slot->Release();
  }
  slot = element;
}

/// Releases what the elements own and leaves them empty.
void ReleaseElements(SAFEARRAY* array) {
  if (ElementType(array) == VT_BSTR) {
    for (BSTR& text : Texts(array)) {
      ReplaceText(text, nullptr);
    }
  } else if (ElementType(array) == VT_UNKNOWN) {
    for (IUnknown*& object : Interfaces(array)) {
      ReplaceInterface(object, nullptr);
    }
  }
}

/// Copies the elements of `source` into the empty ones of `copy`, an array of the same type and size.
HRESULT CopyElements(SAFEARRAY* copy, SAFEARRAY* source) {
  if (ElementType(source) == VT_BSTR) {
    for (std::size_t at = 0; at < Texts(source).size(); ++at) {
      if (FAILED(ReplaceText(Texts(copy)[at], Texts(source)[at]))) {
        return E_OUTOFMEMORY;
      }
    }
  } else if (ElementType(source) == VT_UNKNOWN) {
    for (std::size_t at = 0; at < Interfaces(source).size(); ++at) {
      ReplaceInterface(Interfaces(copy)[at], Interfaces(source)[at]);
    }
  } else {
    std::memcpy(copy->pvData, source->pvData, std::size_t{source->cbElements} * source->rgsabound[0].cElements);
  }
  return S_OK;
}

SAFEARRAY* CreateArray(VARTYPE type, const SAFEARRAYBOUND& bound) {
  const platform::ErrnoGuard guard;
  const ULONG elementBytes = ElementBytes(type);
  const std::uint64_t dataBytes = std::uint64_t{elementBytes} * bound.cElements;
  if (elementBytes == 0 || dataBytes > platform::kAllocationCap) {
    return nullptr;
  }
  void* data = std::calloc(1, dataBytes == 0 ? 1 : static_cast<std::size_t>(dataBytes));
  auto* array = new (std::nothrow) TypedSafeArray{};
  if (data == nullptr || array == nullptr) {
    std::free(data);
    delete array;
    return nullptr;
  }
  array->cDims = 1;
  array->fFeatures = FeaturesOf(type);
  array->cbElements = elementBytes;
  array->pvData = data;
  array->rgsabound[0] = bound;
  array->elementType = type;
  platform::gLiveSafeArrays.fetch_add(1, std::memory_order_relaxed);
  return array;
}

/// Releases an array and its elements, whoever has it locked.
void DestroyArray(SAFEARRAY* array) {
  const platform::ErrnoGuard guard;
  ReleaseElements(array);
  std::free(array->pvData);
  delete static_cast<TypedSafeArray*>(array);
  platform::gLiveSafeArrays.fetch_sub(1, std::memory_order_relaxed);
}

HRESULT CheckBoundArguments(const SAFEARRAY* array, UINT dimension, const LONG* bound) {
  if (array == nullptr || bound == nullptr) {
    return E_INVALIDARG;
  }
  return dimension == 1 ? S_OK : DISP_E_BADINDEX;
}

} // namespace

SAFEARRAY* SafeArrayCreate(VARTYPE elementType, UINT dimensions, SAFEARRAYBOUND* bounds) {
  if (dimensions != 1 || bounds == nullptr || platform::FaultOf("SafeArrayCreate")) {
    return nullptr;
  }
  return CreateArray(elementType, bounds[0]);
}

HRESULT SafeArrayDestroy(SAFEARRAY* array) {
  if (array == nullptr) {
    return S_OK;
  }
  if (array->cLocks != 0) {
    return DISP_E_ARRAYISLOCKED;
  }
  DestroyArray(array);
  return S_OK;
}

HRESULT SafeArrayCopy(SAFEARRAY* source, SAFEARRAY** copy) {
  if (copy == nullptr) {
    return E_INVALIDARG;
  }
  *copy = nullptr;
  if (source == nullptr) {
    return S_OK;
  }
  SAFEARRAY* array = CreateArray(ElementType(source), source->rgsabound[0]);
  if (array == nullptr) {
    return E_OUTOFMEMORY;
  }
  const HRESULT result = CopyElements(array, source);
  if (FAILED(result)) {
    DestroyArray(array);
    return result;
  }
  *copy = array;
  return S_OK;
}

HRESULT SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
  if (const auto fault = platform::FaultOf("SafeArrayGetLBound")) {
    return static_cast<HRESULT>(*fault);
  }
  const HRESULT result = CheckBoundArguments(array, dimension, bound);
  if (SUCCEEDED(result)) {
    *bound = array->rgsabound[0].lLbound;
  }
  return result;
}

HRESULT SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
  if (const auto fault = platform::FaultOf("SafeArrayGetUBound")) {
    return static_cast<HRESULT>(*fault);
  }
  const HRESULT result = CheckBoundArguments(array, dimension, bound);
  if (SUCCEEDED(result)) {
    const SAFEARRAYBOUND& only = array->rgsabound[0];
    *bound = static_cast<LONG>(std::int64_t{only.lLbound} + only.cElements - 1);
  }
  return result;
}

HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data) {
  if (const auto fault = platform::FaultOf("SafeArrayAccessData")) {
    return static_cast<HRESULT>(*fault);
  }
  if (array == nullptr || data == nullptr) {
    return E_INVALIDARG;
  }
  if (array->cLocks == kMostLocks) {
    return E_UNEXPECTED;
  }
  ++array->cLocks;
  *data = array->pvData;
  return S_OK;
}

HRESULT SafeArrayUnaccessData(SAFEARRAY* array) {
  if (array == nullptr) {
    return E_INVALIDARG;
  }
  if (array->cLocks == 0) {
    return E_UNEXPECTED;
  }
  --array->cLocks;
  return S_OK;
}

HRESULT SafeArrayPutElement(SAFEARRAY* array, LONG* index, void* value) {
  if (array == nullptr || index == nullptr) {
    return E_INVALIDARG;
  }
  const std::int64_t at = std::int64_t{*index} - array->rgsabound[0].lLbound;
  if (at < 0 || at >= std::int64_t{array->rgsabound[0].cElements}) {
    return DISP_E_BADINDEX;
  }
  const auto position = static_cast<std::size_t>(at);
  switch (ElementType(array)) {
  case VT_BSTR:
    return ReplaceText(Texts(array)[position], static_cast<BSTR>(value));
  case VT_UNKNOWN:
    ReplaceInterface(Interfaces(array)[position], static_cast<IUnknown*>(value));
    return S_OK;
  default:
    if (value == nullptr) {
      return E_INVALIDARG;
    }
    std::memcpy(static_cast<char*>(array->pvData) + position * array->cbElements, value, array->cbElements);
    return S_OK;
  }
}

HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type) {
  if (array == nullptr || type == nullptr) {
    return E_INVALIDARG;
  }
  *type = (array->fFeatures & FADF_HAVEVARTYPE) != 0 ? ElementType(array) : static_cast<VARTYPE>(VT_EMPTY);
  return S_OK;
}
