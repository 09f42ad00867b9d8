#pragma once

#include <QString>

/// Who requests are made for. An account implements it. Asked on the thread that makes a request: the main one,
/// where it is an account.
class TwitterCredentials {
public:
    TwitterCredentials() = default;
    TwitterCredentials(const TwitterCredentials&) = delete;
    TwitterCredentials& operator=(const TwitterCredentials&) = delete;
    virtual ~TwitterCredentials() = default;

    virtual QString username() const = 0;
    /// Null while it is not known (a locked keyring); requests then go out without authorization.
    virtual QString password() const = 0;
};
