#include "OssCanvasWidget.h"

#include <OssChannel.h>

void OssCanvasWidget::handleBakeBehavior(OssChannel *imageSet)
{
    ++m_flushes;
    m_last = imageSet;
    emit paintBufferFlushed(imageSet);
}

OssChannel *OssCanvasWidget::lastFlushedImageSet() const
{
    return m_last;
}
