#pragma once

#include "compose/UsernameAutocompletionDelegate.h"

#include <QListWidget>

class PelinorTextView;
class QKeyEvent;

/// The names offered below the one that is being typed. The keyboard stays with the text: up and down choose,
/// and Enter or Tab take what was chosen; while nothing is, they do what they always do. Main thread.
class PelinorNameCompletion final : public QListWidget {
    Q_OBJECT

public:
    /// The list belongs to the view's window.
    PelinorNameCompletion(PelinorTextView& view, const Twitter& twitter);
    ~PelinorNameCompletion() override;

    /// Whether the key was for the list.
    bool handleKey(QKeyEvent& event);

private:
    void _complete();
    void _take();
    void _move(int by);

    PelinorTextView& m_view;
    UsernameAutocompletionDelegate m_names;
    KRRange m_typed;
};
