#pragma once

#include "BMI18NBundleFile.h"

#include <QList>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <optional>

// Reads the localisation service's answers, which are untrusted: entries
// that are damaged are skipped with a log line (module "BMI18NManager"),
// and only language codes that look like one are taken.
class BMI18NBundleAnswer
{
public:
    using Texts = BMI18NBundleFile::Texts;

    // A bundle the service lists, with its time stamp when it gave a number.
    struct Listed
    {
        QString code;
        std::optional<double> ts;
    };
    // The bundles of the bundle list answer, in its order. An answer
    // without a list gives none.
    static QList<Listed> listedBundles(const QVariantMap &response);

    struct Bundle
    {
        QString language;
        Texts texts;
        std::optional<double> ts;
    };
    // The bundle of a bundle answer; entries whose value is not a text are
    // left out. std::nullopt (logged) for an unsuccessful or damaged answer.
    static std::optional<Bundle> bundle(const QVariantMap &response);

    // A time stamp is a JSON number; anything else counts as absent.
    static std::optional<double> timestamp(const QVariant &value);
};
