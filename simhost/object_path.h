#pragma once

#include "simhost/cim.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// WMI object paths: CLASS, CLASS.Key="value",Other=3, CLASS="value", each with \\server\namespace: before it or not.

namespace simhost {

struct ObjectPath {
  struct KeyValue {
    std::wstring name; ///< empty in the short form CLASS="value"
    std::wstring value;
    bool isText; ///< given in quotes
  };
  std::wstring className;
  std::vector<KeyValue> keys; ///< none for the path of a class

  /// Whether the path's keys are the instance's, all of them. Texts are compared without regard to case.
  bool Names(const CimObject& instance) const;
};

/// The parts of a path; none for a text that is no path.
std::optional<ObjectPath> ParseObjectPath(std::wstring_view text);

/// Whether this is the namespace root\WMI on the local machine: "root\wmi" in any case, with "\\.\" before it or not.
bool IsServedNamespace(std::wstring_view path);

/// The class asked for by "Select * From Meta_Class Where __SUPERCLASS = "NAME"" (keywords without regard to case,
/// blanks free); none for any other query.
std::optional<std::wstring> ParseMetaClassQuery(std::wstring_view query);

/// A text as it stands in a path: in double quotes, backslashes doubled and quotes escaped.
std::wstring QuotedPathText(std::wstring_view text);

} // namespace simhost
