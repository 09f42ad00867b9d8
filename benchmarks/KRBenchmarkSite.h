#pragma once

#include "support/KRTestServer.h"

#include <QBuffer>
#include <QColor>
#include <QDateTime>
#include <QImage>
#include <QLocale>
#include <QUrlQuery>

#include <atomic>
#include <map>
#include <mutex>

/// A site where much is written: every list of every account has a page of new posts each time somebody asks
/// what is new, and nothing older. The lists of two accounts share no post. A page begins with the last post
/// of the one before, so that there are no gaps.
class KRBenchmarkSite {
public:
    static constexpr int authorCount = 300;

    explicit KRBenchmarkSite(int postsOfAPage)
        : m_postsOfAPage(postsOfAPage)
        , m_server([this](const KRTestServer::Request& request,
                       KRTestServer::Connection& connection) { _answer(request, connection); },
              KRTestCertificate::Good)
    {
    }

    [[nodiscard]] QString host() const { return m_server.host(); }
    /// How many pages, and how many pictures, somebody has asked for.
    [[nodiscard]] int pageCount() const { return m_pageCount; }
    [[nodiscard]] int pictureCount() const { return m_pictureCount; }

private:
    struct Post {
        QByteArray id;
        QByteArray date;
        QByteArray text;
        QByteArray author;
        QByteArray picture;
    };

    void _answer(const KRTestServer::Request& request, KRTestServer::Connection& connection)
    {
        const QByteArray path = request.target.split('?').value(0);
        const QUrlQuery query(QString::fromLatin1(request.target.split('?').value(1)));
        if (path.startsWith("/pictures/")) {
            ++m_pictureCount;
            connection.respond(200, _picture(path.mid(10, path.size() - 14).toInt()));
        } else if (path.startsWith("/statuses/") || path.startsWith("/direct_messages")
            || path.startsWith("/search")) {
            const bool isOlder
                = query.hasQueryItem(QStringLiteral("max_id")) || query.hasQueryItem(QStringLiteral("page"));
            const QByteArray whose = path.startsWith("/search")
                ? query.queryItemValue(QStringLiteral("q")).toUtf8()
                : request.value("authorization");
            const QList<Post> page = isOlder ? QList<Post>() : _nextPage(path + ' ' + whose);
            ++m_pageCount;
            if (path.startsWith("/statuses/"))
                connection.respond(200, _statuses(page));
            else if (path.startsWith("/search"))
                connection.respond(200, _results(page));
            else
                connection.respond(200, _messages(page));
        } else if (path == "/users/show.xml") {
            const Post post { {}, {}, {}, "1", _addressOfPicture("1") };
            connection.respond(200,
                "<user>"
                    + _user(post).replace("author1",
                        query.queryItemValue(QStringLiteral("screen_name")).toUtf8())
                    + "</user>");
        } else {
            connection.respond(404, "nothing here");
        }
    }

    QList<Post> _nextPage(const QByteArray& list)
    {
        constexpr int distanceOfLists = 1'000'000;
        int last = 0;
        {
            const std::lock_guard lock(m_lock);
            const auto [found, isNew] = m_lastPosts.try_emplace(list, 0);
            if (isNew)
                found->second = int(m_lastPosts.size()) * distanceOfLists;
            found->second += m_postsOfAPage - 1;
            last = found->second;
        }
        QList<Post> page;
        for (int number = last; number > last - m_postsOfAPage; --number) {
            const QByteArray id = QByteArray::number(number);
            const QByteArray author = QByteArray::number(number % authorCount);
            const QDateTime date = m_start.addSecs((number % distanceOfLists) * 60LL);
            page.append({ id,
                QLocale::c().toString(date, QStringLiteral("ddd MMM dd HH:mm:ss '+0000' yyyy")).toLatin1(),
                id + " the tide is out until four, so we walk around the head #coast @author" + author
                    + " http://example.org/tides/" + id + ".html and are back for tea",
                author,
                _addressOfPicture(author) });
        }
        return page;
    }

    [[nodiscard]] QByteArray _addressOfPicture(const QByteArray& author) const
    {
        return "https://" + m_server.host().toLatin1() + "/pictures/" + author + ".png";
    }

    static QByteArray _user(const Post& post)
    {
        return "<id>" + post.author + "</id><name>Author " + post.author + "</name><screen_name>author"
            + post.author + "</screen_name><profile_image_url>" + post.picture + "</profile_image_url>";
    }

    static QByteArray _statuses(const QList<Post>& page)
    {
        QByteArray answer = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><statuses type=\"array\">";
        for (const Post& post : page)
            answer += "<status><created_at>" + post.date + "</created_at><id>" + post.id + "</id><text>"
                + post.text + "</text><user>" + _user(post) + "</user></status>";
        return answer + "</statuses>";
    }

    static QByteArray _messages(const QList<Post>& page)
    {
        QByteArray answer = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><direct-messages type=\"array\">";
        for (const Post& post : page)
            answer += "<direct_message><id>" + post.id + "</id><text>" + post.text + "</text><created_at>"
                + post.date + "</created_at><sender>" + _user(post) + "</sender><recipient>" + _user(post)
                + "</recipient></direct_message>";
        return answer + "</direct-messages>";
    }

    static QByteArray _results(const QList<Post>& page)
    {
        QByteArray answer = "{\"results\":[";
        for (const Post& post : page)
            answer += "{\"text\":\"" + post.text + "\",\"from_user\":\"author" + post.author + "\",\"id\":\""
                + post.id + "\",\"from_user_id\":\"" + post.author + "\",\"profile_image_url\":\""
                + post.picture + "\",\"created_at\":\"" + post.date + "\"},";
        if (!page.isEmpty())
            answer.chop(1);
        return answer + "]}";
    }

    static QByteArray _picture(int number)
    {
        QImage image(96, 96, QImage::Format_RGB32);
        image.fill(QColor::fromHsv(number * 359 / authorCount, 180, 200));
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        return bytes;
    }

    const int m_postsOfAPage;
    // Long enough ago that no post is of tomorrow.
    const QDateTime m_start = QDateTime::currentDateTimeUtc().addDays(-30);
    std::atomic<int> m_pageCount = 0;
    std::atomic<int> m_pictureCount = 0;
    std::mutex m_lock;
    std::map<QByteArray, int> m_lastPosts;
    KRTestServer m_server;
};
