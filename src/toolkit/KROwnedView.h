#pragma once

#include <QPointer>
#include <QWidget>

#include <memory>
#include <utility>

/// Owns a view that is placed in a tree of views, whose root may destroy it first. Main thread.
class KROwnedView {
public:
    KROwnedView() = default;
    explicit KROwnedView(std::unique_ptr<QWidget> view)
        : m_view(view.release())
    {
    }
    KROwnedView(const KROwnedView&) = delete;
    KROwnedView& operator=(const KROwnedView&) = delete;
    ~KROwnedView() { reset(); }

    /// Null when there is none, and when the tree it was in has taken it along.
    QWidget* get() const { return m_view; }
    void reset(std::unique_ptr<QWidget> view = nullptr)
    {
        const std::unique_ptr<QWidget> former(
            std::exchange(m_view, QPointer<QWidget>(view.release())).data());
    }

private:
    QPointer<QWidget> m_view;
};
