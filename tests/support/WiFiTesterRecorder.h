#pragma once

#include <Brightmere/core/BMWiFiTester.h>
#include <Brightmere/core/BMWiFiTesterDelegate.h>

#include <QStringList>

#include <functional>

// Every delegate call ("setup", "setup-error", "result", "finish"); it can
// act from inside one, as a screen would.
struct WiFiTesterRecorder : BMWiFiTesterDelegate
{
    QStringList events;
    WifiTestResult::List results;
    QList<BMError> errors;
    std::function<void(BMWiFiTester *, const QString &)> onEvent;

    void wiFiTesterDidFinishSetupWithError(BMWiFiTester *t, const std::optional<BMError> &e) override
    {
        note(t, e ? "setup-error" : "setup", e);
    }
    void wiFiTesterDidUpdateWithTestResult(BMWiFiTester *t, const WifiTestResult::Ptr &result) override
    {
        results << result;
        note(t, "result", std::nullopt);
    }
    void wiFiTesterDidFinishWithError(BMWiFiTester *t, const std::optional<BMError> &e) override { note(t, "finish", e); }
    QList<double> speeds() const
    {
        QList<double> list;
        for (const auto &r : results)
            list << r->speedInMbps();
        return list;
    }
    void note(BMWiFiTester *tester, const QString &event, const std::optional<BMError> &error)
    {
        if (error)
            errors << *error;
        events << event;
        if (onEvent)
            onEvent(tester, event);
    }
};
