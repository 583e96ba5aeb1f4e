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
    void rightClickEndsTheCapture();
    void rightClickDropsTheRegion();
    void doubleClickDelivers();
    void annotationIsDelivered_data();
    void annotationIsDelivered();
    void typedTextArrives_data();
    void typedTextArrives();
    void cursorHasTheShapeOfWhatIsUnderIt_data();
    void cursorHasTheShapeOfWhatIsUnderIt();
    void dialogOfTheHostIsReached_data();
    void dialogOfTheHostIsReached();
    void captureEndsWhileADialogOfTheHostIsOpen_data();
    void captureEndsWhileADialogOfTheHostIsOpen();
    void fontSizeListOpensAndTakesKeysAndClicks_data();
    void fontSizeListOpensAndTakesKeysAndClicks();
    void toolTipIsShown_data();
    void toolTipIsShown();
    void saveDialogSaves_data();
    void saveDialogSaves();
    void saveDialogIsCancelled_data();
    void saveDialogIsCancelled();
    void nothingIsShownBeforeThePortalAnswers();
    void changeOfAnOutputCancels_data();
    void changeOfAnOutputCancels();

private:
    /// A row for each output, with a region on it.
    void addRegions();
    QRect regionOn(int output) const;
    void startDrawing(const QRect& region, const QString& tool);
    void openSaveDialog(const QRect& region);
    void expectMosaic(const QRect& frame, const QImage& picture, const QImage& before) const;
    void expectMarks(const QString& tool, const QRect& frame, const QImage& picture,
                     const QImage& before) const;
};
