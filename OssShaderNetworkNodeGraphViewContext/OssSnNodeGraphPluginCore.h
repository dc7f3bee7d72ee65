#pragma once

#include <QObject>

class OssShaderNetworkView;

// The plug-in object without its metadata: the start-up sequence, the actions the plug-in owns
// and the slots they fire, which work on the current node graph view. The plug-in entry derives
// from it and adds Qt's plug-in metadata; the tests start the plug-in through it, as the host does.
class OssSnNodeGraphPluginCore : public QObject
{
    Q_OBJECT
public:
    explicit OssSnNodeGraphPluginCore(QObject *parent = nullptr);
    ~OssSnNodeGraphPluginCore() override;

    // Writes the banner, makes the view-context manager and the node-creation actions, and makes
    // actions for node types registered later. Returns true.
    bool start();

private slots:
    void createNodeCreationActions();
    void createNodeFromAction();

private:
    OssShaderNetworkView *currentShaderNetworkView();
};
