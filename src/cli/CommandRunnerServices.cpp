#include "cli/CommandRunner.h"
#include "cli/ServerCheck.h"
#include "services/KRImageService.h"
#include "services/URLShorteners.h"

#include <QMimeDatabase>

#include <iterator>
#include <span>

using namespace Qt::StringLiterals;

namespace {

struct NamedService {
    const char16_t* name;
    int preference;
};

constexpr NamedService shorteners[] = {
    { u"bitly", URLShorteningServiceBitly },
    { u"tinyurl", URLShorteningServiceTinyURL },
    { u"isgd", URLShorteningServiceIsGd },
    { u"trim", URLShorteningServiceTrIm },
    { u"diggbar", URLShorteningServiceDiggBar },
};

constexpr NamedService imageServices[] = {
    { u"yfrog", KRImageServiceYFrog },
    { u"twitpic", KRImageServiceTwitPic },
    { u"twitgoo", KRImageServiceTwitgoo },
    { u"posterous", KRImageServicePosterous },
    { u"imgly", KRImageServiceImgLy },
    { u"pixim", KRImageServicePixIm },
};

// No preference chooses among these.
constexpr NamedService expanders[] = { { u"bitly", 0 }, { u"longurl", 0 } };

KRError unknownService(const QString& name, std::span<const NamedService> services)
{
    QStringList names;
    for (const NamedService& service : services)
        names.append(QString::fromUtf16(service.name));
    return CommandLine::wrongUsage(
        u"There is no service \"%1\" for this; there are %2"_s.arg(name, names.join(u", "_s)));
}

/// No name leaves the choice to the preferences.
KRResult<TwitterServiceContext>
contextFor(const TwitterServiceHosts& hosts, const QString& name, std::span<const NamedService> services)
{
    TwitterServiceContext context { hosts };
    if (name.isEmpty())
        return context;
    for (const NamedService& service : services) {
        if (name == QStringView(service.name)) {
            context.preference = service.preference;
            return context;
        }
    }
    return unknownService(name, services);
}

bool isMovie(const QString& path)
{
    return QMimeDatabase().mimeTypeForFile(path).name().startsWith("video/"_L1);
}

QString addressText(const QUrl& url)
{
    return QString::fromLatin1(url.toEncoded());
}

} // namespace

void CommandRunner::_startOutsideService()
{
    const TwitterServiceHosts& hosts = m_account->context().hosts;
    const QString argument = m_line.arguments.value(0);
    switch (m_line.command) {
    case Command::Shorten:
        _startShortening();
        break;
    case Command::Expand:
        _startExpanding();
        break;
    case Command::Upload:
        _startUpload();
        break;
    case Command::LongPost:
        Twitlonger::post(hosts, argument, m_account->username(), _then(&CommandRunner::gotLongPost));
        break;
    case Command::Shrink:
        Tweetshrink::shrink(hosts, argument, _then(&CommandRunner::gotShrunkText));
        break;
    default:
        _startCheck();
    }
}

void CommandRunner::_startShortening()
{
    const auto context = contextFor(m_account->context().hosts, m_line.service, shorteners);
    if (context.isError())
        _fail(context.error());
    else
        URLShorteningService::shortenURLString(context.value(),
            m_line.arguments.value(0),
            _then(&CommandRunner::gotLink));
}

void CommandRunner::_startExpanding()
{
    const TwitterServiceHosts& hosts = m_account->context().hosts;
    const QString link = m_line.arguments.value(0);
    const KRCallback<QString> callback = _then(&CommandRunner::gotLink);
    if (m_line.service.isEmpty())
        URLShorteningService::expandURLString(TwitterServiceContext { hosts }, link, callback);
    else if (m_line.service == u"bitly")
        BitlyShortener().expandURLString(hosts, link, callback);
    else if (m_line.service == u"longurl")
        LongURLShortener().expandURLString(hosts, link, callback);
    else
        _fail(unknownService(m_line.service, expanders));
}

void CommandRunner::_startUpload()
{
    const QString path = m_line.arguments.value(0);
    auto context = contextFor(m_account->context().hosts, m_line.service, imageServices);
    if (!context.isError())
        context.value().siteTakesUploads = m_account->siteTakesUploads();
    const auto callback = _then(&CommandRunner::gotUploadedFile);
    if (context.isError())
        _fail(context.error());
    else if (!isMovie(path))
        KRImageService::postImage(context.value(), path, *m_account, callback);
    else if (context.value().preference.value_or(KRImageServiceYFrog) == KRImageServiceYFrog)
        KRImageService::postVideo(context.value(), path, *m_account, callback);
    else
        _fail(errorWithDomain(QString::fromUtf16(TwitterServiceErrorDomain),
            -1,
            u"Movies are taken by yfrog alone"_s));
}

void CommandRunner::_startCheck()
{
    const auto writing = m_line.writes ? ServerCheck::Writing::Yes : ServerCheck::Writing::No;
    std::make_shared<ServerCheck>(m_account, writing)
        ->start(_then(&CommandRunner::gotCheckResult), _then(&CommandRunner::checkDidEnd));
}

// --- Results

void CommandRunner::gotLink(const KRResult<QString>& result)
{
    if (result.isError())
        _fail(result.error());
    else
        _printLine("url", result.value(), result.value());
}

void CommandRunner::gotUploadedFile(const KRResult<QUrl>& result)
{
    if (result.isError())
        _fail(result.error());
    else
        _printLine("url", addressText(result.value()), addressText(result.value()));
}

void CommandRunner::gotLongPost(const KRResult<Twitlonger>& result)
{
    if (result.isError()) {
        _fail(result.error());
        return;
    }
    const Twitlonger& answer = result.value();
    _printObject({ { u"identifier"_s, answer.identifier() },
                     { u"link"_s, addressText(answer.link()) },
                     { u"shortLink"_s, answer.shortLink() },
                     { u"content"_s, answer.content() } },
        answer.content());
    m_exitCode = 0;
}

void CommandRunner::gotShrunkText(const KRResult<Tweetshrink>& result)
{
    if (result.isError()) {
        _fail(result.error());
        return;
    }
    const Tweetshrink& answer = result.value();
    _printObject({ { u"text"_s, answer.text() }, { u"difference"_s, answer.difference() } }, answer.text());
    m_exitCode = 0;
}

void CommandRunner::gotCheckResult(const KRResult<ServerCheckResult>& result)
{
    const ServerCheckResult& judged = result.value();
    _printObject(judged.jsonObject(), judged.text());
    m_output.flush();
}

void CommandRunner::checkDidEnd(const KRResult<ServerCheck::Verdict>& verdict)
{
    switch (verdict.value()) {
    case ServerCheck::Verdict::Usable:
        _printLine("usable", true, u"Pelinor can be used with this server."_s);
        break;
    case ServerCheck::Verdict::NotUsable:
        _printLine("usable",
            false,
            u"Pelinor cannot be used with this server: see sign-in and home timeline."_s);
        break;
    case ServerCheck::Verdict::NotReached:
        _printLine("usable", false, u"Pelinor cannot be used with this server: it was not reached."_s);
        break;
    case ServerCheck::Verdict::NotSignedIn:
        _printLine("usable",
            QJsonValue::Null,
            u"Whether Pelinor can be used with this server shows when it signs in: give --account and "
            "--password-stdin."_s);
        break;
    }
    m_exitCode = verdict.value() == ServerCheck::Verdict::Usable ? 0 : 1;
}
