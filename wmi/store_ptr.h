#pragma once

#include "platform/allocation.h"

#include <memory>

namespace korvex {

struct StoreDeleter {
  template <class T>
  void operator()(T* object) const noexcept {
    platform::DeleteObject(object);
  }
};

/// Owns an object made by platform::NewObject; none when it could not be allocated.
template <class T>
using StorePtr = std::unique_ptr<T, StoreDeleter>;

} // namespace korvex
