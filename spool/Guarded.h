#pragma once

#include <cstdint>

namespace nadrel {

// Runs the body of an exported function: no exception leaves it, 0 stands for one.
template <typename Body>
int32_t Guarded(Body body) {
    try {
        return body();
    } catch (...) {
        return 0;
    }
}

} // namespace nadrel
