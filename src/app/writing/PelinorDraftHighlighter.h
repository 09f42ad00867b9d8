#pragma once

#include <QSyntaxHighlighter>

/// Colours the links, hashtags and names of a draft as they are typed. Main thread.
class PelinorDraftHighlighter final : public QSyntaxHighlighter {
    Q_OBJECT

public:
    using QSyntaxHighlighter::QSyntaxHighlighter;

protected:
    void highlightBlock(const QString& text) override;
};
