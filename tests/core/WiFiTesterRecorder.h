#pragma once

#include "core/BMWiFiTester.h"
#include "core/BMWiFiTesterDelegate.h"

#include <QList>
#include <QStringList>
#include <QThread>

#include <functional>

// A tester delegate that writes down every call ("setup", "setup-error",
// "result", "finish") and can act from inside a call, as a screen would.
struct WiFiTesterRecorder : BMWiFiTesterDelegate
{
    QStringList events;
    WifiTestResult::List results;
    QList<BMError> errors;
    QList<QThread *> threads;
    std::function<void(BMWiFiTester *, const QString &)> onEvent;

    void wiFiTesterDidFinishSetupWithError(BMWiFiTester *tester, const std::optional<BMError> &error) override
    {
        if (error)
            errors << *error;
        note(tester, error ? QStringLiteral("setup-error") : QStringLiteral("setup"));
    }
    void wiFiTesterDidUpdateWithTestResult(BMWiFiTester *tester, const WifiTestResult::Ptr &result) override
    {
        results << result;
        note(tester, QStringLiteral("result"));
    }
    void wiFiTesterDidFinishWithError(BMWiFiTester *tester, const std::optional<BMError> &error) override
    {
        if (error)
            errors << *error;
        note(tester, QStringLiteral("finish"));
    }

    QList<double> speeds() const
    {
        QList<double> list;
        for (const auto &r : results)
            list << r->speedInMbps();
        return list;
    }

private:
    void note(BMWiFiTester *tester, const QString &event)
    {
        events << event;
        threads << QThread::currentThread();
        if (onEvent)
            onEvent(tester, event);
    }
};
