#include "services/TwitPicCompatibleImageService.h"

#include "api/TwitterCredentials.h"
#include "api/TwitterRequestStart.h"
#include "foundation/KRLog.h"
#include "parsing/KRXMLParser.h"
#include "services/KRUploadMonitor.h"
#include "services/TwitterServiceRequest.h"
#include "transport/KRBackgroundProxy.h"
#include "transport/KRHTTPMultipartFormData.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

KRError programError(const QString& description)
{
    return errorWithDomain(QString::fromUtf16(TwitterServiceErrorDomain), -1, description);
}

KRError postError(const char16_t* domain)
{
    return errorWithDomain(QString::fromUtf16(domain), -1, u"Could not post image."_s);
}

// What is posted for others to open: an address on the network.
bool isLink(const QUrl& url)
{
    return url.isValid() && (url.scheme() == "http"_L1 || url.scheme() == "https"_L1)
        && !url.host().isEmpty();
}

KRResult<QUrl> linkInAnswer(const QByteArray& body, const QByteArray& tag)
{
    QString link;
    const auto handler = KRXMLParser::Handler::withFunction([&](KRXMLParser& parser) {
        if (parser.elementName() == tag.toStdString() && parser.hasCharacters())
            link = parser.characters();
    });
    // A document may go wrong behind the link, when the file has long been stored.
    (void)KRXMLParser::parseData(body, handler);
    if (link.isEmpty())
        return postError(TwitPicCompatibleErrorDomain);
    const QUrl url(link, QUrl::StrictMode);
    if (!isLink(url))
        return postError(TwitPicCompatibleURLErrorDomain);
    return url;
}

// Found before anything is sent: the form takes a file that cannot be read for an empty one.
KRResult<QUrl>
checkedAddress(const KRResult<QUrl>& address, const QString& path, const TwitterCredentials& account)
{
    if (address.isError())
        return address;
    const QFileInfo file(path);
    if (!file.isFile() || !file.isReadable())
        return programError(u"The file %1 cannot be read"_s.arg(path));
    if (account.username().isEmpty())
        return programError(u"There is no account to send the file with"_s);
    if (account.password().isNull())
        return programError(u"The password of %1 is not known"_s.arg(account.username()));
    return address;
}

// The account's own server knows its password already, and asks for it as everywhere else.
bool isAtAccountsServer(const QUrl& address, const TwitterServiceHosts& hosts)
{
    const KRResult<QUrl> own = hosts.RESTURLForPath({});
    return !own.isError() && own.value().scheme() == address.scheme() && own.value().host() == address.host()
        && own.value().port(443) == address.port(443);
}

/// An upload on its way: copies the file into the form, for which no thread that others wait for has the
/// time, and sends it.
class Upload {
public:
    Upload(std::shared_ptr<KRHTTPMultipartFormData> form,
        QUrl address,
        std::shared_ptr<KRUploadMonitor> monitor,
        KRCallback<KRHTTPRequest&> callback)
        : m_form(std::move(form))
        , m_address(std::move(address))
        , m_monitor(std::move(monitor))
        , m_callback(std::move(callback))
    {
    }

    /// Before it is sent.
    void signIn(const TwitterCredentials& account)
    {
        m_username = account.username();
        m_password = account.password();
    }

    void send()
    {
        const std::shared_ptr<KRHTTPRequest> request = KRHTTPRequest::request();
        request->setMethod(QString::fromUtf16(KRHTTPMethodPOST));
        request->setMultipartFormData(m_form);
        request->setUsername(m_username);
        request->setPassword(m_password);
        if (m_monitor)
            m_monitor->watch(request);
        // Rather than a picture without content, or a piece of one.
        std::optional<KRError> error = m_form->error();
        if (!error && !m_form->unreadableFile().isNull())
            error = programError(u"The file %1 cannot be read"_s.arg(m_form->unreadableFile()));
        if (error)
            m_form->cleanup();
        TwitterRequestStart::start(request,
            error ? KRResult<QUrl>(*error) : KRResult<QUrl>(m_address),
            m_callback);
    }

private:
    std::shared_ptr<KRHTTPMultipartFormData> m_form;
    QUrl m_address;
    QString m_username;
    QString m_password;
    std::shared_ptr<KRUploadMonitor> m_monitor;
    KRCallback<KRHTTPRequest&> m_callback;
};

} // namespace

void TwitPicCompatibleImageService::postImage(const KRUpload& upload, KRCallback<QUrl> callback) const
{
    _post(Media::Image, upload, std::move(callback));
}

void TwitPicCompatibleImageService::postVideo(const KRUpload& upload, KRCallback<QUrl> callback) const
{
    _post(Media::Video, upload, std::move(callback));
}

KRResult<QUrl> TwitPicCompatibleImageService::apiRoot(const TwitterServiceHosts&) const
{
    const QString text = u"Error: generic twitpic compatible service used"_s;
    KRLog(text);
    return programError(text);
}

QString TwitPicCompatibleImageService::mediaParameterName() const
{
    return u"media"_s;
}

QString TwitPicCompatibleImageService::mediaURLResponseTag() const
{
    return u"mediaurl"_s;
}

void TwitPicCompatibleImageService::_post(Media media,
    const KRUpload& upload,
    KRCallback<QUrl> callback) const
{
    // The services live as long as the program.
    const auto handler = KRCallback<KRHTTPRequest&>::withFunction(
        [this, callback](KRHTTPRequest& request) { didPostImage(request, callback); });
    const KRResult<QUrl> address = checkedAddress(apiRoot(upload.hosts), upload.path, upload.account);
    if (address.isError()) {
        TwitterServiceRequest::GET(address, handler);
        return;
    }
    const auto form = std::make_shared<KRHTTPMultipartFormData>();
    form->addTextPart(upload.account.username(), u"username"_s);
    const bool isAtServer = isAtAccountsServer(address.value(), upload.hosts);
    if (!isAtServer)
        form->addTextPart(upload.account.password(), u"password"_s);
    form->addTextPart(u"pelinor"_s, u"source"_s);
    if (media == Media::Image)
        form->addImageFile(upload.path, mediaParameterName());
    else
        form->addVideoFile(upload.path, mediaParameterName());
    const auto sent = std::make_shared<Upload>(form, address.value(), upload.monitor, handler);
    if (isAtServer)
        sent->signIn(upload.account);
    backgroundProxy(sent)->perform(&Upload::send);
}

void TwitPicCompatibleImageService::didPostImage(const KRHTTPRequest& request,
    const KRCallback<QUrl>& callback) const
{
    if (request.error())
        callback.invoke(*request.error());
    else
        callback.invoke(linkInAnswer(request.data(), mediaURLResponseTag().toUtf8()));
}
