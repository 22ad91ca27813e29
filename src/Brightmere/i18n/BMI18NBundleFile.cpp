#include "BMI18NBundleFile.h"

#include <QStringDecoder>

namespace {

const QString kEscapedLineFeed = QStringLiteral("\\n");

} // namespace

QByteArray BMI18NBundleFile::encode(const Texts &texts, QStringList *skippedKeys)
{
    QString text;
    for (auto it = texts.cbegin(); it != texts.cend(); ++it) {
        const QString &key = it.key();
        if (key.contains(u'=') || key.contains(u'\n')) {
            if (skippedKeys)
                skippedKeys->append(key);
            continue;
        }
        QString value = it.value();
        value.replace(u'\n', kEscapedLineFeed);
        text += key;
        text += u'=';
        text += value;
        text += u'\n';
    }
    return text.toUtf8();
}

std::optional<BMI18NBundleFile::Texts> BMI18NBundleFile::decode(const QByteArray &data, int *skippedLines)
{
    // A byte-order mark at the start is a key's first character, not a
    // mark: the kit writes none, and dropping it would rename that key.
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
    const QString text = decoder.decode(data);
    if (decoder.hasError())
        return std::nullopt;

    Texts texts;
    int skipped = 0;
    const QStringView view(text);
    qsizetype start = 0;
    while (start < view.size()) {
        qsizetype end = view.indexOf(u'\n', start);
        if (end < 0)
            end = view.size();
        const QStringView line = view.sliced(start, end - start);
        start = end + 1;
        const qsizetype equals = line.indexOf(u'=');
        if (equals < 0) {
            if (!line.isEmpty())
                ++skipped;
            continue;
        }
        QString value = line.sliced(equals + 1).toString();
        value.replace(kEscapedLineFeed, QStringLiteral("\n"));
        texts.insert(line.first(equals).toString(), value);
    }
    if (skippedLines)
        *skippedLines = skipped;
    return texts;
}

QString BMI18NBundleFile::keysForLog(QStringList keys)
{
    // How many keys a log line names.
    constexpr qsizetype named = 5;
    keys.sort();
    const qsizetype total = keys.size();
    if (total > named)
        keys.resize(named);
    QString text = u'"' + keys.join(QStringLiteral("\", \"")) + u'"';
    if (total > named)
        text += QStringLiteral(" and %1 more").arg(total - named);
    return text;
}
