#include "compose/PelinorLinkShortening.h"

#include "foundation/KRLog.h"
#include "services/URLShorteningService.h"

#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

// Services answer with whatever they have, a page about an error for example.
bool isLink(const QString& text)
{
    const KRRangeList links = PelinorDraftRanges::linksOf(text);
    const QUrl url(text, QUrl::StrictMode);
    return links.size() == 1 && links.first() == KRRange { 0, text.size() } && url.isValid()
        && (url.scheme() == "http"_L1 || url.scheme() == "https"_L1);
}

} // namespace

PelinorLinkShortening::PelinorLinkShortening(Editor editor)
    : m_editor(std::move(editor))
{
}

PelinorLinkShortening::~PelinorLinkShortening()
{
    dissociateWeakProxy(this);
}

void PelinorLinkShortening::shortenURLs(const TwitterServiceContext& context)
{
    const QString text = m_editor.text();
    for (const KRRange& range : PelinorDraftRanges::linksOf(text)) {
        const QString link = KRSubstring(text, range);
        _pushProgress();
        URLShorteningService::shortenURLString(context,
            link,
            Callback(weakMainThreadProxy(shared_from_this()), &PelinorLinkShortening::_didShorten, link));
    }
}

void PelinorLinkShortening::_didShorten(const KRResult<QString>& response, const QString& link)
{
    _popProgress();
    if (response.isError()) {
        KRLog(u"URL shortening error: %1"_s.arg(response.error().description));
        return;
    }
    const QString shortLink = response.value().trimmed();
    if (shortLink.isEmpty()) {
        KRLog(u"Error: short url response is nil"_s);
        return;
    }
    if (!isLink(shortLink)) {
        KRLog(u"URL shortening error: the service answered with \"%1\""_s.arg(shortLink.left(80)));
        return;
    }
    // Not where it has become a part of another link.
    const QString text = m_editor.text();
    for (const KRRange& range : PelinorDraftRanges::linksOf(text)) {
        if (KRSubstring(text, range) == link) {
            m_editor.replace(range, shortLink);
            return;
        }
    }
}

void PelinorLinkShortening::_pushProgress()
{
    if (++m_progressCount == 1)
        m_editor.setBusy(true);
}

void PelinorLinkShortening::_popProgress()
{
    if (--m_progressCount == 0)
        m_editor.setBusy(false);
}
