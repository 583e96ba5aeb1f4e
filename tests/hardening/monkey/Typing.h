// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <Qt>

/// A key, and how often it is struck in comparison with the others.
struct Keystroke {
    int weight;
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    const char* text;
};

constexpr Keystroke kKeystrokes[] = {
    {120, Qt::Key_A, Qt::NoModifier, "a"},
    {40, Qt::Key_W, Qt::ShiftModifier, "W"},
    {20, Qt::Key_Space, Qt::NoModifier, " "},
    {20, Qt::Key_Backspace, Qt::NoModifier, "\b"},
    {10, Qt::Key_Delete, Qt::NoModifier, "\x7f"},
    {60, Qt::Key_Z, Qt::ControlModifier, "\x1a"},
    {60, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier, "\x1a"},
    {10, Qt::Key_A, Qt::ControlModifier, "\x01"},
    {10, Qt::Key_C, Qt::ControlModifier, "\x03"},
    {10, Qt::Key_X, Qt::ControlModifier, "\x18"},
    {10, Qt::Key_V, Qt::ControlModifier, "\x16"},
    {20, Qt::Key_Tab, Qt::NoModifier, "\t"},
    {10, Qt::Key_Backtab, Qt::ShiftModifier, ""},
    {10, Qt::Key_Up, Qt::NoModifier, ""},
    {10, Qt::Key_Down, Qt::NoModifier, ""},
    {10, Qt::Key_Left, Qt::NoModifier, ""},
    {10, Qt::Key_Right, Qt::NoModifier, ""},
    {10, Qt::Key_Home, Qt::NoModifier, ""},
    {10, Qt::Key_PageDown, Qt::NoModifier, ""},
    {5, Qt::Key_Alt, Qt::NoModifier, ""},
    {5, Qt::Key_Menu, Qt::NoModifier, ""},
    {5, Qt::Key_F10, Qt::NoModifier, ""},
    {3, Qt::Key_Return, Qt::NoModifier, "\r"},
    {3, Qt::Key_Enter, Qt::KeypadModifier, "\r"},
    {3, Qt::Key_Escape, Qt::NoModifier, "\x1b"},
};
