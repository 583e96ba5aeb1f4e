// SPDX-License-Identifier: MIT
#pragma once

#include <QtTest>

/// QSKIP, whose variadic macro clang warns of.
#define SKIP_BECAUSE(reason)                                                                       \
    do {                                                                                           \
        QTest::qSkip(reason, __FILE__, __LINE__);                                                  \
        return;                                                                                    \
    } while (false)
