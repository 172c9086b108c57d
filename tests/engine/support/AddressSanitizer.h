// SPDX-License-Identifier: AGPL-3.0-or-later
// Whether this build runs under AddressSanitizer, which owns malloc and intercepts
// pthread_mutex_lock itself: the counters that wrap those stand aside there. GCC says so with a
// macro, clang only through __has_feature.
#pragma once

#if defined(__SANITIZE_ADDRESS__)
  #define ONDRIVEL_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
  #if __has_feature(address_sanitizer)
    #define ONDRIVEL_ADDRESS_SANITIZER 1
  #endif
#endif
#ifndef ONDRIVEL_ADDRESS_SANITIZER
  #define ONDRIVEL_ADDRESS_SANITIZER 0
#endif
