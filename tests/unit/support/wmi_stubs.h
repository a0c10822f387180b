#pragma once

#include "platform/wbem.h"

// The WMI interfaces without what the fakes of the tests answer: every other call is not implemented.

namespace korvex {

#define KORVEX_UNANSWERED(method, ...)                                                                                 \
  HRESULT STDMETHODCALLTYPE method(__VA_ARGS__) override {                                                             \
    return E_NOTIMPL;                                                                                                  \
  }

class ClassObjectStub : public IWbemClassObject {
public:
  KORVEX_UNANSWERED(GetQualifierSet, IWbemQualifierSet**)
  KORVEX_UNANSWERED(Delete, LPCWSTR)
  KORVEX_UNANSWERED(GetNames, LPCWSTR, LONG, VARIANT*, SAFEARRAY**)
  KORVEX_UNANSWERED(EndEnumeration)
  KORVEX_UNANSWERED(GetPropertyQualifierSet, LPCWSTR, IWbemQualifierSet**)
  KORVEX_UNANSWERED(Clone, IWbemClassObject**)
  KORVEX_UNANSWERED(GetObjectText, LONG, BSTR*)
  KORVEX_UNANSWERED(SpawnDerivedClass, LONG, IWbemClassObject**)
  KORVEX_UNANSWERED(CompareTo, LONG, IWbemClassObject*)
  KORVEX_UNANSWERED(GetPropertyOrigin, LPCWSTR, BSTR*)
  KORVEX_UNANSWERED(InheritsFrom, LPCWSTR)
  KORVEX_UNANSWERED(PutMethod, LPCWSTR, LONG, IWbemClassObject*, IWbemClassObject*)
  KORVEX_UNANSWERED(DeleteMethod, LPCWSTR)
  KORVEX_UNANSWERED(EndMethodEnumeration)
  KORVEX_UNANSWERED(GetMethodQualifierSet, LPCWSTR, IWbemQualifierSet**)
  KORVEX_UNANSWERED(GetMethodOrigin, LPCWSTR, BSTR*)

protected:
  ~ClassObjectStub() = default;
};

class EnumeratorStub : public IEnumWbemClassObject {
public:
  KORVEX_UNANSWERED(NextAsync, ULONG, IWbemObjectSink*)
  KORVEX_UNANSWERED(Skip, LONG, ULONG)

protected:
  ~EnumeratorStub() = default;
};

class ServicesStub : public IWbemServices {
public:
  KORVEX_UNANSWERED(OpenNamespace, const BSTR, LONG, IWbemContext*, IWbemServices**, IWbemCallResult**)
  KORVEX_UNANSWERED(CancelAsyncCall, IWbemObjectSink*)
  KORVEX_UNANSWERED(QueryObjectSink, LONG, IWbemObjectSink**)
  KORVEX_UNANSWERED(GetObjectAsync, const BSTR, LONG, IWbemContext*, IWbemObjectSink*)
  KORVEX_UNANSWERED(PutClass, IWbemClassObject*, LONG, IWbemContext*, IWbemCallResult**)
  KORVEX_UNANSWERED(PutClassAsync, IWbemClassObject*, LONG, IWbemContext*, IWbemObjectSink*)
  KORVEX_UNANSWERED(DeleteClass, const BSTR, LONG, IWbemContext*, IWbemCallResult**)
  KORVEX_UNANSWERED(DeleteClassAsync, const BSTR, LONG, IWbemContext*, IWbemObjectSink*)
  KORVEX_UNANSWERED(CreateClassEnum, const BSTR, LONG, IWbemContext*, IEnumWbemClassObject**)
  KORVEX_UNANSWERED(CreateClassEnumAsync, const BSTR, LONG, IWbemContext*, IWbemObjectSink*)
  KORVEX_UNANSWERED(PutInstanceAsync, IWbemClassObject*, LONG, IWbemContext*, IWbemObjectSink*)
  KORVEX_UNANSWERED(DeleteInstance, const BSTR, LONG, IWbemContext*, IWbemCallResult**)
  KORVEX_UNANSWERED(DeleteInstanceAsync, const BSTR, LONG, IWbemContext*, IWbemObjectSink*)
  KORVEX_UNANSWERED(CreateInstanceEnumAsync, const BSTR, LONG, IWbemContext*, IWbemObjectSink*)
  KORVEX_UNANSWERED(ExecQueryAsync, const BSTR, const BSTR, LONG, IWbemContext*, IWbemObjectSink*)
  KORVEX_UNANSWERED(ExecNotificationQuery, const BSTR, const BSTR, LONG, IWbemContext*, IEnumWbemClassObject**)
  KORVEX_UNANSWERED(ExecNotificationQueryAsync, const BSTR, const BSTR, LONG, IWbemContext*, IWbemObjectSink*)
  KORVEX_UNANSWERED(ExecMethodAsync, const BSTR, const BSTR, LONG, IWbemContext*, IWbemClassObject*, IWbemObjectSink*)

protected:
  ~ServicesStub() = default;
};

#undef KORVEX_UNANSWERED

} // namespace korvex
