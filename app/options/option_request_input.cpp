#include "app/options/option_request_input.h"

#include "app/channel/channel.h"
#include "app/cli/console/bounded_text.h"
#include "app/cli/console/trace.h"
#include "app/options/option_records.h"
#include "platform/wbem.h"
#include "wmi/orb_wmi_array_enumerator.h"
#include "wmi/orb_wmi_class.h"

#include <algorithm>
#include <cstring>

namespace korvex {

namespace {

/// A keyword as it is sent: padded with blanks, terminated.
constexpr int kSentKeywordSize = 42;

wmiReturn SetNumber(OrbWmiEnumerator& object, const wchar_t* name, std::uint32_t number) {
  return object.SetProperty(name, &number, sizeof number);
}

struct Property {
  const wchar_t* name;
  std::uint32_t value;
};

/// Sets the properties in their order; the status of the first that fails.
template <std::size_t count>
wmiReturn SetNumbers(OrbWmiEnumerator& object, const Property (&properties)[count]) {
  for (const Property& property : properties) {
    const wmiReturn status = SetNumber(object, property.name, property.value);
    if (status != kWmiSuccess) {
      return status;
    }
  }
  return kWmiSuccess;
}

wmiReturn SetHeader(OrbWmiEnumerator& object, const OptionRequestRecord& record) {
  TracePrint("VRXDSM_OPTION_REQUEST\n");
  TracePrint("Magic-0x%x\n", static_cast<unsigned>(record.Magic));
  TracePrint("RequestType-0x%x\n", static_cast<unsigned>(record.RequestType));
  TracePrint("BufferSize-0x%x\n", static_cast<unsigned>(record.BufferSize));
  TracePrint("BytesTransferred-0x%x\n", static_cast<unsigned>(record.BytesTransferred));
  TracePrint("TotalBytesNeeded-0x%x\n", static_cast<unsigned>(record.TotalBytesNeeded));
  return SetNumbers(object, {{L"Version", 0},
                             {L"Magic", record.Magic},
                             {L"RequestType", record.RequestType},
                             {L"BufferSize", record.BufferSize},
                             {L"BytesTransferred", record.BytesTransferred},
                             {L"TotalBytesNeeded", record.TotalBytesNeeded},
                             {L"Pad", 0}});
}

void TraceDetail(const OptionDetailRecord& detail) {
  TracePrint("VRXDSM_OPTION_DETAIL\n");
  TracePrint("Status-0x%x\n", static_cast<unsigned>(detail.Status));
  TracePrint("Value-0x%x\n", static_cast<unsigned>(detail.Value));
  TracePrint("DefaultValue-0x%x\n", static_cast<unsigned>(detail.DefaultValue));
  TracePrint("MinimumValue-0x%x\n", static_cast<unsigned>(detail.MinimumValue));
  TracePrint("MaximumValue-0x%x\n", static_cast<unsigned>(detail.MaximumValue));
}

wmiReturn SetDetail(OrbWmiEnumerator& element, const OptionDetailRecord& detail) {
  wmiReturn status = SetNumbers(element, {{L"Status", detail.Status},
                                          {L"Value", detail.Value},
                                          {L"DefaultValue", detail.DefaultValue},
                                          {L"MinimumValue", detail.MinimumValue},
                                          {L"MaximumValue", detail.MaximumValue}});
  if (status != kWmiSuccess) {
    return status;
  }
  char keyword[kSentKeywordSize];
  BoundedFormat(keyword, sizeof keyword, "%-*s", kSentKeywordSize, detail.Keyword);
  TracePrint("Keyword-'%s'\n", keyword);
  status = element.SetProperty(L"Keyword", keyword, sizeof keyword);
  return status == kWmiSuccess ? SetNumbers(element, {{L"Version", 0}, {L"Pad", 0}}) : status;
}

/// One more element of the list; without a detail a blank one.
wmiReturn AddDetail(OrbWmiArrayEnumerator& list, const OptionDetailRecord* detail) {
  wmiReturn status = list.NewElementInstance();
  if (status != kWmiSuccess) {
    return status;
  }
  if (detail != nullptr) {
    TraceDetail(*detail);
  }
  static constexpr OptionDetailRecord kBlank = {};
  status = SetDetail(list, detail == nullptr ? kBlank : *detail);
  std::uint32_t place = 0;
  return status == kWmiSuccess ? list.SaveElementInstance(&place) : status;
}

wmiReturn SetDetails(OrbWmiEnumerator& object, const OptionRequestRecord& record) {
  const bool hasDetails = record.details != nullptr && record.BufferSize != 0;
  const std::uint32_t count = hasDetails ? std::min(record.BufferSize / kOptionDetailBytes, record.detailCount) : 1;
  TracePrint("NumOptionDetails-0x%x\n", static_cast<unsigned>(count));
  wmiReturn status = SetNumber(object, L"NumOptionDetails", count);
  if (status != kWmiSuccess) {
    return status;
  }
  OrbWmiClass detailClass;
  status = detailClass.Initialize(gDsmChannel->connection, L"VRXDSM_OPTION_DETAIL");
  if (status != kWmiSuccess) {
    return status;
  }
  OrbWmiArrayEnumerator list;
  status = list.Initialize(&detailClass, count);
  for (std::uint32_t i = 0; status == kWmiSuccess && i < count; ++i) {
    status = AddDetail(list, hasDetails ? &record.details[i] : nullptr);
  }
  return status == kWmiSuccess ? object.SetProperty(L"OptionDetailList", list.GetSafeArray(), sizeof(void*)) : status;
}

const OptionRequestRecord* RecordOf(void* argument, wmiReturn& status) {
  std::uint64_t address = 0;
  status = static_cast<OrbWmiVariant*>(argument)->GetProperty(&address, sizeof address, CIM_UINT64);
  const OptionRequestRecord* record = nullptr;
  static_assert(sizeof(void*) == sizeof address);
  std::memcpy(&record, &address, sizeof address);
  if (status == kWmiSuccess && record == nullptr) {
    status = kWmiNotDefined;
  }
  return record;
}

} // namespace

wmiReturn BuildOptionRequest(void* argument, OrbWmiVariant& input) {
  wmiReturn status = kWmiSuccess;
  const OptionRequestRecord* record = RecordOf(argument, status);
  if (status != kWmiSuccess) {
    return status;
  }
  OrbWmiClass requestClass;
  status = requestClass.Initialize(gDsmChannel->connection, L"VRXDSM_OPTION_REQUEST");
  if (status != kWmiSuccess) {
    return status;
  }
  OrbWmiEnumerator object;
  status = object.InitializeInputEnumerator(&requestClass);
  if (status != kWmiSuccess) {
    return status;
  }
  status = SetHeader(object, *record);
  if (status != kWmiSuccess) {
    return status;
  }
  status = SetDetails(object, *record);
  if (status != kWmiSuccess) {
    return status;
  }
  IUnknown* instance = object.GetEnumeratorInterface();
  if (instance == nullptr) {
    return kWmiRequestFailed;
  }
  status = input.SetProperty(instance, 0, CIM_OBJECT);
  if (status != kWmiSuccess) {
    instance->Release();
  }
  return status;
}

} // namespace korvex
