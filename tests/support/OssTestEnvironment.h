#pragma once

#include <QString>
#include <QTemporaryDir>

// Per-test-program surroundings: settings in a fresh temporary folder, resources from the source
// tree, debug lines kept off standard error unless OSSA_TEST_VERBOSE is set.
class OssTestEnvironment
{
public:
    OssTestEnvironment();
    ~OssTestEnvironment();
    OssTestEnvironment(const OssTestEnvironment &) = delete;
    OssTestEnvironment &operator=(const OssTestEnvironment &) = delete;

    QString settingsDirectory() const { return m_settings.path(); }
    // A fresh folder for files a test writes; removed with the environment.
    QString scratchDirectory() const { return m_scratch.path(); }

private:
    QTemporaryDir m_settings;
    QTemporaryDir m_scratch;
};
