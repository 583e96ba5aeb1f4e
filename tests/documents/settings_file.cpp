// SPDX-License-Identifier: MIT
// Leaves a settings file as the library writes it: settings_file DIRECTORY
#include <ScreenCaptureTool.h>

int main(int /*argc*/, char** argv)
{
    ScreenCaptureTool::init(argv[1]);
    ScreenCaptureToolColors colors;
    ScreenCaptureTool::penColor(colors);
    ScreenCaptureTool::setPenColor(colors);
    return 0;
}
