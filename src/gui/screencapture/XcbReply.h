// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <memory>

namespace xcb
{

/// A reply or an event, which the caller of xcb has to free; null where there is none.
template <typename Reply>
std::unique_ptr<Reply, decltype(&std::free)> owned(Reply* reply)
{
    return {reply, &std::free};
}

} // namespace xcb
