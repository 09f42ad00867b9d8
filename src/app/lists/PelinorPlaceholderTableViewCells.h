#pragma once

#include "toolkit/KRTableViewCell.h"

#include <functional>

/// The cells of rows that stand for no post. Each draws one line of plain text, or nothing.
class PelinorPlaceholderTableViewCell : public KRTableViewCell {
    Q_OBJECT

public:
    using KRTableViewCell::KRTableViewCell;

    const QString& text() const { return m_text; }

protected:
    enum class Tone { Quiet, Action, Error };
    void setText(const QString& text, Tone tone);
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_text;
    Tone m_tone = Tone::Quiet;
};

/// A little room at the top of every list.
class HeaderStreamTableViewCell final : public PelinorPlaceholderTableViewCell {
    Q_OBJECT

public:
    HeaderStreamTableViewCell();
    static QString identifier();
    static int heightForTableWidth(int width);
};

/// A place where a list goes on: its bottom, or a gap in it.
class LoadingTableViewCell final : public PelinorPlaceholderTableViewCell {
    Q_OBJECT

public:
    enum class State {
        Loading,
        /// Nothing is on its way; a click asks for more.
        Waiting,
        /// The same, after a load that went wrong.
        Failed,
    };

    LoadingTableViewCell();
    static QString identifier();
    static int heightForTableWidth(int width);

    enum class Place {
        Bottom,
        Gap,
        /// Below the oldest post, where a list ended because no more could be loaded.
        End,
    };
    void setState(State state, Place place = Place::Bottom);
    static QString textForState(State state, Place place = Place::Bottom);
    /// Called for each click on the waiting row, and for Return, Space and a screen reader's press on it.
    void setClickHandler(std::function<void()> handler) { m_clicked = std::move(handler); }
    bool activate() override;

protected:
    void mousePressEvent(QMouseEvent* event) override;

private:
    State m_state = State::Loading;
    std::function<void()> m_clicked;
};

/// The bottom of a list that has ended.
class EndOfStreamTableViewCell final : public PelinorPlaceholderTableViewCell {
    Q_OBJECT

public:
    EndOfStreamTableViewCell();
    static QString identifier();
    static int heightForTableWidth(int width);

    void setText(const QString& text) { PelinorPlaceholderTableViewCell::setText(text, Tone::Quiet); }
};

/// A place where loading failed.
class ErrorStreamTableViewCell final : public PelinorPlaceholderTableViewCell {
    Q_OBJECT

public:
    ErrorStreamTableViewCell();
    static QString identifier();
    static int heightForTableWidth(int width);

    void setText(const QString& text) { PelinorPlaceholderTableViewCell::setText(text, Tone::Error); }
};
