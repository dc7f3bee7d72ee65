#pragma once

#include "OssNgNode.h"

#include <QPixmap>
#include <QVector>

// The GUI node of ordinary nodes: port-list modes, category colours, an icon, extra named
// icons, display marks and port clusters.
class OSSNODEGRAPH_EXPORT OssNgExtendedNode : public OssNgNode
{
    Q_OBJECT
    Q_PROPERTY(int portListMode READ portListModeAsInt WRITE setPortListModeFromInt)
public:
    enum
    {
        Type = UserType + 103
    };
    // 0: inputs listed down the left side and outputs down the right, with their names; 1: no
    // port list, the node runs top to bottom with unnamed ports; 2: folded to the preferred
    // input and output; 3: connected ports only; 4: every port, even hidden ones, listed.
    enum PortListMode : int
    {
        PortListShown = 0,
        PortListHidden = 1,
        PortListFolded = 2,
        PortListConnected = 3,
        PortListExpanded = 4,
    };
    Q_ENUM(PortListMode)

    explicit OssNgExtendedNode(QGraphicsItem *parentItem = nullptr);
    int type() const override { return Type; }

    PortListMode portListMode() const { return m_portListMode; }
    int portListModeAsInt() const { return m_portListMode; }
    // Sets the mode from code; nodePortListModeChanged is for changes the user makes.
    void setPortListMode(PortListMode mode);
    void setPortListModeFromInt(int mode);
    // The user's "cycle" through the modes: 0, 1, then the multi-channel modes when allowed.
    void cyclePortListMode();
    void setMultiChannelModesAllowed(bool allowed) { m_multiChannelModes = allowed; }

    QString category() const { return m_category; }
    void setCategory(const QString &category);
    void setPixmap(const QPixmap &pixmap, const QPoint &offset = QPoint());
    QPixmap pixmap() const { return m_pixmap; }
    QPoint pixmapOffset() const { return m_pixmapOffset; }

    // Extra named icons drawn along the title, shown or hidden by index.
    int addIcon(const QString &name);
    void setIconVisible(int index, bool visible);
    bool iconVisible(int index) const;
    QStringList iconNames() const;

    // Display marks.
    enum Mark : int
    {
        SystemShaderMark,
        FirstStateMark,
        CachedMark,
        DisabledMark,
        ExtraMark1,
        ExtraMark2,
        GuiActiveMark,
        BakedMark,
        StaleMark,
        MarkCount
    };
    void setMark(Mark mark, bool on);
    bool mark(Mark mark) const { return m_marks[mark]; }

    // Port clusters: named groups of ports drawn as one port while the node is folded.
    void setPortCluster(const QString &port, const QString &cluster);
    void clearPortClusters();
    QStringList portClusters() const;
    void refresh();
    // Recomputes the outline from the shape type (multi-channel groups change theirs).
    void updateShape();
    QStringList outputPortList() const { return outputPortNames(); }

    QBrush fillBrush() const override;
    QColor farColor() const override;
    void copyFrom(const OssNgNode *other) override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

signals:
    void nodePortListModeChanged(int mode);

protected:
    void relayout() override;
    bool showPortLabels() const override;
    qreal titleMargin() const override;

private:
    void applyPortVisibility();

    PortListMode m_portListMode = PortListShown;
    bool m_multiChannelModes = false;
    QString m_category;
    QPixmap m_pixmap;
    // The pixmap at the height it is drawn, made when it is set rather than on every paint.
    QPixmap m_scaledPixmap;
    QPoint m_pixmapOffset;
    struct Icon
    {
        QString name;
        bool visible = false;
    };
    QVector<Icon> m_icons;
    bool m_marks[MarkCount] = {};
    bool m_relayingOut = false;
};
