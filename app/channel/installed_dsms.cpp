#include "app/channel/channel.h"
#include "app/channel/dsm_name.h"
#include "app/channel/dsm_selection.h"
#include "app/cli/console/bounded_text.h"
#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "platform/allocation.h"
#include "wmi/orb_wmi_request.h"
#include "wmi/trace_text.h"
#include "wmi/wmi_return.h"

#include <array>
#include <cstring>

namespace korvex {
namespace {

/// Every class with this method belongs to a DSM.
constexpr char kDsmMethodName[] = "VrxOptionControlRequest";
/// Room for a method's name. A longer one arrives cut, which cannot make it the name looked for.
constexpr std::size_t kMethodNameSize = 256;
/// Room for a class's name: 64 characters and a terminator.
constexpr std::size_t kClassNameSize = 65;

/// The names found so far.
class DsmList {
public:
  /// Keeps a name that is new, ignoring case, while there is room.
  void Add(const char* name) {
    for (std::size_t index = 0; index < m_count; ++index) {
      if (EqualIgnoringCase(m_entries[index].name, name)) {
        return;
      }
    }
    if (m_count < m_entries.size()) {
      Entry& entry = m_entries[m_count++];
      BoundedCopy(entry.name, sizeof entry.name, name);
      entry.isDefault = EqualIgnoringCase(name, NarrowText(kDefaultDsmName).c_str());
    }
  }

  void PrintList() const {
    Print("DSM's installed\n");
    Print("===============\n");
    for (std::size_t index = 0; index < m_count; ++index) {
      Print("%s", m_entries[index].name);
      if (m_entries[index].isDefault) {
        Print(" (default)\n");
      } else {
        Print("\n");
      }
    }
  }

private:
  struct Entry {
    char name[10];
    bool isDefault;
  };
  std::array<Entry, 16> m_entries = {};
  std::size_t m_count = 0;
};

/// Reads a text property into a buffer that it must fit with its terminator.
template <std::size_t size>
bool ReadText(OrbWmiEnumerator& enumerator, const wchar_t* property, char (&text)[size]) {
  if (enumerator.GetProperty(property, text, static_cast<std::uint32_t>(size)) != kWmiSuccess) {
    return false;
  }
  // A property that is no text can fill the buffer to its end.
  text[size - 1] = '\0';
  return true;
}

/// Whether one of the class's methods is the one that every DSM has.
bool IsDsmClass(OrbWmiClass& candidate) {
  char method[kMethodNameSize];
  wmiReturn status = candidate.ResetMethodName(method, sizeof method);
  while (status == kWmiSuccess) {
    if (std::strcmp(method, kDsmMethodName) == 0) {
      return true;
    }
    status = candidate.NextMethodName(method, sizeof method);
  }
  return false;
}

/// Walks class objects and adds the name of the DSM behind each class that is a DSM's.
class DsmWalk {
public:
  explicit DsmWalk(DsmList& list) : m_list(list) {}

  /// Looks at the class object that `classes` stands on; one that is no DSM's, or cannot be read, is passed over.
  void Look(OrbWmiEnumerator& classes) {
    char className[kClassNameSize];
    if (!ReadText(classes, L"__CLASS", className)) {
      return;
    }
    TracePrint("MetaClass=%s\n", className);
    wchar_t wideName[kClassNameSize];
    BoundedWideFormat(wideName, sizeof wideName, "%s", className);
    if (m_class.Initialize(gDsmChannel->connection, wideName) != kWmiSuccess || !IsDsmClass(m_class)) {
      return;
    }
    TracePrint("DsmWmiClass found='%s'\n", className);
    char dsmName[kDsmNameSize];
    if (m_instances.Initialize(&m_class) != kWmiSuccess || !ReadText(m_instances, L"DsmName", dsmName)) {
      return;
    }
    TracePrint("DsmName=%s\n", dsmName);
    m_list.Add(dsmName);
  }

private:
  DsmList& m_list;
  OrbWmiClass m_class;
  OrbWmiEnumerator m_instances;
};

/// The query for all top-level classes and its result, released in the order that the layer asks for.
class MetaClassQuery {
public:
  MetaClassQuery() = default;
  MetaClassQuery(const MetaClassQuery&) = delete;
  MetaClassQuery& operator=(const MetaClassQuery&) = delete;
  ~MetaClassQuery() {
    platform::DeleteObject(m_classes);
    platform::DeleteObject(m_request);
  }

  /// The enumerator on the first class object, borrowed; none after a message on standard error.
  OrbWmiEnumerator* Run() {
    m_request = platform::NewObject<OrbWmiRequest>("metaClass request");
    if (m_request == nullptr) {
      PrintError("Unable to allocate metaClass request.\n");
      return nullptr;
    }
    constexpr wchar_t kQuery[] = L"Select * From Meta_Class Where __SUPERCLASS = \"\"";
    if (m_request->QueryRequest(kQuery, gDsmChannel->connection) != kWmiSuccess) {
      PrintError("Error initializing metaClass request.\n");
      return nullptr;
    }
    if (m_request->ExecQuery(&m_classes) != kWmiSuccess || m_classes->GetClassObjectInstance() == nullptr) {
      PrintError("Error executing metaClass request.\n");
      return nullptr;
    }
    return m_classes;
  }

private:
  OrbWmiRequest* m_request = nullptr;
  OrbWmiEnumerator* m_classes = nullptr;
};

} // namespace

bool ListInstalledDsms() {
  if (!ConnectChannel()) {
    return false;
  }
  {
    DsmList installed;
    DsmWalk walk(installed);
    MetaClassQuery query;
    OrbWmiEnumerator* classes = query.Run();
    if (classes == nullptr) {
      return false;
    }
    do {
      walk.Look(*classes);
    } while (classes->Next() == kWmiSuccess);
    installed.PrintList();
  }
  gDsmChannel->connection.CloseConnection();
  return true;
}

} // namespace korvex
