#pragma once

#include "OssSnNodeGraphViewContext.h"

// Backdrops, sticky notes and dots: GUI nodes that organise the graph. Title, label, colour
// and z-order follow the node's user attributes.
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
    void setText(QString text) override;
    void onZOrderChanged(int zOrder);

private:
    void applyAttribute(const OssCustomAttribute &attribute);
    QString m_guiNodeClass;
};
