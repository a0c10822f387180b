#pragma once

#include "platform/com.h"

// The WMI client interfaces, whole and in vtable order.

#ifdef _WIN32
#include <wbemcli.h>

// There the codes and flags are unsigned enumerators of several types; used as what they are passed as, they compare,
// switch and combine as they do elsewhere.
#define WBEM_INFINITE (static_cast<LONG>(WBEM_INFINITE))
#define WBEM_FLAG_SHALLOW (static_cast<LONG>(WBEM_FLAG_SHALLOW))
#define WBEM_FLAG_FORWARD_ONLY (static_cast<LONG>(WBEM_FLAG_FORWARD_ONLY))
#define WBEM_S_NO_ERROR (static_cast<HRESULT>(WBEM_S_NO_ERROR))
#define WBEM_S_FALSE (static_cast<HRESULT>(WBEM_S_FALSE))
#define WBEM_S_NO_MORE_DATA (static_cast<HRESULT>(WBEM_S_NO_MORE_DATA))
#define WBEM_E_FAILED (static_cast<HRESULT>(WBEM_E_FAILED))
#define WBEM_E_NOT_FOUND (static_cast<HRESULT>(WBEM_E_NOT_FOUND))
#define WBEM_E_ACCESS_DENIED (static_cast<HRESULT>(WBEM_E_ACCESS_DENIED))
#define WBEM_E_PROVIDER_FAILURE (static_cast<HRESULT>(WBEM_E_PROVIDER_FAILURE))
#define WBEM_E_TYPE_MISMATCH (static_cast<HRESULT>(WBEM_E_TYPE_MISMATCH))
#define WBEM_E_OUT_OF_MEMORY (static_cast<HRESULT>(WBEM_E_OUT_OF_MEMORY))
#define WBEM_E_INVALID_PARAMETER (static_cast<HRESULT>(WBEM_E_INVALID_PARAMETER))
#define WBEM_E_NOT_SUPPORTED (static_cast<HRESULT>(WBEM_E_NOT_SUPPORTED))
#define WBEM_E_INVALID_NAMESPACE (static_cast<HRESULT>(WBEM_E_INVALID_NAMESPACE))
#define WBEM_E_INVALID_OBJECT (static_cast<HRESULT>(WBEM_E_INVALID_OBJECT))
#define WBEM_E_INVALID_CLASS (static_cast<HRESULT>(WBEM_E_INVALID_CLASS))
#define WBEM_E_TRANSPORT_FAILURE (static_cast<HRESULT>(WBEM_E_TRANSPORT_FAILURE))
#define WBEM_E_INVALID_OPERATION (static_cast<HRESULT>(WBEM_E_INVALID_OPERATION))
#define WBEM_E_INVALID_QUERY (static_cast<HRESULT>(WBEM_E_INVALID_QUERY))
#define WBEM_E_INVALID_QUERY_TYPE (static_cast<HRESULT>(WBEM_E_INVALID_QUERY_TYPE))
#define WBEM_E_UNEXPECTED (static_cast<HRESULT>(WBEM_E_UNEXPECTED))
#define WBEM_E_INVALID_OBJECT_PATH (static_cast<HRESULT>(WBEM_E_INVALID_OBJECT_PATH))
#define WBEM_E_INVALID_METHOD (static_cast<HRESULT>(WBEM_E_INVALID_METHOD))
#define WBEM_E_INVALID_METHOD_PARAMETERS (static_cast<HRESULT>(WBEM_E_INVALID_METHOD_PARAMETERS))
#else

using CIMTYPE = LONG;
enum CIMTYPE_ENUMERATION : int {
  CIM_EMPTY = 0,
  CIM_SINT16 = 2,
  CIM_SINT32 = 3,
  CIM_REAL32 = 4,
  CIM_REAL64 = 5,
  CIM_STRING = 8,
  CIM_BOOLEAN = 11,
  CIM_OBJECT = 13,
  CIM_SINT8 = 16,
  CIM_UINT8 = 17,
  CIM_UINT16 = 18,
  CIM_UINT32 = 19,
  CIM_SINT64 = 20,
  CIM_UINT64 = 21,
  CIM_DATETIME = 101,
  CIM_REFERENCE = 102,
  CIM_CHAR16 = 103,
  CIM_FLAG_ARRAY = 0x2000,
};

inline constexpr LONG WBEM_FLAG_SHALLOW = 1;
inline constexpr LONG WBEM_FLAG_FORWARD_ONLY = 0x20;
inline constexpr LONG WBEM_INFINITE = -1;

