#pragma once

#include "platform/wbem.h"
#include "wmi/wmi_return.h"

#include <cstdint>

namespace korvex {

/// One connection to a WMI namespace under the identity of the process.
class OrbWmiConnection {
public:
  OrbWmiConnection() = default;
  ~OrbWmiConnection();
  OrbWmiConnection(const OrbWmiConnection&) = delete;
  OrbWmiConnection& operator=(const OrbWmiConnection&) = delete;

  /// Connects, not secured yet; what an earlier Initialize left is released first. 0, 4, 5 or 6.
  wmiReturn Initialize(const wchar_t* nameSpace);
  /// Sets the security blanket of the services; 0 or 6.
  wmiReturn SetSecurity();
  /// Releases everything and clears the connected flag.
  void CloseConnection();
  /// Borrowed; none while not connected.
  IWbemServices* GetServices() const { return m_Services; }
  std::uint8_t IsConnected() const { return m_Connected; }
  std::uint8_t IsSecured() const { return m_Secured; }
  void cleanUp();

private:
  void ReleaseAll();
  void FreeNamespace();
  void ReleaseLocator();

  BSTR m_Namespace = nullptr;
  IWbemServices* m_Services = nullptr;
  IWbemLocator* m_Locator = nullptr;
  std::uint8_t m_Connected = 0;
  std::uint8_t m_Secured = 0;
};

} // namespace korvex
