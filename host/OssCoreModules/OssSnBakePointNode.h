#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnBaseNode.h"

#include <QString>

// Records that a node's result was baked into an image set, and whether it is still current.
class OSSCOREMODULES_EXPORT OssSnBakePointNode : public OssSnBaseNode
{
    Q_OBJECT
    Q_PROPERTY(QString geoChannelName READ geoChannelName WRITE setGeoChannelName)
    Q_PROPERTY(bool syncGeoChannel READ syncGeoChannel WRITE setSyncGeoChannel)
    Q_PROPERTY(bool limitBake READ limitBake WRITE setLimitBake)
    Q_PROPERTY(QString limitBakeRange READ limitBakeRange WRITE setLimitBakeRange)
    Q_PROPERTY(
        bool filterCollectionEnabled READ filterCollectionEnabled WRITE setFilterCollectionEnabled)
    Q_PROPERTY(QString filterCollectionText READ filterCollectionText WRITE setFilterCollectionText)
    Q_PROPERTY(QString bakedSignature READ bakedSignature WRITE setBakedSignature)
    Q_PROPERTY(QString bakedImageSet READ bakedImageSet WRITE setBakedImageSet)
public:
    explicit OssSnBakePointNode(QObject *parent = nullptr);

    QString geoChannelName() const { return m_geoChannelName; }
    void setGeoChannelName(const QString &name);
    bool syncGeoChannel() const { return m_syncGeoChannel; }
    void setSyncGeoChannel(bool sync);
    bool limitBake() const { return m_limitBake; }
    void setLimitBake(bool limit);
    QString limitBakeRange() const { return m_limitBakeRange; }
    void setLimitBakeRange(const QString &range) { m_limitBakeRange = range; }
    bool filterCollectionEnabled() const { return m_filterCollectionEnabled; }
    void setFilterCollectionEnabled(bool enabled);
    QString filterCollectionText() const { return m_filterCollectionText; }
    void setFilterCollectionText(const QString &text);

    bool hasBakedResult() const { return !m_bakedSignature.isEmpty(); }
    // True when the upstream graph still matches what was baked. With Deep, a stale bake point
    // upstream makes this one stale too.
    bool isBakedResultUpToDate(bool deep) const;
    // Records a bake of the current upstream graph into the named image set.
    void bake(const QString &imageSetName);
    void clearBake();
    QString bakedSignature() const { return m_bakedSignature; }
    void setBakedSignature(const QString &signature) { m_bakedSignature = signature; }
    QString bakedImageSet() const { return m_bakedImageSet; }
    void setBakedImageSet(const QString &name) { m_bakedImageSet = name; }
    // A text that changes whenever anything upstream that affects the result changes.
    QString upstreamSignature() const;

signals:
    void geoChannelNameChanged(QString name);
    void syncGeoChannelChanged(bool sync);
    void bakedStateChanged();
    void limitBakeChanged(bool limit);
    void filterCollectionEnabledChanged(bool enabled);
    void filterCollectionTextChanged(QString text);

private:
    void watchUpstream();

    QString m_geoChannelName;
    bool m_syncGeoChannel = false;
    bool m_limitBake = false;
    QString m_limitBakeRange;
    bool m_filterCollectionEnabled = false;
    QString m_filterCollectionText;
    QString m_bakedSignature;
    QString m_bakedImageSet;
};
