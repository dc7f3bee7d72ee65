#pragma once

#include "OssGuiExport.h"

#include <QPointer>
#include <QWidget>

class OssChannel;

// A paint canvas. The host layer has no paint engine: flushing the paint buffer into an
// image set is recorded, which is what the node graph needs to know.
class OSSGUI_EXPORT OssCanvasWidget : public QWidget
{
    Q_OBJECT
public:
    using QWidget::QWidget;
    void handleBakeBehavior(OssChannel *imageSet);
    int flushCount() const { return m_flushes; }
    OssChannel *lastFlushedImageSet() const;

signals:
    void paintBufferFlushed(OssChannel *imageSet);

private:
    int m_flushes = 0;
    QPointer<OssChannel> m_last;
};
