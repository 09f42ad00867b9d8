#pragma once

#include "compose/PelinorDraft.h"
#include "foundation/KRResult.h"
#include "services/TwitterServiceContext.h"

#include <functional>
#include <memory>

/// Shortens the links of a draft. Answers come when they come: the draft may have changed by then. Main
/// thread; owned by a std::shared_ptr, and when that goes answers change nothing any more.
class PelinorLinkShortening final : public std::enable_shared_from_this<PelinorLinkShortening> {
public:
    /// What it does to the text that is edited.
    struct Editor {
        std::function<QString()> text;
        /// So that it can be undone.
        std::function<void(KRRange range, const QString& replacement)> replace;
        /// Whether answers are awaited.
        std::function<void(bool isBusy)> setBusy;
    };

    explicit PelinorLinkShortening(Editor editor);
    PelinorLinkShortening(const PelinorLinkShortening&) = delete;
    PelinorLinkShortening& operator=(const PelinorLinkShortening&) = delete;
    ~PelinorLinkShortening();

    /// Asks for every link of the text, each as often as it is there.
    void shortenURLs(const TwitterServiceContext& context);

private:
    void _pushProgress();
    void _popProgress();
    void _didShorten(const KRResult<QString>& response, const QString& link);

    Editor m_editor;
    int m_progressCount = 0;
};
