#pragma once

// The intrinsics come first: the SIMD headers that libobs includes define native aliases, which clash with
// the compiler's own AVX-512 names when they are seen before these.
#if defined(__x86_64__) || defined(_M_X64)
#include <immintrin.h>
#endif

#include <obs.hpp>

#include <obs-frontend-api.h>
