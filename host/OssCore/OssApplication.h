#pragma once

#include "OssCoreExport.h"

#include <QList>
#include <QVariant>

// Application-wide facts the host's code asks about: whether dialogs may be shown (not in batch
// or headless use).
//
// Tests and scripts can queue answers for the next dialogs; a dialog that finds a queued answer
// uses it instead of asking. The dialogs themselves, and the main window that parents them
// (OssGuiApplication), belong to OssGui: the model libraries ask the user nothing.
class OSSCORE_EXPORT OssApplication
{
public:
    static bool popupsAllowed();
    static void setPopupsAllowed(bool allowed);

    // Tunes the C library's allocator for a process that opens and closes large projects: memory
    // freed by closing one is kept for the next instead of being returned to the system and
    // faulted in again page by page. Call once, before the first allocations that matter.
    // Does nothing where the C library offers no such settings.
    static void configureAllocator();

    static void queueDialogAnswer(const QVariant &answer);
    // The oldest queued answer, removed from the queue; invalid when none is queued.
    static QVariant takeDialogAnswer();
    static bool hasDialogAnswer();
    static void clearDialogAnswers();
};
