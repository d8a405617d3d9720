#pragma once

#include <filesystem>
#include <string>

#include "LKCore/Base/Time.h"

namespace lk {

// What a daily note of this run's collection starts with, by the user default "dailyNoteSeed":
// its heading, and with the other choices the tasks that are due and the activity of the day
// before. Asks for an index only when the choice needs one.
std::string dailyNoteSeedBody(Day day);

// The same for a day that has no note yet; empty, at no cost, when it has one.
std::string dailyNoteSeedBodyIfMissing(Day day, const std::filesystem::path& collection);

}  // namespace lk
