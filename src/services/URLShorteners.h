#pragma once

#include "services/URLShorteningService.h"

/// Answers in JSON, and knows where its own links lead.
class BitlyShortener final : public URLShorteningService {
public:
    /// The program's key for the service.
    [[nodiscard]] static QString apiKey();

    void shortenURLString(const TwitterServiceHosts& hosts,
        const QString& url,
        KRCallback<QString> callback) const override;
    void expandURLString(const TwitterServiceHosts& hosts,
        const QString& url,
        KRCallback<QString> callback) const override;
};

/// Answers with the bare link.
class TinyURLShortener final : public URLShorteningService {
public:
    void shortenURLString(const TwitterServiceHosts& hosts,
        const QString& url,
        KRCallback<QString> callback) const override;
};

/// Answers with the bare link, which is taken as it came.
class IsGdShortener final : public URLShorteningService {
public:
    void shortenURLString(const TwitterServiceHosts& hosts,
        const QString& url,
        KRCallback<QString> callback) const override;
};

/// Answers with the bare link.
class TrImShortener final : public URLShorteningService {
public:
    void shortenURLString(const TwitterServiceHosts& hosts,
        const QString& url,
        KRCallback<QString> callback) const override;
};

/// Answers in XML.
class DiggBarShortener final : public URLShorteningService {
public:
    void shortenURLString(const TwitterServiceHosts& hosts,
        const QString& url,
        KRCallback<QString> callback) const override;
};

/// Knows where the links of many services lead; it makes none.
class LongURLShortener final : public URLShorteningService {
public:
    void expandURLString(const TwitterServiceHosts& hosts,
        const QString& url,
        KRCallback<QString> callback) const override;
};
