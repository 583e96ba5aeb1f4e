# SPDX-License-Identifier: MIT
# Sourced by the tests beside it.

# look_into PREFIX: sets what is installed there, the first that is found: its name, its version of Qt,
# its package for find_package(), and the directory of the library.
look_into() {
    local pc
    pc=$(find "$1" -name "${2-screencapture*}.pc" -print -quit)
    name=$(basename "$pc" .pc)
    library_dir=$(dirname "$pc")/..
    case $name in
        *-qt6) qt=6 package=ScreenCaptureQt6 ;;
        *) qt=5 package=ScreenCapture ;;
    esac
}
