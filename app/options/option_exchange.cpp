#include "app/options/option_exchange.h"

#include "app/channel/channel.h"
#include "app/channel/ioctl.h"
#include "app/channel/request_codes.h"
#include "app/cli/console/bounded_text.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/trace.h"
#include "app/options/option_records.h"
#include "platform/allocation.h"
#include "platform/wbem.h"
#include "wmi/orb_wmi_class.h"
#include "wmi/orb_wmi_enumerator.h"

#include <utility>

namespace korvex {

namespace {

/// Sends the record; the answer comes back in `holder`.
bool SendRecord(OptionRequestRecord* record, OrbWmiVariant& holder) {
  const std::uint64_t address = reinterpret_cast<std::uintptr_t>(record);
  return holder.SetProperty(&address, sizeof address, CIM_UINT64) == kWmiSuccess &&
         Ioctl(request::kOptionControlRequest, &holder) != kIoctlFailed;
}

void ReadHeader(OrbWmiEnumerator& answer, OptionRequestRecord& record) {
  answer.GetProperty(L"Magic", &record.Magic, sizeof record.Magic);
  answer.GetProperty(L"RequestType", &record.RequestType, sizeof record.RequestType);
  answer.GetProperty(L"BufferSize", &record.BufferSize, sizeof record.BufferSize);
  answer.GetProperty(L"BytesTransferred", &record.BytesTransferred, sizeof record.BytesTransferred);
  answer.GetProperty(L"TotalBytesNeeded", &record.TotalBytesNeeded, sizeof record.TotalBytesNeeded);
}

void ReadDetail(OrbWmiEnumerator& element, OptionDetailRecord& detail) {
  element.GetProperty(L"Status", &detail.Status, sizeof detail.Status);
  element.GetProperty(L"Value", &detail.Value, sizeof detail.Value);
  element.GetProperty(L"DefaultValue", &detail.DefaultValue, sizeof detail.DefaultValue);
  element.GetProperty(L"MinimumValue", &detail.MinimumValue, sizeof detail.MinimumValue);
  element.GetProperty(L"MaximumValue", &detail.MaximumValue, sizeof detail.MaximumValue);
  // Room for the keyword as it was sent, padded to one character more than is kept.
  char keyword[kOptionKeywordLength + 2] = {};
  if (element.GetProperty(L"Keyword", keyword, sizeof keyword) != kWmiSuccess) {
    keyword[0] = '\0';
  }
  keyword[kOptionKeywordLength + 1] = '\0';
  BoundedCopy(detail.Keyword, sizeof detail.Keyword, keyword);
}

/// The details of an answer. Every element is reached by an enumerator of its own, as the layer's trace tells; while
/// nothing is traced one serves for all, since each costs a copy of the whole list.
class AnsweredDetails {
public:
  AnsweredDetails(OrbWmiEnumerator& answer, OrbWmiClass& detailClass) : m_answer(answer), m_detailClass(detailClass) {}
  ~AnsweredDetails() { platform::DeleteObject(m_list); }
  AnsweredDetails(const AnsweredDetails&) = delete;
  AnsweredDetails& operator=(const AnsweredDetails&) = delete;

  /// Reads one element, unless there is no room for it. 0, 2 behind the last element, or the status of the step that
  /// failed.
  wmiReturn Read(std::uint32_t index, OptionDetailRecord* detail) {
    wmiReturn status = m_list == nullptr ? Open() : kWmiSuccess;
    if (status == kWmiSuccess) {
      status = m_list->GetElement(static_cast<std::int32_t>(index));
    }
    if (status == kWmiSuccess && detail != nullptr) {
      ReadDetail(*m_list, *detail);
    }
    if (gTraceEnabled) {
      platform::DeleteObject(std::exchange(m_list, nullptr));
    }
    return status;
  }

private:
  wmiReturn Open() {
    const wmiReturn status = m_answer.InitArrayEnumerator(&m_detailClass, L"OptionDetailList", &m_list);
    return status == kWmiSuccess && m_list == nullptr ? kWmiRequestFailed : status;
  }

  OrbWmiEnumerator& m_answer;
  OrbWmiClass& m_detailClass;
  OrbWmiEnumerator* m_list = nullptr;
};

/// Reads the answer's list as far as the record has room. 0, or the status of the step that failed.
wmiReturn ReadDetails(OrbWmiEnumerator& answer, OrbWmiClass& detailClass, OptionRequestRecord& record) {
  AnsweredDetails details(answer, detailClass);
  wmiReturn status = kWmiSuccess;
  for (std::uint32_t index = 0; status == kWmiSuccess && index <= record.detailCount; ++index) {
    status = details.Read(index, index < record.detailCount ? &record.details[index] : nullptr);
  }
  return status == kWmiNoMoreData ? kWmiSuccess : status;
}

} // namespace

std::uint32_t SendOptionControlRequest(std::uint32_t /*requestCode*/, void* argument, OrbWmiVariant& /*output*/) {
  OptionRequestRecord& record = *static_cast<OptionRequestRecord*>(argument);
  OrbWmiVariant holder;
  if (!SendRecord(&record, holder)) {
    TracePrint("Unable to send ioctl request - %s!\n", RuntimeErrorText());
    return kWmiRequestFailed;
  }
  OrbWmiClass requestClass;
  wmiReturn status = requestClass.Initialize(gDsmChannel->connection, L"VRXDSM_OPTION_REQUEST");
  if (status != kWmiSuccess) {
    TracePrint("Error initializing VRXDSM_OPTION_REQUEST class\n");
    return status;
  }
  OrbWmiClass detailClass;
  status = detailClass.Initialize(gDsmChannel->connection, L"VRXDSM_OPTION_DETAIL");
  if (status != kWmiSuccess) {
    TracePrint("Error initializing VRXDSM_OPTION_DETAIL class\n");
    return status;
  }
  OrbWmiEnumerator answer;
  status = answer.Initialize(&requestClass, &holder);
  if (status != kWmiSuccess) {
    TracePrint("Error initializing optionRequestEnumerator\n");
    return status;
  }
  ReadHeader(answer, record);
  return ReadDetails(answer, detailClass, record);
}

} // namespace korvex
