// SPDX-License-Identifier: MIT
#pragma once

#include "WaylandTest.h"

/// Captures by another process in a Wayland session.
class tst_wayland : public WaylandTest
{
    Q_OBJECT

private slots:
    void overlayIsTheDimmedDesktop();
    void regionIsDelivered_data();
    void regionIsDelivered();
    void keysReachTheCapture_data();
    void keysReachTheCapture();
};