inline constexpr HRESULT WBEM_S_NO_ERROR = 0;
inline constexpr HRESULT WBEM_S_FALSE = 1;
inline constexpr HRESULT WBEM_S_NO_MORE_DATA = 0x00040005;
inline constexpr HRESULT WBEM_E_FAILED = static_cast<HRESULT>(0x80041001U);
inline constexpr HRESULT WBEM_E_NOT_FOUND = static_cast<HRESULT>(0x80041002U);
inline constexpr HRESULT WBEM_E_ACCESS_DENIED = static_cast<HRESULT>(0x80041003U);
inline constexpr HRESULT WBEM_E_PROVIDER_FAILURE = static_cast<HRESULT>(0x80041004U);
inline constexpr HRESULT WBEM_E_TYPE_MISMATCH = static_cast<HRESULT>(0x80041005U);
inline constexpr HRESULT WBEM_E_OUT_OF_MEMORY = static_cast<HRESULT>(0x80041006U);
inline constexpr HRESULT WBEM_E_INVALID_PARAMETER = static_cast<HRESULT>(0x80041008U);
inline constexpr HRESULT WBEM_E_NOT_SUPPORTED = static_cast<HRESULT>(0x8004100CU);
inline constexpr HRESULT WBEM_E_INVALID_NAMESPACE = static_cast<HRESULT>(0x8004100EU);
inline constexpr HRESULT WBEM_E_INVALID_OBJECT = static_cast<HRESULT>(0x8004100FU);
inline constexpr HRESULT WBEM_E_INVALID_CLASS = static_cast<HRESULT>(0x80041010U);
inline constexpr HRESULT WBEM_E_TRANSPORT_FAILURE = static_cast<HRESULT>(0x80041015U);
inline constexpr HRESULT WBEM_E_INVALID_OPERATION = static_cast<HRESULT>(0x80041016U);
inline constexpr HRESULT WBEM_E_INVALID_QUERY = static_cast<HRESULT>(0x80041017U);
inline constexpr HRESULT WBEM_E_INVALID_QUERY_TYPE = static_cast<HRESULT>(0x80041018U);
inline constexpr HRESULT WBEM_E_UNEXPECTED = static_cast<HRESULT>(0x8004101DU);
inline constexpr HRESULT WBEM_E_INVALID_OBJECT_PATH = static_cast<HRESULT>(0x8004103AU);
inline constexpr HRESULT WBEM_E_INVALID_METHOD = static_cast<HRESULT>(0x8004102EU);
inline constexpr HRESULT WBEM_E_INVALID_METHOD_PARAMETERS = static_cast<HRESULT>(0x8004102FU);

struct IWbemQualifierSet;
struct IWbemObjectSink;
struct IWbemCallResult;
struct IWbemContext;

inline constexpr CLSID CLSID_WbemLocator = {
    0x4590F811, 0x1D3A, 0x11D0, {0x89, 0x1F, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};
inline constexpr IID IID_IWbemClassObject = {
    0xDC12A681, 0x737F, 0x11CF, {0x88, 0x4D, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};
inline constexpr IID IID_IWbemLocator = {0xDC12A687, 0x737F, 0x11CF, {0x88, 0x4D, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};
inline constexpr IID IID_IWbemServices = {0x9556DC99, 0x828C, 0x11CF, {0xA3, 0x7E, 0x00, 0xAA, 0x00, 0x32, 0x40, 0xC7}};
inline constexpr IID IID_IEnumWbemClassObject = {
    0x027947E1, 0xD731, 0x11CE, {0xA3, 0x57, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01}};

/// A class definition or an instance.
struct IWbemClassObject : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetQualifierSet(IWbemQualifierSet** set) = 0;
  virtual HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type, LONG* flavor) = 0;
  virtual HRESULT STDMETHODCALLTYPE Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) = 0;
  virtual HRESULT STDMETHODCALLTYPE Delete(LPCWSTR name) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetNames(LPCWSTR qualifier, LONG flags, VARIANT* value, SAFEARRAY** names) = 0;
  virtual HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG flags) = 0;
  virtual HRESULT STDMETHODCALLTYPE Next(LONG flags, BSTR* name, VARIANT* value, CIMTYPE* type, LONG* flavor) = 0;
  virtual HRESULT STDMETHODCALLTYPE EndEnumeration() = 0;
  virtual HRESULT STDMETHODCALLTYPE GetPropertyQualifierSet(LPCWSTR property, IWbemQualifierSet** set) = 0;
  virtual HRESULT STDMETHODCALLTYPE Clone(IWbemClassObject** copy) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetObjectText(LONG flags, BSTR* text) = 0;
  virtual HRESULT STDMETHODCALLTYPE SpawnDerivedClass(LONG flags, IWbemClassObject** newClass) = 0;
  virtual HRESULT STDMETHODCALLTYPE SpawnInstance(LONG flags, IWbemClassObject** newInstance) = 0;
  virtual HRESULT STDMETHODCALLTYPE CompareTo(LONG flags, IWbemClassObject* other) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetPropertyOrigin(LPCWSTR name, BSTR* className) = 0;
  virtual HRESULT STDMETHODCALLTYPE InheritsFrom(LPCWSTR ancestor) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** inSignature,
                                              IWbemClassObject** outSignature) = 0;
  virtual HRESULT STDMETHODCALLTYPE PutMethod(LPCWSTR name, LONG flags, IWbemClassObject* inSignature,
                                              IWbemClassObject* outSignature) = 0;
  virtual HRESULT STDMETHODCALLTYPE DeleteMethod(LPCWSTR name) = 0;
  virtual HRESULT STDMETHODCALLTYPE BeginMethodEnumeration(LONG flags) = 0;
  virtual HRESULT STDMETHODCALLTYPE NextMethod(LONG flags, BSTR* name, IWbemClassObject** inSignature,
                                               IWbemClassObject** outSignature) = 0;
  virtual HRESULT STDMETHODCALLTYPE EndMethodEnumeration() = 0;
  virtual HRESULT STDMETHODCALLTYPE GetMethodQualifierSet(LPCWSTR method, IWbemQualifierSet** set) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetMethodOrigin(LPCWSTR method, BSTR* className) = 0;

