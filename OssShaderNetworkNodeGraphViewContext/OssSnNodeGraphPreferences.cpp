#include "OssSnNodeGraphPreferences.h"

#include "OssPreferenceManager.h"
#include "OssSettings.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <OssDebug.h>

#include <QCoreApplication>
#include <QMetaProperty>

namespace {

// Page, sections and translated tool tips belong to the manager, whose properties they describe.
const char *const Context = "OssSnNodeGraphViewContextManager";

const char *const General = QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager", "General");
const char *const MultiChannel =
    QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager", "Multi-Channel");
const char *const Shake = QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager", "Shake to Extract");
const char *const QuickCreate =
    QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager", "Quick Node Create Menu");

using Manager = OssSnNodeGraphViewContextManager;
using Entry = OssSnNodeGraphPreferences::Entry;

const Entry *table()
{
    static const Entry entries[] = {
        {"controlType",
         "Control Type",
         General,
         QVariant(),
         {QStringLiteral("Kova"), QStringLiteral("Ossa")},
         QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager",
                           "Setup the nodegraph navigation to match another software "
                           "application.\n * Kova (default)\n * Ossa"),
         true},
        {"defaultNodePortDisplayMode",
         "Default Port Display",
         General,
         QVariant(),
         {QStringLiteral("Show Port List (Horizontal)"), QStringLiteral("No Port List (Vertical)")},
         QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager",
                           "Configures whether each node shows port list by default upon "
                           "creation.\n * No Port List (Vertical): Nodes will not show port list "
                           "upon creation\n * Show Port List (Horizontal): Nodes will show port "
                           "list upon creation"),
         true},
        {"isAutoInsertOn",
         "Auto Insert Node",
         General,
         QVariant(true),
         {},
         QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager",
                           "Nodes will be inserted automatically into the tree when moved over an "
                           "existing pipe. This is indicated by the pipe turning yellow when "
                           "hovering."),
         true},
        {"zoomTo",
         "Zoom To",
         General,
         QVariant(int(Manager::Cursor)),
         {},
         QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager",
                           "Which point to anchor when zooming in the Node Graph\n"),
         true},
        {"autoUpdateUpstreamMergeNodeColorspaceEnabled",
         "Update Blending Colorspace",
         General,
         QVariant(),
         {QStringLiteral("Prompt"), QStringLiteral("Change"), QStringLiteral("Leave")},
         QT_TRANSLATE_NOOP(
             "OssSnNodeGraphViewContextManager",
             "<html>Control whether to automatically change the 'Use Blending Colorspace' "
             "attribute to 'Enable' for Merge nodes upstream of newly connected 8bit (byte) "
             "Channels or Bake Points configured for color paint data. When Merge nodes have "
             "this attribute set to 'Disable' for an 8-bit (byte) color paint data channel, "
             "precision issues in the blending math could occur, which could result in visual "
             "banding artefacts in your paint.</html>"),
         true},
        {"defaultMCMCollapsedState",
         "Default Collapsed State",
         MultiChannel,
         QVariant(int(Manager::StreamCollapsed)),
         {},
         QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager",
                           "Default collapsed state of Multi-Channel nodes when created"),
         true},
        {"shakeToExtractEnabled",
         "Shake to Extract Selected Nodes",
         Shake,
         QVariant(true),
         {},
         "Shake selected nodes in the node graph to extract them.",
         false},
        {"shakeToExtractShakes",
         "Shakes to Trigger",
         Shake,
         QVariant(4),
         {},
         "Perform this many shakes in the required time to trigger Shake to Extract.\nA "
         "\"shake\" is moving the nodes in one direction then moving them in the opposite "
         "direction.",
         false},
        {"shakeToExtractTime",
         "Shakes in Time (ms)",
         Shake,
         QVariant(500),
         {},
         "Perform the required number of shakes in this amount of time (in milliseconds) to "
         "trigger Shake to Extract.",
         false},
        {"numberOfLastUsedNodePathsToStore",
         "Number of Most Recent Nodes",
         QuickCreate,
         QVariant(5),
         {},
         "The number of most recent nodes to be shown in the Node graph's Quick Create Menu",
         false},
    };
    static_assert(sizeof(entries) / sizeof(entries[0]) == OssSnNodeGraphPreferences::Count,
                  "one entry per preference");
    return entries;
}

QMetaProperty propertyOf(const QObject *owner, const Entry &entry)
{
    const QMetaObject *meta = owner->metaObject();
    return meta->property(meta->indexOfProperty(entry.key));
}

// A value in the form the settings keep for this preference.
QVariant stored(const QVariant &value, const Entry &entry)
{
    if (!entry.choices.isEmpty())
        return value.toString();
    if (entry.defaultValue.userType() == QMetaType::Bool)
        return value.toBool();
    return value.toInt();
}

