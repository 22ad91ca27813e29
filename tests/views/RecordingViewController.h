#pragma once

#include "platform/views/NavigationController.h"
#include "platform/views/StoryboardSegue.h"
#include "platform/views/ViewController.h"

#include <QStringList>

#include <functional>
#include <memory>

// A screen that writes each lifecycle call into a journal shared by all
// screens of a test, as "<name>.<call>", so whole sequences can be compared.
class RecordingViewController : public Brightmere::ViewController
{
public:
    using Journal = std::shared_ptr<QStringList>;

    RecordingViewController(const QString &name, Journal journal, QWidget *parent = nullptr)
        : ViewController(parent), m_name(name), m_journal(std::move(journal))
    {
        setTitle(name);
    }

    int layoutCount = 0;
    bool hadNavigationControllerAtLoad = false;
    std::function<void()> onLoad, onDidAppear, onLayout;
    std::function<void(Brightmere::StoryboardSegue &, QObject *)> onPrepare;

protected:
    void viewDidLoad() override
    {
        hadNavigationControllerAtLoad = navigationController() != nullptr;
        record("didLoad");
        if (onLoad)
            onLoad();
    }
    void viewWillAppear(bool) override { record("willAppear"); }
    void viewDidAppear(bool) override
    {
        record("didAppear");
        if (onDidAppear)
            onDidAppear();
    }
    void viewWillDisappear(bool) override { record("willDisappear"); }
    void viewDidDisappear(bool) override { record("didDisappear"); }
    void viewWillLayoutSubviews() override
    {
        ++layoutCount;
        if (onLayout)
            onLayout();
    }
    void prepareForSegue(Brightmere::StoryboardSegue &segue, QObject *sender) override
    {
        record("prepare:" + segue.identifier());
        if (onPrepare)
            onPrepare(segue, sender);
    }

private:
    void record(const QString &call) { m_journal->append(m_name + '.' + call); }

    QString m_name;
    Journal m_journal;
};
