#pragma once

#include "platform/wbem.h"

#include <gtest/gtest.h>
#include <string>

namespace korvex {

/// A COM object of a test's own on the stack: it answers every interface but carries client security alone, remembers
/// the blanket set last, and counts the references that others hold, of which none may be left at its end.
class TestObject final : public IClientSecurity {
public:
  TestObject() = default;
  TestObject(const TestObject&) = delete;
  TestObject& operator=(const TestObject&) = delete;
  ~TestObject() { EXPECT_EQ(referencesHeld, 0U); }

  bool isMute = false;  ///< it answers no interface
  std::wstring blanket; ///< services, levels, capabilities and credentials
  ULONG referencesHeld = 0;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID /*riid*/, void** object) override {
    *object = isMute ? nullptr : this;
    referencesHeld += isMute ? 0 : 1;
    return isMute ? E_NOINTERFACE : S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++referencesHeld; }
  ULONG STDMETHODCALLTYPE Release() override { return --referencesHeld; }
  HRESULT STDMETHODCALLTYPE QueryBlanket(IUnknown*, DWORD*, DWORD*, OLECHAR**, DWORD*, DWORD*, void**,
                                         DWORD*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown*, DWORD authnService, DWORD authzService, OLECHAR*, DWORD authnLevel,
                                       DWORD impLevel, void* identity, DWORD capabilities) override {
    blanket.clear();
    for (const DWORD number : {authnService, authzService, authnLevel, impLevel, capabilities}) {
      blanket += std::to_wstring(number) + L" ";
    }
    if (const auto* block = static_cast<const SEC_WINNT_AUTH_IDENTITY_W*>(identity)) {
      blanket += Text(block->User, block->UserLength) + L"@" + Text(block->Domain, block->DomainLength) + L":" +
                 Text(block->Password, block->PasswordLength) + L" flags " + std::to_wstring(block->Flags);
    }
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE CopyProxy(IUnknown*, IUnknown**) override { return E_NOTIMPL; }

private:
  /// A part of the credentials; its length decides, not its terminator.
  static std::wstring Text(const void* text, ULONG length) {
    return text == nullptr ? L"(none)" : std::wstring(static_cast<const wchar_t*>(text), length);
  }
};

} // namespace korvex
