#include "OssSnNodeGraphViewContextManager.h"

#include "OssPreferenceManager.h"
#include "OssSettings.h"
#include "ZelGLTextureToken.h"

// Keeps the renderer's texture cache alive while the plug-in is loaded.
static const ZelGLTextureToken s_textureToken;

namespace {
const QString SettingsGroup = QStringLiteral("Node Graph");

// Stores Value in Member; true when it changed (the caller then announces it).
template <typename T> bool assign(T &member, const T &value)
{
    if (member == value)
        return false;
    member = value;
    return true;
}
} // namespace

OssSnNodeGraphViewContextManager *OssSnNodeGraphViewContextManager::instance()
{
    static OssSnNodeGraphViewContextManager manager;
    return &manager;
}

OssSnNodeGraphViewContextManager::OssSnNodeGraphViewContextManager()
    : OssSerializableObject(nullptr)
{
    setObjectName(QStringLiteral("OssSnNodeGraphViewContextManager"));
    loadPreferences();
    registerPreferences();
}

OssSnNodeGraphViewContextManager::~OssSnNodeGraphViewContextManager() = default;

const QStringList &OssSnNodeGraphViewContextManager::portDisplayList()
{
    static const QStringList list{QStringLiteral("Show Port List (Horizontal)"),
                                  QStringLiteral("No Port List (Vertical)")};
    return list;
}

QString OssSnNodeGraphViewContextManager::prettyPropertyName(const QString &Name) const
{
    static const QHash<QString, QString> labels{
        {QStringLiteral("controlType"), QStringLiteral("Control Type")},
        {QStringLiteral("defaultNodePortDisplayMode"), QStringLiteral("Default Port Display")},
        {QStringLiteral("isAutoInsertOn"), QStringLiteral("Auto Insert Node")},
        {QStringLiteral("zoomTo"), QStringLiteral("Zoom To")},
        {QStringLiteral("autoUpdateUpstreamMergeNodeColorspaceEnabled"),
         QStringLiteral("Update Blending Colorspace")},
        {QStringLiteral("defaultMCMCollapsedState"), QStringLiteral("Default Collapsed State")},
        {QStringLiteral("shakeToExtractEnabled"),
         QStringLiteral("Shake to Extract Selected Nodes")},
        {QStringLiteral("shakeToExtractShakes"), QStringLiteral("Shakes to Trigger")},
        {QStringLiteral("shakeToExtractTime"), QStringLiteral("Shakes in Time (ms)")},
        {QStringLiteral("numberOfLastUsedNodePathsToStore"),
         QStringLiteral("Number of Most Recent Nodes")},
    };
    const auto it = labels.constFind(Name);
    return it != labels.cend() ? it.value() : OssSerializableObject::prettyPropertyName(Name);
}

void OssSnNodeGraphViewContextManager::registerPreferences()
{
    OssPreferenceManager *preferences = OssPreferenceManager::instance();
    const QString page = tr("Node Graph");
    const QString general = tr("General");
    const QString multiChannel = tr("Multi-Channel");
    const QString shake = tr("Shake to Extract");
    const QString quickCreate = tr("Quick Node Create Menu");
    preferences->registerPreference(page, general, this, QStringLiteral("controlType"));
    preferences->registerPreference(page, general, this,
                                    QStringLiteral("defaultNodePortDisplayMode"));
    preferences->registerPreference(page, general, this, QStringLiteral("isAutoInsertOn"));
    preferences->registerPreference(page, general, this, QStringLiteral("zoomTo"));
    preferences->registerPreference(page, general, this,
                                    QStringLiteral("autoUpdateUpstreamMergeNodeColorspaceEnabled"));
    preferences->registerPreference(page, multiChannel, this,
                                    QStringLiteral("defaultMCMCollapsedState"));
    preferences->registerPreference(page, shake, this, QStringLiteral("shakeToExtractEnabled"));
    preferences->registerPreference(page, shake, this, QStringLiteral("shakeToExtractShakes"));
    preferences->registerPreference(page, shake, this, QStringLiteral("shakeToExtractTime"));
    preferences->registerPreference(page, quickCreate, this,
                                    QStringLiteral("numberOfLastUsedNodePathsToStore"));
}

