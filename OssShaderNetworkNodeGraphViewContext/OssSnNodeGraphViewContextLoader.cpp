#include "OssSnNodeGraphViewContextLoader.h"

#include "OssSnContextDescription.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnUINodeGraphViewContext.h"
#include "ZelGLTextureToken.h"

#include <OssClassFactory.h>

// Keeps the renderer's texture cache alive while the plug-in is loaded.
static const ZelGLTextureToken s_textureToken;

OssSnContextList OssSnNodeGraphViewContextLoader::load(const QString &description,
                                                       OssSnBaseNode *node)
{
    OssSnNodeGraphViewContext *context = new OssSnNodeGraphViewContext(node, true);
    // The description is read first, stopping where it is malformed; applying its entries in
    // order gives what applying while reading would.
    const OssSnContextDescription read = OssSnContextDescription::readCached(description);
    for (const OssSnContextDescription::Context &entry : read.contexts) {
        if (entry.type == QLatin1String("UINodeGraphView") && entry.guiNodeClass.has_value()) {
            delete context;
            auto *ui = new OssSnUINodeGraphViewContext(node);
            ui->setGuiNodeClass(entry.guiNodeClass.value());
            context = ui;
        } else if (entry.type == QLatin1String("NodeGraphView") && entry.className.has_value()) {
            delete context;
            const QPointer<QObject> made =
                OssClassFactoryManager::instance()->create(entry.className.value(), node);
            context = qobject_cast<OssSnNodeGraphViewContext *>(made.data());
            if (!context && made)
                delete made.data();
        }
        if (!context)
            continue;
        if (entry.shapeType.has_value())
            context->setShapeType(entry.shapeType.value());
        if (entry.nodeColorTop.has_value())
            context->setNodeColorTop(entry.nodeColorTop.value());
        if (entry.nodeColorBottom.has_value())
            context->setNodeColorBottom(entry.nodeColorBottom.value());
        if (entry.pixmapPath.has_value())
            context->setPixmapPath(entry.pixmapPath.value());
        if (entry.pixmapOffset.has_value())
            context->setPixmapOffset(entry.pixmapOffset.value());
        for (const OssSnContextDescription::Port &input : entry.inputs) {
            if (input.tags.has_value())
                for (const QString &tag : input.tags.value())
                    context->addInputTag(input.name, tag);
            if (input.initialPosition.has_value())
                context->m_inputNodeInitialPos.insert(input.name, input.initialPosition.value());
        }
        for (const OssSnContextDescription::Port &output : entry.outputs)
            if (output.initialPosition.has_value())
                context->m_outputNodeInitialPos.insert(output.name, output.initialPosition.value());
    }
    return {context};
}
