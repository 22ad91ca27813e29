#include "LocalizedBundle.h"

#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>

namespace Brightmere {

Q_LOGGING_CATEGORY(lcLocalizedBundle, "brightmere.foundation")

namespace {

const std::shared_ptr<const StringTable> &emptyTable()
{
    static const std::shared_ptr<const StringTable> table = std::make_shared<const StringTable>();
    return table;
}

QString tablePath(const QString &localizationPath)
{
    return localizationPath + u'/' + QLatin1String(LocalizedBundle::kTableFileName);
}

} // namespace

LocalizedBundle::LocalizedBundle(const QString &root)
    : m_root(root)
{
}

LocalizedBundle &LocalizedBundle::framework()
{
    static LocalizedBundle bundle(QStringLiteral(":/lproj"));
    return bundle;
}

LocalizedBundle &LocalizedBundle::main()
{
    static LocalizedBundle bundle(QStringLiteral(":/main/lproj"));
    return bundle;
}

QString LocalizedBundle::root() const
{
    QMutexLocker lock(&m_mutex);
    return m_root;
}

void LocalizedBundle::setRoot(const QString &root)
{
    QMutexLocker lock(&m_mutex);
    m_root = root;
    ++m_generation;
    m_folders.clear();
    m_tables.clear();
}

QString LocalizedBundle::pathForLocalization(const QString &lang) const
{
    if (lang.isEmpty() || lang.contains(u'/') || lang.contains(u'\\'))
        return {};

    QString root;
    quint64 generation = 0;
    {
        QMutexLocker lock(&m_mutex);
        const auto it = m_folders.constFind(lang);
        if (it != m_folders.constEnd())
            return *it;
        root = m_root;
        generation = m_generation;
    }

    const QString candidate = root + u'/' + lang + QLatin1String(kLocalizationSuffix);
    const QString found = QFileInfo(candidate).isDir() ? candidate : QString();

    QMutexLocker lock(&m_mutex);
    if (generation == m_generation)
        m_folders.insert(lang, found);
    return found;
}

std::shared_ptr<const StringTable> LocalizedBundle::table(const QString &localizationPath) const
{
    if (localizationPath.isEmpty())
        return emptyTable();

    quint64 generation = 0;
    {
        QMutexLocker lock(&m_mutex);
        const auto it = m_tables.constFind(localizationPath);
        if (it != m_tables.constEnd())
            return *it;
        generation = m_generation;
    }

    // Read outside the lock: another thread's lookup of a table already held
    // must not wait for this file. Two threads may read the same file once
    // each; the first one to finish is kept.
    const QString path = tablePath(localizationPath);
    std::shared_ptr<const StringTable> loaded = emptyTable();
    if (QFileInfo::exists(path))
        loaded = std::make_shared<const StringTable>(StringTable::load(path));
    else
        qCDebug(lcLocalizedBundle).noquote() << "LocalizedBundle: no table at" << path;

    QMutexLocker lock(&m_mutex);
    if (generation != m_generation)
        return loaded;
    const auto it = m_tables.constFind(localizationPath);
    if (it != m_tables.constEnd())
        return *it;
    m_tables.insert(localizationPath, loaded);
    return loaded;
}

QString LocalizedBundle::localizedString(const QString &key, const QString &value,
                                         const QString &localizationPath) const
{
    const QString text = table(localizationPath)->value(key);
    if (!text.isNull())
        return text;
    if (!value.isEmpty())
        return value;
    return key;
}

QStringList LocalizedBundle::localizations() const
{
    const QString suffix = QLatin1String(kLocalizationSuffix);
    const QDir dir(root());
    QStringList languages;
    const QStringList folders = dir.entryList({QStringLiteral("*") + suffix}, QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &folder : folders) {
        const QString lang = folder.chopped(suffix.size());
        if (!lang.isEmpty())
            languages.append(lang);
    }
    languages.sort();
    return languages;
}

} // namespace Brightmere
