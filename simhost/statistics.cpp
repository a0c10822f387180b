#include "simhost/statistics.h"

#include "platform/posix/machine.h"

#include <string>

namespace simhost {

Statistics& TheStatistics() {
  static Statistics statistics;
  return statistics;
}

std::uint64_t LiveCount(InterfaceKind kind) {
  return TheStatistics().live[static_cast<std::size_t>(kind)].load();
}

std::uint64_t CallCount(std::string_view operation) {
  return TheStatistics().calls.at(OperationIndex(operation)).load();
}

Json AuditReport() {
  Json::Object interfaces;
  for (std::size_t i = 0; i < std::size(kInterfaceNames); ++i) {
    interfaces.emplace_back(kInterfaceNames[i], TheStatistics().live[i].load());
  }
  Json::Object calls;
  for (std::size_t i = 0; i < std::size(kOperations); ++i) {
    if (const std::uint64_t count = TheStatistics().calls[i].load(); count != 0) {
      calls.emplace_back(kOperations[i].name, count);
    }
  }
  Json::Object stores;
  platform::VisitLiveStores([](const char* name, std::uint64_t count,
                               void* context) { static_cast<Json::Object*>(context)->emplace_back(name, count); },
                            &stores);
  const platform::LiveObjects live = platform::CountLiveObjects();
  return Json::Object{{"bstrs", live.bstrs},         {"safearrays", live.safeArrays},
                      {"handles", live.handles},     {"interfaces", std::move(interfaces)},
                      {"stores", std::move(stores)}, {"coercions", TheStatistics().coercions.load()},
                      {"calls", std::move(calls)}};
}

} // namespace simhost