// Control type

void OssSnNodeGraphViewContextManager::setControlType(const QString &Value)
{
    if (Value == m_controlType || !controlTypeList().contains(Value))
        return;
    m_controlType = Value;
    emit controlTypeChanged(Value);
}

void OssSnNodeGraphViewContextManager::resetControlType()
{
    setControlType(controlTypeDefault());
}

QString OssSnNodeGraphViewContextManager::controlTypeDefault() const
{
    return QStringLiteral("Kova");
}

QStringList OssSnNodeGraphViewContextManager::controlTypeList() const
{
    return {QStringLiteral("Kova"), QStringLiteral("Ossa")};
}

QString OssSnNodeGraphViewContextManager::controlTypeTooltip() const
{
    return tr("Setup the nodegraph navigation to match another software application.\n"
              " * Kova (default)\n"
              " * Ossa");
}

// Port display

QString OssSnNodeGraphViewContextManager::defaultNodePortDisplayMode() const
{
    return portDisplayList().value(m_portDisplayIndex);
}

void OssSnNodeGraphViewContextManager::setDefaultNodePortDisplayMode(const QString &Mode)
{
    const int index = portDisplayList().indexOf(Mode);
    if (index < 0) {
        // Unknown text: fall back to the first entry, under the same rules.
        setDefaultNodePortDisplayMode(portDisplayList().first());
        return;
    }
    if (index == m_portDisplayIndex)
        return;
    m_portDisplayIndex = index;
    updatePortVisibility();
    emit defaultNodePortDisplayModeChanged(Mode);
}

void OssSnNodeGraphViewContextManager::resetDefaultNodePortDisplayMode()
{
    setDefaultNodePortDisplayMode(portDisplayList().first());
}

QString OssSnNodeGraphViewContextManager::defaultNodePortDisplayModeTooltip() const
{
    return tr("Configures whether each node shows port list by default upon creation.\n"
              " * No Port List (Vertical): Nodes will not show port list upon creation\n"
              " * Show Port List (Horizontal): Nodes will show port list upon creation");
}

// Auto insert

void OssSnNodeGraphViewContextManager::setIsAutoInsertOn(bool Value)
{
    if (assign(m_isAutoInsertOn, Value))
        emit isAutoInsertOnChanged(Value);
}

void OssSnNodeGraphViewContextManager::resetIsAutoInsertOn()
{
    setIsAutoInsertOn(true);
}

QString OssSnNodeGraphViewContextManager::isAutoInsertOnTooltip() const
{
    return tr("Nodes will be inserted automatically into the tree when moved over an existing "
              "pipe. This is indicated by the pipe turning yellow when hovering.");
}

// Zoom anchor

void OssSnNodeGraphViewContextManager::setZoomTo(ZoomTo Value)
{
    if (Value == m_zoomTo)
        return;
    m_zoomTo = Value;
    emit zoomToChanged(Value);
    emit zoomToChangedAsInt(int(Value));
}

void OssSnNodeGraphViewContextManager::setZoomTo(int Value)
{
    // Any int is kept as it is; readers decide what values other than 0 and 1 mean.
    setZoomTo(static_cast<ZoomTo>(Value));
}

void OssSnNodeGraphViewContextManager::resetZoomTo()
{
    setZoomTo(Cursor);
}

QString OssSnNodeGraphViewContextManager::zoomToTooltip() const
{
    return tr("Which point to anchor when zooming in the Node Graph\n");
}

// Blending colour space upkeep

void OssSnNodeGraphViewContextManager::setAutoUpdateUpstreamMergeNodeColorspaceEnabled(
    const QString &Value)
{
    if (Value == m_colorspaceBehaviour ||
        !autoUpdateUpstreamMergeNodeColorspaceEnabledList().contains(Value))
        return;
    m_colorspaceBehaviour = Value;
    emit autoUpdateUpstreamMergeNodeColorspaceEnabledChanged(Value);
}

