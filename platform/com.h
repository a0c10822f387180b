#pragma once

#include "platform/types.h"

// COM and OLE Automation values.

#ifdef _WIN32
#include <objbase.h>
#include <oleauto.h>
#else
#include <cstring>

struct GUID {
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];
};
using IID = GUID;
using CLSID = GUID;
using REFIID = const IID&;
using REFCLSID = const CLSID&;
static_assert(sizeof(GUID) == 16);

inline bool operator==(const GUID& left, const GUID& right) {
  return std::memcmp(&left, &right, sizeof(GUID)) == 0;
}
inline bool IsEqualGUID(const GUID& left, const GUID& right) {
  return left == right;
}
inline bool IsEqualIID(const GUID& left, const GUID& right) {
  return left == right;
}

struct IUnknown {
  virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) = 0;
  virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
  virtual ULONG STDMETHODCALLTYPE Release() = 0;

protected:
  ~IUnknown() = default;
};
inline constexpr IID IID_IUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// BSTR: UTF-16 units with their byte length before them and a terminator behind; owned by whoever holds it last.
using OLECHAR = WCHAR;
using BSTR = OLECHAR*;

/// A copy of `text`, or none when it is none or memory cannot be had. Release with SysFreeString.
BSTR SysAllocString(const OLECHAR* text);
/// `length` units, copied from `text` unless it is none, and a terminator.
BSTR SysAllocStringLen(const OLECHAR* text, UINT length);
void SysFreeString(BSTR text);
/// Length in units without the terminator; 0 for none.
UINT SysStringLen(BSTR text);

using VARTYPE = std::uint16_t;
using VARIANT_BOOL = std::int16_t;
inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;

enum VARENUM : std::uint16_t {
  VT_EMPTY = 0,
  VT_NULL = 1,
  VT_I2 = 2,
  VT_I4 = 3,
  VT_R4 = 4,
  VT_R8 = 5,
  VT_BSTR = 8,
  VT_DISPATCH = 9,
  VT_BOOL = 11,
  VT_VARIANT = 12,
  VT_UNKNOWN = 13,
  VT_I1 = 16,
  VT_UI1 = 17,
  VT_UI2 = 18,
  VT_UI4 = 19,
  VT_ARRAY = 0x2000,
};

struct SAFEARRAYBOUND {
  ULONG cElements;
  LONG lLbound;
};

/// Features of an array: what its elements are, and whether it can tell their VARTYPE.
inline constexpr USHORT FADF_HAVEVARTYPE = 0x0080;
inline constexpr USHORT FADF_BSTR = 0x0100;
inline constexpr USHORT FADF_UNKNOWN = 0x0200;
inline constexpr USHORT FADF_DISPATCH = 0x0400;

/// One-dimensional here; the owner of its elements.
struct SAFEARRAY {
  USHORT cDims;
  USHORT fFeatures;
  ULONG cbElements;
  ULONG cLocks;
  PVOID pvData;
  SAFEARRAYBOUND rgsabound[1];
};

/// What makes a VARIANT as large as it is; not used.
struct VARIANT_RECORD {
  PVOID pvRecord;
  PVOID pRecInfo;
};

struct VARIANT {
  VARTYPE vt;
  WORD wReserved1;
  WORD wReserved2;
  WORD wReserved3;
  union {
    LONGLONG llVal;
    LONG lVal;
    BYTE bVal;
    SHORT iVal;
    float fltVal;
    double dblVal;
    VARIANT_BOOL boolVal;
    BSTR bstrVal;
    IUnknown* punkVal;
    SAFEARRAY* parray;
    VARIANT_RECORD record;
  };
};
using VARIANTARG = VARIANT;
static_assert(sizeof(VARIANT) == 24);

inline constexpr HRESULT DISP_E_TYPEMISMATCH = static_cast<HRESULT>(0x80020005U);
inline constexpr HRESULT DISP_E_BADVARTYPE = static_cast<HRESULT>(0x80020008U);
inline constexpr HRESULT DISP_E_BADINDEX = static_cast<HRESULT>(0x8002000BU);
inline constexpr HRESULT DISP_E_ARRAYISLOCKED = static_cast<HRESULT>(0x8002000DU);

void VariantInit(VARIANT* variant);
/// Releases what the variant holds and leaves it VT_EMPTY; DISP_E_BADVARTYPE for a type outside the enumeration.
HRESULT VariantClear(VARIANT* variant);
/// Clears the target, then copies: a text and an array are copied whole, an interface gains a reference.
HRESULT VariantCopy(VARIANT* target, const VARIANT* source);

