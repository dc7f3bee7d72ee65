#pragma once

#include <OssaAPI.h>

#include <QList>

class OssSnNodeGraphWidget;

namespace Ossa {

class NodeGraphView;

// Script object of the "Node Graph" palette: its tabs and the views they show. Tab 0 is the
// root tab.
class NodeGraphPalette : public Palette
{
    Q_OBJECT
public:
    explicit NodeGraphPalette(QObject *InternalObject);
    ~NodeGraphPalette() override;

public slots:
    int currentTabIndex();
    void setCurrentTabIndex(int Index);
    void closeTab(int Index);
    QList<Ossa::NodeGraphView *> nodeGraphViewList();
    Ossa::NodeGraphView *nodeGraphView(int TabIndex);
    // The tab that shows NodeGraphObject's network, opening it when it is closed; -1 on error.
    int indexForNodeGraph(Ossa::NodeGraph *NodeGraphObject);

private:
    // The wrapped palette's tab widget, or null after reporting why there is none.
    OssSnNodeGraphWidget *tabWidget(const char *file, int line);
    // The script object of the view in tab Index; null when it cannot be had.
    Ossa::NodeGraphView *viewObject(OssSnNodeGraphWidget *widget, int Index);
};

} // namespace Ossa
