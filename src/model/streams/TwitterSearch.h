#pragma once

#include "model/streams/TwitterSearchStream.h"

#include <QList>

class KRKeyedArchiver;
class KRKeyedUnarchiver;
class TwitterSearch;

using TwitterSearchPtr = std::shared_ptr<TwitterSearch>;

/// A search that an account keeps. Main thread.
class TwitterSearch {
public:
    TwitterSearch(std::shared_ptr<TwitterUniquingTables> tables, TwitterServiceHosts hosts);
    TwitterSearch(const TwitterSearch&) = delete;
    TwitterSearch& operator=(const TwitterSearch&) = delete;
    ~TwitterSearch() = default;

    /// Archives query and name.
    void encodeWithCoder(KRKeyedArchiver& coder) const;
    static TwitterSearchPtr searchWithCoder(const KRKeyedUnarchiver& coder,
        std::shared_ptr<TwitterUniquingTables> tables,
        TwitterServiceHosts hosts);

    /// The results; made when first asked for.
    const std::shared_ptr<TwitterSearchStream>& stream();
    [[nodiscard]] bool hasStream() const { return m_stream != nullptr; }
    /// The stream's.
    [[nodiscard]] QString query() const;
    void setQuery(const QString& query);
    /// Null when the search goes by its query.
    [[nodiscard]] const QString& displayName() const { return m_displayName; }
    void setDisplayName(const QString& name) { m_displayName = name; }

    /// The same object, or equal streams.
    [[nodiscard]] bool isEqual(const TwitterSearch& other) const;

private:
    std::shared_ptr<TwitterUniquingTables> m_tables;
    TwitterServiceHosts m_hosts;
    QString m_displayName;
    std::shared_ptr<TwitterSearchStream> m_stream;
};
