#include "BMI18NBundleCache.h"

#include "BMI18NManager.h"
#include <Brightmere/core/BMLogger.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

namespace {

const QString kModule = QStringLiteral("BMI18NManager");
const QString kDefaultLang = QString::fromLatin1(kI18NDefaultLang);

// A cache file is a few tens of kilobytes; anything far larger is not ours.
constexpr qint64 kMaximumCacheFileSize = 16 * 1024 * 1024;

const QByteArray kCacheDirTagSignature = QByteArrayLiteral("Signature: 8a477f597d28d172789f06886806bc55");

template<typename... Args>
void logLine(int level, const char *format, const Args &...arguments)
{
    BMLogger::sharedInstance().logFromModule(kModule, level, QString::fromUtf8(format), arguments...);
}

} // namespace

QString BMI18NBundleCache::filePath(const QString &code)
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
    if (folder.isEmpty())
        return QString();
    return QDir(folder).filePath(code == kDefaultLang ? QStringLiteral("bundle_en") : QStringLiteral("bundle_user"));
}

BMI18NBundleCache::Texts BMI18NBundleCache::load(const QString &code)
{
    const QString path = filePath(code);
    if (path.isEmpty() || !QFileInfo::exists(path))
        return {};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        logLine(3, "loadBundle %@: cannot read %@ (%@)", code, path, file.errorString());
        return {};
    }
    if (file.size() > kMaximumCacheFileSize) {
        logLine(3, "loadBundle %@: %@ is %@ bytes, too large for a bundle; it is ignored", code, path, file.size());
        return {};
    }
    int skippedLines = 0;
    const std::optional<Texts> texts = BMI18NBundleFile::decode(file.readAll(), &skippedLines);
    if (!texts) {
        logLine(3, "loadBundle %@: %@ is not UTF-8 text; it is ignored", code, path);
        return {};
    }
    if (skippedLines > 0)
        logLine(2, "loadBundle %@: %@ line(s) without \"=\" in %@ were skipped", code, skippedLines, path);
    return *texts;
}

void BMI18NBundleCache::save(const QString &code, const Texts &texts)
{
    QStringList skipped;
    const QByteArray text = BMI18NBundleFile::encode(texts, &skipped);
    if (!skipped.isEmpty())
        logLine(2, "saveBundle %@: %@ key(s) holding \"=\" or a line feed cannot be cached and were left out: %@",
                code, skipped.size(), BMI18NBundleFile::keysForLog(skipped));

    const QString path = filePath(code);
    if (path.isEmpty()) {
        logLine(3, "saveBundle %@: the platform names no caches folder; the bundle stays in memory only", code);
        return;
    }
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder)) {
        logLine(3, "saveBundle %@: cannot create the caches folder %@; the bundle stays in memory only", code,
                folder);
        return;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit()) {
        logLine(3, "saveBundle %@: cannot write %@ (%@); the bundle stays in memory only", code, path,
                file.errorString());
        file.cancelWriting();
        return;
    }
    excludeFromBackup(QUrl::fromLocalFile(path));
}

bool BMI18NBundleCache::excludeFromBackup(const QUrl &url)
{
    const QString path = url.toLocalFile();
    if (path.isEmpty() || !QFileInfo::exists(path))
        return false;
    const QFileInfo info(path);
    const QString tagPath = QDir(info.absolutePath()).filePath(QStringLiteral("CACHEDIR.TAG"));
    {
        QFile existing(tagPath);
        if (existing.open(QIODevice::ReadOnly) && existing.read(kCacheDirTagSignature.size()) == kCacheDirTagSignature)
            return true;
    }
    QSaveFile tag(tagPath);
    const QByteArray content = kCacheDirTagSignature
        + "\n# This file is a cache directory tag created by BrightmereMobileSDKUI.\n"
          "# For information about cache directory tags see https://bford.info/cachedir/\n";
    if (!tag.open(QIODevice::WriteOnly) || tag.write(content) != content.size() || !tag.commit()) {
        logLine(3, "Error excluding %@ from backup %@", info.fileName(), tag.errorString());
        tag.cancelWriting();
        return false;
    }
    return true;
}
