#pragma once

#include <cstdint>

namespace platform {

// What the system knows of the peer of a connection.
struct LifeSigns {
    uint32_t sinceAnswer = 0; // milliseconds since the peer last acknowledged anything
    uint32_t unanswered =
        0; // times in a row that the system has asked or repeated since, in growing intervals
};

// Whether a peer from which an answer is due must be taken for dead. One that lives but reads nothing answers
// the system's questions, however seldom they come after a while (every two minutes), and is never silent.
inline bool PeerIsSilent(const LifeSigns &signs) {
    constexpr uint32_t kLongestSilence = 120'000; // milliseconds
    constexpr uint32_t kMostUnanswered = 5;
    return signs.sinceAnswer >= kLongestSilence && signs.unanswered >= kMostUnanswered;
}

} // namespace platform
