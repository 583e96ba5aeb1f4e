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

/// Where the application has a style sheet: its margins, frames and font sizes find no room in bars
/// of fixed sizes, and it may not tell the chosen tool from the others.
constexpr const char* kBarsAmongApplicationStyles = R"(
#mainToolBar, #mainToolBar > *, #subToolBar, #subToolBar > *, #subToolBar QSlider, #mosaicPanel > * {
    margin: 0; padding: 0; border: none; font-size: 12px;
}
#mainToolBar { min-height: 30px }
#mainToolBar QPushButton { border: 1px solid silver; min-width: 28px; min-height: 24px }
#mainToolBar QPushButton:checked { border: 2px solid #00aacc; min-width: 26px; min-height: 22px }
#mainToolBar #doneButton { min-width: 58px }
#mainToolBar QLabel { min-width: 3px; min-height: 26px }
#subToolBar QLabel, #subToolBar QSlider { min-width: 0; min-height: 0 }
#subToolBar QComboBox { border: native; padding-left: 4px; min-width: 39px; min-height: 24px }
#mosaicPanel { min-width: 140px; min-height: 20px }
)";
constexpr const char* kTextBoxOfSize = "ScribbleArea QTextEdit { font-size: %1pt }";

} // namespace style
