#pragma once

#include <chrono>

namespace printer {

using Time = std::chrono::steady_clock::time_point;
using std::chrono::milliseconds;

} // namespace printer