/// A one-dimensional array of VT_UNKNOWN, VT_BSTR or a plain type, zero-filled; none for other types, more dimensions
/// or without memory.
SAFEARRAY* SafeArrayCreate(VARTYPE elementType, UINT dimensions, SAFEARRAYBOUND* bounds);
/// Releases the elements and the array; DISP_E_ARRAYISLOCKED while its data is accessed.
HRESULT SafeArrayDestroy(SAFEARRAY* array);
/// A copy of the array with copied texts and added references, unlocked whatever the source is; none of none.
HRESULT SafeArrayCopy(SAFEARRAY* source, SAFEARRAY** copy);
HRESULT SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound);
/// An array without elements has the upper bound lower - 1.
HRESULT SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound);
HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data);
HRESULT SafeArrayUnaccessData(SAFEARRAY* array);
/// Stores a copy of a plain value or text, or an interface with an added reference; `value` is the interface itself
/// then.
HRESULT SafeArrayPutElement(SAFEARRAY* array, LONG* index, void* value);
/// VT_EMPTY for an array without FADF_HAVEVARTYPE.
HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type);

// Start-up and security.
inline constexpr DWORD COINIT_MULTITHREADED = 0;
inline constexpr DWORD CLSCTX_INPROC_SERVER = 1;
inline constexpr DWORD RPC_C_AUTHN_DEFAULT = 0xFFFFFFFF;
inline constexpr DWORD RPC_C_AUTHN_WINNT = 10;
inline constexpr DWORD RPC_C_AUTHZ_NONE = 0;
inline constexpr DWORD RPC_C_AUTHN_LEVEL_DEFAULT = 0;
inline constexpr DWORD RPC_C_AUTHN_LEVEL_NONE = 1;
inline constexpr DWORD RPC_C_AUTHN_LEVEL_PKT = 4;
inline constexpr DWORD RPC_C_IMP_LEVEL_DEFAULT = 0;
inline constexpr DWORD RPC_C_IMP_LEVEL_IDENTIFY = 2;
inline constexpr DWORD RPC_C_IMP_LEVEL_IMPERSONATE = 3;
inline constexpr DWORD EOAC_NONE = 0;
inline constexpr DWORD SEC_WINNT_AUTH_IDENTITY_UNICODE = 2;
inline constexpr HRESULT RPC_E_TOO_LATE = static_cast<HRESULT>(0x80010119U);
inline constexpr HRESULT CO_E_NOTINITIALIZED = static_cast<HRESULT>(0x800401F0U);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = static_cast<HRESULT>(0x80040154U);
inline constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110U);

/// Explicit credentials for CoSetProxyBlanket; lengths in wide characters. The texts are wide characters here, unsigned
/// short on Windows: the same thing there, not with 32-bit wide characters.
struct SEC_WINNT_AUTH_IDENTITY_W {
  WCHAR* User;
  ULONG UserLength;
  WCHAR* Domain;
  ULONG DomainLength;
  WCHAR* Password;
  ULONG PasswordLength;
  ULONG Flags;
};

struct SOLE_AUTHENTICATION_SERVICE;
using PSECURITY_DESCRIPTOR = void*;
using RPC_AUTH_IDENTITY_HANDLE = void*;

/// Starts COM for the calling thread, in the multithreaded apartment (the only one here); S_FALSE when it runs there
/// already.
HRESULT CoInitializeEx(void* reserved, DWORD flags);
/// Undoes one CoInitializeEx of the calling thread.
void CoUninitialize();
/// Sets the security of the process; RPC_E_TOO_LATE when it has been set before, CO_E_NOTINITIALIZED before COM is
/// started.
HRESULT CoInitializeSecurity(PSECURITY_DESCRIPTOR descriptor, LONG serviceCount, SOLE_AUTHENTICATION_SERVICE* services,
                             void* reserved1, DWORD authnLevel, DWORD impLevel, void* authList, DWORD capabilities,
                             void* reserved3);
/// A new object of a class; CO_E_NOTINITIALIZED before COM is started on any thread, REGDB_E_CLASSNOTREG for an unknown
/// class.
HRESULT CoCreateInstance(REFCLSID classId, IUnknown* outer, DWORD context, REFIID riid, void** object);
/// Asks the proxy for IClientSecurity and has it set its blanket.
HRESULT CoSetProxyBlanket(IUnknown* proxy, DWORD authnService, DWORD authzService, OLECHAR* principal, DWORD authnLevel,
                          DWORD impLevel, RPC_AUTH_IDENTITY_HANDLE identity, DWORD capabilities);

/// Security of the calls through a proxy.
struct IClientSecurity : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE QueryBlanket(IUnknown* proxy, DWORD* authnService, DWORD* authzService,
                                                 OLECHAR** principal, DWORD* authnLevel, DWORD* impLevel,
                                                 void** identity, DWORD* capabilities) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown* proxy, DWORD authnService, DWORD authzService,
                                               OLECHAR* principal, DWORD authnLevel, DWORD impLevel, void* identity,
                                               DWORD capabilities) = 0;
  virtual HRESULT STDMETHODCALLTYPE CopyProxy(IUnknown* proxy, IUnknown** copy) = 0;

protected:
  ~IClientSecurity() = default;
};
inline constexpr IID IID_IClientSecurity = {0x0000013D, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
#endif
