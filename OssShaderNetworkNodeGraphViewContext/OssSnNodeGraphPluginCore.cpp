#include "OssSnNodeGraphPluginCore.h"

#include "OssDebug.h"
#include "OssShaderNetworkView.h"
#include "OssSnNodeCreationActions.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <OssShaderNetworkManager.h>

#include <QAction>
#include <QApplication>

OssSnNodeGraphPluginCore::OssSnNodeGraphPluginCore(QObject *parent) : QObject(parent) {}

OssSnNodeGraphPluginCore::~OssSnNodeGraphPluginCore() = default;

bool OssSnNodeGraphPluginCore::start()
{
    // The banner alone carries neither the information nor the warning prefix.
    OssDebug(__FILE__, __LINE__, "[ Plugin ] Shader Network - Node Graph View Context");
    OssSnNodeGraphViewContextManager::instance();
    // The fixed node-graph actions are made here, after the node-creation actions; the
    // catalogue of fixed actions and the script factories of the palette and the view join
    // this sequence at these two places.
    createNodeCreationActions();
    connect(OssShaderNetworkManager::instance(), SIGNAL(registeredNodePopulationChanged()), this,
            SLOT(createNodeCreationActions()));
    return true;
}

void OssSnNodeGraphPluginCore::createNodeCreationActions()
{
    OssSnNodeCreationActions::create(this, SLOT(createNodeFromAction()));
}

void OssSnNodeGraphPluginCore::createNodeFromAction()
{
    auto *action = qobject_cast<QAction *>(sender());
    if (!action) {
        OSS_DEBUG("Action is NULL");
        return;
    }
    OssShaderNetworkView *view = currentShaderNetworkView();
    if (!view) {
        OSS_DEBUG("ShaderNetworkView is NULL");
        return;
    }
    view->createNodeFromAction(action);
}

OssShaderNetworkView *OssSnNodeGraphPluginCore::currentShaderNetworkView()
{
    if (auto *focused = qobject_cast<OssShaderNetworkView *>(QApplication::focusWidget()))
        return focused;
    OssShaderNetworkView *view = OssSnNodeGraphViewContextManager::instance()->currentView();
    OSS_DEBUG("[ !! ] Could not get the current active widget, fallback onto current nodegraph "
              "view %p",
              static_cast<void *>(view));
    return view;
}
