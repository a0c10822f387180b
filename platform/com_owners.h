#pragma once

#include "platform/com.h"

#include <utility>

// Owners of COM values: move-only, without implicit conversions, releasing at the end of their life.

namespace platform {

/// Owns one reference to an interface.
template <class T>
class ComPtr {
public:
  ComPtr() = default;
  /// Takes over the reference that the caller holds.
  explicit ComPtr(T* owned) noexcept : m_pointer(owned) {}
  ComPtr(ComPtr&& other) noexcept : m_pointer(other.detach()) {}
  ComPtr& operator=(ComPtr&& other) noexcept {
    reset(other.detach());
    return *this;
  }
  ComPtr(const ComPtr&) = delete;
  ComPtr& operator=(const ComPtr&) = delete;
  ~ComPtr() { reset(); }

  T* get() const noexcept { return m_pointer; }
  T* operator->() const noexcept { return m_pointer; }
  explicit operator bool() const noexcept { return m_pointer != nullptr; }

  /// The address for a call that fills it; what was held is released first.
  T** put() noexcept {
    reset();
    return &m_pointer;
  }
  /// The same for QueryInterface and CoCreateInstance.
  void** putVoid() noexcept { return reinterpret_cast<void**>(put()); }

  /// Releases what is held and takes over `owned`.
  void reset(T* owned = nullptr) noexcept {
    T* before = std::exchange(m_pointer, owned);
    if (before != nullptr) {
      before->Release();
    }
  }
  /// Hands the reference to the caller.
  T* detach() noexcept { return std::exchange(m_pointer, nullptr); }

private:
  T* m_pointer = nullptr;
};

/// Owns a BSTR; empty when its text was none or could not be allocated.
class Bstr {
public:
  Bstr() = default;
  explicit Bstr(const wchar_t* text) noexcept : m_text(SysAllocString(text)) {}
  Bstr(Bstr&& other) noexcept : m_text(std::exchange(other.m_text, nullptr)) {}
  Bstr& operator=(Bstr&& other) noexcept {
    reset(std::exchange(other.m_text, nullptr));
    return *this;
  }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  ~Bstr() { reset(); }

  BSTR get() const noexcept { return m_text; }
  explicit operator bool() const noexcept { return m_text != nullptr; }
  BSTR* put() noexcept {
    reset();
    return &m_text;
  }
  void reset(BSTR owned = nullptr) noexcept { SysFreeString(std::exchange(m_text, owned)); }
  BSTR detach() noexcept { return std::exchange(m_text, nullptr); }

private:
  BSTR m_text = nullptr;
};

/// Owns a VARIANT and what it holds.
class Variant {
public:
  Variant() noexcept { VariantInit(&m_variant); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  ~Variant() { VariantClear(&m_variant); }

  VARIANT& get() noexcept { return m_variant; }
  const VARIANT& get() const noexcept { return m_variant; }
  VARIANT* put() noexcept {
    VariantClear(&m_variant);
    return &m_variant;
  }

private:
  VARIANT m_variant;
};

} // namespace platform
