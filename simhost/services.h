#pragma once

#include "simhost/com_object.h"

#include <optional>
#include <vector>

// IWbemLocator and IWbemServices over the host's repository.

namespace simhost {

/// The part of IWbemServices that the host does not carry: every method gives E_NOTIMPL.
class ServicesBase : public ComObject<IWbemServices> {
public:
  using ComObject::ComObject;

  HRESULT STDMETHODCALLTYPE OpenNamespace(const BSTR /*name*/, LONG /*flags*/, IWbemContext* /*context*/,
                                          IWbemServices** /*workingNamespace*/, IWbemCallResult** /*result*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CancelAsyncCall(IWbemObjectSink* /*sink*/) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE QueryObjectSink(LONG /*flags*/, IWbemObjectSink** /*sink*/) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetObjectAsync(const BSTR /*path*/, LONG /*flags*/, IWbemContext* /*context*/,
                                           IWbemObjectSink* /*sink*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE PutClass(IWbemClassObject* /*object*/, LONG /*flags*/, IWbemContext* /*context*/,
                                     IWbemCallResult** /*result*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE PutClassAsync(IWbemClassObject* /*object*/, LONG /*flags*/, IWbemContext* /*context*/,
                                          IWbemObjectSink* /*sink*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DeleteClass(const BSTR /*name*/, LONG /*flags*/, IWbemContext* /*context*/,
                                        IWbemCallResult** /*result*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DeleteClassAsync(const BSTR /*name*/, LONG /*flags*/, IWbemContext* /*context*/,
                                             IWbemObjectSink* /*sink*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CreateClassEnum(const BSTR /*superclass*/, LONG /*flags*/, IWbemContext* /*context*/,
                                            IEnumWbemClassObject** /*enumerator*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CreateClassEnumAsync(const BSTR /*superclass*/, LONG /*flags*/, IWbemContext* /*context*/,
                                                 IWbemObjectSink* /*sink*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE PutInstanceAsync(IWbemClassObject* /*instance*/, LONG /*flags*/, IWbemContext* /*context*/,
                                             IWbemObjectSink* /*sink*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DeleteInstance(const BSTR /*path*/, LONG /*flags*/, IWbemContext* /*context*/,
                                           IWbemCallResult** /*result*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DeleteInstanceAsync(const BSTR /*path*/, LONG /*flags*/, IWbemContext* /*context*/,
                                                IWbemObjectSink* /*sink*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CreateInstanceEnumAsync(const BSTR /*className*/, LONG /*flags*/, IWbemContext* /*context*/,
                                                    IWbemObjectSink* /*sink*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecQueryAsync(const BSTR /*language*/, const BSTR /*query*/, LONG /*flags*/,
                                           IWbemContext* /*context*/, IWbemObjectSink* /*sink*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecNotificationQuery(const BSTR /*language*/, const BSTR /*query*/, LONG /*flags*/,
                                                  IWbemContext* /*context*/,
                                                  IEnumWbemClassObject** /*enumerator*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecNotificationQueryAsync(const BSTR /*language*/, const BSTR /*query*/, LONG /*flags*/,
                                                       IWbemContext* /*context*/, IWbemObjectSink* /*sink*/) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecMethodAsync(const BSTR /*path*/, const BSTR /*method*/, LONG /*flags*/,
                                            IWbemContext* /*context*/, IWbemClassObject* /*inParameters*/,
                                            IWbemObjectSink* /*sink*/) override {
    return E_NOTIMPL;
  }
};

/// A connection to root\WMI. Calls are synchronous: a place for a call result is refused, and so are flags that ask for
/// more.
class Services final : public ServicesBase {
public:
  explicit Services(std::shared_ptr<Host> host) : ServicesBase(std::move(host)) {}

  HRESULT STDMETHODCALLTYPE GetObject(const BSTR path, LONG flags, IWbemContext* context, IWbemClassObject** object,
                                      IWbemCallResult** result) override;
  HRESULT STDMETHODCALLTYPE CreateInstanceEnum(const BSTR className, LONG flags, IWbemContext* context,
                                               IEnumWbemClassObject** enumerator) override;
  HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR query, LONG flags, IWbemContext* context,
                                      IEnumWbemClassObject** enumerator) override;
  HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR path, const BSTR method, LONG flags, IWbemContext* context,
                                       IWbemClassObject* inParameters, IWbemClassObject** outParameters,
                                       IWbemCallResult** result) override;
  HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject* instance, LONG flags, IWbemContext* context,
                                        IWbemCallResult** result) override;

private:
  ~Services() override = default;

  HRESULT HandOut(std::wstring name, const Outcome& outcome, std::vector<CimObject> objects, LONG flags,
                  IEnumWbemClassObject** enumerator) const;
};

class Locator final : public ComObject<IWbemLocator> {
public:
  explicit Locator(std::shared_ptr<Host> host) : ComObject(std::move(host)) {}

  HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR networkResource, const BSTR user, const BSTR password,
                                          const BSTR locale, LONG securityFlags, const BSTR authority,
                                          IWbemContext* context, IWbemServices** services) override;

private:
  ~Locator() override = default;
};

} // namespace simhost
