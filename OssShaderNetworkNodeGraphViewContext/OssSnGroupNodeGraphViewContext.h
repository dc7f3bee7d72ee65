#pragma once

#include "OssSnNodeGraphViewContext.h"

#include <QPointer>

#include "OssShaderNetworkView.h"

// Group nodes (and their multi-channel kinds, materials): a subgraph view in its own tab.
class OssSnGroupNodeGraphViewContext : public OssSnNodeGraphViewContext
{
    Q_OBJECT
public:
    explicit OssSnGroupNodeGraphViewContext(QObject *parent);
    ~OssSnGroupNodeGraphViewContext() override;
    void initializeGui() override;
    QString versionHashSource() const override;
    OssShaderNetworkView *subgraphView() const { return m_view; }

public slots:
    // Adds the group's tab at the end when it is not shown, makes it current, and makes the
    // group's network the host's current view network.
    void showGroupNodeTab();
    void hideGroupNodeTab(OssShaderNetwork *network, OssSnBaseNode *node);
    void onNameChanged(QString name);
    void updateCategory();

private:
    QPointer<OssShaderNetworkView> m_view;
};
