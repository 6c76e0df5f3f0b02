#pragma once

/// Whether this build runs under a sanitizer that has to see every block come and go, and that checks the whole range
/// of each call into the C library.
namespace toolkit {

#if defined(__has_feature)
#define ORV_HAS_FEATURE(feature) __has_feature(feature)
#else
#define ORV_HAS_FEATURE(feature) 0
#endif

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || ORV_HAS_FEATURE(address_sanitizer) ||             \
    ORV_HAS_FEATURE(thread_sanitizer)
inline constexpr bool sanitized = true;
#else
inline constexpr bool sanitized = false;
#endif

#undef ORV_HAS_FEATURE

} // namespace toolkit
