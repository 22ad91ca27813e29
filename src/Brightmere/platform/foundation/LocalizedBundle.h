#pragma once

#include <Brightmere/FoundationExport.h>

#include "StringTable.h"

#include <QHash>
#include <QMutex>
#include <QString>
#include <QStringList>

#include <memory>

namespace Brightmere {

// A bundle of per-language string tables laid out as
// "<root>/<lang>.lproj/Localizable.strings", as the platform's bundles keep
// them. framework() holds the kit's own tables (compiled into the kit's
// resources under ":/lproj"); main() holds the host application's, which a
// host adds with
//
//     qt_add_resources(app "host_strings" PREFIX "/main"
//         FILES lproj/en.lproj/Localizable.strings ...)
//
// so they land under ":/main/lproj".
//
// Every visible text is looked up here, from any thread: folders and tables
// are read once and kept, so a repeated lookup is a hash hit. Tables are
// shared immutable values; a lookup never waits for a file read by another
// thread. setRoot() forgets everything read so far, also when the root is
// unchanged (that is how a test or a host makes the bundle see new files).
class BRIGHTMERE_FOUNDATION_EXPORT LocalizedBundle
{
public:
    static constexpr const char *kTableFileName = "Localizable.strings";
    static constexpr const char *kLocalizationSuffix = ".lproj";

    explicit LocalizedBundle(const QString &root);
    LocalizedBundle(const LocalizedBundle &) = delete;
    LocalizedBundle &operator=(const LocalizedBundle &) = delete;

    // The kit's own tables, root ":/lproj".
    static LocalizedBundle &framework();
    // The host application's tables, root ":/main/lproj".
    static LocalizedBundle &main();

    QString root() const;
    void setRoot(const QString &root);

    // "<root>/<lang>.lproj" when that folder exists, else a null QString. A
    // language that is empty or holds a path separator never matches.
    QString pathForLocalization(const QString &lang) const;

    // As the platform's bundle answers: the text of key in the table of the
    // folder localizationPath; else value when it is non-empty; else key.
    QString localizedString(const QString &key, const QString &value,
                            const QString &localizationPath) const;

    // The table of a localisation folder (empty when the folder has none or
    // the file cannot be read). Never null.
    std::shared_ptr<const StringTable> table(const QString &localizationPath) const;

    // The language codes that have a folder under the root, sorted.
    QStringList localizations() const;

private:
    mutable QMutex m_mutex;
    QString m_root;
    // Bumped by setRoot, so a read that started under the old root does not
    // put its result back into the fresh cache.
    quint64 m_generation = 0;
    mutable QHash<QString, QString> m_folders;
    mutable QHash<QString, std::shared_ptr<const StringTable>> m_tables;
};

} // namespace Brightmere
