#pragma once

#include "simhost/module_model.h"
#include "simhost/repository.h"

#include <vector>

// What a DSM of interface generation 1 answers about an array module.

namespace simhost {

/// Adds the classes of the answers; those that are there already stay.
void AddModuleClasses(Repository& repository);
/// Appends the methods that give them.
void AppendModuleMethods(std::vector<MethodDefinition>& methods);

/// The answers' objects.
CimObject AnswerModule(const Repository& repository, const ModuleModel& module);
CimObject AnswerControllers(const Repository& repository, const ModuleModel& module);
CimObject AnswerDisks(const Repository& repository, const ModuleModel& module);

} // namespace simhost
