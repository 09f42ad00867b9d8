#pragma once

#include "support/KRTest.h"

/// Writes down how a parser calls its handlers, as "label:call", a call in the words of the test's function.
template <class Parser>
class KRCallRecorder {
public:
    using Handler = typename Parser::Handler;
    using RepeatElement = typename Parser::RepeatElement;

    explicit KRCallRecorder(QString (*describe)(const Parser&))
        : m_describe(describe)
    {
    }

    /// Pushes the other handler at each call that reads as given.
    Handler handler(const QString& label,
        const QString& pushAt = {},
        const Handler& pushed = {},
        RepeatElement repeat = RepeatElement::No)
    {
        return Handler::withFunction([=, this](Parser& parser) {
            const QString call = m_describe(parser);
            m_calls.append(label + u':' + call);
            if (call == pushAt)
                parser.pushCallback(pushed, repeat);
        });
    }

    /// What is written down while the document is parsed, in one line.
    QString callsFor(const QByteArray& document, const Handler& handler)
    {
        m_calls.clear();
        EXPECT_FALSE(Parser::parseData(document, handler).isError()) << document.constData();
        return m_calls.join(u' ');
    }
    QString callsFor(const QByteArray& document) { return callsFor(document, handler(u"h"_s)); }

private:
    QString (*m_describe)(const Parser&);
    QStringList m_calls;
};
