#pragma once

#include <QString>
#include <QTemporaryDir>
#include <QTest>

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

// The current data row's value of a column, where an expression needs it and
// QFETCH's declaration does not fit.
template<typename T>
const T &fetched(const char *column)
{
    return *static_cast<const T *>(QTest::qData(column, qMetaTypeId<T>()));
}
