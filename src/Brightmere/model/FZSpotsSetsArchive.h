#pragma once

#include "FZHistoricalResultSpotsSet.h"

#include <QByteArray>
#include <QMap>
#include <QString>

#include <optional>

// The stored value of the saved sets: a table of each title with the length
// and digest of its packed set, then the packed sets one after another. A
// save packs only the sets that changed and hashes only the table; a reader
// checks each set's digest before it unpacks it. Also reads the single
// archive earlier versions wrote, whose sets wait to be packed on their
// first write.
class FZSpotsSetsArchive
{
public:
    // A stored set with the bytes it is stored as: a slice of the stored
    // value it was read from or written to, or bytes of its own while it
    // waits to be written (a set read from the earlier format has none until
    // then).
    struct StoredSet
    {
        FZHistoricalResultSpotsSet::Ptr set;
        QByteArray packed;
        QByteArray digest;
    };
    using StoredSets = QMap<QString, StoredSet>;

    // A set given by a caller, packed; what is kept for reading is decoded
    // from the very bytes written, not the caller's object, so sets stay
    // values. Without decodeBack the set is left out.
    static StoredSet packed(const FZHistoricalResultSpotsSet &set, bool decodeBack = true);
    // A copy with copies of the spots.
    static FZHistoricalResultSpotsSet::Ptr copyOf(const FZHistoricalResultSpotsSet &set);
    // The stored value of the sets. Sets still stored side by side in the
    // value they were read from are copied in one run, so a save of one set
    // among thousands copies a few large blocks, not a block per set. Each
    // set's bytes become a slice of the new value.
    static QByteArray assembled(StoredSets &sets);
    // The sets of a stored value, their bytes slices of blob; sets whose
    // digest is among `known` are taken from there, not unpacked again.
    // std::nullopt, with the reason in *error, when it cannot be read.
    static std::optional<StoredSets> read(const QByteArray &blob, const StoredSets &known, QString *error);
};
