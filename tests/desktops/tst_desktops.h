// SPDX-License-Identifier: MIT
#pragma once

#include "DesktopTest.h"

/// Captures by another process on a desktop as people have it.
class tst_desktops : public DesktopTest
{
    Q_OBJECT

private slots:
    void overlayIsTheDimmedDesktop_data();
    void overlayIsTheDimmedDesktop();
    void loupeShowsThePixelsAroundThePointer_data();
    void loupeShowsThePixelsAroundThePointer();
    void regionIsDelivered_data();
    void regionIsDelivered();
    void keysReachTheCapture_data();
    void keysReachTheCapture();
    void tabGoesThroughTheToolBar();
    void strokeIsUndoneAndRedone();
    void strokeLiesWhereItIsDrawn();
    void mosaicLiesWhereItIsDrawn();
    void annotationIsDeliveredAsShown_data();
    void annotationIsDeliveredAsShown();
    void typedTextArrives_data();
    void typedTextArrives();
    void windowThatOpensChangesNothing_data();
    void windowThatOpensChangesNothing();
    void toolBarStandsOnOneScreen();
    void saveDialogStandsAboveAndSaves();
    void saveDialogIsCancelled();
    void fontSizeListStandsAbove();
    void toolTipStandsAbove();
    void dialogOfTheHostStandsAbove();
    void killedProcessLeavesNothing_data();
    void killedProcessLeavesNothing();
    void grabOfAnotherProgramDoesNoHarm_data();
    void grabOfAnotherProgramDoesNoHarm();
    void windowThatIsMovedDeliversWhatLiesUnderIt_data();
    void windowThatIsMovedDeliversWhatLiesUnderIt();
    void changeOfScreensNeverGivesAWrongPicture_data();
    void changeOfScreensNeverGivesAWrongPicture();

private:
    void openSaveDialog(const QRect& region);
    void startDrawing(const QRect& region, const QString& tool);
    void drawInFrame(const QRect& region, const QString& tool, const QRect& frame);
    void drawOver(const QRect& region, const QString& tool, const QPoint& from, const QPoint& to);
    void moveCaptureTo(const QRect& place);
    QImage regionBefore(const QRect& dragged) const;
    QPoint inCanvas(const QRect& dragged, const QPoint& p) const;
};
