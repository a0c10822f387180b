#include "app/mpio/dsm_counters.h"

#include "app/channel/channel.h"
#include "app/cli/console/trace.h"
#include "platform/wbem.h"

namespace korvex {

namespace {

struct CounterProperty {
  const wchar_t* name;
  std::uint32_t DsmCounters::*counter;
};

constexpr CounterProperty kCounters[] = {
    {L"PathVerificationPeriod", &DsmCounters::PathVerificationPeriod},
    {L"RetryCount", &DsmCounters::RetryCount},
    {L"RetryInterval", &DsmCounters::RetryInterval},
    {L"PathVerifyEnabled", &DsmCounters::PathVerifyEnabled},
    {L"PDORemovePeriod", &DsmCounters::PDORemovePeriod},
};

bool OpenRegisteredDsms(MpioObjects& objects) {
  OrbWmiConnection& connection = gDsmChannel->connection;
  TracePrint("init MPIO_REGISTERED_DSM class\n");
  if (gDsmChannel->methodsClass.Initialize(connection, L"MPIO_REGISTERED_DSM") != kWmiSuccess) {
    return false;
  }
  TracePrint("init DSM_PARAMETERS class\n");
  if (objects.parametersClass.emplace().Initialize(connection, L"DSM_PARAMETERS") != kWmiSuccess) {
    return false;
  }
  TracePrint("init REGISTERED_DSM enumerator\n");
  if (objects.framework.emplace().Initialize(&gDsmChannel->methodsClass) != kWmiSuccess) {
    return false;
  }
  TracePrint("init array enumerator for DSM_PARAMETERS\n");
  OrbWmiEnumerator* dsms = nullptr;
  const wmiReturn status = objects.framework->InitArrayEnumerator(&*objects.parametersClass, L"DsmParameters", &dsms);
  objects.dsms.reset(dsms);
  return status == kWmiSuccess && dsms != nullptr;
}

/// Stands on the parameters of the DSM at hand; false when it is not among them.
bool FindDsm(OrbWmiEnumerator& dsms) {
  for (std::int32_t i = 0; dsms.GetElement(i) == kWmiSuccess; ++i) {
    std::uint64_t context = 0;
    if (dsms.GetProperty(L"DsmContext", &context, sizeof context) != kWmiSuccess) {
      continue;
    }
    TracePrint("dsmParameterContext=0x%x; gRequestedDsmContext=0x%x\n", static_cast<unsigned>(context),
               static_cast<unsigned>(gRequestedDsmContext));
    if (context == gRequestedDsmContext) {
      return true;
    }
  }
  return false;
}

/// A new counters object with these values becomes the held value; what cannot be written stays as it is.
bool BuildCounters(MpioObjects& objects, const DsmCounters& counters) {
  TracePrint("init DSM_COUNTERS class\n");
  if (objects.countersClass.emplace().Initialize(gDsmChannel->connection, L"DSM_COUNTERS") != kWmiSuccess) {
    return false;
  }
  OrbWmiEnumerator& object = objects.newCounters.emplace();
  if (object.InitializeInputEnumerator(&*objects.countersClass) != kWmiSuccess) {
    return false;
  }
  for (const CounterProperty& property : kCounters) {
    object.SetProperty(property.name, &(counters.*property.counter), sizeof(std::uint32_t));
  }
  const std::uint32_t reserved32 = 0;
  const std::uint64_t reserved64 = 0;
  object.SetProperty(L"Reserved32", &reserved32, sizeof reserved32);
  object.SetProperty(L"Reserved64", &reserved64, sizeof reserved64);
  IUnknown* instance = object.GetEnumeratorInterface();
  if (instance == nullptr) {
    TracePrint("Unable to set DSM counters enumerator interface\n");
    return false;
  }
  if (objects.newCountersHolder.emplace().SetProperty(instance, 0, CIM_OBJECT) != kWmiSuccess) {
    instance->Release();
    return false;
  }
  return true;
}

} // namespace

CountersStep ReadDsmCounters(MpioObjects& objects, DsmCounters& counters) {
  if (!OpenRegisteredDsms(objects)) {
    return CountersStep::kFailed;
  }
  if (!FindDsm(*objects.dsms)) {
    return CountersStep::kNotThere;
  }
  OrbWmiEnumerator* object = nullptr;
  const wmiReturn status = objects.dsms->InitUnknownEnumerator(L"DsmCounters", &object);
  objects.counters.reset(object);
  if (status != kWmiSuccess || object == nullptr) {
    return CountersStep::kNotThere;
  }
  for (const CounterProperty& property : kCounters) {
    std::uint32_t value = 0;
    if (object->GetProperty(property.name, &value, sizeof value) == kWmiSuccess) {
      counters.*property.counter = value;
    }
  }
  return CountersStep::kDone;
}

bool SetDsmCounters(MpioObjects& objects, const DsmCounters& counters) {
  TracePrint("init MPIO_WMI_METHODS class\n");
  if (objects.methodsClass.emplace().Initialize(gDsmChannel->connection, L"MPIO_WMI_METHODS") != kWmiSuccess) {
    return false;
  }
  TracePrint("init MPIO_WMI_METHODS enumerator\n");
  if (objects.target.emplace().Initialize(&*objects.methodsClass) != kWmiSuccess) {
    return false;
  }
  TracePrint("init new MPIO_WMI_METHODS request\n");
  OrbWmiRequest& request = objects.request.emplace();
  TracePrint("init new method request\n");
  if (request.MethodRequest(L"SetDSMCounters", &*objects.methodsClass) != kWmiSuccess) {
    return false;
  }
  TracePrint("set input property for Dsm context\n");
  if (objects.context.emplace().SetProperty(&gRequestedDsmContext, sizeof gRequestedDsmContext, CIM_UINT64) !=
      kWmiSuccess) {
    TracePrint("Unable to set DSM context property\n");
    return false;
  }
  return BuildCounters(objects, counters) &&
         request.AddInputParameter(L"DsmContext", &*objects.context) == kWmiSuccess &&
         request.AddInputParameter(L"DsmCounters", &*objects.newCountersHolder) == kWmiSuccess &&
         request.ExecMethod(&*objects.target) == kWmiSuccess;
}

} // namespace korvex
