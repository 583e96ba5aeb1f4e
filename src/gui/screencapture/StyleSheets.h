// SPDX-License-Identifier: MIT
#pragma once

/// The look that several widgets share: style sheets and colours.
namespace style
{

/// Frames what is selected or chosen.
constexpr const char* kAccentColor = "#00aacc";

/// Intended: the closing brace without an opening one. Qt warns that it cannot parse the sheet, and
/// applies what precedes the brace.
constexpr const char* kTransparent =
    "background:rgba(0,0,0,0%); border-width:0; border-style:outset}";

constexpr const char* kToolBar = "background:rgba(255,255,255,100%)";

/// The bars and their tool tips are white on any desktop, so their text must be dark on any.
constexpr const char* kDarkText = "color: black";
constexpr const char* kDarkToolTip = "QToolTip { color: black; }";

constexpr const char* kTextBoxOfSize = "ScribbleArea QTextEdit { font-size: %1pt }";

} // namespace style
