#pragma once

// How long things may take. Sanitizers make a program several times slower.
namespace endtoend {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr int kSlowdown = 5;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
inline constexpr int kSlowdown = 5;
#else
inline constexpr int kSlowdown = 1;
#endif
#else
inline constexpr int kSlowdown = 1;
#endif

inline constexpr bool kSanitized = kSlowdown > 1;

#if defined(NADREL_EMULATED)
inline constexpr bool kEmulated = true;
#else
inline constexpr bool kEmulated = false;
#endif

// The longest that a close takes, whatever the link does, in milliseconds.
inline constexpr double kLongestClose = 200 * kSlowdown;

} // namespace endtoend
