#include "api/TwitterAnswers.h"
#include "support/KRTest.h"

namespace {

TEST(ErrorText, IsFitToBeShown)
{
    const struct {
        QByteArray body;
        QString text;
    } cases[] = {
        { "<hash><error>Gone.</error><request>/x</request></hash>", u"Gone."_s },
        { "<errors><error code='32'>First.</error><error>Second.</error></errors>", u"Second."_s },
        { "<hash><error>two\n   lines &amp; &lt;b&gt;</error></hash>", u"two lines & <b>"_s },
        { "<hash><error>a\x01\xff</error></hash>", u"a\uFFFD\uFFFD"_s },
        // What came before the document broke off counts.
        { "<hash><error>Cut</error><req", u"Cut"_s },
        { "<hash><error> </error></hash>", QString() },
        { "<error>" + QByteArray(300, 'x') + "</error>", QString(300, u'x') },
        { "<error>" + QByteArray(301, 'x') + "</error>", QString(299, u'x') + u'…' },
        { "<error>" + QByteArray("word ").repeated(99) + "</error>", u"word "_s.repeated(59) + u"word…"_s },
        { "not xml", QString() },
        { "", QString() },
    };
    for (const auto& test : cases)
        EXPECT_EQ(TwitterAnswers::errorText(test.body), test.text) << test.body.constData();
}

} // namespace
