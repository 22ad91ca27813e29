#include "BMI18NBundleAnswer.h"

#include "BMI18NManager.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/core/BMSDKRestServiceManager.h>

namespace {

const QString kModule = QStringLiteral("BMI18NManager");
const QString kBundleArrayKey = QStringLiteral("bundleArray");
const QString kIdKey = QStringLiteral("_id");
const QString kTsKey = QStringLiteral("ts");
const QString kContentsKey = QStringLiteral("contents");

template<typename... Args>
void logLine(int level, const char *format, const Args &...arguments)
{
    BMLogger::sharedInstance().logFromModule(kModule, level, QString::fromUtf8(format), arguments...);
}

bool isMap(const QVariant &value)
{
    return value.typeId() == QMetaType::QVariantMap;
}

} // namespace

std::optional<double> BMI18NBundleAnswer::timestamp(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
        return value.toDouble();
    default:
        return std::nullopt;
    }
}

QList<BMI18NBundleAnswer::Listed> BMI18NBundleAnswer::listedBundles(const QVariantMap &response)
{
    const QVariant data = response.value(QLatin1String(kRestServiceResponseDataKey));
    const QVariant list = isMap(data) ? data.toMap().value(kBundleArrayKey) : QVariant();
    if (list.typeId() != QMetaType::QVariantList) {
        logLine(3, "the bundle list answer holds no \"bundleArray\" list; the current language is downloaded");
        return {};
    }
    QList<Listed> listed;
    const QVariantList entries = list.toList();
    for (const QVariant &entry : entries) {
        const QVariantMap fields = entry.toMap();
        const QVariant id = fields.value(kIdKey);
        if (!isMap(entry) || id.typeId() != QMetaType::QString) {
            logLine(3, "a bundle list entry without a language code is skipped: %@", entry);
            continue;
        }
        const QString code = id.toString();
        if (!BMI18NManager::isLanguageCode(code)) {
            logLine(3, "a bundle list entry whose language \"%@\" is no language code is skipped", code.left(64));
            continue;
        }
        const QVariant tsValue = fields.value(kTsKey);
        const std::optional<double> ts = timestamp(tsValue);
        if (!ts && tsValue.isValid())
            logLine(3, "the time stamp of %@ in the bundle list is not a number (%@); it counts as missing", code,
                    tsValue);
        listed.append({code, ts});
    }
    return listed;
}

std::optional<BMI18NBundleAnswer::Bundle> BMI18NBundleAnswer::bundle(const QVariantMap &response)
{
    bool isNumber = false;
    const int code = response.value(QLatin1String(kRestServiceResponseCodeKey)).toInt(&isNumber);
    if (!isNumber || code != kRestServiceResponseCodeSuccessValue) {
        logLine(2, "requestBundleDataError %@", response.value(QLatin1String(kRestServiceResponseMessageKey)));
        return std::nullopt;
    }

    // A damaged answer changes nothing: the texts held stay in use.
    const QVariant data = response.value(QLatin1String(kRestServiceResponseDataKey));
    const QVariantMap payload = data.toMap();
    const QVariant id = payload.value(kIdKey);
    const QVariant contents = payload.value(kContentsKey);
    QString problem;
    if (!isMap(data))
        problem = QStringLiteral("the answer holds no data object");
    else if (id.typeId() != QMetaType::QString || id.toString().isEmpty())
        problem = QStringLiteral("the bundle has no language code");
    else if (!BMI18NManager::isLanguageCode(id.toString()))
        problem = QStringLiteral("the bundle's language \"%1\" is no language code").arg(id.toString().left(64));
    else if (!isMap(contents))
        problem = QStringLiteral("the bundle's \"contents\" is not a dictionary");
    if (!problem.isEmpty()) {
        logLine(3, "requestBundleDataError %@", problem);
        return std::nullopt;
    }

    const QString language = id.toString();
    Texts texts;
    QStringList notTexts;
    const QVariantMap entries = contents.toMap();
    for (auto it = entries.cbegin(); it != entries.cend(); ++it) {
        if (it.value().typeId() == QMetaType::QString)
            texts.insert(it.key(), it.value().toString());
        else
            notTexts.append(it.key());
    }
    if (!notTexts.isEmpty())
        logLine(3, "bundle %@: %@ entr(ies) whose value is not a text were skipped: %@", language, notTexts.size(),
                BMI18NBundleFile::keysForLog(notTexts));
    const QVariant tsValue = payload.value(kTsKey);
    const std::optional<double> ts = timestamp(tsValue);
    if (!ts)
        logLine(3, "bundle %@ has no numeric time stamp (%@); it will be downloaded again on the next refresh",
                language, tsValue);
    return Bundle{language, texts, ts};
}
