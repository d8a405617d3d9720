#pragma once

namespace lk {

// What the host's editor can do; what it cannot, the model leaves alone.
struct LKEditorCapabilities {
  bool tables = true;  // rows are grouped into tables

  bool operator==(const LKEditorCapabilities&) const = default;
};

}  // namespace lk
