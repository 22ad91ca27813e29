#pragma once

#include <Brightmere/SDKUIExport.h>

#include "FZReportResult.h"
#include <Brightmere/model/FZHistoricalResultSpotsSet.h>
#include <Brightmere/model/FZResultSpotsSetsComparison.h>

#include <QList>
#include <QLocale>
#include <QPageSize>
#include <QRectF>
#include <QString>

/// A PDF report a person can send: for one set its title, network, date, a
/// bar chart of the speeds and a table of the spots; for a comparison both
/// sets side by side, a one-line verdict, paired bars and the change per
/// spot. Long tables flow onto further pages, each with the table's header
/// again; a row is never split between pages. Texts come from the
/// localisation manager, colours and faces from the kit's tables.
///
/// Needs a QGuiApplication (fonts), not widgets. Page size by the locale:
/// Letter where that is the usual paper, A4 elsewhere.
class BRIGHTMERE_SDKUI_EXPORT FZReportPdfWriter
{
public:
    /// Where each table row was drawn, in points within the page's printable area.
    struct RowPlacement
    {
        int page = 0; ///< page of the row, from 0
        QRectF rect; ///< the row's rectangle on that page
    };
    /// How the last report was laid out, for tests and hosts that check it.
    struct Layout
    {
        int pageCount = 0; ///< pages written
        QRectF printableRect; ///< the page's printable area, in points
        QList<RowPlacement> rows; ///< every table row, in the order drawn
    };

    /// A writer whose page size and formats follow locale.
    explicit FZReportPdfWriter(const QLocale &locale = QLocale());

    /// Writes the report of one set to path, all or nothing.
    FZReportResult writeSetReport(const FZHistoricalResultSpotsSet::Ptr &set, const QString &path);
    /// Writes the report of a comparison to path, all or nothing; hideIdentical as in the CSV.
    FZReportResult writeComparisonReport(const FZResultSpotsSetsComparison &comparison, bool hideIdentical,
                                         const QString &path);

    /// The layout of the last report written.
    const Layout &lastLayout() const { return m_layout; }

    /// Letter for locales that use it, A4 for the others.
    static QPageSize::PageSizeId pageSizeForLocale(const QLocale &locale);

private:
    QLocale m_locale;
    Layout m_layout;
};
