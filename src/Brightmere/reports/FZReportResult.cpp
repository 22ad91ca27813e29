#include "FZReportResult.h"

FZReportResult FZReportResult::success()
{
    return FZReportResult();
}

FZReportResult FZReportResult::failure(Error error, const QString &message)
{
    FZReportResult result;
    result.m_error = error == Error::None ? Error::InvalidInput : error;
    result.m_message = message;
    return result;
}
