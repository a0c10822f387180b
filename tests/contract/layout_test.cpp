#include "platform/com.h"
#include "platform/devices.h"
#include "platform/error.h"
#include "platform/host.h"
#include "platform/wbem.h"

#include <cstddef>

// Widths, sizes and offsets of what crosses the platform's boundary: held when this file compiles.

static_assert(sizeof(BYTE) == 1 && sizeof(WORD) == 2 && sizeof(USHORT) == 2 && sizeof(DWORD) == 4 && sizeof(UINT) == 4);
static_assert(sizeof(LONG) == 4 && sizeof(ULONG) == 4 && sizeof(HRESULT) == 4 && sizeof(BOOL) == 4);
static_assert(sizeof(LONGLONG) == 8 && sizeof(ULONGLONG) == 8 && sizeof(DWORDLONG) == 8 && sizeof(PVOID) == 8);
static_assert(LONG{-1} < 0 && HRESULT{-1} < 0 && ULONG{0} - 1 > 0 && DWORD{0} - 1 > 0);

static_assert(sizeof(GUID) == 16 && offsetof(GUID, Data4) == 8);
static_assert(sizeof(VARTYPE) == 2 && sizeof(VARIANT_BOOL) == 2 && VARIANT_TRUE == -1 && VARIANT_FALSE == 0);
static_assert(sizeof(VARIANT) == 24 && offsetof(VARIANT, vt) == 0 && offsetof(VARIANT, lVal) == 8);
static_assert(offsetof(VARIANT, llVal) == 8 && offsetof(VARIANT, bstrVal) == 8 && offsetof(VARIANT, parray) == 8);
static_assert(sizeof(SAFEARRAYBOUND) == 8 && offsetof(SAFEARRAYBOUND, lLbound) == 4);
static_assert(sizeof(SAFEARRAY) == 32 && offsetof(SAFEARRAY, cLocks) == 8 && offsetof(SAFEARRAY, pvData) == 16);
static_assert(offsetof(SAFEARRAY, rgsabound) == 24);
static_assert(sizeof(SYSTEMTIME) == 16 && offsetof(SYSTEMTIME, wDay) == 6 && offsetof(SYSTEMTIME, wMilliseconds) == 14);
static_assert(sizeof(FILETIME) == 8 && offsetof(FILETIME, dwHighDateTime) == 4);
static_assert(sizeof(SEC_WINNT_AUTH_IDENTITY_W) == 48 && offsetof(SEC_WINNT_AUTH_IDENTITY_W, Domain) == 16);
static_assert(offsetof(SEC_WINNT_AUTH_IDENTITY_W, Password) == 32 && offsetof(SEC_WINNT_AUTH_IDENTITY_W, Flags) == 44);

static_assert(VT_EMPTY == 0 && VT_NULL == 1 && VT_I2 == 2 && VT_I4 == 3 && VT_R4 == 4 && VT_R8 == 5 && VT_BSTR == 8);
static_assert(VT_DISPATCH == 9 && VT_BOOL == 11 && VT_VARIANT == 12 && VT_UNKNOWN == 13 && VT_I1 == 16 && VT_UI1 == 17);
static_assert(VT_UI2 == 18 && VT_UI4 == 19 && VT_ARRAY == 0x2000);
static_assert(CIM_EMPTY == 0 && CIM_SINT16 == 2 && CIM_SINT32 == 3 && CIM_REAL32 == 4 && CIM_REAL64 == 5);
static_assert(CIM_STRING == 8 && CIM_BOOLEAN == 11 && CIM_OBJECT == 13 && CIM_SINT8 == 16 && CIM_UINT8 == 17);
static_assert(CIM_UINT16 == 18 && CIM_UINT32 == 19 && CIM_SINT64 == 20 && CIM_UINT64 == 21 && CIM_DATETIME == 101);
static_assert(CIM_REFERENCE == 102 && CIM_CHAR16 == 103 && CIM_FLAG_ARRAY == 0x2000);

static_assert(FAILED(E_FAIL) && FAILED(WBEM_E_FAILED) && SUCCEEDED(S_FALSE) && SUCCEEDED(HRESULT{WBEM_S_NO_MORE_DATA}));
