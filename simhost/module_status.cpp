#include "simhost/module_status.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace simhost {
namespace {

constexpr wchar_t kStatusClass[] = L"UTIL_STATUS_INFO";

constexpr std::uint32_t kMissing = 10;
constexpr std::uint32_t kActive = 11;
constexpr std::uint32_t kOffline = 12;
constexpr std::uint32_t kServiceMode = 13;

constexpr std::size_t kNameLength = 34;
constexpr std::size_t kSlotsOffset = 56;
constexpr std::size_t kSlotSize = 16;
constexpr std::size_t kPathSize = 8;
constexpr std::uint64_t kMaxImage = 64 * 1024 * 1024;
constexpr std::uint32_t kUp = 1;
constexpr std::uint32_t kDown = 2;

/// The image of 56 + 16 * maxLuns * (maxPaths + 1) bytes: the array, a slot for each LUN, a table of paths for each
/// slot.
class StatusImage {
public:
  explicit StatusImage(const StatusLimits& limits)
      : m_limits(limits),
        m_bytes(kSlotsOffset + kSlotSize * std::size_t{limits.maxLuns} * (std::size_t{limits.maxPaths} + 1), 0xFF) {
    std::fill_n(m_bytes.begin(), kSlotsOffset, std::uint8_t{0});
  }

  void Name(const std::vector<std::uint8_t>& name) {
    std::copy_n(name.begin(), std::min(name.size(), kNameLength), m_bytes.begin());
  }
  void ControllerState(std::size_t controller, std::uint32_t code) { Number(34 + controller, 1, code); }
  void ArrayIndex(std::uint32_t index) { Number(44, 4, index); }
  void Lun(std::uint64_t number) {
    if (number < m_limits.maxLuns) {
      Number(kSlotsOffset + kSlotSize * number, 4, static_cast<std::uint32_t>(number));
    }
  }
  void Path(std::uint64_t lun, std::uint64_t controller, std::uint64_t index, const ModuleRecord& address,
            std::uint32_t state) {
    if (lun >= m_limits.maxLuns || controller > 1 || index >= m_limits.maxPaths) {
      return;
    }
    const std::size_t tables = kSlotsOffset + kSlotSize * std::size_t{m_limits.maxLuns};
    const std::size_t entry = tables + kPathSize * ((2 * lun + controller) * m_limits.maxPaths + index);
    Number(entry, 1, static_cast<std::uint32_t>(address["port"]));
    Number(entry + 1, 1, static_cast<std::uint32_t>(address["path"]));
    Number(entry + 2, 1, static_cast<std::uint32_t>(address["target"]));
    Number(entry + 4, 4, state);
  }
  std::vector<std::uint8_t> Take() { return std::move(m_bytes); }

private:
  void Number(std::size_t offset, std::size_t bytes, std::uint32_t number) {
    for (std::size_t i = 0; i < bytes; ++i) {
      m_bytes[offset + i] = static_cast<std::uint8_t>(number >> (8 * i));
    }
  }

  StatusLimits m_limits;
  std::vector<std::uint8_t> m_bytes;
};

std::vector<std::uint8_t> NameBytes(const CimValue& name) {
  if (const std::vector<std::uint8_t>* bytes = name.IfBytes()) {
    return *bytes;
  }
  std::vector<std::uint8_t> bytes;
  for (const wchar_t character : name.TextOrEmpty()) {
    bytes.push_back(character <= 0xFF ? static_cast<std::uint8_t>(character) : std::uint8_t{'?'});
  }
  return bytes;
}

std::uint32_t StateOf(const ModuleController& controller) {
  if (controller.record["failed"] != 0) {
    return kOffline;
  }
  return controller.record["serviceMode"] != 0 ? kServiceMode : kActive;
}

/// The path with this index of the controller with this designation; none when the module has no such path.
const ModulePath* FindPath(const ModuleModel& module, std::uint64_t controllerIndex, std::uint64_t pathIndex) {
  for (const ModuleController& controller : module.controllers) {
    if (controller.record["designation"] != controllerIndex) {
      continue;
    }
    for (const ModulePath& path : controller.paths) {
      if (path.record["index"] == pathIndex) {
        return &path;
      }
    }
  }
  return nullptr;
}

void FillLun(StatusImage& image, const ModuleModel& module, const ModuleLun& lun) {
  const std::uint64_t number = lun.record["number"];
  image.Lun(number);
  for (const ModuleDriveInfo& info : lun.driveInfos) {
    std::uint64_t place = 0;
    for (const ModuleRecord& drive : info.drives) {
      const ModulePath* path = FindPath(module, info.record["controller"], drive["index"]);
      if (path != nullptr) {
        image.Path(number, info.record["controller"], place++, path->address, drive["state"] == 0 ? kUp : kDown);
      }
    }
  }
}

std::vector<std::uint8_t> MakeImage(const ModuleModel& module, const StatusLimits& limits) {
  if (kSlotSize * std::uint64_t{limits.maxLuns} > kMaxImage / (std::uint64_t{limits.maxPaths} + 1)) {
    return {};
  }
  StatusImage image(limits);
  image.Name(NameBytes(module.name));
  image.ControllerState(0, kMissing);
  image.ControllerState(1, kMissing);
  for (const ModuleController& controller : module.controllers) {
    if (controller.record["designation"] <= 1) {
      image.ControllerState(controller.record["designation"], StateOf(controller));
    }
  }
  image.ArrayIndex(module.id);
  for (const ModuleLun& lun : module.luns) {
    FillLun(image, module, lun);
  }
  return image.Take();
}

} // namespace

void AddModuleStatusClass(Repository& repository) {
  CimClass status;
  status.name = kStatusClass;
  status.properties = {Property(L"StatusInfoSize", CIM_UINT32),
                       Property(L"UtilStatusInfoBuffer", CIM_UINT8 | CIM_FLAG_ARRAY)};
  repository.AddClass(std::move(status));
}

CimObject AnswerStatus(const Repository& repository, const ModuleModel& module, const StatusLimits& limits) {
  std::vector<std::uint8_t> image = MakeImage(module, limits);
  CimObject answer(repository.RequireClass(kStatusClass));
  answer.Set(L"StatusInfoSize", static_cast<std::uint32_t>(image.size()));
  answer.Set(L"UtilStatusInfoBuffer", CimValue::Bytes(std::move(image)));
  return answer;
}

} // namespace simhost
