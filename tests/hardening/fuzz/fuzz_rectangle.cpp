// SPDX-License-Identifier: MIT
#include "RectWalk.h"
#include "Require.h"

#include <cstddef>
#include <cstdint>

/// Five bytes are a step: what is done, and two points.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static char name[] = "fuzz_rectangle";
    static char* arguments[] = {name, nullptr};
    static int count = 1;
    static const QApplication application(count, arguments);
    const QByteArray difference = RectWalk::differenceAfter(data, size);
    if (!difference.isEmpty())
        std::fprintf(stderr, "%s\n", difference.constData());
    REQUIRE(difference.isEmpty());
    return 0;
}
