// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>
#include <string>

/// Throws where `condition` does not hold, which a test reports and a fuzzer takes for a finding.
#define REQUIRE(condition)                                                                         \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            throw std::logic_error(std::string(__FILE__) + ":" + std::to_string(__LINE__) +        \
                                   ": does not hold: " #condition);                                \
        }                                                                                          \
    } while (false)
