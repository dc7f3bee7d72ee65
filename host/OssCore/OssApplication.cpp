#include "OssApplication.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {
struct ApplicationState
{
    bool popupsAllowed = true;
    QList<QVariant> answers;
};

ApplicationState &state()
{
    static ApplicationState instance;
    return instance;
}
} // namespace

bool OssApplication::popupsAllowed()
{
    return state().popupsAllowed;
}

void OssApplication::setPopupsAllowed(bool allowed)
{
    state().popupsAllowed = allowed;
}

void OssApplication::queueDialogAnswer(const QVariant &answer)
{
    state().answers.append(answer);
}

QVariant OssApplication::takeDialogAnswer()
{
    return state().answers.isEmpty() ? QVariant() : state().answers.takeFirst();
}

bool OssApplication::hasDialogAnswer()
{
    return !state().answers.isEmpty();
}

void OssApplication::clearDialogAnswers()
{
    state().answers.clear();
}

void OssApplication::configureAllocator()
{
#ifdef __GLIBC__
    // Keep up to 512 MB of free memory at the top of the heap, grow it in 64 MB steps, and take
    // blocks up to 64 MB (a project's file read whole) from the heap rather than from separate
    // mappings that are unmapped again when freed.
    mallopt(M_TRIM_THRESHOLD, 512 << 20);
    mallopt(M_TOP_PAD, 64 << 20);
    mallopt(M_MMAP_THRESHOLD, 64 << 20);
#endif
}
