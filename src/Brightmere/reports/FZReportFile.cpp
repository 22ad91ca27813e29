#include "FZReportFile.h"

#include <Brightmere/core/BMLogger.h>

#include <QSaveFile>

FZReportResult FZReportFile::writeBytes(const QString &path, const QByteArray &bytes, const QString &module)
{
    QSaveFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        const QString message = QStringLiteral("the file %1 could not be written: %2").arg(path, file.errorString());
        BMLogger::sharedInstance().log(module, 3, message);
        return FZReportResult::failure(FZReportResult::Error::FileNotWritten, message);
    }
    return FZReportResult::success();
}
