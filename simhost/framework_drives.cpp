#include "simhost/framework_parts.h"
#include "simhost/text.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace simhost {
namespace {

constexpr std::size_t kMaxDrives = 65536;
constexpr std::size_t kMaxText = 4096;

struct DriveModel {
  std::wstring name;
  std::wstring serial;
  std::wstring dsm;
  std::uint32_t paths = 0;
};

/// What is not described of a drive comes from the disk and the installed DSM that it is about.
DriveModel ReadDrive(const Node& drive, std::size_t index, const Host& host) {
  const std::vector<Disk>& disks = host.disks.All();
  const std::string serial = index < disks.size() ? HexFromBytes(disks[index].identifier) : std::string();
  const std::wstring dsm = host.installedDsms.empty() ? std::wstring() : host.installedDsms.front().name;
  DriveModel model;
  ReadMembers(drive, [&](Members& keys) {
    model.name = keys["name"].Text(kMaxText, L"MPIO Disk" + std::to_wstring(index));
    model.serial = keys["serial"].Text(kMaxText, WideFromUtf8(serial));
    model.dsm = keys["dsm"].Text(kMaxText, dsm);
    model.paths = keys["paths"].Unsigned<std::uint32_t>(0, 0xFFFFFFFF, 4);
  });
  return model;
}

std::vector<DriveModel> ReadDrives(const Node& drives, const Host& host) {
  std::vector<DriveModel> models;
  if (drives.IsAbsent()) {
    while (models.size() < host.disks.All().size()) {
      models.push_back(ReadDrive(Node(drives.Path()), models.size(), host));
    }
    return models;
  }
  for (const Node& drive : drives.Elements(kMaxDrives)) {
    models.push_back(ReadDrive(drive, models.size(), host));
  }
  return models;
}

/// MPIO_DISK_INFO: the multipath disks.
class DriveProvider : public Provider {
public:
  DriveProvider(Repository& repository, std::vector<DriveModel> drives)
      : m_repository(repository), m_drives(std::move(drives)) {}

  Outcome EnumerateInstances(const ClassRef& definition, std::vector<CimObject>& instances) override {
    const ClassRef driveClass = m_repository.RequireClass(L"MPIO_DRIVE_INFO");
    std::vector<CimObject> drives;
    for (const DriveModel& model : m_drives) {
      CimObject drive(driveClass);
      drive.Set(L"NumberPaths", model.paths).Set(L"Name", model.name);
      drive.Set(L"SerialNumber", model.serial).Set(L"DsmName", model.dsm);
      drives.push_back(std::move(drive));
    }
    CimObject instance(definition);
    instance.Set(L"InstanceName", kFrameworkInstance).Set(L"Active", true);
    instance.Set(L"NumberDrives", static_cast<std::uint32_t>(drives.size()));
    instance.Set(L"DriveInfo", CimValue::Embed(std::move(drives)));
    instances.push_back(std::move(instance));
    return {};
  }

private:
  Repository& m_repository;
  std::vector<DriveModel> m_drives;
};

} // namespace

void AddFrameworkDrives(const Node& drives, Host& host) {
  std::vector<DriveModel> models = ReadDrives(drives, host);
  CimClass driveInfo;
  driveInfo.name = L"MPIO_DRIVE_INFO";
  driveInfo.properties = {Property(L"NumberPaths", CIM_UINT32), Property(L"Name", CIM_STRING),
                          Property(L"SerialNumber", CIM_STRING), Property(L"DsmName", CIM_STRING)};
  host.repository.AddClass(std::move(driveInfo));
  CimClass diskInfo;
  diskInfo.name = L"MPIO_DISK_INFO";
  diskInfo.properties = {Key(L"InstanceName"), Property(L"Active", CIM_BOOLEAN), Property(L"NumberDrives", CIM_UINT32),
                         EmbeddedArray(L"DriveInfo", L"MPIO_DRIVE_INFO")};
  host.repository.AddClass(std::move(diskInfo), std::make_shared<DriveProvider>(host.repository, std::move(models)));
}

} // namespace simhost
