#pragma once

#include "platform/wbem.h"
#include "wmi/orb_wmi_connection.h"
#include "wmi/wmi_return.h"

#include <cstdint>

namespace korvex {

/// One WMI class of an open connection: its definition and its instances, or the results of a query.
class OrbWmiClass {
public:
  OrbWmiClass() = default;
  ~OrbWmiClass();
  OrbWmiClass(const OrbWmiClass&) = delete;
  OrbWmiClass& operator=(const OrbWmiClass&) = delete;

  /// Binds the class; without a name only the connection (as a query needs). What an earlier Initialize left is
  /// released first. 0, 1, 3, 4, 6 or 9.
  wmiReturn Initialize(OrbWmiConnection& connection, const wchar_t* className);
  /// The class definition, borrowed; none before Initialize.
  IWbemClassObject* GetInstanceClass() const { return m_ClassObject; }
  /// A clone of the instance enumerator that the caller owns (isClonedOut 1), or the shared result enumerator of a
  /// query (isClonedOut 0); none on failure.
  IEnumWbemClassObject* GetInstanceEnumerator(std::uint8_t& isClonedOut);
  /// The connection's services, borrowed; none without a connection.
  IWbemServices* GetServices() const;
  /// Makes a query's result the instance enumerator; takes over the reference.
  void setQueryInstance(IEnumWbemClassObject* enumerator);
  std::uint8_t IsQueryInstance() const { return m_QueryInstance; }

  /// Iterate the class's method or property names into `buffer` of `length` bytes, in the ANSI code page: 0 with a
  /// name, 2 at the end, 1, 4 or 5. A name that does not fit is cut to length - 1 bytes. The reset delivers the first
  /// name.
  wmiReturn ResetMethodName(char* buffer, std::uint32_t length);
  wmiReturn NextMethodName(char* buffer, std::uint32_t length);
  wmiReturn ResetPropertyName(char* buffer, std::uint32_t length);
  wmiReturn NextPropertyName(char* buffer, std::uint32_t length);

  /// Credentials and levels of the instance enumerator's blanket; the texts are copied. 0, or 4 with nothing changed.
  wmiReturn SetCredentials(const wchar_t* authority, const wchar_t* user, const wchar_t* password, DWORD authnLevel,
                           DWORD impLevel);

  void cleanUp();

private:
  void ReleaseClass();
  wmiReturn SecureInstances(IWbemServices* services);

  OrbWmiConnection* m_Connection = nullptr;
  IWbemClassObject* m_ClassObject = nullptr;
  IEnumWbemClassObject* m_InstanceEnumerator = nullptr;
  wchar_t* m_Authority = nullptr;
  wchar_t* m_User = nullptr;
  wchar_t* m_Password = nullptr;
  DWORD m_AuthnLevel = 0;
  DWORD m_ImpLevel = 0;
  std::uint8_t m_QueryInstance = 0;
};

} // namespace korvex