void OssSnNodeGraphViewContextManager::resetAutoUpdateUpstreamMergeNodeColorspaceEnabled()
{
    setAutoUpdateUpstreamMergeNodeColorspaceEnabled(
        autoUpdateUpstreamMergeNodeColorspaceEnabledDefault());
}

QString
OssSnNodeGraphViewContextManager::autoUpdateUpstreamMergeNodeColorspaceEnabledDefault() const
{
    return QStringLiteral("Prompt");
}

QStringList
OssSnNodeGraphViewContextManager::autoUpdateUpstreamMergeNodeColorspaceEnabledList() const
{
    return {QStringLiteral("Prompt"), QStringLiteral("Change"), QStringLiteral("Leave")};
}

QString
OssSnNodeGraphViewContextManager::autoUpdateUpstreamMergeNodeColorspaceEnabledTooltip() const
{
    return tr("<html>Control whether to automatically change the 'Use Blending Colorspace' "
              "attribute to 'Enable' for Merge nodes upstream of newly connected 8bit (byte) "
              "Channels or Bake Points configured for color paint data. When Merge nodes have "
              "this attribute set to 'Disable' for an 8-bit (byte) color paint data channel, "
              "precision issues in the blending math could occur, which could result in visual "
              "banding artefacts in your paint.</html>");
}

// Multi-channel collapsed state

void OssSnNodeGraphViewContextManager::setDefaultMCMCollapsedState(DefaultMCMCollapsedState Value)
{
    if (Value == m_collapsedState)
        return;
    m_collapsedState = Value;
    emit defaultMCMCollapsedStateChanged(Value);
    emit defaultMCMCollapsedStateChangedAsInt(int(Value));
}

void OssSnNodeGraphViewContextManager::setDefaultMCMCollapsedState(int Value)
{
    setDefaultMCMCollapsedState(static_cast<DefaultMCMCollapsedState>(Value));
}

void OssSnNodeGraphViewContextManager::resetDefaultMCMCollapsedState()
{
    setDefaultMCMCollapsedState(StreamCollapsed);
}

QString OssSnNodeGraphViewContextManager::defaultMCMCollapsedStateTooltip() const
{
    return tr("Default collapsed state of Multi-Channel nodes when created");
}

// Shake to extract

void OssSnNodeGraphViewContextManager::setShakeToExtractEnabled(bool Value)
{
    if (assign(m_shakeToExtractEnabled, Value))
        emit shakeToExtractEnabledChanged(Value);
}

void OssSnNodeGraphViewContextManager::resetShakeToExtractEnabled()
{
    setShakeToExtractEnabled(shakeToExtractEnabledDefault());
}

void OssSnNodeGraphViewContextManager::toggleShakeToExtractEnabled()
{
    setShakeToExtractEnabled(!m_shakeToExtractEnabled);
}

QString OssSnNodeGraphViewContextManager::shakeToExtractEnabledTooltip() const
{
    return QStringLiteral("Shake selected nodes in the node graph to extract them.");
}

void OssSnNodeGraphViewContextManager::setShakeToExtractShakes(int Value)
{
    if (assign(m_shakeToExtractShakes, Value))
        emit shakeToExtractShakesChanged(Value);
}

void OssSnNodeGraphViewContextManager::resetShakeToExtractShakes()
{
    setShakeToExtractShakes(shakeToExtractShakesDefault());
}

QString OssSnNodeGraphViewContextManager::shakeToExtractShakesTooltip() const
{
    return QStringLiteral("Perform this many shakes in the required time to trigger Shake to "
                          "Extract.\nA \"shake\" is moving the nodes in one direction then "
                          "moving them in the opposite direction.");
}

void OssSnNodeGraphViewContextManager::setShakeToExtractTime(int Value)
{
    if (assign(m_shakeToExtractTime, Value))
        emit shakeToExtractTimeChanged(Value);
}

void OssSnNodeGraphViewContextManager::resetShakeToExtractTime()
{
    setShakeToExtractTime(shakeToExtractTimeDefault());
}

