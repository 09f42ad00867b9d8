#pragma once

#include <QApplication>
#include <QPointer>

class QAction;

/// The application object of a program that uses this toolkit. It can ignore the user for a while: what is
/// typed and clicked then is dropped, not kept for later. Main thread.
class KRApplication : public QApplication {
    Q_OBJECT

public:
    KRApplication(int& argc, char** argv);
    ~KRApplication() override;

    /// Null in a program whose application object is of another class.
    static KRApplication* sharedApplication();

    /// The two are counted and nest. Ending more often than beginning is logged and has no other effect.
    /// KRIgnoredUserInteraction pairs them.
    void beginIgnoringUserInteraction();
    void endIgnoringUserInteraction();
    [[nodiscard]] bool isIgnoringUserInteraction() const { return m_userInteractionDisable != 0; }

    /// Triggers the action and answers true, unless the user is being ignored. For what the user asks for by
    /// other ways than the events of a window: hot keys, menus that another process draws.
    bool sendAction(QAction& action);

    bool notify(QObject* receiver, QEvent* event) override;

private:
    qint64 m_userInteractionDisable = 0;
};

/// The user is ignored for as long as this value lives.
class [[nodiscard]] KRIgnoredUserInteraction {
public:
    KRIgnoredUserInteraction();
    KRIgnoredUserInteraction(const KRIgnoredUserInteraction&) = delete;
    KRIgnoredUserInteraction& operator=(const KRIgnoredUserInteraction&) = delete;
    ~KRIgnoredUserInteraction();

private:
    QPointer<KRApplication> m_application;
};