void write(QObject *owner, const Entry &entry, const QVariant &value)
{
    if (!propertyOf(owner, entry).write(owner, value))
        OSS_DEBUG("[ !! ] Cannot set the preference %s", entry.key);
}

} // namespace

const OssSnNodeGraphPreferences::Entry &OssSnNodeGraphPreferences::entry(Preference preference)
{
    Q_ASSERT(preference >= 0 && preference < Count);
    return table()[preference];
}

QString OssSnNodeGraphPreferences::key(Preference preference)
{
    return QString::fromLatin1(entry(preference).key);
}

QVariant OssSnNodeGraphPreferences::defaultValue(Preference preference)
{
    const Entry &e = entry(preference);
    return e.choices.isEmpty() ? e.defaultValue : QVariant(e.choices.first());
}

const QStringList &OssSnNodeGraphPreferences::choices(Preference preference)
{
    return entry(preference).choices;
}

QString OssSnNodeGraphPreferences::toolTip(Preference preference)
{
    const Entry &e = entry(preference);
    return e.toolTipTranslated ? QCoreApplication::translate(Context, e.toolTip)
                               : QString::fromUtf8(e.toolTip);
}

QString OssSnNodeGraphPreferences::label(const QString &key)
{
    for (int i = 0; i < Count; ++i)
        if (key == QLatin1String(table()[i].key))
            return QString::fromUtf8(table()[i].label);
    return QString();
}

QString OssSnNodeGraphPreferences::page()
{
    return QCoreApplication::translate(Context, "Node Graph");
}

QString OssSnNodeGraphPreferences::settingsGroup()
{
    return QStringLiteral("Node Graph");
}

QString OssSnNodeGraphPreferences::section(Preference preference)
{
    return QCoreApplication::translate(Context, entry(preference).section);
}

void OssSnNodeGraphPreferences::applyDefaults(QObject *owner)
{
    for (int i = 0; i < Count; ++i)
        write(owner, table()[i], defaultValue(Preference(i)));
}

namespace {

// The settings keep the preferences in their own order (the collapsed state before the colour
// space behaviour). On load, a preference missing from the settings falls back to its default
// when FromDefault is set, else keeps its current value.
struct SettingsSlot
{
    OssSnNodeGraphPreferences::Preference preference;
    bool fromDefault;
};

const SettingsSlot SettingsOrder[] = {
    {OssSnNodeGraphPreferences::ControlType, true},
    {OssSnNodeGraphPreferences::DefaultNodePortDisplayMode, false},
    {OssSnNodeGraphPreferences::IsAutoInsertOn, false},
    {OssSnNodeGraphPreferences::ZoomTo, false},
    {OssSnNodeGraphPreferences::DefaultMCMCollapsedState, false},
    {OssSnNodeGraphPreferences::AutoUpdateUpstreamMergeNodeColorspaceEnabled, true},
    {OssSnNodeGraphPreferences::ShakeToExtractEnabled, true},
    {OssSnNodeGraphPreferences::ShakeToExtractShakes, true},
    {OssSnNodeGraphPreferences::ShakeToExtractTime, true},
    {OssSnNodeGraphPreferences::NumberOfLastUsedNodePathsToStore, true},
};
static_assert(sizeof(SettingsOrder) / sizeof(SettingsOrder[0]) == OssSnNodeGraphPreferences::Count,
              "every preference has its place in the settings");

} // namespace

void OssSnNodeGraphPreferences::load(QObject *owner)
{
    OssSettings settings;
    settings.beginGroup(settingsGroup());
    for (const SettingsSlot &slot : SettingsOrder) {
        const Entry &e = entry(slot.preference);
        const QString key = QString::fromLatin1(e.key);
        if (settings.contains(key))
            write(owner, e, stored(settings.value(key), e));
        else if (slot.fromDefault)
            write(owner, e, defaultValue(slot.preference));
    }
}

void OssSnNodeGraphPreferences::save(const QObject *owner)
{
    OssSettings settings;
    settings.beginGroup(settingsGroup());
    for (const SettingsSlot &slot : SettingsOrder) {
        const Entry &e = entry(slot.preference);
        settings.setValue(QString::fromLatin1(e.key), stored(propertyOf(owner, e).read(owner), e));
    }
}

void OssSnNodeGraphPreferences::registerWith(QObject *owner)
{
    OssPreferenceManager *preferences = OssPreferenceManager::instance();
    for (int i = 0; i < Count; ++i) {
        const Entry &e = table()[i];
        if (!preferences->registerPreference(page(), section(Preference(i)), owner,
                                             QString::fromLatin1(e.key)))
            OSS_DEBUG("[ !! ] Cannot register the preference %s", e.key);
    }
}
