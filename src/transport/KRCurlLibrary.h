#pragma once

// The checks behind the macros of these names would call the functions themselves.
#define CURL_DISABLE_TYPECHECK
#include <curl/curl.h>

/// libcurl's functions, from the library as it is installed. It is opened by the first who asks and not when
/// the program starts: with all it needs (TLS, Kerberos, LDAP) it would take a third of the time to the first
/// window. Any thread.
struct KRCurlLibrary {
    /// Opens the library and prepares it for use. Without it there is no network: the program ends with the
    /// linker's words.
    static const KRCurlLibrary& shared();

    decltype(&curl_easy_init) easyInit = nullptr;
    decltype(&curl_easy_cleanup) easyCleanup = nullptr;
    decltype(&curl_easy_reset) easyReset = nullptr;
    decltype(&curl_easy_setopt) easySetOption = nullptr;
    decltype(&curl_easy_getinfo) easyGetInfo = nullptr;
    decltype(&curl_easy_strerror) easyErrorText = nullptr;
    decltype(&curl_multi_init) multiInit = nullptr;
    decltype(&curl_multi_cleanup) multiCleanup = nullptr;
    decltype(&curl_multi_setopt) multiSetOption = nullptr;
    decltype(&curl_multi_add_handle) multiAddHandle = nullptr;
    decltype(&curl_multi_remove_handle) multiRemoveHandle = nullptr;
    decltype(&curl_multi_perform) multiPerform = nullptr;
    decltype(&curl_multi_poll) multiPoll = nullptr;
    decltype(&curl_multi_wakeup) multiWakeUp = nullptr;
    decltype(&curl_multi_info_read) multiInfoRead = nullptr;
    decltype(&curl_slist_append) listAppend = nullptr;
    decltype(&curl_slist_free_all) listFree = nullptr;

    /// A function of the OpenSSL that libcurl does its TLS with; null when it has none of the name, or does
    /// its TLS with something else.
    [[nodiscard]] void* OpenSSLFunction(const char* name) const;

private:
    KRCurlLibrary();

    void* m_library = nullptr;
    bool m_usesOpenSSL = false;
};
