// SPDX-License-Identifier: MIT
#pragma once

/// \file
/// What a host may link against.

/// Marks what a host may link against. Everything else is hidden inside the shared library.
#define SCREENCAPTURE_EXPORT __attribute__((visibility("default")))
