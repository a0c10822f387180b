#pragma once

#include "simhost/cim.h"
#include "simhost/driver_model.h"
#include "simhost/repository.h"

namespace simhost {

/// Adds the classes of embedded objects that DSMs of this generation exchange; those that are there already stay.
void AddDriverDataClasses(Repository& repository, int generation);

/// The methods class of the DSM, with the methods of its generation.
CimClass DriverMethodsClass(const DriverModel& driver);

} // namespace simhost