QString OssSnNodeGraphViewContextManager::shakeToExtractTimeTooltip() const
{
    return QStringLiteral("Perform the required number of shakes in this amount of time (in "
                          "milliseconds) to trigger Shake to Extract.");
}

// Quick create menu

void OssSnNodeGraphViewContextManager::setNumberOfLastUsedNodePathsToStore(int Value)
{
    if (assign(m_numberOfLastUsedNodePaths, Value))
        emit numberOfLastUsedNodePathsToStoreChanged(Value);
}

void OssSnNodeGraphViewContextManager::resetNumberOfLastUsedNodePathsToStore()
{
    setNumberOfLastUsedNodePathsToStore(numberOfLastUsedNodePathsToStoreDefault());
}

QString OssSnNodeGraphViewContextManager::numberOfLastUsedNodePathsToStoreTooltip() const
{
    return QStringLiteral(
        "The number of most recent nodes to be shown in the Node graph's Quick Create Menu");
}

// Persistence

void OssSnNodeGraphViewContextManager::loadPreferences()
{
    OssSettings settings;
    settings.beginGroup(SettingsGroup);
    setControlType(
        settings.value(QStringLiteral("controlType"), QStringLiteral("Kova")).toString());
    setDefaultNodePortDisplayMode(
        settings.value(QStringLiteral("defaultNodePortDisplayMode"), defaultNodePortDisplayMode())
            .toString());
    setIsAutoInsertOn(settings.value(QStringLiteral("isAutoInsertOn"), m_isAutoInsertOn).toBool());
    setZoomTo(settings.value(QStringLiteral("zoomTo"), int(m_zoomTo)).toInt());
    setDefaultMCMCollapsedState(
        settings.value(QStringLiteral("defaultMCMCollapsedState"), int(m_collapsedState)).toInt());
    setAutoUpdateUpstreamMergeNodeColorspaceEnabled(
        settings
            .value(QStringLiteral("autoUpdateUpstreamMergeNodeColorspaceEnabled"),
                   QStringLiteral("Prompt"))
            .toString());
    setShakeToExtractEnabled(
        settings.value(QStringLiteral("shakeToExtractEnabled"), true).toBool());
    setShakeToExtractShakes(settings.value(QStringLiteral("shakeToExtractShakes"), 4).toInt());
    setShakeToExtractTime(settings.value(QStringLiteral("shakeToExtractTime"), 500).toInt());
    setNumberOfLastUsedNodePathsToStore(
        settings.value(QStringLiteral("numberOfLastUsedNodePathsToStore"), 5).toInt());
}

void OssSnNodeGraphViewContextManager::savePreferences()
{
    OssSettings settings;
    settings.beginGroup(SettingsGroup);
    settings.setValue(QStringLiteral("controlType"), m_controlType);
    settings.setValue(QStringLiteral("defaultNodePortDisplayMode"), defaultNodePortDisplayMode());
    settings.setValue(QStringLiteral("isAutoInsertOn"), m_isAutoInsertOn);
    settings.setValue(QStringLiteral("zoomTo"), int(m_zoomTo));
    settings.setValue(QStringLiteral("defaultMCMCollapsedState"), int(m_collapsedState));
    settings.setValue(QStringLiteral("autoUpdateUpstreamMergeNodeColorspaceEnabled"),
                      m_colorspaceBehaviour);
    settings.setValue(QStringLiteral("shakeToExtractEnabled"), m_shakeToExtractEnabled);
    settings.setValue(QStringLiteral("shakeToExtractShakes"), m_shakeToExtractShakes);
    settings.setValue(QStringLiteral("shakeToExtractTime"), m_shakeToExtractTime);
    settings.setValue(QStringLiteral("numberOfLastUsedNodePathsToStore"),
                      m_numberOfLastUsedNodePaths);
}

void OssSnNodeGraphViewContextManager::updatePortVisibility()
{
    // The view contexts that apply port visibility come with the node-graph model; until then
    // there are no nodes to update.
}
