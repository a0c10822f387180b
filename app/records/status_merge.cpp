#include "app/records/status_merge.h"

#include <algorithm>

namespace korvex {

namespace {

/// The first stored path of the LUN's controller that is like this; MaxPaths when there is none.
template <class IsLike>
std::uint32_t FindPath(const UtilStatusInfo& stored, std::uint32_t slot, std::uint32_t controller, IsLike isLike) {
  std::uint32_t index = 0;
  while (index < stored.MaxPaths() && !isLike(stored.Path(slot, controller, index))) {
    ++index;
  }
  return index;
}

/// All recorded paths of the LUN count as not reported until the DSM reports them.
void ForgetStates(UtilStatusInfo& stored, std::uint32_t slot) {
  for (std::uint32_t controller = 0; controller < UtilStatusInfo::kControllers; ++controller) {
    for (std::uint32_t index = 0; index < stored.MaxPaths(); ++index) {
      StatusPath path = stored.Path(slot, controller, index);
      if (path.Exists()) {
        path.state = StatusPath::kNotReported;
        stored.SetPath(slot, controller, index, path);
      }
    }
  }
}

/// A reported path gives its state to the recorded one with its address, or takes a free place; without one it is
/// dropped.
void MergePath(UtilStatusInfo& current, UtilStatusInfo& stored, std::uint32_t slot, std::uint32_t controller,
               std::uint32_t index) {
  StatusPath reported = current.Path(slot, controller, index);
  if (!reported.Exists()) {
    return;
  }
  const std::uint32_t known = FindPath(stored, slot, controller, [&reported](const StatusPath& path) {
    return path.Exists() && path.HasAddressOf(reported);
  });
  if (known < stored.MaxPaths()) {
    stored.SetPath(slot, controller, known, reported);
    reported.state = StatusPath::kNone;
    current.SetPath(slot, controller, index, reported);
    return;
  }
  const std::uint32_t free = FindPath(stored, slot, controller, [](const StatusPath& path) { return !path.Exists(); });
  if (free < stored.MaxPaths()) {
    stored.SetPath(slot, controller, free, reported);
  }
}

void MergeLun(UtilStatusInfo& current, UtilStatusInfo& stored, std::uint32_t slot) {
  for (std::uint32_t index = 0; index < stored.MaxPaths(); ++index) {
    for (std::uint32_t controller = 0; controller < UtilStatusInfo::kControllers; ++controller) {
      MergePath(current, stored, slot, controller, index);
    }
  }
}

void AdoptLun(const UtilStatusInfo& current, UtilStatusInfo& stored, std::uint32_t slot) {
  stored.SetLunNumber(slot, current.LunNumber(slot));
  for (std::uint32_t controller = 0; controller < UtilStatusInfo::kControllers; ++controller) {
    for (std::uint32_t index = 0; index < stored.MaxPaths(); ++index) {
      const StatusPath path = current.Path(slot, controller, index);
      if (path.Exists()) {
        stored.SetPath(slot, controller, index, path);
      }
    }
  }
}

} // namespace

void utilMergeStatusInfo(UtilStatusInfo& current, UtilStatusInfo& stored) {
  std::ranges::copy(current.Name(), stored.Name().begin());
  for (std::uint32_t controller = 0; controller < UtilStatusInfo::kControllers; ++controller) {
    stored.SetControllerState(controller, current.ControllerState(controller));
  }
  std::ranges::copy(current.IndexBytes(), stored.IndexBytes().begin());
  for (std::uint32_t slot = 0; slot < stored.MaxLuns(); ++slot) {
    const bool isReported = !current.IsEmpty(slot);
    const bool isRecorded = !stored.IsEmpty(slot);
    if (!isReported && !isRecorded) {
      continue;
    }
    ForgetStates(stored, slot);
    if (isReported && isRecorded) {
      MergeLun(current, stored, slot);
    } else if (isReported) {
      AdoptLun(current, stored, slot);
    }
  }
}

} // namespace korvex
