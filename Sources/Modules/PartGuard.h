#pragma once

// What every part does at its door: nothing thrown leaves it.

#include <exception>
#include <string_view>

#include "LKCore/Modules/ModuleInterface.h"

namespace lk::part {

inline std::string_view view(PartBytes bytes) {
  return {bytes.data, bytes.size};
}

inline bool put(PartSink sink, std::string_view bytes) {
  return sink.take(sink.target, bytes.data(), bytes.size());
}

inline PartResult failed(PartSink error, std::string_view reason) {
  put(error, reason);
  return PartResult::failed;
}

// What `work` returns; `failed` for what it throws.
template <typename Work>
PartResult guarded(PartSink error, const Work& work) noexcept {
  try {
    return work();
  } catch (const std::exception& thrown) {
    return failed(error, thrown.what());
  } catch (...) {
    return failed(error, "unknown error");
  }
}

}  // namespace lk::part
