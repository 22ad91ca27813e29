#pragma once

#include <QString>
#include <QTemporaryDir>

// Puts a test case in a world of its own: QStandardPaths in test mode, a
// fresh temporary folder, the standard user defaults in a file inside it,
// the core library's backend and simulated network at their defaults.
// Make one in init() and drop it in cleanup().
class TestEnvironment
{
public:
    TestEnvironment();
    ~TestEnvironment();

    QString path() const { return m_dir.path(); }
    QString filePath(const QString &name) const { return m_dir.filePath(name); }
    QString defaultsFilePath() const { return m_dir.filePath(QStringLiteral("defaults.ini")); }

private:
    QTemporaryDir m_dir;
};
