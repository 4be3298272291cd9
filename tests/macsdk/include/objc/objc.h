// See dispatch/dispatch.h.
#pragma once

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

typedef struct objc_class* Class;
typedef struct objc_selector* SEL;
#if defined(__arm64__)
typedef bool BOOL;
#else
/// As on Intel Macs, where a careless conversion to it can lose bits.
typedef signed char BOOL;
#endif
#define MACSDK_SINCE(version) __attribute__((availability(macos, introduced = version)))
#define MACSDK_BETWEEN(version, successor) \
    __attribute__((availability(macos, introduced = version, deprecated = successor)))
#define OBJC_BOOL_DEFINED
#define YES __objc_yes
#define NO __objc_no
#ifndef nil
#define nil __null
#endif

/// With this, every delegate method that the program relies on must be there, spelt right.
#ifdef MACSDK_STRICT_DELEGATES
#define MACSDK_OPTIONAL @required
#else
#define MACSDK_OPTIONAL @optional
#endif
