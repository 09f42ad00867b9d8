#pragma once

#include <QLatin1String>
#include <QList>
#include <QString>

#include <optional>
#include <utility>

/// The parameters of a query or a form body. They are written in the order they were added.
class KRParameters {
public:
    using Parameter = std::pair<QString, QString>;

    /// Adds a pair; a null value is left out, so that optional arguments can be passed on as they are.
    KRParameters& add(QLatin1String key, const QString& value);
    KRParameters& add(QLatin1String key, std::optional<qint64> value);

    const QList<Parameter>& list() const { return m_list; }

private:
    QList<Parameter> m_list;
};

namespace KRAdditions {

/// "key=value", both sides form-encoded.
[[nodiscard]] QString URLQueryStringFunction(const QString& key, const QString& value);
/// The pairs joined with "&", without a leading question mark.
[[nodiscard]] QString URLParameterString(const KRParameters& parameters);

} // namespace KRAdditions
