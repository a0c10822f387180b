#pragma once

#include "simhost/cim.h"
#include "simhost/object_path.h"
#include "simhost/provider.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The WMI repository of the namespace root\WMI: its classes, in the order added, and who provides them.

namespace simhost {

class Repository {
public:
  /// Adds a class with what provides its instances and methods (none: a class of embedded objects, which enumerates as
  /// empty). A class with a superclass, which must be there already, gets its properties and methods before its own.
  /// False when a class of that name is there already, which then stays as it is.
  bool AddClass(CimClass definition, std::shared_ptr<Provider> provider = nullptr);
  /// Removes a class; definitions and instances handed out stay valid.
  void RemoveClass(std::wstring_view name);

  /// The class of that name, or none.
  ClassRef FindClass(std::wstring_view name) const;
  /// The same for a class that must be there: throws std::invalid_argument when it is not.
  ClassRef RequireClass(std::wstring_view name) const;
  /// All classes in the order added.
  std::vector<ClassRef> Classes() const;

  /// Called before each call of a provider, with the repository's lock held (to take in what another run changed).
  void SetRefresh(std::function<void()> refresh) { m_refresh = std::move(refresh); }
  /// Called for each instance and each method's output on its way out, and for the objects embedded in them, with its
  /// position in its enumeration or list.
  using Override = std::function<void(CimObject& object, std::size_t index)>;
  void SetOverride(Override apply) { m_override = std::move(apply); }

  // The operations of the WMI service. Each gives an outcome whose delay the caller waits out.

  /// A class definition by name, or an instance by path.
  Outcome GetObject(std::wstring_view path, std::optional<CimObject>& object);
  /// The instances of a class and, when `deep`, of the classes derived from it.
  Outcome EnumerateInstances(std::wstring_view className, bool deep, std::vector<CimObject>& instances);
  /// `path` must name an existing instance (WBEM_E_NOT_FOUND); an unknown method gives WBEM_E_INVALID_METHOD; inputs
  /// are coerced or refused with WBEM_E_INVALID_METHOD_PARAMETERS. `output` stays none for a method without outputs.
  Outcome ExecuteMethod(std::wstring_view path, std::wstring_view method, const CimObject* input,
                        std::optional<CimObject>& output);
  /// The instance must exist (WBEM_E_NOT_FOUND).
  Outcome PutInstance(const CimObject& instance);
  /// "Select * From Meta_Class Where __SUPERCLASS = "..."": the classes derived from that one directly, definitions in
  /// the order added. Other queries give WBEM_E_INVALID_QUERY.
  Outcome Query(std::wstring_view text, std::vector<CimObject>& results);

private:
  struct Entry {
    ClassRef definition;
    std::shared_ptr<Provider> provider;
  };
  Entry* Find(std::wstring_view name) const;
  void CompleteDefinition(CimClass& definition) const;
  Outcome CollectInstances(const Entry& entry, std::vector<CimObject>& instances);
  Outcome FindInstance(const ObjectPath& path, Entry*& entry, std::optional<CimObject>& instance);
  bool CoerceInput(const MethodDefinition& method, const CimObject& given, CimObject& input) const;
  void ApplyOverrides(CimObject& object, std::size_t index) const;
  CimValue OverriddenValue(const CimValue& value) const;

  mutable std::recursive_mutex m_lock;
  std::vector<std::unique_ptr<Entry>> m_classes;
  std::map<std::wstring, Entry*, std::less<>> m_byName;
  std::function<void()> m_refresh;
  Override m_override;
};

} // namespace simhost
