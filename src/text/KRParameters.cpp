#include "text/KRParameters.h"

#include "text/KRStringAdditions.h"

#include <QStringList>

KRParameters& KRParameters::add(QLatin1String key, const QString& value)
{
    if (!value.isNull())
        m_list.emplace_back(key, value);
    return *this;
}

KRParameters& KRParameters::add(QLatin1String key, std::optional<qint64> value)
{
    if (value)
        m_list.emplace_back(key, QString::number(*value));
    return *this;
}

namespace KRAdditions {

QString URLQueryStringFunction(const QString& key, const QString& value)
{
    return URLEncodedString(key) + u'=' + URLEncodedString(value);
}

QString URLParameterString(const KRParameters& parameters)
{
    QStringList pieces;
    for (const auto& [key, value] : parameters.list())
        pieces.append(URLQueryStringFunction(key, value));
    return pieces.join(u'&');
}

} // namespace KRAdditions
