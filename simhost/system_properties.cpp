#include "simhost/system_properties.h"

#include "simhost/text.h"

#include <algorithm>
#include <iterator>

namespace simhost {

namespace {

constexpr std::wstring_view kNamespace = L"root\\WMI";

CimValue RelativePathValue(const CimObject& object) {
  std::optional<std::wstring> path = object.RelativePath();
  return path ? CimValue(*std::move(path)) : CimValue();
}

CimValue PathValue(const CimObject& object, std::wstring_view server) {
  const std::optional<std::wstring> path = object.RelativePath();
  return path ? CimValue(L"\\\\" + std::wstring(server) + L"\\" + std::wstring(kNamespace) + L":" + *path) : CimValue();
}

TypedValue Text(std::wstring_view text) {
  return {std::wstring(text), CIM_STRING};
}

struct Row {
  std::wstring_view name;
  TypedValue (*read)(const CimObject& object, std::wstring_view server);
};

constexpr Row kRows[] = {
    {L"__GENUS",
     [](const CimObject& object, std::wstring_view) {
       return TypedValue{object.IsDefinition() ? 1 : 2, CIM_SINT32};
     }},
    {L"__CLASS", [](const CimObject& object, std::wstring_view) { return Text(object.Class()->name); }},
    {L"__SUPERCLASS",
     [](const CimObject& object, std::wstring_view) {
       const std::wstring& superclass = object.Class()->superclass;
       return superclass.empty() ? TypedValue{{}, CIM_STRING} : Text(superclass);
     }},
    {L"__DYNASTY",
     [](const CimObject& object, std::wstring_view) {
       const CimClass& definition = *object.Class();
       return Text(definition.ancestors.empty() ? definition.name : definition.ancestors.back());
     }},
    {L"__RELPATH",
     [](const CimObject& object, std::wstring_view) {
       return TypedValue{RelativePathValue(object), CIM_STRING};
     }},
    {L"__PROPERTY_COUNT",
     [](const CimObject& object, std::wstring_view) {
       return TypedValue{object.Count(), CIM_SINT32};
     }},
    {L"__DERIVATION",
     [](const CimObject& object, std::wstring_view) {
       const std::vector<std::wstring>& ancestors = object.Class()->ancestors;
       return TypedValue{CimValue::Array({ancestors.begin(), ancestors.end()}), CIM_STRING | CIM_FLAG_ARRAY};
     }},
    {L"__SERVER", [](const CimObject&, std::wstring_view server) { return Text(server); }},
    {L"__NAMESPACE", [](const CimObject&, std::wstring_view) { return Text(kNamespace); }},
    {L"__PATH",
     [](const CimObject& object, std::wstring_view server) {
       return TypedValue{PathValue(object, server), CIM_STRING};
     }},
};

} // namespace

std::span<const std::wstring_view> SystemPropertyNames() {
  static const std::vector<std::wstring_view> names = [] {
    std::vector<std::wstring_view> collected;
    std::transform(std::begin(kRows), std::end(kRows), std::back_inserter(collected),
                   [](const Row& row) { return row.name; });
    return collected;
  }();
  return names;
}

std::optional<TypedValue> SystemProperty(const CimObject& object, std::wstring_view name, std::wstring_view server) {
  const auto found =
      std::find_if(std::begin(kRows), std::end(kRows), [&](const Row& row) { return EqualNames(row.name, name); });
  return found == std::end(kRows) ? std::nullopt : std::optional(found->read(object, server));
}

} // namespace simhost
