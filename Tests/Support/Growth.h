#pragma once

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <functional>
#include <string>
#include <string_view>

namespace lk::test {

// How many times longer `work` takes for four times the text: about 4 when its time is linear in
// it, 16 when it is quadratic. The text is `unit` again and again, up to `bytes` and four times as
// many. Counts the processor's time of this process; a busy machine may still spoil a measurement,
// but not five in a row, and a result of 8 or less ends the tries.
inline double growth(std::string_view unit, size_t bytes,
                     const std::function<void(const std::string& text)>& work) {
  const auto clocks = [&](size_t length) {
    std::string text;
    while (text.size() < length) text += unit;
    const std::clock_t start = std::clock();
    work(text);
    return static_cast<double>(std::clock() - start) + 1;
  };
  double least = clocks(4 * bytes) / clocks(bytes);
  for (int attempt = 1; attempt < 5 && least > 8; ++attempt) {
    least = std::min(least, clocks(4 * bytes) / clocks(bytes));
  }
  return least;
}

}  // namespace lk::test
