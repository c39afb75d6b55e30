#ifndef CORVANE_TESTS_FAULTS_PLAIN_BUILD_H
#define CORVANE_TESTS_FAULTS_PLAIN_BUILD_H

// Whether this is a build without a sanitizer, whose memory and stack are those of the library and nobody else's.
namespace corvane::tests
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kPlainBuild = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool kPlainBuild = false;
#else
constexpr bool kPlainBuild = true;
#endif
#else
constexpr bool kPlainBuild = true;
#endif

// Whether races are looked for, which makes everything many times slower.
#if defined(__SANITIZE_THREAD__)
constexpr bool kFindsRaces = true;
#else
constexpr bool kFindsRaces = false;
#endif
} // namespace corvane::tests

#endif
