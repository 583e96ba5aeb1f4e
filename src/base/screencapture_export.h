// SPDX-License-Identifier: MIT
#pragma once

/// \file
/// What a host may link against.

/// Marks what a host may link against. Everything else is hidden inside the shared library. A
/// program that links the static library defines SCREENCAPTURE_STATIC, and exports nothing of it.
#ifndef SCREENCAPTURE_STATIC
#define SCREENCAPTURE_EXPORT __attribute__((visibility("default")))
#else
#define SCREENCAPTURE_EXPORT
#endif
