#pragma once

#include <QPair>
#include <QString>
#include <QStringList>
#include <QVector>

#include <initializer_list>

// A string-to-string map that keeps its keys in insertion order (attribute lists written to and
// read from files keep their order). Inserting an existing key replaces its value in place.
class OssStringMap
{
public:
    using Entry = QPair<QString, QString>;

    OssStringMap() = default;
    OssStringMap(std::initializer_list<Entry> entries)
    {
        for (const Entry &entry : entries)
            insert(entry.first, entry.second);
    }

    void insert(const QString &key, const QString &value)
    {
        for (Entry &entry : m_entries) {
            if (entry.first == key) {
                entry.second = value;
                return;
            }
        }
        m_entries.append({key, value});
    }
    QString value(const QString &key, const QString &fallback = {}) const
    {
        for (const Entry &entry : m_entries) {
            if (entry.first == key)
                return entry.second;
        }
        return fallback;
    }
    bool contains(const QString &key) const
    {
        for (const Entry &entry : m_entries) {
            if (entry.first == key)
                return true;
        }
        return false;
    }
    QStringList keys() const
    {
        QStringList result;
        for (const Entry &entry : m_entries)
            result.append(entry.first);
        return result;
    }
    QStringList values() const
    {
        QStringList result;
        for (const Entry &entry : m_entries)
            result.append(entry.second);
        return result;
    }
    int size() const { return m_entries.size(); }
    bool isEmpty() const { return m_entries.isEmpty(); }
    const QVector<Entry> &entries() const { return m_entries; }
    QVector<Entry>::const_iterator begin() const { return m_entries.begin(); }
    QVector<Entry>::const_iterator end() const { return m_entries.end(); }
    bool operator==(const OssStringMap &other) const { return m_entries == other.m_entries; }
    bool operator!=(const OssStringMap &other) const { return !(*this == other); }

private:
    QVector<Entry> m_entries;
};
