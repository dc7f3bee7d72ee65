#pragma once

#include "BenchGraph.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QVector>

class QGraphicsItem;
class QGraphicsScene;
class QGraphicsView;

// One system under measurement: it builds a generated graph into a scene shown by a view. The
// scenarios only use the scene and the view, so our system and the baseline run the same code.
class BenchSystem
{
public:
    virtual ~BenchSystem() = default;
    virtual QString name() const = 0;
    // Builds the graph into a fresh scene and view (1920 x 1080, not shown on screen).
    virtual void build(const BenchGraph &graph) = 0;
    // Removes everything built.
    virtual void tearDown() = 0;
    virtual QGraphicsScene *scene() const = 0;
    virtual QGraphicsView *view() const = 0;
    // The item that stands for node Index (for hit tests and selections).
    virtual QPointF nodeCenter(int index) const = 0;
    virtual void selectNodes(int count) = 0;
};

// Plain Qt: per node a 200 x 80 rectangle with a text child and three small port ellipses, per
// edge one cubic path; default spatial index.
class BaselineSystem : public BenchSystem
{
public:
    BaselineSystem();
    ~BaselineSystem() override;
    QString name() const override { return QStringLiteral("baseline"); }
    void build(const BenchGraph &graph) override;
    void tearDown() override;
    QGraphicsScene *scene() const override { return m_scene; }
    QGraphicsView *view() const override { return m_view; }
    QPointF nodeCenter(int index) const override;
    void selectNodes(int count) override;
    // The selected nodes and every edge that touches one of them, each once: what deleting the
    // selection takes out of the scene.
    QList<QGraphicsItem *> selectedNodesWithEdges() const;

private:
    QGraphicsScene *m_scene = nullptr;
    QGraphicsView *m_view = nullptr;
    QVector<QPointF> m_centers;
    QHash<QGraphicsItem *, QVector<QGraphicsItem *>> m_edgesOfNode;
};

class OssNgNode;

// The node-graph GUI library on its own (no business nodes): GUI nodes, edges and backdrops in
// the base view.
class NodeGraphSystem : public BenchSystem
{
public:
    NodeGraphSystem();
    ~NodeGraphSystem() override;
    QString name() const override { return QStringLiteral("nodegraph"); }
    void build(const BenchGraph &graph) override;
    void tearDown() override;
    QGraphicsScene *scene() const override { return m_scene; }
    QGraphicsView *view() const override { return m_view; }
    QPointF nodeCenter(int index) const override;
    void selectNodes(int count) override;

private:
    QGraphicsScene *m_scene = nullptr;
    QGraphicsView *m_view = nullptr;
    QVector<OssNgNode *> m_nodes;
};

class OssShaderNetwork;
class OssSnBaseNode;

// The whole system: host network, plug-in view contexts and GUI nodes, the plug-in's view.
class PluginSystem : public BenchSystem
{
public:
    PluginSystem();
    ~PluginSystem() override;
    QString name() const override { return QStringLiteral("ours"); }
    void build(const BenchGraph &graph) override;
    void tearDown() override;
    QGraphicsScene *scene() const override;
    QGraphicsView *view() const override;
    QPointF nodeCenter(int index) const override;
    void selectNodes(int count) override;
    OssShaderNetwork *network() const { return m_network; }
    QVector<OssSnBaseNode *> nodes() const { return m_nodes; }

private:
    OssShaderNetwork *m_network = nullptr;
    QVector<OssSnBaseNode *> m_nodes;
};
