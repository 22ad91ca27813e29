#pragma once

#include "core/BMWiFiTester.h"
#include "core/BMWiFiTesterDelegate.h"

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

    void wiFiTesterDidFinishSetupWithError(BMWiFiTester *t, const std::optional<BMError> &error) override
    {
        note(t, error ? "setup-error" : "setup", error);
    }
    void wiFiTesterDidUpdateWithTestResult(BMWiFiTester *t, const WifiTestResult::Ptr &result) override
    {
        results << result;
        note(t, "result", std::nullopt);
    }
    void wiFiTesterDidFinishWithError(BMWiFiTester *t, const std::optional<BMError> &error) override
    {
        note(t, "finish", error);
    }
    QList<double> speeds() const
    {
        QList<double> list;
        for (const auto &r : results)
            list << r->speedInMbps();
        return list;
    }

private:
    void note(BMWiFiTester *tester, const QString &event, const std::optional<BMError> &error)
    {
        if (error)
            errors << *error;
        events << event;
        threads << QThread::currentThread();
        if (onEvent)
            onEvent(tester, event);
    }
};
