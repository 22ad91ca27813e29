#pragma once

#include "FZReportResult.h"

#include <QByteArray>
#include <QString>

// Writes a finished report whole or not at all: a failed write leaves any
// file already at the path as it was.
class FZReportFile
{
public:
    static FZReportResult writeBytes(const QString &path, const QByteArray &bytes, const QString &module);
};
