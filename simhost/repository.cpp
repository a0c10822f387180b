#include "simhost/repository.h"

#include "simhost/text.h"

#include <algorithm>
#include <new>
#include <stdexcept>

namespace simhost {

namespace {

/// Calls the provider; what it throws becomes a provider failure, except that memory has run out.
template <class Call>
Outcome AskProvider(Call call) {
  try {
    return call();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {
    return {WBEM_E_PROVIDER_FAILURE};
  }
}

ClassRef ParametersClass(const std::vector<PropertyDefinition>& parameters, const std::wstring& method) {
  if (parameters.empty()) {
    return nullptr;
  }
  CimClass definition;
  definition.name = L"__PARAMETERS";
  definition.method = method;
  definition.properties = parameters;
  return std::make_shared<const CimClass>(std::move(definition));
}

template <class Definition>
void PutInherited(std::vector<Definition>& own, const std::vector<Definition>& inherited) {
  own.insert(own.begin(), inherited.begin(), inherited.end());
}

} // namespace

bool Repository::AddClass(CimClass definition, std::shared_ptr<Provider> provider) {
  const std::scoped_lock lock(m_lock);
  std::wstring folded = FoldedName(definition.name);
  if (m_byName.contains(folded)) {
    return false;
  }
  CompleteDefinition(definition);
  auto shared = std::make_shared<const CimClass>(std::move(definition));
  m_classes.push_back(std::make_unique<Entry>(Entry{std::move(shared), std::move(provider)}));
  m_byName.emplace(std::move(folded), m_classes.back().get());
  return true;
}

void Repository::CompleteDefinition(CimClass& definition) const {
  if (!definition.superclass.empty()) {
    const ClassRef superclass = RequireClass(definition.superclass);
    PutInherited(definition.properties, superclass->properties);
    PutInherited(definition.methods, superclass->methods);
    definition.ancestors = superclass->ancestors;
    definition.ancestors.insert(definition.ancestors.begin(), superclass->name);
  }
  for (MethodDefinition& method : definition.methods) {
    method.inputClass = ParametersClass(method.inputs, method.name);
    method.outputClass = ParametersClass(method.outputs, method.name);
  }
}

void Repository::RemoveClass(std::wstring_view name) {
  const std::scoped_lock lock(m_lock);
  const auto found = m_byName.find(FoldedName(name));
  if (found == m_byName.end()) {
    return;
  }
  std::erase_if(m_classes, [&](const std::unique_ptr<Entry>& entry) { return entry.get() == found->second; });
  m_byName.erase(found);
}

Repository::Entry* Repository::Find(std::wstring_view name) const {
  const auto found = m_byName.find(FoldedName(name));
  return found == m_byName.end() ? nullptr : found->second;
}

ClassRef Repository::FindClass(std::wstring_view name) const {
  const std::scoped_lock lock(m_lock);
  const Entry* entry = Find(name);
  return entry == nullptr ? nullptr : entry->definition;
}

ClassRef Repository::RequireClass(std::wstring_view name) const {
  ClassRef definition = FindClass(name);
  if (definition == nullptr) {
    throw std::invalid_argument("no class " + Utf8FromWide(name));
  }
  return definition;
}

std::vector<ClassRef> Repository::Classes() const {
  const std::scoped_lock lock(m_lock);
  std::vector<ClassRef> classes;
  for (const std::unique_ptr<Entry>& entry : m_classes) {
    classes.push_back(entry->definition);
  }
  return classes;
}

Outcome Repository::CollectInstances(const Entry& entry, std::vector<CimObject>& instances) {
  if (entry.provider == nullptr) {
    return {};
  }
  const Outcome outcome = AskProvider([&] {
    if (m_refresh) {
      m_refresh();
    }
    return entry.provider->EnumerateInstances(entry.definition, instances);
  });
  if (FAILED(outcome.result)) {
    instances.clear();
  }
  return outcome;
}

Outcome Repository::EnumerateInstances(std::wstring_view className, bool deep, std::vector<CimObject>& instances) {
  const std::scoped_lock lock(m_lock);
  const Entry* asked = Find(className);
  if (asked == nullptr) {
    return {WBEM_E_INVALID_CLASS};
  }
  Outcome whole;
  for (const std::unique_ptr<Entry>& entry : m_classes) {
    if (entry.get() != asked && !(deep && entry->definition->IsA(className))) {
      continue;
    }
    std::vector<CimObject> own;
    const Outcome outcome = CollectInstances(*entry, own);
    whole.delay += outcome.delay;
    if (FAILED(outcome.result)) {
      return {outcome.result, whole.delay};
    }
    for (std::size_t i = 0; i < own.size(); ++i) {
      ApplyOverrides(own[i], i);
      instances.push_back(std::move(own[i]));
    }
  }
  return whole;
}

Outcome Repository::FindInstance(const ObjectPath& path, Entry*& entry, std::optional<CimObject>& instance) {
  entry = Find(path.className);
  if (entry == nullptr) {
    return {WBEM_E_NOT_FOUND};
  }
  std::vector<CimObject> instances;
  Outcome outcome = CollectInstances(*entry, instances);
  if (FAILED(outcome.result)) {
    return outcome;
  }
  const auto found = std::find_if(instances.begin(), instances.end(),
                                  [&](const CimObject& candidate) { return path.Names(candidate); });
  if (found == instances.end()) {
    outcome.result = WBEM_E_NOT_FOUND;
  } else {
    instance = std::move(*found);
  }
  return outcome;
}

Outcome Repository::GetObject(std::wstring_view path, std::optional<CimObject>& object) {
  const std::scoped_lock lock(m_lock);
  const std::optional<ObjectPath> parsed = ParseObjectPath(path);
  if (!parsed) {
    return {WBEM_E_INVALID_OBJECT_PATH};
  }
  if (parsed->keys.empty()) {
    const Entry* entry = Find(parsed->className);
    if (entry == nullptr) {
      return {WBEM_E_NOT_FOUND};
    }
    object.emplace(entry->definition, true);
    return {};
  }
  Entry* entry = nullptr;
  const Outcome outcome = FindInstance(*parsed, entry, object);
  if (object) {
    ApplyOverrides(*object, 0);
  }
  return outcome;
}

bool Repository::CoerceInput(const MethodDefinition& method, const CimObject& given, CimObject& input) const {
  for (std::size_t i = 0; i < given.Count(); ++i) {
    const std::optional<std::size_t> index = method.inputClass->PropertyIndex(given.Class()->properties[i].name);
    if (!index) {
      return false;
    }
    const PropertyDefinition& parameter = method.inputClass->properties[*index];
    const CimValue& value = given.ValueAt(i);
    if (!FitsType(value, parameter.type)) {
      return false;
    }
    const CimObject* embedded = value.IfObject();
    if (embedded != nullptr && !parameter.embeddedClass.empty() && !embedded->Class()->IsA(parameter.embeddedClass)) {
      return false;
    }
    input.Set(parameter.name, value);
  }
  return true;
}

Outcome Repository::ExecuteMethod(std::wstring_view path, std::wstring_view method, const CimObject* input,
                                  std::optional<CimObject>& output) {
  const std::scoped_lock lock(m_lock);
  const std::optional<ObjectPath> parsed = ParseObjectPath(path);
  if (!parsed || parsed->keys.empty()) {
    return {WBEM_E_INVALID_OBJECT_PATH};
  }
  Entry* entry = nullptr;
  std::optional<CimObject> instance;
  const Outcome found = FindInstance(*parsed, entry, instance);
  if (FAILED(found.result)) {
    return found;
  }
  const MethodDefinition* definition = entry->definition->FindMethod(method);
  if (definition == nullptr) {
    return {WBEM_E_INVALID_METHOD};
  }
  std::optional<CimObject> arguments;
  if (input != nullptr && definition->inputClass != nullptr) {
    arguments.emplace(definition->inputClass);
    if (!CoerceInput(*definition, *input, *arguments)) {
      return {WBEM_E_INVALID_METHOD_PARAMETERS};
    }
  }
  std::optional<CimObject> answer;
  if (definition->outputClass != nullptr) {
    answer.emplace(definition->outputClass);
  }
  const MethodCall call{*instance, *definition, arguments ? &*arguments : nullptr};
  Outcome outcome = AskProvider([&] { return entry->provider->ExecuteMethod(call, answer ? &*answer : nullptr); });
  outcome.delay += found.delay;
  if (SUCCEEDED(outcome.result) && answer) {
    ApplyOverrides(*answer, 0);
    output = std::move(answer);
  }
  return outcome;
}

Outcome Repository::PutInstance(const CimObject& instance) {
  const std::scoped_lock lock(m_lock);
  const std::optional<std::wstring> path = instance.IsDefinition() ? std::nullopt : instance.RelativePath();
  const std::optional<ObjectPath> parsed = path ? ParseObjectPath(*path) : std::nullopt;
  if (!parsed) {
    return {WBEM_E_INVALID_OBJECT};
  }
  Entry* entry = nullptr;
  std::optional<CimObject> existing;
  const Outcome found = FindInstance(*parsed, entry, existing);
  if (FAILED(found.result)) {
    return found;
  }
  Outcome outcome = AskProvider([&] { return entry->provider->PutInstance(instance); });
  outcome.delay += found.delay;
  return outcome;
}

Outcome Repository::Query(std::wstring_view text, std::vector<CimObject>& results) {
  const std::scoped_lock lock(m_lock);
  const std::optional<std::wstring> superclass = ParseMetaClassQuery(text);
  if (!superclass) {
    return {WBEM_E_INVALID_QUERY};
  }
  for (const std::unique_ptr<Entry>& entry : m_classes) {
    if (EqualNames(entry->definition->superclass, *superclass)) {
      results.emplace_back(entry->definition, true);
    }
  }
  return {};
}

void Repository::ApplyOverrides(CimObject& object, std::size_t index) const {
  if (!m_override) {
    return;
  }
  m_override(object, index);
  for (std::size_t i = 0; i < object.Count(); ++i) {
    const CimValue& value = object.ValueAt(i);
    if (value.IfObject() != nullptr || value.IfArray() != nullptr) {
      object.Force(i, OverriddenValue(value), object.TypeAt(i));
    }
  }
}

CimValue Repository::OverriddenValue(const CimValue& value) const {
  const auto overridden = [&](const CimObject& original, std::size_t index) {
    CimObject copy = original;
    ApplyOverrides(copy, index);
    return CimValue::Embed(std::move(copy));
  };
  if (const CimObject* object = value.IfObject()) {
    return overridden(*object, 0);
  }
  std::vector<CimValue> elements = *value.IfArray();
  for (std::size_t i = 0; i < elements.size(); ++i) {
    if (const CimObject* element = elements[i].IfObject()) {
      elements[i] = overridden(*element, i);
    }
  }
  return CimValue::Array(std::move(elements));
}

} // namespace simhost
