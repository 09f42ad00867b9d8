#pragma once

#include <QMap>
#include <QString>

/// What went wrong at a real boundary: a reverse-DNS domain, a code within it, and a text the user can read.
struct KRError {
    QString domain;
    int code = 0;
    QString description;
    /// What else is known, under names that belong to the domain.
    QMap<QString, QString> details = {};

    bool operator==(const KRError&) const = default;
};

/// The one way errors are made.
[[nodiscard]] inline KRError errorWithDomain(QString domain, int code, QString description)
{
    return { std::move(domain), code, std::move(description), {} };
}
