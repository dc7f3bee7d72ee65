#pragma once

#include "OssSnNodeGraphViewContext.h"

#include <QRectF>

// Backdrops, sticky notes and dots: GUI nodes that organise the graph. Title, label, colour
// and z-order follow the node's user attributes; a backdrop is a container that keeps clear of
// the containers around it.
class OssSnUINodeGraphViewContext : public OssSnNodeGraphViewContext
{
    Q_OBJECT
    Q_PROPERTY(QString guiNodeClass READ guiNodeClass WRITE setGuiNodeClass)
public:
    explicit OssSnUINodeGraphViewContext(QObject *parent);
    QString guiNodeClass() const { return m_guiNodeClass; }
    // Makes the GUI node of that class ("Backdrop", "StickyNote", "Dot"; a sticky-note node
    // for any other) the first time it is set.
    void setGuiNodeClass(const QString &guiNodeClass);
    void initializeGui() override;
    // An old backdrop without a path key becomes a "Misc/Backdrop" of the installed version.
    bool upgradeOldBadBackdrop();

public slots:
    void onUserAttributeChanged(OssCustomAttribute attribute, OssSnBaseNode *node) override;
    // The nodes lying on the backdrop (nothing for another kind of GUI node).
    QList<OssSnBaseNode *> childrenNodes();
    void setText(QString text) override;

protected slots:
    void onContainerChildrenRefreshed(QList<OssSnBaseNode *> MemberNodes,
                                      bool containerChildrenRefreshed);
    void onContainerStretchedBy(OssSnBaseNode *ReferenceNode);
    void onContainerPeersStretched(QList<OssSnBaseNode *> ContainerNodeToStretchList);
    void onContainerRespacedWrt(OssSnBaseNode *ReferenceNode);
    void onContainerMovedDown(OssSnBaseNode *ReferenceNode);
    void onContainerMovedToFreshLocation(bool PreserveY);
    void onZOrderChanged(int ZOrder);
    // The user resized the backdrop: one undo step with what it pushed aside.
    void onGuiNodeResizedByUser(QRectF OldRect);

private:
    void applyAttribute(const OssCustomAttribute &attribute);
    // The current view for a container operation on a backdrop, or null (logged).
    OssShaderNetworkView *containerView();
    QString m_guiNodeClass;
};
