// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>

/// How many of each kind the X server keeps for all of its clients, and the bytes of their pixmaps
/// as "pixmap bytes".
std::map<std::string, long> serverHoldings();
