#pragma once

#include "wmi/orb_request_parameter.h"
#include "wmi/orb_wmi_class.h"
#include "wmi/orb_wmi_connection.h"
#include "wmi/orb_wmi_enumerator.h"
#include "wmi/wmi_return.h"

#include <cstdint>
#include <vector>

namespace korvex {

/// How far a method call came.
enum class MethodOutcome : std::uint8_t {
  kUnknown,  ///< not called with all of its arguments, or it failed for a reason of its way there
  kRefused,  ///< called with all of its arguments, which the provider refused
  kEmpty,    ///< carried out, without an output object
  kAnswered, ///< carried out, with an output object
};

/// One method call on an instance, or one WQL query. Used once.
class OrbWmiRequest {
public:
  OrbWmiRequest() = default;
  ~OrbWmiRequest();
  OrbWmiRequest(const OrbWmiRequest&) = delete;
  OrbWmiRequest& operator=(const OrbWmiRequest&) = delete;

  /// Describes a call of a method of `methodsClass`, which is borrowed; 0, 1 or 4.
  wmiReturn MethodRequest(const wchar_t* methodName, OrbWmiClass* methodsClass);
  /// Describes a query on `connection`; 0, 1, 4 or the status of binding the class (6 when the connection is not open).
  wmiReturn QueryRequest(const wchar_t* wqlText, OrbWmiConnection& connection);
  /// Adds an argument in the order of the calls; the holder is borrowed until the request has run. 0, 1 or 4.
  wmiReturn AddInputParameter(const wchar_t* name, OrbWmiVariant* value);
  wmiReturn AddOutputParameter(const wchar_t* name, OrbWmiVariant* value);
  /// Calls the method on the instance that `target` stands on and fills the output holders; 0, 1, 4, 5 or 9 (5 also
  /// without a target or a current instance).
  wmiReturn ExecMethod(OrbWmiEnumerator* target);
  /// How far ExecMethod came.
  MethodOutcome Outcome() const { return m_Outcome; }
  /// Runs the query and gives an enumerator on its first result, which the caller releases with platform::DeleteObject
  /// before this request; 0, 1, 4, 5 or 9.
  wmiReturn ExecQuery(OrbWmiEnumerator** enumeratorOut);
  void cleanUp();

private:
  void ForgetText();
  /// Deletes the class if it is the request's own.
  void ForgetClass();

  wchar_t* m_Text = nullptr;
  OrbWmiClass* m_Class = nullptr;
  std::uint8_t m_OwnsClass = 0;
  std::vector<OrbRequestParameter*> m_InputParameters;
  std::vector<OrbRequestParameter*> m_OutputParameters;
  MethodOutcome m_Outcome = MethodOutcome::kUnknown;
};

} // namespace korvex