protected:
  ~IWbemClassObject() = default;
};

struct IEnumWbemClassObject : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
  virtual HRESULT STDMETHODCALLTYPE Next(LONG timeout, ULONG count, IWbemClassObject** objects, ULONG* returned) = 0;
  virtual HRESULT STDMETHODCALLTYPE NextAsync(ULONG count, IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE Clone(IEnumWbemClassObject** copy) = 0;
  virtual HRESULT STDMETHODCALLTYPE Skip(LONG timeout, ULONG count) = 0;

protected:
  ~IEnumWbemClassObject() = default;
};

struct IWbemServices : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE OpenNamespace(const BSTR name, LONG flags, IWbemContext* context,
                                                  IWbemServices** workingNamespace, IWbemCallResult** result) = 0;
  virtual HRESULT STDMETHODCALLTYPE CancelAsyncCall(IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE QueryObjectSink(LONG flags, IWbemObjectSink** sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetObject(const BSTR path, LONG flags, IWbemContext* context,
                                              IWbemClassObject** object, IWbemCallResult** result) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetObjectAsync(const BSTR path, LONG flags, IWbemContext* context,
                                                   IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE PutClass(IWbemClassObject* object, LONG flags, IWbemContext* context,
                                             IWbemCallResult** result) = 0;
  virtual HRESULT STDMETHODCALLTYPE PutClassAsync(IWbemClassObject* object, LONG flags, IWbemContext* context,
                                                  IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE DeleteClass(const BSTR name, LONG flags, IWbemContext* context,
                                                IWbemCallResult** result) = 0;
  virtual HRESULT STDMETHODCALLTYPE DeleteClassAsync(const BSTR name, LONG flags, IWbemContext* context,
                                                     IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateClassEnum(const BSTR superclass, LONG flags, IWbemContext* context,
                                                    IEnumWbemClassObject** enumerator) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateClassEnumAsync(const BSTR superclass, LONG flags, IWbemContext* context,
                                                         IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject* instance, LONG flags, IWbemContext* context,
                                                IWbemCallResult** result) = 0;
  virtual HRESULT STDMETHODCALLTYPE PutInstanceAsync(IWbemClassObject* instance, LONG flags, IWbemContext* context,
                                                     IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE DeleteInstance(const BSTR path, LONG flags, IWbemContext* context,
                                                   IWbemCallResult** result) = 0;
  virtual HRESULT STDMETHODCALLTYPE DeleteInstanceAsync(const BSTR path, LONG flags, IWbemContext* context,
                                                        IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateInstanceEnum(const BSTR className, LONG flags, IWbemContext* context,
                                                       IEnumWbemClassObject** enumerator) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateInstanceEnumAsync(const BSTR className, LONG flags, IWbemContext* context,
                                                            IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR query, LONG flags, IWbemContext* context,
                                              IEnumWbemClassObject** enumerator) = 0;
  virtual HRESULT STDMETHODCALLTYPE ExecQueryAsync(const BSTR language, const BSTR query, LONG flags,
                                                   IWbemContext* context, IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE ExecNotificationQuery(const BSTR language, const BSTR query, LONG flags,
                                                          IWbemContext* context, IEnumWbemClassObject** enumerator) = 0;
  virtual HRESULT STDMETHODCALLTYPE ExecNotificationQueryAsync(const BSTR language, const BSTR query, LONG flags,
                                                               IWbemContext* context, IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR path, const BSTR method, LONG flags, IWbemContext* context,
                                               IWbemClassObject* inParameters, IWbemClassObject** outParameters,
                                               IWbemCallResult** result) = 0;
  virtual HRESULT STDMETHODCALLTYPE ExecMethodAsync(const BSTR path, const BSTR method, LONG flags,
                                                    IWbemContext* context, IWbemClassObject* inParameters,
                                                    IWbemObjectSink* sink) = 0;

protected:
  ~IWbemServices() = default;
};

struct IWbemLocator : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR networkResource, const BSTR user, const BSTR password,
                                                  const BSTR locale, LONG securityFlags, const BSTR authority,
                                                  IWbemContext* context, IWbemServices** services) = 0;

protected:
  ~IWbemLocator() = default;
};
#endif
