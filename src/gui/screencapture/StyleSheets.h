// SPDX-License-Identifier: MIT
#pragma once

/// Style sheets that several widgets share.
namespace style
{

/// Intended: the closing brace without an opening one stands as it is. Qt says that it cannot parse
/// this, and applies what stands before the brace.
constexpr const char* kTransparent =
    "background:rgba(0,0,0,0%); border-width:0; border-style:outset}";

constexpr const char* kToolBar = "background:rgba(255,255,255,100%)";

/// The bars, and the tool tips over them, are white on any desktop, so what is written there must
/// be dark on any.
constexpr const char* kDarkText = "color: black";
constexpr const char* kDarkToolTip = "QToolTip { color: black; }";

constexpr const char* kTextBoxOfSize = "ScribbleArea QTextEdit { font-size: %1pt }";

} // namespace style
