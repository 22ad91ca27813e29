#pragma once

#include "BMI18NBundleFile.h"

#include <QString>
#include <QUrl>

// The downloaded bundles' files in the caches folder: "bundle_en" for
// English and "bundle_user" for the one other language kept, each beside a
// CACHEDIR.TAG that keeps the folder out of backups. Failures give a log
// line (module "BMI18NManager") and leave the texts in memory.
class BMI18NBundleCache
{
public:
    using Texts = BMI18NBundleFile::Texts;

    // Empty when the platform names no caches folder.
    static QString filePath(const QString &code);
    // Empty when there is no file or it cannot be read (logged).
    static Texts load(const QString &code);
    // Atomically; keys the format cannot hold are left out (logged).
    static void save(const QString &code, const Texts &texts);
    // False (logged when writing the tag failed) when not done.
    static bool excludeFromBackup(const QUrl &url);
};
