#include "app/report/interface_type_name.h"

#include <iterator>

namespace korvex {

namespace {

constexpr const char* kNames[] = {"FC", "invalid", "invalid", "invalid", "IB", "iSCSI", "SAS"};

} // namespace

const char* InterfaceTypeName(std::uint8_t code) {
  return code < std::size(kNames) ? kNames[code] : "unknown";
}

} // namespace korvex
