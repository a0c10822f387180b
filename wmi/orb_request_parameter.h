#pragma once

#include "wmi/orb_wmi_variant.h"
#include "wmi/wmi_return.h"

namespace korvex {

/// An argument's name with the holder of its value.
class OrbRequestParameter {
public:
  OrbRequestParameter() = default;
  ~OrbRequestParameter();
  OrbRequestParameter(const OrbRequestParameter&) = delete;
  OrbRequestParameter& operator=(const OrbRequestParameter&) = delete;

  /// Copies the name; borrows the holder. 0, 1 (also without a name or a holder) or 4.
  wmiReturn RequestParamInitialize(const wchar_t* name, OrbWmiVariant* value);
  const wchar_t* GetName() const { return m_Name; }
  OrbWmiVariant* GetValue() const { return m_Value; }
  void cleanUp();

private:
  wchar_t* m_Name = nullptr;
  OrbWmiVariant* m_Value = nullptr;
};

} // namespace korvex
