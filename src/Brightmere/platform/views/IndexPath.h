#pragma once

#include <Brightmere/SDKUIExport.h>

#include <QMetaType>

namespace Brightmere {

/// A row's place in a TableView: its section and its row within the section.
/// The default value (row -1) stands for "no row".
class BRIGHTMERE_SDKUI_EXPORT IndexPath
{
public:
    constexpr IndexPath() = default;
    /// The place of row in section.
    constexpr IndexPath(int row, int section)
        : m_row(row)
        , m_section(section)
    {
    }

    /// The row within its section.
    constexpr int row() const { return m_row; }
    /// The section.
    constexpr int section() const { return m_section; }
    /// Whether it names a row.
    constexpr bool isValid() const { return m_row >= 0 && m_section >= 0; }

    friend constexpr bool operator==(const IndexPath &, const IndexPath &) = default;

private:
    int m_row = -1;
    int m_section = 0;
};

} // namespace Brightmere

Q_DECLARE_METATYPE(Brightmere::IndexPath)
