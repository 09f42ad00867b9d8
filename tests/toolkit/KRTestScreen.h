#pragma once

#include "toolkit/navigation/KRNavigationItem.h"
#include "toolkit/navigation/KRViewController.h"

#include <QByteArrayList>

/// A screen of one colour that writes down in a shared list what happens to it.
class KRTestScreen final : public KRViewController {
public:
    KRTestScreen(const QString& name, QByteArrayList& calls, QColor color = Qt::gray)
        : m_name(name)
        , m_calls(calls)
        , m_color(color)
    {
        navigationItem()->setTitle(name);
    }

    /// What has been written down since the last time.
    static QByteArray taken(QByteArrayList& calls) { return std::exchange(calls, {}).join(", "); }
    static std::shared_ptr<KRTestScreen>
    make(const QString& name, QByteArrayList& calls, QColor color = Qt::gray)
    {
        return std::make_shared<KRTestScreen>(name, calls, color);
    }

    void loadView() override
    {
        auto view = std::make_unique<QWidget>();
        view->setAutoFillBackground(true);
        view->setPalette(QPalette(m_color));
        setView(std::move(view));
    }
    void viewWillAppear(bool animated) override { _call("will+", animated, onWillAppear); }
    void viewDidAppear(bool animated) override { _call("did+", animated, onDidAppear); }
    void viewWillDisappear(bool animated) override { _call("will-", animated, {}); }
    void viewDidDisappear(bool animated) override { _call("did-", animated, {}); }
    int pushAnimation() const override { return pushCode; }
    int popAnimation() const override { return popCode; }
    bool keyUp(const QKeyEvent& /*event*/) override
    {
        m_calls.append(m_name.toUtf8() + " keyUp");
        return false;
    }

    std::function<void()> onWillAppear;
    std::function<void()> onDidAppear;
    int pushCode = KRViewController::pushAnimation();
    int popCode = KRViewController::popAnimation();

private:
    void _call(const char* hook, bool animated, const std::function<void()>& then)
    {
        m_calls.append(m_name.toUtf8() + ' ' + hook + (animated ? " animated" : ""));
        if (then)
            then();
    }

    QString m_name;
    QByteArrayList& m_calls;
    QColor m_color;
};
