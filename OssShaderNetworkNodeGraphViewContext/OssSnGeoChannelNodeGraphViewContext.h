#pragma once

#include "OssSnNodeGraphViewContext.h"

// The three small contexts that show a node's channel or baked state with marks, icons and
// text: bake points, geo-channels and teleports.

// Bake points: baked and stale marks, geo-channel, patch-range and filter icons.
class OssSnBakePointNodeGraphViewContext : public OssSnNodeGraphViewContext
{
    Q_OBJECT
public:
    explicit OssSnBakePointNodeGraphViewContext(QObject *parent);
    void initializeGui() override;
    bool attributeIsStub(const QString &name, bool flag) const override;

public slots:
    void onBakedStateChanged();
    void onGeoChannelChanged();
    void onLimitBakeChanged();
    void onFilteredChanged();
    void updateGUIText();
    void setText(QString text) override;

private:
    int m_geoIcon = -1;
    int m_rangeIcon = -1;
    int m_filterIcon = -1;
};

// Geo-channel nodes: their geo-channel in the text, an icon for a valid image set.
class OssSnGeoChannelNodeGraphViewContext : public OssSnNodeGraphViewContext
{
    Q_OBJECT
public:
    explicit OssSnGeoChannelNodeGraphViewContext(QObject *parent);
    void initializeGui() override;

public slots:
    void onGeoChannelImageSetValidChanged(bool Valid);
    void updateGUIText();
    void setText(QString text) override;

private:
    int m_geoIcon = -1;
};

// Teleport broadcasts and receivers: the channel in the text, a silent or signalling icon.
class OssSnBaseTeleportNodeGraphViewContext : public OssSnNodeGraphViewContext
{
    Q_OBJECT
public:
    explicit OssSnBaseTeleportNodeGraphViewContext(QObject *parent);
    void initializeGui() override;

public slots:
    void updateNodeState();
    void setText(QString text) override;
};
